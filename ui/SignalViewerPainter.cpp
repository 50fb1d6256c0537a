#include "ui/SignalViewerPainter.h"

#include "ui/ViewerColumnDecimator.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

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

namespace {
bool sameMapping(const ViewerColumnDecimator::Mapping &a, const ViewerColumnDecimator::Mapping &b)
{
    return a.rate == b.rate && a.offset == b.offset && a.pixelsPerSecond == b.pixelsPerSecond &&
           a.left == b.left && a.columns == b.columns && a.yOrigin == b.yOrigin &&
           a.yScale == b.yScale;
}
} // namespace

void SignalViewerPainter::paint(QPainter &painter, const Frame &frame,
                                const QList<SignalViewerSeries> &series,
                                const QList<SignalViewerMarker> &markers,
                                const QList<SignalViewerSeries> &legendOnly)
{
    if (frame.plot.width() <= 0 || frame.plot.height() <= 0)
        return;
    const Ticks ticks = ticksFor(frame, QFontMetricsF(painter.font()));
    drawBackground(painter, frame, ticks);
    drawLabels(painter, frame, ticks);
    drawHeader(painter, frame, legendOnly.isEmpty() ? series : series + legendOnly);

    painter.save();
    painter.setClipRect(frame.plot.adjusted(0, -2, 0, 2));
    for (const SignalViewerSeries &s : series) {
        if (s.isSampled())
            drawSampled(painter, frame, s);
        else
            drawPoints(painter, frame, s);
    }
    painter.restore();
    drawMarkers(painter, frame, markers);
    m_columnCache.swap(m_columnCacheNow);
    m_columnCacheNow.clear();
}

SignalViewerPainter::Ticks SignalViewerPainter::ticksFor(const Frame &frame,
                                                         const QFontMetricsF &fm)
{
    Ticks t;
    const double span = frame.upper - frame.lower;
    int steps = std::max(1, int(frame.plot.height() / (fm.height() * 2.2)));
    t.valueStep = niceStep(span, steps);
    // A small plot (four units in a grid) still shows a scale: at least two labelled values, as
    // long as their labels keep apart.
    const auto labels = [&frame](double step) {
        return step > 0.0 ? std::floor(frame.upper / step + 1e-9) -
                                std::ceil(frame.lower / step - 1e-9) + 1
                          : 0.0;
    };
    while (labels(t.valueStep) < 2 && steps < 8) {
        const double finer = niceStep(span, ++steps);
        if (!(finer > 0.0) || finer / span * frame.plot.height() < fm.height() * 1.2)
            break;
        t.valueStep = finer;
    }
    t.pixelsPerSecond = frame.plot.width() / frame.window;
    t.timeStep = timeStep(t.pixelsPerSecond, fm.horizontalAdvance(QStringLiteral("0000")) * 2.0);
    t.minorTimeStep = t.timeStep >= 5.0 && t.timeStep / 5.0 * t.pixelsPerSecond >= 8.0
                          ? t.timeStep / 5.0
                          : t.timeStep;
    return t;
}

void SignalViewerPainter::drawBackground(QPainter &painter, const Frame &frame, const Ticks &ticks)
{
    // The plot's background and dashed grid change only when the window moves or the scale
    // changes, which while recording is once in five seconds: keep them as a picture.
    const qreal dpr = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QSize size = (frame.plot.size() * dpr).toSize();
    const bool same =
        m_background.size() == size && m_backgroundRatio == dpr &&
        m_backgroundFrame.plot.size() == frame.plot.size() &&
        m_backgroundFrame.offset == frame.offset && m_backgroundFrame.window == frame.window &&
        m_backgroundFrame.lower == frame.lower && m_backgroundFrame.upper == frame.upper &&
        m_backgroundFrame.dark == frame.dark && m_backgroundTicks == ticks;
    if (!same) {
        if (m_background.size() != size)
            m_background = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_background.setDevicePixelRatio(dpr);
        m_background.fill(plotBackground(frame.dark));
        QPainter p(&m_background);
        p.translate(-frame.plot.topLeft());
        drawGridLines(p, frame, ticks);
        p.end();
        m_backgroundFrame = frame;
        m_backgroundTicks = ticks;
        m_backgroundRatio = dpr;
    }
    painter.drawImage(frame.plot.topLeft(), m_background);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(textColor(frame.dark), 1));
    painter.drawLine(frame.plot.bottomLeft(), frame.plot.topLeft());
    painter.drawLine(frame.plot.bottomLeft(), frame.plot.bottomRight());
}

