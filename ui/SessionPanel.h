#pragma once

#include "session/SessionRun.h"
#include "toolkit/ConnectionHelper.h"
#include "toolkit/VClock.h"

#include <QPointer>
#include <QWidget>
#include <functional>

class BaseCorvidaDevice;
class CorvidaExperiment;
class QLabel;
class QPushButton;
class QSpinBox;
class QTableWidget;
class QToolButton;

// The session part of a unit's panel: the Session button (with a pop-up to change the number of
// acclimation and measurement cycles for this panel's runs), and below the buttons where the
// session is, a table of the finished cycles and the running mean ± SD of the accepted ones.
//
// The widget changes only when the session reports a change of state or a finished cycle, never
// per incoming frame. A session that ends early keeps its table: the finished cycles are saved
// records.
class SessionPanel : public QWidget
{
    Q_OBJECT
public:
    enum Column { CycleColumn, SBPColumn, DBPColumn, MAPColumn, HeartRateColumn, ResultColumn };

    // `record` is the panel's live record: a session takes its rodent and comment.
    SessionPanel(BaseCorvidaDevice *device, CorvidaExperiment *record, QWidget *parent = nullptr);
    ~SessionPanel() override;

    // For tests: the clock of the runs, and whether they pace themselves.
    void setClock(VClock::Source clock) { m_clock = std::move(clock); }
    void setTickTimerActive(bool active);

    bool isRunning() const;
    // The current or last session; null before the first.
    SessionRun *run() const { return m_run; }

    // Placed in the panel's button row by the panel.
    QToolButton *sessionButton() const { return m_button; }
    QPushButton *abortButton() const { return m_abort; }
    QSpinBox *acclimationEditor() const { return m_acclimation; }
    QSpinBox *cyclesEditor() const { return m_cycles; }
    QLabel *stateLabel() const { return m_state; }
    QLabel *statisticsLabel() const { return m_statistics; }
    QTableWidget *cycleTable() const { return m_table; }

    // Whether a session may start now: a unit that answers and is not in a cuff cycle.
    bool canStart() const;
    // Asked before a session starts; a false answer leaves everything as it is. The panel uses
    // it to keep a measurement that was not saved.
    void setBeforeStart(std::function<bool()> check) { m_beforeStart = std::move(check); }
    // Icon only on the Session button, for a narrow panel.
    void setCompact(bool compact);

public slots:
    bool start();
    void abort();

signals:
    void sessionStarted(SessionRun *run);
    void runningChanged(bool running);

protected:
    void changeEvent(QEvent *event) override;

private:
    void buildButton();
    void fillCountsFromSettings();
    void onStateChanged();
    void onCycleStarted(int cycle, bool acclimation, int k, int n);
    void onCycleFinished(const SessionRun::CycleResult &result);
    void updateStatistics();
    void retranslate();

    QPointer<BaseCorvidaDevice> m_device;
    QPointer<CorvidaExperiment> m_record;
    QPointer<SessionRun> m_run;
    ConnectionHelper m_connections;
    VClock::Source m_clock;
    bool m_ticking = true;
    bool m_compact = false;
    std::function<bool()> m_beforeStart;
    QString m_cycleText; // "Acclimation 3 of 5", "Cycle 7 of 15"

    QToolButton *m_button = nullptr;
    QSpinBox *m_acclimation = nullptr;
    QSpinBox *m_cycles = nullptr;
    QLabel *m_acclimationLabel = nullptr;
    QLabel *m_cyclesLabel = nullptr;
    QPushButton *m_abort = nullptr;
    QLabel *m_state = nullptr;
    QLabel *m_statistics = nullptr;
    QTableWidget *m_table = nullptr;
};
