#include "device/CorvidaPacket.h"
#include "device/CorvidaPacketDecoder.h"
#include "support/CorvidaUnitEmulator.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {
using Emu = CorvidaUnitEmulator;

using Decoded = std::pair<int, QByteArray>; // type, payload

// Feeds the chunks one after another and collects every packet as it becomes available.
QList<Decoded> decode(const QList<QByteArray> &chunks, CorvidaPacketDecoder *shared = nullptr)
{
    CorvidaPacketDecoder own;
    CorvidaPacketDecoder &decoder = shared ? *shared : own;
    QList<Decoded> out;
    CorvidaPacketDecoder::Packet p;
    for (const QByteArray &chunk : chunks) {
        decoder.append(chunk);
        while (decoder.next(p))
            out.append({p.type, QByteArray(reinterpret_cast<const char *>(p.payload), p.length)});
    }
    return out;
}

// Cuts the stream at up to 200 random places (empty and one-byte pieces included).
QList<QByteArray> randomSplit(const QByteArray &stream, QRandomGenerator &rng)
{
    QList<int> cuts{0, int(stream.size())};
    for (int i = rng.bounded(1, 200); i > 0; --i)
        cuts.append(rng.bounded(stream.size() + 1));
    std::sort(cuts.begin(), cuts.end());
    QList<QByteArray> chunks;
    for (qsizetype k = 1; k < cuts.size(); ++k)
        chunks.append(stream.mid(cuts[k - 1], cuts[k] - cuts[k - 1]));
    return chunks;
}
} // namespace

class TestCorvidaPacketDecoder : public QObject
{
    Q_OBJECT
private slots:
    void wrongEndMarkStallsUntilReset()
    {
        const QByteArray good = Emu::packet(6, QByteArray(24, '\0'));
        CorvidaPacketDecoder decoder; // the second packet's end mark is broken
        QCOMPARE(decode({good + good.chopped(1) + '\xCD' + good, good}, &decoder).size(), 1);
        decoder.reset(); // as after reopening the port
        QCOMPARE(decode({good, good}, &decoder).size(), 2);
    }

    void seededRandomStreamsDecodeIndependentlyOfSplit()
    {
        QRandomGenerator rng(20261121);
        for (int round = 0; round < 20; ++round) {
            // A clean stream: every packet comes out, in order, however it is cut.
            QList<Decoded> packets;
            QByteArray stream;
            const int count = rng.bounded(1, 300);
            for (int i = 0; i < count; ++i) {
                QByteArray payload(rng.bounded(256), '\0');
                for (char &c : payload)
                    c = char(rng.bounded(256));
                packets.append({rng.bounded(256), payload});
                stream += Emu::packet(packets.last().first, payload);
            }
            QCOMPARE(decode(randomSplit(stream, rng)), packets);

            // The same stream with one byte broken at a packet start: exactly the packets before
            // it come out, whatever the split.
            const int broken = rng.bounded(count);
            qsizetype at = 0;
            for (int i = 0; i < broken; ++i)
                at += packets[i].second.size() + 6;
            QByteArray damaged = stream;
            damaged[at + rng.bounded(2)] = char(0x54);
            QCOMPARE(decode(randomSplit(damaged, rng)), packets.mid(0, broken));

            // Noise rich in mark bytes: whatever comes out does not depend on the split.
            QByteArray noise(rng.bounded(1, 20000), '\0');
            for (char &c : noise) {
                const int r = rng.bounded(8);
                c = r < 3 ? char(0x55) : r < 5 ? char(0xCC) : char(rng.bounded(8));
            }
            const QList<Decoded> whole = decode({noise});
            for (int k = 0; k < 5; ++k)
                QCOMPARE(decode(randomSplit(noise, rng)), whole);
        }
    }

    void serialNumberPayload()
    {
        // 2021-03-15 12:00 UTC, then Latin-1 text: blanks trimmed, the text after a zero ignored.
        const QByteArray text = QByteArray("  AB\xE9 12 \0xyz", 13);
        const QByteArray payload = Emu::le64(132602832000000000ULL) + text + QByteArray(19, '\0');
        CorvidaPacket::SerialData data;
        const auto *p = reinterpret_cast<const uchar *>(payload.constData());
        QCOMPARE(CorvidaPacket::decodeSerialNumber(p, 40, data),
                 CorvidaPacket::SerialResult::Valid);
        QCOMPARE(data.serialNumber, QString::fromUtf8("ABé 12"));
        QCOMPARE(data.productionMs, Q_INT64_C(1615809600000));
        QCOMPARE(CorvidaPacket::decodeSerialNumber(p, 39, data),
                 CorvidaPacket::SerialResult::Invalid);
    }
};

QTEST_GUILESS_MAIN(TestCorvidaPacketDecoder)
#include "tst_corvidapacketdecoder.moc"
