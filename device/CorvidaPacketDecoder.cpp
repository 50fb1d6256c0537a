#include "device/CorvidaPacketDecoder.h"

#include "device/CorvidaPacket.h"

namespace {
constexpr uchar kStartMark = 0x55;
constexpr uchar kEndMark = 0xCC;
} // namespace

void CorvidaPacketDecoder::append(const char *data, qsizetype size)
{
    if (size <= 0)
        return;
    if (m_blocked) {
        m_dropped += size;
        return;
    }
    // Consumed packets are dropped here rather than one by one in next(), so a read of many
    // packets moves the leftover (less than one packet) once.
    if (m_head > 0) {
        m_buffer.remove(0, m_head);
        m_head = 0;
    }
    m_buffer.append(data, size);
}

bool CorvidaPacketDecoder::next(Packet &packet)
{
    if (m_blocked)
        return false;
    const qsizetype available = m_buffer.size() - m_head;
    if (available < CorvidaPacket::Overhead)
        return false;
    const uchar *p = reinterpret_cast<const uchar *>(m_buffer.constData()) + m_head;
    if (p[0] != kStartMark || p[1] != kStartMark) {
        m_blocked = true;
        return false;
    }
    const int length = p[3];
    if (available < length + CorvidaPacket::Overhead)
        return false;
    const uchar *end = p + CorvidaPacket::HeaderSize + length;
    if (end[0] != kEndMark || end[1] != kEndMark) {
        m_blocked = true;
        return false;
    }
    packet.type = p[2];
    packet.payload = p + CorvidaPacket::HeaderSize;
    packet.length = length;
    m_head += length + CorvidaPacket::Overhead;
    return true;
}

void CorvidaPacketDecoder::reset()
{
    m_buffer.clear();
    m_head = 0;
    m_blocked = false;
    m_dropped = 0;
}
