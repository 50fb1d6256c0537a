#include "storage/EDFMarkRewriter.h"

#include "toolkit/FileUtilities.h"

#include <QDebug>
#include <QFile>
#include <QSaveFile>
#include <QSet>

namespace {
constexpr char kOnsetEnd = '\x14';
constexpr int kFixedBytes = 256;
// The fields of one signal before its samples per data record: label, transducer, dimension,
// physical and digital range, prefilter.
constexpr int kSignalHeaderBytes = 216;
constexpr int kLabelBytes = 16;
constexpr qint64 kTicksPerSecond = 10000000; // EDF+ onsets to 100 ns

bool fail(QString *error, const QString &path, const QString &why)
{
    qDebug().noquote() << "EDF MARKS:" << path << "-" << why;
    if (error)
        *error = why;
    return false;
}

// Where one annotation signal lies inside a data record.
struct Span {
    qint64 offset = 0;
    qint64 size = 0;
};

struct Layout {
    qint64 headerBytes = 0;
    qint64 recordBytes = 0;
    qint64 records = 0;
    QList<Span> annotations;
};

qint64 numberAt(const QByteArray &bytes, qint64 offset, int length, bool *ok)
{
    return bytes.mid(offset, length).trimmed().toLongLong(ok);
}

bool readLayout(QFile &file, Layout *layout, QString *why)
{
    const QByteArray fixed = file.read(kFixedBytes);
    bool ok1 = false, ok2 = false, ok3 = false;
    const qint64 headerBytes = numberAt(fixed, 184, 8, &ok1);
    const qint64 records = numberAt(fixed, 236, 8, &ok2);
    const qint64 signalCount = numberAt(fixed, 252, 4, &ok3);
    if (fixed.size() < kFixedBytes || !ok1 || !ok2 || !ok3 || signalCount < 1 ||
        headerBytes != kFixedBytes * (signalCount + 1) || records < 1) {
        *why = QStringLiteral("not a finished EDF+ file");
        return false;
    }
    const int sampleBytes = uchar(fixed.at(0)) == 255 ? 3 : 2;
    const QByteArray signalHeader = file.read(headerBytes - kFixedBytes);
    if (signalHeader.size() != headerBytes - kFixedBytes) {
        *why = QStringLiteral("the signal headers are cut off");
        return false;
    }
    // The samples per data record of every signal follow all the fields before them.
    const qint64 samplesAt = signalCount * kSignalHeaderBytes;
    qint64 offset = 0;
    for (qint64 s = 0; s < signalCount; ++s) {
        bool ok = false;
        const qint64 samples = numberAt(signalHeader, samplesAt + s * 8, 8, &ok);
        if (!ok || samples < 1) {
            *why = QStringLiteral("a signal has no samples per data record");
            return false;
        }
        const QByteArray label = signalHeader.mid(s * kLabelBytes, kLabelBytes).trimmed();
        if (label == "EDF Annotations" || label == "BDF Annotations")
            layout->annotations << Span{offset, samples * sampleBytes};
        offset += samples * sampleBytes;
    }
    if (layout->annotations.isEmpty()) {
        *why = QStringLiteral("the file has no room for marks (plain EDF)");
        return false;
    }
    layout->headerBytes = headerBytes;
    layout->recordBytes = offset;
    layout->records = records;
    if (file.size() != headerBytes + records * offset) {
        *why = QStringLiteral("the file is not as long as its header says");
        return false;
    }
    return true;
}

// The annotation lists of one annotation signal, each without its closing zero.
QList<QByteArray> listsIn(const QByteArray &bytes)
{
    QList<QByteArray> lists;
    qsizetype at = 0;
    while (at < bytes.size()) {
        if (bytes.at(at) == '\0') {
            ++at;
            continue;
        }
        qsizetype end = bytes.indexOf('\0', at);
        if (end < 0)
            end = bytes.size();
        lists << bytes.mid(at, end - at);
        at = end + 1;
    }
    return lists;
}
// The onset of a time keeping list ("+0.109" followed by 0x14 0x14) in 100 ns units; 0 when it
// cannot be read.
qint64 ticksOf(const QByteArray &list)
{
    QByteArray onset = list.left(list.indexOf(kOnsetEnd));
    if (onset.isEmpty() || (onset.at(0) != '+' && onset.at(0) != '-'))
        return 0;
    const bool negative = onset.at(0) == '-';
    onset.remove(0, 1);
    const qsizetype point = onset.indexOf('.');
    const QByteArray whole = point < 0 ? onset : onset.left(point);
    const QByteArray fraction =
        (point < 0 ? QByteArray() : onset.mid(point + 1)).leftJustified(7, '0', true);
    bool ok1 = false, ok2 = false;
    const qint64 ticks = whole.toLongLong(&ok1) * kTicksPerSecond + fraction.toLongLong(&ok2);
    return ok1 && ok2 ? (negative ? -ticks : ticks) : 0;
}
} // namespace

