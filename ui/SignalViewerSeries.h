#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>

#include <functional>

// One trace of a SignalViewer: an evenly sampled series (a line through the samples) or a list
// of (time s, value) points drawn as a line or as dots.
//
// The data come from a source that is asked for them at every paint and let go of right after.
// A live record's series are shared lists its recorder keeps appending to; holding on to one
// between paints would make every append copy the whole recording.
class SignalViewerSeries
{
public:
    enum class Style { Line, Dots };
    using SampleSource = std::function<QList<double>()>;
    using PointSource = std::function<QList<QPointF>()>;

    // A fixed series (a finished record's), kept as it is.
    static SignalViewerSeries fromSamples(const QList<double> &samples, double rate,
                                          const QColor &color, qreal width = 1.5);
    static SignalViewerSeries fromPoints(const QList<QPointF> &points, Style style,
                                         const QColor &color, qreal width = 1.5);
    // A series that grows: the source hands out the current list each time it is asked.
    static SignalViewerSeries fromSampleSource(SampleSource source, double rate,
                                               const QColor &color, qreal width = 1.5);
    static SignalViewerSeries fromPointSource(PointSource source, Style style, const QColor &color,
                                              qreal width = 1.5);

    bool isSampled() const { return bool(m_samples); }
    // Whether the data never change (made by fromSamples or fromPoints): a viewer may then keep
    // what it worked out from them between paints.
    bool isFixed() const { return m_fixed; }
    QList<double> samples() const { return m_samples ? m_samples() : QList<double>(); }
    QList<QPointF> points() const { return m_points ? m_points() : QList<QPointF>(); }
    double rate() const { return m_rate; }
    Style style() const { return m_style; }
    QColor color() const { return m_color; }
    qreal width() const { return m_width; }
    // Shown in the legend when not empty.
    QString name() const { return m_name; }
    SignalViewerSeries &named(const QString &name);
    // How the line of the legend is drawn (a marker's entry is dashed like the marker).
    Qt::PenStyle penStyle() const { return m_penStyle; }
    SignalViewerSeries &withPenStyle(Qt::PenStyle style);
    // Time in seconds of the last sample or point; 0 when empty.
    double length() const;

private:
    SampleSource m_samples;
    PointSource m_points;
    double m_rate = 0.0;
    Style m_style = Style::Line;
    QColor m_color;
    qreal m_width = 1.5;
    QString m_name;
    Qt::PenStyle m_penStyle = Qt::SolidLine;
    bool m_fixed = false;
};
