#include "analysis/CorvidaExperiment.h"

#include "analysis/EnvelopeOnsetDetector.h"
#include "analysis/PeakFinder.h"
#include "settings/AbstractMetaDescription.h"
#include "storage/EDFMarkRewriter.h"
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "storage/RecordFileNames.h"
#include "toolkit/FileUtilities.h"
#include "toolkit/GenericText.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QXmlStreamReader>
#include <cmath>

namespace {
// The pressure and pulse channels share the 16-bit range of the raw channels: 32767 / 4 mmHg and
// 32767 x 3.6 / 65536 V.
constexpr double kPressureRange = 8191.75;
constexpr double kPulseRange = 1.799945068359375;
constexpr double kRawRange = 32767.0;
// Volts per count of the pulse sensor (3.6 / 65536) and of the IR channel (2.64 / 65536).
constexpr double kPulseVoltsPerCount = 0.000054931640625;
constexpr double kIrVoltsPerCount = 0.000040283203125;
// Markers earlier than this are not believed: the cuff has not even finished inflating.
constexpr double kEarliestMarker = 4.0;
// Below this much free space a failed write is taken for a full disk.
constexpr qint64 kFullDiskBytes = 1 << 20;

// A marker time as the onset of its mark in whole milliseconds, cut toward zero. A time read
// back from a mark (ms / 1000) times 1000 may land a hair below the whole number; the small
// allowance keeps such a marker on its own millisecond instead of moving it back by one.
qint64 markOnset(double seconds)
{
    return qint64(seconds * 1000.0 + 1e-6);
}

const QString kSbpMark = QStringLiteral("SBP");
const QString kDbpMark = QStringLiteral("DBP");
} // namespace

CorvidaExperiment::CorvidaExperiment(QObject *parent)
    : CorvidaExperiment(QString(), parent)
{}

CorvidaExperiment::CorvidaExperiment(const QString &settingsPath, QObject *parent)
    : VTSettings(settingsPath, true, parent, XML)
{
    // Marks read from one recording say nothing about the next one.
    connect(this, &VTSettings::filePathChanged, this, [this] {
        if (m_recordingPath.isEmpty())
            m_marksKnown = false;
    });
    loadDefaults();
    if (!settingsPath.isEmpty())
        reload();
    // A stored record starts when its file says; until the series are read, the file name is
    // the best clue, and for a new record it is now.
    m_startDateTime = QDateTime::currentDateTime();
}

CorvidaExperiment::~CorvidaExperiment() = default;

template <typename T, typename Signal>
void CorvidaExperiment::assign(T &member, const T &value, Signal signal, const char *name)
{
    if (member == value)
        return;
    member = value;
    emit(this->*signal)(member);
    changedProperty(QLatin1String(name));
}

void CorvidaExperiment::setRodent(const QString &Rodent)
{
    assign(m_Rodent, Rodent, &CorvidaExperiment::changedRodent, "Rodent");
}

void CorvidaExperiment::setComment(const QString &Comment)
{
    assign(m_Comment, Comment, &CorvidaExperiment::changedComment, "Comment");
}

void CorvidaExperiment::setSBP(double SBP)
{
    assign(m_SBP, SBP, &CorvidaExperiment::changedSBP, "SBP");
}

void CorvidaExperiment::setDBP(double DBP)
{
    assign(m_DBP, DBP, &CorvidaExperiment::changedDBP, "DBP");
}

void CorvidaExperiment::setBPM(double BPM)
{
    // NaN (no regular interval left) must still count as a change exactly once.
    if (m_BPM == BPM || (std::isnan(m_BPM) && std::isnan(BPM)))
        return;
    m_BPM = BPM;
    emit changedBPM(m_BPM);
    changedProperty(QStringLiteral("BPM"));
}

void CorvidaExperiment::setSN(const QString &SN)
{
    assign(m_SN, SN, &CorvidaExperiment::changedSN, "SN");
}

