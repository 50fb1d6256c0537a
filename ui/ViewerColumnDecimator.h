#pragma once

#include <QPointF>
#include <QtGlobal>

#include <vector>

// Turns the visible part of an evenly sampled series into a polyline with at most a few points
// per pixel column, however long the series is.
//
// Where several samples fall into one column, the column gets its lowest and highest sample, in
// the order they occur, so that every peak of the signal stays visible. Where samples are
// sparser than columns, every sample is kept as it is. One sample on each side of the visible
// span is included so the line runs to the edges of the plot.
class ViewerColumnDecimator
{
public:
    // How samples and values map onto the widget: sample i lies at time i / rate seconds, time t
    // at x = left + (t - offset) * pixelsPerSecond, and value v at y = yOrigin + v * yScale.
    struct Mapping {
        double rate = 0.0;
        double offset = 0.0;
        double pixelsPerSecond = 0.0;
        double left = 0.0;
        int columns = 0;
        double yOrigin = 0.0;
        double yScale = 1.0;
    };

    // Fills `out` with the polyline for samples [0, n). The vector keeps its capacity between
    // calls, so a viewer that reuses it allocates nothing once it has seen its widest plot.
    static void decimate(const double *samples, qsizetype n, const Mapping &map,
                         std::vector<QPointF> &out);

    // The first and one-past-last sample index that decimate() reads for this mapping.
    static void visibleSpan(qsizetype n, const Mapping &map, qsizetype &first, qsizetype &end);
};
