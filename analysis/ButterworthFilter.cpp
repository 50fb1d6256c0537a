#include "analysis/ButterworthFilter.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int kMaxOrder = 20;

int evenOrder(int requested)
{
    int order = std::max(requested, 1);
    if (order % 2)
        ++order;
    return std::min(order, kMaxOrder);
}
} // namespace

ButterworthFilter::ButterworthFilter(int type, int order, float samplingRate, float firstFrequency,
                                     float secondFrequency, QObject *parent)
    : AbstractFilter(IIR, QStringLiteral("ButterworthFilter"), parent)
    , m_order(evenOrder(order))
    , m_samplingRate(samplingRate)
    , m_f1(std::clamp(firstFrequency, 0.0f, samplingRate / 2))
    , m_f2(std::clamp(secondFrequency, 0.0f, samplingRate / 2))
    , m_mode(type)
{
    switch (type) {
    case LowPass:
        m_stageA = makeStage(m_f1, false);
        break;
    case HighPass:
        m_stageB = makeStage(m_f2, true);
        break;
    case BandPass:
        m_stageA = makeStage(m_f1, true);
        m_stageB = makeStage(m_f2, false);
        break;
    case BandStop:
        m_stageA = makeStage(m_f1, false);
        m_stageB = makeStage(m_f2, true);
        break;
    default:
        break;
    }
}

IIRFilter *ButterworthFilter::makeStage(double cutoff, bool highPass)
{
    QList<QList<float>> sections;
    double gain = 1.0;
    Butter(m_order, cutoff, m_samplingRate, highPass, &sections, &gain);
    return new IIRFilter(sections, float(gain), this);
}

void ButterworthFilter::Butter(int order, double cutoff, double samplingRate, bool highPass,
                               QList<QList<float>> *sections, double *gain)
{
    sections->clear();
    *gain = 1.0;
    if (samplingRate <= 0)
        return;
    const double omega = std::tan(M_PI * cutoff / samplingRate);
    for (int k = 0; k < order / 2; ++k) {
        const double theta = (2 * k + 1) * M_PI / (2.0 * order);
        const double x = -omega * std::cos(theta);
        const double y = omega * std::sin(theta);
        const double d = (1 - x) * (1 - x) + y * y;
        const std::complex<double> pole((1 - x * x - y * y) / d, 2 * y / d);
        FilterTransform(pole, highPass, sections, gain);
    }
}

void ButterworthFilter::FilterTransform(std::complex<double> pole, bool highPass,
                                        QList<QList<float>> *sections, double *gain)
{
    // A conjugate pole pair gives the denominator 1 - 2 Re(p) z^-1 + |p|^2 z^-2. The low-pass
    // places both zeros at z = -1, the high-pass at z = +1; the gain makes the response exactly
    // one at DC (low-pass) or at the Nyquist frequency (high-pass).
    const double a1 = -2.0 * pole.real();
    const double a2 = std::norm(pole);
    if (highPass) {
        sections->append({1.0f, -2.0f, 1.0f, 1.0f, float(a1), float(a2)});
        *gain *= (1.0 - a1 + a2) / 4.0;
    } else {
        sections->append({1.0f, 2.0f, 1.0f, 1.0f, float(a1), float(a2)});
        *gain *= (1.0 + a1 + a2) / 4.0;
    }
}

void ButterworthFilter::Reset()
{
    if (m_stageA)
        m_stageA->Reset();
    if (m_stageB)
        m_stageB->Reset();
}

float ButterworthFilter::InternalProcess(float x)
{
    switch (m_mode) {
    case 0:
        return m_stageA->processSample(x);
    case 1:
        return m_stageB->processSample(x);
    case 2:
    case 3:
        return m_stageB->processSample(m_stageA->processSample(x));
    default:
        return x;
    }
}

void ButterworthFilter::processBlock(float *data, int n)
{
    switch (m_mode) {
    case 0:
        m_stageA->processSamples(data, n);
        break;
    case 1:
        m_stageB->processSamples(data, n);
        break;
    case 2:
    case 3:
        m_stageA->processSamples(data, n);
        m_stageB->processSamples(data, n);
        break;
    default:
        break;
    }
}
