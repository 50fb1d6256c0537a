#pragma once

#include "storage/ChannelDim.h"
#include "storage/PatientInfo.h"
#include "toolkit/VClock.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QString>
#include <QStringList>

class Montage;

// Writes a multi-channel float recording with text marks into one EDF+ file, or a BDF+ file
// when the path ends in ".bdf". One data record is one second, so samples per record is the
// sampling rate. Samples are stored negated; EDFReader negates them back.
class EDFWriter : public QObject
{
    Q_OBJECT
public:
    explicit EDFWriter(QObject *parent = nullptr);
    // Each range r gives a signal the physical range -r ... +r. Opens the file at once.
    EDFWriter(const QString &path, const QStringList &labels, int samplesPerRecord,
              const PrefilterMap &prefilter, const QList<double> &ranges,
              VClock::Source clock = VClock::wall(), QObject *parent = nullptr);
    // Opens the file at once.
    EDFWriter(const QString &path, const QList<ChannelDim> &channels, int samplesPerRecord,
              VClock::Source clock = VClock::wall(), QObject *parent = nullptr);
    ~EDFWriter() override;

    static bool isFilenameBDF(const QString &path);

    // Takes the signal descriptions, sizes the record buffer and opens the file.
    bool initFromChannels(const QList<ChannelDim> &channels, int samplesPerRecord);
    bool open();
    // True when every data record and the header reached the file: the library finished it
    // without error and the file holds exactly the bytes its header declares.
    bool close(bool writeRemainder = true);
    bool isOpen() const { return m_open; }

    void setClock(VClock::Source clock) { m_clock = std::move(clock); }
    void setPatientInfo(const PatientInfo &info);
    const PatientInfo &patientInfo() const { return m_patient; }
    QString getPatientName() const { return m_patient.patientName; }

    void takeStartTime(qint64 ms);
    void resetStartTime();
    void pauseRecord();
    void continueRecord();
    bool isPaused() const { return m_paused; }
    // Milliseconds of recording so far, not counting pauses.
    qint64 recordedTimeMs() const;

    // count samples of every signal, signal after signal.
    void writeData(int count, const float *data);
    // All samples of signal 0, then all of signal 1, ...
    void writeData(const QList<float> &data);
    // One list per signal, all of one length.
    void writeData(const QList<QList<float>> &data);

    // Onset in ms of recorded time; a negative time means "now". Returns the onset written, or
    // -1 when the file is not open or the library refused the mark.
    int addAnnotation(const QString &text, int timeMs = -1, int durationMs = -1);
    // A mark at the current recorded time. (written, onset ms)
    QPair<bool, qint64> addAnnotationR(const QString &text);
    qint64 lastMarkTime() const { return m_lastMarkTime; }

    // Writes what is buffered as one zero-padded record and starts counting from zero.
    void clearShift();
    float getDurationSeconds() const { return float(m_records); }
    qint64 recordCount() const { return m_records; }
    int signalCount() const { return m_signals; }
    int samplesPerRecord() const { return m_samplesPerRecord; }
    bool isBDF() const { return m_bdf; }

    QString path() const { return m_path; }
    void setPath(const QString &path) { m_path = path; }
    const QList<ChannelDim> &channels() const { return m_channels; }

    // These describe the signals of the next file opened; they do not change an open one.
    void setChannelLabels(const QStringList &labels);
    void setChannelLabels(const Montage &montage);
    void setChannelPhysicalDimensions(const QList<double> &ranges);
    void setChannelPhysicalDimensions(const QList<QPair<double, double>> &ranges);
    void setPrefilter(const PrefilterMap &prefilter);
    void setInternalBuffSize(int samplesPerRecord, unsigned signalCount);

    static QByteArray prefilterHeader(const PrefilterMap &prefilter);
    static QByteArray labelHeader(const QString &label);
    // An identification text as the header stores it: ASCII, transliterated.
    static QByteArray headerText(const QString &text);

signals:
    void recordStarted(QString path);
    void recordStopped(QString path);
    void recordDurationChanged(int records);

private:
    void initCurrentFile();
    void writePatientInfo();
    // count samples of every signal; signalData[s] points at those of signal s.
    void appendSamples(int count, const float *const *signalData);
    void writeRecord();
    void writeRemainderToFile();
    bool fileIsComplete() const;
    qint64 now() const { return m_clock ? m_clock() : VClock::wall()(); }

    QString m_path;
    bool m_open = false;
    int m_handle = -1;
    int m_signals = 0;
    int m_samplesPerRecord = 0;
    bool m_bdf = false;
    // One data record of stored steps, signal after signal: 16-bit for EDF+, whole numbers for
    // BDF+. Only the one the file type needs is allocated.
    QList<int> m_buffer;
    QList<qint16> m_shortBuffer;
    // Per signal: digital = physical * scale - offset.
    QList<double> m_scale;
    QList<double> m_offset;
    int m_filled = 0;
    qint64 m_records = 0;
    qint64 m_recordsOnDisk = 0;
    bool m_writeFailed = false;

    VClock::Source m_clock;
    qint64 m_segmentStart = 0;
    qint64 m_recordedBefore = 0;
    bool m_paused = false;
    qint64 m_lastMarkTime = 0;

    QList<ChannelDim> m_channels;
    PatientInfo m_patient;
    bool m_patientSet = false;
    PrefilterMap m_prefilter;
};
