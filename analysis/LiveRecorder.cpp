#include "analysis/LiveRecorder.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "device/BaseCorvidaDevice.h"
#include "device/CorvidaModel.h"

#include <QDebug>
#include <algorithm>

LiveRecorder::LiveRecorder(BaseCorvidaDevice *device, QObject *parent)
    : QObject(parent)
    , m_device(device)
    , m_experiment(new CorvidaOnlineExperiment(this))
{
    if (m_device) {
        m_experiment->setSamplingRate(m_device->sampleRate());
        m_connections << connect(m_device, &BaseCorvidaDevice::pressurePulseData, this,
                                 &LiveRecorder::onFrame);
        m_connections << connect(m_device, &BaseCorvidaDevice::adcData, this,
                                 &LiveRecorder::onRawFrame);
        m_connections << connect(m_device, &BaseCorvidaDevice::linkLost, this,
                                 &LiveRecorder::onLinkLost);
    }
    m_connections << connect(m_experiment, &CorvidaOnlineExperiment::pulseCalculated, this,
                             [this](double bpm) { m_lastHeartRate = bpm; });
}

LiveRecorder::~LiveRecorder() = default;

bool LiveRecorder::isSaveable() const
{
    return double(m_pressure.size()) > m_experiment->getSamplingRate();
}

void LiveRecorder::startNewRecording(bool keepAll)
{
    m_experiment->resetForNewRecording();
    m_experiment->setUncalibrated(false);
    m_pressure.clear();
    m_pulse.clear();
    m_infrared.clear();
    m_lastHeartRate = 0.0;
    m_droppedMs = 0.0;
    m_savedPath.clear();
    m_recordRaw = m_recordRawWanted;
    m_keepAll = keepAll;
    m_limitReached = false;
    m_linkLost = false;
    m_uncalibrated = false;
    if (m_device) {
        // Every record carries the identity of the unit it was measured with.
        m_experiment->setSN(m_device->serialNumber().isEmpty() ? m_device->deviceId()
                                                               : m_device->serialNumber());
        m_experiment->setSamplingRate(m_device->sampleRate());
    }
}

bool LiveRecorder::turnOn()
{
    if (!m_device || !m_device->isConnected() || m_device->isAcquiring())
        return false;
    startNewRecording(false);
    m_device->startAcquisition();
    return true;
}

bool LiveRecorder::turnOff()
{
    if (!m_device || !m_device->isAcquiring())
        return false;
    if (m_device->isMeasuring())
        m_device->stopMeasuring();
    else
        m_device->stopAcquisition();
    return true;
}

bool LiveRecorder::measure()
{
    if (!m_device || !m_device->isConnected() || !m_device->isAcquiring() ||
        m_device->isMeasuring())
        return false;
    startNewRecording(true);
    m_device->startMeasuring();
    // A unit that refused to start (bad limits) goes on streaming a preview.
    if (!m_device->isMeasuring())
        m_keepAll = false;
    return m_device->isMeasuring();
}

bool LiveRecorder::abort()
{
    if (!m_device || !m_device->isMeasuring())
        return false;
    m_device->stopMeasuring();
    return true;
}

bool LiveRecorder::save(const QString &folder, QString *error)
{
    // A new record finds its markers the way the settings ask, and keeps that way.
    m_experiment->setMethod(CorvidaModel::detectionMethod());
    // Found before writing, so the recording carries its markers from the start and is not
    // written a second time for them.
    m_experiment->recalculate(false);
    if (!m_experiment->save(folder, error))
        return false;
    m_experiment->recalculate(false);
    adoptWhatTheFileHolds();
    m_savedPath = m_experiment->getFilepath();
    emit saved(m_savedPath);
    return true;
}

void LiveRecorder::adoptWhatTheFileHolds()
{
    // The recording keeps 16 bits a sample, so the saved record, opened later, is analysed on
    // values a hair away from the live ones, and may find a point the live analysis missed
    // ("119/?" in the list, "119/103" once opened). The result of the saved samples is the one
    // every view shows, so it is taken now, while the record is still on screen.
    CorvidaExperiment stored(m_experiment->getFilepath());
    stored.setAutoSave(false);
    if (stored.getPressure().isEmpty())
        return; // not readable: the save already said what it could
    if (stored.getSBPTime() != m_experiment->getSBPTime())
        m_experiment->setSBPTime(stored.getSBPTime());
    if (stored.getDBPTime() != m_experiment->getDBPTime())
        m_experiment->setDBPTime(stored.getDBPTime());
    if (stored.getBPM() != m_experiment->getBPM())
        m_experiment->setBPM(stored.getBPM());
}

