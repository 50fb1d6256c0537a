#include "session/SessionRun.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/BaseCorvidaDevice.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

namespace {
constexpr int kTickMs = 100;
// The gate's peak search is cheap, but there is no point in running it every tick.
constexpr qint64 kGateCheckMs = 500;

QString tr(const char *text)
{
    return QCoreApplication::translate("SessionRun", text);
}

bool isOnDisk(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.size() > 0;
}
} // namespace

SessionRun::SessionRun(BaseCorvidaDevice *device, const QString &recordsFolder,
                       const SessionPlan &plan, QObject *parent)
    : QObject(parent)
    , m_device(device)
    , m_folder(recordsFolder)
    , m_plan(plan)
    , m_recorder(new LiveRecorder(device, this))
    , m_timer(new QTimer(this))
    , m_clock(VClock::wall())
{
    qRegisterMetaType<SessionRun::CycleResult>();
    m_timer->setInterval(kTickMs);
    connect(m_timer, &QTimer::timeout, this, &SessionRun::tick);
    if (m_device)
        m_connections << connect(m_device, &BaseCorvidaDevice::pressurePulseData, this,
                                 &SessionRun::onFrame);
}

SessionRun::~SessionRun()
{
    // A run destroyed mid-session must not leave the cuff inflated.
    if (isRunning() && m_device && m_device->isMeasuring())
        m_device->stopMeasuring();
}

void SessionRun::setClock(VClock::Source clock)
{
    m_clock = clock ? std::move(clock) : VClock::wall();
    m_recorder->experiment()->setClock(m_clock);
}

void SessionRun::setTickTimerActive(bool active)
{
    if (!active)
        m_timer->stop();
    else if (isRunning())
        m_timer->start();
}

void SessionRun::setRecordRaw(bool on)
{
    m_recorder->setRecordRaw(on);
}

bool SessionRun::isRunning() const
{
    return m_state == State::WaitingForPulse || m_state == State::Measuring ||
           m_state == State::Interval;
}

QString SessionRun::unitName() const
{
    if (!m_device)
        return QString();
    return m_device->serialNumber().isEmpty() ? m_device->deviceId() : m_device->serialNumber();
}

void SessionRun::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    m_stateSince = m_clock();
    emit stateChanged(state);
}

bool SessionRun::start()
{
    // A unit already in a cuff cycle belongs to whoever started it.
    if (m_state != State::Idle || !m_device || !m_device->isConnected() ||
        m_device->isMeasuring() || m_plan.measurementCycles < 1 || m_plan.acclimationCycles < 0)
        return false;
    if (!QuorvexCommon::CreateDirIfNotExists(m_folder)) {
        qDebug() << "SESSION cannot create" << m_folder;
        return false;
    }
    const qint64 now = m_clock();
    m_started = QDateTime::fromMSecsSinceEpoch(now);
    m_sessionId = m_started.toString(Qt::ISODate) + QLatin1Char(' ') + unitName();
    m_device->setPressureLimits(m_plan.upperPressure, m_plan.lowerPressure);
    if (!m_device->isAcquiring())
        m_recorder->turnOn();
    m_lastFrameAt = now;
    enterWaiting();
    m_timer->start();
    return true;
}

void SessionRun::abort()
{
    if (!isRunning())
        return;
    const QString text =
        m_state == State::Measuring
            ? tr("Session aborted during cycle %1; that cycle is not kept").arg(m_cycle)
            : tr("Session aborted after %1 cycles").arg(m_results.size());
    end(State::Aborted, text);
}

void SessionRun::onFrame(const QList<QList<float>> &frame)
{
    if (frame.size() < 2 || frame[0].isEmpty())
        return;
    m_lastFrameAt = m_clock();
    m_lastPressure = frame[0].last();
    if (m_state != State::WaitingForPulse && m_state != State::Interval)
        return;
    for (float v : frame[1])
        m_window.append(v);
    const qsizetype keep = qsizetype(m_plan.gateWindowMs * m_device->sampleRate() / 1000.0);
    if (m_window.size() > keep)
        m_window.remove(0, m_window.size() - keep);
}

void SessionRun::tick()
{
    if (!isRunning())
        return;
    const qint64 now = m_clock();
    if (!m_device || !m_device->isConnected()) {
        end(State::UnitLost, tr("The unit was lost; the session is incomplete"));
        return;
    }
    if (now - m_lastFrameAt > m_plan.silenceMs) {
        end(State::UnitLost, tr("The unit stopped sending; the session is incomplete"));
        return;
    }
    switch (m_state) {
    case State::WaitingForPulse:
        checkGate(now);
        break;
    case State::Measuring:
        watchCuff(now);
        break;
    case State::Interval:
        if (now - m_stateSince >= m_plan.intervalMs)
            enterWaiting();
        break;
    default:
        break;
    }
}

void SessionRun::enterWaiting()
{
    setState(State::WaitingForPulse);
    m_lastGateCheck = 0;
    emit waitingForPulse(m_cycle + 1);
    // The pulse gathered during the interval may already open the gate.
    checkGate(m_clock());
}

void SessionRun::checkGate(qint64 now)
{
    const double rate = m_device->sampleRate();
    const qsizetype needed = qsizetype(m_plan.gateWindowMs * rate / 1000.0);
    if (m_lastGateCheck == 0 || now - m_lastGateCheck >= kGateCheckMs) {
        m_lastGateCheck = now;
        if (m_window.size() >= needed && PulseGate(m_plan.gate).assess(m_window, rate).open) {
            startCycle(true);
            return;
        }
    }
    if (now - m_stateSince >= m_plan.pulseWaitMs)
        startCycle(false);
}

