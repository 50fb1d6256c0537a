#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "support/RecordFiles.h"
#include "toolkit/LanguageContext.h"
#include "ui/PageAboutApp.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"

#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>
#include <memory>

// The window with restarts counted, modifier keys chosen by the test, and questions counted.
class AnsweringWindow : public MainWindow
{
public:
    int questions = 0;
    int restarts = 0;
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
    Qt::KeyboardModifiers currentModifiers() const override { return modifiers; }
};

class TestMainWindow : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    std::unique_ptr<AnsweringWindow> m_window;
    CorvidaSettings *settings() const { return m_model->settings(); }
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
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
