#pragma once

#include "device/BaseCorvidaDevice.h"
#include "device/SyntheticAnimal.h"
#include "toolkit/VClock.h"

#include <functional>
#include <memory>

class QTimer;

// A measuring unit without hardware. Every 50 ms it makes the samples due since the last tick:
// at rest a steady pulse wave; while measuring a cuff that inflates for a second and then
// deflates, with the pulse hidden above a simulated systolic pressure and returning below it.
class VirtualCorvidaDevice : public BaseCorvidaDevice
{
    Q_OBJECT
public:
    using RandomSource = std::function<double()>; // uniform in [0, 1)

    explicit VirtualCorvidaDevice(QObject *parent = nullptr);
    ~VirtualCorvidaDevice() override;

    // For tests: the clock the ticks read, and the noise source.
    void setClock(VClock::Source clock);
    void setRandomSource(RandomSource random);
    void setTickTimerActive(bool active);

    double cuffPressure() const { return m_cuffPressure; }
    double targetPressure() const { return m_targetPressure; }
    double simulatedSystolic() const { return m_simulatedSystolic; }
    double simulatedDiastolic() const { return m_simulatedDiastolic; }
    double heartRate() const { return m_heartRate; }
    double pulseAmplitude() const { return m_pulseAmplitude; }

    // The pulse amplitude the simulation gives at cuff pressure p, t ms into a measurement.
    double amplitudeAt(double p, qint64 t) const;

    // The sine counter shared by all simulated devices (one step per sample made).
    static qint64 sharedSampleCounter();

    // Plays a simulated animal ("mouse", "rat" or "hypertensive-rat") instead of the test
    // signal: its pulse at rest, and in a measurement a whole cuff cycle up to the upper limit
    // with the pulse returning at the animal's true SBP. An empty or unknown name gives the test
    // signal back. Each device plays an animal of its own (its own seed).
    void setAnimal(const QString &preset);
    QString animal() const;
    // The truth of the cycle of the current (or last) measurement; empty before one.
    SyntheticAnimal::Truth animalTruth() const { return m_cycle.truth; }

public slots:
    void connectDevice() override;
    void disconnectDevice() override;
    void startAcquisition() override;
    void stopAcquisition() override;
    void startMeasuring() override;
    void stopMeasuring() override;
    bool isConnected() const override { return m_linked; }
    void tick();

private:
    QTimer *m_tickTimer;
    qint64 m_lastTickTime = 0;
    qint64 m_measurementStartTime = 0;
    qint64 m_inflationTime = 1000;
    qint64 m_deflationTime = 4000;
    double m_cuffPressure = 0.0;
    double m_targetPressure = 100.0;
    double m_simulatedSystolic = 120.0;
    double m_simulatedDiastolic = 80.0;
    double m_heartRate = 500.0;
    double m_pulseAmplitude = 1.2;
    double m_rate = 1000.0;
    double m_fractionCarry = 0.0;
    bool m_linked = true;

    // The animal's cycle being played and where in it the next sample comes from; at rest a
    // cycle without inflation is played over and over.
    void makeAnimalFrame(RawFrame &frame, int n);
    void generateCycle(bool measuring);
    std::unique_ptr<SyntheticAnimal> m_animal;
    SyntheticAnimal::Cycle m_cycle;
    qsizetype m_cyclePosition = 0;
    bool m_cycleIsMeasurement = false;
    int m_number = 0;

    VClock::Source m_clock;
    RandomSource m_random;
    static int s_virtualCounter;
    static qint64 s_sampleCounter;
};
