#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QPointer>
#include <QWidget>

class CorvidaExperiment;
class CorvidaSettings;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;
class QTableWidget;
class RecordDatabase;
class SessionTableModel;

// The "Sessions" view of the records page: the sessions (filtered by rodent, sorted by any
// column) above the cycles of the selected one. Selecting a session hands its cycles to the
// preview, which lays them over one another; the operator accepts or rejects cycles by hand
// (or gives them back to the automatic verdict), and the session's statistics follow.
class SessionListView : public QWidget
{
    Q_OBJECT
public:
    enum CycleColumn { CycleNumber, CycleSBP, CycleDBP, CycleMAP, CycleHeartRate, CycleVerdict };

    SessionListView(RecordDatabase *database, const CorvidaSettings *settings,
                    QWidget *parent = nullptr);
    const CorvidaSettings *settings() const { return m_settings; }

    SessionTableModel *model() const { return m_model; }
    QTableView *sessionTable() const { return m_sessions; }
    QTableWidget *cycleTable() const { return m_cycles; }
    QLineEdit *rodentFilter() const { return m_filter; }
    QPushButton *acceptButton() const { return m_accept; }
    QPushButton *rejectButton() const { return m_reject; }
    QPushButton *automaticButton() const { return m_automatic; }
    QPushButton *reportButton() const { return m_report; }

    // The selected session's identity; empty without one.
    QString currentSession() const { return m_current; }
    void selectSession(const QString &sessionId);
    // The cycles of the selected session, in cycle order.
    QList<CorvidaExperiment *> currentCycles() const;
    // The rows selected in the cycle table, as records.
    QList<CorvidaExperiment *> selectedCycles() const;

public slots:
    // Sets the operator's verdict (a CorvidaExperiment::OperatorVerdict) on the selected cycles.
    void setVerdictOfSelected(int verdict);
    // Writes the selected session's report; false when there is none or it cannot be written.
    bool printReport(const QString &path, QString *error = nullptr);

signals:
    // The records to show in the preview.
    void cyclesSelected(const QList<CorvidaExperiment *> &cycles);
    // A verdict could not be written into this record's file.
    void saveFailed(const QString &path);
    // "Print report…" was clicked with a session selected; the page asks where to.
    void reportRequested(const QString &suggestedName);

protected:
    void changeEvent(QEvent *event) override;

private:
    void onSessionChanged();
    void fillCycles();
    void restoreSelection();
    void updateButtons();
    void retranslate();

    SessionTableModel *m_model;
    QSortFilterProxyModel *m_proxy;
    ConnectionHelper m_connections;
    QLineEdit *m_filter;
    QTableView *m_sessions;
    QTableWidget *m_cycles;
    QPushButton *m_accept;
    QPushButton *m_reject;
    QPushButton *m_automatic;
    QPushButton *m_report;
    QString m_current;
    const CorvidaSettings *m_settings;
};
