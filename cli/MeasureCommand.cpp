#include "cli/MeasureCommand.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "cli/AnalyzeCommand.h"
#include "cli/CliContext.h"
#include "cli/InterruptWatcher.h"
#include "device/ComCorvidaDevice.h"
#include "device/SyntheticAnimal.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/QuorvexCommon.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QSerialPort>
#include <QTimer>
#include <cmath>
#include <functional>
#include <memory>
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {
constexpr int kConnectTimeoutMs = 5000;
constexpr double kMaximumPressure = 300.0;
// After the asked time the last packet may still be on its way; a unit that sends less than
// that is stopped anyway once this much more time has passed.
constexpr int kLateSamplesMs = 2000;
// How often a wait looks at its condition. The loop sleeps in between (port data, timers and
// Ctrl+C wake it as well), so one unit costs next to no processor time.
constexpr int kCheckIntervalMs = 25;

// Runs the event loop until `done` says so, Ctrl+C arrives or the time is up; true when done.
bool waitFor(const std::function<bool()> &done, int timeoutMs, InterruptWatcher &interrupts)
{
    if (done())
        return true;
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    QTimer timeout;
    timeout.setSingleShot(true);
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&interrupts, &InterruptWatcher::interrupted, &loop, &QEventLoop::quit);
    check.start(kCheckIntervalMs);
    timeout.start(timeoutMs);
    if (!interrupts.isInterrupted())
        loop.exec();
    return done();
}

// Whether this user may open the device file itself (a port name without a folder is in /dev).
bool mayReadAndWrite(const QString &port)
{
#ifdef Q_OS_UNIX
    const QString path = port.startsWith(QLatin1Char('/')) ? port : QStringLiteral("/dev/") + port;
    return ::access(QFile::encodeName(path).constData(), R_OK | W_OK) == 0;
#else
    Q_UNUSED(port);
    return false;
#endif
}

QString secondsText(double seconds)
{
    return QString::number(seconds, 'f', 1);
}
} // namespace

bool MeasureCommand::parseLimits(const QString &text, QPair<double, double> *limits)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    if (parts.size() != 2)
        return false;
    bool okUpper = false;
    bool okLower = false;
    const double upper = parts[0].trimmed().toDouble(&okUpper);
    const double lower = parts[1].trimmed().toDouble(&okLower);
    // The unit takes whole mmHg, cut toward zero: the limits must still differ after the cut.
    // "nan" and "inf" read as numbers and compare false with everything, so they are refused
    // here by name.
    if (!okUpper || !okLower || !std::isfinite(upper) || !std::isfinite(lower) ||
        std::trunc(lower) < 1 || std::trunc(upper) <= std::trunc(lower) || upper > kMaximumPressure)
        return false;
    *limits = {upper, lower};
    return true;
}

bool MeasureCommand::probePort(const QString &port, QString *why)
{
    QSerialPort probe(port);
    if (probe.open(QIODevice::ReadWrite)) {
        probe.close();
        return true;
    }
    switch (probe.error()) {
    case QSerialPort::DeviceNotFoundError:
        *why = QStringLiteral("%1: no such port").arg(port);
        break;
    case QSerialPort::PermissionError:
        // The serial port reports a port that another program holds (its lock file, or the
        // exclusive mode of the terminal) as a permission error too. When we may read and write
        // the device file, it is taken, not forbidden.
        if (mayReadAndWrite(port))
            *why = QStringLiteral("%1: port busy: another program is using it").arg(port);
        else
            *why = QStringLiteral("%1: permission denied (is your user in the plugdev group, or "
                                  "logged in at this computer?)")
                       .arg(port);
        break;
    default:
        *why = QStringLiteral("%1: port busy or unusable (%2)").arg(port, probe.errorString());
        break;
    }
    return false;
}

QCommandLineOption MeasureCommand::animalOption()
{
    return QCommandLineOption(
        QStringLiteral("animal"),
        QStringLiteral("What the simulated unit plays: none (the test signal), ") +
            SyntheticAnimal::presetNames().join(QStringLiteral(", ")) +
            QStringLiteral(" (default: the Simulated animal setting)."),
        QStringLiteral("NAME"));
}

