#pragma once

#include <QDateTime>
#include <functional>

// Where a class reads the time from. Production code uses the wall clock; tests hand in a clock
// they move by hand, so nothing has to sleep.
class VClock
{
public:
    using Source = std::function<qint64()>; // milliseconds since 1970-01-01 UTC

    static Source wall()
    {
        return [] { return QDateTime::currentMSecsSinceEpoch(); };
    }
};
