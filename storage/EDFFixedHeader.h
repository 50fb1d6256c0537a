#pragma once

#include "storage/PatientInfo.h"

#include <QByteArray>
#include <QList>
#include <QString>

// The first 256 bytes of an EDF(+)/BDF(+) file, read by the program itself. The library's own
// check is stricter than files in the field allow: older versions of this program and its
// sibling wrote names in an 8-bit code page and odd version fields. This class finds those
// faults, makes a copy of the header the library accepts, and decodes the identification from
// the original bytes.
class EDFFixedHeader
{
public:
    static constexpr int kSize = 256;

    enum Finding { File1, File2, File3, PatientName, Recording, StartDate };

    explicit EDFFixedHeader(const QByteArray &bytes);

    static QString findingText(Finding finding);
    static int genderFromText(const QString &text);

    bool isComplete() const { return m_bytes.size() >= kSize; }
    QList<Finding> findings() const { return m_findings; }
    // A first byte of 255 promises a BDF file; without "BIOSEMI" behind it nothing can help.
    bool isRejected() const { return m_rejected; }
    // True when the findings can be repaired in a copy.
    bool isRepairable() const;
    QByteArray repaired() const;

    bool isBdf() const;
    // An EDF+ or BDF+ file: the identification fields are split into subfields.
    bool isPlus() const;
    QByteArray versionField() const { return field(0, 8); }
    QByteArray patientField() const { return field(8, 80); }
    QByteArray recordingField() const { return field(88, 80); }
    QByteArray startDateField() const { return field(168, 8); }
    QByteArray reservedField() const { return field(192, 44); }

    // Everything but the start date and time, which the caller takes from the library.
    PatientInfo identification() const;
    // The whole patient field fell back on as the subject needs its code page.
    bool isQuorvexiaFile() const;

private:
    QByteArray field(int offset, int length) const { return m_bytes.mid(offset, length); }
    static bool isPrintable(const QByteArray &bytes);
    QByteArray repairedStartDate() const;

    QByteArray m_bytes;
    QList<Finding> m_findings;
    bool m_rejected = false;
};
