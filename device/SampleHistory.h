#pragma once

#include <QList>

// The most recent processed samples of one device, per channel, capped at a fixed length.
// Samples are appended into buffers of twice the cap; only when they fill are the newest
// samples moved to the front, so the cost per sample stays constant and an ordinary frame
// moves nothing.
class SampleHistory
{
public:
    explicit SampleHistory(int channels = 3, int capacity = 120000);

    // Appends the first channelCount() lists of the frame (all of equal length).
    void append(const QList<QList<float>> &frame);
    void clear();

    int channelCount() const { return int(m_data.size()); }
    int capacity() const { return m_capacity; }
    int size() const { return m_size; }
    // The kept samples of one channel, oldest first.
    QList<float> channel(int index) const;

private:
    QList<QList<float>> m_data; // per channel, 2 x capacity slots once used
    int m_capacity;
    int m_begin = 0; // slot of the oldest kept sample, the same in every channel
    int m_size = 0;
};
