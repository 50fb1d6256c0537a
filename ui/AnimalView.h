#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QWidget>

class AnimalHistoryPlot;
class CorvidaSettings;
class QComboBox;
class QPushButton;
class QTableWidget;
class SessionTableModel;

// One animal across days: its sessions as a plot (mean ± SD of SBP, DBP and heart rate against
// the date) and as a table, for the rodent chosen above them. Follows the sessions list, so a
// verdict changed by hand moves the day's point at once.
class AnimalView : public QWidget
{
    Q_OBJECT
public:
    enum Column { DateColumn, AcceptedColumn, SBPColumn, DBPColumn, HeartRateColumn, FlagColumn };

    explicit AnimalView(SessionTableModel *sessions, QWidget *parent = nullptr);

    QString rodent() const { return m_rodent; }
    void setRodent(const QString &rodent);

    QComboBox *rodentChooser() const { return m_chooser; }
    AnimalHistoryPlot *plot() const { return m_plot; }
    QTableWidget *table() const { return m_table; }
    QPushButton *reportButton() const { return m_report; }

    // Writes the report of the animal shown; false without one or when it cannot be written.
    bool printReport(const QString &path, const CorvidaSettings *settings,
                     QString *error = nullptr);

signals:
    // "Print report…" was clicked; the page asks where to.
    void reportRequested(const QString &suggestedName);

protected:
    void changeEvent(QEvent *event) override;

private:
    void rebuild();
    void retranslate();

    SessionTableModel *m_sessions;
    ConnectionHelper m_connections;
    QString m_rodent;
    QComboBox *m_chooser;
    AnimalHistoryPlot *m_plot;
    QTableWidget *m_table;
    QPushButton *m_report;
};
