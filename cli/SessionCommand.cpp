#include "cli/SessionCommand.h"

#include "cli/CliContext.h"
#include "cli/MeasureCommand.h"
#include "device/ComCorvidaDevice.h"
#include "device/VirtualCorvidaDevice.h"
#include "session/SessionCatalog.h"
#include "session/SessionRun.h"
#include "settings/CorvidaSettings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>
#include <csignal>
#include <memory>

namespace {
constexpr int kConnectTimeoutMs = 5000;
constexpr int kInterruptedStatus = 130; // what a shell reports for a program ended by Ctrl+C

volatile std::sig_atomic_t s_interrupted = 0;

void onInterrupt(int)
{
    s_interrupted = 1;
}

QString number(double v, int decimals = 0)
{
    return v > 0 && std::isfinite(v) ? QString::number(v, 'f', decimals) : QStringLiteral("-");
}

QString meanSd(const SessionStatistics::Measure &m)
{
    if (m.n == 0)
        return QStringLiteral("-");
    return std::isfinite(m.sd)
               ? QStringLiteral("%1 ± %2").arg(m.mean, 0, 'f', 1).arg(m.sd, 0, 'f', 1)
               : QString::number(m.mean, 'f', 1);
}

// Waits on the event loop (not in a polling loop) until the unit answers or the time is up.
bool connectUnit(BaseCorvidaDevice *device)
{
    if (device->isConnected())
        return true;
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    QObject::connect(device, &BaseCorvidaDevice::connected, &loop, &QEventLoop::quit);
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(kConnectTimeoutMs);
    loop.exec();
    return device->isConnected();
}
} // namespace

bool SessionCommand::parseCounts(const QString &acclimation, const QString &cycles,
                                 const QString &interval, SessionPlan *plan, QString *why)
{
    bool ok = false;
    const int a = acclimation.trimmed().toInt(&ok);
    if (!ok || a < 0 || a > 100) {
        *why = QStringLiteral("--acclimation wants a whole number from 0 to 100, not \"%1\"")
                   .arg(acclimation);
        return false;
    }
    const int m = cycles.trimmed().toInt(&ok);
    if (!ok || m < 1 || m > 100) {
        *why =
            QStringLiteral("--cycles wants a whole number from 1 to 100, not \"%1\"").arg(cycles);
        return false;
    }
    const double s = interval.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(s) || s < 0 || s > 3600) {
        *why = QStringLiteral("--interval wants seconds from 0 to 3600, not \"%1\"").arg(interval);
        return false;
    }
    plan->acclimationCycles = a;
    plan->measurementCycles = m;
    plan->intervalMs = qint64(s * 1000.0);
    return true;
}