void CorvidaExperiment::setUncalibrated(bool on)
{
    if (on) {
        assign(m_Uncalibrated, true, &CorvidaExperiment::changedUncalibrated, "Uncalibrated");
        return;
    }
    if (!m_Uncalibrated)
        return;
    // Cleared for a new recording: the mark is not written at all then, so a record measured
    // with a calibration is the same file it always was.
    m_Uncalibrated = false;
    emit changedUncalibrated(false);
    if (AbstractMetaDescription *d = getPropertyByName(QStringLiteral("Uncalibrated")))
        d->clearValueSet();
}

QString CorvidaExperiment::pressureUnitText() const
{
    return m_Uncalibrated
               ? genericText(QT_TRANSLATE_NOOP("Generic", "sensor units, not calibrated"))
               : genericText(QT_TRANSLATE_NOOP("Generic", "mmHg"));
}

void CorvidaExperiment::setMethod(const QString &Method)
{
    const QString method = Method == refinedMethod() ? Method : QString();
    if (!method.isEmpty()) {
        assign(m_Method, method, &CorvidaExperiment::changedMethod, "Method");
        return;
    }
    if (m_Method.isEmpty())
        return;
    // Back to the long-standing way: the property is not written at all, as in older records.
    m_Method.clear();
    emit changedMethod(m_Method);
    if (AbstractMetaDescription *d = getPropertyByName(QStringLiteral("Method")))
        d->clearValueSet();
    if (getAutoSave() && !getFilepath().isEmpty())
        VTSettings::save();
}

void CorvidaExperiment::setSession(const QString &Session)
{
    assign(m_Session, Session, &CorvidaExperiment::changedSession, "Session");
}

void CorvidaExperiment::setCycle(qint32 Cycle)
{
    assign(m_Cycle, Cycle, &CorvidaExperiment::changedCycle, "Cycle");
}

void CorvidaExperiment::setAcclimation(bool Acclimation)
{
    assign(m_Acclimation, Acclimation, &CorvidaExperiment::changedAcclimation, "Acclimation");
}

void CorvidaExperiment::setPulseBefore(bool PulseBefore)
{
    assign(m_PulseBefore, PulseBefore, &CorvidaExperiment::changedPulseBefore, "PulseBefore");
}

void CorvidaExperiment::setAccepted(bool Accepted)
{
    assign(m_Accepted, Accepted, &CorvidaExperiment::changedAccepted, "Accepted");
}

void CorvidaExperiment::setReason(const QString &Reason)
{
    assign(m_Reason, Reason, &CorvidaExperiment::changedReason, "Reason");
}

void CorvidaExperiment::setVerdict(qint32 Verdict)
{
    assign(m_Verdict, Verdict, &CorvidaExperiment::changedVerdict, "Verdict");
}

void CorvidaExperiment::setPlanned(qint32 Planned)
{
    assign(m_Planned, Planned, &CorvidaExperiment::changedPlanned, "Planned");
}

QString CorvidaExperiment::verdictText() const
{
    if (m_Verdict == VerdictAccepted)
        return QCoreApplication::translate("CorvidaExperiment", "Accepted by the operator");
    if (m_Verdict == VerdictRejected)
        return QCoreApplication::translate("CorvidaExperiment", "Rejected by the operator");
    return m_Accepted ? QString() : m_Reason;
}

void CorvidaExperiment::storeSBPTime(double SBPTime)
{
    if (m_SBPTime == SBPTime)
        return;
    assign(m_SBPTime, SBPTime, &CorvidaExperiment::changedSBPTime, "SBPTime");
    markerTimeChanged();
}

void CorvidaExperiment::storeDBPTime(double DBPTime)
{
    if (m_DBPTime == DBPTime)
        return;
    assign(m_DBPTime, DBPTime, &CorvidaExperiment::changedDBPTime, "DBPTime");
    markerTimeChanged();
}

