#include "ui/SessionPanel.h"

#include "analysis/CorvidaExperiment.h"
#include "device/BaseCorvidaDevice.h"
#include "device/CorvidaModel.h"
#include "session/SessionStatistics.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidgetAction>

#include <cmath>

namespace {
// A short table: the newest cycles matter at the bench, the records page has them all.
constexpr int kTableHeight = 130;
const QColor kAcclimationText(0x90, 0x90, 0x90);
const QString kProblemStyle = QStringLiteral("QLabel { color: #C30; font-weight: bold }");

CorvidaSettings *settings()
{
    CorvidaModel *model = CorvidaModel::instance();
    return model ? model->settings() : nullptr;
}

QString number(double v, int decimals)
{
    return v > 0 && std::isfinite(v) ? QString::number(v, 'f', decimals) : QStringLiteral("–");
}

QString meanSd(const SessionStatistics::Measure &m, int decimals)
{
    if (m.n == 0)
        return QStringLiteral("–");
    if (!std::isfinite(m.sd))
        return QString::number(m.mean, 'f', decimals);
    return QStringLiteral("%1 ± %2").arg(QString::number(m.mean, 'f', decimals),
                                         QString::number(m.sd, 'f', decimals));
}
} // namespace

SessionPanel::SessionPanel(BaseCorvidaDevice *device, CorvidaExperiment *record, QWidget *parent)
    : QWidget(parent)
    , m_device(device)
    , m_record(record)
    , m_clock(VClock::wall())
{
    setObjectName(QStringLiteral("sessionPanel"));
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(2);

    auto *line = new QHBoxLayout();
    line->setContentsMargins(0, 0, 0, 0);
    m_state = new QLabel(this);
    m_state->setObjectName(QStringLiteral("sessionState"));
    m_state->setWordWrap(true);
    m_abort = new QPushButton(this);
    m_abort->setObjectName(QStringLiteral("sessionAbortButton"));
    m_abort->hide();
    connect(m_abort, &QPushButton::clicked, this, &SessionPanel::abort);
    line->addWidget(m_state, 1);
    line->addWidget(m_abort);
    box->addLayout(line);

    m_statistics = new QLabel(this);
    m_statistics->setObjectName(QStringLiteral("sessionStatistics"));
    m_statistics->setWordWrap(true);
    box->addWidget(m_statistics);

    m_table = new QTableWidget(0, 6, this);
    m_table->setObjectName(QStringLiteral("sessionCycles"));
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->setFocusPolicy(Qt::NoFocus);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 4);
    m_table->setMaximumHeight(kTableHeight);
    box->addWidget(m_table);

    buildButton();
    m_connections << connect(StyleHelper::instance(), &StyleHelper::themeChanged, this,
                             &SessionPanel::retranslate);
    retranslate();
    // Nothing to show before the first session.
    hide();
}

SessionPanel::~SessionPanel() = default;

void SessionPanel::buildButton()
{
    m_button = new QToolButton(this);
    m_button->setObjectName(QStringLiteral("sessionButton"));
    m_button->setPopupMode(QToolButton::MenuButtonPopup);
    m_button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_button->setIconSize(QSize(20, 20));
    m_button->setStyleSheet(QStringLiteral("QToolButton { padding: 4px 6px; }"));
    connect(m_button, &QToolButton::clicked, this, &SessionPanel::start);

    // The counts for this panel's runs; the settings page holds the defaults.
    auto *menu = new QMenu(m_button);
    auto *form = new QWidget(menu);
    auto *layout = new QFormLayout(form);
    layout->setContentsMargins(8, 6, 8, 6);
    m_acclimation = new QSpinBox(form);
    m_acclimation->setObjectName(QStringLiteral("sessionAcclimationCycles"));
    m_acclimation->setRange(0, 50);
    m_cycles = new QSpinBox(form);
    m_cycles->setObjectName(QStringLiteral("sessionMeasurementCycles"));
    m_cycles->setRange(1, 100);
    m_acclimationLabel = new QLabel(form);
    m_cyclesLabel = new QLabel(form);
    layout->addRow(m_acclimationLabel, m_acclimation);
    layout->addRow(m_cyclesLabel, m_cycles);
    auto *action = new QWidgetAction(menu);
    action->setDefaultWidget(form);
    menu->addAction(action);
    m_button->setMenu(menu);

    fillCountsFromSettings();
    if (CorvidaSettings *s = settings()) {
        m_connections << connect(s, &CorvidaSettings::changedSessionAcclimationCycles, this,
                                 &SessionPanel::fillCountsFromSettings);
        m_connections << connect(s, &CorvidaSettings::changedSessionMeasurementCycles, this,
                                 &SessionPanel::fillCountsFromSettings);
    }
}

