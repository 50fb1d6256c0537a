#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>

class CorvidaExperiment;

// A record's files: reads the series and marks of the ".edf" recording, puts a record on disk as
// the ".edf" and ".exp" pair, and later keeps the "SBP" and "DBP" marks inside the recording in
// step with the record's markers. It works on the record it is given and holds nothing of its
// own between calls.
class ExperimentFiles
{
public:
    explicit ExperimentFiles(CorvidaExperiment &record)
        : m_record(record)
    {}

    // Writes "<folder>/<base name>.edf" and ".exp" without ever replacing a record already in
    // the folder; on failure nothing of the new pair remains and `error` says why.
    bool save(const QString &folder, QString *error);

    // Rewrites the marks of the recording when they differ from the markers.
    bool updateRecordingMarks(QString *error);

    // Reads the "SBP" and "DBP" marks of the recording into the record.
    bool readRecordingMarks();

    // Reads the pressure and pulse series, the rate, the start and the marks of the recording
    // into the record. False when there is no readable recording with those two channels.
    bool readSeries();

    // The mark texts of the two markers inside a recording.
    static QString systolicMark() { return QStringLiteral("SBP"); }
    static QString diastolicMark() { return QStringLiteral("DBP"); }

    // The operator's words for a write that failed, with the path and, when known, why; a
    // nearly full disk is named as the reason.
    static QString saveFailedText(const QString &path, const QString &why);

private:
    bool writeEdf(const QString &edfPath, const QString &writePath, QString *error);
    static QString cannotOpenText(const QString &edfPath);
    // The SBP and DBP onsets (ms) the markers ask for; -1 for a marker that is not set.
    QPair<qint64, qint64> wantedMarks() const;
    void storeMarks(const QMap<qint64, QString> &marks);

    CorvidaExperiment &m_record;
};
