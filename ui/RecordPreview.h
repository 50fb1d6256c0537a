#pragma once

#include <QList>
#include <QWidget>

class CorvidaExperiment;
class CorvidaSettings;
class ExperimentViewer;
class MultiExperimentViewer;
class QLabel;
class QPushButton;
class QStackedWidget;
class SettingDropDownButton;

// The right side of the records page: what is selected in the list ("No data", one record, or
// several laid over one another), with the "Recalculate" and "Export" buttons and the scale
// drop-downs above it.
class RecordPreview : public QWidget
{
    Q_OBJECT
public:
    // Laying records over one another reads every one of them whole; beyond this many the plot
    // is unreadable anyway and selecting a whole folder to export it would stall the window.
    static constexpr int MaxOverlaid = 8;

    explicit RecordPreview(CorvidaSettings *settings, QWidget *parent = nullptr);

    // No record: "No data"; one: the record viewer, or `problem` in its place when the record
    // cannot be shown; several: the overlay. The buttons act on what is given.
    void showRecords(const QList<CorvidaExperiment *> &records, const QString &problem = {});
    // Draws the shown records again (after a recalculation).
    void updateGraphics();

    QWidget *currentView() const;
    QLabel *messageLabel() const { return m_message; }
    ExperimentViewer *experimentViewer() const { return m_single; }
    MultiExperimentViewer *multiViewer() const { return m_multi; }
    QPushButton *recalculateButton() const { return m_recalculate; }
    QPushButton *exportButton() const { return m_export; }

signals:
    void recalculateRequested();
    void exportRequested();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showMessage(const QString &text);
    // Without room for the scales' texts they show their icons only.
    void fitActions();
    void setActionsEnabled(bool enabled);

    const QString m_recalculateText;
    const QString m_exportText;
    QStackedWidget *m_stack;
    QLabel *m_message;
    QLabel *m_overlayNote;
    ExperimentViewer *m_single;
    MultiExperimentViewer *m_multi;
    QPushButton *m_recalculate;
    QPushButton *m_export;
    QWidget *m_actionBar;
    QList<SettingDropDownButton *> m_scales;
};
