// The writer is checked against the bytes on disk, read by the published layout (EDFRawFile),
// not through the library that wrote them.
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "storage/Montage.h"
#include "support/EDFRawFile.h"
#include "toolkit/LogCapture.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// Physical value of a digital sample by the EDF scaling rule.
double physical(const EDFRawFile &raw, int signal, int digital)
{
    const double pmin = raw.number(EDFRawFile::PhysMin, signal);
    const double pmax = raw.number(EDFRawFile::PhysMax, signal);
    const double dmin = raw.number(EDFRawFile::DigMin, signal);
    const double dmax = raw.number(EDFRawFile::DigMax, signal);
    return pmin + (digital - dmin) * (pmax - pmin) / (dmax - dmin);
}

double step(const EDFRawFile &raw, int signal)
{
    return (raw.number(EDFRawFile::PhysMax, signal) - raw.number(EDFRawFile::PhysMin, signal)) /
           (raw.number(EDFRawFile::DigMax, signal) - raw.number(EDFRawFile::DigMin, signal));
}

QList<float> ramp(int signalCount, int count)
{
    QList<float> data;
    for (int s = 0; s < signalCount; ++s)
        for (int i = 0; i < count; ++i)
            data.append(float(s * 100 + i % 100));
    return data;
}
} // namespace

class TestEDFWriter : public QObject
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(m_dir.isValid()); }

    void fileVariantFollowsSuffix_data();
    void fileVariantFollowsSuffix();
    void signalHeaderFields_data();
    void signalHeaderFields();
    void labelAndPrefilterTexts_data();
    void labelAndPrefilterTexts();
    void samplesAreStoredNegatedAndClamped_data();
    void samplesAreStoredNegatedAndClamped();
    void recordsAndRemainder_data();
    void recordsAndRemainder();
    void startedTwiceThenStopped();
    void unwritablePathFailsSilently();
    void impossibleLayoutIsRefused_data();
    void impossibleLayoutIsRefused();
    void malformedBlocksAreDroppedWithOneLine_data();
    void malformedBlocksAreDroppedWithOneLine();
    void markClockStopsDuringPause();
    void markWithoutStartTimeIsRefused();
    void labelsFromMontage();

private:
    QString file(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

void TestEDFWriter::fileVariantFollowsSuffix_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("bdf");
    QTest::newRow("edf") << "rec.edf" << false;
    QTest::newRow("upper-case BDF") << "rec.BDF" << true;
    QTest::newRow("bdf inside the name only") << "rec.bdf.edf" << false;
}

void TestEDFWriter::fileVariantFollowsSuffix()
{
    QFETCH(QString, name);
    QFETCH(bool, bdf);
    EDFWriter writer(file(name), QStringList{"A", "B"}, 10, {}, {10.0, 10.0});
    QVERIFY(writer.isOpen());
    writer.pauseRecord(); // a paused recording is still declared continuous
    writer.writeData(ramp(2, 10));
    QVERIFY(writer.close(true));

    const EDFRawFile raw(file(name));
    QVERIFY(raw.isValid());
    QCOMPARE(raw.isBdf(), bdf);
    QCOMPARE(raw.fixed(1, 7), bdf ? QByteArray("BIOSEMI") : QByteArray("       "));
    QCOMPARE(raw.fixed(192, 5), bdf ? QByteArray("BDF+C") : QByteArray("EDF+C"));
    QCOMPARE(raw.signalCount(), 4); // two annotation signals behind the data
    const QByteArray annotations = bdf ? "BDF Annotations " : "EDF Annotations ";
    QCOMPARE(raw.signalField(EDFRawFile::Label, 2), annotations);
    QCOMPARE(raw.signalField(EDFRawFile::Label, 3), annotations);
}

void TestEDFWriter::signalHeaderFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("declaredMin");
    QTest::addColumn<double>("declaredMax");
    QTest::addColumn<double>("writtenMin");
    QTest::addColumn<double>("writtenMax");
    QTest::newRow("edf keeps the range") << "a.edf" << -100.0 << 100.0 << -100.0 << 100.0;
    QTest::newRow("bdf widens a small range") << "a.bdf" << -100.0 << 100.0 << -65536.0 << 65535.0;
    QTest::newRow("bdf widens one side") << "a.bdf" << -70000.0 << 10.0 << -70000.0 << 65535.0;
}

