#include "session/SessionPlan.h"

#include "settings/CorvidaSettings.h"

SessionPlan SessionPlan::fromSettings(const CorvidaSettings &settings)
{
    SessionPlan plan;
    plan.acclimationCycles = settings.getSessionAcclimationCycles();
    plan.measurementCycles = settings.getSessionMeasurementCycles();
    plan.intervalMs = qint64(settings.getSessionInterval() * 1000.0);
    plan.pulseWaitMs = qint64(settings.getSessionPulseWait() * 1000.0);
    const QPair<double, double> limits =
        CorvidaSettings::pressureLimitPair(settings.getPressureLimit());
    plan.upperPressure = limits.first;
    plan.lowerPressure = limits.second;
    plan.acceptance = AcceptanceRules::limitsFrom(settings);
    plan.gate.minAmplitude = settings.getSessionPulseAmplitude();
    plan.gate.minHeartRate = plan.acceptance.minHeartRate;
    plan.gate.maxHeartRate = plan.acceptance.maxHeartRate;
    plan.gate.maxIrregularPercent = plan.acceptance.maxIrregularPercent;
    return plan;
}
