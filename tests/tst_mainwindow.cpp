#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "support/RecordFiles.h"
#include "toolkit/LanguageContext.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageAboutApp.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"
#include "ui/SettingsFileNotice.h"

#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <memory>

// The window with restarts counted, modifier keys chosen by the test, and questions counted.
class AnsweringWindow : public MainWindow
{
public:
    int questions = 0;
    int restarts = 0;
    QStringList discardQuestions;
    bool discard = false;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;

protected:
    AppHelper::ConfirmResult askLanguageChange(const QString &title, const QString &text,
                                               const QString &ok, const QString &notNow,
                                               const QString &cancel) override
    {
        ++questions;
        return MainWindow::askLanguageChange(title, text, ok, notNow, cancel);
    }
    void restartApplication() override { ++restarts; }
    bool confirmDiscardUnsaved(const QString &text) override
    {
        discardQuestions << text;
        return discard;
    }
    Qt::KeyboardModifiers currentModifiers() const override { return modifiers; }
};

class TestMainWindow : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    std::unique_ptr<AnsweringWindow> m_window;
    qint64 m_now = 1'000'000;
    CorvidaSettings *settings() const { return m_model->settings(); }
    // A simulated unit driven by the test's clock, with a measurement of two seconds that was
    // not saved in its panel.
    void measureWithoutSaving()
    {
        auto *device = new VirtualCorvidaDevice();
        device->setTickTimerActive(false);
        device->setClock([this] { return m_now; });
        m_model->addDevice(device);
        device->connectDevice();
        makeWindow();
        CorvidaDeviceView *panel = m_window->experimentPage()->panels().value(0);
        QVERIFY(panel);
        panel->turnOn();
        panel->measure();
        for (int t = 0; t < 2000; t += 50) {
            m_now += 50;
            device->tick();
        }
        QVERIFY(panel->hasUnsavedMeasurement());
    }
    void makeWindow()
    {
        m_window = std::make_unique<AnsweringWindow>();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

private slots:
    void init()
    {
        QStandardPaths::setTestModeEnabled(true);
        QCoreApplication::setApplicationVersion(QStringLiteral("0.1.0"));
        QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        settings()->setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
        settings()->setStartFullscreen(false);
    }
    void cleanup() { m_window.reset(), m_model.reset(), m_dir.reset(); }

    void pageButtonsSwitchPagesWithOneChecked_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("Experiment") << 0;
        QTest::newRow("Records") << 1;
        QTest::newRow("Settings") << 2;
        QTest::newRow("About") << 3;
    }
    void pageButtonsSwitchPagesWithOneChecked()
    {
        QFETCH(int, index);
        makeWindow();
        const QList<CorvidaBasePage *> pages = {m_window->experimentPage(),
                                                m_window->databasePage(), m_window->settingsPage(),
                                                m_window->aboutPage()};
        QCOMPARE(m_window->currentPage(), pages[0]);
        // Go somewhere else first, so switching to the first page is a real switch too.
        QTest::mouseClick(m_window->pageButtons()[(index + 2) % 4], Qt::LeftButton);
        emit m_window->experimentPage()->newRecordSaved();
        QVERIFY(m_window->newRecordDot()->isVisible());
        QTest::mouseClick(m_window->pageButtons()[index], Qt::LeftButton);
        // The new-record dot stays until the records page is shown, which reloads it.
        QCOMPARE(m_window->newRecordDot()->isVisible(), index != 1);
        QCOMPARE(m_window->databasePage()->needsReload(), index != 1);
        QCOMPARE(m_window->currentPage(), pages[index]);
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(m_window->pageButtons()[i]->isChecked(), i == index);
            QCOMPARE(pages[i]->isVisible(), i == index);
        }
        // A second click on the current page's button keeps it checked.
        QTest::mouseClick(m_window->pageButtons()[index], Qt::LeftButton);
        QVERIFY(m_window->pageButtons()[index]->isChecked());
    }

    void ctrlHomeTogglesSimulatedUnit_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("afterOne");
        QTest::addColumn<int>("afterTwo");
        QTest::newRow("from 0") << 0 << 1 << 0;
        QTest::newRow("from 2") << 2 << 0 << 1;
    }
    void ctrlHomeTogglesSimulatedUnit()
    {
        QFETCH(int, start);
        QFETCH(int, afterTwo);
        settings()->setUseVirtualCorvida(start);
        makeWindow();
        QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
        QTEST(settings()->getUseVirtualCorvida(), "afterOne");
        QTest::keyClick(m_window.get(), Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(settings()->getUseVirtualCorvida(), afterTwo);
        // The change reached the file, where the next start reads it.
        CorvidaSettings reread(m_model->rootFolder() + QStringLiteral("Settings.xml"));
        QCOMPARE(reread.getUseVirtualCorvida(), afterTwo);
    }

    void debugMenuOnlyWithCtrl_data()
    {
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("alreadyOn");
        QTest::addColumn<int>("menuExpected");
        QTest::newRow("no modifier") << int(Qt::NoModifier) << 0 << 0;
        QTest::newRow("shift") << int(Qt::ShiftModifier) << 0 << 0;
        QTest::newRow("ctrl") << int(Qt::ControlModifier) << 0 << 1;
        QTest::newRow("ctrl shift") << int(Qt::ControlModifier | Qt::ShiftModifier) << 0 << 1;
        QTest::newRow("ctrl, already on") << int(Qt::ControlModifier) << 1 << 1;
    }
    void debugMenuOnlyWithCtrl()
    {
        QFETCH(int, modifiers);
        QFETCH(int, alreadyOn);
        QFETCH(int, menuExpected);
        settings()->setDebugMode(alreadyOn);
        makeWindow();
        m_window->modifiers = Qt::KeyboardModifiers(modifiers);
        QSignalSpy saved(settings(), &VTSettings::saved);
        QStringList menuTexts;
        // A shown menu blocks in exec(); pick its entry from inside the loop it runs.
        QTimer::singleShot(100, this, [&] {
            if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
                for (QAction *a : menu->actions())
                    menuTexts.append(a->text());
                menu->actions().constFirst()->trigger();
                menu->close();
            }
        });
        emit m_window->pageButton(m_window->settingsPage())
            ->customContextMenuRequested(QPoint(5, 5));
        QTest::qWait(200);
        QCOMPARE(menuTexts, menuExpected ? QStringList{"Debug mode"} : QStringList());
        QCOMPARE(settings()->getDebugMode(), menuExpected || alreadyOn);
        QCOMPARE(saved.size(), menuExpected && !alreadyOn ? 1 : 0);
    }

    void languageQuestionOutcomes_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("storedAfter");
        QTest::addColumn<int>("restarts");
        QTest::newRow("OK") << QString("OK") << 1 << 1;
        QTest::newRow("Not now") << QString("Not now/Не сейчас") << 1 << 0;
        QTest::newRow("Cancel") << QString("Cancel/Отмена") << 0 << 0;
        QTest::newRow("closed") << QString() << 0 << 0;
    }
    void languageQuestionOutcomes()
    {
        QFETCH(QString, button);
        QFETCH(int, storedAfter);
        QFETCH(int, restarts);
        makeWindow();
        QStringList buttonTexts;
        QTimer::singleShot(100, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            for (QAbstractButton *b : box->buttons())
                buttonTexts.append(b->text());
            for (QAbstractButton *b : box->buttons())
                if (b->text() == button)
                    b->click();
            if (button.isEmpty())
                QTest::keyClick(box, Qt::Key_Escape);
        });
        settings()->setLanguage(CorvidaSettings::CorvidaLanguage::ru_RU);
        // The order on screen is the platform's; the three buttons are what matters.
        buttonTexts.sort();
        QCOMPARE(buttonTexts, (QStringList{"Cancel/Отмена", "Not now/Не сейчас", "OK"}));
        QCOMPARE(m_window->questions, 1); // answering re-announces it: no second question
        QCOMPARE(LanguageContext::instance()->currentLanguage(),
                 QString(storedAfter ? "ru_RU" : "en_US"));
        QCOMPARE(int(settings()->getLanguage()), storedAfter);
        QCOMPARE(m_window->restarts, restarts);
    }

    void windowKeepsMinimumSize()
    {
        makeWindow();
        m_window->resize(300, 200);
        QVERIFY(m_window->width() >= 800);
        QVERIFY(m_window->height() >= 600);
    }

    // From a panel's file button to the Records page: see tst_endtoend. Here the record is one
    // of many, out of view, and another selection is in place.
    void openRecordShowsItsRowInTheRecordsPage()
    {
        QStringList paths;
        for (int i = 0; i < 40; ++i) {
            const QDateTime start(QDate(2026, 11, 21), QTime(8, i, 0));
            paths << RecordFiles::write(m_model->recordsFolder(), {start});
        }
        makeWindow();
        PageDatabase *page = m_window->databasePage();
        QTest::mouseClick(m_window->pageButton(page), Qt::LeftButton);
        page->selectRecords({paths[20], paths[21]});
        QTest::mouseClick(m_window->pageButtons()[0], Qt::LeftButton);

        // Newest first: the oldest record is the last row, out of view until scrolled to.
        emit m_model->onOpenRecord(paths[0]);
        QCOMPARE(page->selectedRecordPaths(), QStringList{paths[0]});
        QTableView *table = page->table();
        const QRect row = table->visualRect(table->currentIndex());
        QVERIFY(row.top() >= 0 && row.bottom() <= table->viewport()->height());
    }

    void closingNoLongerDiscardsAnUnsavedMeasurement_data()
    {
        QTest::addColumn<bool>("measured");
        QTest::addColumn<bool>("discard");
        QTest::addColumn<bool>("closed");
        QTest::newRow("nothing measured: no question") << false << false << true;
        QTest::newRow("unsaved, kept: window stays") << true << false << false;
        QTest::newRow("unsaved, discarded") << true << true << true;
    }
    void closingNoLongerDiscardsAnUnsavedMeasurement()
    {
        QFETCH(bool, measured);
        QFETCH(bool, discard);
        if (measured)
            measureWithoutSaving();
        else
            makeWindow();
        m_window->discard = discard;
        const bool closed = m_window->close();
        QTEST(closed, "closed");
        QCOMPARE(m_window->isVisible(), !closed);
        QCOMPARE(m_window->discardQuestions.size(), measured ? 1 : 0);
        if (measured) {
            const QString unit = m_window->experimentPage()->panels()[0]->title();
            QVERIFY2(m_window->discardQuestions[0].contains(unit),
                     qPrintable(m_window->discardQuestions[0]));
        }
    }
    void languageRestartNoLongerDiscardsAnUnsavedMeasurement_data()
    {
        QTest::addColumn<bool>("discard");
        QTest::newRow("kept: no restart yet") << false;
        QTest::newRow("discarded: restart") << true;
    }
    void languageRestartNoLongerDiscardsAnUnsavedMeasurement()
    {
        QFETCH(bool, discard);
        measureWithoutSaving();
        m_window->discard = discard;
        QTimer::singleShot(100, this, [] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            for (QAbstractButton *b : box->buttons())
                if (b->text() == QLatin1String("OK"))
                    b->click();
        });
        settings()->setLanguage(CorvidaSettings::CorvidaLanguage::ru_RU);
        QCOMPARE(m_window->discardQuestions.size(), 1);
        QCOMPARE(m_window->restarts, discard ? 1 : 0);
        // Kept or not, the new language is stored for the next start.
        QCOMPARE(int(settings()->getLanguage()), 1);
        // Once the operator agreed, the close that ends the old process does not ask again.
        if (discard) {
            QVERIFY(m_window->close());
            QCOMPARE(m_window->discardQuestions.size(), 1);
        }
    }

    // Settings.xml as the program finds it at start, and what the window then says.
    void settingsFileProblemsAreToldOnce_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: a folder in the file's place
        QTest::addColumn<QString>("saying");
        QTest::newRow("damaged")
            << QByteArray("<CorvidaSettings>\n<SortingColumn>2</SortingColumn>\n<Visual")
            << QStringLiteral("was damaged");
        QTest::newRow("cannot be read") << QByteArray() << QStringLiteral("cannot be read");
    }
    void settingsFileProblemsAreToldOnce()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, saying);
        m_model.reset();
        const QString path = m_dir->filePath(QStringLiteral("Settings.xml"));
        QVERIFY(QFile::remove(path));
        if (content.isEmpty())
            QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("Settings.xml")));
        else
            QVERIFY(RecordFiles::writeAll(path, content));
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        makeWindow();
        SettingsFileNotice *notice = m_window->settingsNotice();
        QVERIFY(notice->isVisible());
        QVERIFY2(notice->text().contains(saying), qPrintable(notice->text()));
        if (content.isEmpty()) {
            // Nothing was written in the file's place, however the settings change.
            settings()->setSortingColumn(3);
            QVERIFY(QFileInfo(path).isDir());
            QVERIFY(QDir(path).isEmpty());
        } else {
            // What was read before the damage stays, and the damaged file is kept beside.
            QCOMPARE(settings()->getSortingColumn(), 2);
            QVERIFY2(notice->text().contains(QStringLiteral("Settings.xml.bad")),
                     qPrintable(notice->text()));
            QCOMPARE(RecordFiles::readAll(path + QStringLiteral(".bad")), content);
            CorvidaSettings reread(path);
            QCOMPARE(reread.fileState(), VTSettings::FileState::Read);
            QCOMPARE(reread.getSortingColumn(), 2);
        }
        // Closed by the operator, it does not come back for the same trouble.
        notice->findChild<QToolButton *>(QStringLiteral("closeNotice"))->click();
        settings()->setSortingColumn(1);
        QVERIFY(!notice->isVisible());
    }
    void settingsThatCannotBeSavedAreToldOnce()
    {
        makeWindow();
        SettingsFileNotice *notice = m_window->settingsNotice();
        QVERIFY(!notice->isVisible());
        // Without its folder the file cannot be written, even by root.
        QVERIFY(QDir(m_dir->path()).removeRecursively());
        settings()->setSortingColumn(2);
        QVERIFY(notice->isVisible());
        QVERIFY2(notice->text().contains(QStringLiteral("cannot be saved")),
                 qPrintable(notice->text()));
        notice->hide();
        settings()->setSortingColumn(3);
        QVERIFY(!notice->isVisible());
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
