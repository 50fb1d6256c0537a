#include "ui/SessionListView.h"

#include "analysis/CorvidaExperiment.h"
#include "ui/SessionReport.h"
#include "ui/SessionTableModel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {
QString number(double v)
{
    return v > 0 && std::isfinite(v) ? QString::number(v, 'f', 0) : QStringLiteral("–");
}
} // namespace

SessionListView::SessionListView(RecordDatabase *database, const CorvidaSettings *settings,
                                 QWidget *parent)
    : QWidget(parent)
    , m_model(new SessionTableModel(database, settings, this))
    , m_proxy(new QSortFilterProxyModel(this))
    , m_settings(settings)
{
    setObjectName(QStringLiteral("sessionListView"));
    m_proxy->setSourceModel(m_model);
    m_proxy->setSortRole(SessionTableModel::SortRole);
    m_proxy->setFilterKeyColumn(SessionTableModel::RodentColumn);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);

    m_filter = new QLineEdit(this);
    m_filter->setObjectName(QStringLiteral("sessionRodentFilter"));
    m_filter->setClearButtonEnabled(true);
    m_connections << connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &t) {
        m_proxy->setFilterFixedString(t);
        restoreSelection();
    });

    m_sessions = new QTableView(this);
    m_sessions->setObjectName(QStringLiteral("sessionTable"));
    m_sessions->setModel(m_proxy);
    m_sessions->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_sessions->setSelectionMode(QAbstractItemView::SingleSelection);
    m_sessions->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_sessions->setAlternatingRowColors(true);
    m_sessions->setWordWrap(false);
    m_sessions->verticalHeader()->hide();
    m_sessions->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_sessions->horizontalHeader()->setStretchLastSection(true);
    m_sessions->setSortingEnabled(true);
    m_sessions->sortByColumn(SessionTableModel::DateColumn, Qt::DescendingOrder);
    m_connections << connect(m_sessions->selectionModel(), &QItemSelectionModel::currentRowChanged,
                             this, &SessionListView::onSessionChanged);
    // The table is built anew when a verdict changes: the session stays selected.
    m_connections << connect(m_model, &QAbstractItemModel::modelReset, this,
                             &SessionListView::restoreSelection);

    m_cycles = new QTableWidget(0, 6, this);
    m_cycles->setObjectName(QStringLiteral("sessionCycleTable"));
    m_cycles->verticalHeader()->hide();
    m_cycles->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_cycles->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_cycles->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_cycles->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_cycles->horizontalHeader()->setStretchLastSection(true);
    m_connections << connect(m_cycles, &QTableWidget::itemSelectionChanged, this,
                             &SessionListView::updateButtons);

    m_accept = new QPushButton(this);
    m_accept->setObjectName(QStringLiteral("acceptCycleButton"));
    m_reject = new QPushButton(this);
    m_reject->setObjectName(QStringLiteral("rejectCycleButton"));
    m_automatic = new QPushButton(this);
    m_automatic->setObjectName(QStringLiteral("automaticVerdictButton"));
    m_connections << connect(m_accept, &QPushButton::clicked, this,
                             [this] { setVerdictOfSelected(CorvidaExperiment::VerdictAccepted); });
    m_connections << connect(m_reject, &QPushButton::clicked, this,
                             [this] { setVerdictOfSelected(CorvidaExperiment::VerdictRejected); });
    m_connections << connect(m_automatic, &QPushButton::clicked, this,
                             [this] { setVerdictOfSelected(CorvidaExperiment::VerdictAutomatic); });

    m_report = new QPushButton(this);
    m_report->setObjectName(QStringLiteral("sessionReportButton"));
    m_connections << connect(m_report, &QPushButton::clicked, this, [this] {
        const int row = m_model->rowOf(m_current);
        if (row >= 0)
            emit reportRequested(SessionReport::suggestedName(m_model->session(row).rodent,
                                                              m_model->session(row).started));
    });

    auto *cyclesBox = new QWidget(this);
    auto *cyclesLayout = new QVBoxLayout(cyclesBox);
    cyclesLayout->setContentsMargins(0, 0, 0, 0);
    auto *buttons = new QHBoxLayout();
    buttons->addWidget(m_accept);
    buttons->addWidget(m_reject);
    buttons->addWidget(m_automatic);
    buttons->addStretch(1);
    buttons->addWidget(m_report);
    cyclesLayout->addLayout(buttons);
    cyclesLayout->addWidget(m_cycles);

    auto *split = new QSplitter(Qt::Vertical, this);
    split->setChildrenCollapsible(false);
    split->addWidget(m_sessions);
    split->addWidget(cyclesBox);

    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_filter);
    box->addWidget(split);
    retranslate();
    updateButtons();
}

QList<CorvidaExperiment *> SessionListView::currentCycles() const
{
    const int row = m_model->rowOf(m_current);
    return row < 0 ? QList<CorvidaExperiment *>() : m_model->session(row).cycles;
}

QList<CorvidaExperiment *> SessionListView::selectedCycles() const
{
    const QList<CorvidaExperiment *> cycles = currentCycles();
    QList<CorvidaExperiment *> selected;
    for (const QModelIndex &index : m_cycles->selectionModel()->selectedRows()) {
        if (index.row() < cycles.size())
            selected << cycles[index.row()];
    }
    return selected;
}