void CorvidaExperiment::markerTimeChanged()
{
    // Reading the ".exp" file is not saving it; a recalculation writes once at its end.
    if (m_markerBatch > 0) {
        m_markersPending = true;
        return;
    }
    if (getAutoSave() && !isReloading() && !getFilepath().isEmpty())
        updateRecordingMarks();
}

QString CorvidaExperiment::recordingPath() const
{
    if (!m_recordingPath.isEmpty())
        return m_recordingPath;
    QString edfPath = getFilepath();
    if (edfPath.isEmpty())
        return QString();
    if (edfPath.endsWith(QLatin1String(".exp"), Qt::CaseInsensitive))
        edfPath.chop(4);
    return edfPath + RecordFileNames::edfSuffix();
}

void CorvidaExperiment::setRecordingPath(const QString &edfPath)
{
    if (edfPath == m_recordingPath)
        return;
    m_recordingPath = edfPath;
    m_marksKnown = false;
}

QPair<qint64, qint64> CorvidaExperiment::wantedMarks() const
{
    return {m_SBPTime > 0 ? markOnset(m_SBPTime) : -1, m_DBPTime > 0 ? markOnset(m_DBPTime) : -1};
}

bool CorvidaExperiment::readRecordingMarks()
{
    EDFReader reader(recordingPath());
    if (!reader.open())
        return false;
    m_sbpMarks.clear();
    m_dbpMarks.clear();
    const QMap<qint64, QString> marks = reader.getAnnotations();
    for (auto it = marks.cbegin(); it != marks.cend(); ++it) {
        if (it.value() == kSbpMark)
            m_sbpMarks << it.key();
        else if (it.value() == kDbpMark)
            m_dbpMarks << it.key();
    }
    m_marksKnown = true;
    return true;
}

bool CorvidaExperiment::updateRecordingMarks(QString *error)
{
    const QString edfPath = recordingPath();
    if (edfPath.isEmpty() || !QFile::exists(edfPath))
        return true;
    if (!m_marksKnown && !readRecordingMarks()) {
        // A recording we cannot read is left exactly as it is.
        if (error)
            *error = saveFailedText(edfPath, tr("the recording cannot be read"));
        return false;
    }
    const QPair<qint64, qint64> wanted = wantedMarks();
    const QList<qint64> sbp = wanted.first >= 0 ? QList<qint64>{wanted.first} : QList<qint64>();
    const QList<qint64> dbp = wanted.second >= 0 ? QList<qint64>{wanted.second} : QList<qint64>();
    if (sbp == m_sbpMarks && dbp == m_dbpMarks)
        return true;
    QList<EDFMarkRewriter::Mark> marks;
    if (wanted.first >= 0)
        marks << EDFMarkRewriter::Mark(kSbpMark, wanted.first);
    if (wanted.second >= 0)
        marks << EDFMarkRewriter::Mark(kDbpMark, wanted.second);
    QString why;
    if (!EDFMarkRewriter::replaceMarks(edfPath, {kSbpMark, kDbpMark}, marks, &why)) {
        qDebug().noquote() << "RECORD: the marks of" << edfPath << "were not updated -" << why;
        if (error)
            *error = saveFailedText(edfPath, why);
        return false;
    }
    m_sbpMarks = sbp;
    m_dbpMarks = dbp;
    return true;
}

bool CorvidaExperiment::saveProperties(QString *error)
{
    if (!VTSettings::save()) {
        if (error)
            *error = saveFailedText(getFilepath(), QString());
        return false;
    }
    return updateRecordingMarks(error);
}

bool CorvidaExperiment::propertiesFileHolds(const QString &name) const
{
    QFile file(getFilepath());
    if (getFilepath().isEmpty() || !file.open(QIODevice::ReadOnly))
        return false;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == name)
            return true;
    }
    return false;
}

void CorvidaExperiment::setSBPTime(double SBPTime)
{
    // Read the series first: reading ends in a recalculation that fills missing markers, and
    // that must not overwrite the marker placed here.
    ensureSeries();
    storeSBPTime(SBPTime);
    setSBP(markerPressure(SBPTime));
}

