#include "analysis/ExperimentFiles.h"

#include "analysis/CorvidaExperiment.h"
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

namespace {
// The pressure and pulse channels share the 16-bit range of the raw channels: 32767 / 4 mmHg and
// 32767 x 3.6 / 65536 V.
constexpr double kPressureRange = 8191.75;
constexpr double kPulseRange = 1.799945068359375;
constexpr double kRawRange = 32767.0;
// Volts per count of the pulse sensor (3.6 / 65536) and of the IR channel (2.64 / 65536).
constexpr double kPulseVoltsPerCount = 0.000054931640625;
constexpr double kIrVoltsPerCount = 0.000040283203125;
// Below this much free space a failed write is taken for a full disk.
constexpr qint64 kFullDiskBytes = 1 << 20;

// A marker time as the onset of its mark in whole milliseconds, cut toward zero. A time read
// back from a mark (ms / 1000) times 1000 may land a hair below the whole number; the small
// allowance keeps such a marker on its own millisecond instead of moving it back by one.
qint64 markOnset(double seconds)
{
    return qint64(seconds * 1000.0 + 1e-6);
}
} // namespace

QPair<qint64, qint64> ExperimentFiles::wantedMarks() const
{
    return {m_record.m_SBPTime > 0 ? markOnset(m_record.m_SBPTime) : -1,
            m_record.m_DBPTime > 0 ? markOnset(m_record.m_DBPTime) : -1};
}

bool ExperimentFiles::readRecordingMarks()
{
    EDFReader reader(m_record.recordingPath());
    if (!reader.open())
        return false;
    storeMarks(reader.getAnnotations());
    return true;
}

void ExperimentFiles::storeMarks(const QMap<qint64, QString> &marks)
{
    m_record.m_sbpMarks.clear();
    m_record.m_dbpMarks.clear();
    for (auto it = marks.cbegin(); it != marks.cend(); ++it) {
        if (it.value() == systolicMark())
            m_record.m_sbpMarks << it.key();
        else if (it.value() == diastolicMark())
            m_record.m_dbpMarks << it.key();
    }
    m_record.m_marksKnown = true;
}

bool ExperimentFiles::readSeries()
{
    const QString edfPath = m_record.recordingPath();
    if (edfPath.isEmpty() || !QFile::exists(edfPath))
        return false;
    EDFReader reader(edfPath);
    if (!reader.open() || reader.samplesInFile() < 1)
        return false;
    const QStringList names = reader.getChannelNames();
    const int pressureChannel = int(names.indexOf(QStringLiteral("Pressure")));
    const int pulseChannel = int(names.indexOf(QStringLiteral("Pulse")));
    if (pressureChannel < 0 || pulseChannel < 0)
        return false;
    m_record.m_samplingRate = reader.getSamplingRate();
    if (reader.startDateTime().isValid())
        m_record.m_startDateTime = reader.startDateTime();
    const qint64 n = reader.samplesInFile();
    // The file holds the series negated once more than the reader undoes; see writeEdf().
    m_record.m_pressure = reader.getChannelData(pressureChannel, 0, int(n));
    for (double &v : m_record.m_pressure)
        v = -v;
    m_record.m_pulse = reader.getChannelData(pulseChannel, 0, int(n));
    for (double &v : m_record.m_pulse)
        v = -v;
    storeMarks(reader.getAnnotations());
    return true;
}

bool ExperimentFiles::updateRecordingMarks(QString *error)
{
    const QString edfPath = m_record.recordingPath();
    if (edfPath.isEmpty() || !QFile::exists(edfPath))
        return true;
    if (!m_record.m_marksKnown && !readRecordingMarks()) {
        // A recording we cannot read is left exactly as it is.
        if (error)
            *error = saveFailedText(
                edfPath,
                QCoreApplication::translate("CorvidaExperiment", "the recording cannot be read"));
        return false;
    }
    const QPair<qint64, qint64> wanted = wantedMarks();
    const QList<qint64> sbp = wanted.first >= 0 ? QList<qint64>{wanted.first} : QList<qint64>();
    const QList<qint64> dbp = wanted.second >= 0 ? QList<qint64>{wanted.second} : QList<qint64>();
    if (sbp == m_record.m_sbpMarks && dbp == m_record.m_dbpMarks)
        return true;
    QList<EDFMarkRewriter::Mark> marks;
    if (wanted.first >= 0)
        marks << EDFMarkRewriter::Mark(systolicMark(), wanted.first);
    if (wanted.second >= 0)
        marks << EDFMarkRewriter::Mark(diastolicMark(), wanted.second);
    QString why;
    if (!EDFMarkRewriter::replaceMarks(edfPath, {systolicMark(), diastolicMark()}, marks, &why)) {
        qDebug().noquote() << "RECORD: the marks of" << edfPath << "were not updated -" << why;
        if (error)
            *error = saveFailedText(edfPath, why);
        return false;
    }
    m_record.m_sbpMarks = sbp;
    m_record.m_dbpMarks = dbp;
    return true;
}

