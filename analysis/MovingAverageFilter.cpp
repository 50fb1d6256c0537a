#include "analysis/MovingAverageFilter.h"

#include <algorithm>
#include <cmath>

MovingAverageFilter::MovingAverageFilter(int type, float samplingRate, float cutoffFrequency,
                                         QObject *parent)
    : AbstractFilter(FIR, QStringLiteral("MovingAverageFilter"), parent)
    , m_type(type)
{
    double n = 1.0;
    if (cutoffFrequency > 0 && samplingRate > 0)
        n = std::floor(samplingRate / (2.0 * M_PI * cutoffFrequency) + 0.5);
    m_length = int(std::clamp(n, 1.0, 1e7));
    m_queue.assign(size_t(m_length), 0.0f);
    m_count = m_length;
}

void MovingAverageFilter::Reset()
{
    m_head = 0;
    m_count = 0;
}
