// The long run before a release: four simulated units measuring and saving in a loop in the
// real window. Every minute it prints the processor share and the resident memory; at the end
// it reads every saved record back: the records list, then every recording whole through the
// reader. Exits 1 on any warning, failed save or unreadable record.
//
//   soak_fourunits [minutes=30]   (run under xvfb-run; scripts/soak.sh does)
#include "ProcessFigures.h"
#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "storage/EDFReader.h"
#include "storage/RecordDatabase.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageExperimentMulti.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {
int g_warnings = 0;

void countWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    // The virtual display cannot resize windows to their hints; that is not ours to fix.
    if (type == QtDebugMsg || type == QtInfoMsg ||
        message.contains(QLatin1String("propagateSizeHints")))
        return;
    ++g_warnings;
    std::fprintf(stderr, "WARNING: %s\n", qPrintable(message));
}

// Opens the recording with the reader and reads every sample of every signal; an empty text when
// all of it reads, else what failed.
QString readBack(const QString &path)
{
    EDFReader reader(path);
    if (!reader.open())
        return QStringLiteral("the reader refuses it");
    if (reader.samplesInFile() < 1 || reader.signalCount() < 2)
        return QStringLiteral("no samples");
    QList<double> buffer(reader.samplesInFile());
    for (int s = 0; s < reader.signalCount(); ++s) {
        if (reader.getChannelBuffData(s, 0, int(buffer.size()), buffer.data()) != 0)
            return QStringLiteral("signal %1 cannot be read to its end").arg(s);
    }
    return QString();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int minutes = args.size() > 1 ? std::max(1, args[1].toInt()) : 30;
    qInstallMessageHandler(countWarnings);

    AppStartup::setupFonts();
    AppStartup::setupStyles();
    QTemporaryDir data;
    CorvidaModel model(data.path());
    model.settings()->setStartFullscreen(false);
    model.settings()->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
    model.settings()->setUseVirtualCorvida(4);
    MainWindow window;
    window.resize(1600, 900);
    window.show();
    PageExperimentMulti *page = window.experimentPage();
    page->startAllButton()->click();

    int saved = 0;
    int failedSaves = 0;
    QElapsedTimer wall;
    wall.start();
    const double cpu0 = ProcessFigures::cpuSeconds();
    double cpuLast = cpu0;
    qint64 wallLast = 0;

    // A failed save shows a warning box; close it, count it and carry on.
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, &app, [&] {
        if (QWidget *box = QApplication::activeModalWidget()) {
            ++failedSaves;
            box->close();
        }
    });
    watchdog.start(500);

    // One cycle: measure for 20 s, abort, save every unit, start again.
    QTimer cycle;
    bool measuring = false;
    QObject::connect(&cycle, &QTimer::timeout, &app, [&] {
        if (!measuring) {
            page->startAllButton()->click();
            page->measureAllButton()->click();
            measuring = true;
            return;
        }
        page->abortAllButton()->click();
        for (CorvidaDeviceView *panel : page->panels()) {
            if (panel->saveButton()->isVisible() && panel->saveButton()->isEnabled()) {
                panel->saveButton()->click();
                ++saved;
            }
        }
        measuring = false;
    });
    cycle.start(20'000);

    std::printf("%8s %8s %10s %8s\n", "minute", "cpu %", "RSS MiB", "records");
    QTimer report;
    QObject::connect(&report, &QTimer::timeout, &app, [&] {
        const double cpu = ProcessFigures::cpuSeconds();
        const qint64 now = wall.elapsed();
        std::printf("%8.0f %8.1f %10.1f %8d\n", now / 60000.0,
                    100.0 * (cpu - cpuLast) / ((now - wallLast) / 1000.0),
                    ProcessFigures::residentMiB(), saved);
        std::fflush(stdout);
        cpuLast = cpu;
        wallLast = now;
        if (now >= minutes * 60'000LL)
            QCoreApplication::exit(0);
    });
    report.start(60'000);
    app.exec();

    RecordDatabase records(model.recordsFolder());
    records.reload();
    int damaged = 0;
    for (int row = 0; row < records.count(); ++row) {
        // The list's verdict and the reader's, each on its own: they must both find it sound.
        QString problem = records.damageText(row);
        if (problem.isEmpty())
            problem = readBack(records.edfPath(row));
        if (!problem.isEmpty()) {
            ++damaged;
            std::fprintf(stderr, "unreadable: %s (%s)\n", qPrintable(records.edfPath(row)),
                         qPrintable(problem));
        }
    }
    std::printf("saved %d, listed %d, unreadable %d, failed saves %d, warnings %d\n", saved,
                records.count(), damaged, failedSaves, g_warnings);
    const bool ok = saved > 0 && records.count() == saved && damaged == 0 && failedSaves == 0 &&
                    g_warnings == 0;
    std::printf("%s\n", ok ? "soak run passed" : "soak run FAILED");
    return ok ? 0 : 1;
}
