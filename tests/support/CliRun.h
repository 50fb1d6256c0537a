#pragma once

#include <QString>
#include <QStringList>

// The real corvida-cli in a child process, with a data folder of its own. The caller's event loop
// keeps running while it waits, so a unit emulator in the test's process can answer the tool.
namespace CliRun {
struct Result {
    int status = -1; // -1 when the tool did not finish in time
    QString out;
    QString err;
};

Result run(const QString &program, const QString &data, const QStringList &arguments,
           int timeoutMs);
} // namespace CliRun
