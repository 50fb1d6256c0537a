#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "toolkit/QuorvexCommon.h"
#include "toolkit/VLogger.h"
#include "toolkit/VersionChecker.h"
#include "toolkit/widgets/AppHelper.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/CorvidaBasePage.h"

#include "toolkit/QuorvexCommon.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>
#include <cstdio>
#include <functional>

namespace {
// Reports the first time the window has been drawn.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(std::function<void()> done)
        : m_done(std::move(done))
    {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && m_done) {
            // Let the paint finish before reporting.
            QTimer::singleShot(0, this, m_done);
            m_done = nullptr;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_done;
};

// Developer aid: waits until the window has been drawn, saves it as a picture and quits.
void takeScreenshot(MainWindow *window, const QString &file, const QString &page,
                    const QElapsedTimer &clock)
{
    window->resize(1280, 800);
    for (QPushButton *button : window->pageButtons())
        if (!page.isEmpty() && button->objectName() == page)
            button->click();
    QTimer::singleShot(300, window, [window, file, clock] {
        const bool ok = window->grab().save(file);
        std::fprintf(stderr, "%s %s (%lld ms after start)\n", ok ? "saved" : "could not save",
                     qPrintable(file), static_cast<long long>(clock.elapsed()));
        QCoreApplication::exit(ok ? 0 : 1);
    });
}

struct Options {
    QCommandLineOption screenshot{QStringLiteral("screenshot"),
                                  QStringLiteral("Save a picture of the window to <file> and quit "
                                                 "(for developers)."),
                                  QStringLiteral("file")};
    QCommandLineOption page{QStringLiteral("page"),
                            QStringLiteral("With --screenshot: the page to show, by its button's "
                                           "name."),
                            QStringLiteral("name")};
    QCommandLineOption startupTime{QStringLiteral("startup-time"),
                                   QStringLiteral("Print the time from start to the first drawn "
                                                  "window and quit (for developers).")};
};

void describeApplication()
{
    QuorvexCommon::setApplicationIdentity();
}

void setUpParser(QCommandLineParser &parser, const Options &options)
{
    parser.setApplicationDescription(
        QStringLiteral("Corvida: tail-cuff blood pressure and heart rate of laboratory rodents."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(options.screenshot);
    parser.addOption(options.page);
    parser.addOption(options.startupTime);
}

// --help and --version print and quit; they must work without a display, so they are
// answered before the window system is touched.
bool onlyPrints(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "-h" || arg == "--help" || arg == "-?" || arg == "--help-all" || arg == "-v" ||
            arg == "--version")
            return true;
    }
    return false;
}
} // namespace

int main(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    const Options options;
    if (onlyPrints(argc, argv)) {
        QCoreApplication core(argc, argv);
        describeApplication();
        QCommandLineParser parser;
        setUpParser(parser, options);
        parser.process(core);
        return 0;
    }

    QApplication app(argc, argv);
    describeApplication();
    // Lets the desktop pair the window with corvida.desktop and show its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("corvida"));
    QCommandLineParser parser;
    setUpParser(parser, options);
    parser.process(app);

    VLogger::install();
    AppStartup::setupFonts();
    AppStartup::setupStyles();
    const QString folder = AppStartup::setupWorkingFolder();
    AppStartup::setupLanguage();
    QApplication::setWindowIcon(StyleHelper::tintedIcon(
        QStringLiteral(":/resources/images/pressure.svg"),
        StyleHelper::instance()->color(QStringLiteral("--v-accent"), QColor(0x1C, 0x7E, 0xD6)),
        QSize(64, 64)));

    auto *model = new CorvidaModel(folder);
    AppStartup::bindSettings(model->settings());
    VersionChecker::instance()->setEndpoint(QStringLiteral(CORVIDA_VERSION_ENDPOINT));
    auto *window = new MainWindow;
    VersionChecker::instance()->StartChecking();

    if (parser.isSet(options.startupTime)) {
        auto *firstPaint = new FirstPaint([&clock] {
            std::printf("shown after %lld ms\n", static_cast<long long>(clock.elapsed()));
            QCoreApplication::exit(0);
        });
        firstPaint->setParent(window);
        window->installEventFilter(firstPaint);
    } else if (parser.isSet(options.screenshot)) {
        takeScreenshot(window, parser.value(options.screenshot), parser.value(options.page), clock);
    }

    const int code = app.exec();
    delete window;
    delete model;
    return code;
}
