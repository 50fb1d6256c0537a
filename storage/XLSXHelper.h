#pragma once

#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>

class QAbstractItemModel;
typedef struct lxw_worksheet lxw_worksheet;
typedef struct lxw_format lxw_format;

// One table: rows of cells, each a number or a text.
using XLSXTable = QList<QList<QVariant>>;
// A named table, one worksheet of a workbook.
using XLSXSheet = QPair<QString, XLSXTable>;

// Writes tables as XLSX workbooks or CSV text. The spreadsheet library stays behind this class:
// nothing else in the program includes it.
//
// Files are written under a temporary name beside the target and renamed into place at the end,
// so a failure or a cancelled export never leaves a half-written file under the chosen name.
class XLSXHelper
{
public:
    // Fills in the table of the sheet with the given index, one sheet at a time, so a workbook of
    // long recordings never has to be held in memory whole. Returning false stops the write: it
    // then fails and leaves no file behind (how an export is cancelled).
    using SheetSource = std::function<bool(int index, XLSXTable *table)>;

    // One worksheet per sheet, in order. Numbers are written as numbers, everything else as text.
    static bool dataToXLSX(const QList<XLSXSheet> &sheets, const QString &path,
                           QString *error = nullptr);
    // Each sheet: its name on a line, then each row with every cell followed by the separator,
    // then the line end; an empty line after the sheet. UTF-8 with a byte order mark.
    static bool dataToCSV(const QList<XLSXSheet> &sheets, const QString &path,
                          const QString &separator = QStringLiteral(";"),
                          const QString &lineEnd = QStringLiteral("\r\n"),
                          QString *error = nullptr);
    // The same, with the tables asked from `source` as each sheet is written.
    static bool dataToXLSX(const QStringList &names, const SheetSource &source, const QString &path,
                           QString *error = nullptr);
    static bool dataToCSV(const QStringList &names, const SheetSource &source, const QString &path,
                          const QString &separator, const QString &lineEnd,
                          QString *error = nullptr);

    // A model's visible content as a table; the horizontal header becomes the first row.
    static XLSXTable tableFromModel(const QAbstractItemModel *model, bool withHeader = true);
    static bool tableToXLSX(const QAbstractItemModel *model, const QString &path,
                            const QString &sheetName = QStringLiteral("Sheet1"));
    static bool saveTableToXLSX(const XLSXTable &table, const QString &path,
                                const QString &sheetName = QStringLiteral("Sheet1"));
    static QString tableToCSVString(const QAbstractItemModel *model,
                                    const QString &separator = QStringLiteral(";"),
                                    const QString &lineEnd = QStringLiteral("\r\n"));
    // The tooltips of the horizontal header, one per column (empty where a column has none).
    static QStringList tableHeaderTooltips(const QAbstractItemModel *model);
    // Like tableToXLSX, with each header tooltip attached to its header cell as a comment.
    static bool tableHeaderTooltipsToXLSX(const QAbstractItemModel *model, const QString &path,
                                          const QString &sheetName = QStringLiteral("Sheet1"));

    static XLSXTable transpose(const XLSXTable &table);
    // A text that reads as a number (point or comma as decimal mark) becomes that number;
    // anything else is returned unchanged.
    static QVariant convertItemToNumber(const QVariant &item);
    // Writes the table into a worksheet from the given cell on. A date-time cell becomes a real
    // date cell in `dateFormat` (as text when none is given). False when a cell lies beyond the
    // format's limits or the library refuses it.
    static bool fillSheet(lxw_worksheet *sheet, const XLSXTable &table, int firstRow = 0,
                          int firstColumn = 0, lxw_format *dateFormat = nullptr);
    // How a date-time cell reads in CSV and where a spreadsheet cannot take a date.
    static QString dateTimeText(const QDateTime &value);

    // A text for one cell in CSV: numbers in plain form with a point, texts quoted when they hold
    // the separator, ";" or ",", a quote or a line break.
    static QString csvCell(const QVariant &value, const QString &separator);
    // A worksheet name the format accepts (at most 31 characters, none of []:*?/\), unique
    // among the names already taken (compared without regard to case).
    static QString sheetName(const QString &wanted, const QStringList &taken);
    static bool isNumber(const QVariant &value);

private:
    // Hands out the tables of a list that outlives the write.
    static SheetSource fromList(const QList<XLSXSheet> &sheets);
    static SheetSource emptySheet();
};