void CorvidaExperiment::setDBPTime(double DBPTime)
{
    ensureSeries();
    storeDBPTime(DBPTime);
    setDBP(markerPressure(DBPTime));
}

void CorvidaExperiment::resetRodent()
{
    setRodent(QString());
}
void CorvidaExperiment::resetComment()
{
    setComment(QString());
}
void CorvidaExperiment::resetSBP()
{
    setSBP(0.0);
}
void CorvidaExperiment::resetSBPTime()
{
    storeSBPTime(0.0);
}
void CorvidaExperiment::resetDBP()
{
    setDBP(0.0);
}
void CorvidaExperiment::resetDBPTime()
{
    storeDBPTime(0.0);
}
void CorvidaExperiment::resetBPM()
{
    setBPM(0.0);
}
void CorvidaExperiment::resetSN()
{
    setSN(QString());
}

QList<double> CorvidaExperiment::getPressure()
{
    if (m_pressure.isEmpty())
        loadSeries();
    return m_pressure;
}

QList<double> CorvidaExperiment::getPulse()
{
    if (m_pulse.isEmpty())
        loadSeries();
    return m_pulse;
}

double CorvidaExperiment::getSamplingRate()
{
    if (m_samplingRate == 0.0)
        loadSeries();
    return m_samplingRate;
}

void CorvidaExperiment::ensureSeries()
{
    if (m_pressure.isEmpty() || m_samplingRate == 0.0)
        loadSeries();
}

double CorvidaExperiment::markerPressure(double t)
{
    // A marker time of 0 or less means "not found": its pressure is "not set" as well, not the
    // cuff pressure of the first sample, which would read as a (wrong) blood pressure.
    return t > 0 ? pressureAt(t) : 0.0;
}

double CorvidaExperiment::pressureAt(double t)
{
    ensureSeries();
    return PeakFinder::valueAtTime(m_pressure, t, m_samplingRate);
}

QString CorvidaExperiment::bpText() const
{
    const auto value = [](double v) {
        return v > 0 ? QString::number(v, 'f', 0) : QStringLiteral("?");
    };
    const QString text = m_SBP == 0.0 && m_DBP == 0.0
                             ? QStringLiteral("?")
                             : value(m_SBP) + QLatin1Char('/') + value(m_DBP);
    if (!m_Uncalibrated)
        return text;
    return text + QStringLiteral(" (") +
           genericText(QT_TRANSLATE_NOOP("Generic", "not calibrated")) + QLatin1Char(')');
}

QString CorvidaExperiment::listLabel() const
{
    const QString path = getFilepath();
    // The operator knows a record by its name; the suffix of the file behind it says nothing.
    return path.isEmpty() ? QStringLiteral("?") : QFileInfo(path).completeBaseName();
}

QString CorvidaExperiment::baseFileName() const
{
    QString name = QuorvexCommon::dateTimeFileString(m_startDateTime, true);
    const QString sn = m_SN.trimmed();
    if (m_nameWithSerial && !sn.isEmpty())
        name += QStringLiteral(" (") + sn + QLatin1Char(')');
    return name;
}

void CorvidaExperiment::clearSeries()
{
    m_pressure.clear();
    m_pulse.clear();
    m_raw.clear();
    m_beats.clear();
    m_valleys.clear();
    m_heartRate.clear();
    m_amplitude.clear();
}

