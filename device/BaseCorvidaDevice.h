#pragma once

#include "device/SampleHistory.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QString>

class AbstractFilter;
class IIRFilter;
class MovingAverageFilter;

// Four raw channels (MPX, AC, DC, IR) of equal length, as the unit delivers them.
using RawFrame = QList<QList<double>>;
// Three processed channels: cuff pressure in mmHg, normalised pulse, IR.
using ProcessedFrame = QList<QList<float>>;

// A measuring unit as the rest of the program sees it: start and stop acquisition, start and
// end the cuff cycle, identity and calibration, and the sample stream. Every implementation
// hands its raw frames to processRawFrame, so all units deliver the same processed stream.
class BaseCorvidaDevice : public QObject
{
    Q_OBJECT
public:
    enum RawChannel { MPX = 0, AC = 1, DC = 2, IR = 3 };
    enum ProcessedChannel { Pressure = 0, Pulse = 1, Infrared = 2 };

    explicit BaseCorvidaDevice(QObject *parent = nullptr);
    ~BaseCorvidaDevice() override;

    qint64 calibrationTime() const { return m_calibrationTime; }
    QList<QPair<float, float>> calibrationPoints() const { return m_calibrationPoints; }
    bool isCalibrated() const { return m_calibrated; }
    double slope() const { return m_slope; }
    double offset() const { return m_offset; }
    bool isAcquiring() const { return m_acquiring; }
    bool isMeasuring() const { return m_measuring; }
    bool isMeasurementStopped() const { return m_measurementStopped; }
    double lowerPressure() const { return m_lowerPressure; }
    double upperPressure() const { return m_upperPressure; }
    QString serialNumber() const { return m_serialNumber; }
    int historySeconds() const { return m_historySeconds; }
    int historyLength() const { return m_historyLength; }
    const SampleHistory &history() const { return m_history; }
    void clearHistory() { m_history.clear(); }
    const QList<QList<AbstractFilter *>> &filterChains() const { return m_filterChains; }

public slots:
    virtual void connectDevice() = 0;
    virtual void disconnectDevice() = 0;
    virtual void startAcquisition() = 0;
    virtual void stopAcquisition() = 0;
    virtual void startMeasuring() = 0;
    virtual void stopMeasuring() = 0;
    virtual void setPressureLimits(double first, double second);
    virtual bool isConnected() const = 0;
    virtual double sampleRate() const { return 1000.0; }
    virtual QString deviceId() const { return m_id; }
    virtual QList<QPair<QString, QString>> deviceInfo() const { return {}; }
    // Whether the processed pressure is in mmHg. A serial unit needs its calibration for that;
    // without one the pressure is the sensor value as it came.
    virtual bool isPressureCalibrated() const { return true; }

signals:
    void adcData(QList<QList<double>> data);
    void pressurePulseData(QList<QList<float>> data);
    void calibrated();
    void started();
    void stopped();
    void startedMeasuring();
    void stoppedMeasuring();
    void connected();
    void disconnected();
    void idChanged();
    // The stream of a unit that was acquiring stopped (silent or out of step) or the port
    // failed. Emitted before the unit is disconnected, while its state still shows what ran.
    void linkLost();

protected:
    // Filters, calibrates and normalises one raw frame, keeps it in the history and hands the
    // processed frame on, then the raw one.
    void processRawFrame(const RawFrame &frame);

    // Stores a calibration from two reference points (sensor value, mmHg) and announces it.
    // Points that give no finite line are refused and the previous calibration stays.
    bool applyCalibration(qint64 timeMs, float x0, float y0, float x1, float y1);

    qint64 m_calibrationTime = 0;
    QList<QPair<float, float>> m_calibrationPoints;
    bool m_calibrated = false;
    double m_slope = 1.0;
    double m_offset = 0.0;
    bool m_acquiring = false;
    bool m_measurementStopped = false;
    bool m_measuring = false;
    int m_historySeconds = 120;
    int m_historyLength = 120000;
    double m_lowerPressure = 40.0;
    double m_upperPressure = 160.0;
    // Kept with the pressure limits for the unit's pressure tolerance; nothing reads it yet.
    double m_pressureTolerance = 5.0;
    SampleHistory m_history;
    QList<QList<AbstractFilter *>> m_filterChains;
    QString m_id;
    QString m_serialNumber;

private:
    // The filters of the chains above by their own types: the per-sample loop calls them
    // directly, without a virtual call per sample.
    IIRFilter *m_pressureLowPass = nullptr;
    IIRFilter *m_pressureNotch = nullptr;
    MovingAverageFilter *m_pulseBaseline = nullptr;
    IIRFilter *m_pulseLowPass = nullptr;
    IIRFilter *m_pulseNotch = nullptr;
    // Reused from frame to frame while no receiver keeps the previous one.
    ProcessedFrame m_processed;

    static int s_deviceCounter;
};
