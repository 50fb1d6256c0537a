#include "session/AcceptanceRules.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace {
// A beat more than this far from the usual rate is not the animal's rhythm: a movement, a
// missed beat or a spike.
constexpr double kIrregularDeviation = 0.2;

QString tr(const char *text)
{
    return QCoreApplication::translate("AcceptanceRules", text);
}

QString number(double v)
{
    return QString::number(v, 'f', 0);
}
} // namespace

AcceptanceRules::Limits AcceptanceRules::limitsFrom(const CorvidaSettings &settings)
{
    Limits l;
    l.minHeartRate = settings.getSessionHeartRateMin();
    l.maxHeartRate = settings.getSessionHeartRateMax();
    l.minSBP = settings.getSessionSBPMin();
    l.maxSBP = settings.getSessionSBPMax();
    l.minDBP = settings.getSessionDBPMin();
    l.maxDBP = settings.getSessionDBPMax();
    l.minPulsePressure = settings.getSessionPulsePressureMin();
    l.maxIrregularPercent = settings.getSessionIrregularBeatsMax();
    return l;
}

AcceptanceRules::Verdict AcceptanceRules::judge(const Facts &f) const
{
    QStringList reasons;
    if (!f.pulseBefore)
        reasons << tr("No pulse before inflation");
    const bool hasSystolic = f.sbp > 0;
    const bool hasDiastolic = f.dbp > 0;
    if (!hasSystolic)
        reasons << tr("No systolic point found");
    if (!hasDiastolic)
        reasons << tr("No diastolic point found");
    if (!std::isfinite(f.bpm) || f.bpm <= 0)
        reasons << tr("No heart rate found");
    else if (f.bpm < m_limits.minHeartRate || f.bpm > m_limits.maxHeartRate)
        reasons << tr("Heart rate %1 bpm outside %2 to %3")
                       .arg(number(f.bpm), number(m_limits.minHeartRate),
                            number(m_limits.maxHeartRate));
    if (hasSystolic && (f.sbp < m_limits.minSBP || f.sbp > m_limits.maxSBP))
        reasons << tr("SBP %1 mmHg outside %2 to %3")
                       .arg(number(f.sbp), number(m_limits.minSBP), number(m_limits.maxSBP));
    if (hasDiastolic && (f.dbp < m_limits.minDBP || f.dbp > m_limits.maxDBP))
        reasons << tr("DBP %1 mmHg outside %2 to %3")
                       .arg(number(f.dbp), number(m_limits.minDBP), number(m_limits.maxDBP));
    if (hasSystolic && hasDiastolic && f.sbp - f.dbp < m_limits.minPulsePressure)
        reasons << tr("SBP only %1 mmHg above DBP (at least %2 needed)")
                       .arg(number(f.sbp - f.dbp), number(m_limits.minPulsePressure));
    if (f.irregularPercent > m_limits.maxIrregularPercent)
        reasons << tr("Irregular beats (%1 %), the animal probably moved")
                       .arg(number(f.irregularPercent));
    return {reasons.isEmpty(), reasons.join(QStringLiteral("; "))};
}

double AcceptanceRules::irregularPercent(const QList<QPointF> &heartRate, double fromTime)
{
    QList<double> rates;
    for (const QPointF &p : heartRate) {
        if (p.x() >= fromTime)
            rates << p.y();
    }
    if (rates.size() < 3)
        return 100.0;
    QList<double> sorted = rates;
    std::sort(sorted.begin(), sorted.end());
    const qsizetype mid = sorted.size() / 2;
    const double median = sorted.size() % 2 ? sorted[mid] : (sorted[mid - 1] + sorted[mid]) / 2.0;
    if (!(median > 0))
        return 100.0;
    const auto off = std::count_if(rates.cbegin(), rates.cend(), [median](double r) {
        return !(std::fabs(r - median) <= kIrregularDeviation * median);
    });
    return 100.0 * double(off) / double(rates.size());
}

AcceptanceRules::Facts AcceptanceRules::factsOf(const CorvidaExperiment &record)
{
    Facts f;
    f.sbp = record.getSBP();
    f.dbp = record.getDBP();
    f.bpm = record.getBPM();
    // Judge the beats from the return of the pulse on: above the systolic pressure there is no
    // pulse to be regular.
    const double from = record.getSBPTime() > 0 ? record.getSBPTime() : 0.0;
    f.irregularPercent = irregularPercent(record.heartRateSeries(), from);
    f.pulseBefore = record.getPulseBefore();
    return f;
}

AcceptanceRules::Verdict AcceptanceRules::apply(CorvidaExperiment &record) const
{
    const Verdict v = judge(factsOf(record));
    record.setAccepted(v.accepted);
    record.setReason(v.reason);
    return v;
}
