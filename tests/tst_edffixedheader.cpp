#include "storage/EDFFixedHeader.h"

#include <QtTest>

namespace {
// A fixed header laid out by hand: the fields the check looks at, the rest plausible.
QByteArray header(const QByteArray &version, const QByteArray &patient, const QByteArray &recording,
                  const QByteArray &startDate = "02.03.02", const QByteArray &reserved = "EDF+C")
{
    const auto field = [](const QByteArray &text, int width) {
        return text.leftJustified(width, ' ', true);
    };
    return field(version, 8) + field(patient, 80) + field(recording, 80) + field(startDate, 8) +
           field("14.05.09", 8) + field("768", 8) + field(reserved, 44) + field("1", 8) +
           field("1", 8) + field("2", 4);
}

const QByteArray kRecording = "Startdate 02-MAR-2002 EMR99 Dr_Who Unit7 session two";
} // namespace

class TestEDFFixedHeader : public QObject
{
    Q_OBJECT
private slots:
    void findings_data();
    void findings();
    void repairKeepsSubfieldsAndSetsVersion();
    void repairedStartDate_data();
    void repairedStartDate();
    void identification_data();
    void identification();
    void genderFromSexSubfield_data();
    void genderFromSexSubfield();
};

void TestEDFFixedHeader::findings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<int>>("expected");
    QTest::addColumn<bool>("rejected");
    const QByteArray good = header("0", "X M 01-JAN-2020 Rat", kRecording);
    using F = EDFFixedHeader;
    QTest::newRow("clean") << good << QList<int>{} << false;
    QTest::newRow("short") << good.left(255) << QList<int>{F::File1} << false;
    QTest::newRow("version 1") << header("1", "X X X X", kRecording) << QList<int>{F::File3}
                               << false;
    QTest::newRow("BDF marker") << header("\xff"
                                          "BIOSEMI",
                                          "X X X X", kRecording)
                                << QList<int>{} << false;
    QTest::newRow("255 without BIOSEMI") << header("\xff"
                                                   "BIOSEMX",
                                                   "X X X X", kRecording)
                                         << QList<int>{} << true;
    QTest::newRow("patient byte 0x80")
        << header("0", "X X X R\x80t", kRecording) << QList<int>{F::PatientName} << false;
    QTest::newRow("recording byte 0x1f")
        << header("0", "X X X X", "Startdate X X X \x1f") << QList<int>{F::Recording} << false;
    QTest::newRow("all at once") << header("\x01", "\xe9", "\xe9", "\xe9")
                                 << QList<int>{F::File2, F::File3, F::PatientName, F::Recording,
                                               F::StartDate}
                                 << false;
}

void TestEDFFixedHeader::findings()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QList<int>, expected);
    QFETCH(bool, rejected);
    const EDFFixedHeader fixed(bytes);
    QList<int> found;
    for (EDFFixedHeader::Finding f : fixed.findings())
        found.append(int(f));
    QCOMPARE(found, expected);
    QCOMPARE(fixed.isRejected(), rejected);
    QCOMPARE(fixed.isRepairable(),
             !rejected && !expected.isEmpty() && !expected.contains(EDFFixedHeader::File1));
}

void TestEDFFixedHeader::repairKeepsSubfieldsAndSetsVersion()
{
    const QByteArray bytes = header("1.0\x01", "R\xc3\xa4t M 01-JAN-2020 Kr\xc3\xbcger",
                                    "Startdate 02-MAR-2002 \x01 X Unit7");
    const EDFFixedHeader fixed(bytes);
    const QByteArray repaired = fixed.repaired();
    QCOMPARE(repaired.size(), 256);
    QCOMPARE(repaired.left(8), QByteArray("0       "));
    QCOMPARE(repaired.mid(8, 80).trimmed(), QByteArray("R__t M 01-JAN-2020 Kr__ger"));
    QCOMPARE(repaired.mid(88, 80).trimmed(), QByteArray("Startdate 02-MAR-2002 _ X Unit7"));
    QCOMPARE(repaired.mid(168), bytes.mid(168)); // the rest is untouched
    const EDFFixedHeader again(repaired);
    QVERIFY(again.findings().isEmpty());
    // A BDF marker is left as it is.
    const QByteArray bdf = header("\xff"
                                  "BIOSEMI",
                                  "X X X \x01", kRecording);
    QCOMPARE(EDFFixedHeader(bdf).repaired().left(8), bdf.left(8));
}

