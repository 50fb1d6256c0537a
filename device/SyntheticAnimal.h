#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <random>

// A simulated animal on the tail cuff, with a known truth: one measurement cycle as the unit
// records it (cuff pressure in mmHg and the processed pulse, 1000 samples per second), and the
// systolic and diastolic pressures and the heart rate it was made with. Seeded: the same preset,
// condition and seed give the same samples on every machine.
//
// The cycle: a short rest with the cuff open, inflation to a pressure well above the systolic
// pressure, then a linear deflation to 0 and a short rest.
//
// The pulse amplitude depends only on the cuff pressure p against the true SBP and DBP:
//   p >= SBP          0                       the artery stays closed all through the beat
//   DBP < p < SBP     (SBP - p) / (SBP - DBP) it opens for the part of each beat in which the
//                                             arterial pressure exceeds the cuff, which grows
//                                             linearly for a pressure wave rising and falling
//                                             linearly between DBP and SBP
//   p <= DBP          1                       open all through the beat: the plateau
// times the animal's full amplitude. So the pulse begins to return exactly when the cuff falls
// through SBP and stops growing exactly at DBP: those two moments are the truth.
//
// The heart beats at the preset's rate with beat-to-beat variability and a respiratory
// modulation of rate, amplitude and baseline; each beat is a PPG wave with a steep upstroke, a
// systolic peak and a smaller reflected wave.
class SyntheticAnimal
{
public:
    enum Preset { Mouse, Rat, HypertensiveRat };
    enum Condition {
        Clean,         // nothing added
        Noise,         // band-limited sensor noise on the pulse, more noise on the pressure
        ColdTail,      // a cold tail: the pulse is a tenth as large
        Movement,      // the animal moves: large slow swings of the pulse and pressure bumps
        Ectopic,       // premature beats followed by a compensatory pause
        SlowDeflation, // the cuff is let down at half the usual rate
        FastDeflation, // and at two and a half times the usual rate
        CurvedRise     // the pulse comes back along a curve, not a straight line (see below)
    };

    struct Parameters {
        double systolic = 0;       // mmHg
        double diastolic = 0;      // mmHg
        double heartRate = 0;      // beats per minute
        double variability = 0;    // beat-to-beat SD of the interval, as a fraction of it
        double breathingRate = 0;  // breaths per minute
        double breathingDepth = 0; // fraction by which breathing modulates rate and amplitude
        double amplitude = 0;      // full pulse amplitude (peak over valley), in pulse units
        double inflationRate = 0;  // mmHg per second
        double deflationRate = 0;  // mmHg per second
        double topPressure = 0;    // mmHg reached by inflation
        double restSeconds = 0;    // cuff open before inflation and after deflation
        double pulseNoise = 0;     // SD of the pulse noise, as a fraction of the amplitude
        double pressureNoise = 0;  // SD of the pressure noise, mmHg
        double ectopicShare = 0;   // share of beats that come early
        int movements = 0;         // number of movement artefacts
        // How the pulse comes back between SBP and DBP. 0: in a straight line. k > 0: the
        // artery is open for the part of each beat in which the arterial pressure, falling from
        // SBP to DBP as an exponential run-off over k time constants, is above the cuff; the
        // pulse then grows slowly just below SBP and fast near DBP.
        double riseCurvature = 0;
    };

    // What the cycle was made with, and where the cuff crossed the true pressures.
    struct Truth {
        QString preset;
        QString condition;
        quint32 seed = 0;
        double systolic = 0;     // mmHg
        double diastolic = 0;    // mmHg
        double heartRate = 0;    // beats per minute: 60 over the mean of all generated intervals
        double systolicTime = 0; // s: the cuff falls through SBP during deflation
        double diastolicTime = 0;
        int beats = 0;
    };

    struct Cycle {
        double samplingRate = 1000.0;
        QList<double> pressure; // mmHg
        QList<double> pulse;    // pulse units, as a record's Pulse series
        Truth truth;
    };

    SyntheticAnimal(Preset preset, Condition condition, quint32 seed);

    // Names as the command line takes them: "mouse", "rat", "hypertensive-rat"; "clean",
    // "noise", "cold-tail", "movement", "ectopic", "slow-deflation", "fast-deflation",
    // "curved-rise".
    static QStringList presetNames();
    static QStringList conditionNames();
    static bool presetFromName(const QString &name, Preset *preset);
    static bool conditionFromName(const QString &name, Condition *condition);
    static QString presetName(Preset preset);
    static QString conditionName(Condition condition);

    // The preset's animal with the condition applied; may be changed before generate().
    Parameters &parameters() { return m_parameters; }
    const Parameters &parameters() const { return m_parameters; }

    // The pulse amplitude as a fraction of the full amplitude at cuff pressure p (see above).
    static double relativeAmplitude(double p, double systolic, double diastolic,
                                    double riseCurvature = 0.0);
    // One beat's wave at phase 0 <= phase < 1, 0 at the start and the end, 1 at its peak.
    static double beatShape(double phase);

    // Makes the cycle. Each call continues the random sequence, so a second call gives the
    // next cycle of the same animal.
    Cycle generate();

private:
    double gauss();
    double uniform();

    Preset m_preset;
    Condition m_condition;
    quint32 m_seed;
    Parameters m_parameters;
    std::mt19937 m_random;
};