void LiveRecorder::onLinkLost()
{
    // Only a recording in progress has something to lose; an idle unit just reconnects.
    if (!m_device || !m_device->isAcquiring() || m_linkLost)
        return;
    m_linkLost = true;
    emit linkLost();
}

void LiveRecorder::onFrame(const QList<QList<float>> &frame)
{
    // Frames still in the port's buffer when the limit stopped the unit belong to no record.
    if (frame.size() < 2 || m_limitReached)
        return;
    if (!m_uncalibrated && m_device && !m_device->isPressureCalibrated()) {
        m_uncalibrated = true;
        m_experiment->setUncalibrated(true);
        emit pressureUncalibrated();
    }
    // Take the series back from the record first: then nobody else holds them and appending
    // grows them in place.
    m_experiment->releaseSeries();
    for (float v : frame[0])
        m_pressure.append(v);
    for (float v : frame[1])
        m_pulse.append(v);
    if (frame.size() > 2) {
        for (float v : frame[2])
            m_infrared.append(v);
    }
    if (!m_keepAll)
        dropOldest();
    m_experiment->updateData({m_pressure, m_pulse, m_infrared});
    emit dataUpdated();

    const double rate = m_experiment->getSamplingRate();
    if (m_keepAll && rate > 0 && double(m_pressure.size()) >= MaxMeasurementSeconds * rate) {
        qDebug() << "Measurement stopped at its limit of" << MaxMeasurementSeconds << "s";
        m_limitReached = true;
        // The raw block of this frame still follows; the unit is stopped after it.
        m_stopPending = true;
    }
}

void LiveRecorder::dropOldest()
{
    // A unit left turned on for a long time would otherwise grow its live record without end.
    // Like the unit's own history, the preview keeps its newest stretch; the start time moves
    // with it, so a record saved later still begins at its first sample. The oldest samples go
    // ten seconds at a time: in between, the record only grows at its end, which is what the
    // viewers redraw cheaply.
    const qsizetype cap = m_device ? m_device->historyLength() : 0;
    const double rate = m_experiment->getSamplingRate();
    const qsizetype slack = rate > 0 ? qsizetype(rate * DropSeconds) : 0;
    if (cap <= 0 || m_pressure.size() <= cap + slack)
        return;
    const qsizetype drop = m_pressure.size() - cap;
    // Copied into lists sized for the next ten seconds: they fill without growing, and the old
    // ones are freed, so memory stays where it is from here on.
    const qsizetype room = cap + slack + slack / 10;
    for (QList<double> *series : {&m_pressure, &m_pulse, &m_infrared})
        CorvidaOnlineExperiment::keepNewest(*series, drop, room);
    // The raw channels lose the same samples. Their block for the frame in hand has not come
    // yet, so they are one frame shorter and keep room for it.
    m_experiment->dropOldestRaw(drop, room);
    if (rate > 0) {
        m_droppedMs += double(drop) * 1000.0 / rate;
        const qint64 whole = qint64(m_droppedMs);
        m_droppedMs -= double(whole);
        m_experiment->setStartDateTime(m_experiment->startDateTime().addMSecs(whole));
    }
}

void LiveRecorder::onRawFrame(const QList<QList<double>> &frame)
{
    if (m_limitReached && !m_stopPending)
        return;
    if (m_recordRaw && !frame.isEmpty()) {
        // The processed frame of these samples came first; with this block the raw channels must
        // reach the same length. Anything else would write them out of step, so rather none.
        const qsizetype held =
            m_experiment->rawChannelCount() == frame.size() ? m_experiment->rawSamples() : 0;
        if (held + frame.first().size() == m_pressure.size()) {
            m_experiment->appendRaw(frame);
        } else {
            qDebug() << "Raw channels out of step with the record; raw recording stops here";
            m_experiment->clearRaw();
            m_recordRaw = false;
        }
    }
    if (m_stopPending) {
        m_stopPending = false;
        if (m_device && m_device->isMeasuring())
            m_device->stopMeasuring();
        emit limitReached();
    }
}
