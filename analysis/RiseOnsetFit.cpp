#include "analysis/RiseOnsetFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {
// Beats above the SBP tried that still count: enough floor for the fit to see the corner.
constexpr double kAbove = 20.0;
// And below DBP: a little plateau.
constexpr double kBelow = 5.0;
constexpr int kShapes = 6; // g = 1, 1.25, 1.5, 1.75, 2, 2.5
constexpr int kLeastBeats = 6;

// u^g for the six exponents, from square roots only (much cheaper than pow()).
void powers(double u, double out[kShapes])
{
    const double r = std::sqrt(u);
    const double q = std::sqrt(r);
    out[0] = u;
    out[1] = u * q;
    out[2] = u * r;
    out[3] = u * r * q;
    out[4] = u * u;
    out[5] = u * u * r;
}
} // namespace

double RiseOnsetFit::systolic(const QList<double> &cuff, const QList<double> &amplitudes,
                              double floor, double plateau, double diastolic, double lowest,
                              double highest)
{
    const double span = plateau - floor;
    if (!(span > 0) || !(highest > lowest))
        return 0.0;
    std::vector<double> p, y;
    const qsizetype n = std::min(cuff.size(), amplitudes.size());
    for (qsizetype k = 0; k < n; ++k) {
        if (cuff[k] >= diastolic - kBelow && cuff[k] <= highest + kAbove) {
            p.push_back(cuff[k]);
            y.push_back(amplitudes[k]);
        }
    }
    if (p.size() < size_t(kLeastBeats))
        return 0.0;
    double best = 0.0;
    double bestError = INFINITY;
    for (double sys = std::max(lowest, diastolic + 2.0 * kStep); sys <= highest; sys += kStep) {
        double error[kShapes] = {0, 0, 0, 0, 0, 0};
        double shape[kShapes];
        for (size_t k = 0; k < p.size(); ++k) {
            if (p[k] > sys + kAbove)
                continue;
            const double u = std::clamp((sys - p[k]) / (sys - diastolic), 0.0, 1.0);
            powers(u, shape);
            for (int g = 0; g < kShapes; ++g) {
                const double d = y[k] - floor - span * shape[g];
                error[g] += d * d;
            }
        }
        for (double e : error) {
            if (e < bestError) {
                bestError = e;
                best = sys;
            }
        }
    }
    return best;
}
