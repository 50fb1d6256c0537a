#include "storage/EDFWriter.h"

#include "storage/Montage.h"
#include "toolkit/QuorvexCommon.h"
#include "toolkit/Transliteration.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QVarLengthArray>
#include <algorithm>
#include <cmath>
#include <edflib.h>
#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace {
// Both variants use the 16-bit digital range; a BDF+ file only gets a wider physical range.
constexpr int kDigitalMinimum = -32768;
constexpr int kDigitalMaximum = 32767;
constexpr double kBdfPhysicalMinimum = -65536.0;
constexpr double kBdfPhysicalMaximum = 65535.0;
constexpr int kLabelBytes = 15;
constexpr int kAnnotationSignals = 2;
// Far above any real recording, low enough that a wrong rate cannot eat the memory.
constexpr qsizetype kMaxRecordSamples = 4'000'000;

// The usual EDF scaling, made whole by rounding to the nearest step: converting here instead of
// in the library keeps every value within half a step of what was given. Samples are stored
// negated on purpose; the reader undoes it.
inline int toDigital(float sample, double scale, double offset)
{
    // Written so that NaN fails the first comparison and lands on the minimum.
    const double x = -double(sample) * scale - offset;
    const double low = double(kDigitalMinimum) < x ? x : double(kDigitalMinimum);
    const double clamped = low < double(kDigitalMaximum) ? low : double(kDigitalMaximum);
    return int(clamped + std::copysign(0.5, clamped));
}

inline void store(int value, int *to)
{
    *to = value;
}

inline void store(int value, qint16 *to)
{
    *to = qint16(value);
}

// The same conversion as toDigital, four samples at a time: the writer spends most of its own time
// here. Every operation is the same IEEE operation in the same order, and maxpd/minpd pick their
// second operand for NaN exactly as the comparisons above do, so every step comes out as before.
template <typename Step>
void toDigital(const float *from, int count, double scale, double offset, Step *to)
{
    int i = 0;
#if defined(__SSE2__) || defined(_M_X64)
    const __m128d vscale = _mm_set1_pd(scale);
    const __m128d voffset = _mm_set1_pd(offset);
    const __m128d low = _mm_set1_pd(double(kDigitalMinimum));
    const __m128d high = _mm_set1_pd(double(kDigitalMaximum));
    const __m128d sign = _mm_set1_pd(-0.0);
    const __m128d half = _mm_set1_pd(0.5);
    const auto steps = [&](__m128d x) {
        x = _mm_sub_pd(_mm_mul_pd(_mm_xor_pd(x, sign), vscale), voffset);
        x = _mm_min_pd(_mm_max_pd(x, low), high);
        return _mm_cvttpd_epi32(_mm_add_pd(x, _mm_or_pd(_mm_and_pd(x, sign), half)));
    };
    for (; i + 4 <= count; i += 4) {
        const __m128 f = _mm_loadu_ps(from + i);
        const __m128i four =
            _mm_unpacklo_epi64(steps(_mm_cvtps_pd(f)), steps(_mm_cvtps_pd(_mm_movehl_ps(f, f))));
        if constexpr (sizeof(Step) == 2) // in range already, so the saturation changes nothing
            _mm_storel_epi64(reinterpret_cast<__m128i *>(to + i), _mm_packs_epi32(four, four));
        else
            _mm_storeu_si128(reinterpret_cast<__m128i *>(to + i), four);
    }
#endif
    for (; i < count; ++i)
        store(toDigital(from[i], scale, offset), to + i);
}
} // namespace

EDFWriter::EDFWriter(QObject *parent)
    : QObject(parent)
    , m_clock(VClock::wall())
{}

EDFWriter::EDFWriter(const QString &path, const QStringList &labels, int samplesPerRecord,
                     const PrefilterMap &prefilter, const QList<double> &ranges,
                     VClock::Source clock, QObject *parent)
    : QObject(parent)
    , m_path(path)
    , m_clock(std::move(clock))
{
    QList<ChannelDim> channels;
    channels.reserve(labels.size());
    for (const QString &label : labels)
        channels.append(ChannelDim(label, 1000.0, prefilter));
    m_channels = channels;
    setChannelPhysicalDimensions(ranges);
    initFromChannels(m_channels, samplesPerRecord);
}

