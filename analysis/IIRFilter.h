#pragma once

#include "analysis/AbstractFilter.h"

#include <vector>

// Recursive filter. Built either from one numerator/denominator pair (any order) or from a
// cascade of second-order sections and an overall gain. Each section computes
//   y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] - a1 y[n-1] - a2 y[n-2]
// and feeds the next. The state is kept in double (transposed direct form II): poles close to
// the unit circle, as in the 50 Hz notch, would otherwise drift in single precision.
class IIRFilter : public AbstractFilter
{
    Q_OBJECT
public:
    // numerator b0..bM, denominator a0..aN; both are divided by a0.
    IIRFilter(const QList<float> &numerator, const QList<float> &denominator,
              QObject *parent = nullptr);
    // sections: each {b0, b1, b2, a0, a1, a2} (or {b0, b1, b2, a1, a2} with a0 = 1).
    IIRFilter(const QList<QList<float>> &sections, float gain, QObject *parent = nullptr);

    int sectionCount() const { return int(m_sections.size()); }
    double gain() const { return m_gain; }

    void Reset() override;
    float InternalProcess(float x) override { return processSample(x); }

    // Non-virtual entries for filters that own an IIRFilter stage.
    inline float processSample(float x);
    void processSamples(float *data, int n);

protected:
    void processBlock(float *data, int n) override { processSamples(data, n); }

private:
    struct Section {
        double b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
        double s1 = 0, s2 = 0;
    };
    float processGeneral(float x);

    std::vector<Section> m_sections;
    double m_gain = 1.0;
    // General form, used when a numerator or denominator has more than three coefficients.
    std::vector<double> m_b, m_a, m_state;
    bool m_general = false;
};

inline float IIRFilter::processSample(float x)
{
    if (m_general)
        return processGeneral(x);
    double v = x;
    for (Section &s : m_sections) {
        const double y = s.b0 * v + s.s1;
        s.s1 = s.b1 * v - s.a1 * y + s.s2;
        s.s2 = s.b2 * v - s.a2 * y;
        v = y;
    }
    return float(v * m_gain);
}
