#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "device/VirtualCorvidaDevice.h"
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"

#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <random>

namespace {
// A live record filled with `n` samples of a slow ramp at the given rate.
void fill(CorvidaOnlineExperiment &e, double rate, int n, int pulseLength = -1)
{
    QList<double> pressure(n), pulse(pulseLength < 0 ? n : pulseLength);
    for (int i = 0; i < n; ++i)
        pressure[i] = 150.0 - i * 0.01;
    for (qsizetype i = 0; i < pulse.size(); ++i)
        pulse[i] = 0.3 * std::sin(i * 0.05);
    e.setSamplingRate(rate);
    e.updateData({pressure, pulse});
}

QStringList filesIn(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

// A whole measurement of the simulated unit between 120 and 30 mmHg: the cuff is inflated within
// a second and then falls by about 10 mmHg per second; the pulse comes back below the simulated
// systolic pressure of 120 mmHg after about 5 s. (With higher limits it comes back before the
// first 4 s, where no marker is believed.)
void recordSimulatedMeasurement(CorvidaOnlineExperiment &e, int seconds)
{
    VirtualCorvidaDevice device;
    qint64 now = 1'000'000;
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    device.setTickTimerActive(false);
    device.setClock([&now] { return now; });
    device.setRandomSource([&] { return uniform(rng); });
    QList<double> pressure, pulse;
    QObject::connect(&device, &BaseCorvidaDevice::pressurePulseData, &device,
                     [&](const QList<QList<float>> &f) {
                         pressure << QList<double>(f[0].cbegin(), f[0].cend());
                         pulse << QList<double>(f[1].cbegin(), f[1].cend());
                     });
    device.setPressureLimits(30, 120);
    device.startMeasuring();
    for (int t = 0; t < seconds * 20; ++t) {
        now += 50;
        device.tick();
    }
    e.setSamplingRate(1000);
    e.updateData({pressure, pulse});
}
} // namespace

class TestCorvidaExperiment : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void saveRefusesBadRecords_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("samples");
        QTest::addColumn<QString>("error");
        QTest::newRow("rate below 1") << 0.5 << 5000 << "Invalid sampling rate";
        QTest::newRow("under one second") << 1000.0 << 999 << "Experiment is too short";
        QTest::newRow("exactly one second") << 1000.0 << 1000 << "";
    }
    void saveRefusesBadRecords()
    {
        QFETCH(double, rate);
        QFETCH(int, samples);
        QFETCH(QString, error);
        QTemporaryDir dir;
        CorvidaOnlineExperiment e;
        fill(e, rate, samples);
        QString message;
        QCOMPARE(e.save(dir.path(), &message), error.isEmpty());
        QCOMPARE(message, error);
        QCOMPARE(filesIn(dir.path()).size(), error.isEmpty() ? 2 : 0);
    }
    void saveAndLoadRoundTrip()
    {
        QTemporaryDir dir;
        CorvidaOnlineExperiment live;
        fill(live, 1000, 20000, 15000); // series of different lengths: the shorter is written
        live.setRodent(QStringLiteral("rat 7"));
        live.setDBPTime(8.25);
        QString error;
        QVERIFY2(live.save(dir.path(), &error), qPrintable(error));
        const QString base = dir.filePath(live.baseFileName());
        QCOMPARE(live.getFilepath(), base + ".exp");
        // Only markers that are set become marks of the recording.
        {
            EDFReader reader(base + ".edf");
            QVERIFY(reader.open());
            QCOMPARE(reader.getAnnotations(), (QMap<qint64, QString>{{8250, "DBP"}}));
        }

        CorvidaExperiment stored(base + ".exp");
        QCOMPARE(stored.getRodent(), QStringLiteral("rat 7"));
        QCOMPARE(stored.getDBPTime(), 8.25);
        QCOMPARE(stored.getDBP(), live.getDBP());
        const QList<double> pressure = stored.getPressure(), pulse = stored.getPulse();
        QCOMPARE(pressure.size(), 15000);
        const QList<double> original = live.getPressure(), originalPulse = live.getPulse();
        // Within one digital step of each channel's range.
        const double pressureStep = 2 * 8191.75 / 65535, pulseStep = 2 * 1.799945068359375 / 65535;
        for (int i = 0; i < 15000; i += 97) {
            QVERIFY2(std::fabs(pressure[i] - original[i]) <= pressureStep,
                     qPrintable(QString::number(i)));
            QVERIFY(std::fabs(pulse[i] - originalPulse[i]) <= pulseStep);
        }

        // Edits of a saved record go to its ".exp" file by themselves.
        live.setComment(QStringLiteral("edited"));
        CorvidaExperiment again(base + ".exp");
        QCOMPARE(again.getComment(), QStringLiteral("edited"));
    }
    void marksFillMarkersMissingFromTheExpFile()
    {
        // An imported bare ".edf" with marks and no ".exp".
        QTemporaryDir dir;
        const QString edf = dir.filePath(QStringLiteral("bare.edf"));
        {
            EDFWriter writer(edf, {ChannelDim("Pressure", 8191.75), ChannelDim("Pulse", 1.8)},
                             1000);
            QVERIFY(writer.isOpen());
            QList<QList<float>> data(2, QList<float>(20000));
            for (int i = 0; i < 20000; ++i)
                data[0][i] = float(-(200.0 - i * 0.01)); // stored negated, see the record's save
            writer.writeData(data);
            QVERIFY(writer.addAnnotation(QStringLiteral("SBP"), 12345, -1) >= 0);
            QVERIFY(writer.close(true));
        }
        CorvidaExperiment e(dir.filePath(QStringLiteral("bare.exp")));
        QCOMPARE(e.getPressure().size(), 20000); // reading the series fills the markers
        QCOMPARE(e.getSBPTime(), 12.345);
        QVERIFY(std::fabs(e.getSBP() - (200.0 - 12345 * 0.01)) < 0.3);
        QCOMPARE(e.getDBPTime(), 0.0);
    }
    void failedSaveLeavesNothingAndKeepsTheRecord()
    {
        QTemporaryDir dir;
        CorvidaOnlineExperiment live;
        fill(live, 1000, 3000);
        QString error;
        // The ".exp" cannot be written (a folder stands in its place): no ".edf" is left either.
        QVERIFY(QDir(dir.path()).mkdir(live.baseFileName() + ".exp"));
        QVERIFY(!live.save(dir.path(), &error));
        QCOMPARE(filesIn(dir.path()), QStringList());
        QCOMPARE(live.getPressure().size(), 3000);
        QVERIFY(live.getFilepath().isEmpty());
        QVERIFY(QDir(dir.path()).rmdir(live.baseFileName() + ".exp"));
        QVERIFY(live.save(dir.path(), &error));
    }
    void simulatedMeasurementGivesItsSystolicPressure()
    {
        CorvidaOnlineExperiment e;
        recordSimulatedMeasurement(e, 14);
        e.recalculate(true);
        // The simulated pulse runs at 500 beats per minute.
        QVERIFY2(std::fabs(e.getBPM() - 500.0) < 10.0, qPrintable(QString::number(e.getBPM())));
        QVERIFY2(std::fabs(e.getSBP() - 120.0) < 8.0, qPrintable(QString::number(e.getSBP())));
        QVERIFY(e.getSBPTime() >= 4.0);
        // The diastolic point lies 15 to 50 mmHg below the systolic one, after it.
        QVERIFY2(e.getDBP() <= e.getSBP() - 15 && e.getDBP() >= e.getSBP() - 50,
                 qPrintable(QString::number(e.getDBP())));
        QVERIFY(e.getDBPTime() > e.getSBPTime());
    }
    void placedMarkerSurvivesRecalculation()
    {
        // Placing a marker on a stored record reads its series, which recalculates and fills the
        // missing markers: the placed one must win all the same, and again when recalculated.
        QTemporaryDir dir;
        CorvidaOnlineExperiment live;
        recordSimulatedMeasurement(live, 14);
        QVERIFY(live.save(dir.path()));
        CorvidaExperiment stored(live.getFilepath());
        stored.setSBPTime(9.0);
        QCOMPARE(stored.getSBPTime(), 9.0);
        QCOMPARE(stored.getSBP(), stored.pressureAt(9.0));
        QCOMPARE(CorvidaExperiment(live.getFilepath()).getSBPTime(), 9.0);
        stored.resetDBPTime();
        stored.recalculate(false);
        QCOMPARE(stored.getSBPTime(), 9.0);
        QCOMPARE(stored.getSBP(), stored.pressureAt(9.0));
        QVERIFY(stored.getDBPTime() > 0); // only the missing marker was filled in
    }
    void markerNotFoundHasNoPressure()
    {
        // Beats, but none regular after 4 s: both markers stay "not set", with no pressure taken
        // from the first sample (the cuff reads 100 mmHg there).
        CorvidaOnlineExperiment e;
        QList<double> pulse(10000);
        for (int i = 0; i < pulse.size(); ++i)
            pulse[i] = i < 3500 ? 0.3 * std::sin(2 * M_PI * 7.5 * i / 1000.0) : 0.0;
        e.setSamplingRate(1000);
        e.updateData({QList<double>(10000, 100.0), pulse});
        e.recalculate(true);
        QVERIFY(e.beats().size() > 2);
        QCOMPARE(e.getSBPTime(), 0.0);
        QCOMPARE(e.bpText(), QStringLiteral("?"));
    }
    void liveHeartRateAfterThreeSecondsAtMostOncePerSecond()
    {
        CorvidaOnlineExperiment e;
        qint64 now = 10'000;
        e.setClock([&now] { return now; });
        QSignalSpy rate(&e, &CorvidaOnlineExperiment::pulseCalculated);
        e.setSamplingRate(1000);
        e.updateData({QList<double>(3000, 1.0), QList<double>(3000, 0.0)});
        QCOMPARE(rate.count(), 0); // three seconds are not enough
        e.updateData({QList<double>(3001, 1.0), QList<double>(3001, 0.0)});
        QCOMPARE(rate.count(), 1);

        CorvidaOnlineExperiment source;
        recordSimulatedMeasurement(source, 14);
        const QList<QList<double>> data{source.getPressure(), source.getPulse()};
        now += 1000;
        e.updateData(data);
        QCOMPARE(rate.count(), 1);
        now += 1;
        e.updateData(data);
        QCOMPARE(rate.count(), 2);
        // The last three seconds are at full pulse: the simulated 500 beats per minute.
        QVERIFY(std::fabs(rate.last().first().toDouble() - 500.0) < 15.0);
    }
    // Records of a unit whose calibration was refused were listed and exported as mmHg.
    void uncalibratedRecordSaysSoInListAndExport()
    {
        QTemporaryDir marked, plain;
        CorvidaOnlineExperiment e;
        fill(e, 1000, 2000);
        e.setSBP(533.8);
        e.setDBP(410.2);
        e.setUncalibrated(true);
        QVERIFY(e.save(marked.path()));
        const QString expPath = e.getFilepath();
        QFile exp(expPath);
        QVERIFY(exp.open(QIODevice::ReadOnly));
        QVERIFY(exp.readAll().contains("<Uncalibrated>"));

        CorvidaExperiment back(expPath);
        QVERIFY(back.isUncalibrated());
        QCOMPARE(back.bpText(), QStringLiteral("534/410 (not calibrated)"));
        const QList<QList<QVariant>> rows = back.exportTable(false);
        QCOMPARE(rows[0][2].toString(), QStringLiteral("sensor units, not calibrated"));
        QVERIFY(rows[7][0].toString().endsWith(QStringLiteral("not calibrated")));

        // The same live record used again with a calibration leaves no trace of the mark.
        e.resetForNewRecording();
        e.setUncalibrated(false);
        fill(e, 1000, 2000);
        QVERIFY(e.save(plain.path()));
        QFile plainExp(e.getFilepath());
        QVERIFY(plainExp.open(QIODevice::ReadOnly));
        QVERIFY(!plainExp.readAll().contains("Uncalibrated"));
        QCOMPARE(CorvidaExperiment(e.getFilepath()).bpText().contains('('), false);
    }
};

QTEST_GUILESS_MAIN(TestCorvidaExperiment)
#include "tst_corvidaexperiment.moc"
