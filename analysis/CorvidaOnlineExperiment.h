#pragma once

#include "analysis/CorvidaExperiment.h"
#include "toolkit/VClock.h"

// The experiment record while it is being recorded from one unit. Its series are the unit's
// accumulated data, shared rather than copied; it keeps the raw channels when raw recording is
// on, and reports the heart rate of the last three seconds at most once a second.
class CorvidaOnlineExperiment : public CorvidaExperiment
{
    Q_OBJECT
public:
    explicit CorvidaOnlineExperiment(QObject *parent = nullptr);

    void setClock(VClock::Source clock);
    void setSamplingRate(double rate) { m_samplingRate = rate; }
    // Whether the serial number goes into the file name.
    void setNameWithSerial(bool on);
    QList<double> thirdSeries() const { return m_third; }
    // The beats found in the window of the last heart rate reported.
    int lastBeatCount() const { return m_lastBeatCount; }

    // Empties the record for a new recording from now on ("Turn on" and "Measure" run it).
    void resetForNewRecording();
    // The unit's accumulated data: pressure, pulse and optionally a third series.
    void updateData(const QList<QList<double>> &data);
    // Lets go of the shared series without announcing anything, so their owner can append to
    // them without a copy; the next updateData hands them back.
    void releaseSeries();
    // One block per raw channel; a different channel count starts the raw lists anew.
    void appendRaw(const QList<QList<double>> &blocks);
    qsizetype rawChannelCount() const { return m_raw.size(); }
    qsizetype rawSamples() const { return m_raw.isEmpty() ? 0 : m_raw.first().size(); }
    // Drops the oldest `count` samples of every raw channel, keeping room for `capacity`.
    // Each channel is copied into a fresh list: the old block is freed and the new one has room
    // for what comes next, so a long preview does not keep growing.
    void dropOldestRaw(qsizetype count, qsizetype capacity);
    void clearRaw() { m_raw.clear(); }
    // The samples of a series from `drop` on, in a fresh list with room for `capacity`.
    static void keepNewest(QList<double> &series, qsizetype drop, qsizetype capacity);

signals:
    void startDateChanged();
    void pulseCalculated(double bpm);

protected:
    // The file keeps the plain record's root element, so both read the same.
    QString rootElementName() const override { return QStringLiteral("CorvidaExperiment"); }
    // A live record has nothing to read: its series come from the unit.
    void loadSeries() override;

private:
    VClock::Source m_clock;
    qint64 m_lastHeartRateRun = 0;
    int m_lastBeatCount = 0;
    QList<double> m_third;
};
