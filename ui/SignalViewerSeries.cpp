#include "ui/SignalViewerSeries.h"

SignalViewerSeries SignalViewerSeries::fromSamples(const QList<double> &samples, double rate,
                                                   const QColor &color, qreal width)
{
    SignalViewerSeries series = fromSampleSource([samples] { return samples; }, rate, color, width);
    series.m_fixed = true;
    return series;
}

SignalViewerSeries SignalViewerSeries::fromPoints(const QList<QPointF> &points, Style style,
                                                  const QColor &color, qreal width)
{
    SignalViewerSeries series = fromPointSource([points] { return points; }, style, color, width);
    series.m_fixed = true;
    return series;
}

SignalViewerSeries SignalViewerSeries::fromSampleSource(SampleSource source, double rate,
                                                        const QColor &color, qreal width)
{
    SignalViewerSeries s;
    s.m_samples = std::move(source);
    s.m_rate = rate;
    s.m_color = color;
    s.m_width = width;
    return s;
}

SignalViewerSeries SignalViewerSeries::fromPointSource(PointSource source, Style style,
                                                       const QColor &color, qreal width)
{
    SignalViewerSeries s;
    s.m_points = std::move(source);
    s.m_style = style;
    s.m_color = color;
    s.m_width = width;
    return s;
}

SignalViewerSeries &SignalViewerSeries::named(const QString &name)
{
    m_name = name;
    return *this;
}

double SignalViewerSeries::length() const
{
    if (isSampled()) {
        if (m_rate <= 0.0)
            return 0.0;
        return double(samples().size()) / m_rate;
    }
    const QList<QPointF> p = points();
    return p.isEmpty() ? 0.0 : p.last().x();
}

SignalViewerSeries &SignalViewerSeries::withPenStyle(Qt::PenStyle style)
{
    m_penStyle = style;
    return *this;
}