void SessionListView::selectSession(const QString &sessionId)
{
    const int row = m_model->rowOf(sessionId);
    if (row < 0)
        return;
    const QModelIndex index = m_proxy->mapFromSource(m_model->index(row, 0));
    if (index.isValid())
        m_sessions->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                                 QItemSelectionModel::Rows);
}

void SessionListView::onSessionChanged()
{
    const QModelIndex index = m_proxy->mapToSource(m_sessions->currentIndex());
    const QString id = index.isValid() ? m_model->session(index.row()).id : QString();
    if (id == m_current)
        return;
    m_current = id;
    fillCycles();
    emit cyclesSelected(currentCycles());
}

void SessionListView::restoreSelection()
{
    const QString id = m_current;
    const QList<int> rows = [this] {
        QList<int> r;
        for (const QModelIndex &i : m_cycles->selectionModel()->selectedRows())
            r << i.row();
        return r;
    }();
    if (m_model->rowOf(id) < 0) {
        m_current.clear();
        fillCycles();
        emit cyclesSelected({});
        return;
    }
    {
        const QSignalBlocker block(m_sessions->selectionModel());
        selectSession(id);
    }
    // The same session, its cycles redrawn with their new verdicts and the same rows selected.
    fillCycles();
    for (int row : rows)
        m_cycles->selectRow(row);
}

void SessionListView::fillCycles()
{
    const QSignalBlocker block(m_cycles);
    const QList<CorvidaExperiment *> cycles = currentCycles();
    m_cycles->clearContents();
    m_cycles->setRowCount(int(cycles.size()));
    const QColor grey(0x90, 0x90, 0x90), red(0xCC, 0x33, 0x00);
    // Measurement cycles are counted from 1 after the acclimation, as the panel counted them.
    const int acclimation = int(
        std::count_if(cycles.begin(), cycles.end(), [](auto *r) { return r->getAcclimation(); }));
    for (int row = 0; row < cycles.size(); ++row) {
        const CorvidaExperiment *r = cycles[row];
        const double sbp = r->getSBP(), dbp = r->getDBP();
        QString verdict = r->isAccepted()
                              ? tr("accepted")
                              : (r->getReason().isEmpty() ? tr("rejected") : r->getReason());
        if (r->getVerdict() != CorvidaExperiment::VerdictAutomatic)
            verdict += QStringLiteral(" (") + tr("by hand") + QLatin1Char(')');
        const QStringList cells = {
            r->getAcclimation() ? tr("A%1").arg(r->getCycle())
                                : QString::number(r->getCycle() - acclimation),
            number(sbp),
            number(dbp),
            sbp > 0 && dbp > 0 ? number(dbp + (sbp - dbp) / 3.0) : QStringLiteral("–"),
            number(r->getBPM()),
            verdict};
        for (int c = 0; c < cells.size(); ++c) {
            auto *item = new QTableWidgetItem(cells[c]);
            item->setToolTip(cells[c]);
            if (r->getAcclimation())
                item->setForeground(grey);
            else if (c == CycleVerdict && !r->isAccepted())
                item->setForeground(red);
            m_cycles->setItem(row, c, item);
        }
    }
    updateButtons();
}

void SessionListView::setVerdictOfSelected(int verdict)
{
    const QList<CorvidaExperiment *> records = selectedCycles();
    for (CorvidaExperiment *record : records) {
        record->setVerdict(verdict);
        // The verdict is part of the record: it is written now, not at some later save.
        if (!record->saveProperties())
            emit saveFailed(record->getFilepath());
    }
    if (!records.isEmpty())
        m_model->rebuild();
}

void SessionListView::updateButtons()
{
    const bool any = !m_cycles->selectionModel()->selectedRows().isEmpty();
    for (QPushButton *b : {m_accept, m_reject, m_automatic})
        b->setEnabled(any);
    m_report->setEnabled(!m_current.isEmpty());
}

bool SessionListView::printReport(const QString &path, QString *error)
{
    const int row = m_model->rowOf(m_current);
    if (row < 0)
        return false;
    return SessionReport(m_settings).writeSession(path, m_model->session(row), error);
}

void SessionListView::retranslate()
{
    m_filter->setPlaceholderText(tr("Filter by rodent"));
    m_accept->setText(tr("Accept"));
    m_accept->setToolTip(tr("Count the selected cycles, whatever the automatic verdict says"));
    m_reject->setText(tr("Reject"));
    m_reject->setToolTip(tr("Leave the selected cycles out of the statistics"));
    m_automatic->setText(tr("Automatic"));
    m_automatic->setToolTip(tr("Give the selected cycles back to the automatic verdict"));
    m_report->setText(tr("Print report…"));
    m_report->setToolTip(tr("The session as a PDF: cycles, verdicts, statistics and traces"));
    m_cycles->setHorizontalHeaderLabels(
        {tr("Cycle"), tr("SBP"), tr("DBP"), tr("MAP"), tr("HR"), tr("Verdict")});
    fillCycles();
}

void SessionListView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}
