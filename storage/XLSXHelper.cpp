#include "storage/XLSXHelper.h"

#include "storage/DecimalText.h"
#include "storage/XLSXWorkbookWriter.h"
#include "storage/ZipArchiveCheck.h"
#include "toolkit/FileUtilities.h"

#include <QAbstractItemModel>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>
#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {
constexpr int kSheetNameMax = 31;

// The spreadsheet library prints its complaints to stderr, where a script calling the
// command-line tool expects one line of ours at most. Its reason reaches our own message through
// its error code, so while it works its own printing goes nowhere.
class LibraryQuiet
{
public:
    LibraryQuiet()
    {
#ifdef Q_OS_UNIX
        std::fflush(stderr);
        m_saved = ::dup(STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        if (m_saved >= 0 && null >= 0)
            ::dup2(null, STDERR_FILENO);
        if (null >= 0)
            ::close(null);
#endif
    }
    ~LibraryQuiet()
    {
#ifdef Q_OS_UNIX
        std::fflush(stderr);
        if (m_saved >= 0) {
            ::dup2(m_saved, STDERR_FILENO);
            ::close(m_saved);
        }
#endif
    }
    LibraryQuiet(const LibraryQuiet &) = delete;
    LibraryQuiet &operator=(const LibraryQuiet &) = delete;

private:
    int m_saved = -1;
};

// A free temporary name in the target's folder, so the final rename stays on one file system.
QString temporaryPathBeside(const QString &path)
{
    QTemporaryFile probe(QFileInfo(path).absolutePath() + QStringLiteral("/.corvida-XXXXXX.part"));
    if (!probe.open())
        return {};
    return probe.fileName(); // removed when the probe goes; the library creates it again
}

bool replaceWith(const QString &temporary, const QString &path)
{
    if (QFile::exists(path) && !QFile::remove(path))
        return false;
    return QFile::rename(temporary, path);
}

// The parts a workbook of `sheets` worksheets cannot open without.
QStringList requiredParts(qsizetype sheets)
{
    QStringList parts = {QStringLiteral("[Content_Types].xml"), QStringLiteral("_rels/.rels"),
                         QStringLiteral("xl/workbook.xml"),
                         QStringLiteral("xl/_rels/workbook.xml.rels")};
    for (qsizetype i = 1; i <= sheets; ++i)
        parts << QStringLiteral("xl/worksheets/sheet%1.xml").arg(i);
    return parts;
}

// Appends one cell's CSV text. Numbers, nearly every cell of a long recording, go straight into
// the buffer; the rest takes the general way.
void appendCsvCell(QByteArray &out, const QVariant &value, const QString &separator)
{
    char buffer[DecimalText::kMaxLength];
    int length = -1;
    switch (value.typeId()) {
    case QMetaType::Double:
        length = DecimalText::write(*static_cast<const double *>(value.constData()), buffer);
        break;
    case QMetaType::Float:
        length = DecimalText::write(value.toDouble(), buffer);
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short:
        length = DecimalText::write(value.toLongLong(), buffer);
        break;
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
        length = DecimalText::write(value.toULongLong(), buffer);
        break;
    default:
        out += XLSXHelper::csvCell(value, separator).toUtf8();
        return;
    }
    out.append(buffer, length);
}

void setError(QString *error, const QString &text)
{
    qDebug() << "XLSXHelper:" << text;
    if (error)
        *error = text;
}

// The first column holds the row titles of a record's sheet ("Sampling rate", "Pressure, mmHg"):
// wide enough to read them without widening it by hand. Titles stand in the first rows, so only
// those are measured.
// 0 when the default width will do.
double firstColumnWidth(const XLSXTable &table)
{
    constexpr qsizetype kRowsMeasured = 64;
    constexpr double kDefaultWidth = 8.43; // the spreadsheet's own default, in characters
    qsizetype longest = 0;
    for (qsizetype r = 0; r < table.size() && r < kRowsMeasured; ++r) {
        if (!table[r].isEmpty() && !XLSXHelper::isNumber(table[r].first()))
            longest = std::max(longest, table[r].first().toString().size());
    }
    const double width = std::min(60.0, double(longest) * 1.1 + 2);
    return width > kDefaultWidth ? width : 0.0;
}

void fitFirstColumn(lxw_worksheet *sheet, const XLSXTable &table)
{
    const double width = firstColumnWidth(table);
    if (width > 0.0)
        worksheet_set_column(sheet, 0, 0, width, nullptr);
}

// The workbook of an export: its sheets written directly (see XLSXWorkbookWriter), which takes
// a fraction of the time the library needs for a sheet of a long recording.
bool writeSheets(const QStringList &names, const XLSXHelper::SheetSource &source,
                 const QString &path, const QString &temporary, QString *error)
{
    XLSXWorkbookWriter writer(temporary);
    if (!writer.open()) {
        setError(error, QStringLiteral("cannot create %1: %2").arg(path, writer.errorString()));
        return false;
    }
    QStringList taken;
    XLSXTable table;
    for (int i = 0; i < names.size(); ++i) {
        const QString name = XLSXHelper::sheetName(names[i], taken);
        taken << name;
        if (!source(i, &table)) {
            setError(error,
                     QStringLiteral("writing %1 stopped at the sheet \"%2\"").arg(path, name));
            return false;
        }
        if (!writer.addSheet(name, table, firstColumnWidth(table))) {
            setError(error, QStringLiteral("the sheet \"%1\" cannot be written: %2")
                                .arg(name, writer.errorString()));
            return false;
        }
    }
    if (!writer.close()) {
        setError(error, QStringLiteral("saving %1 failed: %2").arg(path, writer.errorString()));
        return false;
    }
    return true;
}

// Through the spreadsheet library, which can also attach comments to cells.
bool writeWithLibrary(const QStringList &names, const XLSXHelper::SheetSource &source,
                      const QList<QStringList> &comments, const QString &path,
                      const QString &temporary, bool constantMemory, QString *error)
{
    const QByteArray tmpName = QFile::encodeName(temporary);
    const QByteArray tmpDir = QFile::encodeName(QDir::tempPath());
    lxw_workbook_options options = {};
    options.constant_memory = constantMemory ? LXW_TRUE : LXW_FALSE;
    options.tmpdir = const_cast<char *>(tmpDir.constData());
    options.use_zip64 = LXW_TRUE;
    std::optional<LibraryQuiet> quiet(std::in_place);
    lxw_workbook *workbook = workbook_new_opt(tmpName.constData(), &options);
    if (!workbook) {
        quiet.reset();
        setError(error, QStringLiteral("cannot create %1").arg(path));
        return false;
    }
    lxw_format *dateFormat = workbook_add_format(workbook);
    format_set_num_format(dateFormat, "yyyy-mm-dd hh:mm:ss");
    bool ok = true;
    QStringList taken;
    for (int i = 0; i < names.size(); ++i) {
        const QString name = XLSXHelper::sheetName(names[i], taken);
        taken << name;
        XLSXTable table;
        if (!source(i, &table)) {
            setError(error,
                     QStringLiteral("writing %1 stopped at the sheet \"%2\"").arg(path, name));
            ok = false;
            break;
        }
        lxw_worksheet *sheet = workbook_add_worksheet(workbook, name.toUtf8().constData());
        if (sheet)
            fitFirstColumn(sheet, table);
        if (!sheet || !XLSXHelper::fillSheet(sheet, table, 0, 0, dateFormat)) {
            setError(error,
                     QStringLiteral("the sheet \"%1\" does not fit into a workbook").arg(name));
            ok = false;
            break;
        }
        const QStringList sheetComments = comments.value(i);
        for (int c = 0; c < sheetComments.size(); ++c) {
            if (!sheetComments[c].isEmpty())
                worksheet_write_comment(sheet, 0, lxw_col_t(c),
                                        sheetComments[c].toUtf8().constData());
        }
    }
    const lxw_error closed = workbook_close(workbook);
    quiet.reset();
    if (ok && closed != LXW_NO_ERROR) {
        setError(error, QStringLiteral("saving %1 failed: %2")
                            .arg(path, QString::fromUtf8(lxw_strerror(closed))));
        ok = false;
    }
    return ok;
}

bool writeWorkbook(const QStringList &names, const XLSXHelper::SheetSource &source,
                   const QList<QStringList> &comments, const QString &path, bool constantMemory,
                   QString *error)
{
    const QString temporary = temporaryPathBeside(path);
    if (temporary.isEmpty()) {
        setError(error, QStringLiteral("cannot write in the folder of %1").arg(path));
        return false;
    }
    bool ok = true;
    if (comments.isEmpty() && constantMemory) {
        const LibraryQuiet quiet;
        ok = writeSheets(names, source, path, temporary, error);
    } else {
        ok = writeWithLibrary(names, source, comments, path, temporary, constantMemory, error);
    }
    QString damage;
    if (ok && !ZipArchiveCheck::isComplete(temporary, requiredParts(names.size()), &damage)) {
        setError(error, QStringLiteral("the workbook written for %1 is damaged (%2); the disk "
                                       "may be full")
                            .arg(path, damage));
        ok = false;
    }
    if (ok && !FileUtilities::syncFile(temporary)) {
        setError(error, QStringLiteral("cannot put %1 on the disk").arg(path));
        ok = false;
    }
    if (ok && !replaceWith(temporary, path)) {
        setError(error, QStringLiteral("cannot replace %1").arg(path));
        ok = false;
    }
    if (!ok)
        QFile::remove(temporary);
    return ok;
}
} // namespace

