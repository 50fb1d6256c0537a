#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/LogCapture.h"
#include "ui/PageAboutApp.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"

#include <QApplication>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>
#include <memory>

// The window with the person taken out: the language question is answered by the test, a
// restart is only counted, and the held modifier keys are whatever the test says.
class AnsweringWindow : public MainWindow
{
public:
    struct Question {
        QString title, text, ok, notNow, cancel;
    };
    AppHelper::ConfirmResult answer = AppHelper::Cancelled;
    bool realDialog = false;
    QList<Question> questions;
    int restarts = 0;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;

protected:
    AppHelper::ConfirmResult askLanguageChange(const QString &title, const QString &text,
                                               const QString &ok, const QString &notNow,
                                               const QString &cancel) override
    {
        questions.append({title, text, ok, notNow, cancel});
        if (realDialog)
            return MainWindow::askLanguageChange(title, text, ok, notNow, cancel);
        return answer;
    }
    void restartApplication() override { ++restarts; }
    Qt::KeyboardModifiers currentModifiers() const override { return modifiers; }
};

class TestMainWindow : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void pageButtonsSwitchPagesWithOneChecked_data();
    void pageButtonsSwitchPagesWithOneChecked();
    void headerWidgetsFollowTheirPage();
    void newRecordDotShowsUntilRecordsOpened();
    void ctrlHomeTogglesSimulatedUnit_data();
    void ctrlHomeTogglesSimulatedUnit();
    void otherKeysLeaveSimulatedUnitAlone();
    void simulatedUnitIsListedOnTheExperimentPage();
    void debugMenuOnlyWithCtrl_data();
    void debugMenuOnlyWithCtrl();
    void languageQuestionOutcomes_data();
    void languageQuestionOutcomes();
    void languageQuestionIsAskedInBothLanguages();
    void dialogButtonsGiveTheirOutcomes_data();
    void dialogButtonsGiveTheirOutcomes();
    void openRecordSwitchesToRecordsAndRemembersPath();
    void openRecordIgnoresMissingFile();
    void windowKeepsMinimumSizeAndStartsMaximised();

private:
    void makeWindow();
    CorvidaSettings *settings() const { return m_model->settings(); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    std::unique_ptr<AnsweringWindow> m_window;
};

void TestMainWindow::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setApplicationVersion(QStringLiteral("0.1.0"));
}

void TestMainWindow::init()
{
    QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
    m_dir = std::make_unique<QTemporaryDir>();
    m_model = std::make_unique<CorvidaModel>(m_dir->path());
    settings()->setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
    settings()->setStartFullscreen(false);
}

void TestMainWindow::makeWindow()
{
    m_window = std::make_unique<AnsweringWindow>();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestMainWindow::cleanup()
{
    m_window.reset();
    m_model.reset();
    m_dir.reset();
}

void TestMainWindow::pageButtonsSwitchPagesWithOneChecked_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("Experiment") << 0;
    QTest::newRow("Records") << 1;
    QTest::newRow("Settings") << 2;
    QTest::newRow("About") << 3;
}

void TestMainWindow::pageButtonsSwitchPagesWithOneChecked()
{
    QFETCH(int, index);
    makeWindow();
    const QList<CorvidaBasePage *> pages = {m_window->experimentPage(), m_window->databasePage(),
                                            m_window->settingsPage(), m_window->aboutPage()};
    QCOMPARE(m_window->currentPage(), pages[0]);
    QCOMPARE(m_window->pageButtons().size(), 4);
    // Go somewhere else first, so switching to the first page is a real switch too.
    QTest::mouseClick(m_window->pageButtons()[(index + 2) % 4], Qt::LeftButton);
    QTest::mouseClick(m_window->pageButtons()[index], Qt::LeftButton);
    QCOMPARE(m_window->currentPage(), pages[index]);
    QVERIFY(pages[index]->isVisible());
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(m_window->pageButtons()[i]->isChecked(), i == index);
        if (i != index)
            QVERIFY(!pages[i]->isVisible());
    }
    // A second click on the current page's button keeps it checked.
    QTest::mouseClick(m_window->pageButtons()[index], Qt::LeftButton);
    QVERIFY(m_window->pageButtons()[index]->isChecked());
}

