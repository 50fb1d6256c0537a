#pragma once

#include "settings/VTSettings.h"

#include <QDateTime>
#include <QList>
#include <QPointF>
#include <QVariant>

class PeakFinder;

// One blood-pressure measurement: who was measured and when, the cuff pressure and pulse series,
// the systolic and diastolic markers with their pressures, and the mean heart rate.
//
// On disk a record is two files with one base name: "<name>.exp" holds the properties below
// (written by the settings store), "<name>.edf" holds the series and the markers as marks. The
// series are read from the ".edf" file on first use. Zero means "not set" for every marker value.
class CorvidaExperiment : public VTSettings
{
    Q_OBJECT

    Q_PROPERTY(QString Rodent READ getRodent WRITE setRodent RESET resetRodent NOTIFY changedRodent)
    Q_CLASSINFO("RodentNoDefault", "true")
    Q_CLASSINFO("RodentEditable", "true")
    Q_PROPERTY(
        QString Comment READ getComment WRITE setComment RESET resetComment NOTIFY changedComment)
    Q_CLASSINFO("CommentNoDefault", "true")
    Q_CLASSINFO("CommentEditable", "true")
    Q_PROPERTY(double SBP READ getSBP WRITE setSBP RESET resetSBP NOTIFY changedSBP)
    Q_CLASSINFO("SBPDefault", "0")
    Q_CLASSINFO("SBPEditable", "true")
    // The marker times are read from the file as plain values; setSBPTime() and setDBPTime()
    // also look up the pressure.
    Q_PROPERTY(
        double SBPTime READ getSBPTime WRITE storeSBPTime RESET resetSBPTime NOTIFY changedSBPTime)
    Q_CLASSINFO("SBPTimeDefault", "0")
    Q_CLASSINFO("SBPTimeEditable", "true")
    Q_PROPERTY(double DBP READ getDBP WRITE setDBP RESET resetDBP NOTIFY changedDBP)
    Q_CLASSINFO("DBPDefault", "0")
    Q_CLASSINFO("DBPEditable", "true")
    Q_PROPERTY(
        double DBPTime READ getDBPTime WRITE storeDBPTime RESET resetDBPTime NOTIFY changedDBPTime)
    Q_CLASSINFO("DBPTimeDefault", "0")
    Q_CLASSINFO("DBPTimeEditable", "true")
    Q_PROPERTY(double BPM READ getBPM WRITE setBPM RESET resetBPM NOTIFY changedBPM)
    Q_CLASSINFO("BPMDefault", "0")
    Q_CLASSINFO("BPMEditable", "true")
    Q_PROPERTY(QString SN READ getSN WRITE setSN RESET resetSN NOTIFY changedSN)
    Q_CLASSINFO("SNDefault", "\"\"")
    Q_CLASSINFO("SNEditable", "true")
    // Set when the unit had no usable pressure calibration: the pressures are sensor values, not
    // mmHg. Written only when set, so records measured with a calibration keep their old form.
    Q_PROPERTY(
        bool Uncalibrated READ isUncalibrated WRITE setUncalibrated NOTIFY changedUncalibrated)
    Q_CLASSINFO("UncalibratedNoDefault", "true")
    Q_CLASSINFO("UncalibratedNotVisible", "true")
    // A record measured as one cycle of a session carries the session's identity, its place in
    // it and its verdict. None of these is written for an ordinary record, so its file stays as
    // it always was.
    Q_PROPERTY(
        QString Session READ getSession WRITE setSession RESET resetSession NOTIFY changedSession)
    Q_CLASSINFO("SessionNoDefault", "true")
    Q_CLASSINFO("SessionEditable", "true")
    Q_PROPERTY(qint32 Cycle READ getCycle WRITE setCycle RESET resetCycle NOTIFY changedCycle)
    Q_CLASSINFO("CycleNoDefault", "true")
    Q_CLASSINFO("CycleEditable", "true")
    Q_PROPERTY(bool Acclimation READ getAcclimation WRITE setAcclimation RESET resetAcclimation
                   NOTIFY changedAcclimation)
    Q_CLASSINFO("AcclimationNoDefault", "true")
    Q_CLASSINFO("AcclimationEditable", "true")
    // Whether a regular pulse was seen before the cuff was inflated.
    Q_PROPERTY(bool PulseBefore READ getPulseBefore WRITE setPulseBefore RESET resetPulseBefore
                   NOTIFY changedPulseBefore)
    Q_CLASSINFO("PulseBeforeNoDefault", "true")
    Q_CLASSINFO("PulseBeforeEditable", "true")
    // The automatic verdict and, when rejected, why.
    Q_PROPERTY(
        bool Accepted READ getAccepted WRITE setAccepted RESET resetAccepted NOTIFY changedAccepted)
    Q_CLASSINFO("AcceptedNoDefault", "true")
    Q_CLASSINFO("AcceptedEditable", "true")
    Q_PROPERTY(QString Reason READ getReason WRITE setReason RESET resetReason NOTIFY changedReason)
    Q_CLASSINFO("ReasonNoDefault", "true")
    Q_CLASSINFO("ReasonEditable", "true")
    // How many measurement cycles the session was to run: fewer records say it stopped early.
    Q_PROPERTY(
        qint32 Planned READ getPlanned WRITE setPlanned RESET resetPlanned NOTIFY changedPlanned)
    Q_CLASSINFO("PlannedNoDefault", "true")
    Q_CLASSINFO("PlannedEditable", "true")
    // The operator's own verdict (an OperatorVerdict), which outlasts every automatic one.
    Q_PROPERTY(
        qint32 Verdict READ getVerdict WRITE setVerdict RESET resetVerdict NOTIFY changedVerdict)
    Q_CLASSINFO("VerdictNoDefault", "true")
    Q_CLASSINFO("VerdictEditable", "true")
    // How the markers are found: empty for the long-standing way, "refined" for the line through
    // the rising pulse envelope. Written only for the refined way, so other records keep their
    // form, and a recalculation keeps the record's own way.
    Q_PROPERTY(QString Method READ getMethod WRITE setMethod RESET resetMethod NOTIFY changedMethod)
    Q_CLASSINFO("MethodNoDefault", "true")
    Q_CLASSINFO("MethodNotVisible", "true")

public:
    enum OperatorVerdict { VerdictAutomatic = 0, VerdictAccepted = 1, VerdictRejected = 2 };

