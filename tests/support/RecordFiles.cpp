#include "support/RecordFiles.h"

#include "analysis/CorvidaOnlineExperiment.h"

#include <QFile>
#include <cmath>

namespace RecordFiles {
double pressureAt(const Plan &plan, int i)
{
    return 150.0 - i / plan.rate;
}

double pulseAt(const Plan &plan, int i)
{
    return 0.3 * std::sin(2.0 * M_PI * 5.0 * i / plan.rate);
}

QString write(const QString &folder, const Plan &plan)
{
    CorvidaOnlineExperiment e;
    const int n = int(plan.seconds * plan.rate);
    QList<double> pressure(n), pulse(n);
    for (int i = 0; i < n; ++i) {
        pressure[i] = pressureAt(plan, i);
        pulse[i] = pulseAt(plan, i);
    }
    e.setSamplingRate(plan.rate);
    e.updateData({pressure, pulse});
    e.setStartDateTime(plan.start);
    e.setRodent(plan.rodent);
    e.setComment(plan.comment);
    e.setSBP(plan.sbp);
    e.setDBP(plan.dbp);
    QString error;
    if (!e.save(folder, &error))
        return QString();
    QString path = e.getFilepath();
    path.chop(4);
    return path + QStringLiteral(".edf");
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeAll(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}
} // namespace RecordFiles
