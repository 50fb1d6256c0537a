// Decoding a recorded unit stream: how fast bytes become packets, decoded samples, and
// processed frames (filters, calibration, history) on one core. The unit sends 16 kB/s.
#include "device/ComCorvidaDevice.h"
#include "device/CorvidaPacket.h"
#include "device/CorvidaPacketDecoder.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {
constexpr int kSeconds = 10;
constexpr int kChunk = 4096; // a typical read from the port

// Ten seconds of a unit streaming at 1000 Hz in packets of 31 groups, with a serial-number
// and a calibration packet in front, as after a connect.
const QByteArray &recordedStream()
{
    static const QByteArray stream = [] {
        QByteArray s;
        s +=
            CorvidaPacket::encode(CorvidaPacket::SerialNumber,
                                  CorvidaPacket::serialNumberPayload(
                                      QStringLiteral("CRV-0001"), QDateTime::currentDateTimeUtc()));
        const float points[4] = {100.0f, 0.0f, 900.0f, 200.0f};
        QByteArray calibration(8, '\0');
        calibration.append(reinterpret_cast<const char *>(points), sizeof points);
        s += CorvidaPacket::encode(CorvidaPacket::Calibration, calibration);
        int sample = 0;
        const int total = kSeconds * 1000;
        while (sample < total) {
            const int groups = std::min(31, total - sample);
            QByteArray payload;
            for (int g = 0; g < groups; ++g, ++sample) {
                const qint16 counts[4] = {qint16(400 + sample % 200),
                                          qint16(4000 * std::sin(sample * 0.0377)), 16384, 8192};
                for (qint16 c : counts) {
                    payload.append(char(quint16(c) & 0xFF));
                    payload.append(char(quint16(c) >> 8));
                }
            }
            s += CorvidaPacket::encode(CorvidaPacket::Samples, payload);
        }
        return s;
    }();
    return stream;
}

void BM_Framing(benchmark::State &state)
{
    const QByteArray &stream = recordedStream();
    CorvidaPacketDecoder decoder;
    CorvidaPacketDecoder::Packet p;
    for (auto _ : state) {
        qint64 payloadBytes = 0;
        for (qsizetype at = 0; at < stream.size(); at += kChunk) {
            decoder.append(stream.constData() + at,
                           std::min<qsizetype>(kChunk, stream.size() - at));
            while (decoder.next(p))
                payloadBytes += p.length;
        }
        benchmark::DoNotOptimize(payloadBytes);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_Framing);

void BM_FramingAndSamples(benchmark::State &state)
{
    const QByteArray &stream = recordedStream();
    CorvidaPacketDecoder decoder;
    CorvidaPacketDecoder::Packet p;
    for (auto _ : state) {
        qint64 samples = 0;
        for (qsizetype at = 0; at < stream.size(); at += kChunk) {
            decoder.append(stream.constData() + at,
                           std::min<qsizetype>(kChunk, stream.size() - at));
            while (decoder.next(p)) {
                if (p.type != CorvidaPacket::Samples)
                    continue;
                QList<QList<double>> frame(4);
                samples += CorvidaPacket::decodeSamples(p.payload, p.length, frame);
                benchmark::DoNotOptimize(frame);
            }
        }
        benchmark::DoNotOptimize(samples);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
    state.SetItemsProcessed(state.iterations() * kSeconds * 1000);
}
BENCHMARK(BM_FramingAndSamples);

// The whole receive path of the device: framing, decoding, filter chains, calibration,
// history, and the two signals.
void BM_BytesToProcessedFrames(benchmark::State &state)
{
    const QByteArray &stream = recordedStream();
    ComCorvidaDevice device(QStringLiteral("bench"));
    device.setWatchdogActive(false);
    for (auto _ : state) {
        for (qsizetype at = 0; at < stream.size(); at += kChunk)
            device.receiveBytes(stream.mid(at, kChunk));
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
    state.SetItemsProcessed(state.iterations() * kSeconds * 1000);
}
BENCHMARK(BM_BytesToProcessedFrames);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The device logs every serial number and calibration it receives; not what is measured.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