    explicit CorvidaExperiment(QObject *parent = nullptr);
    // A stored record: its ".exp" path; the series are read from the ".edf" beside it on first use.
    explicit CorvidaExperiment(const QString &settingsPath, QObject *parent = nullptr);
    ~CorvidaExperiment() override;

    QString getRodent() const { return m_Rodent; }
    QString getComment() const { return m_Comment; }
    double getSBP() const { return m_SBP; }
    double getSBPTime() const { return m_SBPTime; }
    double getDBP() const { return m_DBP; }
    double getDBPTime() const { return m_DBPTime; }
    double getBPM() const { return m_BPM; }
    QString getSN() const { return m_SN; }
    bool isUncalibrated() const { return m_Uncalibrated; }
    // "mmHg", or a note that the pressures are uncalibrated sensor values.
    QString pressureUnitText() const;
    QString getSession() const { return m_Session; }
    qint32 getCycle() const { return m_Cycle; }
    bool getAcclimation() const { return m_Acclimation; }
    bool getPulseBefore() const { return m_PulseBefore; }
    bool getAccepted() const { return m_Accepted; }
    QString getReason() const { return m_Reason; }
    qint32 getVerdict() const { return m_Verdict; }
    qint32 getPlanned() const { return m_Planned; }
    QString getMethod() const { return m_Method; }
    static QString refinedMethod() { return QStringLiteral("refined"); }
    bool usesRefinedMethod() const { return m_Method == refinedMethod(); }
    // The way's name for the operator: "Documented" or "Refined", translated.
    static QString methodText(bool refined);
    QString methodText() const { return methodText(usesRefinedMethod()); }
    // Why the last recalculation placed no markers, when the refined way found no pulse.
    QString detectionNote() const { return m_detectionNote; }

    bool isSessionCycle() const { return !m_Session.isEmpty(); }
    // The verdict that counts: the operator's when there is one, the automatic one otherwise.
    bool isAccepted() const
    {
        return m_Verdict == VerdictAutomatic ? m_Accepted : m_Verdict == VerdictAccepted;
    }
    // What the lists show beside the verdict: the reason of a rejection, or that the operator
    // decided.
    QString verdictText() const;
    // Mean arterial pressure, DBP + (SBP - DBP) / 3; 0 unless both pressures are set.
    double meanArterialPressure() const
    {
        return m_SBP > 0 && m_DBP > 0 ? m_DBP + (m_SBP - m_DBP) / 3.0 : 0.0;
    }

