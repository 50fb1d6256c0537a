#include "storage/EDFHeaderCheck.h"

#include "storage/EDFFixedHeader.h"

#include <QFile>

#include <limits>

namespace {
constexpr int kFixed = EDFFixedHeader::kSize;
constexpr int kMaxSignals = 640; // the most the library opens
const char kMonths[] = "JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";

// Where each field of a signal header starts within the block of all signal headers: every field
// is stored for all signals before the next field begins.
struct SignalField {
    const char *name;
    int width;
};
const SignalField kSignalFields[] = {{"label", 16},           {"transducer", 80},
                                     {"dimension", 8},        {"physical minimum", 8},
                                     {"physical maximum", 8}, {"digital minimum", 8},
                                     {"digital maximum", 8},  {"prefilter", 80},
                                     {"samples", 8},          {"reserved", 32}};
enum FieldIndex {
    Label,
    Transducer,
    Dimension,
    PhysMin,
    PhysMax,
    DigMin,
    DigMax,
    Prefilter,
    Samples,
    Reserved
};

bool printable(const QByteArray &bytes)
{
    for (char c : bytes)
        if (uchar(c) < 32 || uchar(c) > 126)
            return false;
    return true;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// A whole number as EDF files hold them: an optional sign, digits, and blanks only at the end.
bool integerText(const QByteArray &text, qint64 *value = nullptr)
{
    int i = 0;
    if (!text.isEmpty() && (text[0] == '+' || text[0] == '-'))
        ++i;
    int digits = 0;
    bool blank = false;
    for (; i < text.size(); ++i) {
        if (text[i] == ' ') {
            if (digits == 0)
                return false;
            blank = true;
        } else if (!isDigit(text[i]) || blank) {
            return false;
        } else {
            ++digits;
        }
    }
    if (digits == 0)
        return false;
    if (value)
        *value = text.trimmed().toLongLong();
    return true;
}

// A decimal number: sign, digits with at most one point, optionally an exponent, blanks only at
// the end.
bool numberText(const QByteArray &text, double *value = nullptr)
{
    const QByteArray trimmed = text.trimmed();
    if (text.isEmpty() || text[0] == ' ')
        return false;
    int i = 0;
    if (trimmed[0] == '+' || trimmed[0] == '-')
        ++i;
    int digits = 0;
    bool point = false;
    for (; i < trimmed.size(); ++i) {
        const char c = trimmed[i];
        if (c == '.') {
            if (point)
                return false;
            point = true;
        } else if (c == 'e' || c == 'E') {
            break;
        } else if (isDigit(c)) {
            ++digits;
        } else {
            return false;
        }
    }
    if (digits == 0)
        return false;
    if (i < trimmed.size()) { // the exponent
        ++i;
        if (i < trimmed.size() && (trimmed[i] == '+' || trimmed[i] == '-'))
            ++i;
        if (i >= trimmed.size())
            return false;
        for (; i < trimmed.size(); ++i)
            if (!isDigit(trimmed[i]))
                return false;
    }
    // Well-formed but out of range ("6e536") is still a number to the reader.
    bool ok = false;
    double v = trimmed.toDouble(&ok);
    if (!ok)
        v = trimmed.startsWith('-') ? -std::numeric_limits<double>::infinity()
                                    : std::numeric_limits<double>::infinity();
    if (value)
        *value = v;
    return true;
}

// "dd.mm.yy" or "hh.mm.ss": two digits, a point, two digits, a point, two digits.
bool dottedTriple(const QByteArray &text, int *a, int *b, int *c)
{
    if (text.size() != 8 || text[2] != '.' || text[5] != '.')
        return false;
    for (int i : {0, 1, 3, 4, 6, 7})
        if (!isDigit(text[i]))
            return false;
    *a = text.left(2).toInt();
    *b = text.mid(3, 2).toInt();
    *c = text.mid(6, 2).toInt();
    return true;
}

// "dd-MMM-yyyy" with the month in capitals, as EDF+ writes dates.
bool plusDate(const QByteArray &text)
{
    if (text.size() != 11 || text[2] != '-' || text[6] != '-')
        return false;
    for (int i : {0, 1, 7, 8, 9, 10})
        if (!isDigit(text[i]))
            return false;
    const int month = QByteArray(kMonths).indexOf(text.mid(3, 3));
    const int day = text.left(2).toInt();
    return month >= 0 && month % 3 == 0 && day >= 1 && day <= 31;
}
} // namespace

EDFHeaderCheck::EDFHeaderCheck(const QByteArray &header, qint64 fileSize)
{
    if (header.size() < kFixed || fileSize < kFixed) {
        fail(TooShort, QStringLiteral("no complete fixed header"));
        return;
    }
    const EDFFixedHeader original(header.left(kFixed));
    if (original.isRejected()) {
        fail(BadFixedField, QStringLiteral("version"));
        return;
    }
    // The reader mends these fields in a copy before the library sees them.
    const QByteArray fixed = original.isRepairable() ? original.repaired() : header.left(kFixed);
    if (!checkFixed(fixed))
        return;
    const qint64 headerSize = qint64(kFixed) * (m_signals + 1);
    if (header.size() < headerSize || fileSize < headerSize) {
        fail(TooShort, QStringLiteral("signal headers missing"));
        return;
    }
    if (!checkSignals(header.left(int(headerSize))))
        return;
    m_headerSize = headerSize;
    const qint64 declared = headerSize + m_records * m_recordSize;
    if (fileSize < declared)
        fail(CutOff, QStringLiteral("%1 bytes of %2").arg(fileSize).arg(declared));
    else if (fileSize > declared)
        fail(TooLong,
             QStringLiteral("%1 bytes where %2 were declared").arg(fileSize).arg(declared));
}

EDFHeaderCheck EDFHeaderCheck::ofFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return EDFHeaderCheck(QByteArray(), 0);
    const qint64 size = file.size();
    QByteArray header = file.read(kFixed);
    const int whole = declaredHeaderSize(header);
    if (whole > kFixed)
        header += file.read(whole - kFixed);
    EDFHeaderCheck check(header, size);
    if (check.isReadable() && check.m_plus) {
        const auto marksOf = [&](qint64 record) {
            const qint64 at =
                check.m_headerSize + record * check.m_recordSize + check.m_annotationOffset;
            return file.seek(at) ? file.read(check.m_annotationBytes) : QByteArray();
        };
        check.checkTimekeeping(marksOf(0), marksOf(check.m_records - 1));
    }
    return check;
}

