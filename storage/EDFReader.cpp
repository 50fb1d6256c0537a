#include "storage/EDFReader.h"

#include "storage/EDFFixedHeader.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>
#include <algorithm>
#include <cstring>

namespace {
constexpr qint64 kTicksPerSecond = EDFLIB_TIME_DIMENSION; // library times are in 100 ns
constexpr qint64 kTicksPerMs = kTicksPerSecond / 1000;
constexpr qint64 kCopyChunk = 1 << 20;
constexpr int kReadChunk = 32768; // samples: 256 KiB of values, within the cache
} // namespace

EDFReader::EDFReader(QObject *parent)
    : QObject(parent)
    , m_header(new edf_hdr_struct())
    , m_montage(MontagePtr::create())
{}

EDFReader::EDFReader(const QString &path, QObject *parent)
    : EDFReader(parent)
{
    m_path = path;
}

EDFReader::~EDFReader()
{
    close();
}

QString EDFReader::errorText(int libraryError)
{
    switch (libraryError) {
    case EDFLIB_FILE_ALREADY_OPENED:
        return QStringLiteral("EDFReader: file has already been opened");
    case EDFLIB_FILE_READ_ERROR:
        return QStringLiteral("EDFReader: a read error occurred");
    case EDFLIB_MAXFILES_REACHED:
        return QStringLiteral("EDFReader: to many files opened");
    case EDFLIB_FILE_CONTAINS_FORMAT_ERRORS:
        return QStringLiteral("EDFReader: the file is not EDF(+) or BDF(+) compliant\r\n"
                              "(it contains format errors)");
    case EDFLIB_NO_SUCH_FILE_OR_DIRECTORY:
        return QStringLiteral("EDFReader: can not open file, no such file or directory");
    case EDFLIB_MALLOC_ERROR:
        return QStringLiteral("EDFReader: malloc error");
    default:
        return QStringLiteral("EDFReader: unknown error");
    }
}

bool EDFReader::internalOpen()
{
    if (m_opened) {
        qDebug().noquote() << errorText(EDFLIB_FILE_ALREADY_OPENED);
        return false;
    }
    // The program checks the fixed header itself so that it can tolerate what the library
    // refuses but files in use contain (see EDFFixedHeader).
    QFile file(m_path);
    const bool exists = file.open(QIODevice::ReadOnly);
    const EDFFixedHeader fixed(exists ? file.read(EDFFixedHeader::kSize) : QByteArray());
    file.close();
    if (exists && !fixed.isComplete()) {
        qDebug().noquote() << EDFFixedHeader::findingText(EDFFixedHeader::File1);
        return false;
    }
    if (fixed.isRejected()) {
        qDebug().noquote() << errorText(EDFLIB_FILE_CONTAINS_FORMAT_ERRORS);
        return false;
    }

    int error = 0;
    bool ok = openThroughLibrary(m_path, &error);
    if (!ok && error == EDFLIB_FILE_CONTAINS_FORMAT_ERRORS && fixed.isRepairable()) {
        // The library refuses what we tolerate: let it read a copy with those bytes mended.
        ok = makeRepairedCopy(fixed.repaired()) &&
             openThroughLibrary(m_repairedCopy->fileName(), &error);
        if (!ok)
            m_repairedCopy.reset();
    }
    if (!ok) {
        // Findings are worth a line only on a file we keep; a refused file gets one line.
        qDebug().noquote() << errorText(error);
        return false;
    }
    for (EDFFixedHeader::Finding finding : fixed.findings())
        qDebug().noquote() << EDFFixedHeader::findingText(finding);

    // Names and codes come from the original bytes, not from the mended copy.
    m_patient = fixed.identification();
    readHeaderDetails();
    m_opened = true;
    return true;
}

bool EDFReader::openThroughLibrary(const QString &path, int *error)
{
    std::memset(m_header.get(), 0, sizeof(edf_hdr_struct));
    if (edfopen_file_readonly(path.toLocal8Bit().constData(), m_header.get(),
                              EDFLIB_READ_ALL_ANNOTATIONS) == 0) {
        m_handle = m_header->handle;
        return true;
    }
    *error = m_header->filetype;
    m_handle = -1;
    return false;
}

