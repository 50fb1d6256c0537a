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

QList<QByteArray> splitAt(const QByteArray &stream, QList<int> cuts)
{
    std::sort(cuts.begin(), cuts.end());
    QList<QByteArray> chunks;
    int from = 0;
    for (int cut : cuts) {
        chunks.append(stream.mid(from, cut - from));
        from = cut;
    }
    chunks.append(stream.mid(from));
    return chunks;
}

QList<QByteArray> randomSplit(const QByteArray &stream, QRandomGenerator &rng)
{
    QList<int> cuts;
    const int n = rng.bounded(1, 200);
    for (int i = 0; i < n; ++i)
        cuts.append(rng.bounded(stream.size() + 1));
    return splitAt(stream, cuts);
}

QByteArray bytes(int count, char value)
{
    return QByteArray(count, value);
}

QByteArray sampleGroup(qint16 mpx, qint16 ac, qint16 dc, qint16 ir)
{
    return Emu::le16(quint16(mpx)) + Emu::le16(quint16(ac)) + Emu::le16(quint16(dc)) +
           Emu::le16(quint16(ir));
}
} // namespace

Q_DECLARE_METATYPE(QList<int>)

class TestCorvidaPacketDecoder : public QObject
{
    Q_OBJECT
private slots:
    void decodesTheSamePacketsWhateverTheSplit_data();
    void decodesTheSamePacketsWhateverTheSplit();
    void badMarkStallsUntilReset_data();
    void badMarkStallsUntilReset();
    void stalledDecoderDoesNotGrow();
    void seededRandomStreamsDecodeIndependentlyOfSplit();
    void samplePayload_data();
    void samplePayload();
    void calibrationPayload_data();
    void calibrationPayload();
    void serialNumberPayload_data();
    void serialNumberPayload();
};

void TestCorvidaPacketDecoder::decodesTheSamePacketsWhateverTheSplit_data()
{
    QTest::addColumn<QList<int>>("cuts");
    // Stream: serial (40), samples (255), unknown empty, calibration (24).
    // Packet edges: 46, 307, 313, 343.
    QTest::newRow("whole") << QList<int>{};
    QTest::newRow("at packet edges") << QList<int>{46, 307, 313};
    QTest::newRow("inside start mark") << QList<int>{1, 47, 308};
    QTest::newRow("inside end mark") << QList<int>{45, 306, 342};
    QTest::newRow("before length byte") << QList<int>{3, 49, 310};
    QList<int> everyByte;
    for (int i = 1; i < 343; ++i)
        everyByte.append(i);
    QTest::newRow("byte by byte") << everyByte;
}

void TestCorvidaPacketDecoder::decodesTheSamePacketsWhateverTheSplit()
{
    QFETCH(QList<int>, cuts);
    QByteArray serial = Emu::le64(1) + "SN";
    serial.append(bytes(40 - serial.size(), '\0'));
    QByteArray samples;
    for (int i = 0; i < 255; ++i)
        samples.append(char(i % 2 ? 0xCC : 0x55)); // marks inside payloads mean nothing
    const QByteArray calibration = bytes(24, '\x7f');
    const QList<Decoded> expected = {{7, serial}, {5, samples}, {200, {}}, {6, calibration}};
    QByteArray stream;
    for (const Decoded &d : expected)
        stream += Emu::packet(d.type, d.payload);
    QCOMPARE(stream.size(), 343);

    CorvidaPacketDecoder decoder;
    QCOMPARE(decode(decoder, splitAt(stream, cuts)), expected);
    QCOMPARE(decoder.pendingBytes(), 0);
    QVERIFY(!decoder.isBlocked());
}

void TestCorvidaPacketDecoder::badMarkStallsUntilReset_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("decodedBefore");
    QTest::addColumn<bool>("blocked");
    const QByteArray good = Emu::packet(7, bytes(40, 'A'));
    QByteArray badEnd = good;
    badEnd[badEnd.size() - 1] = char(0xCD);

    QTest::newRow("garbage before start mark") << QByteArray("\x01") + good + good << 0 << true;
    QTest::newRow("half a start mark")
        << QByteArray("\x55\x00\x07\x00\xCC\xCC") + good << 0 << true;
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
    const QByteArray good = Emu::packet(6, bytes(24, '\0'));
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
    QTest::newRow("partial group dropped") << extremes + extremes + "\x01" << 2 << extremeValues;
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
    for (const QList<double> &channel : frame)
        QCOMPARE(channel.size(), groups);
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

void TestCorvidaPacketDecoder::calibrationPayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("accepted");
    // 2000-01-01 00:00 UTC is 125911584000000000 in 100 ns steps since 1601.
    const QByteArray good = Emu::le64(125911584000000000ULL) + Emu::f32(100.5f) + Emu::f32(0.0f) +
                            Emu::f32(900.25f) + Emu::f32(200.0f);
    QTest::newRow("24 bytes") << good << true;
    QTest::newRow("23 bytes") << good.left(23) << false;
    QTest::newRow("25 bytes") << good + "x" << false;
}

void TestCorvidaPacketDecoder::calibrationPayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, accepted);
    CorvidaPacket::CalibrationData c;
    const auto *p = reinterpret_cast<const uchar *>(payload.constData());
    QCOMPARE(CorvidaPacket::decodeCalibration(p, int(payload.size()), c), accepted);
    if (!accepted)
        return;
    QCOMPARE(c.timeMs, Q_INT64_C(946684800000));
    QCOMPARE(c.x0, 100.5f);
    QCOMPARE(c.y0, 0.0f);
    QCOMPARE(c.x1, 900.25f);
    QCOMPARE(c.y1, 200.0f);
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
    QTest::newRow("blank serial") << padded("   ") << valid << "" << ms;
    QTest::newRow("39 bytes") << padded("X").left(39) << int(CorvidaPacket::SerialResult::Invalid)
                              << "" << qint64(0);
    QTest::newRow("1 byte") << QByteArray("X") << int(CorvidaPacket::SerialResult::Invalid) << ""
                            << qint64(0);
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
