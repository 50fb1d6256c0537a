#include "storage/EDFFixedHeader.h"

#include <QtTest>

namespace {
// A fixed header laid out by hand: the fields the check looks at, the rest plausible.
QByteArray header(const QByteArray &version, const QByteArray &patient, const QByteArray &recording,
                  const QByteArray &startDate = "02.03.02", const QByteArray &reserved = "EDF+C")
{
    const auto field = [](const QByteArray &t, int w) { return t.leftJustified(w, ' ', true); };
    return field(version, 8) + field(patient, 80) + field(recording, 80) + field(startDate, 8) +
           field("14.05.09", 8) + field("768", 8) + field(reserved, 44) + field("1", 8) +
           field("1", 8) + field("2", 4);
}
} // namespace

class TestEDFFixedHeader : public QObject
{
    Q_OBJECT
private slots:
    void findings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<int>>("expected");
        using F = EDFFixedHeader;
        QTest::newRow("255 without BIOSEMI")
            << header(QByteArray(1, '\xff') + "BIOSEMX", "X X X X", "X") << QList<int>{};
        QTest::newRow("all at once")
            << header("\x01", "\xe9", "\xe9", "\xe9")
            << QList<int>{F::File2, F::File3, F::PatientName, F::Recording, F::StartDate};
    }

    void findings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QList<int>, expected);
        const EDFFixedHeader fixed(bytes);
        QList<int> found;
        for (EDFFixedHeader::Finding f : fixed.findings())
            found.append(int(f));
        QCOMPARE(found, expected);
        QCOMPARE(fixed.isRejected(), expected.isEmpty()); // only the rejected row finds nothing
    }

    void repairKeepsSubfieldsAndSetsVersion()
    {
        const QByteArray bytes = // plain EDF, so a damaged start date falls back digit by digit
            header("1.0\x01", "R\xc3\xa4t M 01-JAN-2020 Kr\xc3\xbcger",
                   "Startdate 02-MAR-2002 \x01 X Unit7", "\x01\x01.1\x01.\x01\x01", "");
        const QByteArray fixed = EDFFixedHeader(bytes).repaired();
        QCOMPARE(fixed.left(8), QByteArray("0       "));
        QCOMPARE(fixed.mid(8, 80).trimmed(), QByteArray("R__t M 01-JAN-2020 Kr__ger"));
        QCOMPARE(fixed.mid(88, 80).trimmed(), QByteArray("Startdate 02-MAR-2002 _ X Unit7"));
        QCOMPARE(fixed.mid(168, 8), QByteArray("01.11.85"));
        QCOMPARE(fixed.mid(176), bytes.mid(176)); // the rest is untouched
    }

    void identification_data()
    {
        QTest::addColumn<QByteArray>("patient");
        QTest::addColumn<QByteArray>("recording");
        QTest::addColumn<QString>("expected"); // name|gender|birth|code|equipment|more
        QTest::newRow("EDF+ example")
            << QByteArray("MCH-0234567 F 02-MAY-1951 Haagse_Harry")
            << QByteArray("Startdate 02-MAR-2002 EMR99 Dr_Who Unit7 session two")
            << "Haagse Harry|0|1951-05-02|MCH-0234567|Unit7|session two";
        QTest::newRow("Quorvexia, CP1251 name")
            << QByteArray("\xca\xf0\xfb\xf1\xe0 \xb9\x35") << QByteArray("Quorvexia 2.4")
            << QString::fromUtf8("Крыса №5|-1||||Quorvexia 2.4");
    }

    void identification()
    {
        QFETCH(QByteArray, patient);
        QFETCH(QByteArray, recording);
        QFETCH(QString, expected);
        const QByteArray reserved = recording.startsWith("Startdate") ? "EDF+C" : ""; // EDF+ or not
        const PatientInfo p =
            EDFFixedHeader(header("0", patient, recording, "02.03.02", reserved)).identification();
        const QString birth = QDate(p.birthYear, p.birthMonth, p.birthDay).toString(Qt::ISODate);
        QCOMPARE(QStringList({p.patientName, QString::number(p.gender), birth}).join('|') + '|' +
                     QStringList({p.patientCode, p.equipment, p.recordingAdditional}).join('|'),
                 expected);
    }
};

QTEST_GUILESS_MAIN(TestEDFFixedHeader)
#include "tst_edffixedheader.moc"