bool EDFReader::makeRepairedCopy(const QByteArray &header)
{
    QFile source(m_path);
    m_repairedCopy =
        std::make_unique<QTemporaryFile>(QDir::tempPath() + QLatin1String("/corvida-XXXXXX.edf"));
    if (!source.open(QIODevice::ReadOnly) || !m_repairedCopy->open())
        return false;
    bool ok = source.seek(header.size()) && m_repairedCopy->write(header) == header.size();
    while (ok && !source.atEnd()) {
        const QByteArray chunk = source.read(kCopyChunk);
        ok = !chunk.isEmpty() && m_repairedCopy->write(chunk) == chunk.size();
    }
    // Closed but kept on disk until the reader closes; the library opens it by name.
    m_repairedCopy->close();
    return ok;
}

void EDFReader::readHeaderDetails()
{
    const edf_hdr_struct &h = *m_header;
    m_signals = h.edfsignals;
    m_duration = double(h.file_duration / kTicksPerSecond);
    m_start = QDateTime(QDate(h.startdate_year, h.startdate_month, h.startdate_day),
                        QTime(h.starttime_hour, h.starttime_minute, h.starttime_second,
                              int(h.starttime_subsecond / kTicksPerMs)),
                        Qt::LocalTime);
    m_patient.startYear = h.startdate_year;
    m_patient.startMonth = h.startdate_month;
    m_patient.startDay = h.startdate_day;
    m_patient.startHour = h.starttime_hour;
    m_patient.startMinute = h.starttime_minute;
    m_patient.startSecond = h.starttime_second;
    m_patient.startMillisecond = int(h.starttime_subsecond / kTicksPerMs);

    m_prefilter.clear();
    m_samplingRate = 0.0f;
    m_samplesPerRecord = 0;
    m_samplesInFile = 0;
    m_physicalDimension.clear();
    m_annotations.clear();
    m_montage->clearChannel();
    if (m_signals < 1)
        return;

    // "HP:0.5Hz LP:40.0Hz " -> HP 0.5, LP 40. Our filter names are two letters.
    const QString prefilter = QString::fromLatin1(h.signalparam[0].prefilter);
    for (QString piece : prefilter.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const int colon = int(piece.indexOf(QLatin1Char(':')));
        if (colon < 0)
            continue;
        piece.chop(2);
        m_prefilter.insert(piece.left(2), piece.mid(colon + 1).toFloat());
    }

    m_physicalDimension = QString::fromUtf8(h.signalparam[0].physdimension).trimmed();
    m_samplesPerRecord = h.signalparam[0].smp_in_datarecord;
    m_samplesInFile = h.signalparam[0].smp_in_file;
    if (h.datarecord_duration > 0)
        m_samplingRate =
            float(double(m_samplesPerRecord) / double(h.datarecord_duration) * kTicksPerSecond);
    m_montage->setCurrentSampleFreq(m_samplingRate);
    for (int s = 0; s < m_signals; ++s) {
        auto channel = Montage::ChannelPtr::create(s, 0.0f, AmplifierChannel::EEG);
        channel->setChannelName(QString::fromUtf8(h.signalparam[s].label).trimmed());
        m_montage->push_back(channel);
    }
    takeCurrentAnnotations();
}

void EDFReader::close()
{
    if (m_handle >= 0)
        edfclose_file(m_handle);
    m_handle = -1;
    m_opened = false;
    m_repairedCopy.reset();
}

QStringList EDFReader::getChannelNames() const
{
    return m_montage->getChannelNames();
}

QString EDFReader::getChannelName(int channel) const
{
    return getChannelNames().value(channel);
}

bool EDFReader::readSignal(int channel, qint64 start, int count, double *buffer)
{
    if (count <= 0 || !buffer || start < 0)
        return false;
    if (edfseek(m_handle, channel, start, EDFSEEK_SET) < 0)
        return false;
    // In pieces that stay in the cache, so the values are negated while still there instead of
    // in a second pass over the whole buffer.
    int got = 0;
    bool complete = true;
    while (got < count) {
        const int wanted = std::min(count - got, kReadChunk);
        const int read = edfread_physical_samples(m_handle, channel, wanted, buffer + got);
        double *values = buffer + got;
        const int n = std::max(read, 0);
        // Four at a time, which the compiler turns into vector instructions.
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            values[i] = -values[i];
            values[i + 1] = -values[i + 1];
            values[i + 2] = -values[i + 2];
            values[i + 3] = -values[i + 3];
        }
        for (; i < n; ++i)
            values[i] = -values[i];
        got += n;
        if (read != wanted) {
            complete = false;
            break;
        }
    }
    // A short read leaves zeros, never what the buffer held before.
    std::fill(buffer + got, buffer + count, 0.0);
    return complete;
}