    QDateTime startDateTime() const { return m_startDateTime; }
    void setStartDateTime(const QDateTime &start) { m_startDateTime = start; }
    bool nameWithSerial() const { return m_nameWithSerial; }

    // The series; the first three read the ".edf" file when they are still empty.
    QList<double> getPressure();
    QList<double> getPulse();
    double getSamplingRate();
    QList<QList<double>> rawChannels() const { return m_raw; }
    QList<int> beats() const { return m_beats; }
    QList<int> valleys() const { return m_valleys; }
    QList<QPointF> heartRateSeries() const { return m_heartRate; }
    QList<QPointF> amplitudeSeries() const { return m_amplitude; }
    PeakFinder *peakFinder() const { return m_peakFinder; }

    // Cuff pressure at t seconds (sample index t x rate, truncated); 0 outside the series.
    double pressureAt(double t);

    // "120/80"; a value of 0 or less is "?", and "?" alone when both are 0. A record without
    // a pressure calibration says so after the values.
    QString bpText() const;
    // The file name of the ".exp" file, or "?" for a record that has none yet.
    QString listLabel() const;
    // The start as a file-name text, with " (<SN>)" when the name carries the serial number.
    QString baseFileName() const;

    // Writes "<folder>/<base name>.edf" and ".exp". A record already in the folder is never
    // replaced: when its name is taken (in any case), the new one becomes "<base name> (2)",
    // "(3)" and so on. On failure nothing of the new pair remains, the record is as it was, and
    // `error` (when given) says why in words for the operator, with the path.
    bool save(const QString &folder, QString *error = nullptr);

    // Writes the ".exp" file now (its path must be set), and brings the marks in the recording
    // in step with the markers when they differ.
    bool saveProperties(QString *error = nullptr);

    // The recording: "<base>.edf" beside the ".exp" file, unless another path was given (a file
    // named "NAME.EDF" on a file system that minds case).
    QString recordingPath() const;
    void setRecordingPath(const QString &edfPath);

    // Makes the "SBP" and "DBP" marks in the recording say what the markers say, so other EDF+
    // readers see the current markers and a cleared marker cannot come back. Rewrites the
    // recording (its samples byte for byte) only when the marks differ. True when they agree
    // afterwards, or when there is no recording to keep in step.
    bool updateRecordingMarks(QString *error = nullptr);

    // Finds the beats, the heart rate and the markers again. Markers that are set (both time and
    // pressure non-zero) are kept unless `reset` clears them first.
    void recalculate(bool reset);

    // Makes `Method` the record's way and lets it place the markers again. Markers placed by
    // hand stay where they are; those the old way placed (or none) take the new way's places.
    // Returns whether a marker stayed: one the old way does not put where it is (placed by
    // hand, or during the measurement on the series as it was then).
    bool changeMethod(const QString &Method);