void CorvidaExperiment::loadSeries()
{
    // Reading ends in a recalculation, which may ask for the series again.
    if (m_loading)
        return;
    const QString edfPath = recordingPath();
    if (edfPath.isEmpty() || !QFile::exists(edfPath))
        return;

    m_loading = true;
    EDFReader reader(edfPath);
    if (!reader.open() || reader.samplesInFile() < 1) {
        m_loading = false;
        return;
    }
    const QStringList names = reader.getChannelNames();
    const int pressureChannel = int(names.indexOf(QStringLiteral("Pressure")));
    const int pulseChannel = int(names.indexOf(QStringLiteral("Pulse")));
    if (pressureChannel < 0 || pulseChannel < 0) {
        m_loading = false;
        return;
    }
    m_samplingRate = reader.getSamplingRate();
    if (reader.startDateTime().isValid())
        m_startDateTime = reader.startDateTime();
    const qint64 n = reader.samplesInFile();
    // The file holds the series negated once more than the reader undoes; see save().
    m_pressure = reader.getChannelData(pressureChannel, 0, int(n));
    for (double &v : m_pressure)
        v = -v;
    m_pulse = reader.getChannelData(pulseChannel, 0, int(n));
    for (double &v : m_pulse)
        v = -v;

    // Markers written as marks fill in what the ".exp" file does not already hold.
    const QMap<qint64, QString> marks = reader.getAnnotations();
    reader.close();
    m_sbpMarks.clear();
    m_dbpMarks.clear();
    for (auto it = marks.cbegin(); it != marks.cend(); ++it) {
        if (it.value() == kSbpMark)
            m_sbpMarks << it.key();
        else if (it.value() == kDbpMark)
            m_dbpMarks << it.key();
    }
    m_marksKnown = true;
    // A marker time the ".exp" file holds as "not set" was cleared on purpose (a reset): a mark
    // left in the recording by an older save must not bring it back.
    const auto wantsMark = [this](double time, double pressure, const char *name) {
        if (time > 0)
            return pressure == 0.0;
        return time == 0.0 ? !propertiesFileHolds(QLatin1String(name)) : false;
    };
    if (!m_sbpMarks.isEmpty() && wantsMark(m_SBPTime, m_SBP, "SBPTime"))
        setSBPTime(m_sbpMarks.first() / 1000.0);
    if (!m_dbpMarks.isEmpty() && wantsMark(m_DBPTime, m_DBP, "DBPTime"))
        setDBPTime(m_dbpMarks.first() / 1000.0);
    recalculate(false);
    m_loading = false;
}

void CorvidaExperiment::ensurePeakFinder()
{
    // The detector works at the rate it is made with; a record may learn its rate only when its
    // series are read.
    if (m_peakFinder && m_peakFinder->samplingRate() != m_samplingRate) {
        delete m_peakFinder;
        m_peakFinder = nullptr;
    }
    if (!m_peakFinder)
        m_peakFinder = new PeakFinder(m_samplingRate, 0.01, 0.05, this);
}

void CorvidaExperiment::clearMarker(double &value, void (CorvidaExperiment::*signal)(double),
                                    const char *name)
{
    if (value == 0.0)
        return;
    value = 0.0;
    emit(this->*signal)(0.0);
    changedProperty(QLatin1String(name));
}

void CorvidaExperiment::recalculate(bool reset)
{
    ++m_markerBatch;
    recalculateMarkers(reset);
    --m_markerBatch;
    if (m_markerBatch == 0 && m_markersPending) {
        m_markersPending = false;
        markerTimeChanged();
    }
    if (reset)
        emit bpResetted();
}

void CorvidaExperiment::recalculateMarkers(bool reset)
{
    if (reset) {
        clearMarker(m_DBP, &CorvidaExperiment::changedDBP, "DBP");
        clearMarker(m_DBPTime, &CorvidaExperiment::changedDBPTime, "DBPTime");
        clearMarker(m_SBP, &CorvidaExperiment::changedSBP, "SBP");
        clearMarker(m_SBPTime, &CorvidaExperiment::changedSBPTime, "SBPTime");
        m_markersPending = true;
    }
    if (m_pulse.isEmpty())
        loadSeries();
    ensurePeakFinder();

    QList<int> signedIndices;
    m_peakFinder->findPeaks(m_pulse, 0, -1, signedIndices, m_beats, m_valleys);

    m_heartRate.clear();
    const QList<QPointF> intervals = m_peakFinder->intervalSeries();
    for (const QPointF &p : intervals)
        m_heartRate << QPointF(p.x(), p.y() > 0 ? 60.0 / p.y() : 0.0);
    m_amplitude = m_peakFinder->amplitudeSeries();
    setBPM(m_peakFinder->heartRate());

    m_detectionNote.clear();
    if (m_beats.size() > 2 || usesRefinedMethod()) {
        const QPair<double, double> found =
            usesRefinedMethod() ? refinedMarkers() : documentedMarkers();
        // A complete marker pair is the operator's or an earlier run's: it stays.
        if (m_SBP == 0.0 || m_SBPTime == 0.0)
            setSBPTime(found.first);
        if (m_DBP == 0.0 || m_DBPTime == 0.0)
            setDBPTime(found.second);
    }
}

