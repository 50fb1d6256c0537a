#include "ui/AnimalHistoryPlot.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {
const QColor kSBP(0xD3, 0x54, 0x00);
const QColor kDBP(0x6C, 0x3E, 0xB8);
const QColor kBPM(0xC6, 0x28, 0x28);
const QColor kGrey(0x90, 0x90, 0x90);

// Round steps for an axis from lo to hi: 1, 2 or 5 times a power of ten.
double niceStep(double span, int wanted)
{
    if (span <= 0)
        return 1.0;
    const double raw = span / wanted;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        if (m * power >= raw)
            return m * power;
    }
    return 10.0 * power;
}
} // namespace

AnimalHistoryPlot::AnimalHistoryPlot(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("animalHistoryPlot"));
}

void AnimalHistoryPlot::setDays(const QList<Day> &days)
{
    m_days = days;
    std::sort(m_days.begin(), m_days.end(),
              [](const Day &a, const Day &b) { return a.when < b.when; });
    update();
}

void AnimalHistoryPlot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    render(painter, rect());
}

void AnimalHistoryPlot::render(QPainter &painter, const QRectF &area) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetricsF fm(painter.font());
    const double left = fm.horizontalAdvance(QStringLiteral("0000")) + 10;
    const double bottom = fm.height() + 8;
    const QRectF plots = area.adjusted(left, fm.height() + 4, -10, -bottom);
    const double gap = fm.height() + 6;
    const QRectF upper(plots.left(), plots.top(), plots.width(), (plots.height() - gap) * 0.62);
    const QRectF lower(plots.left(), upper.bottom() + gap, plots.width(),
                       plots.bottom() - upper.bottom() - gap);

    const QColor text = palette().color(QPalette::Text);
    painter.setPen(text);
    if (m_days.isEmpty()) {
        painter.drawText(area, Qt::AlignCenter, tr("No sessions"));
        painter.restore();
        return;
    }

    // Days are spread by date; a single day sits in the middle.
    const qint64 t0 = m_days.first().when.toMSecsSinceEpoch();
    const qint64 t1 = m_days.last().when.toMSecsSinceEpoch();
    const double span = std::max<qint64>(t1 - t0, 1);
    auto xOf = [&](const Day &d) {
        if (t1 == t0)
            return plots.center().x();
        const double inset = plots.width() * 0.04;
        return plots.left() + inset +
               (d.when.toMSecsSinceEpoch() - t0) / span * (plots.width() - 2 * inset);
    };

    using Pick = std::function<QPair<double, double>(const Day &)>;
    auto drawPanel = [&](const QRectF &box, const QString &title,
                         const QList<QPair<Pick, QColor>> &series) {
        double lo = 1e9, hi = -1e9;
        for (const Day &d : m_days) {
            if (!d.hasMean)
                continue;
            for (const auto &s : series) {
                const auto [v, sd] = s.first(d);
                const double e = std::isfinite(sd) ? sd : 0.0;
                lo = std::min(lo, v - e);
                hi = std::max(hi, v + e);
            }
        }
        if (lo > hi)
            lo = 0, hi = 1;
        // At least 20 units from top to bottom: a steady animal is not drawn as a wild one.
        const double step = niceStep(std::max(hi - lo, 20.0), 4);
        lo = std::floor(lo / step) * step - step;
        hi = std::ceil(hi / step) * step + step;
        auto yOf = [&](double v) { return box.bottom() - (v - lo) / (hi - lo) * box.height(); };

        const QPen grid(QColor(0xD0, 0xD0, 0xD0), 0.5, Qt::DashLine);
        painter.setPen(grid);
        for (double v = lo; v <= hi + step / 2; v += step) {
            painter.drawLine(QPointF(box.left(), yOf(v)), QPointF(box.right(), yOf(v)));
            painter.setPen(text);
            painter.drawText(QRectF(area.left(), yOf(v) - fm.height() / 2, left - 6, fm.height()),
                             Qt::AlignRight | Qt::AlignVCenter, QString::number(v, 'f', 0));
            painter.setPen(grid);
        }
        painter.setPen(text);
        painter.drawRect(box);
        painter.drawText(QPointF(box.left() + 4, box.top() - 4), title);

        for (const auto &s : series) {
            QPainterPath line;
            bool first = true;
            for (const Day &d : m_days) {
                if (!d.hasMean)
                    continue;
                const auto [v, sd] = s.first(d);
                const QPointF p(xOf(d), yOf(v));
                first ? line.moveTo(p) : line.lineTo(p);
                first = false;
                painter.setPen(QPen(s.second, 1.2));
                if (std::isfinite(sd) && sd > 0) {
                    painter.drawLine(QPointF(p.x(), yOf(v - sd)), QPointF(p.x(), yOf(v + sd)));
                    painter.drawLine(QPointF(p.x() - 3, yOf(v - sd)),
                                     QPointF(p.x() + 3, yOf(v - sd)));
                    painter.drawLine(QPointF(p.x() - 3, yOf(v + sd)),
                                     QPointF(p.x() + 3, yOf(v + sd)));
                }
                // A flagged day is hollow: its mean is not to be trusted as the others are.
                painter.setBrush(d.flagged ? QBrush(Qt::white) : QBrush(s.second));
                painter.drawEllipse(p, 3.5, 3.5);
                painter.setBrush(Qt::NoBrush);
            }
            painter.setPen(QPen(s.second, 1.0, Qt::DotLine));
            painter.drawPath(line);
        }
    };

    drawPanel(upper, tr("SBP and DBP, mmHg (mean ± SD)"),
              {{[](const Day &d) { return qMakePair(d.sbp, d.sbpSd); }, kSBP},
               {[](const Day &d) { return qMakePair(d.dbp, d.dbpSd); }, kDBP}});
    drawPanel(lower, tr("Heart rate, bpm"),
              {{[](const Day &d) { return qMakePair(d.bpm, d.bpmSd); }, kBPM}});

    // Dates under the lower plot; days without a mean as grey marks on both date axes.
    painter.setPen(text);
    double lastLabelRight = -1e9;
    for (const Day &d : m_days) {
        const double x = xOf(d);
        if (!d.hasMean) {
            painter.setPen(QPen(kGrey, 2));
            for (const QRectF &box : {upper, lower})
                painter.drawLine(QPointF(x, box.bottom() - 8), QPointF(x, box.bottom()));
            painter.setPen(text);
        }
        const QString label = d.when.toLocalTime().toString(QStringLiteral("dd.MM"));
        const double w = fm.horizontalAdvance(label);
        if (x - w / 2 > lastLabelRight + 4) {
            painter.drawText(QPointF(x - w / 2, lower.bottom() + fm.ascent() + 3), label);
            lastLabelRight = x + w / 2;
        }
    }
    painter.restore();
}
