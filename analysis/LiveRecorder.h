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
// A preview (the unit turned on, no cuff cycle) keeps about the unit's history length (two
// minutes), its newest part, so a unit left on for hours does not fill the memory. A
// measurement keeps every sample from Measure until it is saved or a new recording replaces it;
// it is stopped, like Abort, once it reaches MaxMeasurementSeconds.
//
// With raw recording on, the raw channels always describe the same samples as the processed
// series: same count, same first sample.
//
// The accumulated series are handed to the live experiment (and from there to the viewers) as
// shared lists. Before each append the experiment lets go of them, so appending never copies the
// recording.
class LiveRecorder : public QObject
{
    Q_OBJECT
public:
    // Beyond the unit's history length the oldest samples are dropped this many seconds at a time.
    static constexpr double DropSeconds = 10.0;
    // The longest measurement: far beyond any cuff cycle, and still a record that loads and
    // saves in reasonable time.
    static constexpr int MaxMeasurementSeconds = 30 * 60;

    explicit LiveRecorder(BaseCorvidaDevice *device, QObject *parent = nullptr);
    ~LiveRecorder() override;

    BaseCorvidaDevice *device() const { return m_device; }
    CorvidaOnlineExperiment *experiment() const { return m_experiment; }

    // Whether the unit's raw channels go into the record as well. Takes effect with the next
    // recording (Turn on or Measure): raw channels that began mid-way would not line up with the
    // processed series.
    void setRecordRaw(bool on) { m_recordRawWanted = on; }
    bool recordRaw() const { return m_recordRawWanted; }

    // A measurement (not a preview) is being kept whole.
    bool isKeepingAll() const { return m_keepAll; }
    // The measurement ran into MaxMeasurementSeconds and was stopped.
    bool isLimitReached() const { return m_limitReached; }
    // The unit's link broke while this recording was running.
    bool isLinkLost() const { return m_linkLost; }
    // Some of the recorded pressures are sensor values: the unit had no usable calibration.
    bool isPressureUncalibrated() const { return m_uncalibrated; }

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
    void limitReached();
    void linkLost();
    void pressureUncalibrated();

private:
    void startNewRecording(bool keepAll);
    void onLinkLost();
    // Takes the markers and heart rate that the saved file yields when it is opened again.
    void adoptWhatTheFileHolds();
    void onFrame(const QList<QList<float>> &frame);
    void onRawFrame(const QList<QList<double>> &frame);
    void dropOldest();

    QPointer<BaseCorvidaDevice> m_device;
    CorvidaOnlineExperiment *m_experiment;
    ConnectionHelper m_connections;
    QList<double> m_pressure;
    QList<double> m_pulse;
    QList<double> m_infrared;
    bool m_recordRawWanted = false;
    bool m_recordRaw = false;
    bool m_keepAll = false;
    bool m_limitReached = false;
    bool m_linkLost = false;
    bool m_uncalibrated = false;
    bool m_stopPending = false;
    double m_lastHeartRate = 0.0;
    double m_droppedMs = 0.0;
    QString m_savedPath;
};
