#pragma once

#include "analysis/AbstractFilter.h"

#include <vector>

// Moving average over N = floor(fs / (2 pi fc) + 0.5) samples. Type 1 (high-pass) returns the
// input minus the average; every other type returns the average.
//
// The window starts full of zeros, so the average ramps in from zero. After Reset the window is
// empty and the running sum is re-seeded from the current sample (N times it) until the window
// has filled again: the output then starts at the signal's level instead of ramping from zero.
class MovingAverageFilter : public AbstractFilter
{
    Q_OBJECT
public:
    MovingAverageFilter(int type, float samplingRate, float cutoffFrequency,
                        QObject *parent = nullptr);

    int windowLength() const { return m_length; }
    int filterType() const { return m_type; }

    void Reset() override;
    float InternalProcess(float x) override { return step(x); }

protected:
    void processBlock(float *data, int n) override
    {
        for (int i = 0; i < n; ++i)
            data[i] = step(data[i]);
    }

private:
    inline float step(float x);
    // The ring wraps by comparison rather than by division: this runs for every pulse sample.
    void push(float x)
    {
        int slot = m_head + m_count;
        if (slot >= m_length)
            slot -= m_length;
        m_queue[size_t(slot)] = x;
        ++m_count;
    }
    float pop()
    {
        const float o = m_queue[size_t(m_head)];
        if (++m_head == m_length)
            m_head = 0;
        --m_count;
        return o;
    }

    int m_type;
    int m_length;
    std::vector<float> m_queue; // ring of m_length slots
    int m_head = 0;
    int m_count = 0;
    double m_sum = 0.0;
};

inline float MovingAverageFilter::step(float x)
{
    if (m_count < m_length) {
        push(x);
        m_sum = double(m_length) * x;
    }
    const float oldest = pop();
    m_sum += double(x) - oldest;
    push(x);
    const double average = m_sum / m_length;
    return m_type == HighPass ? float(x - average) : float(average);
}