QPair<double, double> CorvidaExperiment::documentedMarkers()
{
    const QList<int> regular = m_peakFinder->selectRegularBeats(m_beats);
    const int c = PeakFinder::chooseSystolicBeat(regular);
    double systolic = 0.0;
    double diastolic = 0.0;
    if (c >= 0 && c < regular.size() && m_samplingRate > 0) {
        systolic = regular[c] / m_samplingRate;
        if (systolic >= kEarliestMarker) {
            diastolic = m_peakFinder->findDiastolicTime(systolic, m_pressure);
            if (diastolic < kEarliestMarker)
                diastolic = 0.0;
        } else {
            systolic = 0.0;
        }
    }
    return {systolic, diastolic};
}

QPair<double, double> CorvidaExperiment::refinedMarkers()
{
    const EnvelopeOnsetDetector::Result r =
        EnvelopeOnsetDetector::detect(m_pressure, m_amplitude, m_samplingRate);
    m_detectionNote = r.reason;
    return {r.systolicTime, r.diastolicTime};
}

bool CorvidaExperiment::writeEdf(const QString &edfPath, const QString &writePath, QString *error)
{
    const qsizetype n = std::min(m_pressure.size(), m_pulse.size());
    const bool withRaw = m_raw.size() == 4 && m_raw.first().size() >= n && m_raw[1].size() >= n &&
                         m_raw[2].size() >= n && m_raw[3].size() >= n;
    QList<ChannelDim> channels = {ChannelDim(QStringLiteral("Pressure"), kPressureRange),
                                  ChannelDim(QStringLiteral("Pulse"), kPulseRange)};
    if (withRaw) {
        for (const char *name : {"MPX", "AC", "DC", "IR"})
            channels << ChannelDim(QString::fromLatin1(name), kRawRange);
    }

    const qint64 startMs = m_startDateTime.toMSecsSinceEpoch();
    EDFWriter writer(writePath, channels, int(m_samplingRate), [startMs] { return startMs; });
    PatientInfo info;
    info.patientName = m_Rodent;
    info.equipment = m_SN;
    info.recordingAdditional = m_Comment;
    const QDate date = m_startDateTime.date();
    const QTime time = m_startDateTime.time();
    info.startYear = date.year();
    info.startMonth = date.month();
    info.startDay = date.day();
    info.startHour = time.hour();
    info.startMinute = time.minute();
    info.startSecond = time.second();
    info.startMillisecond = time.msec();
    writer.setPatientInfo(info);
    writer.takeStartTime(startMs);
    if (!writer.isOpen()) {
        if (error)
            *error = cannotOpenText(edfPath);
        return false;
    }

    // Samples go in negated; the writer negates once more and the reader undoes both on loading.
    constexpr qsizetype kChunk = 10000;
    QList<QList<float>> block(channels.size());
    for (qsizetype at = 0; at < n; at += kChunk) {
        const qsizetype m = std::min(kChunk, n - at);
        for (auto &c : block)
            c.resize(m);
        for (qsizetype i = 0; i < m; ++i) {
            const qsizetype k = at + i;
            block[0][i] = float(-m_pressure[k]);
            block[1][i] = float(-m_pulse[k]);
            if (withRaw) {
                block[2][i] = float(-m_raw[0][k] * 4.0);
                block[3][i] = float(-m_raw[1][k] / kPulseVoltsPerCount);
                block[4][i] = float(-m_raw[2][k] / kPulseVoltsPerCount);
                block[5][i] = float(-m_raw[3][k] / kIrVoltsPerCount);
            }
        }
        writer.writeData(block);
    }
    bool marked = true;
    const QPair<qint64, qint64> marks = wantedMarks();
    if (marks.first >= 0)
        marked &= writer.addAnnotation(kSbpMark, int(marks.first), -1) >= 0;
    if (marks.second >= 0)
        marked &= writer.addAnnotation(kDbpMark, int(marks.second), -1) >= 0;
    if (!writer.close(true) || !marked) {
        if (error)
            *error = saveFailedText(edfPath, QString());
        return false;
    }
    return true;
}

