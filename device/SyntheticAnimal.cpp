#include "device/SyntheticAnimal.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace {
const char *const kPresetNames[] = {"mouse", "rat", "hypertensive-rat"};
const char *const kConditionNames[] = {"clean",          "noise",          "cold-tail",
                                       "movement",       "ectopic",        "slow-deflation",
                                       "fast-deflation", "curved-rise"};

// Where in its beat the systolic peak of the wave lies.
constexpr double kPeakPhase = 0.18;

SyntheticAnimal::Parameters presetParameters(SyntheticAnimal::Preset preset)
{
    SyntheticAnimal::Parameters p;
    // Values typical of conscious, restrained animals on a tail cuff.
    switch (preset) {
    case SyntheticAnimal::Mouse:
        p.systolic = 115;
        p.diastolic = 80;
        p.heartRate = 600;
        p.breathingRate = 150;
        p.amplitude = 0.5;
        break;
    case SyntheticAnimal::Rat:
        p.systolic = 125;
        p.diastolic = 85;
        p.heartRate = 360;
        p.breathingRate = 85;
        p.amplitude = 0.8;
        break;
    case SyntheticAnimal::HypertensiveRat:
        p.systolic = 185;
        p.diastolic = 130;
        p.heartRate = 400;
        p.breathingRate = 85;
        p.amplitude = 0.6;
        break;
    }
    p.variability = 0.02;
    p.breathingDepth = 0.03;
    p.inflationRate = 100;
    p.deflationRate = 10;
    // Well above the systolic pressure, as an operator sets the upper limit.
    p.topPressure = std::ceil((p.systolic + 45) / 10.0) * 10.0;
    p.restSeconds = 1.5;
    p.pulseNoise = 0.01;
    p.pressureNoise = 0.2;
    return p;
}

void applyCondition(SyntheticAnimal::Parameters &p, SyntheticAnimal::Condition condition)
{
    switch (condition) {
    case SyntheticAnimal::Clean:
        break;
    case SyntheticAnimal::Noise:
        p.pulseNoise = 0.15;
        p.pressureNoise = 1.0;
        break;
    case SyntheticAnimal::ColdTail:
        p.amplitude *= 0.1;
        break;
    case SyntheticAnimal::Movement:
        p.movements = 3;
        break;
    case SyntheticAnimal::Ectopic:
        p.ectopicShare = 0.08;
        break;
    case SyntheticAnimal::SlowDeflation:
        p.deflationRate *= 0.5;
        break;
    case SyntheticAnimal::FastDeflation:
        p.deflationRate *= 2.5;
        break;
    case SyntheticAnimal::CurvedRise:
        p.riseCurvature = 1.0;
        break;
    }
}
} // namespace

SyntheticAnimal::SyntheticAnimal(Preset preset, Condition condition, quint32 seed)
    : m_preset(preset)
    , m_condition(condition)
    , m_seed(seed)
    , m_parameters(presetParameters(preset))
    , m_random(seed)
{
    applyCondition(m_parameters, condition);
}

QStringList SyntheticAnimal::presetNames()
{
    QStringList names;
    for (const char *name : kPresetNames)
        names << QString::fromLatin1(name);
    return names;
}

QStringList SyntheticAnimal::conditionNames()
{
    QStringList names;
    for (const char *name : kConditionNames)
        names << QString::fromLatin1(name);
    return names;
}

bool SyntheticAnimal::presetFromName(const QString &name, Preset *preset)
{
    const int i = int(presetNames().indexOf(name));
    if (i < 0)
        return false;
    *preset = Preset(i);
    return true;
}

bool SyntheticAnimal::conditionFromName(const QString &name, Condition *condition)
{
    const int i = int(conditionNames().indexOf(name));
    if (i < 0)
        return false;
    *condition = Condition(i);
    return true;
}

QString SyntheticAnimal::presetName(Preset preset)
{
    return QString::fromLatin1(kPresetNames[preset]);
}

QString SyntheticAnimal::conditionName(Condition condition)
{
    return QString::fromLatin1(kConditionNames[condition]);
}

double SyntheticAnimal::relativeAmplitude(double p, double systolic, double diastolic,
                                         double riseCurvature)
{
    if (p >= systolic)
        return 0.0;
    if (p <= diastolic || systolic <= diastolic)
        return 1.0;
    if (riseCurvature <= 0.0)
        return (systolic - p) / (systolic - diastolic);
    const double x = (p - diastolic) / (systolic - diastolic); // 1 at SBP, 0 at DBP
    // The arterial pressure over a beat: DBP + (SBP - DBP) (e^(-t/tau) - e^(-k)) / (1 - e^(-k))
    // for t from 0 to k tau, so it starts at SBP and ends at DBP. The share of the beat in which
    // it is above the cuff:
    const double k = riseCurvature;
    const double tail = std::exp(-k);
    return -std::log(x * (1.0 - tail) + tail) / k;
}

double SyntheticAnimal::beatShape(double phase)
{
    if (phase <= 0.0 || phase >= 1.0)
        return 0.0;
    // A smooth upstroke to the peak, a falling limb to the next beat's foot, and the reflected
    // wave as a shoulder on the falling limb (small enough not to make a second peak).
    double main;
    if (phase < kPeakPhase)
        main = 0.5 * (1.0 - std::cos(M_PI * phase / kPeakPhase));
    else
        main = std::pow(1.0 - (phase - kPeakPhase) / (1.0 - kPeakPhase), 1.5);
    const double reflected = 0.12 * std::exp(-std::pow((phase - 0.45) / 0.1, 2));
    return main + reflected;
}