bool MeasureCommand::chooseAnimal(const QCommandLineParser &parser,
                                  const QCommandLineOption &animal,
                                  const QCommandLineOption &simulated, const QString &setting,
                                  QString *preset, QString *why)
{
    if (!parser.isSet(animal)) {
        *preset = setting;
        return true;
    }
    if (!parser.isSet(simulated)) {
        *why = QStringLiteral("--animal is for a simulated unit (--simulated)");
        return false;
    }
    const QString name = parser.value(animal).trimmed().toLower();
    SyntheticAnimal::Preset known;
    if (name == QLatin1String("none")) {
        preset->clear();
        return true;
    }
    if (!SyntheticAnimal::presetFromName(name, &known)) {
        *why = QStringLiteral("unknown animal \"%1\"; use none, %2")
                   .arg(parser.value(animal),
                        SyntheticAnimal::presetNames().join(QStringLiteral(", ")));
        return false;
    }
    *preset = name;
    return true;
}

int MeasureCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption port(
        QStringLiteral("port"), QStringLiteral("Serial port of the unit."), QStringLiteral("NAME"));
    const QCommandLineOption simulated(QStringLiteral("simulated"),
                                       QStringLiteral("Simulated unit."));
    const QCommandLineOption limitsOption(
        QStringLiteral("limits"),
        QStringLiteral("Cuff pressures in mmHg, e.g. 200/50 (default: the "
                       "Pressure limits setting)."),
        QStringLiteral("UPPER/LOWER"));
    const QCommandLineOption secondsOption(
        QStringLiteral("seconds"),
        QStringLiteral("Recording time in seconds, 1 to 3600 (default 15). "
                       "Ctrl+C ends it early and keeps the record."),
        QStringLiteral("N"), QStringLiteral("15"));
    const QCommandLineOption rodent(QStringLiteral("rodent"), QStringLiteral("The animal."),
                                    QStringLiteral("TEXT"));
    const QCommandLineOption comment(QStringLiteral("comment"), QStringLiteral("A note."),
                                     QStringLiteral("TEXT"));
    const QCommandLineOption animal = animalOption();
    parser.addOptions({port, simulated, animal, limitsOption, secondsOption, rodent, comment});
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (parser.isSet(port) == parser.isSet(simulated))
        return context.fail(QStringLiteral("name one unit: --port NAME or --simulated"));
    QString preset, why;
    if (!chooseAnimal(parser, animal, simulated, context.settings()->getSimulatedAnimal(), &preset,
                      &why))
        return context.fail(why);

    bool ok = false;
    const double seconds = parser.value(secondsOption).toDouble(&ok);
    // "nan" reads as a number that compares false with everything: test for a real one.
    if (!ok || !std::isfinite(seconds) || seconds < MinimumSeconds || seconds > 3600)
        return context.fail(QStringLiteral("--seconds wants a number from 1 to 3600 (a record "
                                           "holds at least one second)"));
    QPair<double, double> limits =
        CorvidaSettings::pressureLimitPair(context.settings()->getPressureLimit());
    if (parser.isSet(limitsOption) && !parseLimits(parser.value(limitsOption), &limits))
        return context.fail(
            QStringLiteral("bad limits \"%1\": give UPPER/LOWER in whole mmHg, upper above "
                           "lower, lower at least 1, upper at most 300")
                .arg(parser.value(limitsOption)));

    // From here on Ctrl+C and SIGTERM end the command in order: the cuff is released, what was
    // recorded is kept and the port is closed (which also removes its lock file).
    InterruptWatcher interrupts;
    const auto interruptedStatus = [&](const QString &what) {
        context.fail(QStringLiteral("stopped by %1: %2")
                         .arg(InterruptWatcher::signalName(interrupts.signalNumber()), what));
        return InterruptWatcher::exitStatus(interrupts.signalNumber());
    };

    std::unique_ptr<BaseCorvidaDevice> device;
    if (parser.isSet(simulated)) {
        auto simulatedUnit = std::make_unique<VirtualCorvidaDevice>();
        simulatedUnit->setAnimal(preset);
        device = std::move(simulatedUnit);
    } else {
        if (!probePort(parser.value(port), &why))
            return context.fail(why);
        device = std::make_unique<ComCorvidaDevice>(parser.value(port));
    }
    if (!waitFor([&] { return device->isConnected(); }, kConnectTimeoutMs, interrupts)) {
        if (interrupts.isInterrupted())
            return interruptedStatus(QStringLiteral("nothing was recorded"));
        return context.fail(QStringLiteral("%1: the unit does not answer").arg(parser.value(port)));
    }
    device->setPressureLimits(limits.first, limits.second);

    LiveRecorder recorder(device.get());
    recorder.setRecordRaw(context.settings()->getSaveRawData());
    if (!recorder.turnOn() || !recorder.measure())
        return context.fail(QStringLiteral("the unit did not start measuring"));
    CorvidaOnlineExperiment *experiment = recorder.experiment();
    experiment->setRodent(parser.value(rodent));
    experiment->setComment(parser.value(comment));

    const bool progress = CliContext::stderrIsTerminal();
    const double rate = device->sampleRate();
    QElapsedTimer clock;
    clock.start();
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, &ticker, [&] {
        if (!progress)
            return;
        context.err() << QStringLiteral("\r%1 s  %2 mmHg  %3 bpm   ")
                             .arg(clock.elapsed() / 1000.0, 5, 'f', 1)
                             .arg(recorder.lastPressure(), 6, 'f', 1)
                             .arg(recorder.lastHeartRate(), 4, 'f', 0);
        context.err().flush();
    });
    ticker.start(200);
    // The record is as long as asked when it holds that many samples; the clock alone stops
    // short, because the first samples arrive a little after the command that starts them.
    const qsizetype wanted = qsizetype(std::ceil(seconds * rate));
    waitFor(
        [&] {
            return recorder.recordedSamples() >= wanted || !device->isConnected() ||
                   recorder.isLinkLost() || recorder.isLimitReached();
        },
        int(seconds * 1000) + kLateSamplesMs, interrupts);
    ticker.stop();
    if (progress)
        context.err() << '\n';
    const bool unitLost = !device->isConnected();
    // Stop-measuring and stop go to the unit now, whatever ended the wait.
    recorder.abort();

    QString error;
    QuorvexCommon::CreateDirIfNotExists(context.recordsFolder());
    const double recorded = rate > 0 ? double(recorder.recordedSamples()) / rate : 0.0;
    if (interrupts.isInterrupted() && recorded < MinimumSeconds)
        return interruptedStatus(QStringLiteral("%1 s recorded, too short to keep (a record "
                                                "holds at least one second); nothing was saved")
                                     .arg(secondsText(recorded)));
    if (!recorder.save(context.recordsFolder(), &error)) {
        if (interrupts.isInterrupted())
            return interruptedStatus(QStringLiteral("the record was not saved: %1").arg(error));
        return context.fail(QStringLiteral("the record was not saved: %1").arg(error));
    }
    const QString edf = recorder.savedPath().chopped(4) + QStringLiteral(".edf");
    // The result of the record as it was saved, which is what `analyze` of it prints too.
    CorvidaExperiment stored(recorder.savedPath());
    stored.setAutoSave(false);
    stored.getPressure(); // reading the recording runs its analysis
    context.out() << AnalyzeCommand::header() << '\n'
                  << AnalyzeCommand::resultLine(edf, stored) << '\n';
    context.out().flush();
    if (recorder.isPressureUncalibrated()) {
        context.err() << QStringLiteral("corvida-cli: warning: the unit's pressure calibration "
                                        "was not accepted; the pressures of this record are "
                                        "sensor values, not mmHg, and it is marked so\n");
        context.err().flush();
    }
    if (interrupts.isInterrupted())
        return interruptedStatus(QStringLiteral("the unit is stopped; the %1 s recorded are saved")
                                     .arg(secondsText(recorded)));
    if (recorder.isLinkLost())
        return context.fail(QStringLiteral("the link to the unit was lost during the "
                                           "measurement; what was recorded is saved"));
    if (recorder.isLimitReached())
        return context.fail(QStringLiteral("the measurement was stopped at its limit of %1 "
                                           "minutes; what was recorded is saved")
                                .arg(LiveRecorder::MaxMeasurementSeconds / 60));
    if (unitLost)
        return context.fail(QStringLiteral("the unit went away during the measurement; what was "
                                           "recorded is saved"));
    return 0;
}
