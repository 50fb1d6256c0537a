// Checked against the bytes on disk, read by the published layout, not by the writing library.
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "support/EDFRawFile.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

namespace {
// Distance of a stored sample from a physical value, in digital steps, by the EDF scaling rule.
double stepsOff(const EDFRawFile &raw, int signal, qint64 sample, double value)
{
    const double pmin = raw.number(EDFRawFile::PhysMin, signal);
    const double pmax = raw.number(EDFRawFile::PhysMax, signal);
    const double dmin = raw.number(EDFRawFile::DigMin, signal);
    const double dmax = raw.number(EDFRawFile::DigMax, signal);
    const double step = (pmax - pmin) / (dmax - dmin);
    return qAbs(pmin + (raw.digital(signal, sample) - dmin) * step - value) / step;
}
// How a sample became a stored step before the conversion was folded into the buffering: negated
// into a double first, then scaled, clamped and rounded half away from zero.
int previousDigital(float sample, double minimum, double maximum)
{
    const double negated = -double(sample);
    const double scale = 65535.0 / (maximum - minimum);
    const double offset = maximum * scale - 32767.0;
    const double x = negated * scale - offset;
    const double low = -32768.0 < x ? x : -32768.0;
    const double clamped = low < 32767.0 ? low : 32767.0;
    return int(clamped + std::copysign(0.5, clamped));
}

int previousDigital(float sample, double range)
{
    return previousDigital(sample, -range, range);
}

// A recording that touches every way samples reach the writer: the three writeData forms, blocks
// shorter and longer than a record, NaN, infinities, values beyond the range and exactly between
// two steps, marks in several records, and a short last record. Everything that could vary
// between runs (the clock, the start time) is fixed, so the file comes out the same every time.
void writeReferenceRecording(const QString &path)
{
    const QList<double> ranges = {1000.0, 3.5, 8191.75};
    QList<ChannelDim> channels;
    for (int s = 0; s < ranges.size(); ++s) {
        ChannelDim c(QStringLiteral("Signal %1").arg(s), ranges.at(s),
                     {{QStringLiteral("LP"), 40.0f}});
        c.physicalDimension = s == 0 ? QStringLiteral("mmHg") : QStringLiteral("V");
        channels.append(c);
    }
    qint64 now = 1'763'000'000'000;
    EDFWriter writer(path, channels, 250, [&now] { return now; });
    PatientInfo patient;
    patient.patientName = QStringLiteral("Rat 7");
    patient.equipment = QStringLiteral("CV-4 1234");
    patient.recordingAdditional = QStringLiteral("reference");
    patient.startYear = 2025;
    patient.startMonth = 11;
    patient.startDay = 13;
    patient.startHour = 9;
    patient.startMinute = 41;
    patient.startSecond = 5;
    patient.startMillisecond = 250;
    writer.setPatientInfo(patient);
    writer.takeStartTime(now);

    const float half = float(2000.0 / 65535.0 / 2.0);
    const QList<float> special = {std::numeric_limits<float>::quiet_NaN(),
                                  std::numeric_limits<float>::infinity(),
                                  -std::numeric_limits<float>::infinity(),
                                  1e30f,
                                  -1e30f,
                                  0.0f,
                                  -0.0f,
                                  half,
                                  -half,
                                  3 * half,
                                  -1000.0f,
                                  1000.0f};
    constexpr int kSamples = 250 * 5 + 163;
    QRandomGenerator random(11);
    QList<QList<float>> samples(ranges.size());
    for (int i = 0; i < kSamples; ++i)
        for (int s = 0; s < ranges.size(); ++s)
            samples[s] << (i < special.size()
                               ? special[i] * float(s + 1)
                               : float((random.generateDouble() * 2.4 - 1.2) * ranges[s]));

    int form = 0;
    for (qsizetype done = 0, block = 1; done < kSamples; done += block, block += 37, ++form) {
        block = std::min<qsizetype>(block == 38 + 37 * 4 ? 600 : block, kSamples - done);
        QList<QList<float>> part;
        QList<float> flat;
        for (const QList<float> &signal : samples) {
            part << signal.mid(done, block);
            flat << part.last();
        }
        if (form % 3 == 0)
            writer.writeData(part);
        else if (form % 3 == 1)
            writer.writeData(flat);
        else
            writer.writeData(int(block), flat.constData());
        if (done == 0)
            writer.addAnnotation(QStringLiteral("SBP"), 1500, -1);
        now += 700;
        writer.addAnnotationR(QStringLiteral("cuff %1").arg(form));
    }
    writer.addAnnotation(QStringLiteral("DBP"), 4750, 200);
    writer.close(true);
}
} // namespace

