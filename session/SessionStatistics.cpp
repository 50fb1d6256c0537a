#include "session/SessionStatistics.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <cmath>
#include <limits>

namespace {
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

QString tr(const char *text)
{
    return QCoreApplication::translate("SessionStatistics", text);
}

QJsonObject measureJson(const SessionStatistics::Measure &m)
{
    return {{QStringLiteral("mean"), SessionStatistics::jsonNumber(m.mean)},
            {QStringLiteral("sd"), SessionStatistics::jsonNumber(m.sd)}};
}
} // namespace

SessionStatistics::Cycle SessionStatistics::Cycle::of(const CorvidaExperiment &record)
{
    Cycle c;
    c.cycle = record.getCycle();
    c.acclimation = record.getAcclimation();
    c.accepted = record.isAccepted();
    c.sbp = record.getSBP();
    c.dbp = record.getDBP();
    c.bpm = record.getBPM();
    return c;
}

SessionStatistics::Measure SessionStatistics::Measure::of(const QList<double> &values)
{
    Measure m;
    m.n = int(values.size());
    if (m.n == 0)
        return {0, kNaN, kNaN};
    double sum = 0.0;
    for (double v : values)
        sum += v;
    m.mean = sum / m.n;
    if (m.n < 2) {
        m.sd = kNaN;
        return m;
    }
    double squares = 0.0;
    for (double v : values)
        squares += (v - m.mean) * (v - m.mean);
    m.sd = std::sqrt(squares / (m.n - 1));
    return m;
}

SessionStatistics::Limits SessionStatistics::limitsFrom(const CorvidaSettings &settings)
{
    return {settings.getSessionMinAccepted(), settings.getSessionSBPSDMax()};
}

SessionStatistics::Summary SessionStatistics::summarize(const QList<Cycle> &cycles,
                                                        int planned) const
{
    Summary s;
    QList<double> sbp, dbp, map, bpm;
    for (const Cycle &c : cycles) {
        if (c.acclimation)
            continue;
        ++s.total;
        if (!c.accepted)
            continue;
        ++s.accepted;
        // A value the operator accepted without a marker has nothing to add to its mean.
        if (c.sbp > 0)
            sbp << c.sbp;
        if (c.dbp > 0)
            dbp << c.dbp;
        if (c.sbp > 0 && c.dbp > 0)
            map << c.dbp + (c.sbp - c.dbp) / 3.0;
        if (std::isfinite(c.bpm) && c.bpm > 0)
            bpm << c.bpm;
    }
    s.sbp = Measure::of(sbp);
    s.dbp = Measure::of(dbp);
    s.map = Measure::of(map);
    s.bpm = Measure::of(bpm);

    if (planned > 0 && s.total < planned)
        s.flags << tr("Incomplete: %1 of %2 cycles measured").arg(s.total).arg(planned);
    if (s.accepted < m_limits.minAccepted)
        s.flags << tr("Only %1 of %2 cycles accepted (at least %3 needed)")
                       .arg(s.accepted)
                       .arg(s.total)
                       .arg(m_limits.minAccepted);
    if (std::isfinite(s.sbp.sd) && s.sbp.sd > m_limits.maxSBPSD)
        s.flags << tr("SD of SBP %1 mmHg above %2")
                       .arg(QString::number(s.sbp.sd, 'f', 1),
                            QString::number(m_limits.maxSBPSD, 'f', 1));
    s.flagged = !s.flags.isEmpty();
    return s;
}

QJsonValue SessionStatistics::jsonNumber(double v)
{
    return std::isfinite(v) ? QJsonValue(v) : QJsonValue(QJsonValue::Null);
}

QJsonObject SessionStatistics::Summary::toJson() const
{
    return {{QStringLiteral("total"), total},
            {QStringLiteral("accepted"), accepted},
            {QStringLiteral("SBP"), measureJson(sbp)},
            {QStringLiteral("DBP"), measureJson(dbp)},
            {QStringLiteral("MAP"), measureJson(map)},
            {QStringLiteral("BPM"), measureJson(bpm)},
            {QStringLiteral("flagged"), flagged},
            {QStringLiteral("flags"), QJsonArray::fromStringList(flags)}};
}