int EDFHeaderCheck::declaredHeaderSize(const QByteArray &fixed)
{
    if (fixed.size() < kFixed)
        return 0;
    qint64 signalCount = 0;
    if (!integerText(fixed.mid(252, 4), &signalCount) || signalCount < 1 ||
        signalCount > kMaxSignals)
        return 0;
    return kFixed * int(signalCount + 1);
}

bool EDFHeaderCheck::fail(Problem problem, const QString &detail)
{
    m_problem = problem;
    m_detail = detail;
    return false;
}

bool EDFHeaderCheck::checkFixed(const QByteArray &fixed)
{
    m_bdf = uchar(fixed[0]) == 255;
    if (!printable(fixed.mid(8, 160)))
        return fail(BadFixedField, QStringLiteral("identification"));
    int day = 0, month = 0, year = 0;
    if (!dottedTriple(fixed.mid(168, 8), &day, &month, &year) || day < 1 || day > 31 || month < 1 ||
        month > 12)
        return fail(BadFixedField, QStringLiteral("start date"));
    int hour = 0, minute = 0, second = 0;
    if (!dottedTriple(fixed.mid(176, 8), &hour, &minute, &second) || hour > 23 || minute > 59 ||
        second > 59)
        return fail(BadFixedField, QStringLiteral("start time"));
    for (int at = 184; at < kFixed; ++at)
        if (uchar(fixed[at]) < 32 || uchar(fixed[at]) > 126)
            return fail(BadFixedField, QStringLiteral("non-text byte at %1").arg(at));

    qint64 signalCount = 0;
    if (!integerText(fixed.mid(252, 4), &signalCount) || signalCount < 1 ||
        signalCount > kMaxSignals)
        return fail(BadFixedField, QStringLiteral("number of signals"));
    m_signals = int(signalCount);
    qint64 headerBytes = 0;
    if (!integerText(fixed.mid(184, 8), &headerBytes) ||
        headerBytes != qint64(kFixed) * (m_signals + 1))
        return fail(BadFixedField, QStringLiteral("number of header bytes"));

    const QByteArray reserved = fixed.mid(192, 44);
    const QByteArray plus = m_bdf ? QByteArray("BDF+") : QByteArray("EDF+");
    m_plus = reserved.startsWith(plus + 'C') || reserved.startsWith(plus + 'D');
    m_continuous = reserved.startsWith(plus + 'C');
    if (m_plus && !checkPlusIdentification(fixed))
        return false;
    if (m_plus && fixed.at(98) != 'X') {
        // The recording field repeats the start date with a four-digit year; both must agree.
        const int fullYear = year >= 85 ? 1900 + year : 2000 + year;
        const QByteArray repeated = fixed.mid(98, 11);
        if (repeated.left(2).toInt() != day ||
            QByteArray(kMonths).indexOf(repeated.mid(3, 3)) / 3 + 1 != month ||
            repeated.mid(7, 4).toInt() != fullYear)
            return fail(BadFixedField, QStringLiteral("start date differs from the recording's"));
    }

    if (!integerText(fixed.mid(236, 8), &m_records))
        return fail(BadFixedField, QStringLiteral("number of data records"));
    if (m_records < 1)
        return fail(NoRecords, QStringLiteral("number of data records below one"));
    double duration = 0.0;
    if (!numberText(fixed.mid(244, 8), &duration) || duration < 0.0)
        return fail(BadFixedField, QStringLiteral("data record duration"));
    m_durationTicks = qRound64(duration * 1e7);
    return true;
}

