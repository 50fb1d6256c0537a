#include "device/SampleHistory.h"

#include <algorithm>
#include <cstring>

SampleHistory::SampleHistory(int channels, int capacity)
    : m_capacity(std::max(capacity, 1))
{
    m_data.resize(std::max(channels, 0));
}

void SampleHistory::append(const QList<QList<float>> &frame)
{
    if (m_data.isEmpty() || frame.size() < m_data.size())
        return;
    qsizetype n = frame.first().size();
    for (qsizetype c = 1; c < m_data.size(); ++c)
        n = std::min(n, frame[c].size());
    if (n <= 0)
        return;
    // Of a frame longer than the cap only its newest samples stay.
    const qsizetype skip = std::max<qsizetype>(0, n - m_capacity);
    n -= skip;

    const int slotCount = 2 * m_capacity;
    if (m_begin + m_size + n > slotCount) {
        const int keep = int(std::min<qsizetype>(m_size, m_capacity - n));
        for (QList<float> &d : m_data)
            std::memmove(d.data(), d.constData() + m_begin + m_size - keep, sizeof(float) * keep);
        m_begin = 0;
        m_size = keep;
    }
    for (qsizetype c = 0; c < m_data.size(); ++c) {
        QList<float> &d = m_data[c];
        if (d.size() != slotCount)
            d.resize(slotCount);
        std::memcpy(d.data() + m_begin + m_size, frame[c].constData() + skip, sizeof(float) * n);
    }
    m_size += int(n);
    if (m_size > m_capacity) {
        m_begin += m_size - m_capacity;
        m_size = m_capacity;
    }
}

void SampleHistory::clear()
{
    m_begin = 0;
    m_size = 0;
}

QList<float> SampleHistory::channel(int index) const
{
    if (index < 0 || index >= m_data.size() || m_size == 0)
        return {};
    const QList<float> &d = m_data[index];
    return QList<float>(d.constBegin() + m_begin, d.constBegin() + m_begin + m_size);
}