EDFWriter::EDFWriter(const QString &path, const QList<ChannelDim> &channels, int samplesPerRecord,
                     VClock::Source clock, QObject *parent)
    : QObject(parent)
    , m_path(path)
    , m_clock(std::move(clock))
{
    initFromChannels(channels, samplesPerRecord);
}

EDFWriter::~EDFWriter()
{
    // A writer dropped without close() still leaves a readable file behind.
    if (m_open)
        close(true);
}

bool EDFWriter::isFilenameBDF(const QString &path)
{
    return path.endsWith(QLatin1String(".bdf"), Qt::CaseInsensitive);
}

bool EDFWriter::initFromChannels(const QList<ChannelDim> &channels, int samplesPerRecord)
{
    m_channels = channels;
    m_samplesPerRecord = samplesPerRecord;
    return open();
}

bool EDFWriter::open()
{
    if (m_open) {
        qDebug() << "EDFWriter: file is already open" << m_path;
        return false;
    }
    m_bdf = isFilenameBDF(m_path);
    const qsizetype signalCount = m_channels.size();
    if (signalCount < 1 || signalCount > EDFLIB_MAXSIGNALS || m_samplesPerRecord < 1 ||
        signalCount * m_samplesPerRecord > kMaxRecordSamples) {
        qDebug() << "EDFWriter: cannot record" << signalCount << "signals with"
                 << m_samplesPerRecord << "samples per record";
        return false;
    }
    setInternalBuffSize(m_samplesPerRecord, unsigned(signalCount));
    m_records = 0;
    m_recordsOnDisk = 0;
    m_writeFailed = false;

    const QFileInfo info(m_path);
    if (!QuorvexCommon::CreateDirIfNotExists(info.absolutePath())) {
        qDebug() << "EDFWriter: cannot create folder" << info.absolutePath();
        return false;
    }
    // Creating the file ourselves first tells "cannot create" apart from "library refused".
    QFile probe(m_path);
    if (!probe.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug() << "EDFWriter: cannot create file" << m_path << probe.errorString();
        return false;
    }
    m_segmentStart = now();
    emit recordStarted(m_path);
    probe.close();

    m_handle = edfopen_file_writeonly(m_path.toLocal8Bit().constData(),
                                      m_bdf ? EDFLIB_FILETYPE_BDFPLUS : EDFLIB_FILETYPE_EDFPLUS,
                                      m_signals);
    if (m_handle < 0) {
        qDebug() << "EDFWriter: the library cannot open" << m_path << "error" << m_handle;
        m_handle = -1;
        return false;
    }
    edf_set_number_of_annotation_signals(m_handle, kAnnotationSignals);
    m_open = true;
    initCurrentFile();
    if (m_patientSet)
        writePatientInfo();
    // Listeners see this a second time on success and must tolerate the repeat.
    emit recordStarted(m_path);
    return true;
}

bool EDFWriter::close(bool writeRemainder)
{
    if (!m_open)
        return false;
    if (writeRemainder)
        writeRemainderToFile();
    m_open = false;
    bool ok = edfclose_file(m_handle) == 0;
    m_handle = -1;
    if (!ok)
        qDebug() << "EDFWriter: the library could not finish" << m_path;
    // The library notices a failed write only now and then (the system buffers what it is
    // given), so the file on disk is measured against what its own header promises.
    ok = ok && !m_writeFailed && fileIsComplete();
    emit recordStopped(m_path);
    return ok;
}

bool EDFWriter::fileIsComplete() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "EDFWriter: cannot read back" << m_path << file.errorString();
        return false;
    }
    const QByteArray fixed = file.read(256);
    const auto number = [](const QByteArray &bytes, qint64 offset, int length, bool *ok) {
        return bytes.mid(offset, length).trimmed().toLongLong(ok);
    };
    bool okHeader = false;
    bool okRecords = false;
    bool okSignals = false;
    const qint64 headerBytes = number(fixed, 184, 8, &okHeader);
    const qint64 records = number(fixed, 236, 8, &okRecords);
    const qint64 signalCount = number(fixed, 252, 4, &okSignals);
    if (fixed.size() < 256 || !okHeader || !okRecords || !okSignals || signalCount < 1 ||
        headerBytes != 256 * (signalCount + 1) || records != m_recordsOnDisk) {
        qDebug() << "EDFWriter: the header of" << m_path << "was not finished";
        return false;
    }
    // Samples per data record of every signal, annotation signals included, follow the
    // fixed-size fields of all signals (216 bytes per signal).
    if (!file.seek(256 + signalCount * 216))
        return false;
    const QByteArray samples = file.read(signalCount * 8);
    qint64 recordBytes = 0;
    for (qint64 s = 0; s < signalCount; ++s) {
        bool ok = false;
        recordBytes += number(samples, s * 8, 8, &ok) * (m_bdf ? 3 : 2);
        if (!ok)
            return false;
    }
    const qint64 expected = headerBytes + records * recordBytes;
    if (file.size() != expected) {
        qDebug() << "EDFWriter:" << m_path << "holds" << file.size() << "bytes instead of"
                 << expected << "- the disk may be full";
        return false;
    }
    return true;
}

