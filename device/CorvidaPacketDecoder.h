#pragma once

#include <QByteArray>
#include <QtGlobal>

// Cuts the byte stream of a unit into packets. Bytes go in as they arrive, in chunks of any
// size; whole packets come out in order, whatever the chunking was.
//
// A stream that loses step is not resynchronised: when the first byte still waiting is not a
// start mark, or a complete packet lacks its end mark, decoding stops until reset() (the port is
// reopened). The unit has no checksum, and hunting for the next 0x55 0x55 inside sample data
// would turn noise into packets, so the link is rather left stalled until the watchdog reopens
// it. While stalled, new bytes are counted and dropped: they could never be read anyway, and
// keeping them would let a babbling port fill the memory.
class CorvidaPacketDecoder
{
public:
    // A decoded packet. The payload points into the decoder and stays valid until the next
    // append() or reset().
    struct Packet {
        quint8 type = 0;
        const uchar *payload = nullptr;
        int length = 0;
    };

    void append(const char *data, qsizetype size);
    void append(const QByteArray &bytes) { append(bytes.constData(), bytes.size()); }

    // The next whole packet, or false when more bytes are needed or the stream is stalled.
    bool next(Packet &packet);

    // Forgets everything, as after reopening the port.
    void reset();

    bool isBlocked() const { return m_blocked; }
    // Bytes kept and not yet handed out as packets.
    qsizetype pendingBytes() const { return m_buffer.size() - m_head; }
    // Bytes dropped because the stream was stalled, since the last reset.
    qint64 droppedBytes() const { return m_dropped; }

private:
    QByteArray m_buffer;
    qsizetype m_head = 0; // first byte not yet consumed
    bool m_blocked = false;
    qint64 m_dropped = 0;
};
