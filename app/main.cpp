#include "app/AppStartup.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "toolkit/VLogger.h"
#include "toolkit/VersionChecker.h"
#include "toolkit/widgets/AppHelper.h"
#include "ui/CorvidaBasePage.h"

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
} // namespace

int main(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Corvida"));
    QApplication::setOrganizationName(QStringLiteral("Quorvex"));
    QApplication::setApplicationVersion(QStringLiteral(CORVIDA_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Corvida: tail-cuff blood pressure and heart rate of laboratory rodents."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption shot(QStringLiteral("screenshot"),
                                  QStringLiteral("Save a picture of the window to <file> and quit "
                                                 "(for developers)."),
                                  QStringLiteral("file"));
    const QCommandLineOption page(QStringLiteral("page"),
                                  QStringLiteral("With --screenshot: the page to show, by its "
                                                 "button's name."),
                                  QStringLiteral("name"));
    const QCommandLineOption startupTime(
        QStringLiteral("startup-time"),
        QStringLiteral("Print the time from start to the shown window and quit (for developers)."));
    parser.addOption(shot);
    parser.addOption(page);
    parser.addOption(startupTime);
    parser.process(app);

    VLogger::install();
    AppStartup::setupFonts();
    AppStartup::setupStyles();
    const QString folder = AppStartup::setupWorkingFolder();
    AppStartup::setupLanguage();

    auto *model = new CorvidaModel(folder);
    AppStartup::bindSettings(model->settings());
    VersionChecker::instance()->setEndpoint(QStringLiteral(CORVIDA_VERSION_ENDPOINT));
    auto *window = new MainWindow;
    VersionChecker::instance()->StartChecking();

    if (parser.isSet(startupTime)) {
        auto *firstPaint = new FirstPaint([&clock] {
            std::printf("shown after %lld ms\n", static_cast<long long>(clock.elapsed()));
            QCoreApplication::exit(0);
        });
        firstPaint->setParent(window);
        window->installEventFilter(firstPaint);
    } else if (parser.isSet(shot)) {
        takeScreenshot(window, parser.value(shot), parser.value(page), clock);
    }

    const int code = app.exec();
    delete window;
    delete model;
    return code;
}
