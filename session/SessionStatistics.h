#pragma once

#include <QJsonObject>
#include <QList>
#include <QStringList>

class CorvidaExperiment;
class CorvidaSettings;

// The result of a session: mean and standard deviation of SBP, DBP, MAP and heart rate over the
// accepted measurement cycles (acclimation cycles never count), and the flags that tell the
// operator to repeat the day: too few accepted cycles, too large a spread of SBP, a session that
// did not run to its end.
class SessionStatistics
{
public:
    struct Limits {
        int minAccepted = 5;
        double maxSBPSD = 10.0; // mmHg
    };

    // One cycle as the statistics see it.
    struct Cycle {
        int cycle = 0;
        bool acclimation = false;
        bool accepted = false;
        double sbp = 0.0;
        double dbp = 0.0;
        double bpm = 0.0;
        static Cycle of(const CorvidaExperiment &record);
    };

    // Mean and sample standard deviation (n - 1); NaN where there are too few values.
    struct Measure {
        int n = 0;
        double mean = 0.0;
        double sd = 0.0;
        static Measure of(const QList<double> &values);
    };

    struct Summary {
        int total = 0; // measurement cycles
        int accepted = 0;
        Measure sbp, dbp, map, bpm;
        bool flagged = false;
        QStringList flags;
        QJsonObject toJson() const;
    };

    SessionStatistics() = default;
    explicit SessionStatistics(const Limits &limits)
        : m_limits(limits)
    {}
    static Limits limitsFrom(const CorvidaSettings &settings);

    // `planned` is the number of measurement cycles the session was to run (0: unknown); fewer
    // finished ones flag the session as incomplete.
    Summary summarize(const QList<Cycle> &cycles, int planned = 0) const;

    // A number for JSON: null when it is not a finite number.
    static QJsonValue jsonNumber(double v);

private:
    Limits m_limits;
};