void EDFWriter::setPatientInfo(const PatientInfo &info)
{
    m_patient = info;
    m_patientSet = true;
    if (m_open)
        writePatientInfo();
}

void EDFWriter::takeStartTime(qint64 ms)
{
    m_segmentStart = ms;
    m_recordedBefore = 0;
    m_paused = false;
}

void EDFWriter::resetStartTime()
{
    m_segmentStart = 0;
    m_recordedBefore = 0;
    m_paused = false;
}

void EDFWriter::pauseRecord()
{
    if (m_paused || m_segmentStart == 0)
        return;
    m_recordedBefore += now() - m_segmentStart;
    m_paused = true;
}

void EDFWriter::continueRecord()
{
    m_segmentStart = now();
    m_paused = false;
}

qint64 EDFWriter::recordedTimeMs() const
{
    // While paused the clock stands still at what was recorded before the pause.
    if (m_paused || m_segmentStart == 0)
        return m_recordedBefore;
    return m_recordedBefore + (now() - m_segmentStart);
}

void EDFWriter::writeData(const QList<QList<float>> &data)
{
    if (data.size() != m_signals) {
        qDebug() << "EDFWriter: Wrong number of channels provided -" << data.size() << ", should be"
                 << m_signals;
        return;
    }
    if (data.isEmpty())
        return;
    const qsizetype length = data.first().size();
    for (int i = 1; i < data.size(); ++i) {
        if (data.at(i).size() != length) {
            qDebug() << "EDFWriter: non homogenous data on channel" << i << ", it has length"
                     << data.at(i).size() << ", should be" << length;
            return;
        }
    }
    // Taken from the lists where they are, without gathering them into one block first.
    QVarLengthArray<const float *, 16> signalData(m_signals);
    for (int s = 0; s < m_signals; ++s)
        signalData[s] = data.at(s).constData();
    appendSamples(int(length), signalData.constData());
}

void EDFWriter::writeData(const QList<float> &data)
{
    if (m_signals < 1)
        return;
    writeData(int(data.size() / m_signals), data.constData());
}

void EDFWriter::writeData(int count, const float *data)
{
    if (!m_open || !data || count <= 0)
        return;
    QVarLengthArray<const float *, 16> signalData(m_signals);
    for (int s = 0; s < m_signals; ++s)
        signalData[s] = data + qsizetype(s) * count;
    appendSamples(count, signalData.constData());
}

void EDFWriter::appendSamples(int count, const float *const *signalData)
{
    if (!m_open || count <= 0)
        return;
    const int spr = m_samplesPerRecord;
    // Converted to the stored steps as they come: one pass over the samples, and a full record
    // goes to the library as it is.
    // A block may be longer than one record: it is laid down record by record.
    int offset = 0;
    while (offset < count) {
        const int take = std::min(count - offset, spr - m_filled);
        for (int s = 0; s < m_signals; ++s) {
            const qsizetype at = qsizetype(s) * spr + m_filled;
            if (m_bdf)
                toDigital(signalData[s] + offset, take, m_scale.at(s), m_offset.at(s),
                          m_buffer.data() + at);
            else
                toDigital(signalData[s] + offset, take, m_scale.at(s), m_offset.at(s),
                          m_shortBuffer.data() + at);
        }
        m_filled += take;
        offset += take;
        if (m_filled == spr) {
            ++m_records;
            emit recordDurationChanged(int(m_records));
            writeRecord();
            m_filled = 0;
        }
    }
}

