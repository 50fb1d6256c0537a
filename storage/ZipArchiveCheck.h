#pragma once

#include <QString>
#include <QStringList>

// Reads a written zip archive (an XLSX workbook is one) back from disk and checks that it is
// whole: the central directory is there, every member it lists is present, inflates to its
// declared size with its declared checksum, and every XML member is a complete document. The
// spreadsheet library does not notice when its temporary sheet files could not be written, so
// a workbook is only reported as saved once this check has passed.
class ZipArchiveCheck
{
public:
    // True when the archive is whole and holds every member named in `required`. Otherwise
    // `why` (when given) names the first fault found.
    static bool isComplete(const QString &path, const QStringList &required,
                           QString *why = nullptr);
};
