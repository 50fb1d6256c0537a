#include "support/EDFRawFile.h"

#include <QFile>

namespace {
// Widths of the per-signal header fields, in file order.
constexpr int kWidths[] = {16, 80, 8, 8, 8, 8, 8, 80, 8};
} // namespace

EDFRawFile::EDFRawFile(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        m_bytes = file.readAll();
}

int EDFRawFile::signalCount() const
{
    return fixed(252, 4).trimmed().toInt();
}

int EDFRawFile::recordCount() const
{
    return fixed(236, 8).trimmed().toInt();
}

QByteArray EDFRawFile::signalField(Field field, int signal) const
{
    const int ns = signalCount();
    int offset = 256;
    for (int f = 0; f < int(field); ++f)
        offset += kWidths[f] * ns;
    const int width = kWidths[field];
    return fixed(offset + width * signal, width);
}

double EDFRawFile::number(Field field, int signal) const
{
    return signalField(field, signal).trimmed().toDouble();
}

int EDFRawFile::digital(int signal, qint64 sample) const
{
    const int ns = signalCount();
    qint64 recordSize = 0;
    qint64 before = 0;
    for (int s = 0; s < ns; ++s) {
        const int n = int(number(Samples, s));
        if (s < signal)
            before += n;
        recordSize += n;
    }
    const int perRecord = int(number(Samples, signal));
    const qint64 record = sample / perRecord;
    const qint64 at =
        headerBytes() + (record * recordSize + before + sample % perRecord) * sampleBytes();
    if (at + sampleBytes() > m_bytes.size())
        return 0;
    const auto byte = [this, at](int i) { return uint(uchar(m_bytes.at(at + i))); };
    if (isBdf()) {
        int v = int(byte(0) | (byte(1) << 8) | (byte(2) << 16));
        return v >= 0x800000 ? v - 0x1000000 : v;
    }
    return int(qint16(byte(0) | (byte(1) << 8)));
}

bool EDFRawFile::patch(const QString &path, qint64 offset, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.seek(offset) &&
           file.write(bytes) == bytes.size();
}
