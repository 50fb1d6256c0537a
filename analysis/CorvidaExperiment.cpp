#include "analysis/CorvidaExperiment.h"

#include "analysis/EnvelopeOnsetDetector.h"
#include "analysis/ExperimentFiles.h"
#include "analysis/OpenArteryHeartRate.h"
#include "analysis/PeakFinder.h"
#include "settings/AbstractMetaDescription.h"
#include "storage/RecordFileNames.h"
#include "toolkit/GenericText.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <cmath>

namespace {
// Markers earlier than this are not believed: the cuff has not even finished inflating.
constexpr double kEarliestMarker = 4.0;
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

bool CorvidaExperiment::updateRecordingMarks(QString *error)
{
    return ExperimentFiles(*this).updateRecordingMarks(error);
}

bool CorvidaExperiment::save(const QString &folder, QString *error)
{
    return ExperimentFiles(*this).save(folder, error);
}

bool CorvidaExperiment::saveProperties(QString *error)
{
    if (!VTSettings::save()) {
        if (error)
            *error = ExperimentFiles::saveFailedText(getFilepath(), QString());
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
    m_loading = true;
    if (!ExperimentFiles(*this).readSeries()) {
        m_loading = false;
        return;
    }
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
    endMarkerBatch();
    if (reset)
        emit bpResetted();
}

void CorvidaExperiment::endMarkerBatch()
{
    --m_markerBatch;
    if (m_markerBatch == 0 && m_markersPending) {
        m_markersPending = false;
        markerTimeChanged();
    }
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
    findBeats();
    if (m_beats.size() > 2 || usesRefinedMethod()) {
        const QPair<double, double> found = automaticMarkers();
        // A complete marker pair is the operator's or an earlier run's: it stays.
        if (m_SBP == 0.0 || m_SBPTime == 0.0)
            setSBPTime(found.first);
        if (m_DBP == 0.0 || m_DBPTime == 0.0)
            setDBPTime(found.second);
    }
}

void CorvidaExperiment::findBeats()
{
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
}

QPair<double, double> CorvidaExperiment::automaticMarkers()
{
    m_detectionNote.clear();
    if (usesRefinedMethod())
        return refinedMarkers();
    return m_beats.size() > 2 ? documentedMarkers() : QPair<double, double>(0.0, 0.0);
}

bool CorvidaExperiment::changeMethod(const QString &Method)
{
    const QString wanted = Method == refinedMethod() ? Method : QString();
    if (wanted == m_Method)
        return false;
    findBeats();
    // A marker where the record's own way puts it was placed by that way and moves to where the
    // new way puts it; one anywhere else was placed by hand and stays. Times read back from a
    // file may differ from the found ones by the rounding of the file.
    const QPair<double, double> before = automaticMarkers();
    const auto byHand = [](double time, double found) {
        return time > 0.0 && std::abs(time - found) > 0.002;
    };
    const bool systolicByHand = byHand(m_SBPTime, before.first);
    const bool diastolicByHand = byHand(m_DBPTime, before.second);
    ++m_markerBatch;
    setMethod(wanted);
    const QPair<double, double> found = automaticMarkers();
    if (!systolicByHand)
        setSBPTime(found.first);
    if (!diastolicByHand)
        setDBPTime(found.second);
    endMarkerBatch();
    return systolicByHand || diastolicByHand;
}

QString CorvidaExperiment::methodText(bool refined)
{
    return refined ? genericText(QT_TRANSLATE_NOOP("Generic", "Refined"))
                   : genericText(QT_TRANSLATE_NOOP("Generic", "Documented"));
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
    // The refined way counts the rate over the open artery's beats only; without a systolic
    // point there is no telling those apart, and the peak finder's rate stays.
    if (r.systolicTime > 0) {
        const double rate =
            OpenArteryHeartRate::estimate(m_amplitude, m_pressure, m_samplingRate,
                                          r.surelyOpenBelow);
        if (rate > 0)
            setBPM(rate);
    }
    return {r.systolicTime, r.diastolicTime};
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
