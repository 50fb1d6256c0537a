#pragma once

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class MethodComboBox;
class QLabel;
class QMenu;
class QSplitter;
class SignalViewer;

// Shows one experiment record, live or finished: cuff pressure above the PPG in a vertical
// splitter, the systolic and diastolic markers on both, which the operator can drag or place
// from the context menu.
//
// A live record's recorder announces every incoming frame. Redrawing that often would waste the
// processor the operator's other units need, so new data only arms a timer and the viewers catch
// up at most 25 times a second.
class ExperimentViewer : public QWidget
{
    Q_OBJECT
public:
    static constexpr int RefreshIntervalMs = 40;
    // The context menu needs at least this much record, in seconds, to place markers in.
    static constexpr double MinimumMenuSeconds = 2.0;

    // Without settings, those of the application model are used (when there is one).
    explicit ExperimentViewer(CorvidaSettings *settings = nullptr, QWidget *parent = nullptr);
    ~ExperimentViewer() override;

    // Shows the record (not owned). A CorvidaOnlineExperiment is shown live: the window follows
    // the newest data.
    void setExperiment(CorvidaExperiment *experiment);
    CorvidaExperiment *experiment() const { return m_experiment; }
    bool isLive() const { return m_live; }

    SignalViewer *pressureViewer() const { return m_pressureViewer; }
    SignalViewer *ppgViewer() const { return m_ppgViewer; }
    QSplitter *splitter() const { return m_splitter; }
    // Which way placed the markers of a finished record; choosing another recalculates it.
    MethodComboBox *methodBox() const { return m_methodBox; }
    // Why the chosen way placed no markers; hidden when it did.
    QLabel *methodNote() const { return m_methodNote; }

    void setDark(bool dark);
    bool isDark() const { return m_dark; }

    // The upper end of the pressure axis for the highest pressure of a record.
    static double pressureAxisUpper(double highestPressure);
    // A diastolic point is doubtful when the recording ends before the cuff pressure fell 10 mmHg
    // below it, or when the cuff was let down at once (Abort) before that: the detection
    // compares the pulse growth over the 10 mmHg above and below a point, and then it saw only
    // the part above. Its label then ends in "?".
    static bool diastolicDoubtful(const QList<double> &pressure, double rate, double time);

    // The context menu for a point of this widget, or null where none is offered. The caller
    // owns the menu.
    QMenu *createContextMenu(const QPoint &pos);

    // Whether new live data waits for the next redraw.
    bool refreshPending() const { return m_refreshTimer.isActive(); }

public slots:
    // Rebuilds all series and markers from the record.
    void updateGraphics();
    // Brings the viewers up to the record's newest data now (the refresh timer runs this).
    void refreshData();

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applySettings();
    void applySplitterRatio(double ratio);
    void onSplitterMoved();
    void scheduleRefresh();
    void updateMarkers();
    void updateMethodRow();
    void onMethodChosen(const QString &method);
    void refreshPeaks();
    void updatePressureAxis();
    void onMarkerUpdated(const QString &tag, double time);
    void onMarkerMoveStopped();
    QString markerText(const QString &tag, double time);
    SignalViewer *viewerAt(const QPoint &pos) const;

    QPointer<CorvidaSettings> m_settings;
    QPointer<CorvidaExperiment> m_experiment;
    ConnectionHelper m_settingsConnections;
    ConnectionHelper m_recordConnections;
    QSplitter *m_splitter;
    QWidget *m_methodRow;
    MethodComboBox *m_methodBox;
    QLabel *m_methodNote;
    // Said once the choice of the way left markers where they were; gone with a recalculation.
    QString m_keptNote;
    SignalViewer *m_pressureViewer;
    SignalViewer *m_ppgViewer;
    QTimer m_refreshTimer;
    QList<int> m_peakBeats; // the beat list the peak dots were made from
    QList<QPointF> m_peakPoints;
    QList<QPointF> m_envelopeUpper;
    QList<QPointF> m_envelopeLower;
    qsizetype m_scannedSamples = 0;
    double m_highestPressure = 0.0;
    QString m_draggedTag;
    double m_draggedTime = 0.0;
    bool m_live = false;
    bool m_dark = false;
    bool m_darkSet = false;
};
