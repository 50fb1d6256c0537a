#pragma once

#include "session/SessionPlan.h"
#include "toolkit/ConnectionHelper.h"
#include "toolkit/VClock.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>

class BaseCorvidaDevice;
class LiveRecorder;
class QTimer;

// Runs one session on one unit: acclimation cycles, then measurement cycles, each preceded by
// the pulse gate. A cycle is an ordinary measurement: Measure with the session's limits, record
// until the cuff has fallen below the lower limit and stayed there for a moment (or the longest
// cycle time has passed), Abort, save the record, judge it, then wait the interval.
//
// Everything happens on the event loop, paced by a timer that reads the clock it is given, so
// several units run their sessions side by side and tests move the clock instead of waiting.
// Every change of state is announced for the window and the command-line tool. A session that
// ends early (abort, a lost unit, a record that could not be saved) keeps every finished cycle.
class SessionRun : public QObject
{
    Q_OBJECT
public:
    enum class State {
        Idle,
        WaitingForPulse,
        Measuring,
        Interval,
        Finished,
        Aborted,
        UnitLost,
        SaveFailed
    };
    Q_ENUM(State)

    struct CycleResult {
        int cycle = 0;
        bool acclimation = false;
        QString file; // the record's ".edf" path
        double sbp = 0.0;
        double dbp = 0.0;
        double map = 0.0;
        double bpm = 0.0;
        bool pulseBefore = false;
        bool accepted = false;
        QString reason;
    };

    SessionRun(BaseCorvidaDevice *device, const QString &recordsFolder, const SessionPlan &plan,
               QObject *parent = nullptr);
    ~SessionRun() override;

    // For tests: the clock, and whether the run paces itself (tests call tick()).
    void setClock(VClock::Source clock);
    void setTickTimerActive(bool active);
    void setRecordRaw(bool on);

    const SessionPlan &plan() const { return m_plan; }
    State state() const { return m_state; }
    bool isRunning() const;
    // "<start, ISO 8601> <unit>": stored in each record, it finds the session again.
    QString sessionId() const { return m_sessionId; }
    QDateTime started() const { return m_started; }
    QString unitName() const;
    // The cycle under way or last finished, counted over the whole session from 1.
    int currentCycle() const { return m_cycle; }
    QList<CycleResult> results() const { return m_results; }
    // Why the session ended, for the operator; empty while it runs and after a normal end.
    QString message() const { return m_message; }
    LiveRecorder *recorder() const { return m_recorder; }

public slots:
    bool start();
    // Stops the unit; a cycle under way is dropped, the finished ones stay.
    void abort();
    void tick();

signals:
    void stateChanged(SessionRun::State state);
    void waitingForPulse(int cycle);
    // k of n counts within the kind: acclimation 2 of 5, cycle 3 of 10.
    void cycleStarted(int cycle, bool acclimation, int k, int n, bool pulseBefore);
    void cycleFinished(const SessionRun::CycleResult &result);
    void finished(SessionRun::State state, const QString &message);

private:
    void setState(State state);
    void onFrame(const QList<QList<float>> &frame);
    void enterWaiting();
    void checkGate(qint64 now);
    void startCycle(bool pulseBefore);
    void watchCuff(qint64 now);
    void finishCycle();
    void end(State state, const QString &message);

    QPointer<BaseCorvidaDevice> m_device;
    QString m_folder;
    SessionPlan m_plan;
    LiveRecorder *m_recorder;
    QTimer *m_timer;
    VClock::Source m_clock;
    ConnectionHelper m_connections;

    State m_state = State::Idle;
    QString m_sessionId;
    QDateTime m_started;
    QString m_message;
    QList<CycleResult> m_results;
    int m_cycle = 0;

    QList<double> m_window; // the newest pulse, for the gate
    double m_lastPressure = 0.0;
    qint64 m_lastFrameAt = 0;
    qint64 m_stateSince = 0;
    qint64 m_lastGateCheck = 0;
    bool m_cuffRose = false;
    qint64 m_belowSince = -1;
};

Q_DECLARE_METATYPE(SessionRun::CycleResult)
