#include "device/CorvidaPacket.h"
#include "device/CorvidaPacketDecoder.h"
#include "support/CorvidaUnitEmulator.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {
using Emu = CorvidaUnitEmulator;

struct Decoded {
    int type;
    QByteArray payload;
    bool operator==(const Decoded &o) const { return type == o.type && payload == o.payload; }
};

// Feeds the chunks one after another and collects every packet as it becomes available.
QList<Decoded> decode(CorvidaPacketDecoder &decoder, const QList<QByteArray> &chunks)
{
    QList<Decoded> out;
    CorvidaPacketDecoder::Packet p;
    for (const QByteArray &chunk : chunks) {
        decoder.append(chunk);
        while (decoder.next(p))
            out.append({p.type, QByteArray(reinterpret_cast<const char *>(p.payload), p.length)});
    }
    return out;
}

QList<Decoded> decode(const QList<QByteArray> &chunks)
{
    CorvidaPacketDecoder decoder;
    return decode(decoder, chunks);
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

QByteArray sampleGroup(qint16 mpx, qint16 ac, qint16 dc, qint16 ir)
{
    return Emu::le16(quint16(mpx)) + Emu::le16(quint16(ac)) + Emu::le16(quint16(dc)) +
           Emu::le16(quint16(ir));
}
} // namespace

class TestCorvidaPacketDecoder : public QObject
{
    Q_OBJECT
private slots:
    void badMarkStallsUntilReset_data();
    void badMarkStallsUntilReset();
    void stalledDecoderDoesNotGrow();
    void seededRandomStreamsDecodeIndependentlyOfSplit();
    void samplePayload_data();
    void samplePayload();
    void calibrationPayload();
    void serialNumberPayload_data();
    void serialNumberPayload();
};

void TestCorvidaPacketDecoder::badMarkStallsUntilReset_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("decodedBefore");
    QTest::addColumn<bool>("blocked");
    const QByteArray good = Emu::packet(7, QByteArray(40, 'A'));
    QByteArray badEnd = good;
    badEnd[badEnd.size() - 1] = char(0xCD);

    QTest::newRow("garbage before start mark") << QByteArray("\x01") + good + good << 0 << true;
    QTest::newRow("wrong end mark") << badEnd + good << 0 << true;
    QTest::newRow("good, then garbage") << good + "xyz123" + good << 1 << true;
    // Fewer than six bytes are not judged yet; they may be the start of anything.
    QTest::newRow("five stray bytes wait") << QByteArray("\x01\x02\x03\x04\x05") << 0 << false;
}

void TestCorvidaPacketDecoder::badMarkStallsUntilReset()
{
    QFETCH(QByteArray, stream);
    QFETCH(int, decodedBefore);
    QFETCH(bool, blocked);
    CorvidaPacketDecoder decoder;
    QCOMPARE(decode(decoder, {stream}).size(), decodedBefore);
    QCOMPARE(decoder.isBlocked(), blocked);

    // More good packets do not get through (stray bytes in front of them stall it now)...
    const QByteArray good = Emu::packet(6, QByteArray(24, '\0'));
    QCOMPARE(decode(decoder, {good, good}).size(), 0);
    QVERIFY(decoder.isBlocked());
    // ...until it is reset, as after reopening the port.
    decoder.reset();
    QVERIFY(!decoder.isBlocked());
    QCOMPARE(decode(decoder, {good, good}).size(), 2);
}

void TestCorvidaPacketDecoder::stalledDecoderDoesNotGrow()
{
    CorvidaPacketDecoder decoder;
    decoder.append(QByteArray("garbage!"));
    CorvidaPacketDecoder::Packet p;
    QVERIFY(!decoder.next(p));
    QVERIFY(decoder.isBlocked());
    const qsizetype kept = decoder.pendingBytes();
    const QByteArray chunk(64 * 1024, '\x55');
    for (int i = 0; i < 160; ++i) // 10 MB from a babbling port
        decoder.append(chunk);
    QCOMPARE(decoder.pendingBytes(), kept);
    QCOMPARE(decoder.droppedBytes(), qint64(160) * chunk.size());
}

void TestCorvidaPacketDecoder::seededRandomStreamsDecodeIndependentlyOfSplit()
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
            stream += Emu::packet(packets.last().type, payload);
        }
        QCOMPARE(decode(randomSplit(stream, rng)), packets);

        // The same stream with one byte broken at a packet start: exactly the packets before
        // it come out, whatever the split.
        const int broken = rng.bounded(count);
        qsizetype at = 0;
        for (int i = 0; i < broken; ++i)
            at += packets[i].payload.size() + 6;
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

