#include "analysis/CorvidaExperiment.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordExport.h"
#include "support/RecordFiles.h"
#include "toolkit/LanguageContext.h"
#include "ui/ExperimentViewer.h"
#include "ui/MethodComboBox.h"
#include "ui/MultiExperimentViewer.h"
#include "ui/PageDatabase.h"
#include "ui/PageSettings.h"
#include "ui/RecordPreview.h"
#include "ui/RecordTableModel.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QScrollBar>
#include <QtTest>
#include <memory>

namespace {
QDateTime at(int minute)
{
    return QDateTime(QDate(2026, 11, 21), QTime(10, minute, 0));
}

QString expOf(const QString &edf)
{
    return edf.chopped(4) + QStringLiteral(".exp");
}
} // namespace

// The page with a test in the place of the person who answers its questions and dialogs.
class AnsweringPage : public PageDatabase
{
public:
    QList<bool> answers; // taken in turn; a question without an answer left is a "no"
    QStringList questions;
    QStringList warnings;
    QStringList importFiles;
    QString exportPath;
    QString exportFilter;
    QString offeredExportPath;
    QString offeredFilters;
    QStringList opened; // "file:<path>", "show:<path>", "folder:<path>"

protected:
    bool ask(const QString &title, const QString &text) override
    {
        questions << title + '|' + text;
        return !answers.isEmpty() && answers.takeFirst();
    }
    void warn(const QString &title, const QString &text) override
    {
        warnings << title + '|' + text;
    }
    QStringList askImportFiles(const QString &, const QString &, const QString &) override
    {
        return importFiles;
    }
    QString askExportPath(const QString &, const QString &suggestedPath, const QString &filters,
                          QString *filter) override
    {
        offeredExportPath = suggestedPath;
        offeredFilters = filters;
        *filter = exportFilter;
        return exportPath;
    }
    void showInFolder(const QString &path) override { opened << "show:" + path; }
    void openFolder(const QString &folder) override { opened << "folder:" + folder; }
    void openFile(const QString &path) override { opened << "file:" + path; }
};

