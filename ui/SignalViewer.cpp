#include "ui/SignalViewer.h"

#include "toolkit/widgets/StyleHelper.h"

#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>

#include <cmath>

namespace {
// Room for the longest value label the axes use ("-0.300", "1000").
int marginFor(const QFont &font)
{
    return QFontMetrics(font).horizontalAdvance(QStringLiteral("-0.000")) + 10;
}
} // namespace

SignalViewer::SignalViewer(QWidget *parent)
    : QWidget(parent)
    , m_scrollBar(new QScrollBar(Qt::Horizontal, this))
    , m_fitButton(new QToolButton(this))
{
    installEventFilter(this);
    setMouseTracking(true);
    m_margin = marginFor(font());
    m_scrollBar->setObjectName(QStringLiteral("scrollWithButtons"));
    m_scrollBar->setSingleStep(1);
    m_scrollBar->setPageStep(1);
    m_scrollBar->setRange(0, 0);
    m_scrollBar->hide();
    connect(m_scrollBar, &QScrollBar::valueChanged, this, &SignalViewer::onScrollBarMoved);
    m_fitButton->setObjectName(QStringLiteral("fitToData"));
    m_fitButton->setCheckable(true);
    m_fitButton->setAutoRaise(true);
    m_fitButton->setStyleSheet(QStringLiteral(
        "QToolButton { background: transparent; border: none; padding: 2px; }"
        "QToolButton:hover, QToolButton:checked { background: rgba(128, 128, 128, 70); "
        "border-radius: 3px; }"));
    // Grey reads on the light and the dark plot background alike.
    m_fitButton->setIcon(StyleHelper::tintedIcon(QStringLiteral(":/icons/arrow-up-down.svg"),
                                                 QColor(0x80, 0x80, 0x80)));
    m_fitButton->setIconSize(QSize(14, 14));
    m_fitButton->setToolTip(tr("Fit to data: the whole height of the traces in view. Click again "
                               "for the vertical scale that is set."));
    m_fitButton->setCursor(Qt::PointingHandCursor);
    connect(m_fitButton, &QToolButton::toggled, this, &SignalViewer::setFitToData);
    // Four units side by side on a small screen leave each plot little more than this.
    setMinimumSize(160, 80);
}

void SignalViewer::setFitToData(bool on)
{
    if (m_fitButton->isChecked() != on)
        m_fitButton->setChecked(on); // comes back here through the button's signal
    if (m_fitToData == on)
        return;
    m_fitToData = on;
    refit();
    update();
}

bool SignalViewer::refit()
{
    if (!m_fitToData)
        return false;
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const SignalViewerSeries &s : std::as_const(m_series)) {
        if (!s.isSampled() || !(s.rate() > 0.0))
            continue;
        const QList<double> samples = s.samples();
        const qsizetype from =
            std::clamp<qsizetype>(qsizetype(m_offset * s.rate()), 0, samples.size());
        const qsizetype to = std::clamp<qsizetype>(
            qsizetype(std::ceil((m_offset + m_windowLength) * s.rate())) + 1, from, samples.size());
        for (qsizetype i = from; i < to; ++i) {
            const double v = samples[i];
            if (std::isfinite(v)) {
                low = std::min(low, v);
                high = std::max(high, v);
            }
        }
    }
    const bool valid = high >= low;
    double lower = m_lower, upper = m_upper;
    if (valid) {
        // A flat trace still gets a band to sit in; otherwise 5 % room above and below.
        const double pad = high > low ? (high - low) * 0.05 : std::max(std::fabs(high) * 0.1, 0.01);
        lower = low - pad;
        upper = high + pad;
    }
    const bool changed = valid != m_fitValid || lower != m_fitLower || upper != m_fitUpper;
    m_fitValid = valid;
    m_fitLower = lower;
    m_fitUpper = upper;
    return changed;
}

void SignalViewer::placeFitButton()
{
    const QRect plot = plotRect();
    const int side = std::min(22, std::max(14, m_margin - 8));
    m_fitButton->setGeometry(plot.right() + 5, plot.top(), side, side);
}

SignalViewer::~SignalViewer() = default;

void SignalViewer::setLegendOnly(const QList<SignalViewerSeries> &entries)
{
    m_legendOnly = entries;
    update();
}

void SignalViewer::setSeries(const QList<SignalViewerSeries> &series)
{
    m_series = series;
    updateData();
}

void SignalViewer::setValueRange(double lower, double upper)
{
    if (!(upper > lower) || (lower == m_lower && upper == m_upper))
        return;
    m_lower = lower;
    m_upper = upper;
    update();
}