void TestEDFWriter::signalHeaderFields()
{
    QFETCH(QString, name);
    QFETCH(double, declaredMin);
    QFETCH(double, declaredMax);
    QFETCH(double, writtenMin);
    QFETCH(double, writtenMax);
    ChannelDim channel(QStringLiteral("Pressure"));
    channel.physicalMinimum = declaredMin;
    channel.physicalMaximum = declaredMax;
    channel.physicalDimension = QStringLiteral("mmHg");
    channel.prefilter = {{QStringLiteral("HP"), 0.5f}, {QStringLiteral("LP"), 40.0f}};
    EDFWriter writer(file(name), QList<ChannelDim>{channel}, 250);
    writer.writeData(QList<float>(250, 1.0f));
    QVERIFY(writer.close(true));

    const EDFRawFile raw(file(name));
    QCOMPARE(raw.number(EDFRawFile::PhysMin, 0), writtenMin);
    QCOMPARE(raw.number(EDFRawFile::PhysMax, 0), writtenMax);
    // 16-bit digital range for both variants
    QCOMPARE(raw.number(EDFRawFile::DigMin, 0), -32768.0);
    QCOMPARE(raw.number(EDFRawFile::DigMax, 0), 32767.0);
    QCOMPARE(raw.signalField(EDFRawFile::Dimension, 0).trimmed(), QByteArray("mmHg"));
    QCOMPARE(raw.signalField(EDFRawFile::Prefilter, 0).trimmed(), QByteArray("HP:0.5Hz LP:40.0Hz"));
    QCOMPARE(raw.number(EDFRawFile::Samples, 0), 250.0);
    QCOMPARE(raw.fixed(244, 8).trimmed(), QByteArray("1")); // one second per record
}

void TestEDFWriter::labelAndPrefilterTexts_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QByteArray>("onDisk");
    QTest::newRow("20 characters cut to 15")
        << "ABCDEFGHIJKLMNOPQRST" << QByteArray("ABCDEFGHIJKLMNO");
    QTest::newRow("exactly 15") << "ABCDEFGHIJKLMNO" << QByteArray("ABCDEFGHIJKLMNO");
}

void TestEDFWriter::labelAndPrefilterTexts()
{
    QFETCH(QString, label);
    QFETCH(QByteArray, onDisk);
    {
        EDFWriter writer(file("l.edf"), QStringList{label}, 5, {}, {1.0});
        writer.writeData(QList<float>(5, 0.0f));
        QVERIFY(writer.close(true));
    }
    QCOMPARE(EDFRawFile(file("l.edf")).signalField(EDFRawFile::Label, 0).trimmed(), onDisk);

    // Eight Cyrillic letters are sixteen bytes in UTF-8, of which only eight are kept.
    const QString cyrillic = QString::fromUtf8("Давление");
    QCOMPARE(EDFWriter::labelHeader(cyrillic), cyrillic.toUtf8().left(8));
    QCOMPARE(EDFWriter::prefilterHeader({}), QByteArray("0"));
    QCOMPARE(
        EDFWriter::prefilterHeader({{QStringLiteral("LP"), 40.0f}, {QStringLiteral("HP"), 0.5f}}),
        QByteArray("HP:0.5Hz LP:40.0Hz "));
    QCOMPARE(EDFWriter::prefilterHeader({{QStringLiteral("BS"), 50.04f}}),
             QByteArray("BS:50.0Hz "));
}

void TestEDFWriter::samplesAreStoredNegatedAndClamped_data()
{
    QTest::addColumn<float>("sample");
    QTest::addColumn<double>("stored"); // physical value on disk
    QTest::newRow("positive is stored negative") << 1.5f << -1.5;
    QTest::newRow("between two steps") << 0.1234f << -0.1234;
    QTest::newRow("above the range clamps low") << 2000.0f << -1000.0;
    QTest::newRow("below the range clamps high") << -5000.0f << 1000.0;
}

void TestEDFWriter::samplesAreStoredNegatedAndClamped()
{
    QFETCH(float, sample);
    QFETCH(double, stored);
    EDFWriter writer(file("p.edf"), QStringList{"X"}, 4, {}, {1000.0});
    writer.writeData(QList<float>(4, sample));
    QVERIFY(writer.close(true));
    const EDFRawFile raw(file("p.edf"));
    // Rounded to the nearest step, not truncated.
    for (int i = 0; i < 4; ++i)
        QVERIFY2(qAbs(physical(raw, 0, raw.digital(0, i)) - stored) <= step(raw, 0) / 2 + 1e-9,
                 qPrintable(QString::number(physical(raw, 0, raw.digital(0, i)))));
}

void TestEDFWriter::recordsAndRemainder_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<int>("block");
    QTest::addColumn<bool>("writeRemainder");
    QTest::addColumn<int>("recordsOnDisk");
    QTest::addColumn<QList<int>>("announced");
    QTest::newRow("3.5 records") << 350 << 50 << true << 4 << QList<int>{1, 2, 3};
    QTest::newRow("blocks longer than a record") << 350 << 250 << true << 4 << QList<int>{1, 2, 3};
    QTest::newRow("remainder dropped") << 350 << 50 << false << 3 << QList<int>{1, 2, 3};
    QTest::newRow("whole records, no empty tail") << 300 << 100 << true << 3 << QList<int>{1, 2, 3};
    QTest::newRow("nothing still leaves one record") << 0 << 10 << true << 1 << QList<int>{};
}

