#include "cli/StreamCommand.h"

#include "cli/CliContext.h"
#include "device/VirtualCorvidaDevice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>
#include <cmath>

QString StreamCommand::usage()
{
    return QStringLiteral("stream --simulated [--seconds N] [--measure]");
}

int StreamCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("simulated"), QStringLiteral("Use a simulated unit.")});
    parser.addOption({QStringLiteral("seconds"), QStringLiteral("How long to stream (default 10)."),
                      QStringLiteral("N"), QStringLiteral("10")});
    parser.addOption(
        {QStringLiteral("measure"), QStringLiteral("Run a cuff cycle while streaming.")});
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (!parser.isSet(QStringLiteral("simulated")))
        return context.fail(
            QStringLiteral("stream needs a unit; only --simulated is available here"));
    bool ok = false;
    const double seconds = parser.value(QStringLiteral("seconds")).toDouble(&ok);
    if (!ok || !std::isfinite(seconds) || seconds <= 0 || seconds > 24 * 3600)
        return context.fail(QStringLiteral("--seconds wants a number of seconds greater than 0, "
                                           "at most a day"));

    VirtualCorvidaDevice device;
    qint64 index = 0;
    const double rate = device.sampleRate();
    QTextStream &out = context.out();
    out << "time_s,pressure_mmHg,pulse,ir\n";
    QObject::connect(&device, &BaseCorvidaDevice::pressurePulseData, &device,
                     [&](const QList<QList<float>> &frame) {
                         const qsizetype n = frame.value(0).size();
                         for (qsizetype i = 0; i < n; ++i, ++index) {
                             out << QString::number(index / rate, 'f', 3) << ','
                                 << QString::number(frame[0][i], 'f', 3) << ','
                                 << QString::number(frame[1][i], 'f', 5) << ','
                                 << QString::number(frame[2][i], 'f', 4) << '\n';
                         }
                         out.flush();
                     });

    if (parser.isSet(QStringLiteral("measure")))
        device.startMeasuring();
    else
        device.startAcquisition();

    QTimer::singleShot(int(seconds * 1000), &device, [&device] {
        if (device.isMeasuring())
            device.stopMeasuring();
        else
            device.stopAcquisition();
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
