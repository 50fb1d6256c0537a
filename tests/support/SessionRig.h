#pragma once

#include "device/VirtualCorvidaDevice.h"
#include "session/SessionCatalog.h"
#include "session/SessionRun.h"

#include <QList>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

// A simulated unit with its noise fixed at the mean, and a session on it, both on a clock the
// test moves in 50 ms steps: a session of many minutes runs in a moment and always the same way.
struct SessionRig {
    static constexpr qint64 kStepMs = 50;

    qint64 now = 1'750'000'000'000;
    VirtualCorvidaDevice device;
    std::unique_ptr<SessionRun> run;
    bool deviceTicks = true; // false: the unit falls silent

    SessionRig(const QString &folder, const SessionPlan &plan);
    // Starts the session; its own timer stays off so that only the test's steps move it.
    bool start();
    void step();
    void advance(qint64 ms);
    // Steps until the condition holds or `limitMs` have passed; true when it held.
    bool advanceUntil(const std::function<bool()> &done, qint64 limitMs = 600'000);
    // Runs the whole session; the ".exp" files of its cycles in cycle order, empty when it did
    // not finish.
    QStringList runToEnd();

    // Limits at which the simulated unit's pulse returns late enough for markers to be found.
    static SessionPlan plan120(int acclimation, int cycles,
                               const QString &rodent = QStringLiteral("R7"));
};

// The records of a folder as the records page groups them into sessions.
struct FolderSessions {
    explicit FolderSessions(const QString &folder);
    std::vector<std::unique_ptr<CorvidaExperiment>> records;
    QList<SessionCatalog::Session> sessions;
};

// "mean ± SD" with the sample SD, one decimal each, as the session tables show them.
QString meanSdText(const QList<double> &values);
