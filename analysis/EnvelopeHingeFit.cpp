#include "analysis/EnvelopeHingeFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {
constexpr double kWildestPressure = 1000.0;
// Running sums over the beats sorted by pressure, one entry more than beats: entry i holds the
// sums over the i lowest pressures.
struct Sums {
    std::vector<double> n, p, pp, y, yp;
    void add(double pressure, double amplitude)
    {
        n.push_back(n.back() + 1);
        p.push_back(p.back() + pressure);
        pp.push_back(pp.back() + pressure * pressure);
        y.push_back(y.back() + amplitude);
        yp.push_back(yp.back() + amplitude * pressure);
    }
};
} // namespace

EnvelopeHingeFit::Result EnvelopeHingeFit::fit(const QList<double> &cuff,
                                               const QList<double> &amplitudes, double top)
{
    Result best;
    // Beats with a value that is no number, or at a pressure no working unit reports (a damaged
    // recording), cannot be placed; their squares would also swamp the sums of the others.
    std::vector<qsizetype> order;
    const qsizetype count = std::min(cuff.size(), amplitudes.size());
    for (qsizetype k = 0; k < count; ++k) {
        if (std::abs(cuff[k]) <= kWildestPressure && std::isfinite(amplitudes[k]))
            order.push_back(k);
    }
    if (order.size() < 6 || !(top > kNarrowest))
        return best;
    std::sort(order.begin(), order.end(),
              [&](qsizetype a, qsizetype b) { return cuff[a] < cuff[b]; });
    std::vector<double> pressure(order.size());
    Sums s{{0}, {0}, {0}, {0}, {0}};
    double yy = 0.0;
    for (size_t i = 0; i < order.size(); ++i) {
        pressure[i] = cuff[order[i]];
        s.add(cuff[order[i]], amplitudes[order[i]]);
        yy += amplitudes[order[i]] * amplitudes[order[i]];
    }
    // The grid of corner pressures, and how many beats lie at or below each.
    const double lowest = std::max(0.0, pressure.front());
    const double highest = std::min({top, pressure.back(), kHighestCorner});
    std::vector<double> level;
    std::vector<size_t> below;
    for (double at = lowest; at <= highest; at += kStep) {
        level.push_back(at);
        below.push_back(
            size_t(std::upper_bound(pressure.begin(), pressure.end(), at) - pressure.begin()));
    }
    const size_t narrowest = size_t(std::ceil(kNarrowest / kStep));
    double bestError = INFINITY;
    for (size_t si = narrowest; si < level.size(); ++si) {
        const double sys = level[si];
        const size_t c = below[si]; // beats below the systolic corner
        const double nC = s.n.back() - s.n[c], yC = s.y.back() - s.y[c];
        if (nC < 2)
            continue;
        for (size_t di = 0; di + narrowest <= si; ++di) {
            const double dia = level[di];
            const size_t a = below[di];
            const double nA = s.n[a], yA = s.y[a];
            const double nB = s.n[c] - s.n[a];
            if (nA < 2 || nB < 3)
                continue;
            const double pB = s.p[c] - s.p[a], ppB = s.pp[c] - s.pp[a];
            const double yB = s.y[c] - s.y[a], ypB = s.yp[c] - s.yp[a];
            const double w = sys - dia;
            const double a11 = nC + (ppB - 2 * dia * pB + nB * dia * dia) / (w * w);
            const double a22 = nA + (nB * sys * sys - 2 * sys * pB + ppB) / (w * w);
            const double a12 = (-ppB + (sys + dia) * pB - nB * sys * dia) / (w * w);
            const double b1 = yC + (ypB - dia * yB) / w;
            const double b2 = yA + (sys * yB - ypB) / w;
            const double det = a11 * a22 - a12 * a12;
            if (!(det > 0))
                continue;
            const double floor = (b1 * a22 - b2 * a12) / det;
            const double plateau = (a11 * b2 - a12 * b1) / det;
            if (!(plateau > floor))
                continue;
            const double error = yy - floor * b1 - plateau * b2;
            if (error < bestError) {
                bestError = error;
                best = {true, sys, dia, floor, plateau};
            }
        }
    }
    return best;
}
