#pragma once

#include "storage/ZipStreamWriter.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

// Writes an XLSX workbook of plain tables, one worksheet at a time, as fast as the disk takes it.
//
// The worksheets, which hold nearly every byte of an export, are written here directly: cell by
// cell into a buffer and deflated on the way to the file. The small parts around them (workbook,
// styles, theme, document properties) are left to the spreadsheet library, which writes them for
// a workbook of empty sheets of the same names; they are then taken over as stored. The sheets
// come out exactly as the library writes them in its streaming mode: the same cells, numbers
// with 16 significant digits, texts inline.
class XLSXWorkbookWriter
{
public:
    explicit XLSXWorkbookWriter(const QString &path);

    bool open();
    // Adds a worksheet with the cells of `table` (rows of numbers, texts, booleans and date-times)
    // from the first cell on. `firstColumnWidth` in characters widens the first column; 0 keeps
    // the default. False when a cell lies beyond the limits of a worksheet.
    bool addSheet(const QString &name, const QList<QList<QVariant>> &table,
                  double firstColumnWidth = 0.0);
    // Writes the rest of the workbook and closes the file.
    bool close();
    QString errorString() const;

    // A number as the sheet holds it: 16 significant digits, like printf's "%.16G".
    static int numberText(double value, char *out);

private:
    bool fail(const QString &why);
    bool flushBuffer(bool force);
    void appendCellReference(qsizetype row, qsizetype column);
    void appendText(const QString &text);

    ZipStreamWriter m_zip;
    QString m_path;
    QString m_error;
    QStringList m_names;
    bool m_usesDates = false;
    QByteArray m_buffer;
    QByteArray m_utf8;
    QList<QByteArray> m_columnNames;
};
