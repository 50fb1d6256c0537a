#include "support/SessionRig.h"

#include "analysis/CorvidaExperiment.h"

#include <QDir>
#include <cmath>

SessionRig::SessionRig(const QString &folder, const SessionPlan &plan)
{
    device.setClock([this] { return now; });
    device.setRandomSource([] { return 0.5; });
    device.setTickTimerActive(false);
    run = std::make_unique<SessionRun>(&device, folder, plan);
    run->setClock([this] { return now; });
    run->setTickTimerActive(false);
}

bool SessionRig::start()
{
    const bool started = run->start();
    run->setTickTimerActive(false);
    return started;
}

void SessionRig::step()
{
    now += kStepMs;
    if (deviceTicks)
        device.tick();
    run->tick();
}

void SessionRig::advance(qint64 ms)
{
    for (qint64 t = 0; t < ms; t += kStepMs)
        step();
}

bool SessionRig::advanceUntil(const std::function<bool()> &done, qint64 limitMs)
{
    for (qint64 t = 0; t < limitMs && !done(); t += kStepMs)
        step();
    return done();
}

QStringList SessionRig::runToEnd()
{
    QStringList paths;
    QObject::connect(run.get(), &SessionRun::cycleFinished, run.get(),
                     [&paths](const SessionRun::CycleResult &r) {
                         paths << r.file.chopped(4) + QStringLiteral(".exp");
                     });
    if (!start() || !advanceUntil([this] { return !run->isRunning(); }))
        return {};
    return run->state() == SessionRun::State::Finished ? paths : QStringList();
}

SessionPlan SessionRig::plan120(int acclimation, int cycles, const QString &rodent)
{
    SessionPlan plan;
    plan.acclimationCycles = acclimation;
    plan.measurementCycles = cycles;
    plan.intervalMs = 5000;
    plan.pulseWaitMs = 20000;
    plan.upperPressure = 120;
    plan.lowerPressure = 30;
    plan.rodent = rodent;
    return plan;
}

FolderSessions::FolderSessions(const QString &folder)
{
    QList<CorvidaExperiment *> all;
    for (const QString &name :
         QDir(folder).entryList({QStringLiteral("*.exp")}, QDir::Files, QDir::Name)) {
        records.push_back(std::make_unique<CorvidaExperiment>(QDir(folder).filePath(name)));
        all << records.back().get();
    }
    sessions = SessionCatalog::group(all, SessionStatistics());
}

QString meanSdText(const QList<double> &x)
{
    double m = 0;
    for (double v : x)
        m += v;
    m /= x.size();
    double q = 0;
    for (double v : x)
        q += (v - m) * (v - m);
    return QStringLiteral("%1 ± %2").arg(QString::number(m, 'f', 1),
                                         QString::number(std::sqrt(q / (x.size() - 1)), 'f', 1));
}
