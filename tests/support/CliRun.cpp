#include "support/CliRun.h"

#include <QProcess>
#include <QSignalSpy>

CliRun::Result CliRun::run(const QString &program, const QString &data,
                           const QStringList &arguments, int timeoutMs)
{
    QProcess p;
    QSignalSpy finished(&p, &QProcess::finished);
    p.start(program, QStringList{QStringLiteral("--data"), data} + arguments);
    if (!p.waitForStarted() || !finished.wait(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        return {};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}