bool ExperimentFiles::writeEdf(const QString &edfPath, const QString &writePath, QString *error)
{
    const qsizetype n = std::min(m_record.m_pressure.size(), m_record.m_pulse.size());
    const bool withRaw = m_record.m_raw.size() == 4 && m_record.m_raw.first().size() >= n &&
                         m_record.m_raw[1].size() >= n && m_record.m_raw[2].size() >= n &&
                         m_record.m_raw[3].size() >= n;
    QList<ChannelDim> channels = {ChannelDim(QStringLiteral("Pressure"), kPressureRange),
                                  ChannelDim(QStringLiteral("Pulse"), kPulseRange)};
    if (withRaw) {
        for (const char *name : {"MPX", "AC", "DC", "IR"})
            channels << ChannelDim(QString::fromLatin1(name), kRawRange);
    }

    const qint64 startMs = m_record.m_startDateTime.toMSecsSinceEpoch();
    EDFWriter writer(writePath, channels, int(m_record.m_samplingRate),
                     [startMs] { return startMs; });
    PatientInfo info;
    info.patientName = m_record.m_Rodent;
    info.equipment = m_record.m_SN;
    info.recordingAdditional = m_record.m_Comment;
    const QDate date = m_record.m_startDateTime.date();
    const QTime time = m_record.m_startDateTime.time();
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
            block[0][i] = float(-m_record.m_pressure[k]);
            block[1][i] = float(-m_record.m_pulse[k]);
            if (withRaw) {
                block[2][i] = float(-m_record.m_raw[0][k] * 4.0);
                block[3][i] = float(-m_record.m_raw[1][k] / kPulseVoltsPerCount);
                block[4][i] = float(-m_record.m_raw[2][k] / kPulseVoltsPerCount);
                block[5][i] = float(-m_record.m_raw[3][k] / kIrVoltsPerCount);
            }
        }
        writer.writeData(block);
    }
    bool marked = true;
    const QPair<qint64, qint64> marks = wantedMarks();
    if (marks.first >= 0)
        marked &= writer.addAnnotation(systolicMark(), int(marks.first), -1) >= 0;
    if (marks.second >= 0)
        marked &= writer.addAnnotation(diastolicMark(), int(marks.second), -1) >= 0;
    if (!writer.close(true) || !marked) {
        if (error)
            *error = saveFailedText(edfPath, QString());
        return false;
    }
    return true;
}

QString ExperimentFiles::cannotOpenText(const QString &edfPath)
{
    return genericText(QT_TRANSLATE_NOOP("Generic", "Cannot open")) + QStringLiteral(" \"") +
           edfPath + QStringLiteral("\" ") +
           genericText(QT_TRANSLATE_NOOP("Generic", "for record"));
}

QString ExperimentFiles::saveFailedText(const QString &path, const QString &why)
{
    QString reason = why;
    const QStorageInfo disk(QFileInfo(path).absolutePath());
    if (disk.isValid() && disk.bytesAvailable() >= 0 && disk.bytesAvailable() < kFullDiskBytes)
        reason = QCoreApplication::translate("CorvidaExperiment", "the disk is full");
    QString text =
        QCoreApplication::translate("CorvidaExperiment", "The record could not be written to") +
        QStringLiteral(" \"") + QDir::toNativeSeparators(path) + QLatin1Char('"');
    if (!reason.isEmpty())
        text += QStringLiteral(": ") + reason;
    return text;
}

bool ExperimentFiles::save(const QString &folder, QString *error)
{
    const qsizetype n = std::min(m_record.m_pressure.size(), m_record.m_pulse.size());
    if (m_record.m_samplingRate < 1.0) {
        if (error)
            *error = genericText(QT_TRANSLATE_NOOP("Generic", "Invalid sampling rate"));
        return false;
    }
    if (m_record.m_samplingRate > double(n)) {
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
        base = dir + RecordFileNames::freeBaseName(taken, m_record.baseFileName());
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

    const QString previousPath = m_record.getFilepath();
    const bool previousAutoSave = m_record.getAutoSave();
    const QString previousRecording = m_record.m_recordingPath;
    m_record.m_recordingPath.clear();
    m_record.setFilepath(expPath);
    m_record.setAutoSave(true);
    bool ok = m_record.VTSettings::save();
    if (!ok)
        why = saveFailedText(expPath, QString());
    else if (!FileUtilities::renameNoReplace(partPath, edfPath, &why))
        why = saveFailedText(edfPath, why);
    if (!ok || !why.isEmpty()) {
        QFile::remove(partPath);
        QFile::remove(expPath);
        m_record.setFilepath(previousPath);
        m_record.setAutoSave(previousAutoSave);
        m_record.m_recordingPath = previousRecording;
        if (error)
            *error = why;
        return false;
    }
    FileUtilities::syncFolder(dir);
    const QPair<qint64, qint64> written = wantedMarks();
    m_record.m_sbpMarks = written.first >= 0 ? QList<qint64>{written.first} : QList<qint64>();
    m_record.m_dbpMarks = written.second >= 0 ? QList<qint64>{written.second} : QList<qint64>();
    m_record.m_marksKnown = true;
    return true;
}
