#include "ui/SessionReport.h"

#include "analysis/CorvidaExperiment.h"
#include "session/AcceptanceRules.h"
#include "settings/CorvidaSettings.h"
#include "ui/AnimalHistoryPlot.h"
#include "ui/SessionTableModel.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QPageLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("SessionReport", text);
}

QString number(double v)
{
    return v > 0 && std::isfinite(v) ? QString::number(v, 'f', 0) : QStringLiteral("–");
}

QString when(const QDateTime &t)
{
    return QLocale().toString(t.toLocalTime(), QStringLiteral("yyyy-MM-dd HH:mm"));
}

// A page in points (1/72 inch) with a cursor that moves down and starts a new page when the
// next block does not fit.
class Page
{
public:
    Page(QPdfWriter &writer, QPainter &painter)
        : m_writer(writer)
        , m_painter(painter)
        , m_width(writer.width())
        , m_height(writer.height())
    {}
    double width() const { return m_width; }
    double y() const { return m_y; }
    void advance(double h) { m_y += h; }
    void need(double h)
    {
        if (m_y + h <= m_height || m_y == 0)
            return;
        m_writer.newPage();
        m_y = 0;
    }
    void line(const QString &text, int pointSize = 10, bool bold = false, double gap = 3)
    {
        QFont font = m_painter.font();
        font.setPointSizeF(pointSize);
        font.setBold(bold);
        m_painter.setFont(font);
        m_painter.setPen(Qt::black);
        const QRectF box(0, m_y, m_width, 1000);
        const QRectF used = m_painter.boundingRect(box, Qt::TextWordWrap, text);
        need(used.height());
        m_painter.drawText(QRectF(0, m_y, m_width, used.height()), Qt::TextWordWrap, text);
        m_y += used.height() + gap;
    }

private:
    QPdfWriter &m_writer;
    QPainter &m_painter;
    double m_width;
    double m_height;
    double m_y = 0;
};

bool open(QPdfWriter &writer, QPainter &painter, const QString &title)
{
    writer.setTitle(title);
    writer.setCreator(QCoreApplication::applicationName());
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                     QMarginsF(18, 15, 15, 15), QPageLayout::Millimeter));
    writer.setResolution(72);
    if (!painter.begin(&writer))
        return false;
    QFont font = painter.font();
    font.setFamily(QStringLiteral("Open Sans"));
    painter.setFont(font);
    painter.setRenderHint(QPainter::Antialiasing);
    return true;
}

// A table with a header row; the last column takes what the others leave.
void table(Page &page, QPainter &painter, const QStringList &header, const QList<QStringList> &rows,
           const QList<double> &widths, const QList<bool> &greyRows = {})
{
    QFont font = painter.font();
    font.setPointSizeF(9);
    font.setBold(false);
    painter.setFont(font);
    const double h = QFontMetricsF(font).height() + 4;
    auto drawRow = [&](const QStringList &cells, bool bold, bool grey) {
        page.need(h);
        QFont f = font;
        f.setBold(bold);
        painter.setFont(f);
        painter.setPen(grey ? QColor(0x80, 0x80, 0x80) : QColor(Qt::black));
        double x = 0;
        for (int c = 0; c < cells.size(); ++c) {
            const double w = c < widths.size() ? widths[c] : page.width() - x;
            const QString text =
                painter.fontMetrics().elidedText(cells[c], Qt::ElideRight, int(w - 6));
            painter.drawText(
                QRectF(x + 3, page.y(), w - 6, h),
                Qt::AlignVCenter | (c + 1 < cells.size() ? Qt::AlignRight : Qt::AlignLeft), text);
            x += w;
        }
        painter.setPen(QPen(QColor(0xC0, 0xC0, 0xC0), 0.5));
        painter.drawLine(QPointF(0, page.y() + h), QPointF(page.width(), page.y() + h));
        page.advance(h);
    };
    drawRow(header, true, false);
    for (int r = 0; r < rows.size(); ++r)
        drawRow(rows[r], false, r < greyRows.size() && greyRows[r]);
    painter.setPen(Qt::black);
    page.advance(6);
}

