#pragma once

#include "storage/ChannelDim.h"
#include "storage/Montage.h"
#include "storage/PatientInfo.h"

#include <QDateTime>
#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <edflib.h>
#include <memory>

class QTemporaryFile;

// Opens an EDF(+) or BDF(+) file and offers its identification, its signals as physical values
// and its marks. Samples come back negated, which undoes the inversion EDFWriter applies, so
// callers get the values that were handed to the writer.
class EDFReader : public QObject
{
    Q_OBJECT
public:
    explicit EDFReader(QObject *parent = nullptr);
    explicit EDFReader(const QString &path, QObject *parent = nullptr);
    ~EDFReader() override;

    void setPath(const QString &path) { m_path = path; }
    QString path() const { return m_path; }
    bool open() { return internalOpen(); }
    void close();
    bool isFileOpened() const { return m_opened; }

    // The library's view of the file; meaningful only while open.
    const edf_hdr_struct &edfHeader() const { return *m_header; }
    QFileInfo fileInfo() const { return QFileInfo(m_path); }
    PatientInfo patientInfo() const { return m_patient; }
    MontagePtr getFileMontage() const { return m_montage; }

    int signalCount() const { return m_signals; }
    float getSamplingRate() const { return m_samplingRate; }
    int samplesPerRecord() const { return m_samplesPerRecord; }
    // Samples of the first signal.
    qint64 samplesInFile() const { return m_samplesInFile; }
    QString physicalDimension() const { return m_physicalDimension; }
    double durationSeconds() const { return m_duration; }
    QDateTime startDateTime() const { return m_start; }
    PrefilterMap prefilter() const { return m_prefilter; }

    QStringList getChannelNames() const;
    QString getChannelName(int channel) const;

    // count samples of every signal from start on, signal after signal, into buffer.
    // 0 when all were read, -1 on the first failed seek or read, -2 when not open.
    int getBuffData(qint64 start, int count, double *buffer);
    // 0, -1 on a failed seek or read, -2 when not open or no such channel.
    int getChannelBuffData(int channel, qint64 start, int count, double *buffer);
    // count values; zeros where nothing could be read.
    QList<double> getChannelData(int channel, qint64 start, int count);
    QList<float> getChannelDataFloat(int channel, qint64 start, int count);

    // Onset in ms of recorded time to text. Marks within one millisecond get consecutive keys,
    // so none is lost and their order is kept.
    QMap<qint64, QString> getAnnotations() const;
    const QList<edf_annotation_struct> &getAnnotationList() const { return m_annotations; }
    bool takeCurrentAnnotations();

    QString infoShort() const;
    QString infoFull() const;

    static QString errorText(int libraryError);

private:
    bool internalOpen();
    bool openThroughLibrary(const QString &path, int *error);
    bool makeRepairedCopy(const QByteArray &header);
    void readHeaderDetails();
    bool readSignal(int channel, qint64 start, int count, double *buffer);

    QString m_path;
    bool m_opened = false;
    int m_handle = -1;
    std::unique_ptr<edf_hdr_struct> m_header;
    std::unique_ptr<QTemporaryFile> m_repairedCopy;

    int m_signals = 0;
    float m_samplingRate = 0.0f;
    int m_samplesPerRecord = 0;
    qint64 m_samplesInFile = 0;
    QString m_physicalDimension;
    double m_duration = 0.0;
    QDateTime m_start;
    PatientInfo m_patient;
    PrefilterMap m_prefilter;
    MontagePtr m_montage;
    QList<edf_annotation_struct> m_annotations;
};
