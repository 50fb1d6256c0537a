#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/VirtualCorvidaDevice.h"

#include <QtTest>
#include <cmath>

// A simulated unit playing a simulated animal: a measurement through the unit's own frame
// processing and the live recorder ends up with the animal's true pressures and heart rate.
class TestVirtualAnimal : public QObject
{
    Q_OBJECT

    struct Rig {
        VirtualCorvidaDevice device;
        LiveRecorder recorder{&device};
        qint64 now = 7'000'000;
        Rig()
        {
            device.setTickTimerActive(false);
            device.setClock([this] { return now; });
            recorder.experiment()->setClock([this] { return now; });
        }
        void run(int ms)
        {
            for (int t = 0; t < ms; t += 50) {
                now += 50;
                device.tick();
            }
        }
    };

private slots:
    void measurementFindsTheAnimalsTruth_data()
    {
        QTest::addColumn<QString>("animal");
        QTest::addColumn<int>("upper");
        QTest::newRow("mouse") << QStringLiteral("mouse") << 160;
        QTest::newRow("rat") << QStringLiteral("rat") << 170;
        QTest::newRow("hypertensive rat") << QStringLiteral("hypertensive-rat") << 230;
    }
    void measurementFindsTheAnimalsTruth()
    {
        QFETCH(QString, animal);
        QFETCH(int, upper);
        Rig rig;
        rig.device.setAnimal(animal);
        QCOMPARE(rig.device.animal(), animal);
        rig.device.setPressureLimits(30, upper);
        QVERIFY(rig.recorder.turnOn());
        rig.run(2000);
        QVERIFY(rig.recorder.measure());
        // Inflation, deflation at 10 mmHg/s to 0, and the rest after it.
        rig.run(int(1000 * (3.0 + upper / 100.0 + upper / 10.0)));
        QVERIFY(rig.recorder.abort());
        const SyntheticAnimal::Truth truth = rig.device.animalTruth();
        QCOMPARE(truth.preset, animal);

        CorvidaOnlineExperiment *record = rig.recorder.experiment();
        record->recalculate(true);
        // Unlike the test signal, the pulse comes back late enough for a systolic point.
        QVERIFY(record->getSBP() > 0);
        QVERIFY2(std::abs(record->getBPM() - truth.heartRate) < 0.02 * truth.heartRate,
                 qPrintable(QString::number(record->getBPM())));
        record->setMethod(CorvidaExperiment::refinedMethod());
        record->recalculate(true);
        QVERIFY2(std::abs(record->getSBP() - truth.systolic) < 5.0,
                 qPrintable(QString::number(record->getSBP())));
        QVERIFY2(std::abs(record->getDBP() - truth.diastolic) < 5.0,
                 qPrintable(QString::number(record->getDBP())));
    }

    void unknownOrEmptyNameGivesTheTestSignalBack()
    {
        VirtualCorvidaDevice device;
        device.setTickTimerActive(false);
        device.setAnimal(QStringLiteral("rat"));
        QCOMPARE(device.animal(), QStringLiteral("rat"));
        device.setAnimal(QStringLiteral("hamster"));
        QVERIFY(device.animal().isEmpty());
        device.setAnimal(QStringLiteral("rat"));
        device.setAnimal(QString());
        QVERIFY(device.animal().isEmpty());
    }

    // The test signal's units share one sine counter; animals do not share anything: two units
    // show two different animals, each at its own heart rate.
    void twoUnitsPlayTwoAnimalsEachAtItsOwnRate()
    {
        Rig a, b;
        a.device.setAnimal(QStringLiteral("rat"));
        b.device.setAnimal(QStringLiteral("rat"));
        QVERIFY(a.recorder.turnOn());
        QVERIFY(b.recorder.turnOn());
        for (int t = 0; t < 8000; t += 50) {
            a.run(50);
            b.run(50);
        }
        const QList<double> pa = a.recorder.experiment()->getPulse();
        const QList<double> pb = b.recorder.experiment()->getPulse();
        QVERIFY(pa.size() > 7000 && pb.size() > 7000);
        QVERIFY(pa != pb);
        for (Rig *rig : {&a, &b}) {
            rig->recorder.experiment()->recalculate(true);
            const double bpm = rig->recorder.experiment()->getBPM();
            QVERIFY2(std::abs(bpm - 360.0) < 0.03 * 360.0, qPrintable(QString::number(bpm)));
        }
    }
};

QTEST_GUILESS_MAIN(TestVirtualAnimal)
#include "tst_virtualanimal.moc"