QString CorvidaExperiment::cannotOpenText(const QString &edfPath)
{
    return genericText(QT_TRANSLATE_NOOP("Generic", "Cannot open")) + QStringLiteral(" \"") +
           edfPath + QStringLiteral("\" ") +
           genericText(QT_TRANSLATE_NOOP("Generic", "for record"));
}

QString CorvidaExperiment::saveFailedText(const QString &path, const QString &why) const
{
    QString reason = why;
    const QStorageInfo disk(QFileInfo(path).absolutePath());
    if (disk.isValid() && disk.bytesAvailable() >= 0 && disk.bytesAvailable() < kFullDiskBytes)
        reason = tr("the disk is full");
    QString text = tr("The record could not be written to") + QStringLiteral(" \"") +
                   QDir::toNativeSeparators(path) + QLatin1Char('"');
    if (!reason.isEmpty())
        text += QStringLiteral(": ") + reason;
    return text;
}

bool CorvidaExperiment::save(const QString &folder, QString *error)
{
    const qsizetype n = std::min(m_pressure.size(), m_pulse.size());
    if (m_samplingRate < 1.0) {
        if (error)
            *error = genericText(QT_TRANSLATE_NOOP("Generic", "Invalid sampling rate"));
        return false;
    }
    if (m_samplingRate > double(n)) {
        if (error)
            *error = genericText(QT_TRANSLATE_NOOP("Generic", "Experiment is too short"));
        return false;
    }

    QString dir = QDir::fromNativeSeparators(folder);
    if (!dir.endsWith(QLatin1Char('/')))
        dir += QLatin1Char('/');
    // The ".edf" file is what makes a record in the folder: it is written under another name
    // and only takes its own once the ".exp" file is there too. Creating that file is what
    // claims the name: a second program saving in the same second finds it taken and moves on
    // to the next free name instead of writing over this one.
    QuorvexCommon::CreateDirIfNotExists(dir);
    QSet<QString> taken = RecordFileNames::takenNames(dir);
    QString base;
    QFile claim;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        base = dir + RecordFileNames::freeBaseName(taken, baseFileName());
        claim.setFileName(base + RecordFileNames::partSuffix());
        if (claim.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            break;
        if (!QFile::exists(claim.fileName())) {
            // Not a name clash: the folder cannot be written.
            qDebug().noquote() << "RECORD: cannot create" << claim.fileName() << "-"
                               << claim.errorString();
            if (error)
                *error = cannotOpenText(base + RecordFileNames::edfSuffix());
            return false;
        }
        RecordFileNames::take(taken, QFileInfo(base).fileName());
    }
    if (!claim.isOpen()) {
        if (error)
            *error = saveFailedText(dir, QString());
        return false;
    }
    claim.close();
    const QString edfPath = base + RecordFileNames::edfSuffix();
    const QString expPath = base + RecordFileNames::expSuffix();
    const QString partPath = claim.fileName();

    QString why;
    if (!writeEdf(edfPath, partPath, error)) {
        QFile::remove(partPath);
        return false;
    }
    if (!FileUtilities::syncFile(partPath)) {
        QFile::remove(partPath);
        if (error)
            *error = saveFailedText(edfPath, QString());
        return false;
    }

    const QString previousPath = getFilepath();
    const bool previousAutoSave = getAutoSave();
    const QString previousRecording = m_recordingPath;
    m_recordingPath.clear();
    setFilepath(expPath);
    setAutoSave(true);
    bool ok = VTSettings::save();
    if (!ok)
        why = saveFailedText(expPath, QString());
    else if (!FileUtilities::renameNoReplace(partPath, edfPath, &why))
        why = saveFailedText(edfPath, why);
    if (!ok || !why.isEmpty()) {
        QFile::remove(partPath);
        QFile::remove(expPath);
        setFilepath(previousPath);
        setAutoSave(previousAutoSave);
        m_recordingPath = previousRecording;
        if (error)
            *error = why;
        return false;
    }
    FileUtilities::syncFolder(dir);
    const QPair<qint64, qint64> written = wantedMarks();
    m_sbpMarks = written.first >= 0 ? QList<qint64>{written.first} : QList<qint64>();
    m_dbpMarks = written.second >= 0 ? QList<qint64>{written.second} : QList<qint64>();
    m_marksKnown = true;
    return true;
}

