// The whole program under load: the main window with four simulated units turned on, drawing
// live, for a given time. Prints the processor share (CPU time over wall time) and the resident
// memory every ten seconds, so that growth shows.
//
//   load_fourunits [seconds=60] [--measure | --session]
//   (run under xvfb-run; bench/four-units.sh does)
//
// --session runs a session on every unit instead: one acclimation cycle, then measurement
// cycles until the end, at the limits where the simulated unit gives readings.
#include "ProcessFigures.h"
#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageExperimentMulti.h"
#include "ui/SessionPanel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int seconds = args.size() > 1 ? std::max(10, args[1].toInt()) : 60;
    const bool measure = args.contains(QStringLiteral("--measure"));
    const bool session = args.contains(QStringLiteral("--session"));

    AppStartup::setupFonts();
    AppStartup::setupStyles();
    QTemporaryDir data;
    CorvidaModel model(data.path());
    model.settings()->setStartFullscreen(false);
    model.settings()->setUseVirtualCorvida(4);
    MainWindow window;
    window.resize(1600, 900);
    window.show();
    if (session) {
        CorvidaSettings *settings = model.settings();
        settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
        settings->setSessionAcclimationCycles(1);
        settings->setSessionMeasurementCycles(100);
        settings->setSessionInterval(5);
        // Side by side the simulated units' pulses do not pass the gate: no waiting for it.
        settings->setSessionPulseWait(0);
        // The panels follow the units as they connect: start once they are there.
        QTimer::singleShot(2000, &app,
                           [&window] { window.experimentPage()->sessionAllButton()->click(); });
    } else {
        window.experimentPage()->startAllButton()->click();
    }

    QElapsedTimer wall;
    QTimer sample;
    double cpu0 = 0.0;
    double cpuLast = 0.0;
    qint64 wallLast = 0;
    // The first second is start-up; the share is measured from there.
    QTimer::singleShot(1000, &app, [&] {
        wall.start();
        cpu0 = cpuLast = ProcessFigures::cpuSeconds();
        std::printf("%8s %10s %10s\n", "time s", "cpu %", "RSS MiB");
        sample.start(10'000);
    });
    QObject::connect(&sample, &QTimer::timeout, &app, [&] {
        const double cpu = ProcessFigures::cpuSeconds();
        const qint64 now = wall.elapsed();
        std::printf("%8.0f %10.1f %10.1f\n", now / 1000.0,
                    100.0 * (cpu - cpuLast) / ((now - wallLast) / 1000.0),
                    ProcessFigures::residentMiB());
        std::fflush(stdout);
        cpuLast = cpu;
        wallLast = now;
        if (measure)
            window.experimentPage()->measureAllButton()->click();
        if (now >= seconds * 1000LL) {
            if (session) {
                for (CorvidaDeviceView *panel : window.experimentPage()->panels()) {
                    const SessionRun *run = panel->sessionPanel()->run();
                    std::printf("%s: %d session cycles saved\n", qPrintable(panel->title()),
                                run ? int(run->results().size()) : 0);
                }
            }
            std::printf("whole run: %.1f %% of one core over %.0f s\n",
                        100.0 * (cpu - cpu0) / (now / 1000.0), now / 1000.0);
            QCoreApplication::exit(0);
        }
    });
    return app.exec();
}