void TestEDFWriter::recordsAndRemainder()
{
    QFETCH(int, samples);
    QFETCH(int, block);
    QFETCH(bool, writeRemainder);
    QFETCH(int, recordsOnDisk);
    QFETCH(QList<int>, announced);
    EDFWriter writer(file("r.edf"), QStringList{"A", "B"}, 100, {}, {1000.0, 1000.0});
    QSignalSpy duration(&writer, &EDFWriter::recordDurationChanged);
    for (int done = 0; done < samples; done += block) {
        const int n = qMin(block, samples - done);
        QList<float> data;
        for (int s = 0; s < 2; ++s)
            for (int i = 0; i < n; ++i)
                data.append(float(s == 0 ? 1 + (done + i) % 100 : -7));
        writer.writeData(data);
    }
    QCOMPARE(int(writer.getDurationSeconds()), announced.size());
    QVERIFY(writer.close(writeRemainder));

    QList<int> seen;
    for (const QList<QVariant> &args : std::as_const(duration))
        seen.append(args.at(0).toInt());
    QCOMPARE(seen, announced);

    const EDFRawFile raw(file("r.edf"));
    QCOMPARE(raw.recordCount(), recordsOnDisk);
    // The ramp survives every record boundary, and the padded tail is zero.
    const int onDisk = recordsOnDisk * 100;
    for (int i = 0; i < onDisk; ++i) {
        const bool written = i < samples && (writeRemainder || i < (samples / 100) * 100);
        const double expectA = written ? -(1 + i % 100) : 0.0;
        const double expectB = written ? 7.0 : 0.0;
        QVERIFY2(qAbs(physical(raw, 0, raw.digital(0, i)) - expectA) <= step(raw, 0),
                 qPrintable(QString::number(i)));
        QVERIFY2(qAbs(physical(raw, 1, raw.digital(1, i)) - expectB) <= step(raw, 1),
                 qPrintable(QString::number(i)));
    }
}

void TestEDFWriter::startedTwiceThenStopped()
{
    EDFWriter writer;
    writer.setPath(file("sub/folder/s.edf")); // folders are made on the way
    writer.setChannelLabels(QStringList{"A", "B", "C"});
    writer.setChannelPhysicalDimensions(QList<QPair<double, double>>{{-1, 1}, {0, 10}, {-5, 5}});
    writer.setInternalBuffSize(20, 3);
    QSignalSpy started(&writer, &EDFWriter::recordStarted);
    QSignalSpy stopped(&writer, &EDFWriter::recordStopped);
    QVERIFY(writer.open());
    QCOMPARE(started.count(), 2);
    QVERIFY(writer.close(true));
    QCOMPARE(stopped.count(), 1);
    QCOMPARE(stopped.at(0).at(0).toString(), file("sub/folder/s.edf"));
    QVERIFY(!writer.close(true)); // a second close changes nothing
    QCOMPARE(stopped.count(), 1);

    const EDFRawFile raw(file("sub/folder/s.edf"));
    QCOMPARE(raw.signalCount(), 5);
    QCOMPARE(raw.number(EDFRawFile::PhysMax, 1), 10.0);
    QCOMPARE(raw.number(EDFRawFile::Samples, 2), 20.0);
}