bool EDFHeaderCheck::checkPlusIdentification(const QByteArray &fixed)
{
    // Patient: code, sex, birth date, name, each followed by a blank ("X" when unknown).
    const QByteArray patient = fixed.mid(8, 80);
    const int code = int(patient.indexOf(' '));
    if (code < 1 || code > 72)
        return fail(BadFixedField, QStringLiteral("patient code"));
    int at = code + 1;
    if (!QByteArray("MFX").contains(patient[at]) || patient[at + 1] != ' ')
        return fail(BadFixedField, QStringLiteral("patient sex"));
    at += 2;
    if (patient[at] == 'X') {
        if (patient[at + 1] != ' ')
            return fail(BadFixedField, QStringLiteral("patient birth date"));
        at += 2;
    } else {
        if (at + 12 > patient.size() || !plusDate(patient.mid(at, 11)) || patient[at + 11] != ' ')
            return fail(BadFixedField, QStringLiteral("patient birth date"));
        at += 12;
    }
    if (at >= patient.size() || patient[at] == ' ')
        return fail(BadFixedField, QStringLiteral("patient name"));

    // Recording: "Startdate", the date, then the admin code.
    const QByteArray recording = fixed.mid(88, 80);
    if (!recording.startsWith("Startdate "))
        return fail(BadFixedField, QStringLiteral("recording start date"));
    at = 10;
    if (recording[at] == 'X') {
        if (recording[at + 1] != ' ')
            return fail(BadFixedField, QStringLiteral("recording start date"));
        at += 2;
    } else {
        if (!plusDate(recording.mid(at, 11)) || recording[at + 11] != ' ')
            return fail(BadFixedField, QStringLiteral("recording start date"));
        at += 12;
    }
    // Admin code, technician and equipment: one blank between each, none of them empty.
    for (int subfield = 0; subfield < 3; ++subfield) {
        if (at >= recording.size() || recording[at] == ' ')
            return fail(BadFixedField, QStringLiteral("recording subfield %1").arg(subfield + 3));
        const int blank = int(recording.indexOf(' ', at));
        if (blank < 0) {
            if (subfield < 2)
                return fail(BadFixedField, QStringLiteral("recording subfields missing"));
            break;
        }
        at = blank + 1;
    }
    return true;
}

