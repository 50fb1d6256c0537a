#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "support/EDFRawFile.h"
#include "support/StandardRecording.h"
#include "toolkit/LogCapture.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <cstring>
#include <edflib.h>

namespace {
const QString kFormatError = QStringLiteral(
    "EDFReader: the file is not EDF(+) or BDF(+) compliant\r\n(it contains format errors)");

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
        QVERIFY(writeStandardRecording(path));
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

    // What the program reads is the library's physical value, negated, bit for bit: windows
    // inside one data record, across many, running past the end (zeros there), through every
    // reading call.
    void samplesAreTheLibrarysValuesNegatedBitForBit_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<qint64>("start");
        QTest::addColumn<int>("count");
        QTest::newRow("whole signal") << 0 << qint64(0) << 25000;
        QTest::newRow("inside one record") << 1 << qint64(1234) << 500;
        QTest::newRow("across records") << 2 << qint64(999) << 13333;
        QTest::newRow("one sample, last record") << 1 << qint64(24999) << 1;
        QTest::newRow("runs past the end") << 2 << qint64(20001) << 9000;
    }

    void samplesAreTheLibrarysValuesNegatedBitForBit()
    {
        QFETCH(int, signal);
        QFETCH(qint64, start);
        QFETCH(int, count);
        // 25 s at 1000 Hz, three signals; noise with steps on full and odd digital values.
        const int rate = 1000, samples = 25 * rate, signalCount = 3;
        const QString path = file(QStringLiteral("bits.edf"));
        {
            QList<float> data;
            quint32 x = 7;
            for (int s = 0; s < signalCount; ++s)
                for (int i = 0; i < samples; ++i) {
                    x = x * 1664525u + 1013904223u;
                    data.append(float(int(x >> 16) - 32768) / 32.0f * float(s + 1));
                }
            EDFWriter writer(path, QStringList{"A", "B", "C"}, rate, {}, {1000.0, 2000.0, 3000.0});
            writer.writeData(samples, data.constData());
            QVERIFY(writer.close(true));
        }
        // The library read on its own, the expectation.
        QList<double> expected(count, 0.0);
        {
            edf_hdr_struct header{};
            QCOMPARE(edfopen_file_readonly(path.toLocal8Bit().constData(), &header,
                                           EDFLIB_DO_NOT_READ_ANNOTATIONS),
                     0);
            QCOMPARE(edfseek(header.handle, signal, start, EDFSEEK_SET), start);
            const int got = edfread_physical_samples(header.handle, signal, count, expected.data());
            QCOMPARE(got, int(std::min<qint64>(count, samples - start)));
            for (int i = 0; i < got; ++i)
                expected[i] = -expected[i];
            edfclose_file(header.handle);
        }
        const auto sameBits = [&](const double *values, const char *call) {
            const int differing = int(
                std::mismatch(expected.cbegin(), expected.cend(), values,
                              [](double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; })
                    .first -
                expected.cbegin());
            QVERIFY2(differing == count,
                     qPrintable(QStringLiteral("%1 differs at %2").arg(call).arg(differing)));
        };

        EDFReader reader(path);
        QVERIFY(reader.open());
        sameBits(reader.getChannelData(signal, start, count).constData(), "getChannelData");
        QList<double> buffer(count, 99.0);
        QCOMPARE(reader.getChannelBuffData(signal, start, count, buffer.data()),
                 start + count <= samples ? 0 : -1);
        sameBits(buffer.constData(), "getChannelBuffData");
        QList<double> all(qsizetype(signalCount) * count, 99.0);
        // A short read stops the reading of all signals at the first one.
        if (start + count <= samples) {
            QCOMPARE(reader.getBuffData(start, count, all.data()), 0);
            sameBits(all.constData() + qsizetype(signal) * count, "getBuffData");
        } else {
            QCOMPARE(reader.getBuffData(start, count, all.data()), -1);
        }
        const QList<float> floats = reader.getChannelDataFloat(signal, start, count);
        QCOMPARE(floats.size(), count);
        for (int i = 0; i < count; ++i)
            QCOMPARE(floats[i], float(expected[i]));
    }

    void identificationAndPrefilter()
    {
        QVERIFY(writeStandardRecording(file("id.edf")));
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
        QVERIFY(writeStandardRecording(file("h.edf")));
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
        QVERIFY(writeStandardRecording(path));
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
