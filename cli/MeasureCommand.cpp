#include "cli/MeasureCommand.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "cli/AnalyzeCommand.h"
#include "cli/CliContext.h"
#include "device/ComCorvidaDevice.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/QuorvexCommon.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QSerialPort>
#include <QTimer>
#include <memory>

namespace {
constexpr int kConnectTimeoutMs = 5000;
constexpr double kMaximumPressure = 300.0;

// Runs the event loop until `done` says so or the time is up; true when done.
bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return true;
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
    if (!okUpper || !okLower || lower <= 0 || upper <= lower || upper > kMaximumPressure)
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
        *why =
            QStringLiteral("%1: permission denied (is your user in the plugdev group, or logged in at this computer?)").arg(port);
        break;
    default:
        *why = QStringLiteral("%1: port busy or unusable (%2)").arg(port, probe.errorString());
        break;
    }
    return false;
}

int MeasureCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption port(
        QStringLiteral("port"), QStringLiteral("Serial port of the unit."), QStringLiteral("NAME"));
    const QCommandLineOption simulated(QStringLiteral("simulated"),
                                       QStringLiteral("Simulated unit."));
    const QCommandLineOption limitsOption(QStringLiteral("limits"),
                                          QStringLiteral("Cuff pressures in mmHg."),
                                          QStringLiteral("UPPER/LOWER"));
    const QCommandLineOption secondsOption(QStringLiteral("seconds"),
                                           QStringLiteral("Recording time (default 15)."),
                                           QStringLiteral("N"), QStringLiteral("15"));
    const QCommandLineOption rodent(QStringLiteral("rodent"), QStringLiteral("The animal."),
                                    QStringLiteral("TEXT"));
    const QCommandLineOption comment(QStringLiteral("comment"), QStringLiteral("A note."),
                                     QStringLiteral("TEXT"));
    parser.addOptions({port, simulated, limitsOption, secondsOption, rodent, comment});
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (parser.isSet(port) == parser.isSet(simulated))
        return context.fail(QStringLiteral("name one unit: --port NAME or --simulated"));

    bool ok = false;
    const double seconds = parser.value(secondsOption).toDouble(&ok);
    if (!ok || seconds < 1 || seconds > 3600)
        return context.fail(QStringLiteral("--seconds wants a number from 1 to 3600"));
    QPair<double, double> limits =
        CorvidaSettings::pressureLimitPair(context.settings()->getPressureLimit());
    if (parser.isSet(limitsOption) && !parseLimits(parser.value(limitsOption), &limits))
        return context.fail(
            QStringLiteral("bad limits \"%1\": give UPPER/LOWER in mmHg, upper above "
                           "lower, at most 300")
                .arg(parser.value(limitsOption)));

    std::unique_ptr<BaseCorvidaDevice> device;
    if (parser.isSet(simulated)) {
        device = std::make_unique<VirtualCorvidaDevice>();
    } else {
        QString why;
        if (!probePort(parser.value(port), &why))
            return context.fail(why);
        device = std::make_unique<ComCorvidaDevice>(parser.value(port));
    }
    if (!waitFor([&] { return device->isConnected(); }, kConnectTimeoutMs))
        return context.fail(QStringLiteral("%1: the unit does not answer").arg(parser.value(port)));
    device->setPressureLimits(limits.first, limits.second);

    LiveRecorder recorder(device.get());
    recorder.setRecordRaw(context.settings()->getSaveRawData());
    if (!recorder.turnOn() || !recorder.measure())
        return context.fail(QStringLiteral("the unit did not start measuring"));
    CorvidaOnlineExperiment *experiment = recorder.experiment();
    experiment->setRodent(parser.value(rodent));
    experiment->setComment(parser.value(comment));

    const bool progress = CliContext::stderrIsTerminal();
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
    const bool lost = !waitFor(
        [&] {
            return clock.elapsed() >= seconds * 1000 || !device->isConnected() ||
                   recorder.isLinkLost() || recorder.isLimitReached();
        },
        int(seconds * 1000) + 1000);
    ticker.stop();
    if (progress)
        context.err() << '\n';
    const bool unitLost = lost || !device->isConnected();
    recorder.abort();

    QString error;
    QuorvexCommon::CreateDirIfNotExists(context.recordsFolder());
    if (!recorder.save(context.recordsFolder(), &error))
        return context.fail(QStringLiteral("the record was not saved: %1").arg(error));
    const QString edf = recorder.savedPath().chopped(4) + QStringLiteral(".edf");
    context.out() << AnalyzeCommand::header() << '\n'
                  << AnalyzeCommand::resultLine(edf, *experiment) << '\n';
    context.out().flush();
    if (recorder.isPressureUncalibrated()) {
        context.err() << QStringLiteral("corvida-cli: warning: the unit's pressure calibration "
                                        "was not accepted; the pressures of this record are "
                                        "sensor values, not mmHg, and it is marked so\n");
        context.err().flush();
    }
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
