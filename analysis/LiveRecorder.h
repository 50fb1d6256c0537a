#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QObject>
#include <QPointer>

class BaseCorvidaDevice;
class CorvidaOnlineExperiment;

// Records one unit's stream into its live experiment: the steps behind "Turn on", "Measure",
// "Abort" and "Save", shared by the device panel and the command-line tool.
//
// The record keeps at most the unit's history length (two minutes), its newest part.
//
// The accumulated series are handed to the live experiment (and from there to the viewers) as
// shared lists. Before each append the experiment lets go of them, so appending never copies the
// recording.
class LiveRecorder : public QObject
{
    Q_OBJECT
public:
    explicit LiveRecorder(BaseCorvidaDevice *device, QObject *parent = nullptr);
    ~LiveRecorder() override;

    BaseCorvidaDevice *device() const { return m_device; }
    CorvidaOnlineExperiment *experiment() const { return m_experiment; }

    // Whether the unit's raw channels go into the record as well.
    void setRecordRaw(bool on) { m_recordRaw = on; }
    bool recordRaw() const { return m_recordRaw; }

    qsizetype recordedSamples() const { return m_pressure.size(); }
    // More than one second is recorded: enough for a record.
    bool isSaveable() const;
    double lastPressure() const { return m_pressure.isEmpty() ? 0.0 : m_pressure.last(); }
    double lastHeartRate() const { return m_lastHeartRate; }
    QString savedPath() const { return m_savedPath; }

public slots:
    // Starts a new recording and the unit's acquisition (when connected and not acquiring).
    bool turnOn();
    bool turnOff();
    // Starts a new recording and the cuff cycle (when connected and acquiring).
    bool measure();
    bool abort();
    // Saves the record into the folder and recalculates it; `error` says why it failed.
    bool save(const QString &folder, QString *error = nullptr);

signals:
    void dataUpdated();
    void saved(QString path);

private:
    void startNewRecording();
    void onFrame(const QList<QList<float>> &frame);
    void onRawFrame(const QList<QList<double>> &frame);
    void dropOldest();

    QPointer<BaseCorvidaDevice> m_device;
    CorvidaOnlineExperiment *m_experiment;
    ConnectionHelper m_connections;
    QList<double> m_pressure;
    QList<double> m_pulse;
    QList<double> m_infrared;
    bool m_recordRaw = false;
    double m_lastHeartRate = 0.0;
    double m_droppedMs = 0.0;
    QString m_savedPath;
};