void TestMainWindow::headerWidgetsFollowTheirPage()
{
    makeWindow();
    const QList<QWidget *> header = m_window->databasePage()->headerWidgets();
    QVERIFY(!header.isEmpty());
    for (QWidget *w : header)
        QVERIFY(!w->isVisible());
    m_window->pageButton(m_window->databasePage())->click();
    for (QWidget *w : header) {
        QVERIFY(w->isVisible());
        QVERIFY(m_window->topBar()->isAncestorOf(w));
    }
    m_window->pageButton(m_window->aboutPage())->click();
    for (QWidget *w : header)
        QVERIFY(!w->isVisible());
}

void TestMainWindow::newRecordDotShowsUntilRecordsOpened()
{
    makeWindow();
    QPushButton *dot = m_window->newRecordDot();
    QVERIFY(!dot->isVisible());
    m_window->databasePage()->reload();
    QVERIFY(!m_window->databasePage()->needsReload());

    emit m_window->experimentPage()->newRecordSaved();
    QVERIFY(dot->isVisible());
    QVERIFY(m_window->databasePage()->needsReload());
    // Other pages leave it alone.
    QTest::mouseClick(m_window->pageButton(m_window->settingsPage()), Qt::LeftButton);
    QVERIFY(dot->isVisible());

    QTest::mouseClick(m_window->pageButton(m_window->databasePage()), Qt::LeftButton);
    QVERIFY(!dot->isVisible());
    // Being shown reloaded the page.
    QVERIFY(!m_window->databasePage()->needsReload());
}

void TestMainWindow::ctrlHomeTogglesSimulatedUnit_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("afterOne");
    QTest::addColumn<int>("afterTwo");
    QTest::newRow("from 0") << 0 << 1 << 0;
    QTest::newRow("from 1") << 1 << 0 << 1;
    QTest::newRow("from 2") << 2 << 0 << 1;
}

void TestMainWindow::ctrlHomeTogglesSimulatedUnit()
{
    QFETCH(int, start);
    QFETCH(int, afterOne);
    QFETCH(int, afterTwo);
    settings()->setUseVirtualCorvida(start);
    makeWindow();
    LogCapture log;
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(settings()->getUseVirtualCorvida(), afterOne);
    QVERIFY(log.contains(start == 0 ? QStringLiteral("Use virtual corvida")
                                    : QStringLiteral("Stop using virtual corvida")));
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(settings()->getUseVirtualCorvida(), afterTwo);
    // The change reached the file, where the next start reads it.
    CorvidaSettings reread(m_model->rootFolder() + QStringLiteral("Settings.xml"));
    QCOMPARE(reread.getUseVirtualCorvida(), afterTwo);
}

