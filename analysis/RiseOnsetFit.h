#pragma once

#include <QList>

// Where the pulse starts to come back, found by fitting the shape of its return.
//
// Between SBP and DBP the pulse amplitude need not grow in a straight line: if the arterial
// pressure spends most of each beat near its diastolic level, the pulse grows slowly just below
// SBP and fast near DBP. With the floor, the plateau and DBP already known, the rise is fitted as
//
//   amplitude(p) = floor + (plateau - floor) u^g,   u = (SBP - p) / (SBP - DBP), 0 <= u <= 1
//
// for g from 1 (a straight line) to 2.5, trying SBP every kStep mmHg, by least squares over the
// beats from 5 mmHg below DBP to 20 mmHg above the SBP tried.
class RiseOnsetFit
{
public:
    // cuff and amplitudes describe the same beats. SBP is looked for from `lowest` to `highest`;
    // returns 0 when there are too few beats to fit.
    static double systolic(const QList<double> &cuff, const QList<double> &amplitudes,
                           double floor, double plateau, double diastolic, double lowest,
                           double highest);

    static constexpr double kStep = 0.5;
};