int EDFWriter::addAnnotation(const QString &text, int timeMs, int durationMs)
{
    if (!m_open) {
        qDebug() << "EDFWriter: mark not written, file is not open" << text;
        return -1;
    }
    const qint64 onset = timeMs < 0 ? recordedTimeMs() : timeMs;
    const qint64 duration = std::max(durationMs, 0);
    // The library counts marks in units of 0.1 ms.
    if (edfwrite_annotation_utf8(m_handle, onset * 10, duration * 10, text.toUtf8().constData()) !=
        0) {
        qDebug() << "EDFWriter: the library refused the mark" << text;
        return -1;
    }
    return int(onset);
}

QPair<bool, qint64> EDFWriter::addAnnotationR(const QString &text)
{
    if (m_segmentStart == 0)
        return {false, 0};
    const qint64 onset = recordedTimeMs();
    m_lastMarkTime = onset;
    if (!m_open)
        return {false, onset};
    // One unit (0.1 ms) of duration marks it as an event rather than a span.
    const bool ok =
        edfwrite_annotation_utf8(m_handle, onset * 10, 1, text.toLocal8Bit().constData()) == 0;
    return {ok, onset};
}

void EDFWriter::clearShift()
{
    writeRemainderToFile();
    m_filled = 0;
    m_records = 0;
}

void EDFWriter::setChannelLabels(const QStringList &labels)
{
    while (m_channels.size() < labels.size())
        m_channels.append(ChannelDim(QString(), 1000.0, m_prefilter));
    m_channels.resize(labels.size());
    for (int i = 0; i < labels.size(); ++i)
        m_channels[i].label = labels.at(i);
}

void EDFWriter::setChannelLabels(const Montage &montage)
{
    setChannelLabels(montage.getChannelNames());
}

void EDFWriter::setChannelPhysicalDimensions(const QList<double> &ranges)
{
    const qsizetype n = std::min(ranges.size(), m_channels.size());
    for (qsizetype i = 0; i < n; ++i) {
        m_channels[i].physicalMinimum = -ranges.at(i);
        m_channels[i].physicalMaximum = ranges.at(i);
    }
}

void EDFWriter::setChannelPhysicalDimensions(const QList<QPair<double, double>> &ranges)
{
    const qsizetype n = std::min(ranges.size(), m_channels.size());
    for (qsizetype i = 0; i < n; ++i) {
        m_channels[i].physicalMinimum = ranges.at(i).first;
        m_channels[i].physicalMaximum = ranges.at(i).second;
    }
}

void EDFWriter::setPrefilter(const PrefilterMap &prefilter)
{
    m_prefilter = prefilter;
    for (ChannelDim &channel : m_channels)
        channel.prefilter = prefilter;
}

void EDFWriter::setInternalBuffSize(int samplesPerRecord, unsigned signalCount)
{
    m_samplesPerRecord = std::max(samplesPerRecord, 0);
    m_signals = int(std::min<unsigned>(signalCount, EDFLIB_MAXSIGNALS + 1));
    // An EDF+ file stores 16-bit steps, which the library copies to the file as they are; a BDF+
    // file needs them widened to three bytes, which the library does from whole numbers.
    const qsizetype size = qsizetype(m_samplesPerRecord) * m_signals;
    m_buffer = QList<int>(m_bdf ? size : 0, 0);
    m_shortBuffer = QList<qint16>(m_bdf ? 0 : size, 0);
    m_filled = 0;
}

QByteArray EDFWriter::prefilterHeader(const PrefilterMap &prefilter)
{
    if (prefilter.isEmpty())
        return QByteArrayLiteral("0");
    QString text;
    for (auto it = prefilter.cbegin(); it != prefilter.cend(); ++it)
        text += it.key() + QLatin1Char(':') + QString::number(it.value(), 'f', 1) +
                QLatin1String("Hz ");
    return text.toLatin1();
}

QByteArray EDFWriter::labelHeader(const QString &label)
{
    // As many bytes as the label has characters: a label with non-ASCII letters comes out
    // shorter than it looks. Files already in use were written this way.
    return label.toUtf8().left(std::min<qsizetype>(label.size(), kLabelBytes));
}