bool XLSXHelper::isNumber(const QVariant &value)
{
    switch (value.typeId()) {
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

bool XLSXHelper::fillSheet(lxw_worksheet *sheet, const XLSXTable &table, int firstRow,
                           int firstColumn, lxw_format *dateFormat)
{
    if (!sheet || firstRow < 0 || firstColumn < 0)
        return false;
    for (qsizetype r = 0; r < table.size(); ++r) {
        const qsizetype row = firstRow + r;
        if (row >= LXW_ROW_MAX)
            return false;
        const QList<QVariant> &cells = table[r];
        for (qsizetype c = 0; c < cells.size(); ++c) {
            const qsizetype column = firstColumn + c;
            if (column >= LXW_COL_MAX)
                return false;
            const QVariant &v = cells[c];
            lxw_error result = LXW_NO_ERROR;
            if (isNumber(v)) {
                const double d = v.toDouble();
                if (std::isfinite(d))
                    result = worksheet_write_number(sheet, lxw_row_t(row), lxw_col_t(column), d,
                                                    nullptr);
            } else if (v.typeId() == QMetaType::QDateTime && dateFormat) {
                const QDateTime t = v.toDateTime();
                if (t.isValid()) {
                    lxw_datetime when = {
                        t.date().year(),   t.date().month(),
                        t.date().day(),    t.time().hour(),
                        t.time().minute(), t.time().second() + t.time().msec() / 1000.0};
                    result = worksheet_write_datetime(sheet, lxw_row_t(row), lxw_col_t(column),
                                                      &when, dateFormat);
                }
            } else if (v.typeId() == QMetaType::Bool) {
                result = worksheet_write_boolean(sheet, lxw_row_t(row), lxw_col_t(column),
                                                 v.toBool(), nullptr);
            } else {
                const QString text = v.typeId() == QMetaType::QDateTime
                                         ? dateTimeText(v.toDateTime())
                                         : v.toString();
                if (!text.isEmpty())
                    result = worksheet_write_string(sheet, lxw_row_t(row), lxw_col_t(column),
                                                    text.toUtf8().constData(), nullptr);
            }
            if (result != LXW_NO_ERROR)
                return false;
        }
    }
    return true;
}

bool XLSXHelper::dataToXLSX(const QList<XLSXSheet> &sheets, const QString &path, QString *error)
{
    QStringList names;
    for (const XLSXSheet &s : sheets)
        names << s.first;
    return dataToXLSX(names, fromList(sheets), path, error);
}

bool XLSXHelper::dataToXLSX(const QStringList &names, const SheetSource &source,
                            const QString &path, QString *error)
{
    // A workbook needs at least one worksheet to open in a spreadsheet program.
    if (names.isEmpty())
        return writeWorkbook({QStringLiteral("Sheet1")}, emptySheet(), {}, path, true, error);
    return writeWorkbook(names, source, {}, path, true, error);
}

XLSXHelper::SheetSource XLSXHelper::fromList(const QList<XLSXSheet> &sheets)
{
    return [&sheets](int index, XLSXTable *table) {
        *table = sheets.value(index).second;
        return true;
    };
}

XLSXHelper::SheetSource XLSXHelper::emptySheet()
{
    return [](int, XLSXTable *table) {
        table->clear();
        return true;
    };
}

QString XLSXHelper::dateTimeText(const QDateTime &value)
{
    return value.isValid() ? value.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) : QString();
}

QString XLSXHelper::csvCell(const QVariant &value, const QString &separator)
{
    if (value.typeId() == QMetaType::QDateTime)
        return dateTimeText(value.toDateTime());
    if (isNumber(value)) {
        QByteArray text;
        appendCsvCell(text, value, separator);
        return QString::fromLatin1(text);
    }
    QString text = value.toString();
    // Both usual separators are quoted whatever this file uses: a spreadsheet that guesses
    // "," (LibreOffice offers both) must not split a comment into columns.
    if (text.contains(separator) || text.contains(QLatin1Char(';')) ||
        text.contains(QLatin1Char(',')) || text.contains(QLatin1Char('"')) ||
        text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'))) {
        text.replace(QLatin1String("\""), QLatin1String("\"\""));
        text = QLatin1Char('"') + text + QLatin1Char('"');
    }
    return text;
}

bool XLSXHelper::dataToCSV(const QList<XLSXSheet> &sheets, const QString &path,
                           const QString &separator, const QString &lineEnd, QString *error)
{
    QStringList names;
    for (const XLSXSheet &s : sheets)
        names << s.first;
    return dataToCSV(names, fromList(sheets), path, separator, lineEnd, error);
}

bool XLSXHelper::dataToCSV(const QStringList &names, const SheetSource &source, const QString &path,
                           const QString &separator, const QString &lineEnd, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        setError(error, QStringLiteral("cannot open %1: %2").arg(path, file.errorString()));
        return false;
    }
    constexpr qsizetype kChunk = 1 << 20;
    QByteArray chunk;
    chunk.reserve(kChunk + 4096);
    chunk += "\xEF\xBB\xBF";
    const QByteArray separatorBytes = separator.toUtf8();
    const QByteArray lineEndBytes = lineEnd.toUtf8();
    bool written = true;
    const auto flush = [&](bool force) {
        if (force || chunk.size() > kChunk) {
            written = written && file.write(chunk) == chunk.size();
            chunk.clear();
        }
    };
    XLSXTable table;
    for (int i = 0; i < names.size(); ++i) {
        if (!source(i, &table)) {
            file.cancelWriting();
            setError(error,
                     QStringLiteral("writing %1 stopped at the sheet \"%2\"").arg(path, names[i]));
            return false;
        }
        chunk += names[i].toUtf8() + lineEndBytes;
        for (const QList<QVariant> &row : std::as_const(table)) {
            for (const QVariant &cell : row) {
                appendCsvCell(chunk, cell, separator);
                chunk += separatorBytes;
            }
            chunk += lineEndBytes;
            flush(false);
        }
        chunk += lineEndBytes;
    }
    flush(true);
    QString why;
    if (!written) {
        why = file.errorString();
        file.cancelWriting();
    }
    if (!written || !FileUtilities::commitSaveFile(file, &why)) {
        setError(error, QStringLiteral("saving %1 failed: %2").arg(path, why));
        return false;
    }
    return true;
}