void SignalViewer::setWindowLength(double seconds)
{
    if (!(seconds > 0.0))
        return;
    m_windowLength = seconds;
    updateScrollRange();
    m_scrollBar->blockSignals(true);
    m_scrollBar->setValue(0);
    m_scrollBar->blockSignals(false);
    // The window starts over at the beginning, or at the newest data while following.
    setOffset(0.0);
    if (!m_followPaused && m_totalLength > m_windowLength)
        setOffset(std::ceil(m_totalLength / ScrollStepSeconds) * ScrollStepSeconds);
    update();
}

void SignalViewer::setOffset(double seconds)
{
    const double step = ScrollStepSeconds;
    double offset = std::floor(std::max(0.0, seconds) / step) * step;
    if (m_windowLength > m_totalLength)
        offset = 0.0;
    else if (offset + m_windowLength > m_totalLength)
        offset = std::ceil(m_totalLength / step) * step - m_windowLength;
    const bool changed = offset != m_offset;
    m_offset = offset;
    refit();
    update();
    // Viewers that scroll together listen to each other, so only a real change is announced.
    if (changed)
        emit offsetSecondsChanged(int(offset));
    m_scrollBar->blockSignals(true);
    m_scrollBar->setValue(int(offset / step));
    m_scrollBar->blockSignals(false);
}

void SignalViewer::setScrollMode(bool on)
{
    m_scrollMode = on;
    placeScrollBar();
}

void SignalViewer::setFollowPaused(bool paused)
{
    m_followPaused = paused;
}

void SignalViewer::setTitle(const QString &title)
{
    m_title = title;
    update();
}

void SignalViewer::setUnit(const QString &unit)
{
    m_unit = unit;
    update();
}

void SignalViewer::setTimeTitle(const QString &title)
{
    m_timeTitle = title;
    update();
}

void SignalViewer::setMarker(const SignalViewerMarker &marker)
{
    for (SignalViewerMarker &m : m_markers) {
        if (m.tag() == marker.tag()) {
            m = marker;
            update();
            return;
        }
    }
    m_markers.append(marker);
    update();
}

void SignalViewer::removeMarker(const QString &tag)
{
    m_markers.removeIf([&](const SignalViewerMarker &m) { return m.tag() == tag; });
    if (m_draggedTag == tag)
        release();
    update();
}

void SignalViewer::clearMarkers()
{
    m_markers.clear();
    if (!m_draggedTag.isEmpty())
        release();
    update();
}

double SignalViewer::markerTime(const QString &tag) const
{
    for (const SignalViewerMarker &m : m_markers) {
        if (m.tag() == tag)
            return m.time();
    }
    return -1.0;
}

void SignalViewer::setMarkersMovable(bool movable)
{
    m_markersMovable = movable;
    if (!movable && !m_draggedTag.isEmpty())
        release();
}

void SignalViewer::setDark(bool dark)
{
    m_darkSet = true;
    m_dark = dark;
    update();
}

bool SignalViewer::isDark() const
{
    if (m_darkSet)
        return m_dark;
    return palette().color(QPalette::Window).lightness() < 128;
}

double SignalViewer::pixelsPerSecond() const
{
    const int plotWidth = width() - 2 * m_margin;
    if (plotWidth <= 0 || !(m_windowLength > 0.0))
        return 0.0;
    return plotWidth / m_windowLength;
}

double SignalViewer::timeAt(double x) const
{
    const double pps = pixelsPerSecond();
    return pps > 0.0 ? (x - m_margin) / pps + m_offset : m_offset;
}

QRect SignalViewer::plotRect() const
{
    const QFontMetrics fm(font());
    const QRect area = contentsRect();
    const int top = area.top() + fm.height() + 8;
    const int bottom = area.bottom() + 1 - (fm.height() + 6);
    return QRect(m_margin, top, std::max(0, width() - 2 * m_margin), std::max(0, bottom - top));
}

void SignalViewer::updateData()
{
    const double previousTotal = m_totalLength;
    const double previousOffset = m_offset;
    double total = 0.0;
    for (const SignalViewerSeries &s : std::as_const(m_series))
        total = std::max(total, s.length());
    const bool grew = total > m_totalLength;
    const bool shrank = total < m_totalLength;
    m_totalLength = total;
    updateScrollRange();
    if (!m_followPaused && grew && m_totalLength > m_windowLength) {
        // The newest data in view with some room after it for what comes next.
        const double step = ScrollStepSeconds;
        const double offset =
            double(int(std::ceil(m_totalLength / step + 1.0))) * step - m_windowLength;
        const bool changed = offset != m_offset;
        m_offset = offset;
        if (changed)
            emit offsetSecondsChanged(int(offset));
        m_scrollBar->blockSignals(true);
        m_scrollBar->setValue(int(offset / step));
        m_scrollBar->blockSignals(false);
    } else if (shrank) {
        // A shorter series (a recording started over) may no longer reach the window's offset.
        setOffset(m_offset);
    }
    // A fitted range that moves needs the whole plot drawn again, not only the new columns.
    const bool refitted = refit();
    // New samples at the end of a window that did not move change only the columns they
    // fall in: repaint those (live traces grow by a column or less between repaints).
    const QRect plot = plotRect();
    if (grew && !refitted && m_offset == previousOffset && !plot.isEmpty() && m_windowLength > 0) {
        const double pps = plot.width() / m_windowLength;
        const int from = int(std::floor(plot.left() + (previousTotal - m_offset) * pps)) - 3;
        const int to = int(std::ceil(plot.left() + (m_totalLength - m_offset) * pps)) + 3;
        if (to < plot.left() || from > plot.right())
            return;
        update(QRect(from, plot.top() - 3, to - from, plot.height() + 6) & rect());
        return;
    }
    update();
}