void TestMainWindow::otherKeysLeaveSimulatedUnitAlone()
{
    makeWindow();
    QTest::keyClick(m_window.get(), Qt::Key_Home);
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(m_window.get(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(settings()->getUseVirtualCorvida(), 0);
}

void TestMainWindow::simulatedUnitIsListedOnTheExperimentPage()
{
    makeWindow();
    auto *list = m_window->experimentPage()->findChild<QListWidget *>(QStringLiteral("deviceList"));
    QVERIFY(list);
    QCOMPARE(list->count(), 0);
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
    QTRY_COMPARE(list->count(), 1);
    QVERIFY(list->item(0)->text().startsWith(QStringLiteral("Simulated unit")));
    QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
    QTRY_COMPARE(list->count(), 0);
}

void TestMainWindow::debugMenuOnlyWithCtrl_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("alreadyOn");
    QTest::addColumn<bool>("menuExpected");
    QTest::newRow("no modifier") << int(Qt::NoModifier) << false << false;
    QTest::newRow("shift") << int(Qt::ShiftModifier) << false << false;
    QTest::newRow("ctrl") << int(Qt::ControlModifier) << false << true;
    QTest::newRow("ctrl shift") << int(Qt::ControlModifier | Qt::ShiftModifier) << false << true;
    QTest::newRow("ctrl, already on") << int(Qt::ControlModifier) << true << true;
}

void TestMainWindow::debugMenuOnlyWithCtrl()
{
    QFETCH(int, modifiers);
    QFETCH(bool, alreadyOn);
    QFETCH(bool, menuExpected);
    settings()->setDebugMode(alreadyOn);
    makeWindow();
    m_window->modifiers = Qt::KeyboardModifiers(modifiers);
    QPushButton *button = m_window->pageButton(m_window->settingsPage());
    QSignalSpy saved(settings(), &VTSettings::saved);

    QStringList menuTexts;
    bool menuSeen = false;
    // A shown menu blocks in exec(); pick its entry from inside the loop it runs.
    QTimer::singleShot(100, this, [&] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            menuSeen = true;
            for (QAction *a : menu->actions())
                menuTexts.append(a->text());
            menu->actions().constFirst()->trigger();
            menu->close();
        }
    });
    emit button->customContextMenuRequested(QPoint(5, 5));
    QTest::qWait(200);
    QCOMPARE(menuSeen, menuExpected);
    QCOMPARE(settings()->getDebugMode(), menuExpected || alreadyOn);
    // Only a real change is written.
    QCOMPARE(saved.size(), menuExpected && !alreadyOn ? 1 : 0);
    if (menuExpected)
        QCOMPARE(menuTexts, QStringList{QStringLiteral("Debug mode")});
}

void TestMainWindow::languageQuestionOutcomes_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("runningAfter");
    QTest::addColumn<int>("storedAfter");
    QTest::addColumn<int>("restarts");
    QTest::newRow("OK") << int(AppHelper::Confirmed) << "ru_RU" << 1 << 1;
    QTest::newRow("Not now") << int(AppHelper::Declined) << "ru_RU" << 1 << 0;
    QTest::newRow("Cancel") << int(AppHelper::Cancelled) << "en_US" << 0 << 0;
}

void TestMainWindow::languageQuestionOutcomes()
{
    QFETCH(int, answer);
    QFETCH(QString, runningAfter);
    QFETCH(int, storedAfter);
    QFETCH(int, restarts);
    makeWindow();
    m_window->answer = AppHelper::ConfirmResult(answer);

    settings()->setLanguage(CorvidaSettings::CorvidaLanguage::ru_RU);
    // Exactly one question, even though answering re-announces the language.
    QCOMPARE(m_window->questions.size(), 1);
    QCOMPARE(LanguageContext::instance()->currentLanguage(), runningAfter);
    QCOMPARE(int(settings()->getLanguage()), storedAfter);
    QCOMPARE(m_window->restarts, restarts);
    CorvidaSettings reread(m_model->rootFolder() + QStringLiteral("Settings.xml"));
    QCOMPARE(int(reread.getLanguage()), storedAfter);

    // The guard is down again: the next change asks again.
    m_window->answer = AppHelper::Cancelled;
    settings()->setLanguage(storedAfter == 0 ? CorvidaSettings::CorvidaLanguage::ru_RU
                                             : CorvidaSettings::CorvidaLanguage::en_US);
    QCOMPARE(m_window->questions.size(), 2);
}