XLSXTable XLSXHelper::tableFromModel(const QAbstractItemModel *model, bool withHeader)
{
    XLSXTable table;
    if (!model)
        return table;
    const int rows = model->rowCount();
    const int columns = model->columnCount();
    if (withHeader) {
        QList<QVariant> header;
        for (int c = 0; c < columns; ++c)
            header << model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
        table << header;
    }
    for (int r = 0; r < rows; ++r) {
        QList<QVariant> row;
        for (int c = 0; c < columns; ++c)
            row << model->data(model->index(r, c), Qt::DisplayRole);
        table << row;
    }
    return table;
}

bool XLSXHelper::saveTableToXLSX(const XLSXTable &table, const QString &path,
                                 const QString &sheetName)
{
    return dataToXLSX({{sheetName, table}}, path);
}

bool XLSXHelper::tableToXLSX(const QAbstractItemModel *model, const QString &path,
                             const QString &sheetName)
{
    return saveTableToXLSX(tableFromModel(model), path, sheetName);
}

QString XLSXHelper::tableToCSVString(const QAbstractItemModel *model, const QString &separator,
                                     const QString &lineEnd)
{
    QString text;
    for (const QList<QVariant> &row : tableFromModel(model)) {
        for (const QVariant &cell : row)
            text += csvCell(cell, separator) + separator;
        text += lineEnd;
    }
    return text;
}

