#pragma once

#include <QList>

// Before the cuff is inflated the animal must show a pulse: with a cold tail or a tail out of
// the sensor, the cycle can only fail. The gate looks at the last seconds of the live pulse and
// says whether its beats are regular, at a rodent's rate and strong enough.
class PulseGate
{
public:
    struct Limits {
        double minAmplitude = 0.02; // median beat height, in the units of the live pulse
        double minHeartRate = 250.0;
        double maxHeartRate = 750.0;
        double maxIrregularPercent = 25.0;
    };

    struct Assessment {
        bool open = false;
        int beats = 0;
        double heartRate = 0.0; // beats per minute, 0 when none
        double amplitude = 0.0; // median peak-to-valley height of the beats
        double irregularPercent = 100.0;
    };

    PulseGate() = default;
    explicit PulseGate(const Limits &limits)
        : m_limits(limits)
    {}
    const Limits &limits() const { return m_limits; }

    // Judges a stretch of pulse (a few seconds are enough) sampled at `samplingRate`.
    Assessment assess(const QList<double> &pulse, double samplingRate) const;

private:
    Limits m_limits;
};
