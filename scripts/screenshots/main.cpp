// Takes the pictures of the manual: starts the main window on an empty data folder, switches on
// simulated units and works them as an operator would, saving a picture at each step.
//
//   corvida_screenshots <folder> [--language en_US|ru_RU] [--theme light|dark]
#include "analysis/CorvidaOnlineExperiment.h"
#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/QuorvexCommon.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {
void wait(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

class Tour
{
public:
    Tour(const QDir &out, const QString &prefix)
        : m_out(out)
        , m_prefix(prefix)
    {}
    void shoot(QWidget *widget, const QString &name)
    {
        wait(150);
        const QString file = m_out.filePath(m_prefix + name + QStringLiteral(".png"));
        const bool saved = widget->grab().save(file);
        std::fprintf(stderr, "%s %s\n", saved ? "saved" : "could not save", qPrintable(file));
        m_ok = m_ok && saved;
    }
    bool ok() const { return m_ok; }

private:
    QDir m_out;
    QString m_prefix;
    bool m_ok = true;
};
} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QuorvexCommon::setApplicationIdentity();
    QStringList args = app.arguments().mid(1);
    auto option = [&args](const QString &name, const QString &fallback) {
        const int i = args.indexOf(name);
        if (i < 0 || i + 1 >= args.size())
            return fallback;
        const QString value = args[i + 1];
        args.remove(i, 2);
        return value;
    };
    const QString language = option(QStringLiteral("--language"), QStringLiteral("en_US"));
    const QString theme = option(QStringLiteral("--theme"), QStringLiteral("light"));
    if (args.isEmpty()) {
        std::fprintf(stderr, "usage: corvida_screenshots <folder> [--language L] [--theme T]\n");
        return 2;
    }
    QDir out(args.first());
    out.mkpath(QStringLiteral("."));

    AppStartup::setupFonts();
    AppStartup::setupStyles();
    QTemporaryDir data;
    auto *model = new CorvidaModel(data.path());
    CorvidaSettings *settings = model->settings();
    LanguageContext::instance()->setLanguage(language);
    settings->setLanguage(language == QLatin1String("ru_RU")
                              ? CorvidaSettings::CorvidaLanguage::ru_RU
                              : CorvidaSettings::CorvidaLanguage::en_US);
    settings->setColorTheme(theme == QLatin1String("dark") ? StyleColorTheme::Dark
                                                           : StyleColorTheme::Light);
    AppStartup::bindSettings(settings);
    settings->setStartFullscreen(false);
    // The simulated unit shows a systolic point with these limits.
    settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
    settings->setVisualScale(CorvidaSettings::VisualScales::Scale_30);

    auto *window = new MainWindow;
    window->resize(1280, 800);
    window->show();
    Tour tour(out, language + QLatin1Char('-') + theme + QLatin1Char('-'));
    PageExperimentMulti *experiment = window->experimentPage();
    tour.shoot(window, QStringLiteral("experiment-no-units"));

    // One unit: turned on, measuring, measured and saved.
    settings->setUseVirtualCorvida(1);
    wait(300);
    CorvidaDeviceView *panel = experiment->panels().value(0);
    if (!panel)
        return 1;
    panel->turnOnButton()->click();
    wait(4000);
    tour.shoot(window, QStringLiteral("experiment-turned-on"));
    panel->measureButton()->click();
    wait(6000);
    tour.shoot(window, QStringLiteral("experiment-measuring"));
    wait(8000);
    panel->abortButton()->click();
    panel->rodentEditor()->setText(QStringLiteral("Rat 12"));
    panel->experiment()->setRodent(QStringLiteral("Rat 12"));
    tour.shoot(window, QStringLiteral("experiment-measured"));
    panel->saveButton()->click();
    const QString savedRecord = panel->savedRecordPath();
    tour.shoot(window, QStringLiteral("experiment-saved"));
    settings->setShowSuggestions(false);
    for (int width : {960, 640}) {
        window->resize(width, 700);
        tour.shoot(window, QStringLiteral("experiment-width-%1").arg(width));
    }
    window->resize(1280, 800);
    settings->setShowSuggestions(true);

    // Four units measuring at once, in a grid and in tabs.
    settings->setUseVirtualCorvida(4);
    wait(300);
    experiment->startAllButton()->click();
    wait(2000);
    experiment->measureAllButton()->click();
    wait(8000);
    tour.shoot(window, QStringLiteral("experiment-four-units-grid"));
    experiment->tabsButton()->click();
    tour.shoot(window, QStringLiteral("experiment-four-units-tabs"));
    experiment->abortAllButton()->click();
    experiment->gridButton()->click();

    // The saved record on the Records page, and the settings.
    // Changing the number of simulated units reconnects them all, which gives them new panels;
    // the saved record is opened as its panel's file button would.
    emit model->onOpenRecord(savedRecord);
    wait(500);
    tour.shoot(window, QStringLiteral("records"));
    window->showPage(window->settingsPage());
    if (QPushButton *b = window->pageButton(window->settingsPage()))
        b->click();
    tour.shoot(window, QStringLiteral("settings"));

    const bool ok = tour.ok();
    delete window;
    delete model;
    return ok ? 0 : 1;
}
