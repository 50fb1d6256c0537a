#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "support/EDFRawFile.h"
#include "toolkit/LogCapture.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {
const QString kFormatError = QStringLiteral(
    "EDFReader: the file is not EDF(+) or BDF(+) compliant\r\n(it contains format errors)");

// Three signals, 100 samples per second, 3.5 s: signal s holds s*10 + i/10. Two marks at 1.5 s.
void writeStandard(const QString &path)
{
    EDFWriter writer(path, QStringList{"Pressure", "Pulse", "IR"}, 100,
                     {{QStringLiteral("HP"), 0.5f}, {QStringLiteral("LP"), 40.0f}},
                     {1000.0, 1000.0, 1000.0});
    PatientInfo p;
    p.patientName = QStringLiteral("Ivan Petrov");
    p.gender = 1;
    p.birthYear = 2024;
    p.birthMonth = 2;
    p.birthDay = 29;
    p.startYear = 2026;
    p.startMonth = 11;
    p.startDay = 21;
    p.startHour = 14;
    p.startMinute = 5;
    p.startSecond = 9;
    writer.setPatientInfo(p);
    QList<float> data;
    for (int s = 0; s < 3; ++s)
        for (int i = 0; i < 350; ++i)
            data.append(float(s * 10 + i / 10.0));
    writer.writeData(350, data.constData());
    writer.addAnnotation(QStringLiteral("SBP"), 1500, -1);
    writer.addAnnotation(QStringLiteral("second"), 1500, -1);
    writer.close(true);
}

QSet<QString> repairedCopies()
{
    const QStringList names =
        QDir(QDir::tempPath()).entryList({QStringLiteral("corvida-*.edf")}, QDir::Files);
    return QSet<QString>(names.cbegin(), names.cend());
}
} // namespace

