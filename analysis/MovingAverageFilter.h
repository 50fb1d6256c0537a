#pragma once

#include "analysis/AbstractFilter.h"

#include <vector>

// Moving average over N = floor(fs / (2 pi fc) + 0.5) samples. Type 1 (high-pass) returns the
// input minus the average; every other type returns the average.
//
// The window starts full of zeros, so the average ramps in from zero. After Reset the window is
// empty and the running sum is re-seeded from the current sample (N times it) until the window
// has filled again: the output then starts at the signal's level instead of ramping from zero.
class MovingAverageFilter : public AbstractFilter {
    Q_OBJECT
public:
    MovingAverageFilter(int type, float samplingRate, float cutoffFrequency,
                        QObject *parent = nullptr);

    int windowLength() const { return m_length; }
    int filterType() const { return m_type; }

    void Reset() override;
    float InternalProcess(float x) override;

private:
    void push(float x) {
        m_queue[size_t((m_head + m_count) % m_length)] = x;
        ++m_count;
    }
    float pop() {
        const float o = m_queue[size_t(m_head)];
        m_head = (m_head + 1) % m_length;
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