    // The result rows, and unless `essentialOnly` the sampling rate and every sample.
    QList<QList<QVariant>> exportTable(bool essentialOnly);

public slots:
    void setRodent(const QString &Rodent);
    void setComment(const QString &Comment);
    void setSBP(double SBP);
    // Sets the marker time and the pressure found at that time.
    void setSBPTime(double SBPTime);
    void setDBP(double DBP);
    void setDBPTime(double DBPTime);
    void setBPM(double BPM);
    void setSN(const QString &SN);
    void setUncalibrated(bool on);
    void setSession(const QString &Session);
    void setCycle(qint32 Cycle);
    void setAcclimation(bool Acclimation);
    void setPulseBefore(bool PulseBefore);
    void setAccepted(bool Accepted);
    void setReason(const QString &Reason);
    void setVerdict(qint32 Verdict);
    void setPlanned(qint32 Planned);
    // "" or refinedMethod(); anything else is taken for the long-standing way.
    void setMethod(const QString &Method);
    void resetRodent();
    void resetComment();
    void resetSBP();
    void resetSBPTime();
    void resetDBP();
    void resetDBPTime();
    void resetBPM();
    void resetSN();
    void resetSession() { setSession(QString()); }
    void resetCycle() { setCycle(0); }
    void resetAcclimation() { setAcclimation(false); }
    void resetPulseBefore() { setPulseBefore(false); }
    void resetAccepted() { setAccepted(false); }
    void resetReason() { setReason(QString()); }
    void resetVerdict() { setVerdict(VerdictAutomatic); }
    void resetPlanned() { setPlanned(0); }
    void resetMethod() { setMethod(QString()); }

signals:
    void changedRodent(QString Rodent);
    void changedComment(QString Comment);
    void changedSBP(double SBP);
    void changedSBPTime(double SBPTime);
    void changedDBP(double DBP);
    void changedDBPTime(double DBPTime);
    void changedBPM(double BPM);
    void changedSN(QString SN);
    void changedUncalibrated(bool on);
    void changedSession(QString Session);
    void changedCycle(qint32 Cycle);
    void changedAcclimation(bool Acclimation);
    void changedPulseBefore(bool PulseBefore);
    void changedAccepted(bool Accepted);
    void changedReason(QString Reason);
    void changedVerdict(qint32 Verdict);
    void changedPlanned(qint32 Planned);
    void changedMethod(QString Method);
    void bpResetted();
    void dataUpdated();

protected:
    // Reads the series and the markers missing from the ".exp" file out of the ".edf" file.
    virtual void loadSeries();
    void setNameWithSerialFlag(bool on) { m_nameWithSerial = on; }
    void clearSeries();

    QDateTime m_startDateTime;
    double m_samplingRate = 0.0;
    QList<double> m_pressure;
    QList<double> m_pulse;
    QList<QList<double>> m_raw; // MPX, AC, DC, IR when recorded live
    PeakFinder *m_peakFinder = nullptr;

private:
    // Writing the record's files is a job of its own; it reads and updates the fields below.
    friend class ExperimentFiles;

    // Stores a marker time as it is, without reading the series for its pressure: reading a
    // record's ".exp" file must not load its recording.
    void storeSBPTime(double SBPTime);
    void storeDBPTime(double DBPTime);
    template <typename T, typename Signal>
    void assign(T &member, const T &value, Signal signal, const char *name);
    void setMarkerTime(double &time, double &pressure, double t, bool systolic);
    void recalculateMarkers(bool reset);
    void endMarkerBatch();
    // The beats, heart-rate and amplitude series and the mean heart rate, found anew.
    void findBeats();
    // Where the record's own way puts the markers in the current beats (0: not found).
    QPair<double, double> automaticMarkers();
    // The systolic and diastolic times the record's method finds in the current beats.
    QPair<double, double> documentedMarkers();
    QPair<double, double> refinedMarkers();
    void ensurePeakFinder();
    void ensureSeries();
    double markerPressure(double t);
    void clearMarker(double &value, void (CorvidaExperiment::*signal)(double), const char *name);
    // Called whenever a marker time changes: with automatic saving on, the recording follows.
    void markerTimeChanged();
    bool propertiesFileHolds(const QString &name) const;

    QString m_Rodent;
    QString m_Comment;
    double m_SBP = 0.0;
    double m_SBPTime = 0.0;
    double m_DBP = 0.0;
    double m_DBPTime = 0.0;
    double m_BPM = 0.0;
    QString m_SN;
    bool m_Uncalibrated = false;
    QString m_Session;
    qint32 m_Cycle = 0;
    bool m_Acclimation = false;
    bool m_PulseBefore = false;
    bool m_Accepted = false;
    QString m_Reason;
    qint32 m_Verdict = VerdictAutomatic;
    qint32 m_Planned = 0;
    QString m_Method;
    QString m_detectionNote;

    QList<int> m_beats;
    QList<int> m_valleys;
    QList<QPointF> m_heartRate;
    QList<QPointF> m_amplitude;
    bool m_nameWithSerial = false;
    bool m_loading = false;

    QString m_recordingPath;
    // The first "SBP" and "DBP" marks in the recording as last read or written (-1: none), and
    // whether they are known at all.
    QList<qint64> m_sbpMarks;
    QList<qint64> m_dbpMarks;
    bool m_marksKnown = false;
    // While a recalculation moves several markers, the recording is written once at its end.
    int m_markerBatch = 0;
    bool m_markersPending = false;
};