void TestEDFFixedHeader::repairedStartDate_data()
{
    QTest::addColumn<QByteArray>("date");
    QTest::addColumn<QByteArray>("recording");
    QTest::addColumn<QByteArray>("reserved");
    QTest::addColumn<QByteArray>("repaired");
    QTest::newRow("EDF+ takes the recording field's date")
        << QByteArray("0\x01.03.02") << QByteArray("Startdate 17-NOV-2026 X X X")
        << QByteArray("EDF+C") << QByteArray("17.11.26");
    QTest::newRow("EDF+ with an unknown date falls back digit by digit")
        << QByteArray("1\x01.0\x02.99") << QByteArray("Startdate X X X X") << QByteArray("EDF+C")
        << QByteArray("11.01.99");
    QTest::newRow("plain EDF falls back digit by digit")
        << QByteArray("\x01\x01.1\x01.\x01\x01") << kRecording << QByteArray("")
        << QByteArray("01.11.85");
}

void TestEDFFixedHeader::repairedStartDate()
{
    QFETCH(QByteArray, date);
    QFETCH(QByteArray, recording);
    QFETCH(QByteArray, reserved);
    QFETCH(QByteArray, repaired);
    const EDFFixedHeader fixed(header("0", "X X X X", recording, date, reserved));
    QVERIFY(fixed.findings().contains(EDFFixedHeader::StartDate));
    QCOMPARE(fixed.repaired().mid(168, 8), repaired);
}

void TestEDFFixedHeader::identification_data()
{
    QTest::addColumn<QByteArray>("patient");
    QTest::addColumn<QByteArray>("recording");
    QTest::addColumn<QByteArray>("reserved");
    // name | gender | birth | code | equipment | recording additional
    QTest::addColumn<QString>("expected");
    QTest::newRow("EDF+ example") << QByteArray("MCH-0234567 F 02-MAY-1951 Haagse_Harry")
                                  << kRecording << QByteArray("EDF+C")
                                  << "Haagse Harry|0|1951-05-02|MCH-0234567|Unit7|session two";
    QTest::newRow("no name: the whole field")
        << QByteArray("R17 M X X") << QByteArray("Startdate X X X X") << QByteArray("EDF+C")
        << "R17 M X X|1||R17||Startdate X X X X";
    QTest::newRow("plain EDF") << QByteArray("Rat 12 left") << QByteArray("Unit 7, session 2")
                               << QByteArray("") << "Rat 12 left|-1||||Unit 7, session 2";
    QTest::newRow("Quorvexia, CP1251 name") << QByteArray("\xca\xf0\xfb\xf1\xe0 \xb9"
                                                          "5")
                                            << QByteArray("Quorvexia 2.4") << QByteArray("")
                                            << QString::fromUtf8("Крыса №5|-1||||Quorvexia 2.4");
}

void TestEDFFixedHeader::identification()
{
    QFETCH(QByteArray, patient);
    QFETCH(QByteArray, recording);
    QFETCH(QByteArray, reserved);
    QFETCH(QString, expected);
    const PatientInfo p =
        EDFFixedHeader(header("0", patient, recording, "02.03.02", reserved)).identification();
    const QStringList found = {p.patientName,
                               QString::number(p.gender),
                               QDate(p.birthYear, p.birthMonth, p.birthDay).toString(Qt::ISODate),
                               p.patientCode,
                               p.equipment,
                               p.recordingAdditional};
    QCOMPARE(found.join('|'), expected);
}

void TestEDFFixedHeader::genderFromSexSubfield_data()
{
    QTest::addColumn<QString>("sex");
    QTest::addColumn<int>("gender");
    const QList<QPair<const char *, int>> rows = {
        {"Female", 0}, {"f", 0},    {"0", 0}, {"\xd0\x96", 0}, // Cyrillic capital Zhe
        {"M", 1},      {"male", 1}, {"1", 1}, {"\xd0\xbc", 1}, // Cyrillic em
        {"X", -1},     {"Q", -1},   {"", -1}};
    for (const auto &row : rows)
        QTest::newRow(row.first) << QString::fromUtf8(row.first) << row.second;
}

void TestEDFFixedHeader::genderFromSexSubfield()
{
    QFETCH(QString, sex);
    QFETCH(int, gender);
    const QByteArray patient = "X " + (sex.isEmpty() ? QByteArray("X") : sex.toUtf8()) + " X Rat";
    QCOMPARE(EDFFixedHeader(header("0", patient, kRecording)).identification().gender, gender);
}

QTEST_GUILESS_MAIN(TestEDFFixedHeader)
#include "tst_edffixedheader.moc"
