#include "device/BaseCorvidaDevice.h"

#include "analysis/ButterworthFilter.h"
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
    m_filterChains.append(QList<AbstractFilter *>{
        new ButterworthFilter(AbstractFilter::LowPass, 4, kRate, 15, 15, this),
        new NotchFilter(kRate, 50, 1, this)});
    // Pulse: 3 Hz moving-average high-pass removes the slow baseline, 30 Hz low-pass, mains notch.
    m_filterChains.append(QList<AbstractFilter *>{
        new MovingAverageFilter(AbstractFilter::HighPass, kRate, 3, this),
        new ButterworthFilter(AbstractFilter::LowPass, 4, kRate, 30, 30, this),
        new NotchFilter(kRate, 50, 1, this)});
    // IR is shown as it comes.
    m_filterChains.append(QList<AbstractFilter *>());
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
    const QList<double> &dc = frame[DC];
    const RawChannel sources[3] = {MPX, AC, IR};

    ProcessedFrame processed(3);
    for (int c = 0; c < 3; ++c) {
        const QList<double> &in = frame[sources[c]];
        const qsizetype n = in.size();
        QList<float> &list = processed[c];
        list.resize(n);
        // Plain pointers: indexing a non-const list checks for sharing on every access.
        float *out = list.data();
        const double *src = in.constData();
        for (qsizetype i = 0; i < n; ++i)
            out[i] = float(src[i]);
        for (AbstractFilter *filter : std::as_const(m_filterChains[c]))
            filter->Process(out, int(n));
        if (c == Pressure) {
            for (qsizetype i = 0; i < n; ++i)
                out[i] = float(out[i] * m_slope - m_offset);
        } else if (c == Pulse) {
            const double *d = dc.constData();
            const qsizetype withDc = std::min(n, dc.size());
            for (qsizetype i = 0; i < withDc; ++i)
                out[i] = d[i] > 0 ? float(out[i] * (kPulseScale / d[i])) : 0.0f;
            for (qsizetype i = withDc; i < n; ++i)
                out[i] = 0.0f;
        }
    }
    m_history.append(processed);
    emit pressurePulseData(processed);
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