// The cuff pressure of one cycle with its markers, min and max per column so no beat is lost.
void trace(QPainter &painter, const QRectF &box, CorvidaExperiment *record)
{
    const QList<double> p = record->getPressure();
    const double rate = record->getSamplingRate();
    painter.setPen(QPen(QColor(0xB0, 0xB0, 0xB0), 0.5));
    painter.drawRect(box);
    if (p.isEmpty() || rate <= 0)
        return;
    const double top = std::max(1.0, *std::max_element(p.begin(), p.end()));
    const double seconds = p.size() / rate;
    auto xOf = [&](double t) { return box.left() + t / seconds * box.width(); };
    auto yOf = [&](double v) { return box.bottom() - std::max(0.0, v) / top * box.height(); };
    const int columns = std::max(1, int(box.width() * 2));
    painter.setPen(QPen(QColor(0x1F, 0x5F, 0x9F), 0.6));
    QPainterPath path;
    for (int c = 0; c < columns; ++c) {
        const qsizetype a = qsizetype(double(c) / columns * p.size());
        const qsizetype b = std::max(a + 1, qsizetype(double(c + 1) / columns * p.size()));
        const auto [lo, hi] = std::minmax_element(p.begin() + a, p.begin() + std::min(b, p.size()));
        const double x = box.left() + (c + 0.5) / columns * box.width();
        if (c == 0)
            path.moveTo(x, yOf(*hi));
        path.lineTo(x, yOf(*hi));
        path.lineTo(x, yOf(*lo));
    }
    painter.drawPath(path);
    painter.setPen(QColor(0x60, 0x60, 0x60));
    painter.drawText(QPointF(box.left() + 2, box.bottom() - 2),
                     QStringLiteral("%1 s").arg(seconds, 0, 'f', 0));
    painter.drawText(QRectF(box.left(), box.top() + 1, box.width() - 2, 10),
                     Qt::AlignRight | Qt::AlignTop,
                     QStringLiteral("%1 %2").arg(number(top), tr("mmHg")));
    for (const auto &[t, colour, label] :
         {std::make_tuple(record->getSBPTime(), QColor(0xD3, 0x54, 0x00), QStringLiteral("SBP")),
          std::make_tuple(record->getDBPTime(), QColor(0x6C, 0x3E, 0xB8), QStringLiteral("DBP"))}) {
        if (t <= 0)
            continue;
        painter.setPen(QPen(colour, 0.8));
        painter.drawLine(QPointF(xOf(t), box.top()), QPointF(xOf(t), box.bottom()));
        painter.drawText(QPointF(xOf(t) + 2, box.top() + 8), label);
    }
}

QString verdictOf(const CorvidaExperiment *r)
{
    QString text = r->isAccepted() ? tr("accepted")
                                   : (r->getReason().isEmpty() ? tr("rejected") : r->getReason());
    if (r->getVerdict() == CorvidaExperiment::VerdictAccepted)
        text = tr("accepted by the operator");
    else if (r->getVerdict() == CorvidaExperiment::VerdictRejected)
        text = tr("rejected by the operator");
    return r->getAcclimation() ? tr("acclimation") + QStringLiteral(": ") + text : text;
}

void statistics(Page &page, const SessionStatistics::Summary &s)
{
    page.line(tr("Accepted measurement cycles: %1 of %2").arg(s.accepted).arg(s.total));
    page.line(tr("SBP %1 mmHg · DBP %2 mmHg · MAP %3 mmHg · heart rate %4 bpm (mean ± SD)")
                  .arg(SessionTableModel::meanSd(s.sbp, 1), SessionTableModel::meanSd(s.dbp, 1),
                       SessionTableModel::meanSd(s.map, 1), SessionTableModel::meanSd(s.bpm, 0)));
    if (s.flagged)
        page.line(tr("To repeat: %1").arg(s.flags.join(QStringLiteral("; "))), 10, true);
}
} // namespace

SessionReport::SessionReport(const CorvidaSettings *settings)
    : m_settings(settings)
{}

