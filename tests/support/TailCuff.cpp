#include "support/TailCuff.h"

#include <algorithm>
#include <cmath>

double TailCuff::pressureAt(double t)
{
    return t < 2 ? 80 * t : std::max(0.0, 160 - 10 * (t - 2));
}

void TailCuff::series(QList<double> *pressure, QList<double> *pulse, double seconds, Pulse shape)
{
    for (int i = 0; i < int(seconds * 1000); ++i) {
        const double t = i / 1000.0;
        const double p = pressureAt(t);
        double a = p > 120 ? 0.005 : 0.3;
        if (shape == Pulse::Grows && p <= 120)
            a = std::min(0.3, 0.01 + 0.1 * (120 - p) / 10.0);
        pressure->append(p);
        pulse->append(shape == Pulse::Flat ? 0.0 : a * std::sin(2 * M_PI * 7.5 * t));
    }
}

std::unique_ptr<CorvidaOnlineExperiment> TailCuff::measurement(double seconds, Pulse shape)
{
    auto e = std::make_unique<CorvidaOnlineExperiment>();
    QList<double> pressure, pulse;
    series(&pressure, &pulse, seconds, shape);
    e->setSamplingRate(1000);
    e->updateData({pressure, pulse});
    return e;
}

QString TailCuff::savedRecord(const QString &folder)
{
    const std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
    QString error;
    if (!e->save(folder, &error))
        return QString();
    return edfOf(e->getFilepath());
}

QString TailCuff::expOf(const QString &edf)
{
    return edf.chopped(4) + QStringLiteral(".exp");
}

QString TailCuff::edfOf(const QString &exp)
{
    return exp.chopped(4) + QStringLiteral(".edf");
}
