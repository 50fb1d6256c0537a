#include "ui/SignalViewerPainter.h"

#include "ui/ViewerColumnDecimator.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {
// Grid colours: the light ones are the house colours; on a dark background they would outshine
// the traces, so the dark theme uses dimmer greys.
QColor majorGridColor(bool dark)
{
    return dark ? QColor(0x5a, 0x5a, 0x5a) : QColor(0xaa, 0xaa, 0xaa);
}
QColor minorGridColor(bool dark)
{
    return dark ? QColor(0x3c, 0x3c, 0x3c) : QColor(0xdd, 0xdd, 0xdd);
}
QColor plotBackground(bool dark)
{
    return dark ? QColor(0x1e, 0x1e, 0x1e) : QColor(Qt::white);
}

int decimalsFor(double step)
{
    return std::max(0, int(-std::floor(std::log10(step) + 1e-9)));
}
} // namespace

QColor SignalViewerPainter::textColor(bool dark)
{
    return dark ? QColor(0xcc, 0xcc, 0xcc) : QColor(Qt::black);
}

double SignalViewerPainter::niceStep(double span, int maxSteps)
{
    if (!(span > 0.0) || maxSteps < 1)
        return 0.0;
    const double raw = span / maxSteps;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        if (m * power >= raw * (1.0 - 1e-9))
            return m * power;
    }
    return 10.0 * power;
}

double SignalViewerPainter::timeStep(double pixelsPerSecond, double minPixels)
{
    // Whole seconds that read naturally on a clock.
    for (double s : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0}) {
        if (s * pixelsPerSecond >= minPixels)
            return s;
    }
    return 1800.0;
}

void SignalViewerPainter::paint(QPainter &painter, const Frame &frame,
                                const QList<SignalViewerSeries> &series,
                                const QList<SignalViewerMarker> &markers)
{
    if (frame.plot.width() <= 0 || frame.plot.height() <= 0)
        return;
    painter.fillRect(frame.plot, plotBackground(frame.dark));
    drawGrid(painter, frame);
    drawHeader(painter, frame, series);

    painter.save();
    painter.setClipRect(frame.plot.adjusted(0, -2, 0, 2));
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (const SignalViewerSeries &s : series) {
        if (s.isSampled())
            drawSampled(painter, frame, s);
        else
            drawPoints(painter, frame, s);
    }
    painter.restore();
    drawMarkers(painter, frame, markers);
}

void SignalViewerPainter::drawGrid(QPainter &painter, const Frame &frame) const
{
    const QRectF &plot = frame.plot;
    const QColor text = textColor(frame.dark);
    QPen major(majorGridColor(frame.dark), 1, Qt::DashLine);
    QPen minor(minorGridColor(frame.dark), 1, Qt::DashLine);
    const QFontMetricsF fm(painter.font());
    painter.setRenderHint(QPainter::Antialiasing, false);

    // Values: lines at the steps, fainter ones halfway, labels left of the axis.
    const double span = frame.upper - frame.lower;
    const double step = niceStep(span, std::max(1, int(plot.height() / (fm.height() * 2.2))));
    if (step > 0.0) {
        const double scale = plot.height() / span;
        const int decimals = decimalsFor(step);
        const double first = std::ceil(frame.lower / step - 1e-9) * step;
        for (double v = first - step / 2; v <= frame.upper + 1e-9 * step; v += step / 2) {
            if (v < frame.lower - 1e-9 * step)
                continue;
            const double y = std::round(plot.bottom() - (v - frame.lower) * scale);
            const bool isMajor = std::fabs(std::remainder(v, step)) < step * 1e-6;
            painter.setPen(isMajor ? major : minor);
            painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
            if (isMajor) {
                painter.setPen(text);
                const QString label =
                    QString::number(std::fabs(v) < step * 1e-6 ? 0.0 : v, 'f', decimals);
                const QRectF box(0, y - fm.height() / 2, plot.left() - 4, fm.height());
                painter.drawText(box, Qt::AlignRight | Qt::AlignVCenter, label);
            }
        }
    }

    // Time: lines at whole seconds, labels under the axis. The time title, when there is one,
    // takes the right end of the label row and the labels give way to it.
    const double pps = plot.width() / frame.window;
    const double tStep = timeStep(pps, fm.horizontalAdvance(QStringLiteral("0000")) * 2.0);
    const double minorStep = tStep >= 5.0 && tStep / 5.0 * pps >= 8.0 ? tStep / 5.0 : tStep;
    const double labelTop = plot.bottom() + 2;
    double titleLeft = plot.right() + fm.horizontalAdvance(QStringLiteral("000"));
    if (!frame.timeTitle.isEmpty()) {
        const double right = plot.right() + plot.left();
        titleLeft = right - fm.horizontalAdvance(frame.timeTitle) - 4;
        painter.setPen(text);
        painter.drawText(QRectF(titleLeft, labelTop, right - titleLeft, fm.height()),
                         Qt::AlignLeft | Qt::AlignTop, frame.timeTitle);
    }
    const double end = frame.offset + frame.window;
    for (double t = std::ceil(frame.offset / minorStep - 1e-9) * minorStep; t <= end + 1e-9;
         t += minorStep) {
        const double x = std::round(plot.left() + (t - frame.offset) * pps);
        const bool isMajor = std::fabs(std::remainder(t, tStep)) < 1e-6;
        painter.setPen(isMajor ? major : minor);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        if (isMajor) {
            const QString label = QString::number(qRound64(t));
            const double w = fm.horizontalAdvance(label);
            if (x + w / 2 >= titleLeft - 4)
                continue;
            painter.setPen(text);
            painter.drawText(QRectF(x - w / 2 - 2, labelTop, w + 4, fm.height()), Qt::AlignCenter,
                             label);
        }
    }

    painter.setPen(QPen(text, 1));
    painter.drawLine(plot.bottomLeft(), plot.topLeft());
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
}