QList<QList<QVariant>> CorvidaExperiment::exportTable(bool essentialOnly)
{
    const QString pressureUnit = pressureUnitText();
    QList<QList<QVariant>> rows = {
        {genericText(QT_TRANSLATE_NOOP("Generic", "SBP")), m_SBP, pressureUnit},
        {genericText(QT_TRANSLATE_NOOP("Generic", "DBP")), m_DBP, pressureUnit},
        {genericText(QT_TRANSLATE_NOOP("Generic", "Pulse")), m_BPM,
         genericText(QT_TRANSLATE_NOOP("Generic", "bpm"))},
        {genericText(QT_TRANSLATE_NOOP("Generic", "Rodent")), m_Rodent},
        {genericText(QT_TRANSLATE_NOOP("Generic", "Comment")), m_Comment},
    };
    if (isSessionCycle()) {
        // MAP is derived from the markers, so it is shown, never stored. Records measured one
        // at a time keep the rows they always had.
        rows.insert(2, {genericText(QT_TRANSLATE_NOOP("Generic", "MAP")), meanArterialPressure(),
                        pressureUnit});
        const QString yes = genericText(QT_TRANSLATE_NOOP("Generic", "Yes"));
        const QString no = genericText(QT_TRANSLATE_NOOP("Generic", "No"));
        rows << QList<QVariant>{
            genericText(QT_TRANSLATE_NOOP("Generic", "Cycle")), m_Cycle,
            m_Acclimation ? genericText(QT_TRANSLATE_NOOP("Generic", "Acclimation")) : QString()};
        rows << QList<QVariant>{genericText(QT_TRANSLATE_NOOP("Generic", "Accepted")),
                                isAccepted() ? yes : no};
        rows << QList<QVariant>{genericText(QT_TRANSLATE_NOOP("Generic", "Reason")), verdictText()};
    }
    if (essentialOnly)
        return rows;
    const QList<double> pressure = getPressure();
    const QList<double> pulse = getPulse();
    rows << QList<QVariant>();
    rows << QList<QVariant>{genericText(QT_TRANSLATE_NOOP("Generic", "Sampling rate")),
                            m_samplingRate};
    rows << QList<QVariant>{
        genericText(QT_TRANSLATE_NOOP("Generic", "Pressure")) + QStringLiteral(", ") + pressureUnit,
        genericText(QT_TRANSLATE_NOOP("Generic", "PPG")) + QStringLiteral(", ") +
            genericText(QT_TRANSLATE_NOOP("Generic", "V"))};
    const qsizetype n = std::min(pressure.size(), pulse.size());
    rows.reserve(rows.size() + n);
    for (qsizetype i = 0; i < n; ++i)
        rows << QList<QVariant>{pressure[i], pulse[i]};
    return rows;
}
