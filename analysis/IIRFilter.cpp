#include "analysis/IIRFilter.h"

#include <QDebug>
#include <algorithm>

IIRFilter::IIRFilter(const QList<float> &numerator, const QList<float> &denominator,
                     QObject *parent)
    : AbstractFilter(IIR, QStringLiteral("IIRFilter"), parent)
{
    if (numerator.isEmpty() || denominator.isEmpty() || denominator.first() == 0.0f) {
        // Nothing sensible to design from: behave as a wire.
        qDebug() << "IIRFilter: invalid coefficients, passing samples through";
        return;
    }
    const double a0 = denominator.first();
    if (numerator.size() <= 3 && denominator.size() <= 3) {
        Section s;
        s.b0 = numerator.value(0) / a0;
        s.b1 = numerator.value(1) / a0;
        s.b2 = numerator.value(2) / a0;
        s.a1 = denominator.value(1) / a0;
        s.a2 = denominator.value(2) / a0;
        m_sections.push_back(s);
        return;
    }
    m_general = true;
    const size_t order = std::max(numerator.size(), denominator.size());
    m_b.assign(order, 0.0);
    m_a.assign(order, 0.0);
    for (qsizetype i = 0; i < numerator.size(); ++i)
        m_b[i] = numerator[i] / a0;
    for (qsizetype i = 0; i < denominator.size(); ++i)
        m_a[i] = denominator[i] / a0;
    m_state.assign(order, 0.0);
}

IIRFilter::IIRFilter(const QList<QList<float>> &sections, float gain, QObject *parent)
    : AbstractFilter(IIR, QStringLiteral("IIRFilter"), parent)
    , m_gain(gain)
{
    for (const QList<float> &c : sections) {
        Section s;
        if (c.size() >= 6 && c[3] != 0.0f) {
            const double a0 = c[3];
            s.b0 = c[0] / a0;
            s.b1 = c[1] / a0;
            s.b2 = c[2] / a0;
            s.a1 = c[4] / a0;
            s.a2 = c[5] / a0;
        } else if (c.size() == 5) {
            s.b0 = c[0];
            s.b1 = c[1];
            s.b2 = c[2];
            s.a1 = c[3];
            s.a2 = c[4];
        } else {
            qDebug() << "IIRFilter: ignoring a section with" << c.size() << "coefficients";
            continue;
        }
        m_sections.push_back(s);
    }
}

void IIRFilter::Reset()
{
    for (Section &s : m_sections)
        s.s1 = s.s2 = 0.0;
    std::fill(m_state.begin(), m_state.end(), 0.0);
}

float IIRFilter::processGeneral(float x)
{
    // Transposed direct form II of arbitrary order; m_state[k] holds the k-th delay.
    const size_t n = m_b.size();
    const double y = m_b[0] * x + (n > 1 ? m_state[1] : 0.0);
    for (size_t k = 1; k < n; ++k) {
        const double next = (k + 1 < n) ? m_state[k + 1] : 0.0;
        m_state[k] = m_b[k] * x - m_a[k] * y + next;
    }
    return float(y * m_gain);
}

void IIRFilter::processSamples(float *data, int n)
{
    if (m_general) {
        for (int i = 0; i < n; ++i)
            data[i] = processGeneral(data[i]);
        return;
    }
    // Section after section over short runs of samples: the same arithmetic, in the same order
    // per sample, as processSample, but each section's state stays in registers for the run.
    constexpr int kRun = 64;
    double v[kRun];
    for (int at = 0; at < n; at += kRun) {
        const int m = std::min(kRun, n - at);
        for (int i = 0; i < m; ++i)
            v[i] = data[at + i];
        for (Section &s : m_sections) {
            double s1 = s.s1, s2 = s.s2;
            for (int i = 0; i < m; ++i) {
                const double x = v[i];
                const double y = s.b0 * x + s1;
                s1 = s.b1 * x - s.a1 * y + s2;
                s2 = s.b2 * x - s.a2 * y;
                v[i] = y;
            }
            s.s1 = s1;
            s.s2 = s2;
        }
        for (int i = 0; i < m; ++i)
            data[at + i] = float(v[i] * m_gain);
    }
}
