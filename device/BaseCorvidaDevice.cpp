#include "device/BaseCorvidaDevice.h"

#include "analysis/ButterworthFilter.h"
#include "analysis/IIRFilter.h"
#include "analysis/MovingAverageFilter.h"
#include "analysis/NotchFilter.h"

#include <QDebug>
#include <algorithm>
#include <cmath>

int BaseCorvidaDevice::s_deviceCounter = 0;

namespace {
constexpr float kRate = 1000.0f;
constexpr double kPulseScale = 1.2;
} // namespace

BaseCorvidaDevice::BaseCorvidaDevice(QObject *parent)
    : QObject(parent)
    , m_history(3, 120000)
{
    m_id = QStringLiteral("S%1").arg(++s_deviceCounter);

    // Pressure: 15 Hz low-pass against sensor noise, then the mains notch.
    auto *pressureLowPass = new ButterworthFilter(AbstractFilter::LowPass, 4, kRate, 15, 15, this);
    auto *pressureNotch = new NotchFilter(kRate, 50, 1, this);
    m_filterChains.append(QList<AbstractFilter *>{pressureLowPass, pressureNotch});
    // Pulse: 3 Hz moving-average high-pass removes the slow baseline, 30 Hz low-pass, mains notch.
    m_pulseBaseline = new MovingAverageFilter(AbstractFilter::HighPass, kRate, 3, this);
    auto *pulseLowPass = new ButterworthFilter(AbstractFilter::LowPass, 4, kRate, 30, 30, this);
    auto *pulseNotch = new NotchFilter(kRate, 50, 1, this);
    m_filterChains.append(QList<AbstractFilter *>{m_pulseBaseline, pulseLowPass, pulseNotch});
    // IR is shown as it comes.
    m_filterChains.append(QList<AbstractFilter *>());

    // A low-pass Butterworth is its first stage alone.
    m_pressureLowPass = pressureLowPass->stageA();
    m_pressureNotch = pressureNotch->stage();
    m_pulseLowPass = pulseLowPass->stageA();
    m_pulseNotch = pulseNotch->stage();
    m_processed = ProcessedFrame(3);
}

BaseCorvidaDevice::~BaseCorvidaDevice() = default;

void BaseCorvidaDevice::setPressureLimits(double first, double second)
{
    m_lowerPressure = std::min(first, second);
    m_upperPressure = std::max(first, second);
}

void BaseCorvidaDevice::processRawFrame(const RawFrame &frame)
{
    if (frame.size() < 4)
        return;
    const RawChannel sources[3] = {MPX, AC, IR};

    // A receiver may still hold the previous frame (a queued connection, a recorder): then it
    // keeps that one and this frame gets new lists; otherwise the lists are filled in place.
    if (!m_processed.isDetached())
        m_processed = ProcessedFrame(3);
    float *out[3];
    const double *in[3];
    qsizetype length[3];
    for (int c = 0; c < 3; ++c) {
        length[c] = frame[sources[c]].size();
        in[c] = frame[sources[c]].constData();
        QList<float> &list = m_processed[c];
        if (list.isDetached())
            list.resize(length[c]);
        else
            list = QList<float>(length[c]);
        out[c] = list.data();
    }
    const double *dc = frame[DC].constData();
    const qsizetype withDc = frame[DC].size();
    const double slope = m_slope;
    const double offset = m_offset;

    // The pulse baseline first, over the whole frame: a running sum, cheap on its own but a
    // drag on the loop below if it ran there.
    for (qsizetype i = 0; i < length[Pulse]; ++i)
        out[Pulse][i] = float(in[Pulse][i]);
    m_pulseBaseline->Process(out[Pulse], int(length[Pulse]));

    // Then sample by sample through the other filters of both channels at once: their
    // recursions are chains of dependent multiplications, and running the two channels and all
    // stages side by side lets the processor overlap them. Each value goes through the same
    // operations in the same order as it would through the filters one block at a time.
    const auto pressureAt = [&](qsizetype i) {
        const float filtered = m_pressureNotch->processSample(
            m_pressureLowPass->processSample(float(in[Pressure][i])));
        out[Pressure][i] = float(filtered * slope - offset);
    };
    const auto pulseAt = [&](qsizetype i) {
        const float filtered =
            m_pulseNotch->processSample(m_pulseLowPass->processSample(out[Pulse][i]));
        // Normalised by the DC level; without a positive DC there is nothing to scale by.
        out[Pulse][i] = i < withDc && dc[i] > 0 ? float(filtered * (kPulseScale / dc[i])) : 0.0f;
    };
    const qsizetype common = std::min({length[Pressure], length[Pulse], length[Infrared]});
    for (qsizetype i = 0; i < common; ++i) {
        pressureAt(i);
        pulseAt(i);
        out[Infrared][i] = float(in[Infrared][i]);
    }
    // Channels of unequal length (a damaged frame) are each processed to their own end.
    for (qsizetype i = common; i < length[Pressure]; ++i)
        pressureAt(i);
    for (qsizetype i = common; i < length[Pulse]; ++i)
        pulseAt(i);
    for (qsizetype i = common; i < length[Infrared]; ++i)
        out[Infrared][i] = float(in[Infrared][i]);

    m_history.append(m_processed);
    emit pressurePulseData(m_processed);
    emit adcData(frame);
}

bool BaseCorvidaDevice::applyCalibration(qint64 timeMs, float x0, float y0, float x1, float y1)
{
    const double slope = (double(y1) - y0) / (double(x1) - x0);
    const double offset = double(x0) * slope - y0;
    if (!std::isfinite(slope) || !std::isfinite(offset)) {
        // Two equal sensor values give no line; a pressure of infinity would help nobody.
        qDebug() << "Calibration data rejected:" << x0 << y0 << x1 << y1;
        return false;
    }
    m_calibrationTime = timeMs;
    m_calibrationPoints = {qMakePair(x0, y0), qMakePair(x1, y1)};
    m_slope = slope;
    m_offset = offset;
    qDebug() << "Calibration data:" << m_slope << m_offset;
    m_calibrated = true;
    emit calibrated();
    return true;
}
