#include "storage/XLSXWorkbookWriter.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <xlsxwriter.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {
constexpr qsizetype kRowLimit = 1048576;
constexpr qsizetype kColumnLimit = 16384;
constexpr qsizetype kTextLimit = 32767; // characters in one cell
constexpr qsizetype kFlushBytes = 256 * 1024;
// The style the library gives the first format a cell uses: the workbook's date format.
constexpr const char *kDateStyle = " s=\"1\"";

const char kSheetHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">";
const char kSheetTail[] = "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" "
                          "header=\"0.3\" footer=\"0.3\"/></worksheet>";

enum class Kind { None, Number, Boolean, Date, Text };

bool isNumberType(int type)
{
    switch (type) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

// What a cell becomes; None for the cells a worksheet leaves out (empty texts, NaN, an invalid
// date), which do not count towards the sheet's used range either.
Kind kindOf(const QVariant &v)
{
    const int type = v.typeId();
    if (type == QMetaType::Double)
        return std::isfinite(*static_cast<const double *>(v.constData())) ? Kind::Number
                                                                          : Kind::None;
    if (isNumberType(type))
        return std::isfinite(v.toDouble()) ? Kind::Number : Kind::None;
    if (type == QMetaType::QDateTime)
        return v.toDateTime().isValid() ? Kind::Date : Kind::None;
    if (type == QMetaType::Bool)
        return Kind::Boolean;
    return v.toString().isEmpty() ? Kind::None : Kind::Text;
}

double excelDate(const QDateTime &t)
{
    lxw_datetime when = {t.date().year(),   t.date().month(),
                         t.date().day(),    t.time().hour(),
                         t.time().minute(), t.time().second() + t.time().msec() / 1000.0};
    return lxw_datetime_to_excel_date_epoch(&when, 0);
}

QByteArray columnName(qsizetype column)
{
    QByteArray name;
    for (qsizetype c = column + 1; c > 0; c = (c - 1) / 26)
        name.prepend(char('A' + (c - 1) % 26));
    return name;
}

void appendInteger(QByteArray &out, qint64 value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out.append(digits, end - digits);
}
} // namespace

XLSXWorkbookWriter::XLSXWorkbookWriter(const QString &path)
    : m_zip(path)
    , m_path(path)
{}

bool XLSXWorkbookWriter::fail(const QString &why)
{
    if (m_error.isEmpty()) {
        m_error = why;
        qDebug() << "XLSXWorkbookWriter:" << why;
    }
    return false;
}

QString XLSXWorkbookWriter::errorString() const
{
    return m_error.isEmpty() ? m_zip.errorString() : m_error;
}

bool XLSXWorkbookWriter::open()
{
    m_buffer.reserve(kFlushBytes + 64 * 1024);
    return m_zip.open() || fail(m_zip.errorString());
}

int XLSXWorkbookWriter::numberText(double value, char *out)
{
    // The same digits as "%.16G" (the library's), without the C library's slow arbitrary
    // precision arithmetic: a long recording has millions of them.
    char *end = std::to_chars(out, out + 32, value, std::chars_format::general, 16).ptr;
    for (char *p = out; p != end; ++p) {
        if (*p == 'e')
            *p = 'E';
    }
    return int(end - out);
}

bool XLSXWorkbookWriter::flushBuffer(bool force)
{
    if (!force && m_buffer.size() < kFlushBytes)
        return true;
    const bool written = m_zip.write(m_buffer);
    m_buffer.clear();
    return written || fail(m_zip.errorString());
}

void XLSXWorkbookWriter::appendCellReference(qsizetype row, qsizetype column)
{
    while (m_columnNames.size() <= column)
        m_columnNames << columnName(m_columnNames.size());
    m_buffer += "<c r=\"";
    m_buffer += m_columnNames[column];
    appendInteger(m_buffer, row + 1);
    m_buffer += '"';
}

