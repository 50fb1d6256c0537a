#include "support/RecordFiles.h"

#include "analysis/CorvidaOnlineExperiment.h"

#include <QFile>
#include <cmath>

namespace RecordFiles {
double pressureAt(const Spec &spec, int i)
{
    return 150.0 - i / spec.rate;
}

double pulseAt(const Spec &spec, int i)
{
    return 0.3 * std::sin(2.0 * M_PI * 5.0 * i / spec.rate);
}

QString write(const QString &folder, const Spec &spec)
{
    CorvidaOnlineExperiment e;
    const int n = int(spec.seconds * spec.rate);
    QList<double> pressure(n), pulse(n);
    for (int i = 0; i < n; ++i) {
        pressure[i] = pressureAt(spec, i);
        pulse[i] = pulseAt(spec, i);
    }
    e.setSamplingRate(spec.rate);
    e.updateData({pressure, pulse});
    e.setStartDateTime(spec.start);
    e.setRodent(spec.rodent);
    e.setComment(spec.comment);
    e.setSBP(spec.sbp);
    e.setDBP(spec.dbp);
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
} // namespace RecordFiles