QByteArray EDFMarkRewriter::markBytes(const QString &text, qint64 onsetMs, qint64 startTicks)
{
    const qint64 total = onsetMs * (kTicksPerSecond / 1000) + startTicks;
    QByteArray onset = total < 0 ? QByteArray("-") : QByteArray("+");
    const qint64 ticks = qAbs(total);
    onset += QByteArray::number(ticks / kTicksPerSecond);
    QByteArray fraction = QByteArray::number(ticks % kTicksPerSecond).rightJustified(7, '0');
    while (fraction.endsWith('0'))
        fraction.chop(1);
    if (!fraction.isEmpty())
        onset += '.' + fraction;
    return onset + kOnsetEnd + text.toUtf8() + kOnsetEnd + '\0';
}

bool EDFMarkRewriter::replaceMarks(const QString &path, const QStringList &replaced,
                                   const QList<Mark> &marks, QString *error)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return fail(error, path, source.errorString());
    Layout layout;
    QString why;
    if (!readLayout(source, &layout, &why))
        return fail(error, path, why);

    // What each record's first annotation signal begins with: its time keeping, kept as it is.
    QList<QByteArray> timeKeeping;
    // Every other annotation list, stripped of the replaced texts, in file order.
    QList<QByteArray> kept;
    QSet<QByteArray> replacedTexts;
    for (const QString &text : replaced)
        replacedTexts.insert(text.toUtf8());
    for (qint64 r = 0; r < layout.records; ++r) {
        QByteArray stamp;
        for (int a = 0; a < layout.annotations.size(); ++a) {
            const Span span = layout.annotations[a];
            if (!source.seek(layout.headerBytes + r * layout.recordBytes + span.offset))
                return fail(error, path, source.errorString());
            const QByteArray bytes = source.read(span.size);
            if (bytes.size() != span.size)
                return fail(error, path, QStringLiteral("cannot read the marks"));
            QList<QByteArray> lists = listsIn(bytes);
            // The time keeping list is the first of the record and carries no text.
            if (a == 0 && !lists.isEmpty()) {
                const QList<QByteArray> parts = lists.first().split(kOnsetEnd);
                if (parts.size() >= 2 && parts.at(1).isEmpty())
                    stamp = lists.takeFirst();
            }
            for (const QByteArray &list : std::as_const(lists)) {
                QList<QByteArray> parts = list.split(kOnsetEnd);
                const QByteArray onset = parts.takeFirst();
                QByteArray rebuilt = onset;
                bool any = false;
                for (const QByteArray &text : std::as_const(parts)) {
                    if (text.isEmpty() || replacedTexts.contains(text))
                        continue;
                    rebuilt += kOnsetEnd + text;
                    any = true;
                }
                if (any)
                    kept << rebuilt + kOnsetEnd + '\0';
            }
        }
        timeKeeping << (stamp.isEmpty() ? QByteArray() : stamp + '\0');
    }
    // Onsets count from the start of the file, which lies a fraction of a second before the
    // time keeping of the first record says; marks of recorded time are shifted by it.
    const qint64 startTicks = ticksOf(timeKeeping.value(0));
    for (const Mark &mark : marks)
        kept << markBytes(mark.first, mark.second, startTicks);

    // Lay the lists out again from the first record on, as many as fit in each signal.
    QList<QList<QByteArray>> layoutBytes(layout.records,
                                         QList<QByteArray>(layout.annotations.size()));
    qsizetype next = 0;
    for (qint64 r = 0; r < layout.records; ++r) {
        for (int a = 0; a < layout.annotations.size(); ++a) {
            QByteArray bytes = a == 0 ? timeKeeping[r] : QByteArray();
            while (next < kept.size() &&
                   bytes.size() + kept[next].size() <= layout.annotations[a].size)
                bytes += kept[next++];
            if (bytes.size() > layout.annotations[a].size)
                return fail(error, path, QStringLiteral("a time keeping list does not fit"));
            bytes.append(QByteArray(layout.annotations[a].size - bytes.size(), '\0'));
            layoutBytes[r][a] = bytes;
        }
    }
    if (next < kept.size())
        return fail(error, path, QStringLiteral("no room for the marks"));

    QSaveFile target(path);
    if (!target.open(QIODevice::WriteOnly))
        return fail(error, path, target.errorString());
    if (!source.seek(0))
        return fail(error, path, source.errorString());
    bool ok = target.write(source.read(layout.headerBytes)) == layout.headerBytes;
    for (qint64 r = 0; ok && r < layout.records; ++r) {
        QByteArray record = source.read(layout.recordBytes);
        if (record.size() != layout.recordBytes) {
            ok = false;
            break;
        }
        for (int a = 0; a < layout.annotations.size(); ++a)
            record.replace(layout.annotations[a].offset, layout.annotations[a].size,
                           layoutBytes[r][a]);
        ok = target.write(record) == record.size();
    }
    if (!ok) {
        target.cancelWriting();
        return fail(error, path, QStringLiteral("cannot copy the recording"));
    }
    if (!FileUtilities::commitSaveFile(target, &why))
        return fail(error, path, why);
    return true;
}