QString SessionReport::suggestedName(const QString &rodent, const QDateTime &when)
{
    QString name = rodent.trimmed().isEmpty() ? tr("Session") : rodent.trimmed();
    name.replace(QRegularExpression(QStringLiteral("[\\\\/:*?\"<>|]")), QStringLiteral("_"));
    const QDateTime date = when.isValid() ? when : QDateTime::currentDateTime();
    return name + QLatin1Char(' ') + date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd")) +
           QStringLiteral(".pdf");
}

bool SessionReport::writeSession(const QString &path, const SessionCatalog::Session &session,
                                 QString *error) const
{
    QPdfWriter writer(path);
    QPainter painter;
    if (!open(writer, painter, tr("Session of %1").arg(session.rodent))) {
        if (error)
            *error = tr("Cannot write \"%1\"").arg(path);
        return false;
    }
    Page page(writer, painter);
    page.line(tr("Blood pressure session"), 16, true, 8);
    page.line(tr("Rodent: %1").arg(session.rodent.isEmpty() ? tr("(not named)") : session.rodent),
              11, true);
    const QDateTime last =
        session.cycles.isEmpty() ? session.started : session.cycles.last()->startDateTime();
    page.line(tr("Date: %1 to %2").arg(when(session.started), when(last)));
    page.line(tr("Unit: %1").arg(session.unit));
    int acclimation = 0;
    for (const CorvidaExperiment *r : session.cycles)
        acclimation += r->getAcclimation() ? 1 : 0;
    page.line(tr("Cycles: %1 acclimation, %2 of %3 measurement cycles measured")
                  .arg(acclimation)
                  .arg(session.summary.total)
                  .arg(session.planned));
    const AcceptanceRules::Limits a =
        m_settings ? AcceptanceRules::limitsFrom(*m_settings) : AcceptanceRules::Limits();
    page.line(tr("Acceptance: heart rate %1–%2 bpm, SBP %3–%4 mmHg, DBP %5–%6 mmHg, SBP − DBP at "
                 "least %7 mmHg, irregular beats at most %8 %")
                  .arg(a.minHeartRate)
                  .arg(a.maxHeartRate)
                  .arg(a.minSBP)
                  .arg(a.maxSBP)
                  .arg(a.minDBP)
                  .arg(a.maxDBP)
                  .arg(a.minPulsePressure)
                  .arg(a.maxIrregularPercent),
              9, false, 8);

    page.line(tr("Result"), 12, true);
    statistics(page, session.summary);
    page.advance(6);

    page.line(tr("Cycles"), 12, true);
    QList<QStringList> rows;
    QList<bool> grey;
    for (CorvidaExperiment *r : session.cycles) {
        const double sbp = r->getSBP(), dbp = r->getDBP();
        rows << QStringList{r->getAcclimation() ? tr("A%1").arg(r->getCycle())
                                                : QString::number(r->getCycle() - acclimation),
                            r->startDateTime().toLocalTime().toString(QStringLiteral("HH:mm:ss")),
                            number(sbp),
                            number(dbp),
                            sbp > 0 && dbp > 0 ? number(dbp + (sbp - dbp) / 3.0)
                                               : QStringLiteral("–"),
                            number(r->getBPM()),
                            verdictOf(r)};
        grey << r->getAcclimation();
    }
    table(page, painter,
          {tr("Cycle"), tr("Time"), tr("SBP"), tr("DBP"), tr("MAP"), tr("HR"), tr("Verdict")}, rows,
          {40, 60, 45, 45, 45, 45}, grey);

    // One small trace per accepted measurement cycle, three to a row.
    QList<CorvidaExperiment *> accepted;
    for (CorvidaExperiment *r : session.cycles) {
        if (r->isAccepted() && !r->getAcclimation())
            accepted << r;
    }
    if (!accepted.isEmpty()) {
        page.line(tr("Accepted cycles: cuff pressure with the SBP and DBP markers"), 12, true);
        const double gap = 10, w = (page.width() - 2 * gap) / 3, h = w * 0.55, caption = 12;
        for (int i = 0; i < accepted.size(); ++i) {
            if (i % 3 == 0) {
                if (i > 0)
                    page.advance(h + caption + gap);
                page.need(h + caption);
            }
            CorvidaExperiment *r = accepted[i];
            const QRectF box((i % 3) * (w + gap), page.y() + caption, w, h);
            QFont font = painter.font();
            font.setPointSizeF(8);
            font.setBold(false);
            painter.setFont(font);
            painter.setPen(Qt::black);
            painter.drawText(
                QPointF(box.left(), page.y() + 9),
                tr("Cycle %1: %2/%3 mmHg, %4 bpm")
                    .arg(r->getCycle() - acclimation)
                    .arg(number(r->getSBP()), number(r->getDBP()), number(r->getBPM())));
            trace(painter, box, r);
        }
        page.advance(h + caption + gap);
    }
    page.line(tr("Printed %1 by %2")
                  .arg(when(QDateTime::currentDateTime()), QCoreApplication::applicationName()),
              7);
    return painter.end();
}

