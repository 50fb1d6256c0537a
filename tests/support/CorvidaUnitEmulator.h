#pragma once

#include "device/SyntheticAnimal.h"
#include "toolkit/VClock.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <memory>

class QSocketNotifier;
class QTimer;

// Plays a measuring unit on a pseudo-terminal, so the device code talks to it through a real
// serial port. It answers the serial-number and calibration requests, streams samples at
// 1000 Hz while acquisition is on, and runs a cuff cycle when asked to measure.
//
// The framing and numbers here are written out by hand and share nothing with the program's
// own codec, so a fault in that codec cannot hide by appearing on both sides.
//
// Time comes from a clock that tests move by hand: tick() sends the samples due since the last
// tick. portPath() is a link that stays the same across unplug()/plug(), like a port name.
class CorvidaUnitEmulator : public QObject
{
    Q_OBJECT
public:
    struct Packet {
        int type = 0;
        QByteArray payload;
    };
    using Counts = std::array<qint16, 4>; // MPX, AC, DC, IR as sent

    explicit CorvidaUnitEmulator(QObject *parent = nullptr);
    ~CorvidaUnitEmulator() override;

    // Opens a new pseudo-terminal pair and points portPath() at it; a fresh unit starts idle.
    bool plug();
    // Closes the pair: the port reports an error to whoever has it open.
    void unplug();
    bool isPlugged() const { return m_master >= 0; }
    QString portPath() const;

    void setClock(VClock::Source clock);
    // Sends due samples every few ms on its own (off by default; tests call tick()).
    void setStreamTimerActive(bool active);

    // Identity and calibration the unit reports.
    void setSerialNumber(const QByteArray &serialNumber) { m_serialNumber = serialNumber; }
    void setProductionDate(const QDateTime &date) { m_production = date; }
    void setCalibration(float x0, float y0, float x1, float y1)
    {
        const float points[4] = {x0, y0, x1, y1};
        std::copy(points, points + 4, m_calibration);
    }

    // The simulated body and cuff.
    void setRestPressure(double mmHg) { m_restPressure = mmHg; }
    void setSystolic(double mmHg) { m_systolic = mmHg; }
    void setPulse(double hz, int amplitudeCounts)
    {
        m_pulseHz = hz;
        m_pulseCounts = amplitudeCounts;
    }
    void setCuffRates(double inflateMmHgPerS, double deflateMmHgPerS)
    {
        m_inflateRate = inflateMmHgPerS;
        m_deflateRate = deflateMmHgPerS;
    }

    // Plays a simulated animal instead of the plain sine: its pulse at rest, and for each cuff
    // cycle a cycle of the animal with the cuff going up to the upper limit at the rates above
    // and down to the lower one, where the valve opens. The pulse comes back at the animal's
    // true SBP. Each unit gets its own seed, so several units are several animals. An empty
    // name goes back to the sine; an unknown one is refused. The condition is one of the
    // animal's (noise, movement, ...); the cuff's rates stay the unit's own whatever it is.
    bool setAnimal(const QString &preset, quint32 seed,
                   const QString &condition = QStringLiteral("clean"));
    bool hasAnimal() const { return bool(m_animal); }
    // The truth of every cuff cycle played so far, in order.
    QList<SyntheticAnimal::Truth> animalTruths() const { return m_truths; }

    bool isStreaming() const { return m_streaming; }
    bool isMeasuring() const { return m_measuring; }
    int upperLimit() const { return m_upper; }
    int lowerLimit() const { return m_lower; }

    // Everything the computer sent.
    QByteArray receivedBytes() const { return m_received; }
    void clearReceived() { m_received.clear(); }

    // Keeps the counts of every sample sent (for comparing against what the device made).
    void setRecordSamples(bool record) { m_recordSamples = record; }
    QList<Counts> sentSamples() const { return m_sentSamples; }
    qint64 samplesSent() const { return m_samplesSent; }

    // A framed packet, built independently of the program's encoder.
    static QByteArray packet(int type, const QByteArray &payload = QByteArray());
    static QByteArray le64(quint64 value);

    // Bytes on the line that are no packet at all, as electrical noise would put there.
    void sendLineNoise(const QByteArray &bytes) { writeRaw(bytes); }

public slots:
    // Sends the samples due since the previous tick (at most ten seconds' worth).
    void tick();

private:
    void onReadable();
    void parseReceived();
    void handleCommand(const Packet &packet);
    void sendSamples(int count);
    void writeRaw(const QByteArray &bytes);
    // The MPX count the unit sends for a cuff pressure, through its calibration.
    qint16 pressureCount(double mmHg) const;
    void flush();
    Counts nextSample();
    Counts nextAnimalSample();
    void startAnimalCycle(bool measuring);

    int m_master = -1;
    int m_slaveHold = -1; // keeps the pair alive and raw while no port has it open
    QTemporaryDir m_linkDir;
    QSocketNotifier *m_readNotifier = nullptr;
    QSocketNotifier *m_writeNotifier = nullptr;
    QTimer *m_streamTimer;
    VClock::Source m_clock;
    qint64 m_lastTick = 0;

    QByteArray m_inBuffer;
    QByteArray m_outBuffer;
    QByteArray m_received;

    QByteArray m_serialNumber = "CRV-0001";
    QDateTime m_production;
    float m_calibration[4] = {100.0f, 0.0f, 900.0f, 200.0f};

    double m_restPressure = 0.0;
    double m_systolic = 120.0;
    double m_pulseHz = 6.0;
    int m_pulseCounts = 4000;
    qint16 m_dcCounts = 16384;
    qint16 m_irCounts = 8192;
    double m_inflateRate = 100.0; // mmHg per s
    double m_deflateRate = 20.0;

    bool m_streaming = false;
    bool m_measuring = false;
    bool m_deflating = false;
    double m_pressure = 0.0;
    int m_upper = 0;
    int m_lower = 0;
    qint64 m_samplesSent = 0;
    bool m_recordSamples = false;
    QList<Counts> m_sentSamples;

    std::unique_ptr<SyntheticAnimal> m_animal;
    SyntheticAnimal::Cycle m_cycle;
    qsizetype m_cyclePosition = 0;
    qsizetype m_cyclePeak = 0; // where the cuff of a measuring cycle starts to fall
    QList<SyntheticAnimal::Truth> m_truths;
};