void TestEDFWriter::unwritablePathFailsSilently()
{
    QFile blocker(file("plain-file"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EDFWriter writer;
    writer.setPath(file("plain-file/x.edf"));
    writer.setChannelLabels(QStringList{"A"});
    writer.setInternalBuffSize(10, 1);
    QSignalSpy started(&writer, &EDFWriter::recordStarted);
    QVERIFY(!writer.open());
    QCOMPARE(started.count(), 0);
    writer.writeData(QList<float>(10, 1.0f)); // ignored, no crash
    QCOMPARE(writer.addAnnotation(QStringLiteral("x"), 10, 0), -1);
}

void TestEDFWriter::impossibleLayoutIsRefused_data()
{
    QTest::addColumn<int>("signalCount");
    QTest::addColumn<int>("samplesPerRecord");
    QTest::newRow("no signals") << 0 << 100;
    QTest::newRow("no samples") << 2 << 0;
    QTest::newRow("negative samples") << 2 << -5;
    QTest::newRow("absurd rate") << 6 << 100'000'000;
    QTest::newRow("more signals than EDF allows") << 1000 << 10;
}

void TestEDFWriter::impossibleLayoutIsRefused()
{
    QFETCH(int, signalCount);
    QFETCH(int, samplesPerRecord);
    LogCapture log;
    EDFWriter writer(file("i.edf"), QList<ChannelDim>(signalCount, ChannelDim("S")),
                     samplesPerRecord);
    QVERIFY(!writer.isOpen());
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(!QFile::exists(file("i.edf")));
    writer.writeData(QList<float>(100, 1.0f)); // ignored
    QVERIFY(!writer.close(true));
}

void TestEDFWriter::malformedBlocksAreDroppedWithOneLine_data()
{
    QTest::addColumn<QList<QList<float>>>("block");
    QTest::addColumn<QString>("line");
    QTest::newRow("one list for two signals")
        << QList<QList<float>>{QList<float>(5, 1.0f)}
        << "EDFWriter: Wrong number of channels provided - 1 , should be 2";
    QTest::newRow("three lists for two signals")
        << QList<QList<float>>{{1}, {2}, {3}}
        << "EDFWriter: Wrong number of channels provided - 3 , should be 2";
    QTest::newRow("second list shorter")
        << QList<QList<float>>{QList<float>(5, 1.0f), QList<float>(3, 1.0f)}
        << "EDFWriter: non homogenous data on channel 1 , it has length 3 , should be 5";
}

void TestEDFWriter::malformedBlocksAreDroppedWithOneLine()
{
    QFETCH(QList<QList<float>>, block);
    QFETCH(QString, line);
    EDFWriter writer(file("m.edf"), QStringList{"A", "B"}, 5, {}, {100.0, 100.0});
    writer.writeData(QList<QList<float>>{QList<float>(3, 10.0f), QList<float>(3, 20.0f)});
    LogCapture log;
    writer.writeData(block);
    QCOMPARE(log.lines(), QStringList{line});
    writer.writeData(QList<QList<float>>{QList<float>(2, 11.0f), QList<float>(2, 21.0f)});
    QCOMPARE(writer.getDurationSeconds(), 1.0f); // the bad block added nothing
    QVERIFY(writer.close(false));
    const EDFRawFile raw(file("m.edf"));
    QCOMPARE(raw.recordCount(), 1);
    QVERIFY(qAbs(physical(raw, 0, raw.digital(0, 3)) + 11.0) <= step(raw, 0));
    QVERIFY(qAbs(physical(raw, 1, raw.digital(1, 4)) + 21.0) <= step(raw, 1));
}

void TestEDFWriter::markClockStopsDuringPause()
{
    qint64 now = 1'700'000'000'000;
    EDFWriter writer(file("k.edf"), QStringList{"A"}, 10, {}, {10.0}, [&now] { return now; });
    writer.takeStartTime(now);
    now += 3000;
    writer.pauseRecord();
    now += 4000;
    QCOMPARE(writer.recordedTimeMs(), 3000); // the clock stands during the pause
    writer.continueRecord();
    now += 3000;
    const QPair<bool, qint64> mark = writer.addAnnotationR(QStringLiteral("mark"));
    QCOMPARE(mark, qMakePair(true, qint64(6000)));
    now += 500;
    QCOMPARE(writer.addAnnotation(QStringLiteral("now")), 6500);
    QCOMPARE(writer.addAnnotation(QStringLiteral("fixed"), 2500, -1), 2500);
    // The library lays marks into the records' annotation slots, one per annotation signal and
    // record; a one-record file would keep only two of these three.
    writer.writeData(QList<float>(70, 1.0f));
    QVERIFY(writer.close(true));

    EDFReader reader(file("k.edf"));
    QVERIFY(reader.open());
    const QMap<qint64, QString> expected{{2500, "fixed"}, {6000, "mark"}, {6500, "now"}};
    QCOMPARE(reader.getAnnotations(), expected);
}

void TestEDFWriter::markWithoutStartTimeIsRefused()
{
    qint64 now = 1'000'000;
    EDFWriter writer(file("n.edf"), QStringList{"A"}, 10, {}, {10.0}, [&now] { return now; });
    writer.resetStartTime();
    now += 1000;
    QCOMPARE(writer.addAnnotationR(QStringLiteral("x")), qMakePair(false, qint64(0)));
}

void TestEDFWriter::labelsFromMontage()
{
    Montage montage;
    montage.makeNewListFromFile({QStringLiteral("Pressure"), QStringLiteral("Pulse")});
    EDFWriter writer;
    writer.setChannelLabels(montage);
    QCOMPARE(writer.channels().size(), 2);
    QCOMPARE(writer.channels().at(1).label, QStringLiteral("Pulse"));
}

QTEST_GUILESS_MAIN(TestEDFWriter)
#include "tst_edfwriter.moc"