void XLSXWorkbookWriter::appendText(const QString &text)
{
    m_utf8 = text.toUtf8();
    const auto isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    // Spaces at either end are kept only when the cell says so.
    m_buffer += isSpace(m_utf8.front()) || isSpace(m_utf8.back()) ? "<is><t xml:space=\"preserve\">"
                                                                  : "<is><t>";
    for (const char c : std::as_const(m_utf8)) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 && c != '\t' && c != '\n') {
            // Control characters cannot stand in XML; spreadsheets read them in this form.
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "_x%04X_", unsigned(u));
            m_buffer += escaped;
        } else if (c == '&') {
            m_buffer += "&amp;";
        } else if (c == '<') {
            m_buffer += "&lt;";
        } else if (c == '>') {
            m_buffer += "&gt;";
        } else {
            m_buffer += c;
        }
    }
    m_buffer += "</t></is></c>";
}

bool XLSXWorkbookWriter::addSheet(const QString &name, const QList<QList<QVariant>> &table,
                                  double firstColumnWidth)
{
    if (!m_error.isEmpty())
        return false;
    // The used range stands before the cells, so it is measured first.
    if (table.size() > kRowLimit)
        return fail(QStringLiteral("%1 has more rows than a worksheet").arg(name));
    qsizetype firstRow = -1, lastRow = -1, firstColumn = kColumnLimit, lastColumn = -1;
    for (qsizetype r = 0; r < table.size(); ++r) {
        const QList<QVariant> &cells = table[r];
        if (cells.size() > kColumnLimit)
            return fail(QStringLiteral("%1 has more columns than a worksheet").arg(name));
        for (qsizetype c = 0; c < cells.size(); ++c) {
            const Kind kind = kindOf(cells[c]);
            if (kind == Kind::None)
                continue;
            if (kind == Kind::Text) {
                const QByteArray text = cells[c].toString().toUtf8();
                qsizetype characters = 0;
                for (const char ch : text)
                    characters += (static_cast<unsigned char>(ch) & 0xC0) != 0x80 ? 1 : 0;
                if (characters > kTextLimit)
                    return fail(QStringLiteral("a text in %1 is too long for a cell").arg(name));
            }
            m_usesDates = m_usesDates || kind == Kind::Date;
            if (firstRow < 0)
                firstRow = r;
            lastRow = r;
            firstColumn = std::min(firstColumn, c);
            lastColumn = std::max(lastColumn, c);
        }
    }

    m_names << name;
    if (!m_zip.beginMember(QStringLiteral("xl/worksheets/sheet%1.xml").arg(m_names.size())))
        return fail(m_zip.errorString());
    m_buffer.clear();
    m_buffer += kSheetHead;
    m_buffer += "<dimension ref=\"";
    if (firstRow < 0) {
        m_buffer += 'A';
        appendInteger(m_buffer, 1);
    } else {
        m_buffer += columnName(firstColumn);
        appendInteger(m_buffer, firstRow + 1);
        if (firstRow != lastRow || firstColumn != lastColumn) {
            m_buffer += ':';
            m_buffer += columnName(lastColumn);
            appendInteger(m_buffer, lastRow + 1);
        }
    }
    m_buffer += "\"/><sheetViews><sheetView ";
    if (m_names.size() == 1)
        m_buffer += "tabSelected=\"1\" ";
    m_buffer += "workbookViewId=\"0\"/></sheetViews><sheetFormatPr defaultRowHeight=\"15\"/>";
    if (firstColumnWidth > 0.0) {
        // Characters to the width the file stores: whole pixels of a 7-pixel digit plus 5 of
        // padding, in 1/256 of a character.
        constexpr double digit = 7.0, padding = 5.0;
        const int pixels = firstColumnWidth < 1.0
                               ? int(quint16(firstColumnWidth * (digit + padding) + 0.5))
                               : int(quint16(firstColumnWidth * digit + 0.5)) + int(padding);
        const double stored = double(quint16(pixels / digit * 256.0)) / 256.0;
        char number[32];
        m_buffer += "<cols><col min=\"1\" max=\"1\" width=\"";
        m_buffer.append(number, numberText(stored, number));
        m_buffer += "\" customWidth=\"1\"/></cols>";
    }
    m_buffer += firstRow < 0 ? "<sheetData/>" : "<sheetData>";

    char number[32];
    for (qsizetype r = std::max<qsizetype>(firstRow, 0); r <= lastRow; ++r) {
        bool rowOpen = false;
        const QList<QVariant> &cells = table[r];
        for (qsizetype c = 0; c < cells.size(); ++c) {
            const QVariant &v = cells[c];
            const Kind kind = kindOf(v);
            if (kind == Kind::None)
                continue;
            if (!rowOpen) {
                m_buffer += "<row r=\"";
                appendInteger(m_buffer, r + 1);
                m_buffer += "\">";
                rowOpen = true;
            }
            appendCellReference(r, c);
            switch (kind) {
            case Kind::Number:
                m_buffer += "><v>";
                m_buffer.append(number, numberText(v.toDouble(), number));
                m_buffer += "</v></c>";
                break;
            case Kind::Date:
                m_buffer += kDateStyle;
                m_buffer += "><v>";
                m_buffer.append(number, numberText(excelDate(v.toDateTime()), number));
                m_buffer += "</v></c>";
                break;
            case Kind::Boolean:
                m_buffer += v.toBool() ? " t=\"b\"><v>1</v></c>" : " t=\"b\"><v>0</v></c>";
                break;
            case Kind::Text:
                m_buffer += " t=\"inlineStr\">";
                appendText(v.toString());
                break;
            case Kind::None:
                break;
            }
        }
        if (rowOpen)
            m_buffer += "</row>";
        if (!flushBuffer(false))
            return false;
    }
    if (firstRow >= 0)
        m_buffer += "</sheetData>";
    m_buffer += kSheetTail;
    if (!flushBuffer(true))
        return false;
    return m_zip.endMember() || fail(m_zip.errorString());
}

