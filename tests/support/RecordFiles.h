#pragma once

#include <QDateTime>
#include <QString>

// Records on disk for tests of the records folder: a real ".edf"/".exp" pair written the way the
// program writes a measurement. Also plain file reading and writing for any test.
namespace RecordFiles {
struct Plan {
    QDateTime start;
    QString rodent = {};
    QString comment = {};
    double sbp = 0.0;
    double dbp = 0.0;
    double seconds = 2.0;
    double rate = 100.0;
};

// Pressure falls from 150 mmHg by 1 mmHg per second and the pulse is a 0.3 V sine at 5 Hz, so a
// sample's values can be worked out by hand. Returns the ".edf" path, empty on failure.
QString write(const QString &folder, const Plan &plan);
// The same recording as the pressure and pulse value of sample i.
double pressureAt(const Plan &plan, int i);
double pulseAt(const Plan &plan, int i);
QByteArray readAll(const QString &path);
bool writeAll(const QString &path, const QByteArray &bytes);
} // namespace RecordFiles
