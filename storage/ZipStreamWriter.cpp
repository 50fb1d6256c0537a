#include "storage/ZipStreamWriter.h"

#include <QDebug>

#include <cerrno>

namespace {
constexpr quint32 kLocalHeader = 0x04034b50;
constexpr quint32 kDirectoryEntry = 0x02014b50;
constexpr quint32 kEndOfDirectory = 0x06054b50;
constexpr quint32 kZip64End = 0x06064b50;
constexpr quint32 kZip64Locator = 0x07064b50;
constexpr quint64 kMax32 = 0xffffffffu;
constexpr qsizetype kOutChunk = 256 * 1024;
// 1980-01-01 00:00, the earliest a zip entry can say: the workbook's own properties carry the
// real time, and equal content then packs to equal bytes.
constexpr quint16 kDosDate = (0 << 9) | (1 << 5) | 1;

void put16(QByteArray &b, quint64 v)
{
    b.append(char(v & 0xff)).append(char((v >> 8) & 0xff));
}
void put32(QByteArray &b, quint64 v)
{
    put16(b, v & 0xffff);
    put16(b, (v >> 16) & 0xffff);
}
void put64(QByteArray &b, quint64 v)
{
    put32(b, v & kMax32);
    put32(b, v >> 32);
}
quint64 le(const QByteArray &b, qsizetype at, int bytes)
{
    quint64 v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = (v << 8) | uchar(b.at(at + i));
    return v;
}
} // namespace

ZipStreamWriter::ZipStreamWriter(const QString &path, int level)
    : m_file(path)
    , m_level(level)
{}

ZipStreamWriter::~ZipStreamWriter()
{
    if (m_streamReady)
        deflateEnd(&m_stream);
}

bool ZipStreamWriter::fail(const QString &why)
{
    if (m_error.isEmpty()) {
        m_error = why;
        qDebug() << "ZipStreamWriter:" << m_file.fileName() << why;
    }
    return false;
}

QString ZipStreamWriter::writeError() const
{
    // Qt leaves the reason of a failed write unknown; the system's own is more use.
    const int code = errno;
    return code != 0 ? qt_error_string(code) : m_file.errorString();
}

bool ZipStreamWriter::open()
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return fail(m_file.errorString());
    if (deflateInit2(&m_stream, m_level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return fail(QStringLiteral("cannot deflate"));
    m_streamReady = true;
    m_out.resize(kOutChunk);
    return true;
}

bool ZipStreamWriter::writeRaw(const char *data, qsizetype size)
{
    if (!ok())
        return false;
    if (m_file.write(data, size) != size)
        return fail(writeError());
    return true;
}

bool ZipStreamWriter::writeLocalHeader(const Entry &e)
{
    QByteArray h;
    put32(h, kLocalHeader);
    put16(h, 20);
    put16(h, 0);
    put16(h, quint64(e.method));
    put16(h, 0);
    put16(h, kDosDate);
    put32(h, e.crc);
    put32(h, e.packed);
    put32(h, e.size);
    put16(h, quint64(e.name.size()));
    put16(h, 0);
    h += e.name;
    return writeRaw(h.constData(), h.size());
}

bool ZipStreamWriter::beginMember(const QString &name)
{
    if (!ok() || m_inMember || !m_streamReady)
        return fail(QStringLiteral("member started out of turn"));
    Entry e;
    e.name = name.toUtf8();
    e.offset = quint64(m_file.pos());
    e.crc = quint32(crc32(0L, Z_NULL, 0));
    // Checksum and sizes are not known yet: they are filled in when the member ends.
    if (!writeLocalHeader(e))
        return false;
    m_entries << e;
    m_inMember = true;
    deflateReset(&m_stream);
    return true;
}

bool ZipStreamWriter::deflateInput(const char *data, qsizetype size, int flush)
{
    m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data));
    m_stream.avail_in = uInt(size);
    int result = Z_OK;
    do {
        m_stream.next_out = reinterpret_cast<Bytef *>(m_out.data());
        m_stream.avail_out = uInt(m_out.size());
        result = deflate(&m_stream, flush);
        if (result == Z_STREAM_ERROR)
            return fail(QStringLiteral("cannot deflate"));
        const qsizetype produced = m_out.size() - qsizetype(m_stream.avail_out);
        if (produced > 0 && !writeRaw(m_out.constData(), produced))
            return false;
        m_entries.last().packed += quint64(produced);
    } while (m_stream.avail_out == 0 || (flush == Z_FINISH && result != Z_STREAM_END));
    return true;
}

bool ZipStreamWriter::write(const char *data, qsizetype size)
{
    if (!ok() || !m_inMember)
        return fail(QStringLiteral("data outside a member"));
    Entry &e = m_entries.last();
    // zlib takes at most 4 GiB - 1 at once; a buffer of a sheet is far smaller, but be exact.
    while (size > 0) {
        const qsizetype part = std::min<qsizetype>(size, qsizetype(1) << 30);
        e.crc = quint32(crc32(e.crc, reinterpret_cast<const Bytef *>(data), uInt(part)));
        e.size += quint64(part);
        if (!deflateInput(data, part, Z_NO_FLUSH))
            return false;
        data += part;
        size -= part;
    }
    return true;
}

bool ZipStreamWriter::endMember()
{
    if (!ok() || !m_inMember)
        return fail(QStringLiteral("no member to end"));
    m_inMember = false;
    if (!deflateInput(nullptr, 0, Z_FINISH))
        return false;
    const Entry &e = m_entries.last();
    // Sheets never come near 4 GiB (a worksheet holds about a million rows); a member that did
    // would need sizes the plain headers cannot hold.
    if (e.size >= kMax32 || e.packed >= kMax32)
        return fail(QStringLiteral("%1 is too large").arg(QString::fromUtf8(e.name)));
    QByteArray fields;
    put32(fields, e.crc);
    put32(fields, e.packed);
    put32(fields, e.size);
    const qint64 end = m_file.pos();
    if (!m_file.seek(qint64(e.offset) + 14) || !writeRaw(fields.constData(), fields.size()) ||
        !m_file.seek(end))
        return fail(m_file.errorString());
    return true;
}