class TestEDFReader : public QObject
{
    Q_OBJECT
private slots:
    // Reads that ask for what is not there give zeros, never a crash or another signal's samples.
    void readsOutsideTheFileGiveZeros()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("std.edf"));
        writeStandard(path);
        EDFReader reader(path);
        QVERIFY(reader.open());
        const QList<double> zeros(10, 0.0);
        QCOMPARE(reader.getChannelData(3, 0, 10), zeros); // past the last signal
        QCOMPARE(reader.getChannelData(-1, 0, 10), zeros);
        QCOMPARE(reader.getChannelData(0, 400, 10), zeros); // past the end
        QVERIFY(std::fabs(reader.getChannelData(1, 340, 1).value(0) - 44.0) < 0.05);
        reader.close();
        QCOMPARE(reader.getChannelData(0, 0, 10), zeros); // closed
    }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("range");
        QTest::addColumn<double>("stepSize"); // one digital step of the range on disk
        QTest::newRow("edf, small range") << "a.edf" << 10.0 << 20.0 / 65535;
        QTest::newRow("bdf, wider than the minimum") << "a.BDF" << 200000.0 << 400000.0 / 65535;
    }

    void roundTrip()
    {
        QFETCH(QString, name);
        QFETCH(double, range);
        QFETCH(double, stepSize);
        const int rate = 250;
        const int samples = rate * 2 + 77;
        // A sine within the range and a ramp that runs out of it on both sides.
        QList<float> sine, ramp;
        for (int i = 0; i < samples; ++i) {
            sine.append(float(0.9 * range * std::sin(i * 0.05)));
            ramp.append(float(-2.0 * range + 4.0 * range * i / samples));
        }
        {
            EDFWriter writer(file(name), QStringList{"Sine", "Ramp"}, rate, {}, {range, range});
            for (int at = 0; at < samples; at += 50) {
                const int n = qMin(50, samples - at);
                writer.writeData(QList<QList<float>>{sine.mid(at, n), ramp.mid(at, n)});
            }
            QVERIFY(writer.close(true));
        }
        EDFReader reader(file(name));
        QVERIFY(reader.open());
        QCOMPARE(reader.samplesInFile(), qint64(3 * rate)); // 2.3 s padded to 3 records
        QVector<double> both(2 * samples);
        QCOMPARE(reader.getBuffData(0, samples, both.data()), 0);
        const double widest =
            name.endsWith(QLatin1String("bdf"), Qt::CaseInsensitive) ? qMax(range, 65535.0) : range;
        for (int i = 0; i < samples; ++i) {
            QVERIFY2(qAbs(both.at(i) - sine.at(i)) <= stepSize, qPrintable(QString::number(i)));
            const double clamped = qBound(-widest, double(ramp.at(i)), widest);
            QVERIFY2(qAbs(both.at(samples + i) - clamped) <= stepSize + 1e-9 * widest,
                     qPrintable(QString::number(i)));
        }
    }

    void identificationAndPrefilter()
    {
        writeStandard(file("id.edf"));
        EDFReader reader(file("id.edf"));
        QVERIFY(reader.open());
        const PatientInfo p = reader.patientInfo();
        QCOMPARE(p.patientName, QStringLiteral("Ivan Petrov"));
        QCOMPARE(p.gender, 1);
        QCOMPARE(QDate(p.birthYear, p.birthMonth, p.birthDay), QDate(2024, 2, 29));
        QCOMPARE(reader.startDateTime(),
                 QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::LocalTime));
        QCOMPARE(reader.prefilter(),
                 (PrefilterMap{{QStringLiteral("HP"), 0.5f}, {QStringLiteral("LP"), 40.0f}}));
        // Marks at the same millisecond are all kept, in the order they were written.
        QCOMPARE(reader.getAnnotations().values(), (QStringList{"SBP", "second"}));
        QCOMPARE(reader.getAnnotations().firstKey(), 1500);
    }

    void eightBitPatientNameIsRepairedOnACopy()
    {
        // Four bytes of UTF-8 in place of "Ivan": the library sees '_', we decode the original.
        const QByteArray find = "Ivan", replace = QString::fromUtf8("Ив").toUtf8();
        writeStandard(file("h.edf"));
        const int at = int(EDFRawFile(file("h.edf")).fixed(0, 256).indexOf(find));
        QVERIFY(at >= 0);
        QVERIFY(EDFRawFile::patch(file("h.edf"), at, replace));
        const QSet<QString> before = repairedCopies();
        {
            EDFReader reader(file("h.edf"));
            LogCapture log;
            QVERIFY(reader.open());
            QCOMPARE(log.lines(), QStringList{"EDF HEADER ERROR: PATIENT NAME"});
            QCOMPARE(reader.patientInfo().patientName, QString::fromUtf8("Ив Petrov"));
            QVERIFY(qAbs(reader.getChannelData(1, 100, 1).at(0) - 20.0) < 0.05);
            reader.close();
            QCOMPARE(repairedCopies() - before, QSet<QString>()); // the copy is gone on close
        }
        // The original is left as it was.
        QCOMPARE(EDFRawFile(file("h.edf")).fixed(at, replace.size()), replace);
    }

    void refusedFiles_data()
    {
        // at -1: remove the file; at 0: cut it to `bytes` (counted from the end if negative)
        QTest::addColumn<qint64>("at");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("line");
        QTest::newRow("missing") << qint64(-1) << QByteArray()
                                 << "EDFReader: can not open file, no such file or directory";
        QTest::newRow("shorter than the header")
            << qint64(0) << QByteArray("100") << "EDF HEADER ERROR: FILE 1";
        QTest::newRow("truncated data") << qint64(0) << QByteArray("-301") << kFormatError;
        QTest::newRow("record count absurd")
            << qint64(236) << QByteArray("99999999") << kFormatError;
        QTest::newRow("patient field without subfields")
            << qint64(8) << QByteArray("Ivan").leftJustified(80, ' ') << kFormatError;
    }

    void refusedFiles()
    {
        QFETCH(qint64, at);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, line);
        const QString path = file("bad.edf");
        writeStandard(path);
        QFile f(path);
        if (at < 0)
            QVERIFY(f.remove());
        else if (at == 0)
            QVERIFY(f.resize(bytes.toInt() < 0 ? f.size() + bytes.toInt() : bytes.toInt()));
        else
            QVERIFY(EDFRawFile::patch(path, at, bytes));
        EDFReader reader(path);
        LogCapture log;
        QVERIFY(!reader.open());
        QCOMPARE(log.lines(), QStringList{line});
    }

private:
    QString file(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEDFReader)
#include "tst_edfreader.moc"