void SessionPanel::fillCountsFromSettings()
{
    const SessionPlan plan = settings() ? SessionPlan::fromSettings(*settings()) : SessionPlan();
    m_acclimation->setValue(plan.acclimationCycles);
    m_cycles->setValue(plan.measurementCycles);
}

void SessionPanel::setCompact(bool compact)
{
    if (m_compact == compact)
        return;
    m_compact = compact;
    retranslate();
}

void SessionPanel::setTickTimerActive(bool active)
{
    m_ticking = active;
    if (m_run)
        m_run->setTickTimerActive(active);
}

bool SessionPanel::isRunning() const
{
    return m_run && m_run->isRunning();
}

bool SessionPanel::canStart() const
{
    return !isRunning() && m_device && m_device->isConnected() && !m_device->isMeasuring();
}

bool SessionPanel::start()
{
    CorvidaModel *model = CorvidaModel::instance();
    if (!canStart() || !model || model->recordsFolder().isEmpty())
        return false;
    if (m_beforeStart && !m_beforeStart())
        return false;
    SessionPlan plan = SessionPlan::fromSettings(*model->settings());
    plan.acclimationCycles = m_acclimation->value();
    plan.measurementCycles = m_cycles->value();
    if (m_record) {
        plan.rodent = m_record->getRodent();
        plan.comment = m_record->getComment();
    }
    auto *run = new SessionRun(m_device, model->recordsFolder(), plan, this);
    run->setClock(m_clock);
    run->setRecordRaw(CorvidaModel::saveRawData());
    connect(run, &SessionRun::stateChanged, this, &SessionPanel::onStateChanged);
    connect(run, &SessionRun::cycleStarted, this,
            [this](int cycle, bool acclimation, int k, int n) {
                onCycleStarted(cycle, acclimation, k, n);
            });
    connect(run, &SessionRun::cycleFinished, this, &SessionPanel::onCycleFinished);
    connect(run, &SessionRun::finished, this, [this] {
        // Now a short session is incomplete rather than still under way.
        updateStatistics();
        emit runningChanged(false);
    });
    if (!run->start()) {
        delete run;
        return false;
    }
    if (!m_ticking)
        run->setTickTimerActive(false);
    // The last session stays on screen until the next one starts.
    if (m_run)
        m_run->deleteLater();
    m_run = run;
    m_table->setRowCount(0);
    m_cycleText.clear();
    show();
    onStateChanged();
    updateStatistics();
    emit sessionStarted(run);
    emit runningChanged(true);
    return true;
}

void SessionPanel::abort()
{
    if (isRunning())
        m_run->abort();
}

void SessionPanel::onCycleStarted(int, bool acclimation, int k, int n)
{
    m_cycleText =
        acclimation ? tr("Acclimation %1 of %2").arg(k).arg(n) : tr("Cycle %1 of %2").arg(k).arg(n);
    onStateChanged();
}

void SessionPanel::onStateChanged()
{
    if (!m_run)
        return;
    using S = SessionRun::State;
    const S state = m_run->state();
    const int done = int(m_run->results().size());
    QString text;
    bool problem = false;
    switch (state) {
    case S::WaitingForPulse:
        text = tr("Waiting for a steady pulse…");
        break;
    case S::Measuring:
        text = m_cycleText;
        break;
    case S::Interval:
        text = m_cycleText + QStringLiteral(" · ") + tr("pause before the next cycle");
        break;
    case S::Finished:
        text = tr("Session finished: %1 cycles").arg(done);
        break;
    case S::UnitLost:
        problem = true;
        text = tr("Unit lost: %1. Finished cycles kept: %2.").arg(m_run->message()).arg(done);
        break;
    case S::Aborted:
    case S::SaveFailed:
        problem = true;
        text = m_run->message();
        break;
    case S::Idle:
        break;
    }
    m_state->setText(text);
    m_state->setStyleSheet(problem ? kProblemStyle : QString());
    m_abort->setVisible(m_run->isRunning());
}