int SessionCommand::run(const QStringList &arguments, CliContext &context)
{
    CorvidaSettings *settings = context.settings();
    SessionPlan plan = SessionPlan::fromSettings(*settings);

    QCommandLineParser parser;
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Serial port."),
                                  QStringLiteral("PATH"));
    const QCommandLineOption simulated(QStringLiteral("simulated"),
                                       QStringLiteral("Simulated unit."));
    const QCommandLineOption limits(QStringLiteral("limits"), QStringLiteral("Cuff pressures."),
                                    QStringLiteral("U/L"));
    const QCommandLineOption acclimation(QStringLiteral("acclimation"),
                                         QStringLiteral("Acclimation cycles."), QStringLiteral("N"),
                                         QString::number(plan.acclimationCycles));
    const QCommandLineOption cycles(QStringLiteral("cycles"), QStringLiteral("Measurement cycles."),
                                    QStringLiteral("M"), QString::number(plan.measurementCycles));
    const QCommandLineOption interval(
        QStringLiteral("interval"), QStringLiteral("Seconds between cycles."), QStringLiteral("S"),
        QString::number(double(plan.intervalMs) / 1000.0));
    const QCommandLineOption rodent(QStringLiteral("rodent"), QStringLiteral("The animal."),
                                    QStringLiteral("TEXT"));
    const QCommandLineOption comment(QStringLiteral("comment"), QStringLiteral("A note."),
                                     QStringLiteral("TEXT"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    const QCommandLineOption animal = MeasureCommand::animalOption();
    parser.addOptions(
        {port, simulated, animal, limits, acclimation, cycles, interval, rodent, comment, json});
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());
    if (parser.isSet(port) == parser.isSet(simulated))
        return context.fail(QStringLiteral("name one unit: --port PATH or --simulated"));
    QString why, preset;
    if (!MeasureCommand::chooseAnimal(parser, animal, simulated, settings->getSimulatedAnimal(),
                                      &preset, &why))
        return context.fail(why);
    if (!parseCounts(parser.value(acclimation), parser.value(cycles), parser.value(interval), &plan,
                     &why))
        return context.fail(why);
    if (parser.isSet(limits)) {
        QPair<double, double> pair;
        if (!MeasureCommand::parseLimits(parser.value(limits), &pair))
            return context.fail(QStringLiteral("bad limits \"%1\": give UPPER/LOWER in mmHg, "
                                               "upper above lower, at most 300")
                                    .arg(parser.value(limits)));
        plan.upperPressure = pair.first;
        plan.lowerPressure = pair.second;
    }
    plan.rodent = parser.value(rodent);
    plan.comment = parser.value(comment);

    std::unique_ptr<BaseCorvidaDevice> device;
    if (parser.isSet(simulated)) {
        auto simulatedUnit = std::make_unique<VirtualCorvidaDevice>();
        simulatedUnit->setAnimal(preset);
        device = std::move(simulatedUnit);
    } else {
        if (!MeasureCommand::probePort(parser.value(port), &why))
            return context.fail(why);
        device = std::make_unique<ComCorvidaDevice>(parser.value(port));
    }
    if (!connectUnit(device.get()))
        return context.fail(QStringLiteral("%1: the unit does not answer").arg(parser.value(port)));

    SessionRun run(device.get(), context.recordsFolder(), plan);
    run.setRecordRaw(settings->getSaveRawData());
    const bool live = CliContext::stderrIsTerminal();
    QTextStream &err = context.err();
    QObject::connect(&run, &SessionRun::waitingForPulse, &run, [&](int cycle) {
        if (live)
            err << QStringLiteral("cycle %1: waiting for a pulse\n").arg(cycle) << Qt::flush;
    });
    QObject::connect(&run, &SessionRun::cycleStarted, &run,
                     [&](int, bool isAcclimation, int k, int n, bool pulseBefore) {
                         if (!live)
                             return;
                         err << (isAcclimation ? QStringLiteral("acclimation %1 of %2")
                                               : QStringLiteral("cycle %1 of %2"))
                                    .arg(k)
                                    .arg(n)
                             << (pulseBefore ? "" : " (no pulse before inflation)") << " ...\n"
                             << Qt::flush;
                     });
    QObject::connect(&run, &SessionRun::cycleFinished, &run, [&](const SessionRun::CycleResult &r) {
        if (!live)
            return;
        err << QStringLiteral("  %1/%2 mmHg, MAP %3, %4 bpm: %5\n")
                   .arg(number(r.sbp), number(r.dbp), number(r.map), number(r.bpm),
                        r.accepted ? QStringLiteral("accepted")
                                   : QStringLiteral("rejected: ") + r.reason)
            << Qt::flush;
    });

    s_interrupted = 0;
    auto previousInt = std::signal(SIGINT, onInterrupt);
    auto previousTerm = std::signal(SIGTERM, onInterrupt);
    QEventLoop loop;
    QObject::connect(&run, &SessionRun::finished, &loop, &QEventLoop::quit);
    QTimer interruptWatch;
    QObject::connect(&interruptWatch, &QTimer::timeout, &run, [&] {
        if (s_interrupted)
            run.abort();
    });
    interruptWatch.start(100);
    if (!run.start()) {
        std::signal(SIGINT, previousInt);
        std::signal(SIGTERM, previousTerm);
        return context.fail(QStringLiteral("the session could not start (records folder %1)")
                                .arg(context.recordsFolder()));
    }
    if (run.isRunning())
        loop.exec();
    interruptWatch.stop();
    std::signal(SIGINT, previousInt);
    std::signal(SIGTERM, previousTerm);

    QList<SessionStatistics::Cycle> statCycles;
    QJsonArray jsonCycles;
    for (const SessionRun::CycleResult &r : run.results()) {
        statCycles << SessionStatistics::Cycle{r.cycle, r.acclimation, r.accepted,
                                               r.sbp,   r.dbp,         r.bpm};
        jsonCycles << SessionCatalog::cycleJson(r.cycle, r.acclimation, r.file, r.sbp, r.dbp, r.bpm,
                                                r.accepted, r.reason);
    }
    const SessionStatistics::Summary summary =
        SessionStatistics(SessionStatistics::limitsFrom(*settings))
            .summarize(statCycles, plan.measurementCycles);

    QTextStream &out = context.out();
    if (parser.isSet(json)) {
        const QJsonObject object{{QStringLiteral("rodent"), plan.rodent},
                                 {QStringLiteral("unit"), run.unitName()},
                                 {QStringLiteral("started"), run.started().toString(Qt::ISODate)},
                                 {QStringLiteral("cycles"), jsonCycles},
                                 {QStringLiteral("summary"), summary.toJson()}};
        out << QJsonDocument(object).toJson(QJsonDocument::Indented);
    } else {
        out << "cycle;kind;file;SBP;DBP;MAP;BPM;accepted;reason\n";
        for (const SessionRun::CycleResult &r : run.results())
            out << QStringList{QString::number(r.cycle),
                               r.acclimation ? QStringLiteral("acclimation")
                                             : QStringLiteral("measurement"),
                               r.file,
                               number(r.sbp),
                               number(r.dbp),
                               number(r.map),
                               number(r.bpm),
                               r.accepted ? QStringLiteral("yes") : QStringLiteral("no"),
                               r.reason}
                       .join(QLatin1Char(';'))
                << '\n';
        out << "accepted " << summary.accepted << " of " << summary.total << '\n'
            << "SBP " << meanSd(summary.sbp) << " mmHg\n"
            << "DBP " << meanSd(summary.dbp) << " mmHg\n"
            << "MAP " << meanSd(summary.map) << " mmHg\n"
            << "heart rate " << meanSd(summary.bpm) << " bpm\n";
        for (const QString &flag : summary.flags)
            out << "flag: " << flag << '\n';
    }
    out.flush();

    if (run.state() == SessionRun::State::Finished)
        return 0;
    context.fail(run.message());
    return run.state() == SessionRun::State::Aborted && s_interrupted ? kInterruptedStatus : 1;
}