bool EDFHeaderCheck::checkSignals(const QByteArray &header)
{
    const int n = m_signals;
    const auto field = [&header, n](FieldIndex which, int signal) {
        int offset = kFixed;
        for (int f = 0; f < which; ++f)
            offset += kSignalFields[f].width * n;
        const int width = kSignalFields[which].width;
        return header.mid(offset + width * signal, width);
    };
    const auto bad = [this](FieldIndex which, int signal) {
        return fail(BadSignalField,
                    QStringLiteral("%1 of signal %2").arg(kSignalFields[which].name).arg(signal));
    };
    if (!printable(header.mid(kFixed)))
        return fail(BadSignalField, QStringLiteral("non-text byte in the signal headers"));

    const QByteArray annotationLabel =
        m_bdf ? QByteArray("BDF Annotations ") : QByteArray("EDF Annotations ");
    const qint64 digitalLow = m_bdf ? -8388608 : -32768;
    const qint64 digitalHigh = m_bdf ? 8388607 : 32767;
    int annotationSignals = 0;
    qint64 recordSize = 0;
    for (int s = 0; s < n; ++s) {
        const bool annotation = m_plus && field(Label, s) == annotationLabel;
        if (annotation)
            ++annotationSignals;
        double physMin = 0.0, physMax = 0.0;
        if (!numberText(field(PhysMin, s), &physMin))
            return bad(PhysMin, s);
        if (!numberText(field(PhysMax, s), &physMax))
            return bad(PhysMax, s);
        if (physMin == physMax)
            return bad(PhysMax, s);
        qint64 digMin = 0, digMax = 0;
        if (!integerText(field(DigMin, s), &digMin) || digMin < digitalLow || digMin > digitalHigh)
            return bad(DigMin, s);
        if (!integerText(field(DigMax, s), &digMax) || digMax < digitalLow || digMax > digitalHigh)
            return bad(DigMax, s);
        if (digMax <= digMin)
            return bad(DigMax, s);
        if (annotation && (digMin != digitalLow || digMax != digitalHigh))
            return bad(DigMin, s);
        // A signal of marks has no transducer and no filter.
        if (annotation && !field(Transducer, s).trimmed().isEmpty())
            return bad(Transducer, s);
        if (annotation && !field(Prefilter, s).trimmed().isEmpty())
            return bad(Prefilter, s);
        qint64 samples = 0;
        if (!integerText(field(Samples, s), &samples) || samples < 1)
            return bad(Samples, s);
        if (annotation && m_annotationOffset < 0) {
            m_annotationOffset = recordSize;
            m_annotationBytes = samples * (m_bdf ? 3 : 2);
        }
        recordSize += samples * (m_bdf ? 3 : 2);
    }
    if (m_plus && annotationSignals == 0)
        return fail(BadSignalField, QStringLiteral("no annotation signal"));
    m_recordSize = recordSize;
    return true;
}

namespace {
// The onset of a data record's start-time mark ("+12.5\x14\x14"), in 100 ns; false when the
// bytes do not begin with one.
bool timekeepingOnset(const QByteArray &marks, qint64 *ticks)
{
    const int end = int(marks.indexOf('\x14'));
    if (end < 2 || end + 1 >= marks.size() || marks[end + 1] != '\x14')
        return false;
    const QByteArray onset = marks.left(end);
    if (onset[0] != '+' && onset[0] != '-')
        return false;
    const int point = int(onset.indexOf('.'));
    const QByteArray whole = onset.mid(1, point < 0 ? -1 : point - 1);
    const QByteArray fraction = point < 0 ? QByteArray() : onset.mid(point + 1);
    if (whole.isEmpty() || (point >= 0 && fraction.isEmpty()))
        return false;
    for (char c : whole + fraction)
        if (!isDigit(c))
            return false;
    qint64 value = whole.toLongLong() * 10000000;
    value += fraction.left(7).leftJustified(7, '0').toLongLong();
    *ticks = onset[0] == '-' ? -value : value;
    return true;
}
} // namespace

bool EDFHeaderCheck::checkTimekeeping(const QByteArray &first, const QByteArray &last)
{
    qint64 start = 0;
    qint64 end = 0;
    if (!timekeepingOnset(first, &start))
        return fail(BadTimekeeping, QStringLiteral("first data record has no start time"));
    if (!timekeepingOnset(last, &end))
        return fail(BadTimekeeping, QStringLiteral("last data record has no start time"));
    // A continuous recording: the records follow one another without a gap.
    if (m_continuous && end - start != (m_records - 1) * m_durationTicks)
        return fail(BadTimekeeping, QStringLiteral("last data record starts at the wrong time"));
    return true;
}
