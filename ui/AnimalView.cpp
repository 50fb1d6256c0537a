#include "ui/AnimalView.h"

#include "ui/AnimalHistoryPlot.h"
#include "ui/SessionReport.h"
#include "ui/SessionTableModel.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include <cmath>

AnimalView::AnimalView(SessionTableModel *sessions, QWidget *parent)
    : QWidget(parent)
    , m_sessions(sessions)
    , m_chooser(new QComboBox(this))
    , m_plot(new AnimalHistoryPlot(this))
    , m_table(new QTableWidget(0, 6, this))
    , m_report(new QPushButton(this))
{
    setObjectName(QStringLiteral("animalView"));
    m_chooser->setObjectName(QStringLiteral("animalChooser"));
    m_connections << connect(m_chooser, &QComboBox::textActivated, this, &AnimalView::setRodent);
    m_table->setObjectName(QStringLiteral("animalSessionTable"));
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);

    auto *split = new QSplitter(Qt::Vertical, this);
    split->setChildrenCollapsible(false);
    split->addWidget(m_plot);
    split->addWidget(m_table);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    m_report->setObjectName(QStringLiteral("animalReportButton"));
    m_connections << connect(m_report, &QPushButton::clicked, this, [this] {
        if (!m_rodent.isEmpty())
            emit reportRequested(SessionReport::suggestedName(m_rodent, QDateTime()));
    });
    auto *top = new QHBoxLayout();
    top->addWidget(m_chooser, 1);
    top->addWidget(m_report);
    box->addLayout(top);
    box->addWidget(split);

    m_connections << connect(m_sessions, &QAbstractItemModel::modelReset, this,
                             &AnimalView::rebuild);
    retranslate();
}

void AnimalView::setRodent(const QString &rodent)
{
    if (rodent == m_rodent)
        return;
    m_rodent = rodent;
    rebuild();
}

void AnimalView::rebuild()
{
    QStringList rodents;
    QList<AnimalHistoryPlot::Day> days;
    QList<const SessionCatalog::Session *> mine;
    for (int row = 0; row < m_sessions->rowCount(); ++row) {
        const SessionCatalog::Session &s = m_sessions->session(row);
        if (!s.rodent.isEmpty() && !rodents.contains(s.rodent))
            rodents << s.rodent;
        if (s.rodent == m_rodent)
            mine << &s;
    }
    rodents.sort(Qt::CaseInsensitive);
    {
        const QSignalBlocker block(m_chooser);
        m_chooser->clear();
        m_chooser->addItems(rodents);
        m_chooser->setCurrentIndex(int(rodents.indexOf(m_rodent)));
    }

    std::sort(mine.begin(), mine.end(), [](auto *a, auto *b) { return a->started < b->started; });
    m_table->setRowCount(int(mine.size()));
    for (int row = 0; row < mine.size(); ++row) {
        const SessionCatalog::Session &s = *mine[row];
        const SessionStatistics::Summary &sum = s.summary;
        AnimalHistoryPlot::Day d;
        d.when = s.started;
        d.hasMean = sum.sbp.n > 0 && sum.dbp.n > 0;
        d.sbp = sum.sbp.mean, d.sbpSd = sum.sbp.sd;
        d.dbp = sum.dbp.mean, d.dbpSd = sum.dbp.sd;
        d.bpm = sum.bpm.mean, d.bpmSd = sum.bpm.sd;
        d.flagged = sum.flagged;
        days << d;
        const QStringList cells = {
            QLocale().toString(s.started.toLocalTime(), QLocale::ShortFormat),
            QStringLiteral("%1/%2").arg(sum.accepted).arg(sum.total),
            SessionTableModel::meanSd(sum.sbp, 1),
            SessionTableModel::meanSd(sum.dbp, 1),
            SessionTableModel::meanSd(sum.bpm, 0),
            sum.flags.join(QStringLiteral("; "))};
        for (int c = 0; c < cells.size(); ++c) {
            auto *item = new QTableWidgetItem(cells[c]);
            item->setToolTip(cells[c]);
            if (!d.hasMean)
                item->setForeground(QColor(0x90, 0x90, 0x90));
            else if (c == FlagColumn)
                item->setForeground(QColor(0xCC, 0x33, 0x00));
            m_table->setItem(row, c, item);
        }
    }
    m_plot->setDays(days);
}

bool AnimalView::printReport(const QString &path, const CorvidaSettings *settings, QString *error)
{
    QList<SessionCatalog::Session> mine;
    for (int row = 0; row < m_sessions->rowCount(); ++row) {
        if (m_sessions->session(row).rodent == m_rodent)
            mine << m_sessions->session(row);
    }
    if (mine.isEmpty())
        return false;
    std::sort(mine.begin(), mine.end(),
              [](const auto &a, const auto &b) { return a.started < b.started; });
    return SessionReport(settings).writeAnimal(path, m_rodent, mine, error);
}

void AnimalView::retranslate()
{
    m_report->setText(tr("Print report…"));
    m_report->setToolTip(tr("The animal's sessions as a PDF: the plot and one line per session"));
    m_chooser->setToolTip(tr("The animal whose sessions are shown"));
    m_table->setHorizontalHeaderLabels(
        {tr("Date"), tr("Accepted"), tr("SBP"), tr("DBP"), tr("HR"), tr("Flags")});
}

void AnimalView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}
