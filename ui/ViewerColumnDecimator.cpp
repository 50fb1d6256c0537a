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
    qint64 column = columnOf(first);
    double lo = samples[first], hi = lo;
    qsizetype loAt = first, hiAt = first;
    const auto flush = [&] {
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
    };
    for (qsizetype i = first + 1; i < end; ++i) {
        const double v = samples[i];
        const qint64 c = columnOf(i);
        if (c != column) {
            flush();
            column = c;
            lo = hi = v;
            loAt = hiAt = i;
            continue;
        }
        if (v < lo) {
            lo = v;
            loAt = i;
        } else if (v > hi) {
            hi = v;
            hiAt = i;
        }
    }
    flush();
}