void SignalViewerPainter::drawGridLines(QPainter &painter, const Frame &frame,
                                        const Ticks &ticks) const
{
    const QRectF &plot = frame.plot;
    const QPen major(majorGridColor(frame.dark), 1, Qt::DashLine);
    const QPen minor(minorGridColor(frame.dark), 1, Qt::DashLine);
    painter.setRenderHint(QPainter::Antialiasing, false);

    // Values: lines at the steps, fainter ones halfway.
    const double step = ticks.valueStep;
    if (step > 0.0) {
        const double scale = plot.height() / (frame.upper - frame.lower);
        const double first = std::ceil(frame.lower / step - 1e-9) * step;
        for (double v = first - step / 2; v <= frame.upper + 1e-9 * step; v += step / 2) {
            if (v < frame.lower - 1e-9 * step)
                continue;
            const double y = std::round(plot.bottom() - (v - frame.lower) * scale);
            const bool isMajor = std::fabs(std::remainder(v, step)) < step * 1e-6;
            painter.setPen(isMajor ? major : minor);
            painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        }
    }
    // Time: lines at whole seconds.
    const double end = frame.offset + frame.window;
    for (double t = std::ceil(frame.offset / ticks.minorTimeStep - 1e-9) * ticks.minorTimeStep;
         t <= end + 1e-9; t += ticks.minorTimeStep) {
        const double x = std::round(plot.left() + (t - frame.offset) * ticks.pixelsPerSecond);
        const bool isMajor = std::fabs(std::remainder(t, ticks.timeStep)) < 1e-6;
        painter.setPen(isMajor ? major : minor);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
}

void SignalViewerPainter::drawLabels(QPainter &painter, const Frame &frame,
                                     const Ticks &ticks) const
{
    const QRectF &plot = frame.plot;
    const QFontMetricsF fm(painter.font());
    painter.setPen(textColor(frame.dark));

    // Values left of the axis.
    const double step = ticks.valueStep;
    if (step > 0.0) {
        const double scale = plot.height() / (frame.upper - frame.lower);
        const int decimals = decimalsFor(step);
        for (double v = std::ceil(frame.lower / step - 1e-9) * step; v <= frame.upper + 1e-9 * step;
             v += step) {
            const double y = std::round(plot.bottom() - (v - frame.lower) * scale);
            const QString label =
                QString::number(std::fabs(v) < step * 1e-6 ? 0.0 : v, 'f', decimals);
            const double w = m_textWidths.width(painter.font(), label);
            painter.drawText(QPointF(plot.left() - 4 - w, y + fm.ascent() / 2 - 1), label);
        }
    }

    // Time under the axis. The time title, when there is one, takes the right end of the row
    // and the labels give way to it.
    const double baseline = plot.bottom() + 2 + fm.ascent();
    double titleLeft = plot.right() + m_textWidths.width(painter.font(), QStringLiteral("000"));
    if (!frame.timeTitle.isEmpty()) {
        const double right = plot.right() + plot.left();
        titleLeft = right - m_textWidths.width(painter.font(), frame.timeTitle) - 4;
        painter.drawText(QPointF(titleLeft, baseline), frame.timeTitle);
    }
    const double end = frame.offset + frame.window;
    for (double t = std::ceil(frame.offset / ticks.timeStep - 1e-9) * ticks.timeStep;
         t <= end + 1e-9; t += ticks.timeStep) {
        const double x = std::round(plot.left() + (t - frame.offset) * ticks.pixelsPerSecond);
        const QString label = QString::number(qRound64(t));
        const double w = m_textWidths.width(painter.font(), label);
        if (x + w / 2 >= titleLeft - 4)
            continue;
        painter.drawText(QPointF(x - w / 2, baseline), label);
    }
}

void SignalViewerPainter::drawHeader(QPainter &painter, const Frame &frame,
                                     const QList<SignalViewerSeries> &series) const
{
    const QColor text = textColor(frame.dark);
    QFont bold = painter.font();
    bold.setBold(true);
    const QFontMetricsF fm(painter.font());
    const double baseline = frame.plot.top() - fm.descent() - 3;
    double x = 4;
    painter.setPen(text);
    if (!frame.title.isEmpty()) {
        painter.save();
        painter.setFont(bold);
        painter.drawText(QPointF(x, baseline), frame.title);
        painter.restore();
        x += m_boldWidths.width(bold, frame.title);
    }
    if (!frame.unit.isEmpty()) {
        const QString unit = frame.title.isEmpty() ? frame.unit : QStringLiteral(", ") + frame.unit;
        painter.drawText(QPointF(x, baseline), unit);
        x += m_textWidths.width(painter.font(), unit);
    }

    // Legend, right-aligned, for the series that have a name. Entries that would run into the
    // title are left out, and a count says how many.
    double right = frame.plot.right();
    const double titleEnd = x + 12;
    painter.setRenderHint(QPainter::Antialiasing, true);
    int left = 0;
    for (const SignalViewerSeries &s : series)
        left += s.name().isEmpty() ? 0 : 1;
    for (auto it = series.crbegin(); it != series.crend(); ++it) {
        if (it->name().isEmpty())
            continue;
        const double w = m_textWidths.width(painter.font(), it->name());
        const QString more = QStringLiteral("+%1").arg(left);
        const double moreWidth = m_textWidths.width(painter.font(), more);
        // Room for this entry, and for the count of the rest when more follow.
        const double needed = w + 22 + (left > 1 ? moreWidth + 8 : 0.0);
        if (right - needed < titleEnd) {
            if (right - moreWidth >= titleEnd) {
                painter.setPen(text);
                painter.drawText(QPointF(right - moreWidth, baseline), more);
            }
            break;
        }
        --left;
        painter.setPen(text);
        painter.drawText(QPointF(right - w, baseline), it->name());
        const double y = baseline - fm.ascent() / 2 + 1;
        QPen pen(it->color(), it->style() == SignalViewerSeries::Style::Dots ? 6 : 2.5,
                 it->penStyle(), it->penStyle() == Qt::SolidLine ? Qt::RoundCap : Qt::FlatCap);
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
    const int allColumns = map.columns;
    if (!frame.clip.isEmpty()) {
        // Only the columns being repainted (a live trace's newest few), with two on each side
        // so that the line joins what is already on screen. Whole columns keep the same
        // column boundaries as a full paint.
        const int first =
            std::clamp(int(std::floor(frame.clip.left() - frame.plot.left())) - 2, 0, allColumns);
        const int last = std::clamp(int(std::ceil(frame.clip.right() + 1 - frame.plot.left())) + 2,
                                    first, allColumns);
        map.left += first;
        map.offset += first / map.pixelsPerSecond;
        map.columns = last - first;
    }
    if (series.isFixed()) {
        const auto same = [&](const ColumnCache &c) {
            return c.samples.constData() == samples.constData() &&
                   c.samples.size() == samples.size() && sameMapping(c.map, map);
        };
        const auto found = std::find_if(m_columnCache.begin(), m_columnCache.end(), same);
        ColumnCache entry;
        if (found != m_columnCache.end()) {
            entry = std::move(*found);
            m_columnCache.erase(found);
        } else {
            entry.samples = samples;
            entry.map = map;
            ViewerColumnDecimator::decimate(samples.constData(), samples.size(), map, entry.points);
        }
        m_points.assign(entry.points.begin(), entry.points.end());
        m_columnCacheNow.push_back(std::move(entry));
    } else {
        ViewerColumnDecimator::decimate(samples.constData(), samples.size(), map, m_points);
    }
    if (m_points.empty())
        return;

    // How far the line travels up and down decides how to draw it. A calm trace (the cuff
    // pressure) is drawn as a smooth line. A busy one (a minute of pulse waves) is a band of
    // vertical strokes anyway, and drawing it as a line would cost tens of milliseconds. A
    // partial repaint judges by the travel its columns would have over the whole plot, so it
    // draws the same way as a full paint.
    double travel = 0.0;
    for (size_t i = 1; i < m_points.size(); ++i)
        travel += std::fabs(m_points[i].y() - m_points[i - 1].y());
    travel *= double(allColumns) / std::max(1, map.columns);
    const bool dense = map.rate / map.pixelsPerSecond >= 2.0;
    if (dense && travel * linePasses(series.width()) > kSmoothLineBudget)
        drawSpans(painter, frame.plot, series.color(), series.width());
    else
        drawLine(painter, series.color(), series.width());
    drawClipMarks(painter, frame);
}

void SignalViewerPainter::drawClipMarks(QPainter &painter, const Frame &frame)
{
    // Where the trace runs past the top or the bottom of the plot, a bar on that edge says so:
    // a trace cut off by the scale must not pass for a flat or solid one.
    const double top = frame.plot.top() - 0.5;
    const double bottom = frame.plot.bottom() + 0.5;
    m_clipRects.clear();
    for (const bool above : {true, false}) {
        int runStart = -1, runEnd = -1;
        const auto close = [&] {
            if (runStart >= 0)
                m_clipRects.emplace_back(
                    runStart - 1, above ? int(frame.plot.top()) - 2 : int(frame.plot.bottom()) - 1,
                    runEnd - runStart + 3, 3);
            runStart = -1;
        };
        for (const QPointF &p : m_points) {
            const bool out = above ? p.y() < top : p.y() > bottom;
            const int x = int(std::floor(p.x()));
            if (!out)
                continue;
            if (runStart >= 0 && x > runEnd + 2)
                close();
            if (runStart < 0)
                runStart = x;
            runEnd = x;
        }
        close();
    }
    if (m_clipRects.empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kClipColor);
    painter.drawRects(m_clipRects.data(), int(m_clipRects.size()));
    painter.setBrush(Qt::NoBrush);
}

int SignalViewerPainter::linePasses(qreal width)
{
    return width > 1.0 ? 4 : 1;
}

void SignalViewerPainter::drawLine(QPainter &painter, const QColor &color, qreal width) const
{
    // The raster engine strokes a wide pen through a general polygon fill, which costs a great
    // deal on long lines; a hairline is cheap. So a wide line is a hairline drawn at the four
    // corners of a small square, which thickens it the same in every direction.
    QPen pen(color, 1.0);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setRenderHint(QPainter::Antialiasing, true);
    const int n = int(m_points.size());
    if (linePasses(width) == 1) {
        painter.drawPolyline(m_points.data(), n);
        return;
    }
    const qreal d = width - 1.0;
    for (const QPointF &shift : {QPointF(-d / 2, -d / 2), QPointF(d / 2, -d / 2),
                                 QPointF(-d / 2, d / 2), QPointF(d / 2, d / 2)}) {
        painter.translate(shift);
        painter.drawPolyline(m_points.data(), n);
        painter.translate(-shift);
    }
}

void SignalViewerPainter::drawSpans(QPainter &painter, const QRectF &plot, const QColor &color,
                                    qreal width)
{
    // One filled upright bar per pixel column, from where the line enters the column to its
    // lowest and highest point, widened by the pen. A pen w pixels wide would paint each pixel
    // w times over; instead each column takes the union of the w bars that would cover it, so
    // every pixel is painted once. The bars of neighbouring columns touch (each starts where
    // the last ended), so a union is again one bar. Whole pixels throughout: the raster engine
    // fills those several times faster than fractional rectangles.
    const int w = std::max(1, int(std::lround(width)));
    const double half = width / 2;
    m_bars.clear();
    double previousY = m_points.front().y();
    size_t i = 0;
    while (i < m_points.size()) {
        const double x = m_points[i].x();
        double lo = previousY, hi = previousY;
        for (; i < m_points.size() && m_points[i].x() == x; ++i) {
            lo = std::min(lo, m_points[i].y());
            hi = std::max(hi, m_points[i].y());
            previousY = m_points[i].y();
        }
        const int top = int(std::floor(lo - half + 0.5));
        const int bottom = std::max(top + 1, int(std::floor(hi + half + 0.5)));
        m_bars.push_back({int(std::floor(x)), top, bottom});
    }
    // The bar of column c covers pixel columns c - (w - 1) / 2 ... c + w / 2.
    const int before = (w - 1) / 2;
    const int after = w / 2;
    m_spans.clear();
    for (size_t b = 0; b < m_bars.size(); ++b) {
        const int column = m_bars[b].column;
        int top = m_bars[b].top, bottom = m_bars[b].bottom;
        for (size_t k = b; k-- > 0 && m_bars[k].column >= column - after;) {
            top = std::min(top, m_bars[k].top);
            bottom = std::max(bottom, m_bars[k].bottom);
        }
        for (size_t k = b + 1; k < m_bars.size() && m_bars[k].column <= column + before; ++k) {
            top = std::min(top, m_bars[k].top);
            bottom = std::max(bottom, m_bars[k].bottom);
        }
        m_spans.emplace_back(column, top, 1, bottom - top);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const std::vector<QRect> &fill = columnsAsRows(plot) ? m_rows : m_spans;
    painter.drawRects(fill.data(), int(fill.size()));
    painter.setBrush(Qt::NoBrush);
}

bool SignalViewerPainter::columnsAsRows(const QRectF &plot)
{
    // The raster engine fills a rectangle row by row: a one-pixel-wide bar costs it about one
    // unit a row, and setting up any rectangle about six. The bars of a long window are tall
    // (a column holds a whole beat), so the fill grew with the samples behind each column,
    // while the same pixels cut into rows are a few long runs wherever neighbouring bars
    // overlap. A short window is the other way round: steep strokes, each row a run of its
    // own. Both are the same set of whole pixels; take whichever is cheaper.
    //
    // Rows the clip cannot show are dropped first: a trace far off the scale would otherwise
    // make bars thousands of rows tall.
    const int bandTop = int(std::floor(plot.top())) - 3;
    const int bandBottom = int(std::ceil(plot.bottom())) + 4;
    qint64 columnRows = 0;
    qint64 runs = 0;
    // An empty row interval that lies above every bar stands for "no column before".
    int previousColumn = std::numeric_limits<int>::min();
    int previousTop = bandTop, previousBottom = bandTop;
    for (QRect &r : m_spans) {
        const int top = std::clamp(r.top(), bandTop, bandBottom);
        const int bottom = std::clamp(r.top() + r.height(), bandTop, bandBottom);
        r.setTop(top);
        r.setHeight(bottom - top);
        columnRows += bottom - top;
        if (r.left() != previousColumn + 1)
            previousTop = previousBottom = bandTop;
        // A run starts on every row this column covers and the one before did not.
        runs += std::max(0, std::min(bottom, previousTop) - top) +
                std::max(0, bottom - std::max(top, previousBottom));
        previousColumn = r.left();
        previousTop = top;
        previousBottom = bottom;
    }
    if (runs * kRowsPerRun >= columnRows + qint64(m_spans.size()) * kRowsPerRun)
        return false;

    // Sweep the columns left to right, keeping where the open run of each row began.
    m_rows.clear();
    m_runStart.assign(size_t(bandBottom - bandTop), 0);
    previousColumn = std::numeric_limits<int>::min();
    previousTop = previousBottom = bandTop;
    const auto close = [&](int from, int to) {
        for (int y = from; y < to; ++y) {
            const int start = m_runStart[size_t(y - bandTop)];
            m_rows.emplace_back(start, y, previousColumn - start + 1, 1);
        }
    };
    for (const QRect &r : m_spans) {
        const int top = r.top();
        const int bottom = r.top() + r.height();
        if (r.left() != previousColumn + 1) {
            close(previousTop, previousBottom);
            previousTop = previousBottom = bandTop;
        }
        close(previousTop, std::min(previousBottom, top));
        close(std::max(previousTop, bottom), previousBottom);
        for (int y = top; y < std::min(bottom, previousTop); ++y)
            m_runStart[size_t(y - bandTop)] = r.left();
        for (int y = std::max(top, previousBottom); y < bottom; ++y)
            m_runStart[size_t(y - bandTop)] = r.left();
        previousColumn = r.left();
        previousTop = top;
        previousBottom = bottom;
    }
    close(previousTop, previousBottom);
    return true;
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
        // Round points of a wide pen go through the stroker one by one; a dot drawn once and
        // stamped is many times cheaper.
        const qreal dpr = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
        if (m_dot.isNull() || m_dotColor != series.color() || m_dotWidth != series.width() ||
            m_dot.devicePixelRatio() != dpr) {
            const int side = int(std::ceil(series.width() * dpr)) + 2;
            m_dot = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
            m_dot.fill(Qt::transparent);
            QPainter p(&m_dot);
            p.setRenderHint(QPainter::Antialiasing, true);
            p.setPen(Qt::NoPen);
            p.setBrush(series.color());
            const qreal r = series.width() * dpr / 2;
            p.drawEllipse(QPointF(side / 2.0, side / 2.0), r, r);
            p.end();
            m_dot.setDevicePixelRatio(dpr);
            m_dotColor = series.color();
            m_dotWidth = series.width();
        }
        const QPointF centre(m_dot.width() / dpr / 2.0, m_dot.height() / dpr / 2.0);
        for (const QPointF &p : m_points)
            painter.drawImage(p - centre, m_dot);
    } else {
        drawLine(painter, series.color(), series.width());
    }
}

void SignalViewerPainter::drawMarkers(QPainter &painter, const Frame &frame,
                                      const QList<SignalViewerMarker> &markers)
{
    const QRectF &plot = frame.plot;
    const double pps = plot.width() / frame.window;
    painter.setRenderHint(QPainter::Antialiasing, true);
    m_labelBoxes.clear();
    for (const SignalViewerMarker &m : markers) {
        const double x = plot.left() + (m.time() - frame.offset) * pps;
        if (x < plot.left() - 0.5 || x > plot.right() + 0.5)
            continue;
        QPen pen(m.color(), m.isMovable() ? 2.0 : 1.5, m.lineStyle());
        painter.setPen(pen);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        if (m.text().isEmpty())
            continue;
        // The label hangs from the top of the line, on its right unless that leaves the plot.
        const QSizeF size = m.layout().size();
        QRectF box(x + 3, plot.top() + 3, size.width() + 8, size.height() + 2);
        if (box.right() > plot.right())
            box.moveRight(x - 3);
        // Markers close in time (the same point of several records) stack their labels.
        for (bool moved = true; moved && box.bottom() < plot.bottom();) {
            moved = false;
            for (const QRectF &other : m_labelBoxes) {
                if (other.intersects(box)) {
                    box.moveTop(other.bottom() + 2);
                    moved = true;
                }
            }
        }
        m_labelBoxes.push_back(box);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m.color());
        painter.drawRoundedRect(box, 3, 3);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(Qt::white);
        painter.drawStaticText(box.topLeft() + QPointF(4, 1), m.layout());
    }
}
