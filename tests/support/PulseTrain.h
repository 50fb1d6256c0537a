#pragma once

#include <QList>

// A synthetic tail pulse wave with a known beat rate and known peak positions: a quick systolic
// upstroke over the first fifth of each cycle, a slower decay with a small dicrotic wave, plus
// optional white noise, a slow baseline wander and left-out beats.
namespace PulseTrain {

struct Options {
    double samplingRate = 1000.0;
    double beatsPerMinute = 450.0;
    double seconds = 10.0;
    double amplitude = 1.0;       // systolic peak above the end-diastolic level
    double offset = 0.0;          // baseline level
    double noise = 0.0;           // standard deviation of the white noise
    double wanderAmplitude = 0.0; // slow sinusoidal baseline wander
    double wanderFrequency = 0.2; // Hz
    QList<int> missingBeats;      // beat numbers (from 0) that are left out: the line stays flat
    unsigned seed = 1;
};

struct Train {
    QList<double> samples;
    QList<int> peaks; // nearest sample of every systolic peak that is present
};

Train make(const Options &options);

// Where the systolic peak lies within a cycle, as a fraction of the beat period.
constexpr double kPeakPhase = 0.2;

} // namespace PulseTrain