double SyntheticAnimal::uniform()
{
    // 32 random bits are plenty and the same on every standard library.
    return double(m_random()) / 4294967296.0;
}

double SyntheticAnimal::gauss()
{
    // Box-Muller by hand: the standard distributions differ between library makers, and a
    // seed must give the same animal everywhere.
    const double u1 = std::max(uniform(), 1e-12);
    const double u2 = uniform();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * M_PI * u2);
}

SyntheticAnimal::Cycle SyntheticAnimal::generate()
{
    const Parameters &p = m_parameters;
    Cycle cycle;
    const double fs = cycle.samplingRate;
    const double inflation = p.topPressure / p.inflationRate;
    const double deflation = p.topPressure / p.deflationRate;
    const double deflationStart = p.restSeconds + inflation;
    const double duration = deflationStart + deflation + p.restSeconds;
    const qsizetype n = qsizetype(duration * fs);

    Truth &truth = cycle.truth;
    truth.preset = presetName(m_preset);
    truth.condition = conditionName(m_condition);
    truth.seed = m_seed;
    truth.systolic = p.systolic;
    truth.diastolic = p.diastolic;
    truth.systolicTime = deflationStart + (p.topPressure - p.systolic) / p.deflationRate;
    truth.diastolicTime = deflationStart + (p.topPressure - p.diastolic) / p.deflationRate;

    const auto cuffAt = [&](double t) {
        if (t < p.restSeconds)
            return 0.0;
        if (t < deflationStart)
            return p.inflationRate * (t - p.restSeconds);
        return std::max(0.0, p.topPressure - p.deflationRate * (t - deflationStart));
    };

    // The beats: their feet and the amplitude each one gets.
    struct Beat {
        double start;
        double length;
        double amplitude;
    };
    QList<Beat> beats;
    const double meanInterval = 60.0 / p.heartRate;
    const double breathing = 2.0 * M_PI * p.breathingRate / 60.0;
    double t = -uniform() * meanInterval;
    double intervalSum = 0.0;
    int intervals = 0;
    bool compensate = false;
    double pending = 0.0;
    while (t < duration) {
        double interval = meanInterval * (1.0 + p.variability * gauss()) *
                          (1.0 + p.breathingDepth * std::sin(breathing * t));
        double strength = 1.0;
        if (compensate) {
            // The pause after a premature beat makes up for it: the two together last two
            // ordinary intervals, so the heart rate stays what it was.
            interval = 1.4 * pending;
            compensate = false;
        } else if (p.ectopicShare > 0 && uniform() < p.ectopicShare) {
            pending = interval;
            interval *= 0.6;
            strength = 0.6;
            compensate = true;
        }
        interval = std::max(interval, 0.3 * meanInterval);
        const double peak = t + kPeakPhase * interval;
        const double open =
            relativeAmplitude(cuffAt(peak), p.systolic, p.diastolic, p.riseCurvature);
        const double amplitude = p.amplitude * strength * open *
                                 (1.0 + p.breathingDepth * std::sin(breathing * peak));
        beats << Beat{t, interval, amplitude};
        if (t >= 0 && t + interval <= duration) {
            intervalSum += interval;
            ++intervals;
        }
        t += interval;
    }
    truth.beats = int(beats.size());
    truth.heartRate = intervals > 0 ? 60.0 * intervals / intervalSum : 0.0;

    // Movement artefacts fall somewhere in the deflation, where they hurt the detection most.
    struct Movement {
        double start;
        double length;
        double swing;
        double bump;
    };
    QList<Movement> movements;
    for (int m = 0; m < p.movements; ++m) {
        const double length = 0.4 + 0.6 * uniform();
        movements << Movement{deflationStart + uniform() * (deflation - length), length,
                              p.amplitude * (2.0 + 2.0 * uniform()), 3.0 + 5.0 * uniform()};
    }

    // Sensor noise as the unit's filters leave it: white noise through a 25 Hz low pass.
    const double alpha = 1.0 - std::exp(-2.0 * M_PI * 25.0 / fs);
    const double drive = p.pulseNoise * p.amplitude * std::sqrt((2.0 - alpha) / alpha);
    double noise = 0.0;

    cycle.pressure.resize(n);
    cycle.pulse.resize(n);
    double *pressure = cycle.pressure.data();
    double *pulse = cycle.pulse.data();
    qsizetype beat = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const double ti = double(i) / fs;
        while (beat + 1 < beats.size() && beats[beat].start + beats[beat].length <= ti)
            ++beat;
        const Beat &b = beats[beat];
        double value = b.amplitude * beatShape((ti - b.start) / b.length);
        // Breathing moves the tail's blood volume a little.
        value += 0.05 * p.amplitude * std::sin(breathing * ti);
        noise += alpha * (drive * gauss() - noise);
        value += noise;
        double cuff = cuffAt(ti) + p.pressureNoise * gauss();
        for (const Movement &m : std::as_const(movements)) {
            const double x = (ti - m.start) / m.length;
            if (x <= 0.0 || x >= 1.0)
                continue;
            const double window = std::sin(M_PI * x);
            value += m.swing * window * std::sin(2.0 * M_PI * 3.0 * (ti - m.start));
            cuff += m.bump * window;
        }
        pressure[i] = std::max(0.0, cuff);
        pulse[i] = value;
    }
    return cycle;
}
