#include "device/SyntheticAnimal.h"

#include <QtTest>
#include <algorithm>
#include <cmath>

// The simulated animal is checked against what it says it is: the envelope of its pulse against
// the cuff pressure, its heart rate counted from the wave, the cuff's rates measured from the
// pressure, and the same samples for the same seed.
class TestSyntheticAnimal : public QObject
{
    Q_OBJECT

    using Animal = SyntheticAnimal;

    // Peak-to-peak of the pulse over [from, to) seconds.
    static double swing(const Animal::Cycle &c, double from, double to)
    {
        const auto first = c.pulse.cbegin() + qsizetype(from * c.samplingRate);
        const auto last = c.pulse.cbegin() + qsizetype(to * c.samplingRate);
        const auto [lo, hi] = std::minmax_element(first, last);
        return *hi - *lo;
    }

    // Least-squares slope of the pressure over [from, to) seconds, mmHg per second.
    static double pressureSlope(const Animal::Cycle &c, double from, double to)
    {
        double sx = 0, sy = 0, sxx = 0, sxy = 0;
        int n = 0;
        for (qsizetype i = qsizetype(from * c.samplingRate); i < qsizetype(to * c.samplingRate);
             ++i) {
            const double x = i / c.samplingRate;
            sx += x;
            sy += c.pressure[i];
            sxx += x * x;
            sxy += x * c.pressure[i];
            ++n;
        }
        return (n * sxy - sx * sy) / (n * sxx - sx * sx);
    }

private slots:
    void pulseEnvelopeFollowsTheCuffAgainstTrueSystolicAndDiastolic_data()
    {
        QTest::addColumn<int>("preset");
        QTest::newRow("mouse") << int(Animal::Mouse);
        QTest::newRow("rat") << int(Animal::Rat);
        QTest::newRow("hypertensive rat") << int(Animal::HypertensiveRat);
    }
    void pulseEnvelopeFollowsTheCuffAgainstTrueSystolicAndDiastolic()
    {
        QFETCH(int, preset);
        Animal animal(Animal::Preset(preset), Animal::Clean, 7);
        const Animal::Cycle c = animal.generate();
        const Animal::Truth &truth = c.truth;
        const double full = animal.parameters().amplitude;
        const double rate = animal.parameters().deflationRate;
        const double beat = 60.0 / truth.heartRate;
        // Two beats' worth of wave around a moment, so every window holds a whole beat.
        const auto around = [&](double t) { return swing(c, t - beat, t + beat); };

        // Occluded: 10 mmHg above SBP only breathing and noise are left.
        const double occluded = truth.systolicTime - 10.0 / rate;
        QVERIFY2(around(occluded) < 0.15 * full, qPrintable(QString::number(around(occluded))));
        // Halfway between SBP and DBP the pulse is half returned.
        const double half = around((truth.systolicTime + truth.diastolicTime) / 2);
        QVERIFY2(half > 0.4 * full && half < 0.7 * full, qPrintable(QString::number(half)));
        // Below DBP: the plateau, the full amplitude (breathing adds a little).
        for (double below : {5.0, 20.0, 40.0}) {
            const double plateau = around(truth.diastolicTime + below / rate);
            QVERIFY2(plateau > 0.9 * full && plateau < 1.25 * full,
                     qPrintable(QString::number(plateau)));
        }
        // The truth says where the cuff crossed the pressures.
        const auto at = [&](double t) { return c.pressure[qsizetype(t * c.samplingRate)]; };
        QVERIFY(std::abs(at(truth.systolicTime) - truth.systolic) < 1.5);
        QVERIFY(std::abs(at(truth.diastolicTime) - truth.diastolic) < 1.5);
    }

    void curvedRiseGrowsSlowlyAtFirstBetweenTheSameCorners()
    {
        Animal curved(Animal::Rat, Animal::CurvedRise, 7);
        const double k = curved.parameters().riseCurvature;
        QVERIFY(k > 0);
        const double sbp = 125, dbp = 85;
        QCOMPARE(Animal::relativeAmplitude(sbp, sbp, dbp, k), 0.0);
        QCOMPARE(Animal::relativeAmplitude(dbp, sbp, dbp, k), 1.0);
        double previous = 0.0;
        for (double p = sbp - 1; p > dbp; p -= 1.0) {
            const double straight = Animal::relativeAmplitude(p, sbp, dbp);
            const double bent = Animal::relativeAmplitude(p, sbp, dbp, k);
            QVERIFY2(bent < straight && bent > previous, qPrintable(QString::number(p)));
            previous = bent;
        }
        // The generated pulse follows it: halfway between the corners well under half returned.
        const Animal::Cycle c = curved.generate();
        const double beat = 60.0 / c.truth.heartRate;
        const double middle = (c.truth.systolicTime + c.truth.diastolicTime) / 2;
        const double half = swing(c, middle - beat, middle + beat);
        QVERIFY2(half < 0.45 * curved.parameters().amplitude, qPrintable(QString::number(half)));
    }