void SignalViewerPainter::drawHeader(QPainter &painter, const Frame &frame,
                                     const QList<SignalViewerSeries> &series) const
{
    const QColor text = textColor(frame.dark);
    QFont bold = painter.font();
    bold.setBold(true);
    const QFontMetricsF fm(painter.font());
    const QFontMetricsF fmBold(bold);
    const double baseline = frame.plot.top() - fm.descent() - 3;
    double x = 4;
    painter.setPen(text);
    if (!frame.title.isEmpty()) {
        painter.save();
        painter.setFont(bold);
        painter.drawText(QPointF(x, baseline), frame.title);
        painter.restore();
        x += fmBold.horizontalAdvance(frame.title);
    }
    if (!frame.unit.isEmpty()) {
        const QString unit = frame.title.isEmpty() ? frame.unit : QStringLiteral(", ") + frame.unit;
        painter.drawText(QPointF(x, baseline), unit);
    }

    // Legend, right-aligned, for the series that have a name.
    double right = frame.plot.right();
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (auto it = series.crbegin(); it != series.crend(); ++it) {
        if (it->name().isEmpty())
            continue;
        const double w = fm.horizontalAdvance(it->name());
        painter.setPen(text);
        painter.drawText(QPointF(right - w, baseline), it->name());
        const double y = baseline - fm.ascent() / 2 + 1;
        QPen pen(it->color(), it->style() == SignalViewerSeries::Style::Dots ? 6 : 2.5,
                 Qt::SolidLine, Qt::RoundCap);
        painter.setPen(pen);
        if (it->style() == SignalViewerSeries::Style::Dots)
            painter.drawPoint(QPointF(right - w - 10, y));
        else
            painter.drawLine(QPointF(right - w - 22, y), QPointF(right - w - 6, y));
        right -= w + 36;
    }
}

void SignalViewerPainter::drawSampled(QPainter &painter, const Frame &frame,
                                      const SignalViewerSeries &series)
{
    // A copy of the list handle for this paint only; the source keeps the data.
    const QList<double> samples = series.samples();
    if (samples.isEmpty() || frame.upper <= frame.lower)
        return;
    ViewerColumnDecimator::Mapping map;
    map.rate = series.rate();
    map.offset = frame.offset;
    map.pixelsPerSecond = frame.plot.width() / frame.window;
    map.left = frame.plot.left();
    map.columns = int(std::ceil(frame.plot.width()));
    map.yScale = -frame.plot.height() / (frame.upper - frame.lower);
    map.yOrigin = frame.plot.bottom() - frame.lower * map.yScale;
    ViewerColumnDecimator::decimate(samples.constData(), samples.size(), map, m_points);
    if (m_points.empty())
        return;
    painter.setPen(
        QPen(series.color(), series.width(), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(m_points.data(), int(m_points.size()));
}

void SignalViewerPainter::drawPoints(QPainter &painter, const Frame &frame,
                                     const SignalViewerSeries &series)
{
    const QList<QPointF> points = series.points();
    if (points.isEmpty() || frame.upper <= frame.lower)
        return;
    // Points are in time order: find the visible ones, plus one on each side for the line.
    const auto byTime = [](const QPointF &p, double t) { return p.x() < t; };
    auto from = std::lower_bound(points.cbegin(), points.cend(), frame.offset, byTime);
    auto to = std::lower_bound(from, points.cend(), frame.offset + frame.window, byTime);
    if (from != points.cbegin())
        --from;
    if (to != points.cend())
        ++to;
    const double pps = frame.plot.width() / frame.window;
    const double yScale = -frame.plot.height() / (frame.upper - frame.lower);
    m_points.clear();
    for (auto it = from; it != to; ++it) {
        m_points.emplace_back(frame.plot.left() + (it->x() - frame.offset) * pps,
                              frame.plot.bottom() + (it->y() - frame.lower) * yScale);
    }
    if (m_points.empty())
        return;
    if (series.style() == SignalViewerSeries::Style::Dots) {
        painter.setPen(QPen(series.color(), series.width(), Qt::SolidLine, Qt::RoundCap));
        painter.drawPoints(m_points.data(), int(m_points.size()));
    } else {
        painter.setPen(
            QPen(series.color(), series.width(), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(m_points.data(), int(m_points.size()));
    }
}

void SignalViewerPainter::drawMarkers(QPainter &painter, const Frame &frame,
                                      const QList<SignalViewerMarker> &markers) const
{
    const QRectF &plot = frame.plot;
    const double pps = plot.width() / frame.window;
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (const SignalViewerMarker &m : markers) {
        const double x = plot.left() + (m.time() - frame.offset) * pps;
        if (x < plot.left() - 0.5 || x > plot.right() + 0.5)
            continue;
        QPen pen(m.color(), m.isMovable() ? 2.0 : 1.5,
                 m.isMovable() ? Qt::SolidLine : Qt::DashLine);
        painter.setPen(pen);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        if (m.text().isEmpty())
            continue;
        // The label hangs from the top of the line, on its right unless that leaves the plot.
        const QSizeF size = m.layout().size();
        QRectF box(x + 3, plot.top() + 3, size.width() + 8, size.height() + 2);
        if (box.right() > plot.right())
            box.moveRight(x - 3);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m.color());
        painter.drawRoundedRect(box, 3, 3);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(Qt::white);
        painter.drawStaticText(box.topLeft() + QPointF(4, 1), m.layout());
    }
}