void TestCorvidaPacketDecoder::samplePayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("groups");
    QTest::addColumn<QList<double>>("first"); // MPX, AC, DC, IR of the first group

    const QByteArray extremes = sampleGroup(400, -32768, 16384, 32767);
    const QList<double> extremeValues = {100.0, -1.8, 0.9, 1.32 * 32767 / 32768};
    QTest::newRow("one group, full scale") << extremes << 1 << extremeValues;
    QTest::newRow("less than a group")
        << QByteArray("\x01\x02\x03\x04\x05\x06\x07") << 0 << QList<double>{};
    QByteArray full;
    for (int g = 0; g < 31; ++g)
        full += sampleGroup(qint16(-g), qint16(g), 0, 0);
    full += "1234567"; // 255 bytes
    QTest::newRow("length 255") << full << 31 << QList<double>{0, 0, 0, 0};
}

void TestCorvidaPacketDecoder::samplePayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, groups);
    QFETCH(QList<double>, first);
    QList<QList<double>> frame(4);
    const auto *p = reinterpret_cast<const uchar *>(payload.constData());
    QCOMPARE(CorvidaPacket::decodeSamples(p, int(payload.size()), frame), groups);
    QCOMPARE(frame[3].size(), groups);
    for (int c = 0; c < first.size(); ++c)
        QCOMPARE(frame[c][0], first[c]);
    // Every group lands in its own slot: in the 31-group row MPX is -g and AC is g.
    if (groups == 31) {
        QCOMPARE(frame[0][30], -30 * 0.25);
        QCOMPARE(frame[1][17], 17 * 1.8 / 32768);
    }
    // Decoding appends, so a second payload extends the same frame.
    CorvidaPacket::decodeSamples(p, int(payload.size()), frame);
    QCOMPARE(frame[3].size(), 2 * groups);
}

void TestCorvidaPacketDecoder::calibrationPayload()
{
    // 2000-01-01 00:00 UTC is 125911584000000000 in 100 ns steps since 1601.
    const QByteArray good = Emu::le64(125911584000000000ULL) + Emu::f32(100.5f) + Emu::f32(0.0f) +
                            Emu::f32(900.25f) + Emu::f32(200.0f);
    CorvidaPacket::CalibrationData c;
    const auto *p = reinterpret_cast<const uchar *>(good.constData());
    QVERIFY(CorvidaPacket::decodeCalibration(p, int(good.size()), c));
    QCOMPARE(c.timeMs, Q_INT64_C(946684800000));
    QCOMPARE(QList<float>({c.x0, c.y0, c.x1, c.y1}), QList<float>({100.5f, 0.0f, 900.25f, 200.0f}));
}

void TestCorvidaPacketDecoder::serialNumberPayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("serial");
    QTest::addColumn<qint64>("productionMs");
    // 2021-03-15 12:00 UTC.
    const QByteArray date = Emu::le64(132602832000000000ULL);
    const qint64 ms = Q_INT64_C(1615809600000);
    auto padded = [&](const QByteArray &text) {
        return date + text + QByteArray(qMax(0, 32 - int(text.size())), '\0');
    };
    const int valid = int(CorvidaPacket::SerialResult::Valid);
    QTest::newRow("zero padded") << padded("CRV-0042") << valid << "CRV-0042" << ms;
    QTest::newRow("blanks trimmed, text after zero ignored")
        << padded(QByteArray("  AB 12 \0xyz", 12)) << valid << "AB 12" << ms;
    QTest::newRow("no zero: up to the end")
        << date + QByteArray(40, 'Q') << valid << QString(40, 'Q') << ms;
    QTest::newRow("Latin-1") << padded("\xE9t\xE9") << valid << QString::fromUtf8("été") << ms;
    QTest::newRow("39 bytes") << padded("X").left(39) << int(CorvidaPacket::SerialResult::Invalid)
                              << "" << qint64(0);
    QTest::newRow("empty") << QByteArray() << int(CorvidaPacket::SerialResult::Empty) << ""
                           << qint64(0);
}

void TestCorvidaPacketDecoder::serialNumberPayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, result);
    QFETCH(QString, serial);
    QFETCH(qint64, productionMs);
    CorvidaPacket::SerialData data;
    const auto *p = reinterpret_cast<const uchar *>(payload.constData());
    QCOMPARE(int(CorvidaPacket::decodeSerialNumber(p, int(payload.size()), data)), result);
    if (result != int(CorvidaPacket::SerialResult::Valid))
        return;
    QCOMPARE(data.serialNumber, serial);
    QCOMPARE(data.productionMs, productionMs);
}

QTEST_GUILESS_MAIN(TestCorvidaPacketDecoder)
#include "tst_corvidapacketdecoder.moc"