    void heartRateCountedFromTheWaveMatchesTheTruth_data()
    {
        QTest::addColumn<int>("preset");
        QTest::addColumn<double>("bpm");
        QTest::newRow("mouse") << int(Animal::Mouse) << 600.0;
        QTest::newRow("rat") << int(Animal::Rat) << 360.0;
        QTest::newRow("hypertensive rat") << int(Animal::HypertensiveRat) << 400.0;
    }
    void heartRateCountedFromTheWaveMatchesTheTruth()
    {
        QFETCH(int, preset);
        QFETCH(double, bpm);
        Animal animal(Animal::Preset(preset), Animal::Clean, 11);
        const Animal::Cycle c = animal.generate();
        // Upward crossings of half the amplitude over the plateau and the rest after it.
        const double level = animal.parameters().amplitude / 2;
        const qsizetype from = qsizetype(c.truth.diastolicTime * c.samplingRate);
        int crossings = 0;
        qsizetype firstCrossing = -1, lastCrossing = -1;
        for (qsizetype i = from + 1; i < c.pulse.size(); ++i) {
            if (c.pulse[i - 1] < level && c.pulse[i] >= level) {
                if (firstCrossing < 0)
                    firstCrossing = i;
                lastCrossing = i;
                ++crossings;
            }
        }
        QVERIFY(crossings > 20);
        const double counted =
            60.0 * (crossings - 1) * c.samplingRate / double(lastCrossing - firstCrossing);
        QVERIFY2(std::abs(counted - bpm) < 0.03 * bpm, qPrintable(QString::number(counted)));
        QVERIFY2(std::abs(c.truth.heartRate - bpm) < 0.02 * bpm,
                 qPrintable(QString::number(c.truth.heartRate)));
    }

    void cuffInflatesToTheTopAndDeflatesAtTheConditionsRate_data()
    {
        QTest::addColumn<int>("condition");
        QTest::addColumn<double>("rate");
        QTest::newRow("usual") << int(Animal::Clean) << 10.0;
        QTest::newRow("slow") << int(Animal::SlowDeflation) << 5.0;
        QTest::newRow("fast") << int(Animal::FastDeflation) << 25.0;
    }
    void cuffInflatesToTheTopAndDeflatesAtTheConditionsRate()
    {
        QFETCH(int, condition);
        QFETCH(double, rate);
        Animal animal(Animal::Rat, Animal::Condition(condition), 3);
        const Animal::Cycle c = animal.generate();
        const double top = *std::max_element(c.pressure.cbegin(), c.pressure.cend());
        QVERIFY(std::abs(top - animal.parameters().topPressure) < 2.0);
        const double slope = pressureSlope(c, c.truth.systolicTime, c.truth.diastolicTime);
        QVERIFY2(std::abs(slope + rate) < 0.02 * rate, qPrintable(QString::number(slope)));
        // The cycle ends with the cuff open.
        QVERIFY(c.pressure.last() < 1.0);
        QCOMPARE(c.samplingRate, 1000.0);
    }

    void conditionsChangeTheSignalAsNamed()
    {
        const Animal::Cycle clean = Animal(Animal::Mouse, Animal::Clean, 5).generate();
        const Animal::Cycle cold = Animal(Animal::Mouse, Animal::ColdTail, 5).generate();
        const double t = clean.truth.diastolicTime + 2.0;
        const double ratio = swing(cold, t, t + 1) / swing(clean, t, t + 1);
        QVERIFY2(ratio > 0.08 && ratio < 0.12, qPrintable(QString::number(ratio)));

        // Noise shows where the cuff hides the pulse.
        const Animal::Cycle noisy = Animal(Animal::Mouse, Animal::Noise, 5).generate();
        const double hidden = noisy.truth.systolicTime - 1.0;
        QVERIFY(swing(noisy, hidden, hidden + 0.5) > 3 * swing(clean, hidden, hidden + 0.5));

        // Movement swings the pulse far beyond its own amplitude somewhere in the deflation.
        Animal moving(Animal::Mouse, Animal::Movement, 5);
        const Animal::Cycle moved = moving.generate();
        const double start = moved.truth.systolicTime - 4.5;
        QVERIFY(swing(moved, start, moved.pulse.size() / 1000.0 - 1.6) >
                2.5 * moving.parameters().amplitude);
    }

    void sameSeedSameCycleOtherSeedOtherCycle()
    {
        const Animal::Cycle a = Animal(Animal::Rat, Animal::Noise, 42).generate();
        const Animal::Cycle b = Animal(Animal::Rat, Animal::Noise, 42).generate();
        QCOMPARE(a.pulse, b.pulse);
        QCOMPARE(a.pressure, b.pressure);
        QCOMPARE(a.truth.heartRate, b.truth.heartRate);
        QCOMPARE(a.truth.seed, 42u);
        const Animal::Cycle other = Animal(Animal::Rat, Animal::Noise, 43).generate();
        QVERIFY(other.pulse != a.pulse);
        // The next cycle of the same animal is a new one.
        Animal animal(Animal::Rat, Animal::Noise, 42);
        animal.generate();
        QVERIFY(animal.generate().pulse != a.pulse);
    }

    void namesRoundTripAndUnknownNamesAreRefused()
    {
        for (const QString &name : Animal::presetNames()) {
            Animal::Preset p;
            QVERIFY(Animal::presetFromName(name, &p));
            QCOMPARE(Animal::presetName(p), name);
        }
        for (const QString &name : Animal::conditionNames()) {
            Animal::Condition c;
            QVERIFY(Animal::conditionFromName(name, &c));
            QCOMPARE(Animal::conditionName(c), name);
        }
        Animal::Preset p;
        Animal::Condition c;
        QVERIFY(!Animal::presetFromName(QStringLiteral("hamster"), &p));
        QVERIFY(!Animal::presetFromName(QStringLiteral("Mouse"), &p));
        QVERIFY(!Animal::conditionFromName(QStringLiteral("warm"), &c));
    }
};

QTEST_GUILESS_MAIN(TestSyntheticAnimal)
#include "tst_syntheticanimal.moc"