void SessionRun::startCycle(bool pulseBefore)
{
    ++m_cycle;
    const bool acclimation = m_cycle <= m_plan.acclimationCycles;
    if (!m_recorder->measure()) {
        end(State::UnitLost,
            tr("The unit did not start cycle %1; the session is incomplete").arg(m_cycle));
        return;
    }
    const qint64 now = m_clock();
    CorvidaOnlineExperiment *record = m_recorder->experiment();
    // The session's clock names the record, so cycles a few seconds apart never share a name,
    // and the unit's name keeps units that start in the same second apart.
    record->setStartDateTime(QDateTime::fromMSecsSinceEpoch(now));
    record->setNameWithSerial(true);
    record->setRodent(m_plan.rodent);
    record->setComment(m_plan.comment);
    record->setSession(m_sessionId);
    record->setCycle(m_cycle);
    record->setAcclimation(acclimation);
    record->setPlanned(m_plan.measurementCycles);
    record->setPulseBefore(pulseBefore);
    record->setAccepted(false);
    record->setReason(QString());
    record->setVerdict(CorvidaExperiment::VerdictAutomatic);
    m_cuffRose = false;
    m_belowSince = -1;
    m_window.clear();
    setState(State::Measuring);
    const int k = acclimation ? m_cycle : m_cycle - m_plan.acclimationCycles;
    const int n = acclimation ? m_plan.acclimationCycles : m_plan.measurementCycles;
    emit cycleStarted(m_cycle, acclimation, k, n, pulseBefore);
}

void SessionRun::watchCuff(qint64 now)
{
    if (now - m_stateSince >= m_plan.maxCycleMs) {
        finishCycle();
        return;
    }
    // The cuff starts empty: only a fall after it has been inflated ends the cycle.
    if (m_lastPressure > m_plan.lowerPressure) {
        m_cuffRose = true;
        m_belowSince = -1;
        return;
    }
    if (!m_cuffRose)
        return;
    if (m_belowSince < 0)
        m_belowSince = now;
    if (now - m_belowSince >= m_plan.settleMs)
        finishCycle();
}

void SessionRun::finishCycle()
{
    m_recorder->abort();
    CorvidaOnlineExperiment *record = m_recorder->experiment();
    QString error;
    if (!m_recorder->save(m_folder, &error)) {
        end(State::SaveFailed,
            tr("Cycle %1 could not be saved: %2. The session stopped; the cycles before it are "
               "kept")
                .arg(m_cycle)
                .arg(error));
        return;
    }
    const QString expPath = record->getFilepath();
    const QString edfPath = expPath.chopped(4) + QStringLiteral(".edf");
    // The live record goes on with the next recording; the saved cycle must not follow it.
    record->setAutoSave(false);
    record->setFilepath(QString());
    if (!isOnDisk(edfPath) || !isOnDisk(expPath)) {
        // Nobody watches an unattended session: a cycle whose files did not reach the disk must
        // stop it rather than be counted. Empty leftovers hold nothing and would only be listed
        // as damaged records.
        for (const QString &path : {edfPath, expPath}) {
            if (QFileInfo(path).size() == 0)
                QFile::remove(path);
        }
        end(State::SaveFailed,
            tr("Cycle %1 could not be saved in \"%2\" (is the disk full?). The session "
               "stopped; the cycles before it are kept")
                .arg(m_cycle)
                .arg(expPath));
        return;
    }

    // The cycle is judged as it was stored: the file holds the pulse at the resolution of the
    // recording format, and every later reading of the record (the records page, analyze) finds
    // its beats there. The verdict then goes into the record's file in one write.
    CorvidaExperiment saved(expPath);
    saved.setAutoSave(false);
    saved.recalculate(false);
    const AcceptanceRules::Verdict verdict = AcceptanceRules(m_plan.acceptance).apply(saved);
    const bool verdictSaved = saved.saveProperties() && isOnDisk(expPath);
    if (!verdictSaved) {
        end(State::SaveFailed,
            tr("The verdict of cycle %1 could not be saved in \"%2\". The session stopped; "
               "the cycles before it are kept")
                .arg(m_cycle)
                .arg(expPath));
        return;
    }

    CycleResult r;
    r.cycle = m_cycle;
    r.acclimation = saved.getAcclimation();
    r.file = edfPath;
    r.sbp = saved.getSBP();
    r.dbp = saved.getDBP();
    r.map = saved.meanArterialPressure();
    r.bpm = saved.getBPM();
    r.pulseBefore = saved.getPulseBefore();
    r.accepted = verdict.accepted;
    r.reason = verdict.reason;
    m_results << r;
    emit cycleFinished(r);

    if (m_cycle >= m_plan.totalCycles()) {
        end(State::Finished, QString());
        return;
    }
    m_window.clear();
    setState(State::Interval);
    // The pulse gate needs a live pulse: after the cuff cycle some units stop streaming.
    if (!m_device->isAcquiring())
        m_recorder->turnOn();
    m_lastFrameAt = m_clock();
}

void SessionRun::end(State state, const QString &message)
{
    m_timer->stop();
    if (m_device && m_device->isConnected()) {
        if (m_device->isMeasuring())
            m_recorder->abort();
        m_recorder->turnOff();
    }
    m_message = message;
    if (!message.isEmpty())
        qDebug() << "SESSION" << m_sessionId << message;
    setState(state);
    emit finished(state, message);
}
