#pragma once

#include "ui/SignalViewerMarker.h"
#include "ui/SignalViewerSeries.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <vector>

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
    };

    // Text and axis colours for light and dark backgrounds.
    static QColor textColor(bool dark);

    void paint(QPainter &painter, const Frame &frame, const QList<SignalViewerSeries> &series,
               const QList<SignalViewerMarker> &markers);

    // A step of 1, 2 or 5 times a power of ten that splits `span` into at most `maxSteps`.
    static double niceStep(double span, int maxSteps);
    // The time-axis step in seconds for this scale: wide enough for a label.
    static double timeStep(double pixelsPerSecond, double minPixels);

private:
    void drawGrid(QPainter &painter, const Frame &frame) const;
    void drawSampled(QPainter &painter, const Frame &frame, const SignalViewerSeries &series);
    void drawPoints(QPainter &painter, const Frame &frame, const SignalViewerSeries &series);
    void drawMarkers(QPainter &painter, const Frame &frame,
                     const QList<SignalViewerMarker> &markers) const;
    void drawHeader(QPainter &painter, const Frame &frame,
                    const QList<SignalViewerSeries> &series) const;

    std::vector<QPointF> m_points;
};
