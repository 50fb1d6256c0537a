// Takes the pictures of the manual: starts the main window on an empty data folder, switches on
// simulated units and works them as an operator would, saving a picture at each step.
//
//   corvida_screenshots <folder> [--language en_US|ru_RU] [--theme light|dark]
//   corvida_screenshots <folder> --animal mouse|rat|hypertensive-rat
//
// With --animal it takes only the pictures of training on a simulated animal: the choice in
// the settings, and a session on four simulated units (about a minute and a half).
#include "analysis/CorvidaOnlineExperiment.h"
#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/QuorvexCommon.h"
#include "toolkit/widgets/PropertyListControl.h"
#include "ui/AnimalView.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/ExperimentViewer.h"
#include "ui/MethodComboBox.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"
#include "ui/SessionListView.h"
#include "ui/SessionPanel.h"
#include "ui/SettingDropDownButton.h"

#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>

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
        save(widget->grab(), name);
    }
    // What the screen shows over the window: pop-ups and menus are windows of their own, which
    // grabbing the window leaves out.
    void shootScreen(QWidget *window, const QString &name)
    {
        wait(300);
        const QPoint origin = window->mapToGlobal(QPoint(0, 0));
        save(window->screen()->grabWindow(0, origin.x(), origin.y(), window->width(),
                                          window->height()),
             name);
    }
    void save(const QPixmap &picture, const QString &name)
    {
        const QString file = m_out.filePath(m_prefix + name + QStringLiteral(".png"));
        const bool saved = picture.save(file);
        std::fprintf(stderr, "%s %s\n", saved ? "saved" : "could not save", qPrintable(file));
        m_ok = m_ok && saved;
    }
    bool ok() const { return m_ok; }

private:
    QDir m_out;
    QString m_prefix;
    bool m_ok = true;
};

