#include "ui/ViewerColumnDecimator.h"

#include <cmath>

void ViewerColumnDecimator::visibleSpan(qsizetype n, const Mapping &map, qsizetype &first,
                                        qsizetype &end)
{
    first = end = 0;
    if (n <= 0 || map.rate <= 0.0 || map.pixelsPerSecond <= 0.0 || map.columns <= 0)
        return;
    const double window = map.columns / map.pixelsPerSecond;
    // One sample beyond each edge, so the line is not cut short inside the plot.
    const double from = std::floor(map.offset * map.rate) - 1.0;
    const double to = std::ceil((map.offset + window) * map.rate) + 2.0;
    first = qsizetype(qBound(0.0, from, double(n)));
    end = qsizetype(qBound(0.0, to, double(n)));
}

void ViewerColumnDecimator::decimate(const double *samples, qsizetype n, const Mapping &map,
                                     std::vector<QPointF> &out)
{
    out.clear();
    qsizetype first = 0, end = 0;
    visibleSpan(n, map, first, end);
    if (first >= end)
        return;

    const double secondsPerSample = 1.0 / map.rate;
    const double samplesPerPixel = map.rate / map.pixelsPerSecond;
    const auto xOf = [&](qsizetype i) {
        return map.left + (double(i) * secondsPerSample - map.offset) * map.pixelsPerSecond;
    };
    const auto yOf = [&](double v) { return map.yOrigin + v * map.yScale; };

    if (samplesPerPixel < 2.0) {
        // Fewer than two samples a column: min/max would not save anything.
        for (qsizetype i = first; i < end; ++i)
            out.emplace_back(xOf(i), yOf(samples[i]));
        return;
    }

    // Columns are counted from the left edge of the plot; the samples just outside it fall into
    // column -1 or `columns` and are drawn like any other (the painter clips them).
    const auto columnOf = [&](qsizetype i) { return qint64(std::floor(xOf(i) - map.left)); };
    qsizetype i = first;
    while (i < end) {
        const qint64 column = columnOf(i);
        // Where the next column starts: estimated in one step, then settled with the same rule
        // that placed sample i, so rounding never moves a sample to a neighbouring column.
        const double estimate =
            std::ceil((double(column + 1) / map.pixelsPerSecond + map.offset) * map.rate);
        qsizetype next = qsizetype(qBound(double(i + 1), estimate, double(end)));
        while (next < end && columnOf(next) <= column)
            ++next;
        while (next > i + 1 && columnOf(next - 1) > column)
            --next;

        double lo = samples[i], hi = lo;
        qsizetype loAt = i, hiAt = i;
        for (qsizetype k = i + 1; k < next; ++k) {
            const double v = samples[k];
            if (v < lo) {
                lo = v;
                loAt = k;
            } else if (v > hi) {
                hi = v;
                hiAt = k;
            }
        }
        const double x = map.left + double(column) + 0.5;
        if (loAt == hiAt) {
            out.emplace_back(x, yOf(lo));
        } else if (loAt < hiAt) {
            out.emplace_back(x, yOf(lo));
            out.emplace_back(x, yOf(hi));
        } else {
            out.emplace_back(x, yOf(hi));
            out.emplace_back(x, yOf(lo));
        }
        i = next;
    }
}