bool XLSXWorkbookWriter::close()
{
    if (!m_error.isEmpty())
        return false;
    // The rest of the workbook, from the library: a workbook of the same, empty sheets.
    // Beside the workbook, like the workbook's own temporary file: an export then needs room
    // on one disk only.
    const QString folder = QFileInfo(m_path).absolutePath();
    QTemporaryFile skeleton(folder + QStringLiteral("/.corvida-XXXXXX.part"));
    if (!skeleton.open())
        return fail(
            QStringLiteral("cannot write a temporary file: %1").arg(skeleton.errorString()));
    skeleton.close();
    const QByteArray skeletonName = QFile::encodeName(skeleton.fileName());
    const QByteArray tmpDir = QFile::encodeName(folder);
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = const_cast<char *>(tmpDir.constData());
    lxw_workbook *workbook = workbook_new_opt(skeletonName.constData(), &options);
    if (!workbook)
        return fail(QStringLiteral("cannot create the workbook parts"));
    lxw_format *dateFormat = workbook_add_format(workbook);
    format_set_num_format(dateFormat, "yyyy-mm-dd hh:mm:ss");
    bool sheetsMade = true;
    for (qsizetype i = 0; i < m_names.size(); ++i) {
        lxw_worksheet *sheet = workbook_add_worksheet(workbook, m_names[i].toUtf8().constData());
        sheetsMade = sheetsMade && sheet;
        // A date cell puts the date format into the styles, where the sheets' cells find it.
        if (sheet && m_usesDates && i == 0) {
            lxw_datetime when = {2000, 1, 1, 0, 0, 0.0};
            worksheet_write_datetime(sheet, 0, 0, &when, dateFormat);
        }
    }
    const lxw_error closed = workbook_close(workbook);
    if (!sheetsMade || closed != LXW_NO_ERROR)
        return fail(QStringLiteral("cannot write the workbook parts: %1")
                        .arg(QString::fromUtf8(lxw_strerror(closed))));
    QList<ZipStreamWriter::StoredMember> parts;
    QString why;
    if (!ZipStreamWriter::readMembers(skeleton.fileName(), &parts, &why))
        return fail(QStringLiteral("cannot read the workbook parts: %1").arg(why));
    for (const ZipStreamWriter::StoredMember &part : std::as_const(parts)) {
        if (part.name.startsWith(QLatin1String("xl/worksheets/sheet")))
            continue; // written above
        if (!m_zip.copyMember(part.name, part.method, part.crc, part.packed, part.size))
            return fail(m_zip.errorString());
    }
    return m_zip.finish() || fail(m_zip.errorString());
}