int EDFReader::getBuffData(qint64 start, int count, double *buffer)
{
    if (!m_opened)
        return -2;
    for (int s = 0; s < m_signals; ++s)
        if (!readSignal(s, start, count, buffer + qsizetype(s) * std::max(count, 0)))
            return -1;
    return 0;
}

int EDFReader::getChannelBuffData(int channel, qint64 start, int count, double *buffer)
{
    if (!m_opened || channel < 0 || channel >= m_signals)
        return -2;
    return readSignal(channel, start, count, buffer) ? 0 : -1;
}

QList<double> EDFReader::getChannelData(int channel, qint64 start, int count)
{
    if (!m_opened || channel < 0 || channel >= m_signals || count <= 0 || start < 0)
        return QList<double>(std::max(count, 0), 0.0);
    // Only what the file can hold is read; the rest of the list is zero.
    const qint64 available = m_header->signalparam[channel].smp_in_file - start;
    const int wanted = int(std::clamp<qint64>(available, 0, count));
    // Allocated without the zeros a QList would first write: every value is written below, and
    // for a whole signal that first pass would cost as much as the negation.
    QList<double> values(
        QArrayDataPointer<double>(QTypedArrayData<double>::allocate(count), count));
    if (!values.constData()) {
        qDebug() << "EDFReader: no memory for" << count << "samples";
        return {};
    }
    if (wanted > 0)
        readSignal(channel, start, wanted, values.data());
    std::fill(values.begin() + wanted, values.end(), 0.0);
    return values;
}

QList<float> EDFReader::getChannelDataFloat(int channel, qint64 start, int count)
{
    const QList<double> values = getChannelData(channel, start, count);
    QList<float> out;
    out.reserve(values.size());
    for (double v : values)
        out.append(float(v));
    return out;
}

bool EDFReader::takeCurrentAnnotations()
{
    m_annotations.clear();
    if (m_handle < 0)
        return false;
    edf_annotation_struct annotation;
    for (int n = 0; edf_get_annotation(m_handle, n, &annotation) == 0; ++n)
        m_annotations.append(annotation);
    return !m_annotations.isEmpty();
}

QMap<qint64, QString> EDFReader::getAnnotations() const
{
    QMap<qint64, QString> marks;
    for (const edf_annotation_struct &a : m_annotations) {
        qint64 key = a.onset / kTicksPerMs;
        while (marks.contains(key))
            ++key;
        marks.insert(key, QString::fromUtf8(a.annotation));
    }
    return marks;
}

QString EDFReader::infoShort() const
{
    return QuorvexCommon::timeToText(std::max(m_duration, 0.0)) + QLatin1String(", ") +
           QString::number(m_signals) + QLatin1String("ch, ") +
           QString::number(std::max(m_samplingRate, 0.0f), 'f', 2) +
           QCoreApplication::translate("Generic", "Hz");
}

QString EDFReader::infoFull() const
{
    const QString hz = QCoreApplication::translate("Generic", "Hz");
    const QStringList items = {
        tr("Duration") + QLatin1Char(':') + QuorvexCommon::timeToText(std::max(m_duration, 0.0)),
        tr("Channels") + QLatin1Char(':') + QString::number(m_signals),
        tr("Sampling rate") + QLatin1Char(':') +
            QString::number(std::max(m_samplingRate, 0.0f), 'f', 2) + hz,
        tr("Subject") + QLatin1Char(':') + m_patient.patientName,
        tr("Start time") + QLatin1Char(':') +
            m_start.toString(QStringLiteral("yyyy/MM/dd hh:mm:ss")),
    };
    return items.join(QLatin1Char('\n'));
}
