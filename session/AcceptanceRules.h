#pragma once

#include <QList>
#include <QPointF>
#include <QString>

class CorvidaExperiment;
class CorvidaSettings;

// Decides whether one cuff cycle of a session counts: both markers found, a heart rate and
// pressures a living animal can have, a regular beat (an animal that moves gives irregular
// beats and false markers) and a pulse seen before the cuff was inflated. A rejected cycle
// names every rule it broke, in words the operator reads in the lists.
class AcceptanceRules
{
public:
    struct Limits {
        double minHeartRate = 250.0; // beats per minute; one range for rats and mice
        double maxHeartRate = 750.0;
        double minSBP = 60.0; // mmHg
        double maxSBP = 250.0;
        double minDBP = 30.0;
        double maxDBP = 200.0;
        double minPulsePressure = 10.0;    // SBP - DBP, mmHg
        double maxIrregularPercent = 25.0; // share of beats off the usual beat interval
    };

    // What the rules look at, taken from a recalculated record.
    struct Facts {
        double sbp = 0.0;
        double dbp = 0.0;
        double bpm = 0.0;
        double irregularPercent = 0.0;
        bool pulseBefore = true;
    };

    struct Verdict {
        bool accepted = false;
        QString reason; // empty when accepted; the broken rules joined by "; " otherwise
    };

    AcceptanceRules() = default;
    explicit AcceptanceRules(const Limits &limits)
        : m_limits(limits)
    {}
    static Limits limitsFrom(const CorvidaSettings &settings);
    const Limits &limits() const { return m_limits; }

    Verdict judge(const Facts &facts) const;

    // The share (0..100) of beats whose rate differs by more than a fifth from the median rate,
    // over the heart-rate points at or after `fromTime` (the part of the cycle with a pulse).
    // 100 when fewer than three beats are there to compare.
    static double irregularPercent(const QList<QPointF> &heartRate, double fromTime);
    // The facts of a record whose markers and heart rate are calculated.
    static Facts factsOf(const CorvidaExperiment &record);

    // Judges the record and stores the automatic verdict in it (Accepted, Reason). A verdict of
    // the operator stays as it is. Does not write the record's file.
    Verdict apply(CorvidaExperiment &record) const;

private:
    Limits m_limits;
};
