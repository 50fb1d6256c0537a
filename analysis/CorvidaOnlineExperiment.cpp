#include "analysis/CorvidaOnlineExperiment.h"

#include "analysis/PeakFinder.h"

#include <algorithm>

CorvidaOnlineExperiment::CorvidaOnlineExperiment(QObject *parent)
    : CorvidaExperiment(parent)
    , m_clock(VClock::wall())
{
    m_startDateTime = QDateTime::currentDateTime();
    setNameWithSerialFlag(false);
    setAutoSave(false);
    clearSeries();
}

void CorvidaOnlineExperiment::setClock(VClock::Source clock)
{
    m_clock = clock ? std::move(clock) : VClock::wall();
}

void CorvidaOnlineExperiment::setNameWithSerial(bool on)
{
    setNameWithSerialFlag(on);
    emit startDateChanged();
}

void CorvidaOnlineExperiment::loadSeries()
{
    // Once saved, the record has a file; its series are still the ones in memory.
    if (!m_pulse.isEmpty() || getFilepath().isEmpty())
        return;
    CorvidaExperiment::loadSeries();
}

void CorvidaOnlineExperiment::resetForNewRecording()
{
    setAutoSave(false);
    setFilepath(QString());
    clearSeries();
    m_third.clear();
    setBPM(0.0);
    // Times of -1 leave the pressures at 0: there is no sample at a negative time.
    setSBPTime(-1);
    setDBPTime(-1);
    m_startDateTime = QDateTime::currentDateTime();
    emit startDateChanged();
}

void CorvidaOnlineExperiment::updateData(const QList<QList<double>> &data)
{
    if (data.size() < 2)
        return;
    m_pressure = data[0];
    m_pulse = data[1];
    if (data.size() > 2)
        m_third = data[2];
    emit dataUpdated();

    const qsizetype w = qsizetype(m_samplingRate * 3.0);
    const qint64 now = m_clock();
    if (now - m_lastHeartRateRun < 1001 || m_pulse.size() <= w || w <= 0)
        return;
    m_lastHeartRateRun = now;
    if (!m_peakFinder || m_peakFinder->samplingRate() != m_samplingRate) {
        delete m_peakFinder;
        m_peakFinder = new PeakFinder(m_samplingRate, 0.01, 0.05, this);
    }
    // The last three seconds, searched in place.
    QList<int> signedIndices, peaks, valleys;
    m_peakFinder->findPeaks(m_pulse.constData() + (m_pulse.size() - w), w, 0, -1, signedIndices,
                            peaks, valleys);
    m_lastBeatCount = int(peaks.size());
    emit pulseCalculated(m_peakFinder->heartRate());
}

void CorvidaOnlineExperiment::releaseSeries()
{
    m_pressure = QList<double>();
    m_pulse = QList<double>();
    m_third = QList<double>();
}

void CorvidaOnlineExperiment::appendRaw(const QList<QList<double>> &blocks)
{
    if (blocks.size() == m_raw.size()) {
        for (qsizetype c = 0; c < blocks.size(); ++c)
            m_raw[c] += blocks[c];
        return;
    }
    m_raw = blocks;
}

void CorvidaOnlineExperiment::keepNewest(QList<double> &series, qsizetype drop, qsizetype capacity)
{
    if (series.isEmpty() || drop <= 0)
        return;
    const qsizetype from = std::min(drop, series.size());
    QList<double> kept;
    kept.reserve(std::max(capacity, series.size() - from));
    kept.resize(series.size() - from);
    std::copy(series.cbegin() + from, series.cend(), kept.begin());
    series = std::move(kept);
}

void CorvidaOnlineExperiment::dropOldestRaw(qsizetype count, qsizetype capacity)
{
    for (QList<double> &channel : m_raw)
        keepNewest(channel, count, capacity);
}