bool ZipStreamWriter::copyMember(const QString &name, int method, quint32 crc,
                                 const QByteArray &packed, quint64 size)
{
    if (!ok() || m_inMember)
        return fail(QStringLiteral("member copied out of turn"));
    if (size >= kMax32 || quint64(packed.size()) >= kMax32)
        return fail(QStringLiteral("%1 is too large").arg(name));
    Entry e;
    e.name = name.toUtf8();
    e.method = method;
    e.crc = crc;
    e.packed = quint64(packed.size());
    e.size = size;
    e.offset = quint64(m_file.pos());
    if (!writeLocalHeader(e) || !writeRaw(packed.constData(), packed.size()))
        return false;
    m_entries << e;
    return true;
}

bool ZipStreamWriter::finish()
{
    if (!ok() || m_inMember)
        return fail(QStringLiteral("archive closed out of turn"));
    const quint64 directoryStart = quint64(m_file.pos());
    QByteArray dir;
    for (const Entry &e : std::as_const(m_entries)) {
        // Only the position can pass 4 GiB (very many records); it then moves into a zip64
        // field, the way spreadsheet programs read it.
        const bool farOffset = e.offset >= kMax32;
        QByteArray extra;
        if (farOffset) {
            put16(extra, 0x0001);
            put16(extra, 8);
            put64(extra, e.offset);
        }
        put32(dir, kDirectoryEntry);
        put16(dir, farOffset ? 45 : 20);
        put16(dir, farOffset ? 45 : 20);
        put16(dir, 0);
        put16(dir, quint64(e.method));
        put16(dir, 0);
        put16(dir, kDosDate);
        put32(dir, e.crc);
        put32(dir, e.packed);
        put32(dir, e.size);
        put16(dir, quint64(e.name.size()));
        put16(dir, quint64(extra.size()));
        put16(dir, 0);
        put16(dir, 0);
        put16(dir, 0);
        put32(dir, 0);
        put32(dir, farOffset ? kMax32 : e.offset);
        dir += e.name;
        dir += extra;
    }
    const quint64 count = quint64(m_entries.size());
    const quint64 dirSize = quint64(dir.size());
    const bool zip64 = directoryStart >= kMax32 || count >= 0xffff;
    if (zip64) {
        const quint64 recordStart = directoryStart + dirSize;
        put32(dir, kZip64End);
        put64(dir, 44);
        put16(dir, 45);
        put16(dir, 45);
        put32(dir, 0);
        put32(dir, 0);
        put64(dir, count);
        put64(dir, count);
        put64(dir, dirSize);
        put64(dir, directoryStart);
        put32(dir, kZip64Locator);
        put32(dir, 0);
        put64(dir, recordStart);
        put32(dir, 1);
    }
    put32(dir, kEndOfDirectory);
    put16(dir, 0);
    put16(dir, 0);
    put16(dir, zip64 ? 0xffff : count);
    put16(dir, zip64 ? 0xffff : count);
    put32(dir, dirSize);
    put32(dir, zip64 ? kMax32 : directoryStart);
    put16(dir, 0);
    if (!writeRaw(dir.constData(), dir.size()))
        return false;
    // A full disk shows only here, when the last of the buffer goes out.
    if (!m_file.flush() || m_file.error() != QFileDevice::NoError)
        return fail(writeError());
    m_file.close();
    return true;
}

bool ZipStreamWriter::readMembers(const QString &path, QList<StoredMember> *members, QString *error)
{
    const auto failed = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failed(file.errorString());
    const QByteArray all = file.readAll();
    qsizetype end = -1;
    for (qsizetype at = all.size() - 22; at >= 0; --at) {
        if (le(all, at, 4) == kEndOfDirectory) {
            end = at;
            break;
        }
    }
    if (end < 0)
        return failed(QStringLiteral("no zip directory"));
    const quint64 count = le(all, end + 10, 2);
    qsizetype at = qsizetype(le(all, end + 16, 4));
    for (quint64 i = 0; i < count; ++i) {
        if (at + 46 > all.size() || le(all, at, 4) != kDirectoryEntry)
            return failed(QStringLiteral("the zip directory is cut off"));
        StoredMember m;
        m.method = int(le(all, at + 10, 2));
        m.crc = quint32(le(all, at + 16, 4));
        const qsizetype packed = qsizetype(le(all, at + 20, 4));
        m.size = le(all, at + 24, 4);
        const qsizetype nameLength = qsizetype(le(all, at + 28, 2));
        const qsizetype entryLength =
            46 + nameLength + qsizetype(le(all, at + 30, 2)) + qsizetype(le(all, at + 32, 2));
        const qsizetype local = qsizetype(le(all, at + 42, 4));
        if (at + 46 + nameLength > all.size() || local + 30 > all.size() ||
            le(all, local, 4) != kLocalHeader)
            return failed(QStringLiteral("a zip member is cut off"));
        m.name = QString::fromUtf8(all.mid(at + 46, nameLength));
        const qsizetype data =
            local + 30 + qsizetype(le(all, local + 26, 2)) + qsizetype(le(all, local + 28, 2));
        if (data + packed > all.size() || (m.method != 0 && m.method != 8))
            return failed(QStringLiteral("%1 cannot be taken over").arg(m.name));
        m.packed = all.mid(data, packed);
        *members << m;
        at += entryLength;
    }
    return true;
}
