#pragma once

#include <QList>

// Fits the pulse envelope of a deflation with three straight pieces, by least squares: a flat
// floor above the systolic pressure (the closed artery), a straight rise from there down to the
// diastolic pressure, and a flat plateau below it (the open artery):
//
//   amplitude(p) = floor                                         p >= systolic
//                  floor + (plateau - floor) (systolic - p) / (systolic - diastolic)
//                  plateau                                       p <= diastolic
//
// Every beat of the deflation weighs in, so the two corners are found from the whole envelope
// rather than from the first beats that stand out of the noise. The corners are searched on a
// grid of kStep mmHg; sums over the beats sorted by pressure make each try a few operations.
class EnvelopeHingeFit
{
public:
    struct Result {
        bool found = false;
        double systolic = 0.0;
        double diastolic = 0.0;
        double floor = 0.0;
        double plateau = 0.0;
    };

    // cuff and amplitudes describe the same beats. Corners are looked for with the systolic
    // pressure at most `top` and the diastolic at least kNarrowest below it.
    static Result fit(const QList<double> &cuff, const QList<double> &amplitudes, double top);

    static constexpr double kStep = 0.5;
    static constexpr double kNarrowest = 4.0;
    // No corner is looked for above this: no tail cuff goes higher, and a damaged recording's
    // absurd pressures must not make the grid endless.
    static constexpr double kHighestCorner = 400.0;
};