// ---- Further pictures of the manual: open pop-ups and menus, several records at once and the
// debug settings. Pages that lack a piece (an older Records page) just give fewer pictures.
void closePopups()
{
    while (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
    wait(100);
}

// Opens the context menu of a widget at a point, takes the picture while it is open, closes it.
void shootContextMenu(Tour &tour, QWidget *window, QWidget *target, const QPoint &pos,
                      const QString &name)
{
    QTimer::singleShot(600, window, [&tour, window, name] {
        tour.shootScreen(window, name);
        closePopups();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, target->mapToGlobal(pos));
    QCoreApplication::sendEvent(target, &event);
    wait(200);
}

template <typename T>
T *visibleChild(QWidget *parent, const QString &name = QString())
{
    for (T *child : parent->findChildren<T *>(name))
        if (child->isVisible())
            return child;
    return nullptr;
}

// A short session on one unit: one acclimation cycle and two measurement cycles, a picture
// while the last cycle runs and one at the end.
void sessionPictures(Tour &tour, MainWindow *window, CorvidaDeviceView *panel,
                     CorvidaSettings *settings)
{
    settings->setSessionAcclimationCycles(1);
    settings->setSessionMeasurementCycles(2);
    settings->setSessionInterval(2);
    SessionPanel *session = panel->sessionPanel();
    session->sessionButton()->click();
    QElapsedTimer limit;
    limit.start();
    while (session->cycleTable()->rowCount() < 2 && limit.elapsed() < 90000)
        wait(200);
    wait(5000);
    tour.shoot(window, QStringLiteral("experiment-session"));
    while (session->isRunning() && limit.elapsed() < 150000)
        wait(200);
    tour.shoot(window, QStringLiteral("experiment-session-finished"));

    // The session on the records page, its cycles laid over one another.
    if (session->run() && !session->run()->results().isEmpty()) {
        emit CorvidaModel::instance()->onOpenRecord(session->run()->results().last().file);
        wait(500);
        PageDatabase *records = window->databasePage();
        records->listTabs()->setCurrentWidget(records->sessionView());
        records->sessionView()->selectSession(session->run()->sessionId());
        tour.shoot(window, QStringLiteral("records-sessions"));
        records->listTabs()->setCurrentWidget(records->animalView());
        tour.shoot(window, QStringLiteral("records-animal"));
        records->listTabs()->setCurrentIndex(0);
        window->pageButton(window->experimentPage())->click();
        wait(300);
    }
    settings->resetSessionAcclimationCycles();
    settings->resetSessionMeasurementCycles();
    settings->resetSessionInterval();
}

void manualExtras(Tour &tour, MainWindow *window, CorvidaModel *model, const QString &firstRecord)
{
    CorvidaSettings *settings = model->settings();
    PageExperimentMulti *experiment = window->experimentPage();

    // The pressure limits drop-down, open with its list of choices.
    window->pageButton(experiment)->click();
    for (SettingDropDownButton *dropDown : window->findChildren<SettingDropDownButton *>()) {
        if (!dropDown->isVisible() || dropDown->propertyName() != QLatin1String("PressureLimit"))
            continue;
        dropDown->click();
        wait(300);
        if (auto *choices = visibleChild<QComboBox>(dropDown->popup()))
            choices->showPopup();
        tour.shootScreen(window, QStringLiteral("experiment-pressure-limits"));
        closePopups();
    }

    // Each of the four units measures a whole cuff cycle and saves its record.
    experiment->startAllButton()->click();
    wait(1000);
    experiment->measureAllButton()->click();
    wait(14000);
    experiment->abortAllButton()->click();
    QStringList saved;
    int number = 0;
    for (CorvidaDeviceView *panel : experiment->panels()) {
        const QString rodent = QStringLiteral("Mouse %1").arg(++number);
        panel->rodentEditor()->setText(rodent);
        panel->experiment()->setRodent(rodent);
        panel->saveButton()->click();
        if (!panel->savedRecordPath().isEmpty())
            saved << panel->savedRecordPath();
    }

    // Records page: several records selected, drawn over one another.
    if (!saved.isEmpty())
        emit model->onOpenRecord(saved.last());
    wait(500);
    if (QTableView *table = window->databasePage()->findChild<QTableView *>()) {
        table->selectAll();
        tour.shoot(window, QStringLiteral("records-several"));
    }

    // One record on a vertical scale that shows its whole pulse wave; then its menus.
    settings->setPulseAxisLimit(CorvidaSettings::PulseAxisLimits::PulseAxis_1_800_m900);
    settings->setVisualScale(CorvidaSettings::VisualScales::Scale_20);
    emit model->onOpenRecord(firstRecord);
    wait(500);
    tour.shoot(window, QStringLiteral("records-one"));
    if (auto *viewer = visibleChild<ExperimentViewer>(window->databasePage())) {
        const QPoint inPulsePlot(viewer->width() * 45 / 100, viewer->height() * 3 / 4);
        shootContextMenu(tour, window, viewer, inPulsePlot, QStringLiteral("records-marker-menu"));
    }
    if (QTableView *table = visibleChild<QTableView>(window->databasePage())) {
        const QRect row = table->visualRect(table->currentIndex());
        shootContextMenu(tour, window, table->viewport(), row.center(),
                         QStringLiteral("records-table-menu"));
    }

    // The settings page with the debug settings shown.
    settings->setDebugMode(true);
    if (QPushButton *b = window->pageButton(window->settingsPage()))
        b->click();
    tour.shoot(window, QStringLiteral("settings-debug"));
    settings->setDebugMode(false);
}
// The simulated animal chosen on the settings page, then a short session on four simulated
// units; each plays an animal of its own, so the four tables differ a little.
bool animalPictures(Tour &tour, MainWindow *window, CorvidaSettings *settings,
                    const QString &animal)
{
    settings->setDebugMode(true);
    window->showPage(window->settingsPage());
    if (QPushButton *b = window->pageButton(window->settingsPage()))
        b->click();
    auto *choice = qobject_cast<QComboBox *>(
        window->settingsPage()->propertyList()->editor(QStringLiteral("SimulatedAnimal")));
    const int index = choice ? choice->findData(animal) : -1;
    if (index < 0) {
        std::fprintf(stderr, "no simulated animal \"%s\" in the settings\n", qPrintable(animal));
        return false;
    }
    if (auto *scroll = visibleChild<QScrollArea>(window->settingsPage()))
        scroll->ensureWidgetVisible(choice);
    choice->showPopup();
    tour.shootScreen(window, QStringLiteral("settings-simulated-animal"));
    closePopups();
    choice->setCurrentIndex(index);
    emit choice->activated(index);
    settings->setDebugMode(false);

    settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_200_50);
    settings->setSessionAcclimationCycles(1);
    settings->setSessionMeasurementCycles(2);
    settings->setSessionInterval(2);
    settings->setUseVirtualCorvida(4);
    wait(300);
    PageExperimentMulti *experiment = window->experimentPage();
    window->pageButton(experiment)->click();
    wait(300);
    experiment->sessionAllButton()->click();
    const auto running = [experiment] {
        for (CorvidaDeviceView *panel : experiment->panels())
            if (panel->sessionPanel()->isRunning())
                return true;
        return false;
    };
    QElapsedTimer limit;
    limit.start();
    while (running() && limit.elapsed() < 240000)
        wait(200);
    tour.shoot(window, QStringLiteral("experiment-four-animals-session"));
    QString widest; // the cycle with the narrowest pulse pressure: the one to look at
    double narrowest = 1e9;
    for (CorvidaDeviceView *panel : experiment->panels()) {
        const SessionRun *run = panel->sessionPanel()->run();
        if (!run)
            continue;
        for (const SessionRun::CycleResult &r : run->results()) {
            std::fprintf(stderr, "%s cycle %d: %.1f/%.1f mmHg, %.1f bpm, %s\n",
                         qPrintable(panel->device()->deviceId()), r.cycle, r.sbp, r.dbp, r.bpm,
                         r.accepted ? "accepted" : qPrintable(r.reason));
            if (r.sbp > 0 && r.sbp - r.dbp < narrowest) {
                narrowest = r.sbp - r.dbp;
                widest = r.file;
            }
        }
    }
    const bool finished = !running();

    // That cycle on the records page, found again the refined way from the viewer's choice.
    if (!widest.isEmpty()) {
        emit CorvidaModel::instance()->onOpenRecord(widest);
        wait(800);
        tour.shoot(window, QStringLiteral("records-animal-documented"));
        if (auto *method = visibleChild<MethodComboBox>(window->databasePage())) {
            method->setCurrentIndex(method->findData(CorvidaExperiment::refinedMethod()));
            emit method->activated(method->currentIndex());
            wait(800);
            tour.shoot(window, QStringLiteral("records-animal-refined"));
            // What Recalculate then does (the plot's menu, which does not ask first).
            if (auto *viewer = visibleChild<ExperimentViewer>(window->databasePage())) {
                if (CorvidaExperiment *record = viewer->experiment())
                    record->recalculate(true);
                wait(800);
                tour.shoot(window, QStringLiteral("records-animal-recalculated"));
            }
        } else {
            std::fprintf(stderr, "no choice of the method on the records page\n");
        }
    }
    return finished;
}
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
    // Another window size (800x600, 1920x1080) for a look at small and large screens; its
    // pictures carry the size in their names.
    const QString sizeText = option(QStringLiteral("--size"), QString());
    const QString animal = option(QStringLiteral("--animal"), QString());
    const QStringList sizeParts = sizeText.split(QLatin1Char('x'));
    const QSize size = sizeParts.size() == 2 ? QSize(sizeParts[0].toInt(), sizeParts[1].toInt())
                                             : QSize(1280, 800);
    if (args.isEmpty() || !size.isValid()) {
        std::fprintf(stderr, "usage: corvida_screenshots <folder> [--language L] [--theme T] "
                             "[--size WxH]\n");
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
    window->resize(size);
    window->show();
    Tour tour(out, language + QLatin1Char('-') + theme + QLatin1Char('-') +
                       (sizeText.isEmpty() ? QString() : sizeText + QLatin1Char('-')));
    PageExperimentMulti *experiment = window->experimentPage();
    if (!animal.isEmpty()) {
        const bool ok = animalPictures(tour, window, settings, animal) && tour.ok();
        delete window;
        delete model;
        return ok ? 0 : 1;
    }
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
    window->resize(size);
    settings->setShowSuggestions(true);
    sessionPictures(tour, window, panel, settings);

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
    // Saved, so that the next recordings replace nothing unsaved (which would ask first).
    QStringList stoppedEarly;
    for (CorvidaDeviceView *unit : experiment->panels()) {
        unit->saveButton()->click();
        if (!unit->savedRecordPath().isEmpty())
            stoppedEarly << unit->savedRecordPath();
    }
    experiment->gridButton()->click();

    // The saved record on the Records page, and the settings.
    // Changing the number of simulated units reconnects them all, which gives them new panels;
    // the saved record is opened as its panel's file button would.
    emit model->onOpenRecord(savedRecord);
    wait(500);
    tour.shoot(window, QStringLiteral("records"));
    // A record stopped while the cuff was still high: its diastolic point lies at the very end
    // and is marked as doubtful.
    if (!stoppedEarly.isEmpty()) {
        emit model->onOpenRecord(stoppedEarly.first());
        wait(500);
        tour.shoot(window, QStringLiteral("records-doubtful"));
    }
    window->showPage(window->settingsPage());
    if (QPushButton *b = window->pageButton(window->settingsPage()))
        b->click();
    tour.shoot(window, QStringLiteral("settings"));
    manualExtras(tour, window, model, savedRecord);

    const bool ok = tour.ok();
    delete window;
    delete model;
    return ok ? 0 : 1;
}