void SessionPanel::onCycleFinished(const SessionRun::CycleResult &r)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    const int k = r.acclimation ? r.cycle : r.cycle - m_run->plan().acclimationCycles;
    const QString result = r.accepted ? tr("accepted") : r.reason;
    const QStringList cells = {r.acclimation ? tr("A%1").arg(k) : QString::number(k),
                               number(r.sbp, 0),
                               number(r.dbp, 0),
                               number(r.map, 0),
                               number(r.bpm, 0),
                               r.acclimation ? tr("acclimation") + QStringLiteral(": ") + result
                                             : result};
    for (int c = 0; c < cells.size(); ++c) {
        auto *item = new QTableWidgetItem(cells[c]);
        item->setToolTip(cells[c]);
        if (c != ResultColumn)
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // Acclimation cycles never count: greyed, so the eye skips them.
        if (r.acclimation)
            item->setForeground(kAcclimationText);
        else if (c == ResultColumn && !r.accepted)
            item->setForeground(QColor(0xCC, 0x33, 0x00));
        m_table->setItem(row, c, item);
    }
    m_table->scrollToBottom();
    updateStatistics();
}

void SessionPanel::updateStatistics()
{
    if (!m_run) {
        m_statistics->clear();
        return;
    }
    QList<SessionStatistics::Cycle> cycles;
    for (const SessionRun::CycleResult &r : m_run->results()) {
        SessionStatistics::Cycle c;
        c.cycle = r.cycle;
        c.acclimation = r.acclimation;
        c.accepted = r.accepted;
        c.sbp = r.sbp;
        c.dbp = r.dbp;
        c.bpm = r.bpm;
        cycles << c;
    }
    const SessionStatistics stats(settings() ? SessionStatistics::limitsFrom(*settings())
                                             : SessionStatistics::Limits());
    // While the session runs, missing cycles are still to come, not a fault.
    const int planned = m_run->isRunning() ? 0 : m_run->plan().measurementCycles;
    const SessionStatistics::Summary s = stats.summarize(cycles, planned);
    QString text = tr("Accepted %1 of %2 · SBP %3 · DBP %4 · MAP %5 mmHg · HR %6 bpm")
                       .arg(s.accepted)
                       .arg(s.total)
                       .arg(meanSd(s.sbp, 1), meanSd(s.dbp, 1), meanSd(s.map, 1), meanSd(s.bpm, 0));
    if (!m_run->isRunning() && s.flagged)
        text += QLatin1Char('\n') + s.flags.join(QStringLiteral("; "));
    m_statistics->setText(text);
}

void SessionPanel::retranslate()
{
    m_button->setText(m_compact ? QString() : tr("Session"));
    m_button->setToolButtonStyle(m_compact ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
    m_button->setIcon(StyleHelper::tintedIcon(
        QStringLiteral(":/resources/images/session-all.svg"),
        StyleHelper::instance()->color(QStringLiteral("--v-text"), Qt::black)));
    m_button->setToolTip(tr("Run a session: acclimation cycles, then measurement cycles, each "
                            "after a steady pulse. The arrow changes the counts."));
    m_acclimationLabel->setText(tr("Acclimation cycles"));
    m_cyclesLabel->setText(tr("Measurement cycles"));
    m_abort->setText(tr("Abort session"));
    m_abort->setToolTip(tr("Stop the session; the finished cycles are kept"));
    m_table->setHorizontalHeaderLabels(
        {tr("Cycle"), tr("SBP"), tr("DBP"), tr("MAP"), tr("HR"), tr("Result")});
    onStateChanged();
    if (m_run)
        updateStatistics();
}

void SessionPanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}
