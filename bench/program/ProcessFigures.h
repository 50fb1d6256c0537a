#pragma once

#include <QFile>
#include <QList>

#include <ctime>
#include <unistd.h>

// What the load runs report of their own process.
namespace ProcessFigures {

// Processor time used so far, in seconds.
inline double cpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Resident memory now, in MiB.
inline double residentMiB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0.0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * double(sysconf(_SC_PAGESIZE)) / 1048576.0
                             : 0.0;
}

} // namespace ProcessFigures