void TestMainWindow::languageQuestionIsAskedInBothLanguages()
{
    makeWindow();
    settings()->setLanguage(CorvidaSettings::CorvidaLanguage::ru_RU);
    QCOMPARE(m_window->questions.size(), 1);
    const AnsweringWindow::Question q = m_window->questions.first();
    QCOMPARE(q.title, QStringLiteral("Language change/Смена языка"));
    QCOMPARE(q.notNow, QStringLiteral("Not now/Не сейчас"));
    QCOMPARE(q.cancel, QStringLiteral("Cancel/Отмена"));
    // The same word in both languages is written once.
    QCOMPARE(q.ok, QStringLiteral("OK"));
    const QStringList halves = q.text.split(QStringLiteral("\r\n\r\n"));
    QCOMPARE(halves.size(), 2);
    QVERIFY(halves[0].startsWith(QStringLiteral("To translate the app")));
    QVERIFY(halves[1].contains(QStringLiteral("Перезапустить")));
}

void TestMainWindow::dialogButtonsGiveTheirOutcomes_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("storedAfter");
    QTest::addColumn<int>("restarts");
    QTest::newRow("OK") << "OK" << 1 << 1;
    QTest::newRow("Not now") << "Not now/Не сейчас" << 1 << 0;
    QTest::newRow("Cancel") << "Cancel/Отмена" << 0 << 0;
    QTest::newRow("closed") << "" << 0 << 0;
}

void TestMainWindow::dialogButtonsGiveTheirOutcomes()
{
    QFETCH(QString, button);
    QFETCH(int, storedAfter);
    QFETCH(int, restarts);
    makeWindow();
    m_window->realDialog = true;
    QStringList buttonTexts;
    QTimer::singleShot(100, this, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        for (QAbstractButton *b : box->buttons())
            buttonTexts.append(b->text());
        if (!qEnvironmentVariableIsEmpty("CORVIDA_DIALOG_PICTURE"))
            box->grab().save(qEnvironmentVariable("CORVIDA_DIALOG_PICTURE"));
        if (button.isEmpty()) {
            QTest::keyClick(box, Qt::Key_Escape);
            return;
        }
        for (QAbstractButton *b : box->buttons())
            if (b->text() == button)
                b->click();
    });
    settings()->setLanguage(CorvidaSettings::CorvidaLanguage::ru_RU);
    // The order on screen is the platform's; the three buttons are what matters.
    buttonTexts.sort();
    QCOMPARE(buttonTexts, (QStringList{"Cancel/Отмена", "Not now/Не сейчас", "OK"}));
    QCOMPARE(int(settings()->getLanguage()), storedAfter);
    QCOMPARE(m_window->restarts, restarts);
}

void TestMainWindow::openRecordSwitchesToRecordsAndRemembersPath()
{
    makeWindow();
    const QString path = m_model->recordsFolder() + QStringLiteral("2026-01-02_03-04-05.edf");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("0");
    file.close();
    emit m_window->experimentPage()->newRecordSaved();

    emit m_model->onOpenRecord(path);
    QCOMPARE(settings()->getLastExperimentPath(), path);
    QCOMPARE(m_window->currentPage(), m_window->databasePage());
    QVERIFY(m_window->pageButton(m_window->databasePage())->isChecked());
    QVERIFY(!m_window->newRecordDot()->isVisible());
    QCOMPARE(m_window->databasePage()->currentRecordPath(), QFileInfo(path).absoluteFilePath());
}

void TestMainWindow::openRecordIgnoresMissingFile()
{
    makeWindow();
    emit m_model->onOpenRecord(m_model->recordsFolder() + QStringLiteral("gone.edf"));
    QVERIFY(settings()->getLastExperimentPath().isEmpty());
    QCOMPARE(m_window->currentPage(), m_window->experimentPage());
}

void TestMainWindow::windowKeepsMinimumSizeAndStartsMaximised()
{
    settings()->setStartFullscreen(true);
    makeWindow();
    QVERIFY(m_window->windowState() & Qt::WindowMaximized);
    m_window->showNormal();
    m_window->resize(300, 200);
    QVERIFY(m_window->width() >= 800);
    QVERIFY(m_window->height() >= 600);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