class TestEDFWriter : public QObject
{
    Q_OBJECT
private slots:
    void headerFields_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("declaredMin");
        QTest::addColumn<double>("declaredMax");
        QTest::addColumn<double>("writtenMin");
        QTest::addColumn<double>("writtenMax");
        QTest::newRow("edf keeps the range") << "a.edf" << -100.0 << 100.0 << -100.0 << 100.0;
        QTest::newRow("bdf widens a small range")
            << "a.BDF" << -100.0 << 100.0 << -65536.0 << 65535.0;
        QTest::newRow("bdf widens one side") << "a.bdf" << -70000.0 << 10.0 << -70000.0 << 65535.0;
        QTest::newRow("bdf inside the name only") << "a.bdf.edf" << -10.0 << 10.0 << -10.0 << 10.0;
    }

    void headerFields()
    {
        QFETCH(QString, name);
        QFETCH(double, declaredMin);
        QFETCH(double, declaredMax);
        QFETCH(double, writtenMax);
        ChannelDim channel(QStringLiteral("PressureChannel1")); // 16 characters, 15 kept
        channel.physicalMinimum = declaredMin;
        channel.physicalMaximum = declaredMax;
        channel.prefilter = {{QStringLiteral("LP"), 40.0f}, {QStringLiteral("HP"), 0.5f}};
        EDFWriter writer(file(name), QList<ChannelDim>{channel}, 250);
        writer.pauseRecord(); // a paused recording is still declared continuous
        writer.writeData(QList<float>(250, 1.0f));
        QVERIFY(writer.close(true));

        const EDFRawFile raw(file(name));
        const bool bdf = writtenMax == 65535.0;
        QCOMPARE(raw.fixed(0, 8).toHex(), bdf ? "ff42494f53454d49" : "3020202020202020");
        QCOMPARE(raw.fixed(192, 5), bdf ? QByteArray("BDF+C") : QByteArray("EDF+C"));
        QCOMPARE(raw.signalField(EDFRawFile::Label, 2),
                 bdf ? "BDF Annotations " : "EDF Annotations ");
        QCOMPARE(raw.signalField(EDFRawFile::Label, 0).trimmed(), QByteArray("PressureChannel"));
        QTEST(raw.number(EDFRawFile::PhysMin, 0), "writtenMin");
        QCOMPARE(raw.number(EDFRawFile::PhysMax, 0), writtenMax);
        QCOMPARE(raw.signalField(EDFRawFile::Prefilter, 0).trimmed(),
                 QByteArray("HP:0.5Hz LP:40.0Hz"));
        QCOMPARE(raw.number(EDFRawFile::Samples, 0), 250.0); // one second per record
    }

    void cyrillicNameReachesOtherReadersReadable()
    {
        PatientInfo patient;
        patient.patientName = QStringLiteral("Крыса №12 Щука");
        patient.equipment = QStringLiteral("Ёж");
        EDFWriter writer(file("name.edf"), QList<ChannelDim>{ChannelDim(QStringLiteral("P"))}, 100);
        writer.setPatientInfo(patient);
        writer.writeData(QList<float>(100, 0.0f));
        QVERIFY(writer.close(true));
        // Only ASCII in the identification fields; the library joins words with "_".
        const EDFRawFile raw(file("name.edf"));
        const QByteArray identification = raw.fixed(8, 160);
        QVERIFY2(identification.contains("Krysa_No12_Shchuka"), identification.constData());
        QVERIFY2(identification.contains("Yozh"), identification.constData());
        for (const char c : identification)
            QVERIFY(uchar(c) >= 32 && uchar(c) < 127);
    }

    void samplesAreStoredNegatedAndClamped_data()
    {
        QTest::addColumn<float>("sample");
        QTest::addColumn<double>("stored"); // physical value on disk
        QTest::newRow("between two steps") << 0.1234f << -0.1234;
        QTest::newRow("above the range clamps low") << 2000.0f << -1000.0;
        QTest::newRow("below the range clamps high") << -5000.0f << 1000.0;
    }

    void samplesAreStoredNegatedAndClamped()
    {
        QFETCH(float, sample);
        QFETCH(double, stored);
        EDFWriter writer(file("p.edf"), QStringList{"X"}, 4, {}, {1000.0});
        writer.writeData(QList<float>(4, sample));
        QVERIFY(writer.close(true));
        const EDFRawFile raw(file("p.edf"));
        for (int i = 0; i < 4; ++i) // rounded to the nearest step, not truncated
            QVERIFY(stepsOff(raw, 0, i, stored) <= 0.5 + 1e-9);
    }

    // Blocks of odd lengths cross record boundaries; NaN, infinities, values beyond the range
    // and values exactly between two steps must land on the same steps as before.
    void storedStepsMatchThePreviousConversion()
    {
        const QList<double> ranges = {1000.0, 3.5};
        EDFWriter writer(file("steps.edf"), QStringList{"P", "Q"}, 100, {}, ranges);
        const double half = 2000.0 / 65535.0 / 2.0; // half a step of the first signal
        const QList<float> special = {std::numeric_limits<float>::quiet_NaN(),
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(),
                                      1e30f,
                                      -1e30f,
                                      0.0f,
                                      -0.0f,
                                      float(half),
                                      float(-half),
                                      float(3 * half)};
        QRandomGenerator random(7);
        QList<float> samples[2];
        for (int i = 0; i < 1037; ++i) {
            for (int s = 0; s < 2; ++s) {
                const float v = i < special.size()
                                    ? special[i] * (s + 1)
                                    : float((random.generateDouble() * 2.4 - 1.2) * ranges[s]);
                samples[s] << v;
            }
        }
        for (qsizetype done = 0, block = 1; done < samples[0].size(); done += block, block += 13) {
            block = std::min(block, samples[0].size() - done);
            writer.writeData({samples[0].mid(done, block), samples[1].mid(done, block)});
        }
        QVERIFY(writer.close(true));
        const EDFRawFile raw(file("steps.edf"));
        QCOMPARE(raw.recordCount(), 11);
        for (int s = 0; s < 2; ++s) {
            for (int i = 0; i < 1100; ++i) {
                const int expected = i < samples[s].size()
                                         ? previousDigital(samples[s][i], ranges[s])
                                         : previousDigital(0.0f, ranges[s]);
                QCOMPARE(raw.digital(s, i), expected);
            }
        }
    }

    // The bytes of files written before the writer was made faster, kept in the test data. A
    // faster path that moved one sample by one step, or changed how a record or a mark is laid
    // down, shows up here as a changed byte.
    void fileBytesStayAsTheEarlierWriterWroteThem_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("EDF+") << "reference.edf";
        QTest::newRow("BDF+") << "reference.bdf";
    }

    void fileBytesStayAsTheEarlierWriterWroteThem()
    {
        QFETCH(QString, name);
        QFile expected(QFINDTESTDATA(QStringLiteral("data/edf/") + name));
        QVERIFY2(expected.open(QIODevice::ReadOnly), qPrintable(expected.fileName()));
        writeReferenceRecording(file(name));
        QFile written(file(name));
        QVERIFY(written.open(QIODevice::ReadOnly));
        const QByteArray before = expected.readAll();
        const QByteArray after = written.readAll();
        QCOMPARE(after.size(), before.size());
        for (qsizetype i = 0; i < before.size(); ++i)
            QVERIFY2(after.at(i) == before.at(i), qPrintable(QStringLiteral("byte %1").arg(i)));
    }

    // Samples are converted several at a time; a value in the wrong lane, or a NaN, an infinity
    // or a tie between two steps treated differently there, lands on another step. Every kind of
    // float, at every position of a block, must come out as the one-by-one conversion has it.
    void anyFloatLandsOnThePreviousStep_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("minimum"); // as the header declares it
        QTest::addColumn<double>("maximum");
        QTest::newRow("EDF+") << "any.edf" << -1000.0 << 1000.0;
        QTest::newRow("BDF+") << "any.bdf" << -65536.0 << 65535.0;
    }

    void anyFloatLandsOnThePreviousStep()
    {
        QFETCH(QString, name);
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        constexpr int kRate = 1000;
        constexpr int kSamples = 20 * kRate;
        const float step = float(2000.0 / 65535.0);
        const QList<float> special = {std::numeric_limits<float>::quiet_NaN(),
                                      -std::numeric_limits<float>::quiet_NaN(),
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(),
                                      std::numeric_limits<float>::denorm_min(),
                                      -0.0f,
                                      0.0f,
                                      step / 2,
                                      -step / 2,
                                      step * 1.5f,
                                      1000.0f,
                                      -1000.0f,
                                      65535.0f,
                                      -65536.0f,
                                      65536.0f,
                                      3e38f};
        QRandomGenerator random(23);
        QList<float> samples;
        for (int i = 0; i < kSamples; ++i) {
            const int kind = i % 4;
            float v;
            if (kind == 0) // each special value in turn meets every position in a group of four
                v = special.at((i / 4 + i / (4 * special.size())) % special.size());
            else if (kind == 1) { // any bit pattern at all
                const quint32 bits = random.generate();
                std::memcpy(&v, &bits, sizeof v);
            } else // inside and just beyond the range
                v = float((random.generateDouble() * 2.2 - 1.1) * maximum);
            samples << v;
        }
        EDFWriter writer(file(name), QStringList{"A"}, kRate, {}, {1000.0});
        // Blocks of 1 to 61 samples shift the groups of four against the record and leave a few
        // samples over at the end of most blocks.
        for (qsizetype done = 0, block = 1; done < kSamples; done += block, block = block % 61 + 1)
            writer.writeData(samples.mid(done, std::min(block, kSamples - done)));
        QVERIFY(writer.close(true));

        const EDFRawFile raw(file(name));
        QCOMPARE(raw.number(EDFRawFile::PhysMin, 0), minimum);
        QCOMPARE(raw.number(EDFRawFile::PhysMax, 0), maximum);
        for (int i = 0; i < kSamples; ++i) {
            if (raw.digital(0, i) != previousDigital(samples.at(i), minimum, maximum))
                QFAIL(qPrintable(QStringLiteral("sample %1 (%2) stored as %3 instead of %4")
                                     .arg(i)
                                     .arg(samples.at(i))
                                     .arg(raw.digital(0, i))
                                     .arg(previousDigital(samples.at(i), minimum, maximum))));
        }
    }

    void recordsAndRemainder_data()
    {
        QTest::addColumn<int>("samples");
        QTest::addColumn<int>("block");
        QTest::addColumn<bool>("writeRemainder");
        QTest::addColumn<int>("recordsOnDisk");
        QTest::newRow("blocks longer than a record") << 350 << 250 << true << 4;
        QTest::newRow("remainder dropped") << 350 << 50 << false << 3;
        QTest::newRow("nothing still leaves one record") << 0 << 10 << true << 1;
    }

    void recordsAndRemainder()
    {
        QFETCH(int, samples);
        QFETCH(int, block);
        QFETCH(bool, writeRemainder);
        QFETCH(int, recordsOnDisk);
        EDFWriter writer(file("r.edf"), QStringList{"A", "B"}, 100, {}, {1000.0, 1000.0});
        for (int done = 0; done < samples; done += block) {
            const int n = qMin(block, samples - done);
            QList<float> data;
            for (int i = 0; i < 2 * n; ++i)
                data.append(i < n ? float(1 + (done + i) % 100) : -7.0f);
            writer.writeData(data);
        }
        QVERIFY(writer.close(writeRemainder));

        const EDFRawFile raw(file("r.edf"));
        QCOMPARE(raw.recordCount(), recordsOnDisk);
        // The ramp survives every record boundary, and the padded tail is zero.
        for (int i = 0; i < recordsOnDisk * 100; ++i) {
            const bool written = i < samples && (writeRemainder || i < (samples / 100) * 100);
            QVERIFY(stepsOff(raw, 0, i, written ? -(1 + i % 100) : 0.0) <= 1);
            QVERIFY(stepsOff(raw, 1, i, written ? 7.0 : 0.0) <= 1);
        }
    }

    void impossibleLayoutIsRefused_data()
    {
        QTest::addColumn<int>("signalCount");
        QTest::addColumn<int>("samplesPerRecord");
        QTest::newRow("negative samples") << 2 << -5;
        QTest::newRow("more signals than EDF allows") << 1000 << 10;
    }

    void impossibleLayoutIsRefused()
    {
        QFETCH(int, signalCount);
        QFETCH(int, samplesPerRecord);
        EDFWriter writer(file("i.edf"), QList<ChannelDim>(signalCount, ChannelDim("S")),
                         samplesPerRecord);
        QVERIFY(!writer.isOpen());
        QVERIFY(!QFile::exists(file("i.edf")));
    }

    void markClockStopsDuringPause()
    {
        qint64 now = 1'700'000'000'000;
        EDFWriter writer(file("k.edf"), QStringList{"A"}, 10, {}, {10.0}, [&now] { return now; });
        writer.takeStartTime(now);
        now += 3000;
        writer.pauseRecord();
        now += 4000; // the clock stands during the pause
        writer.continueRecord();
        now += 3000;
        QCOMPARE(writer.addAnnotationR(QStringLiteral("mark")), qMakePair(true, qint64(6000)));
        now += 500;
        QCOMPARE(writer.addAnnotation(QStringLiteral("now")), 6500);
        QCOMPARE(writer.addAnnotation(QStringLiteral("fixed"), 2500, -1), 2500);
        // The library lays marks into the records' annotation slots, one per annotation signal and
        // record; a one-record file would keep only two of these three.
        writer.writeData(QList<float>(70, 1.0f));
        QVERIFY(writer.close(true));

        EDFReader reader(file("k.edf"));
        QVERIFY(reader.open());
        QCOMPARE(reader.getAnnotations(),
                 (QMap<qint64, QString>{{2500, "fixed"}, {6000, "mark"}, {6500, "now"}}));
    }

private:
    QString file(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEDFWriter)
#include "tst_edfwriter.moc"
