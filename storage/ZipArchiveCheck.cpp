#include "storage/ZipArchiveCheck.h"

#include <QFile>
#include <QSet>
#include <QXmlStreamReader>
#include <zlib.h>

namespace {
constexpr quint32 kEndOfDirectory = 0x06054b50;
constexpr quint32 kDirectoryEntry = 0x02014b50;
constexpr quint32 kLocalHeader = 0x04034b50;
constexpr quint32 kZip64Locator = 0x07064b50;
constexpr quint32 kZip64End = 0x06064b50;
constexpr quint64 kZip64Marker32 = 0xffffffffu;
constexpr int kEndRecordBytes = 22;
constexpr qint64 kChunk = 1 << 16;
constexpr quint64 kParseWholeBytes = 1 << 20;

quint64 le(const QByteArray &b, qsizetype at, int bytes)
{
    quint64 v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = (v << 8) | uchar(b.at(at + i));
    return v;
}

bool fail(QString *why, const QString &text)
{
    if (why)
        *why = text;
    return false;
}

struct Member {
    QString name;
    int method = 0;
    quint32 crc = 0;
    quint64 packed = 0;
    quint64 size = 0;
    quint64 offset = 0;
};

// Zip64 values stand in the extra field when the 32-bit ones are all ones.
void readZip64Extra(const QByteArray &extra, Member *m, bool sizeFull, bool packedFull,
                    bool offsetFull)
{
    qsizetype at = 0;
    while (at + 4 <= extra.size()) {
        const quint64 id = le(extra, at, 2);
        const quint64 length = le(extra, at + 2, 2);
        qsizetype p = at + 4;
        if (id == 0x0001) {
            if (sizeFull && p + 8 <= extra.size()) {
                m->size = le(extra, p, 8);
                p += 8;
            }
            if (packedFull && p + 8 <= extra.size()) {
                m->packed = le(extra, p, 8);
                p += 8;
            }
            if (offsetFull && p + 8 <= extra.size())
                m->offset = le(extra, p, 8);
            return;
        }
        at += 4 + qsizetype(length);
    }
}

bool readDirectory(QFile &file, QList<Member> *members, QString *why)
{
    const qint64 size = file.size();
    if (size < kEndRecordBytes)
        return fail(why, QStringLiteral("too short for a zip archive"));
    // The end record sits at the end, behind a comment of at most 64 KiB.
    const qint64 tailStart = std::max<qint64>(0, size - (kEndRecordBytes + 0xffff));
    file.seek(tailStart);
    const QByteArray tail = file.read(size - tailStart);
    qsizetype end = -1;
    for (qsizetype at = tail.size() - kEndRecordBytes; at >= 0; --at) {
        if (le(tail, at, 4) == kEndOfDirectory) {
            end = at;
            break;
        }
    }
    if (end < 0)
        return fail(why, QStringLiteral("no end of the zip directory"));
    quint64 count = le(tail, end + 10, 2);
    quint64 dirSize = le(tail, end + 12, 4);
    quint64 dirOffset = le(tail, end + 16, 4);
    if (end >= 20 && le(tail, end - 20, 4) == kZip64Locator) {
        const quint64 zip64End = le(tail, end - 20 + 8, 8);
        file.seek(qint64(zip64End));
        const QByteArray record = file.read(56);
        if (record.size() < 56 || le(record, 0, 4) != kZip64End)
            return fail(why, QStringLiteral("a broken zip64 directory record"));
        count = le(record, 32, 8);
        dirSize = le(record, 40, 8);
        dirOffset = le(record, 48, 8);
    }
    if (dirOffset + dirSize > quint64(size))
        return fail(why, QStringLiteral("the zip directory lies beyond the end of the file"));
    file.seek(qint64(dirOffset));
    const QByteArray dir = file.read(qint64(dirSize));
    qsizetype at = 0;
    for (quint64 i = 0; i < count; ++i) {
        if (at + 46 > dir.size() || le(dir, at, 4) != kDirectoryEntry)
            return fail(why, QStringLiteral("the zip directory is cut off"));
        Member m;
        m.method = int(le(dir, at + 10, 2));
        m.crc = quint32(le(dir, at + 16, 4));
        m.packed = le(dir, at + 20, 4);
        m.size = le(dir, at + 24, 4);
        const qsizetype nameLength = qsizetype(le(dir, at + 28, 2));
        const qsizetype extraLength = qsizetype(le(dir, at + 30, 2));
        const qsizetype commentLength = qsizetype(le(dir, at + 32, 2));
        m.offset = le(dir, at + 42, 4);
        if (at + 46 + nameLength + extraLength > dir.size())
            return fail(why, QStringLiteral("the zip directory is cut off"));
        m.name = QString::fromUtf8(dir.mid(at + 46, nameLength));
        readZip64Extra(dir.mid(at + 46 + nameLength, extraLength), &m, m.size == kZip64Marker32,
                       m.packed == kZip64Marker32, m.offset == kZip64Marker32);
        *members << m;
        at += 46 + nameLength + extraLength + commentLength;
    }
    return true;
}

// Inflates one member, checks its size and checksum, and for XML members that the document
// ends properly.
bool checkMember(QFile &file, const Member &m, QString *why)
{
    file.seek(qint64(m.offset));
    const QByteArray local = file.read(30);
    if (local.size() < 30 || le(local, 0, 4) != kLocalHeader)
        return fail(why, QStringLiteral("%1: no local header").arg(m.name));
    const qint64 dataStart =
        qint64(m.offset) + 30 + qint64(le(local, 26, 2)) + qint64(le(local, 28, 2));
    if (dataStart + qint64(m.packed) > file.size())
        return fail(why, QStringLiteral("%1: cut off").arg(m.name));
    if (m.method != 0 && m.method != 8)
        return fail(why, QStringLiteral("%1: unknown compression").arg(m.name));
    file.seek(dataStart);

    const bool xml = m.name.endsWith(QLatin1String(".xml")) ||
                     m.name.endsWith(QLatin1String(".rels")) ||
                     m.name.endsWith(QLatin1String(".vml"));
    // Small members are parsed whole. A sheet of a long recording runs to many megabytes; for it
    // the root element's name is read from its start and its closing tag looked for at its end,
    // which is where a cut-off file differs.
    const bool parseWhole = m.size < kParseWholeBytes;
    QXmlStreamReader reader;
    QByteArray root;
    QByteArray tail;
    const auto feedXml = [&](const char *data, qsizetype n) {
        if (!xml)
            return;
        if (parseWhole || root.isEmpty()) {
            reader.addData(QByteArray::fromRawData(data, n));
            while (!reader.atEnd()) {
                if (reader.readNext() == QXmlStreamReader::StartElement && root.isEmpty()) {
                    root = reader.qualifiedName().toUtf8();
                    if (!parseWhole)
                        break;
                }
            }
        }
        if (!parseWhole) {
            tail.append(data, n);
            if (tail.size() > 4096)
                tail.remove(0, tail.size() - 4096);
        }
    };

    z_stream z = {};
    if (m.method == 8 && inflateInit2(&z, -MAX_WBITS) != Z_OK)
        return fail(why, QStringLiteral("cannot inflate"));
    quint32 crc = quint32(crc32(0L, Z_NULL, 0));
    quint64 produced = 0;
    quint64 left = m.packed;
    QByteArray out(kChunk, Qt::Uninitialized);
    bool ok = true;
    bool streamEnd = m.method == 0;
    while (ok && left > 0) {
        const QByteArray in = file.read(qint64(std::min<quint64>(left, kChunk)));
        if (in.isEmpty()) {
            ok = false;
            break;
        }
        left -= quint64(in.size());
        if (m.method == 0) {
            crc = quint32(
                crc32(crc, reinterpret_cast<const Bytef *>(in.constData()), uInt(in.size())));
            produced += quint64(in.size());
            feedXml(in.constData(), in.size());
            continue;
        }
        z.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(in.constData()));
        z.avail_in = uInt(in.size());
        while (z.avail_in > 0 && !streamEnd) {
            z.next_out = reinterpret_cast<Bytef *>(out.data());
            z.avail_out = uInt(out.size());
            const int r = inflate(&z, Z_NO_FLUSH);
            if (r != Z_OK && r != Z_STREAM_END) {
                ok = false;
                break;
            }
            const qsizetype n = out.size() - qsizetype(z.avail_out);
            crc = quint32(crc32(crc, reinterpret_cast<const Bytef *>(out.constData()), uInt(n)));
            produced += quint64(n);
            feedXml(out.constData(), n);
            streamEnd = r == Z_STREAM_END;
        }
    }
    if (m.method == 8)
        inflateEnd(&z);
    if (!ok || !streamEnd || produced != m.size || crc != m.crc)
        return fail(why, QStringLiteral("%1: damaged").arg(m.name));
    // A sheet whose temporary file was cut short is a well-packed but unfinished document.
    const bool finished =
        parseWhole ? !reader.hasError() && reader.tokenType() == QXmlStreamReader::EndDocument
                   : !root.isEmpty() && tail.trimmed().endsWith("</" + root + '>');
    if (xml && !finished)
        return fail(why, QStringLiteral("%1: incomplete XML").arg(m.name));
    return true;
}
} // namespace

bool ZipArchiveCheck::isComplete(const QString &path, const QStringList &required, QString *why)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(why, file.errorString());
    QList<Member> members;
    if (!readDirectory(file, &members, why))
        return false;
    QSet<QString> names;
    for (const Member &m : std::as_const(members)) {
        if (!checkMember(file, m, why))
            return false;
        names.insert(m.name);
    }
    for (const QString &name : required) {
        if (!names.contains(name))
            return fail(why, QStringLiteral("%1 is missing").arg(name));
    }
    return true;
}
