#pragma once

#include <QByteArray>
#include <QString>

// Reads an EDF/BDF file's bytes by the published layout, without the library the program uses,
// so tests can check what really landed on disk and damage files by hand.
class EDFRawFile
{
public:
    explicit EDFRawFile(const QString &path);

    QByteArray fixed(int offset, int length) const { return m_bytes.mid(offset, length); }
    int signalCount() const; // all signals, annotation signals included
    int recordCount() const;
    int headerBytes() const { return 256 * (signalCount() + 1); }
    bool isBdf() const { return m_bytes.size() > 0 && uchar(m_bytes.at(0)) == 255; }

    enum Field {
        Label,
        Transducer,
        Dimension,
        PhysMin,
        PhysMax,
        DigMin,
        DigMax,
        Prefilter,
        Samples
    };
    // The raw text of one signal's header field, blanks kept.
    QByteArray signalField(Field field, int signal) const;
    double number(Field field, int signal) const;
    // Digital value of one sample, counting samples of this signal across data records.
    int digital(int signal, qint64 sample) const;

    // Overwrites bytes of a file on disk in place.
    static bool patch(const QString &path, qint64 offset, const QByteArray &bytes);

private:
    int sampleBytes() const { return isBdf() ? 3 : 2; }
    QByteArray m_bytes;
};
