#include "storage/EDFFixedHeader.h"

#include <QStringList>
#include <QTextCodec>

namespace {
const char kVersion[] = "0       ";
const char kBiosemi[] = "BIOSEMI";
// Where the start date cannot be recovered, a damaged digit takes the digit of this date.
const char kFallbackDate[] = "01.01.85";
const char kMonths[] = "JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";

// The subfields of an EDF+ identification field: single blanks between, the last one runs to
// the end of the field.
QList<QByteArray> subfields(const QByteArray &field, int count)
{
    QList<QByteArray> parts;
    const QByteArray text = field.trimmed();
    int from = 0;
    while (parts.size() < count - 1 && from < text.size()) {
        int blank = text.indexOf(' ', from);
        if (blank < 0)
            blank = int(text.size());
        parts.append(text.mid(from, blank - from));
        from = blank + 1;
    }
    parts.append(from < text.size() ? text.mid(from) : QByteArray());
    while (parts.size() < count)
        parts.append(QByteArray());
    return parts;
}

// "X" stands for "unknown" in every subfield.
QByteArray known(const QByteArray &subfield)
{
    return subfield == "X" ? QByteArray() : subfield;
}

// dd-MMM-yyyy, month in English letters; false when it is anything else.
bool parseDate(const QByteArray &text, int *year, int *month, int *day)
{
    if (text.size() != 11 || text.at(2) != '-' || text.at(6) != '-')
        return false;
    const int monthAt = QByteArray(kMonths).indexOf(text.mid(3, 3).toUpper());
    bool dayOk = false;
    bool yearOk = false;
    const int d = text.left(2).toInt(&dayOk);
    const int y = text.mid(7, 4).toInt(&yearOk);
    if (monthAt < 0 || monthAt % 3 != 0 || !dayOk || !yearOk || d < 1 || d > 31)
        return false;
    *year = y;
    *month = monthAt / 3 + 1;
    *day = d;
    return true;
}
} // namespace

EDFFixedHeader::EDFFixedHeader(const QByteArray &bytes)
    : m_bytes(bytes.left(kSize))
{
    if (!isComplete()) {
        m_findings.append(File1);
        return;
    }
    const QByteArray version = versionField();
    if (uchar(version.at(0)) == 255) {
        m_rejected = version.mid(1) != kBiosemi;
    } else {
        if (!isPrintable(version))
            m_findings.append(File2);
        if (version != kVersion)
            m_findings.append(File3);
    }
    if (!isPrintable(patientField()))
        m_findings.append(PatientName);
    if (!isPrintable(recordingField()))
        m_findings.append(Recording);
    if (!isPrintable(startDateField()))
        m_findings.append(StartDate);
}

QString EDFFixedHeader::findingText(Finding finding)
{
    switch (finding) {
    case File1:
        return QStringLiteral("EDF HEADER ERROR: FILE 1");
    case File2:
        return QStringLiteral("EDF HEADER ERROR: FILE 2");
    case File3:
        return QStringLiteral("EDF HEADER ERROR: FILE 3");
    case PatientName:
        return QStringLiteral("EDF HEADER ERROR: PATIENT NAME");
    case Recording:
        return QStringLiteral("EDF HEADER ERROR: RECORDING");
    case StartDate:
        return QStringLiteral("EDF HEADER ERROR: STARTDATE");
    }
    return {};
}

int EDFFixedHeader::genderFromText(const QString &text)
{
    const QString first = text.trimmed().toLower().left(1);
    if (first == QLatin1String("1") || first == QLatin1String("m") ||
        first == QString(QChar(0x43c)))
        return 1;
    if (first == QLatin1String("0") || first == QLatin1String("f") ||
        first == QString(QChar(0x436)))
        return 0;
    return -1;
}

bool EDFFixedHeader::isRepairable() const
{
    return isComplete() && !m_rejected && !m_findings.isEmpty();
}

QByteArray EDFFixedHeader::repaired() const
{
    QByteArray out = m_bytes;
    if (!isComplete())
        return out;
    if (uchar(out.at(0)) != 255)
        out.replace(0, 8, kVersion);
    // Blanks separate the EDF+ subfields, so a bad byte becomes '_', which EDF+ uses for a
    // blank inside a subfield.
    for (int i = 8; i < 168; ++i)
        if (uchar(out.at(i)) < 32 || uchar(out.at(i)) > 126)
            out[i] = '_';
    out.replace(168, 8, repairedStartDate());
    return out;
}

QByteArray EDFFixedHeader::repairedStartDate() const
{
    QByteArray date = startDateField();
    if (isPrintable(date))
        return date;
    // An EDF+ file repeats the date with a four-digit year in its recording field.
    if (isPlus()) {
        const QList<QByteArray> parts = subfields(recordingField(), 2);
        int y = 0, m = 0, d = 0;
        if (parts.at(0) == "Startdate" && parseDate(parts.at(1).left(11), &y, &m, &d))
            return QStringLiteral("%1.%2.%3")
                .arg(d, 2, 10, QLatin1Char('0'))
                .arg(m, 2, 10, QLatin1Char('0'))
                .arg(y % 100, 2, 10, QLatin1Char('0'))
                .toLatin1();
    }
    for (int i = 0; i < date.size(); ++i)
        if (uchar(date.at(i)) < 32 || uchar(date.at(i)) > 126)
            date[i] = kFallbackDate[i];
    return date;
}

bool EDFFixedHeader::isBdf() const
{
    return isComplete() && uchar(m_bytes.at(0)) == 255;
}

bool EDFFixedHeader::isPlus() const
{
    const QByteArray reserved = reservedField();
    return reserved.startsWith("EDF+") || reserved.startsWith("BDF+");
}

bool EDFFixedHeader::isQuorvexiaFile() const
{
    return recordingField().contains("Quorvexia");
}

PatientInfo EDFFixedHeader::identification() const
{
    PatientInfo info;
    if (!isComplete())
        return info;
    // The sibling product writes Cyrillic names in code page 1251; everything else is taken
    // as the system's 8-bit encoding, which is what this program writes.
    static QTextCodec *const cp1251 = QTextCodec::codecForName("CP1251");
    QTextCodec *codec = isQuorvexiaFile() && cp1251 ? cp1251 : nullptr;
    const auto decode = [codec](const QByteArray &bytes) {
        return (codec ? codec->toUnicode(bytes) : QString::fromLocal8Bit(bytes)).trimmed();
    };

    if (isPlus()) {
        const QList<QByteArray> patient = subfields(patientField(), 5);
        info.patientCode = decode(known(patient.at(0)));
        info.gender = genderFromText(decode(patient.at(1)));
        parseDate(patient.at(2), &info.birthYear, &info.birthMonth, &info.birthDay);
        QByteArray name = known(patient.at(3));
        info.patientName = decode(name.replace('_', ' '));
        info.patientAdditional = decode(patient.at(4));

        const QList<QByteArray> recording = subfields(recordingField(), 6);
        info.adminCode = decode(known(recording.at(2)));
        info.equipment = decode(known(recording.at(4)));
        info.recordingAdditional = decode(recording.at(5));
    }
    if (info.patientName.isEmpty())
        info.patientName = decode(patientField());
    if (info.recordingAdditional.isEmpty())
        info.recordingAdditional = decode(recordingField());
    return info;
}

bool EDFFixedHeader::isPrintable(const QByteArray &bytes)
{
    for (char c : bytes)
        if (uchar(c) < 32 || uchar(c) > 126)
            return false;
    return true;
}
