#pragma once

#include "session/AcceptanceRules.h"
#include "session/PulseGate.h"

#include <QString>

class CorvidaSettings;

// What one session is to do: how many cycles, the pause between them, the cuff pressures, the
// animal, and the limits of the pulse gate and of acceptance.
struct SessionPlan {
    int acclimationCycles = 5;
    int measurementCycles = 10;
    qint64 intervalMs = 10000;  // from the end of one cycle to the start of the next
    qint64 pulseWaitMs = 60000; // how long to wait for a pulse before inflating anyway
    qint64 gateWindowMs = 3000; // the stretch of live pulse the gate judges
    qint64 settleMs = 1000;     // the cuff must stay below the lower limit this long
    qint64 maxCycleMs = 90000;  // a cycle that never deflates is ended after this
    qint64 silenceMs = 5000;    // a unit that sends nothing for this long is lost
    double upperPressure = 200.0;
    double lowerPressure = 50.0;
    QString rodent;
    QString comment;
    PulseGate::Limits gate;
    AcceptanceRules::Limits acceptance;

    int totalCycles() const { return acclimationCycles + measurementCycles; }

    // Counts, interval, pressures and limits from the application settings.
    static SessionPlan fromSettings(const CorvidaSettings &settings);
};
