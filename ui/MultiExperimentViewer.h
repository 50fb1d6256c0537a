#pragma once

#include "analysis/CorvidaExperiment.h"
#include "toolkit/ConnectionHelper.h"

#include <QColor>
#include <QList>
#include <QPointer>
#include <QWidget>

class QSplitter;
class SignalViewer;

// Several finished records laid over one another, each from its own start, for comparing them
// on the records page: all pressures in the upper plot, all PPGs in the lower one, each record
// in its own colour with its systolic and diastolic markers. Nothing can be moved here; markers
// are moved in the single-record view.
class MultiExperimentViewer : public QWidget
{
    Q_OBJECT
public:
    explicit MultiExperimentViewer(QWidget *parent = nullptr);
    ~MultiExperimentViewer() override;

    // Shows the records (not owned) in this order.
    void setExperiments(const QList<CorvidaExperiment *> &experiments);
    QList<CorvidaExperiment *> experiments() const;

    // The colour of the record at this place in the list.
    static QColor colorFor(int index);
    // Line style of an overlaid record's marker: dashed for "SBP", dotted for "DBP".
    static Qt::PenStyle markerStyle(const char *label);

    SignalViewer *pressureViewer() const { return m_pressureViewer; }
    SignalViewer *ppgViewer() const { return m_ppgViewer; }
    void setDark(bool dark);

public slots:
    void updateGraphics();

private:
    QList<QPointer<CorvidaExperiment>> m_experiments;
    ConnectionHelper m_connections;
    QSplitter *m_splitter;
    SignalViewer *m_pressureViewer;
    SignalViewer *m_ppgViewer;
};