int SignalViewer::scrollMaximum() const
{
    return int(std::ceil(m_totalLength / ScrollStepSeconds)) -
           int(m_windowLength / ScrollStepSeconds);
}

void SignalViewer::updateScrollRange()
{
    m_scrollBar->blockSignals(true);
    m_scrollBar->setRange(0, std::max(0, scrollMaximum()));
    m_scrollBar->blockSignals(false);
    placeScrollBar();
}

void SignalViewer::placeScrollBar()
{
    const bool shown = m_scrollMode && scrollMaximum() > 0;
    m_scrollBar->setGeometry(0, height() - ScrollBarHeight, width(), ScrollBarHeight);
    m_scrollBar->setVisible(shown);
    // Live data calls this at every refresh; only a change of the plot's size needs a full
    // repaint.
    const QMargins margins(0, 0, 0, shown ? ScrollBarHeight : 0);
    if (contentsMargins() == margins)
        return;
    setContentsMargins(margins);
    update();
    placeFitButton();
}

void SignalViewer::onScrollBarMoved(int value)
{
    // Scrolling back to look at older data stops the window from running away; scrolling to
    // the end picks the newest data up again.
    m_followPaused = value < m_scrollBar->maximum();
    setOffset(double(value) * ScrollStepSeconds);
}

bool SignalViewer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != this)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *e = static_cast<QMouseEvent *>(event);
        if (e->button() == Qt::LeftButton)
            pressAt(e->position().x());
        break;
    }
    case QEvent::MouseMove: {
        const double x = static_cast<QMouseEvent *>(event)->position().x();
        if (!m_draggedTag.isEmpty())
            dragTo(x);
        else if (m_markersMovable)
            // Show that the marker under the mouse can be taken.
            setCursor(markerAt(x) ? Qt::SizeHorCursor : Qt::ArrowCursor);
        break;
    }
    case QEvent::MouseButtonRelease:
        if (!m_draggedTag.isEmpty())
            release();
        break;
    default:
        break;
    }
    // Others (the experiment viewer's context menu) see every event too.
    return false;
}

const SignalViewerMarker *SignalViewer::markerAt(double x) const
{
    const double pps = pixelsPerSecond();
    for (const SignalViewerMarker &m : m_markers) {
        if (!m.isMovable())
            continue;
        const double px = (m.time() - m_offset) * pps;
        if (std::fabs(px - (x - m_margin)) < MarkerHitPixels)
            return &m;
    }
    return nullptr;
}

bool SignalViewer::pressAt(double x)
{
    if (!m_markersMovable)
        return false;
    const SignalViewerMarker *m = markerAt(x);
    if (!m)
        return false;
    m_draggedTag = m->tag();
    setCursor(Qt::SizeHorCursor);
    emit markerMoveStarted();
    return true;
}

void SignalViewer::dragTo(double x)
{
    const double pps = pixelsPerSecond();
    if (!(pps > 0.0))
        return;
    const double px = std::clamp(x - m_margin, 0.0, double(width() - 2 * m_margin));
    const double time = px / pps + m_offset;
    for (SignalViewerMarker &m : m_markers) {
        if (m.tag() != m_draggedTag)
            continue;
        m.setTime(time);
        emit markerUpdated(m.tag(), time, m.text());
        update();
        return;
    }
}

void SignalViewer::release()
{
    m_draggedTag.clear();
    setCursor(Qt::ArrowCursor);
    emit markerMoveStopped();
}

void SignalViewer::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    SignalViewerPainter::Frame frame;
    frame.plot = plotRect();
    frame.offset = m_offset;
    frame.window = m_windowLength;
    frame.lower = shownLower();
    frame.upper = shownUpper();
    frame.dark = isDark();
    frame.title = m_title;
    frame.unit = m_unit;
    frame.timeTitle = m_timeTitle;
    if (event->rect() != rect())
        frame.clip = event->rect();
    m_painter.paint(painter, frame, m_series, m_markers, m_legendOnly);
}

void SignalViewer::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeScrollBar();
    placeFitButton();
}

void SignalViewer::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        m_margin = marginFor(font());
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
        update();
}