bool SessionReport::writeAnimal(const QString &path, const QString &rodent,
                                const QList<SessionCatalog::Session> &sessions,
                                QString *error) const
{
    QPdfWriter writer(path);
    QPainter painter;
    if (!open(writer, painter, tr("Sessions of %1").arg(rodent))) {
        if (error)
            *error = tr("Cannot write \"%1\"").arg(path);
        return false;
    }
    Page page(writer, painter);
    page.line(tr("Blood pressure across days"), 16, true, 8);
    page.line(tr("Rodent: %1").arg(rodent), 11, true);
    if (!sessions.isEmpty())
        page.line(tr("Sessions: %1, from %2 to %3")
                      .arg(sessions.size())
                      .arg(when(sessions.first().started), when(sessions.last().started)),
                  10, false, 8);

    QList<AnimalHistoryPlot::Day> days;
    QList<QStringList> rows;
    QList<bool> grey;
    for (const SessionCatalog::Session &s : sessions) {
        const SessionStatistics::Summary &sum = s.summary;
        AnimalHistoryPlot::Day d;
        d.when = s.started;
        d.hasMean = sum.sbp.n > 0 && sum.dbp.n > 0;
        d.sbp = sum.sbp.mean, d.sbpSd = sum.sbp.sd;
        d.dbp = sum.dbp.mean, d.dbpSd = sum.dbp.sd;
        d.bpm = sum.bpm.mean, d.bpmSd = sum.bpm.sd;
        d.flagged = sum.flagged;
        days << d;
        rows << QStringList{when(s.started),
                            s.unit,
                            QStringLiteral("%1/%2").arg(sum.accepted).arg(sum.total),
                            SessionTableModel::meanSd(sum.sbp, 1),
                            SessionTableModel::meanSd(sum.dbp, 1),
                            SessionTableModel::meanSd(sum.bpm, 0),
                            sum.flags.join(QStringLiteral("; "))};
        grey << !d.hasMean;
    }
    AnimalHistoryPlot plot;
    QPalette palette = plot.palette();
    palette.setColor(QPalette::Text, Qt::black);
    plot.setPalette(palette);
    plot.setDays(days);
    const double h = page.width() * 0.6;
    page.need(h);
    QFont font = painter.font();
    font.setPointSizeF(8);
    font.setBold(false);
    painter.setFont(font);
    plot.render(painter, QRectF(0, page.y(), page.width(), h));
    page.advance(h + 10);
    page.line(tr("Hollow points: flagged sessions. Grey marks: sessions without a mean."), 8, false,
              8);
    table(page, painter,
          {tr("Date"), tr("Unit"), tr("Accepted"), tr("SBP"), tr("DBP"), tr("HR"), tr("Flags")},
          rows, {95, 45, 50, 70, 70, 55}, grey);
    page.line(tr("Printed %1 by %2")
                  .arg(when(QDateTime::currentDateTime()), QCoreApplication::applicationName()),
              7);
    return painter.end();
}
