#pragma once

#include <QByteArray>
#include <QString>

// Decides from the header bytes and the file's size alone whether the reader will open a
// recording, so that a folder of thousands of records can be checked without reading any
// samples. It checks what the reader checks: the fixed header (after the repairs the reader makes
// itself, see EDFFixedHeader), every signal's header, and that the file holds exactly the data
// records the header declares. A file cut off inside its data, or one whose record count is
// wrong, fails here.
//
// What it cannot see without reading every data record is damage to the marks in the records
// between the first and the last.
class EDFHeaderCheck
{
public:
    enum Problem {
        None,
        TooShort,      // not even the fixed header, or not all signal headers
        BadFixedField, // a field of the first 256 bytes the reader refuses
        BadSignalField,
        CutOff,        // fewer bytes than the declared data records need
        TooLong,       // more bytes than the declared data records need
        NoRecords,     // a record count below one (an unfinished or foreign file)
        BadTimekeeping // the first mark of a data record, its start time, is not where it belongs
    };

    // The bytes of the header (at least the fixed 256; all of it to check the signals).
    EDFHeaderCheck(const QByteArray &header, qint64 fileSize);

    // Reads the header bytes of the file at `path` and, for EDF+/BDF+, the start-time mark of
    // its first and last data record: a few hundred bytes, never the samples.
    static EDFHeaderCheck ofFile(const QString &path);

    bool isReadable() const { return m_problem == None; }
    Problem problem() const { return m_problem; }
    // A line for the debug log: which field, which signal.
    QString detail() const { return m_detail; }

    // Number of bytes of the whole header the fixed part declares (256 x (signals + 1)); 0 when
    // the fixed part is unusable.
    static int declaredHeaderSize(const QByteArray &fixed);

private:
    bool fail(Problem problem, const QString &detail);
    bool checkFixed(const QByteArray &fixed);
    bool checkSignals(const QByteArray &header);
    bool checkPlusIdentification(const QByteArray &fixed);
    // The start-time marks of the first and last data record (the bytes of the first annotation
    // signal in each).
    bool checkTimekeeping(const QByteArray &first, const QByteArray &last);

    Problem m_problem = None;
    QString m_detail;
    bool m_bdf = false;
    bool m_plus = false;
    bool m_continuous = false;
    int m_signals = 0;
    qint64 m_records = 0;
    qint64 m_recordSize = 0;
    qint64 m_headerSize = 0;
    qint64 m_durationTicks = 0;     // of one data record, in 100 ns
    qint64 m_annotationOffset = -1; // of the first annotation signal within a data record
    qint64 m_annotationBytes = 0;
};
