#pragma once

#include "ui/SignalViewerMarker.h"
#include "ui/SignalViewerSeries.h"

#include "ui/TextWidthCache.h"
#include "ui/ViewerColumnDecimator.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>

#include <vector>

class QFontMetricsF;
class QPainter;

// Draws one SignalViewer picture: grid, axes with their labels, the series and the markers.
// Keeps its point buffer between paints so that painting allocates nothing once the widest plot
// has been drawn.
class SignalViewerPainter
{
public:
    // What one paint shows and where.
    struct Frame {
        QRectF plot;          // the plot area in widget coordinates
        double offset = 0.0;  // time at the left edge, seconds
        double window = 60.0; // visible span, seconds
        double lower = 0.0;
        double upper = 1.0;
        bool dark = false;
        QString title;
        QString unit;
        QString timeTitle;
        // The part of the widget to repaint; empty for all of it.
        QRect clip;
    };

    // The bar on the edge where a trace runs past the plot: clearly not part of any trace.
    static inline const QColor kClipColor{0xE6, 0x51, 0x00};

    // Text and axis colours for light and dark backgrounds.
    static QColor textColor(bool dark);

    // `legendOnly` are entries of the legend with nothing to draw in the plot, such as the line
    // styles of the markers of several records.
    void paint(QPainter &painter, const Frame &frame, const QList<SignalViewerSeries> &series,
               const QList<SignalViewerMarker> &markers,
               const QList<SignalViewerSeries> &legendOnly = {});

    // A step of 1, 2 or 5 times a power of ten that splits `span` into at most `maxSteps`.
    static double niceStep(double span, int maxSteps);
    // The time-axis step in seconds for this scale: wide enough for a label.
    static double timeStep(double pixelsPerSecond, double minPixels);

    // Grid steps of one picture.
    struct Ticks {
        double valueStep = 0.0;
        double pixelsPerSecond = 0.0;
        double timeStep = 1.0;
        double minorTimeStep = 1.0;
        bool operator==(const Ticks &o) const
        {
            return valueStep == o.valueStep && pixelsPerSecond == o.pixelsPerSecond &&
                   timeStep == o.timeStep && minorTimeStep == o.minorTimeStep;
        }
    };
    static Ticks ticksFor(const Frame &frame, const QFontMetricsF &fm);

private:
    void drawBackground(QPainter &painter, const Frame &frame, const Ticks &ticks);
    void drawGridLines(QPainter &painter, const Frame &frame, const Ticks &ticks) const;
    void drawLabels(QPainter &painter, const Frame &frame, const Ticks &ticks) const;
    void drawSampled(QPainter &painter, const Frame &frame, const SignalViewerSeries &series);
    void drawPoints(QPainter &painter, const Frame &frame, const SignalViewerSeries &series);
    // m_points as a line of this width, or as one upright bar per pixel column.
    void drawLine(QPainter &painter, const QColor &color, qreal width) const;
    void drawSpans(QPainter &painter, const QRectF &plot, const QColor &color, qreal width);
    // Cuts the bars in m_spans into one-row runs in m_rows when that takes fewer rectangles;
    // false when the bars are the cheaper fill.
    bool columnsAsRows(const QRectF &plot);
    static int linePasses(qreal width);
    void drawMarkers(QPainter &painter, const Frame &frame,
                     const QList<SignalViewerMarker> &markers);
    void drawClipMarks(QPainter &painter, const Frame &frame);
    void drawHeader(QPainter &painter, const Frame &frame,
                    const QList<SignalViewerSeries> &series) const;

    // Pixels of up-and-down travel (times the passes drawn) up to which a dense trace is still
    // drawn as a smooth line: about a millisecond of drawing.
    static constexpr double kSmoothLineBudget = 40000.0;

    std::vector<QPointF> m_points;
    // The polylines of the fixed series drawn in the last paint, with the list each came from:
    // a repaint of the same view (a marker moved, the window uncovered) reuses them instead of
    // reading every sample again. Holding the list keeps its data and its address unchanged, so
    // the same address and length mean the same samples; a list no longer drawn is let go after
    // the next paint.
    struct ColumnCache {
        QList<double> samples;
        ViewerColumnDecimator::Mapping map;
        std::vector<QPointF> points;
    };
    std::vector<ColumnCache> m_columnCache;
    std::vector<ColumnCache> m_columnCacheNow;
    struct Bar {
        int column, top, bottom;
    };
    std::vector<Bar> m_bars;
    std::vector<QRect> m_spans;
    std::vector<QRect> m_rows;
    std::vector<int> m_runStart;
    // What one filled rectangle costs the raster engine, in rows of an upright bar.
    static constexpr qint64 kRowsPerRun = 6;
    std::vector<QRect> m_clipRects;
    std::vector<QRectF> m_labelBoxes;
    QImage m_dot;
    QColor m_dotColor;
    qreal m_dotWidth = 0.0;
    mutable TextWidthCache m_textWidths;
    mutable TextWidthCache m_boldWidths;
    QImage m_background;
    Frame m_backgroundFrame;
    Ticks m_backgroundTicks;
    qreal m_backgroundRatio = 0.0;
};