class TestPageDatabase : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    std::unique_ptr<AnsweringPage> m_page;
    QStringList m_paths; // the three records, oldest first

    CorvidaSettings *settings() const { return m_model->settings(); }
    QString folder() const { return m_model->recordsFolder(); }
    void makePage()
    {
        m_page = std::make_unique<AnsweringPage>();
        m_page->resize(1200, 700);
        m_page->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    }
    QStringList column(int c) const
    {
        QStringList texts;
        for (int row = 0; row < m_page->model()->rowCount(); ++row)
            texts << m_page->model()->index(row, c).data().toString();
        return texts;
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
    }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        settings()->setSortingColumn(0);
        settings()->setSortingOrder(Qt::AscendingOrder);
        m_paths.clear();
        m_paths << RecordFiles::write(folder(), {at(0), "rat 10", "", 121, 81});
        m_paths << RecordFiles::write(folder(), {at(5), "rat 9", "left cage", 200, 150});
        m_paths << RecordFiles::write(folder(), {at(10), "rat 2"});
        for (const QString &p : std::as_const(m_paths))
            QVERIFY(!p.isEmpty());
    }
    void cleanup() { m_page.reset(), m_model.reset(), m_dir.reset(); }

    void editingACellStoresOnlyAChangedText_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("stored");
        QTest::newRow("rodent unchanged") << 1 << "rat 9" << false;
        QTest::newRow("comment changed") << 2 << "right cage" << true;
    }
    void editingACellStoresOnlyAChangedText()
    {
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(bool, stored);
        const QString exp = expOf(m_paths[1]);
        makePage();
        QTableView *table = m_page->table();
        const QModelIndex cell = m_page->model()->index(1, column);
        // Showing a record may complete its results (heart rate) and save them; only the edit
        // is under test here.
        table->setCurrentIndex(cell);
        QCOMPARE(cell.data(RecordTableModel::PathRole).toString(), m_paths[1]);
        QCOMPARE(cell.data(RecordTableModel::FieldRole).toString(),
                 column == 1 ? QString("Rodent") : QString("Comment"));
        QSignalSpy saved(m_page->model()->record(1), &VTSettings::saved);
        // As a person does it: open the editor, type, press Enter.
        table->edit(cell);
        QPointer<QLineEdit> editor = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        QVERIFY(editor);
        editor->setText(typed);
        QTest::keyClick(editor, Qt::Key_Return);
        // The view commits from its event loop and then deletes the editor.
        QTRY_VERIFY(!editor || !editor->isVisible());

        QVERIFY(m_page->warnings.isEmpty());
        QCOMPARE(cell.data().toString(), typed);
        CorvidaExperiment reread(exp);
        QCOMPARE(column == 1 ? reread.getRodent() : reread.getComment(), typed);
        QCOMPARE(saved.size(), stored ? 1 : 0);
    }

    void sortOrderIsStoredAndSurvivesReload()
    {
        makePage();
        m_page->table()->sortByColumn(1, Qt::AscendingOrder);
        // Numbers in names go by their value.
        const QStringList expected{"rat 2", "rat 9", "rat 10"};
        QCOMPARE(column(1), expected);
        QCOMPARE(settings()->getSortingColumn(), 1);
        m_page->reload();
        QCOMPARE(column(1), expected);
        m_page->table()->sortByColumn(1, Qt::DescendingOrder);
        QCOMPARE(settings()->getSortingOrder(), Qt::DescendingOrder);

        // The next start sorts the same way.
        m_page.reset();
        makePage();
        QCOMPARE(column(1), (QStringList{"rat 10", "rat 9", "rat 2"}));
    }

    void selectionShowsNoDataOneOrSeveral_data()
    {
        QTest::addColumn<QList<int>>("rows");
        QTest::newRow("none") << QList<int>{};
        QTest::newRow("several") << QList<int>{2, 0};
    }
    void selectionShowsNoDataOneOrSeveral()
    {
        QFETCH(QList<int>, rows);
        makePage();
        QStringList paths;
        for (int row : rows)
            paths << m_paths[row];
        m_page->selectRecords(paths);
        RecordPreview *preview = m_page->preview();
        QCOMPARE(preview->recalculateButton()->isEnabled(), !rows.isEmpty());
        QCOMPARE(preview->exportButton()->isEnabled(), !rows.isEmpty());
        // One record in the experiment viewer: see tst_endtoend.
        if (rows.isEmpty()) {
            QCOMPARE(preview->currentView(), preview->messageLabel());
            QCOMPARE(preview->messageLabel()->text(), QString("No data"));
        } else {
            QCOMPARE(preview->currentView(), preview->multiViewer());
            // In the list's order, whatever order they were picked in.
            QStringList rodents;
            for (CorvidaExperiment *e : preview->multiViewer()->experiments())
                rodents << e->getRodent();
            QCOMPARE(rodents, (QStringList{"rat 10", "rat 2"}));
        }
    }

    void unreadableRecordIsListedAndSaysWhy()
    {
        QFile broken(QDir(folder()).filePath("broken.edf"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a recording");
        broken.close();
        makePage();
        QCOMPARE(m_page->model()->rowCount(), 4);
        m_page->selectRecords({broken.fileName()});
        QCOMPARE(m_page->preview()->currentView(), m_page->preview()->messageLabel());
        QCOMPARE(m_page->preview()->messageLabel()->text(),
                 QString("The recording cannot be read"));
    }

    void questionMarkInThePressureColumnSaysWhatIsMissing()
    {
        makePage();
        const QAbstractItemModel *model = m_page->model();
        const auto tip = [model](int row) {
            return model->data(model->index(row, RecordDatabase::PressureColumn), Qt::ToolTipRole)
                .toString();
        };
        QVERIFY(tip(0).isEmpty()); // 121/81: nothing to explain
        QCOMPARE(model->data(model->index(2, RecordDatabase::PressureColumn)).toString(), "?");
        QVERIFY(tip(2).contains("no systolic point found"));
        QVERIFY(tip(2).contains("no diastolic point found"));
    }

    // Each row says which way placed its markers, in the operator's language, and the list
    // sorts by it.
    void methodColumnShowsEachRecordsWay_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QStringList>("texts"); // header, documented, refined
        QTest::newRow("en_US") << "en_US" << QStringList{"Method", "Documented", "Refined"};
        QTest::newRow("ru_RU") << "ru_RU" << QStringList{"Метод", "Стандартный", "Уточнённый"};
    }
    void methodColumnShowsEachRecordsWay()
    {
        QFETCH(QString, language);
        QFETCH(QStringList, texts);
        CorvidaExperiment(expOf(m_paths[1])).setMethod(CorvidaExperiment::refinedMethod());
        QVERIFY(LanguageContext::instance()->setLanguage(language));
        makePage();
        const QAbstractItemModel *model = m_page->model();
        const int method = RecordDatabase::MethodColumn;
        const QString header = model->headerData(method, Qt::Horizontal).toString();
        const QStringList rows = column(method);
        m_page->table()->sortByColumn(method, Qt::DescendingOrder);
        const QString first = column(RecordDatabase::RodentColumn).first();
        QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
        QCOMPARE(header, texts[0]);
        QCOMPARE(rows, (QStringList{texts[1], texts[2], texts[1]}));
        QCOMPARE(first, QStringLiteral("rat 9"));
    }

    // A small window (800x600) left "118..." in the Pressure column; the Method column only
    // appears once a record uses the refined way, so a folder of ordinary records looks as before.
    void narrowListShowsValuesWholeAndMethodOnlyWhenUsed()
    {
        makePage();
        m_page->resize(560, 500);
        QCoreApplication::processEvents();
        QTableView *table = m_page->table();
        QVERIFY(table->isColumnHidden(RecordDatabase::MethodColumn));
        const QFontMetrics fm = table->fontMetrics();
        for (int c : {RecordDatabase::TitleColumn, RecordDatabase::PressureColumn,
                      RecordDatabase::MAPColumn, RecordDatabase::HeartRateColumn}) {
            for (const QString &text : column(c))
                QVERIFY2(fm.horizontalAdvance(text) < table->columnWidth(c), qPrintable(text));
        }
        // A wide window gives the list the room for all its columns.
        m_page->resize(1400, 500);
        QCoreApplication::processEvents();
        QCOMPARE(table->horizontalScrollBar()->maximum(), 0);
        CorvidaExperiment(expOf(m_paths[1])).setMethod(CorvidaExperiment::refinedMethod());
        m_page->reload();
        QCoreApplication::processEvents();
        QVERIFY(!table->isColumnHidden(RecordDatabase::MethodColumn));
        QCOMPARE(table->horizontalScrollBar()->maximum(), 0);
    }

    // The settings window chooses the way of new records; the setting holds "documented" or
    // "refined", and the drop-down follows a change made elsewhere.
    void settingsWindowChoosesTheWayOfNewRecords()
    {
        PageSettings page;
        MethodComboBox *box = page.detectionMethodBox();
        QCOMPARE(settings()->getDetectionMethod(), QStringLiteral("documented"));
        QCOMPARE(box->currentText(), QStringLiteral("Documented"));
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(settings()->getDetectionMethod(), QStringLiteral("refined"));
        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(settings()->getDetectionMethod(), QStringLiteral("documented"));
        settings()->setDetectionMethod(QStringLiteral("refined"));
        QCOMPARE(box->currentText(), QStringLiteral("Refined"));
    }

    void contextMenuOffersWhatFitsTheSelection_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("entries");
        QTest::newRow("one") << 1
                             << QStringList{"Recalculate experiment", "Show in folder",
                                            "Remove experiment"};
        QTest::newRow("two") << 2 << QStringList{"Remove experiments"};
    }
    void contextMenuOffersWhatFitsTheSelection()
    {
        QFETCH(int, count);
        makePage();
        m_page->selectRecords(m_paths.mid(0, count));
        std::unique_ptr<QMenu> menu(m_page->createContextMenu());
        QVERIFY(menu);
        QStringList texts;
        for (QAction *a : menu->actions())
            texts << a->text();
        QTEST(texts, "entries");
        if (count == 1) {
            menu->actions()[1]->trigger();
            QCOMPARE(m_page->opened, QStringList{"show:" + m_paths[0]});
        }
    }

    // A crash inside a save leaves "<name>.edf.part"; the page shows it and recovers a whole one.
    void interruptedSaveIsShownAndRecoveredFromTheMenu_data()
    {
        QTest::addColumn<int>("cut"); // bytes missing at the end of the left-behind recording
        QTest::addColumn<bool>("recoverable");
        QTest::newRow("complete") << 0 << true;
        QTest::newRow("cut off") << 40 << false;
    }
    void interruptedSaveIsShownAndRecoveredFromTheMenu()
    {
        QFETCH(int, cut);
        QFETCH(bool, recoverable);
        const QString part = m_paths[1] + QStringLiteral(".part");
        const QByteArray bytes = RecordFiles::readAll(m_paths[0]);
        QVERIFY(RecordFiles::writeAll(part, bytes.left(bytes.size() - cut)));
        makePage();
        QCOMPARE(m_page->model()->rowCount(), 4);
        m_page->selectRecords({part});
        QCOMPARE(m_page->selectedRecordPaths(), QStringList{part});
        QVERIFY(m_page->selectedRecords().isEmpty()); // nothing to export or recalculate
        QCOMPARE(m_page->preview()->currentView(), m_page->preview()->messageLabel());
        QVERIFY(m_page->preview()->messageLabel()->text().startsWith("An interrupted save"));

        std::unique_ptr<QMenu> menu(m_page->createContextMenu());
        QVERIFY(menu);
        QStringList texts;
        for (QAction *a : menu->actions())
            texts << a->text();
        QCOMPARE(texts, (QStringList{"Recover recording", "Show in folder", "Remove experiment"}));
        QCOMPARE(menu->actions()[0]->isEnabled(), recoverable);
        if (!recoverable) {
            // Thrown away alone: the record whose name it has keeps both its files.
            for (const char *dir : {"home/.qttest/share", "data"})
                QVERIFY(QDir(m_dir->path()).mkpath(dir));
            const QByteArray oldHome = qgetenv("HOME");
            const QByteArray oldData = qgetenv("XDG_DATA_HOME");
            qputenv("HOME", m_dir->filePath("home").toLocal8Bit());
            qputenv("XDG_DATA_HOME", m_dir->filePath("data").toLocal8Bit());
            m_page->answers << true;
            menu->actions()[2]->trigger();
            qputenv("HOME", oldHome);
            qputenv("XDG_DATA_HOME", oldData);
            QVERIFY(!QFile::exists(part));
            QVERIFY(QFile::exists(m_paths[1]) && QFile::exists(expOf(m_paths[1])));
            QCOMPARE(m_page->model()->rowCount(), 3);
            QVERIFY(m_page->warnings.isEmpty());
            return;
        }
        menu->actions()[0]->trigger();
        // The name was taken by the record it was to replace, which stays as it was.
        const QString recovered = m_paths[1].chopped(4) + QStringLiteral(" (2).edf");
        QCOMPARE(m_page->selectedRecordPaths(), QStringList{recovered});
        QCOMPARE(RecordFiles::readAll(recovered), bytes);
        QVERIFY(!QFile::exists(part));
        QCOMPARE(m_page->model()->rowCount(), 4);
        QCOMPARE(m_page->preview()->currentView(),
                 static_cast<QWidget *>(m_page->preview()->experimentViewer()));
        QVERIFY(m_page->warnings.isEmpty());
    }

    void removeAsksFirstAndTrashesBothFiles_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<QString>("question");
        QTest::newRow("one, no") << 1 << false << "Remove|Remove selected experiment?";
        QTest::newRow("two, yes") << 2 << true << "Remove|Remove 2 selected experiments?";
    }
    void removeAsksFirstAndTrashesBothFiles()
    {
        QFETCH(int, count);
        QFETCH(bool, answer);
        QFETCH(QString, question);
        // A home and trash of our own (see tst_recorddatabase), never the user's.
        for (const char *dir : {"home/.qttest/share", "data"})
            QVERIFY(QDir(m_dir->path()).mkpath(dir));
        const QByteArray oldHome = qgetenv("HOME");
        const QByteArray oldData = qgetenv("XDG_DATA_HOME");
        qputenv("HOME", m_dir->filePath("home").toLocal8Bit());
        qputenv("XDG_DATA_HOME", m_dir->filePath("data").toLocal8Bit());
        makePage();
        m_page->selectRecords(m_paths.mid(0, count));
        m_page->answers << answer;
        m_page->removeExperiments(m_page->selectedRecordPaths());
        qputenv("HOME", oldHome);
        qputenv("XDG_DATA_HOME", oldData);

        QCOMPARE(m_page->questions, QStringList{question});
        QVERIFY(m_page->warnings.isEmpty());
        for (int i = 0; i < m_paths.size(); ++i) {
            const bool gone = answer && i < count;
            QCOMPARE(QFile::exists(m_paths[i]), !gone);
            QCOMPARE(QFile::exists(expOf(m_paths[i])), !gone);
        }
        QCOMPARE(m_page->model()->rowCount(), answer ? 3 - count : 3);
    }

    void recalculateAsksFirst()
    {
        // Answered "yes", the new results reach the table and the file: see tst_endtoend.
        {
            // Results with their marker times, as a person may have placed them by hand.
            CorvidaExperiment hand(expOf(m_paths[1]));
            QVERIFY(hand.setValue("SBPTime", 0.5) && hand.setValue("DBPTime", 1.0));
        }
        makePage();
        m_page->selectRecords({m_paths[1]});
        QTest::mouseClick(m_page->preview()->recalculateButton(), Qt::LeftButton);
        QCOMPARE(m_page->questions,
                 QStringList{"Recalculate|All blood pressure data\nin this experiment will be "
                             "reset.\nContinue?"});
        QCOMPARE(CorvidaExperiment(expOf(m_paths[1])).getSBP(), 200.0);
        QCOMPARE(m_page->model()->index(1, RecordDatabase::PressureColumn).data().toString(),
                 QString("200/150"));
        QCOMPARE(m_page->model()->index(1, RecordDatabase::MAPColumn).data().toString(),
                 QString("167"));
    }

    void importWarnsAboutRenamedFilesAndSelectsTheNewRecords()
    {
        QTemporaryDir source;
        const QString taken = source.filePath(QFileInfo(m_paths[0]).fileName());
        const QString fresh = source.filePath("new one.edf");
        QVERIFY(QFile::copy(m_paths[0], taken));
        QVERIFY(QFile::copy(m_paths[0], fresh));
        makePage();
        m_page->importFiles = {taken, fresh};
        m_page->importRecords();

        const QString base = QFileInfo(taken).completeBaseName();
        QCOMPARE(m_page->warnings, QStringList{"Import warning|File \"" + base + ".edf\" \nwas " +
                                               "imported as \"" + base + " (2).edf\""});
        QCOMPARE(m_page->model()->rowCount(), 5);
        QCOMPARE(m_page->selectedRecordPaths().size(), 2);
        QVERIFY(m_page->selectedRecordPaths().contains(QDir(folder()).filePath("new one.edf")));
        QCOMPARE(QDir(settings()->getLastImportFolder()), QDir(source.path()));
    }

    void exportWritesTheChosenFormatAndFollowsExportBehavior_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<int>("behavior");
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QString>("after");
        QTest::newRow("xlsx, open the file") << 0 << 0 << QByteArray("PK") << "file:";
        QTest::newRow("csv, show the folder")
            << 1 << 1 << QByteArray("\xEF\xBB\xBFSummary\r\n") << "show:";
        QTest::newRow("full csv, nothing") << 3 << 2 << QByteArray("\xEF\xBB\xBFSummary\r\n") << "";
    }
    void exportWritesTheChosenFormatAndFollowsExportBehavior()
    {
        QFETCH(int, filter);
        QFETCH(int, behavior);
        QFETCH(QByteArray, start);
        QFETCH(QString, after);
        QTemporaryDir out;
        settings()->setExportBehavior(CorvidaSettings::ExportBehaviorOption(behavior));
        settings()->setLastExportFolder(out.path());
        makePage();
        m_page->selectRecords({m_paths[0], m_paths[2]});
        m_page->exportPath = out.filePath("both"); // no suffix typed
        m_page->exportFilter = RecordExport::filters()[filter];
        QTest::mouseClick(m_page->preview()->exportButton(), Qt::LeftButton);

        const QString a = QFileInfo(m_paths[0]).completeBaseName();
        const QString b = QFileInfo(m_paths[2]).completeBaseName();
        QCOMPARE(m_page->offeredExportPath, out.filePath(a + "-" + b));
        QCOMPARE(m_page->offeredFilters, RecordExport::filterString());
        const QString written = out.filePath(filter % 2 ? "both.csv" : "both.xlsx");
        QVERIFY(RecordFiles::readAll(written).startsWith(start));
        QCOMPARE(m_page->opened, after.isEmpty() ? QStringList() : QStringList{after + written});
        QCOMPARE(settings()->getLastExportFilter(), RecordExport::filters()[filter]);
        QVERIFY(m_page->warnings.isEmpty());
    }
};

QTEST_MAIN(TestPageDatabase)
#include "tst_pagedatabase.moc"