void EDFWriter::initCurrentFile()
{
    m_scale = QList<double>(m_signals, 0.0);
    m_offset = QList<double>(m_signals, 0.0);
    for (int s = 0; s < m_signals; ++s) {
        const ChannelDim &channel = m_channels.at(s);
        double minimum = channel.physicalMinimum;
        double maximum = channel.physicalMaximum;
        if (m_bdf) {
            minimum = std::min(kBdfPhysicalMinimum, minimum);
            maximum = std::max(kBdfPhysicalMaximum, maximum);
        }
        const bool ok =
            edf_set_samplefrequency(m_handle, s, m_samplesPerRecord) == 0 &&
            edf_set_physical_maximum(m_handle, s, maximum) == 0 &&
            edf_set_physical_minimum(m_handle, s, minimum) == 0 &&
            edf_set_digital_maximum(m_handle, s, kDigitalMaximum) == 0 &&
            edf_set_digital_minimum(m_handle, s, kDigitalMinimum) == 0 &&
            edf_set_label(m_handle, s, labelHeader(channel.label).constData()) == 0 &&
            edf_set_prefilter(m_handle, s, prefilterHeader(channel.prefilter).constData()) == 0 &&
            edf_set_physical_dimension(m_handle, s,
                                       channel.physicalDimension.toUtf8().constData()) == 0;
        if (!ok)
            qDebug() << "EDFWriter: the library refused the header of signal" << s;
        // physical = (digital + offset) / scale, the linear map between the two ranges
        const double scale = double(kDigitalMaximum - kDigitalMinimum) / (maximum - minimum);
        m_scale[s] = std::isfinite(scale) ? scale : 0.0;
        m_offset[s] = std::isfinite(scale) ? maximum * scale - kDigitalMaximum : 0.0;
    }
}

// Other programs read the identification fields as ASCII, and the format allows nothing else:
// a Cyrillic name written in any 8-bit code reaches them as gibberish. The full text stays in the
// record's properties file; the header gets a spelling a person can match with it.
QByteArray EDFWriter::headerText(const QString &text)
{
    return Transliteration::toAscii(text).toLatin1();
}

void EDFWriter::writePatientInfo()
{
    const PatientInfo &p = m_patient;
    edf_set_patientcode(m_handle, headerText(p.patientCode).constData());
    if (p.gender == 0 || p.gender == 1)
        edf_set_gender(m_handle, p.gender);
    if (p.birthYear > 0)
        edf_set_birthdate(m_handle, p.birthYear, p.birthMonth, p.birthDay);
    edf_set_patientname(m_handle, headerText(p.patientName).constData());
    edf_set_patient_additional(m_handle, headerText(p.patientAdditional).constData());
    // Without a valid start the library keeps the time the file was opened.
    if (p.startYear > 0 &&
        edf_set_startdatetime(m_handle, p.startYear, p.startMonth, p.startDay, p.startHour,
                              p.startMinute, p.startSecond) == 0 &&
        p.startMillisecond > 0 && p.startMillisecond < 1000)
        edf_set_subsecond_starttime(m_handle, p.startMillisecond * 10000);
    edf_set_admincode(m_handle, headerText(p.adminCode).constData());
    edf_set_equipment(m_handle, headerText(p.equipment).constData());
    edf_set_recording_additional(m_handle, headerText(p.recordingAdditional).constData());
}

void EDFWriter::writeRecord()
{
    // One call for the whole record: the library lays it down signal after signal, as it would
    // from one call per signal.
    const int result = m_bdf ? edf_blockwrite_digital_samples(m_handle, m_buffer.data())
                             : edf_blockwrite_digital_short_samples(m_handle, m_shortBuffer.data());
    if (result != 0) {
        // Once is enough: a full disk would otherwise log every second.
        if (!m_writeFailed)
            qDebug() << "EDFWriter: the library could not write a data record to" << m_path;
        m_writeFailed = true;
        return;
    }
    ++m_recordsOnDisk;
}

void EDFWriter::writeRemainderToFile()
{
    if (!m_open)
        return;
    // Nothing buffered means no remainder, unless the file has no data record at all yet:
    // a file without one cannot be opened again.
    if (m_filled == 0 && m_recordsOnDisk > 0)
        return;
    // The tail of the last record reads as zero.
    for (int s = 0; s < m_signals; ++s) {
        const int zero = toDigital(0.0f, m_scale.value(s), m_offset.value(s));
        const qsizetype from = qsizetype(s) * m_samplesPerRecord + m_filled;
        const qsizetype to = qsizetype(s + 1) * m_samplesPerRecord;
        if (m_bdf)
            std::fill(m_buffer.begin() + from, m_buffer.begin() + to, zero);
        else
            std::fill(m_shortBuffer.begin() + from, m_shortBuffer.begin() + to, qint16(zero));
    }
    writeRecord();
    m_filled = 0;
}
