#include "device/CorvidaPacket.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {
// Milliseconds from 1601-01-01 to 1970-01-01.
constexpr qint64 kEpochOffsetMs = 11644473600000LL;

quint16 readU16(const uchar *p)
{
    return quint16(p[0] | (p[1] << 8));
}

qint16 readI16(const uchar *p)
{
    return qint16(readU16(p));
}

quint64 readU64(const uchar *p)
{
    quint64 v = 0;
    for (int i = 7; i >= 0; --i)
        v = (v << 8) | p[i];
    return v;
}

float readF32(const uchar *p)
{
    const quint32 bits =
        quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16) | (quint32(p[3]) << 24);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

void appendU16(QByteArray &out, quint16 v)
{
    out.append(char(v & 0xFF));
    out.append(char(v >> 8));
}

void appendU64(QByteArray &out, quint64 v)
{
    for (int i = 0; i < 8; ++i)
        out.append(char((v >> (8 * i)) & 0xFF));
}

// Whole mmHg for the wire. The limits come from settings; anything outside the 16-bit range
// is pinned to it rather than wrapped, so a silly setting cannot turn into a tiny one.
quint16 wholeMmHg(double value)
{
    if (!(value > 0))
        return 0;
    if (value >= 65535.0)
        return 65535;
    return quint16(std::trunc(value));
}
} // namespace

QByteArray CorvidaPacket::encode(quint8 type, const QByteArray &payload)
{
    if (payload.size() > MaxPayload)
        return QByteArray();
    QByteArray out;
    out.reserve(payload.size() + Overhead);
    out.append(char(0x55));
    out.append(char(0x55));
    out.append(char(type));
    out.append(char(quint8(payload.size())));
    out.append(payload);
    out.append(char(0xCC));
    out.append(char(0xCC));
    return out;
}

QByteArray CorvidaPacket::measuringCommand(double upper, double lower)
{
    QByteArray payload;
    appendU16(payload, wholeMmHg(upper));
    appendU16(payload, wholeMmHg(lower));
    return encode(StartMeasuring, payload);
}

QByteArray CorvidaPacket::serialNumberPayload(const QString &serialNumber,
                                              const QDateTime &production)
{
    QByteArray payload;
    payload.reserve(SerialPayloadSize);
    appendU64(payload, production.isValid() ? msecsToFileTime(production.toMSecsSinceEpoch()) : 0);
    QByteArray text = serialNumber.toLatin1().left(SerialTextSize);
    text.append(QByteArray(SerialTextSize - text.size(), '\0'));
    payload.append(text);
    return payload;
}

int CorvidaPacket::decodeSamples(const uchar *payload, int length, QList<QList<double>> &frame)
{
    if (frame.size() < ChannelCount || length <= 0)
        return 0;
    const int groups = length / GroupSize;
    static constexpr double factors[ChannelCount] = {MpxFactor, PulseFactor, PulseFactor, IrFactor};
    for (int c = 0; c < ChannelCount; ++c) {
        QList<double> &channel = frame[c];
        const qsizetype start = channel.size();
        channel.resize(start + groups);
        double *out = channel.data() + start;
        const uchar *in = payload + 2 * c;
        for (int g = 0; g < groups; ++g, in += GroupSize)
            out[g] = readI16(in) * factors[c];
    }
    return groups;
}

bool CorvidaPacket::decodeCalibration(const uchar *payload, int length, CalibrationData &out)
{
    if (length != CalibrationSize)
        return false;
    out.timeMs = fileTimeToMSecs(readU64(payload));
    out.x0 = readF32(payload + 8);
    out.y0 = readF32(payload + 12);
    out.x1 = readF32(payload + 16);
    out.y1 = readF32(payload + 20);
    return true;
}

CorvidaPacket::SerialResult CorvidaPacket::decodeSerialNumber(const uchar *payload, int length,
                                                              SerialData &out)
{
    if (length <= 0)
        return SerialResult::Empty;
    if (length < SerialPayloadSize)
        return SerialResult::Invalid;
    out.productionMs = fileTimeToMSecs(readU64(payload));
    const char *text = reinterpret_cast<const char *>(payload + 8);
    const int room = length - 8;
    const void *zero = std::memchr(text, 0, size_t(room));
    const int size = zero ? int(static_cast<const char *>(zero) - text) : room;
    out.serialNumber = QString::fromLatin1(text, size).trimmed();
    return SerialResult::Valid;
}

qint64 CorvidaPacket::fileTimeToMSecs(quint64 fileTime)
{
    // fileTime / 10000 is below 2^51, so the subtraction cannot overflow.
    return qint64(fileTime / 10000) - kEpochOffsetMs;
}

quint64 CorvidaPacket::msecsToFileTime(qint64 msecs)
{
    if (msecs <= -kEpochOffsetMs)
        return 0;
    const quint64 sinceStart = quint64(msecs + kEpochOffsetMs);
    if (sinceStart > std::numeric_limits<quint64>::max() / 10000)
        return std::numeric_limits<quint64>::max();
    return sinceStart * 10000;
}
