// libFuzzer target for the serial unit's byte stream. The input is a stream as a port might
// deliver it; its first bytes also choose where the stream is cut into reads. Checks:
// - nothing crashes, leaks past a read, or trips the sanitizers;
// - the packets that come out are the same whether the stream arrives whole or in pieces;
// - every byte is accounted for (consumed, still pending, or dropped while stalled);
// - each payload decoder accepts whatever a packet holds.
#include "device/CorvidaPacket.h"
#include "device/CorvidaPacketDecoder.h"

#include <QDateTime>
#include <QList>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {
struct Decoded {
    quint8 type;
    QByteArray payload;
    bool operator==(const Decoded &o) const { return type == o.type && payload == o.payload; }
};

void exercisePayload(const CorvidaPacketDecoder::Packet &p)
{
    QList<QList<double>> frame(CorvidaPacket::ChannelCount);
    const int groups = CorvidaPacket::decodeSamples(p.payload, p.length, frame);
    if (groups != p.length / CorvidaPacket::GroupSize || frame[3].size() != groups)
        std::abort();
    CorvidaPacket::CalibrationData calibration;
    if (CorvidaPacket::decodeCalibration(p.payload, p.length, calibration) !=
        (p.length == CorvidaPacket::CalibrationSize))
        std::abort();
    CorvidaPacket::SerialData serial;
    if (CorvidaPacket::decodeSerialNumber(p.payload, p.length, serial) ==
        CorvidaPacket::SerialResult::Valid) {
        // What the device does with the date next.
        const QDateTime produced = QDateTime::fromMSecsSinceEpoch(serial.productionMs);
        if (produced.isValid())
            (void)produced.date().year();
        if (serial.serialNumber.size() > p.length - 8)
            std::abort();
    }
}

void drain(CorvidaPacketDecoder &decoder, QList<Decoded> &out, bool exercise)
{
    CorvidaPacketDecoder::Packet p;
    while (decoder.next(p)) {
        if (p.length < 0 || p.length > CorvidaPacket::MaxPayload)
            std::abort();
        out.append({p.type, QByteArray(reinterpret_cast<const char *>(p.payload), p.length)});
        if (exercise)
            exercisePayload(p);
    }
}

qint64 consumed(const QList<Decoded> &packets)
{
    qint64 n = 0;
    for (const Decoded &d : packets)
        n += d.payload.size() + CorvidaPacket::Overhead;
    return n;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    // The first two bytes seed the cutting; the rest is the stream.
    quint32 state = (quint32(data[0]) << 8 | data[1]) * 2654435761u + 1;
    const char *stream = reinterpret_cast<const char *>(data + 2);
    const qsizetype length = qsizetype(size - 2);

    CorvidaPacketDecoder whole;
    QList<Decoded> wholePackets;
    whole.append(stream, length);
    drain(whole, wholePackets, true);

    CorvidaPacketDecoder pieces;
    QList<Decoded> piecePackets;
    qsizetype at = 0;
    while (at < length) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        // Mostly short reads, now and then a long one, and the odd empty one.
        const qsizetype want = (state & 7) == 0 ? qsizetype(state >> 20) : qsizetype(state % 9);
        const qsizetype n = std::min(want, length - at);
        pieces.append(stream + at, n);
        at += n;
        drain(pieces, piecePackets, false);
    }

    if (!(wholePackets == piecePackets) || whole.isBlocked() != pieces.isBlocked())
        std::abort();
    for (CorvidaPacketDecoder *d : {&whole, &pieces}) {
        const QList<Decoded> &packets = d == &whole ? wholePackets : piecePackets;
        if (consumed(packets) + d->pendingBytes() + d->droppedBytes() != length)
            std::abort();
    }
    // A stalled decoder keeps no more than it had when it stalled; an unstalled one holds
    // less than one packet.
    if (!pieces.isBlocked() &&
        pieces.pendingBytes() >= CorvidaPacket::MaxPayload + CorvidaPacket::Overhead)
        std::abort();

    // Commands built from arbitrary limits are always one whole 10-byte packet.
    if (size >= 16) {
        double upper, lower;
        std::memcpy(&upper, data, 8);
        std::memcpy(&lower, data + 8, 8);
        if (CorvidaPacket::measuringCommand(upper, lower).size() != 10)
            std::abort();
    }
    return 0;
}