QStringList XLSXHelper::tableHeaderTooltips(const QAbstractItemModel *model)
{
    QStringList tips;
    if (!model)
        return tips;
    for (int c = 0; c < model->columnCount(); ++c)
        tips << model->headerData(c, Qt::Horizontal, Qt::ToolTipRole).toString();
    return tips;
}

bool XLSXHelper::tableHeaderTooltipsToXLSX(const QAbstractItemModel *model, const QString &path,
                                           const QString &sheetName)
{
    const QList<XLSXSheet> sheets = {{sheetName, tableFromModel(model)}};
    return writeWorkbook({sheetName}, fromList(sheets), {tableHeaderTooltips(model)}, path, false,
                         nullptr);
}

XLSXTable XLSXHelper::transpose(const XLSXTable &table)
{
    qsizetype columns = 0;
    for (const auto &row : table)
        columns = std::max(columns, row.size());
    XLSXTable out(columns, QList<QVariant>(table.size()));
    for (qsizetype r = 0; r < table.size(); ++r)
        for (qsizetype c = 0; c < table[r].size(); ++c)
            out[c][r] = table[r][c];
    return out;
}

QVariant XLSXHelper::convertItemToNumber(const QVariant &item)
{
    if (isNumber(item) || item.typeId() != QMetaType::QString)
        return item;
    QString text = item.toString().trimmed();
    if (text.isEmpty())
        return item;
    if (!text.contains(QLatin1Char('.')) && text.count(QLatin1Char(',')) == 1)
        text.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double d = text.toDouble(&ok);
    return ok && std::isfinite(d) ? QVariant(d) : item;
}

QString XLSXHelper::sheetName(const QString &wanted, const QStringList &taken)
{
    QString base = wanted;
    for (const QChar c : QStringLiteral("[]:*?/\\"))
        base.replace(c, QLatin1Char('_'));
    base = base.trimmed();
    // A name may not begin or end with an apostrophe.
    while (base.startsWith(QLatin1Char('\'')))
        base.remove(0, 1);
    while (base.endsWith(QLatin1Char('\'')))
        base.chop(1);
    if (base.isEmpty())
        base = QStringLiteral("Sheet");
    base.truncate(kSheetNameMax);
    const auto isTaken = [&taken](const QString &name) {
        for (const QString &t : taken)
            if (t.compare(name, Qt::CaseInsensitive) == 0)
                return true;
        return false;
    };
    QString name = base;
    for (int n = 2; isTaken(name); ++n) {
        const QString suffix = QStringLiteral(" (%1)").arg(n);
        name = base.left(kSheetNameMax - suffix.size()) + suffix;
    }
    return name;
}
