#pragma once

#include <QList>
#include <QPointF>

// The heart rate of the refined way: counted only over beats the open artery carries.
//
// While the cuff closes the tail artery the pulse sensor sees noise, and the peak finder can take
// some of its peaks for beats; their intervals, mixed with the real ones, make the mean rate too
// fast. Here only the beats at cuff pressures below the systolic point count (before inflation
// and after the pulse returns), and of those only beats of at least half the typical amplitude
// around them. Each interval between two kept beats is then read as a whole number of heartbeats
// (a missed beat leaves a double interval); intervals that are no whole number of the typical
// one (an extra peak between two beats) are left out. The rate is the beats counted over the
// time they span, so a premature beat and its compensatory pause weigh as the two beats they are.
class OpenArteryHeartRate
{
public:
    // amplitudes: (beat time in s, amplitude) of every beat, as the peak finder gives them;
    // pressure: the cuff pressure series; systolic: the systolic pressure in mmHg. Beats at or
    // above it are not used. Returns beats per minute, or 0 when fewer than kLeastBeats beats
    // remain to count.
    static double estimate(const QList<QPointF> &amplitudes, const QList<double> &pressure,
                           double samplingRate, double systolic);

    static constexpr int kLeastBeats = 10;
};
