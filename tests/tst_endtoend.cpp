#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "app/MainWindow.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "session/SessionRun.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"
#include "support/ExpFile.h"
#include "support/SessionRig.h"
#include "support/XlsxReader.h"
#include "toolkit/LanguageContext.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/ExperimentViewer.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/RecordPreview.h"
#include "ui/RecordTableModel.h"
#include "ui/SessionListView.h"
#include "ui/SessionPanel.h"
#include "ui/SessionTableModel.h"
#include "ui/SignalViewer.h"

#include <QApplication>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include <functional>

// The program as an operator meets it: an empty data folder, one simulated unit, one
// measurement from "Turn on" to the exported files, with every question answered as a person
// would answer it (the real dialogs, found on screen and clicked).
class TestEndToEnd : public QObject
{
    Q_OBJECT
    qint64 m_now = 5'000'000;

    // Answers the next modal dialog when it appears.
    static void answerNext(std::function<void(QWidget *)> answer)
    {
        auto *poll = new QTimer(qApp);
        QObject::connect(poll, &QTimer::timeout, qApp, [poll, answer] {
            if (QWidget *modal = QApplication::activeModalWidget()) {
                poll->deleteLater();
                poll->stop();
                answer(modal);
            }
        });
        poll->start(20);
    }
    static void clickYes(QWidget *modal)
    {
        auto *box = qobject_cast<QMessageBox *>(modal);
        QVERIFY(box);
        box->button(QMessageBox::Yes)->click();
    }
    // Answers the next save dialog with `path`, its file type picked by the path's suffix.
    static void answerSaveDialog(const QString &path)
    {
        answerNext([path](QWidget *modal) {
            auto *dialog = qobject_cast<QFileDialog *>(modal);
            QVERIFY(dialog);
            for (const QString &filter : dialog->nameFilters()) {
                if (filter.contains(QFileInfo(path).suffix())) {
                    dialog->selectNameFilter(filter);
                    break;
                }
            }
            dialog->setDirectory(QFileInfo(path).absolutePath());
            dialog->selectFile(QFileInfo(path).fileName());
            if (auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                name->setText(QFileInfo(path).fileName());
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }
    // A fresh data folder's settings: a window, in English, exports left alone, and limits with
    // which the simulated unit shows its systolic point after the first 4 s.
    static void prepare(CorvidaSettings *settings)
    {
        settings->setStartFullscreen(false);
        settings->setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
        settings->setExportBehavior(CorvidaSettings::ExportBehaviorOption::OnExport_DoNothing);
        settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
    }
    static QString cell(PageDatabase *page, int column)
    {
        const QModelIndex current = page->table()->currentIndex();
        return page->model()->index(current.row(), column).data().toString();
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
    }
    void measureSaveReviewCorrectAndExport()
    {
        QTemporaryDir data;
        CorvidaModel model(data.path());
        CorvidaSettings *settings = model.settings();
        prepare(settings);
        MainWindow window;
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.experimentPage()->panels().isEmpty());

        // One simulated unit, run on the test's clock instead of the wall clock.
        settings->setUseVirtualCorvida(1);
        QCOMPARE(window.experimentPage()->panels().size(), 1);
        CorvidaDeviceView *panel = window.experimentPage()->panels().first();
        auto *unit = qobject_cast<VirtualCorvidaDevice *>(panel->device());
        QVERIFY(unit);
        unit->setTickTimerActive(false);
        unit->setClock([this] { return m_now; });
        panel->experiment()->setClock([this] { return m_now; });
        const auto run = [&](int ms) {
            for (int t = 0; t < ms; t += 50) {
                m_now += 50;
                unit->tick();
            }
            QCoreApplication::processEvents();
        };

        panel->turnOnButton()->click();
        panel->measureButton()->click();
        QVERIFY(unit->isMeasuring());
        run(14'000);
        panel->abortButton()->click();
        QVERIFY(!unit->isAcquiring());
        QTest::keyClicks(panel->rodentEditor(), QStringLiteral("Rat 12"));
        panel->saveButton()->click();
        QVERIFY(window.newRecordDot()->isVisible());
        const QString edf = panel->savedRecordPath();
        QVERIFY(QFile::exists(edf));
        const QString exp = edf.chopped(4) + QStringLiteral(".exp");
        QVERIFY(QFile::exists(exp));
        const double automaticSBP = panel->experiment()->getSBP();
        QVERIFY2(automaticSBP > 100 && automaticSBP < 125,
                 qPrintable(QString::number(automaticSBP)));

        // The file button takes the operator to the record on the Records page.
        panel->recordedFileButton()->click();
        PageDatabase *records = window.databasePage();
        QCOMPARE(window.currentPage(), records);
        QCOMPARE(records->currentRecordPath(), edf);
        QCOMPARE(cell(records, RecordDatabase::RodentColumn), QStringLiteral("Rat 12"));
        const double shownDBP = panel->experiment()->getDBP();
        QCOMPARE(cell(records, RecordDatabase::PressureColumn),
                 QStringLiteral("%1/%2").arg(qRound(automaticSBP)).arg(qRound(shownDBP)));
        QCOMPARE(cell(records, RecordDatabase::MAPColumn),
                 QString::number(qRound(shownDBP + (automaticSBP - shownDBP) / 3.0)));
        CorvidaExperiment *record = records->selectedRecords().value(0);
        QVERIFY(record);

        // Drag the SBP marker one second later in the pressure plot.
        ExperimentViewer *viewer = records->preview()->experimentViewer();
        QVERIFY(viewer->isVisible());
        SignalViewer *plot = viewer->pressureViewer();
        const double sbpTime = record->getSBPTime();
        const auto xOf = [plot](double t) {
            return int(
                std::lround(plot->margin() + (t - plot->offset()) * plot->pixelsPerSecond()));
        };
        const int y = plot->height() / 2;
        QTest::mousePress(plot, Qt::LeftButton, {}, QPoint(xOf(sbpTime), y));
        QTest::mouseMove(plot, QPoint(xOf(sbpTime + 1.0), y));
        QTest::mouseRelease(plot, Qt::LeftButton, {}, QPoint(xOf(sbpTime + 1.0), y));
        QVERIFY2(std::fabs(record->getSBPTime() - (sbpTime + 1.0)) < 0.2,
                 qPrintable(QString::number(record->getSBPTime())));
        const double movedSBP = record->getSBP();
        QVERIFY(movedSBP < automaticSBP - 3); // the cuff was deflating
        QCOMPARE(cell(records, RecordDatabase::PressureColumn).section('/', 0, 0),
                 QString::number(qRound(movedSBP)));
        {
            // The correction is on disk, not only on screen.
            const CorvidaExperiment reread(exp);
            QVERIFY(std::fabs(reread.getSBPTime() - record->getSBPTime()) < 0.01);
        }

        // Recalculating puts the automatic point back.
        answerNext(clickYes);
        records->preview()->recalculateButton()->click();
        // The same point; the stored recording is quantised, so the pressure may differ slightly.
        QVERIFY(std::fabs(record->getSBP() - automaticSBP) < 0.5);
        const double shownSBP = record->getSBP();
        QCOMPARE(cell(records, RecordDatabase::PressureColumn).section('/', 0, 0),
                 QString::number(qRound(shownSBP)));
        QVERIFY(std::fabs(CorvidaExperiment(exp).getSBP() - shownSBP) < 0.01);

        // Export, as XLSX and as CSV, through the real save dialog.
        QTemporaryDir exports;
        for (const QString &suffix : {QStringLiteral("xlsx"), QStringLiteral("csv")}) {
            const QString path = exports.filePath(QStringLiteral("pressures.") + suffix);
            answerSaveDialog(path);
            records->preview()->exportButton()->click();
            QTRY_VERIFY2(QFile::exists(path),
                         qPrintable(QDir(exports.path()).entryList(QDir::Files).join(",")));
        }
        const QString sbpText = QString::number(shownSBP, 'f', 1);
        QFile csv(exports.filePath(QStringLiteral("pressures.csv")));
        QVERIFY(csv.open(QIODevice::ReadOnly));
        const QString csvText = QString::fromUtf8(csv.readAll());
        QVERIFY2(csvText.contains(QStringLiteral("Rat 12")), qPrintable(csvText.left(400)));
        QVERIFY2(csvText.contains(sbpText.left(sbpText.indexOf('.'))),
                 qPrintable(csvText.left(400)));
        if (XlsxReader::available()) {
            QString error;
            const QJsonArray sheets =
                XlsxReader::read(exports.filePath(QStringLiteral("pressures.xlsx")), &error);
            QVERIFY2(!sheets.isEmpty(), qPrintable(error));
            bool foundSBP = false;
            for (const auto &row :
                 sheets.first().toObject().value(QStringLiteral("rows")).toArray()) {
                for (const auto &value : row.toArray())
                    foundSBP = foundSBP ||
                               (value.isDouble() && std::fabs(value.toDouble() - shownSBP) < 0.05);
            }
            QVERIFY(foundSBP);
        }
    }

    // A session from the panel to the exported "Sessions" sheet, one cycle rejected by hand.
    void sessionRunsToTheRecordsPageAndItsSheet()
    {
        QTemporaryDir data;
        CorvidaModel model(data.path());
        CorvidaSettings *settings = model.settings();
        prepare(settings);
        settings->setSessionInterval(5);
        MainWindow window;
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        settings->setUseVirtualCorvida(1);
        CorvidaDeviceView *panel = window.experimentPage()->panels().value(0);
        QVERIFY(panel);
        auto *unit = qobject_cast<VirtualCorvidaDevice *>(panel->device());
        unit->setTickTimerActive(false);
        unit->setClock([this] { return m_now; });
        SessionPanel *session = panel->sessionPanel();
        session->setClock([this] { return m_now; });
        session->setTickTimerActive(false);

        QTest::keyClicks(panel->rodentEditor(), QStringLiteral("Rat 12"));
        session->acclimationEditor()->setValue(1);
        session->cyclesEditor()->setValue(3);
        session->sessionButton()->click();
        QVERIFY(session->isRunning());
        for (int i = 0; i < 20000 && session->isRunning(); ++i) {
            m_now += 50;
            unit->tick();
            session->run()->tick();
        }
        QCOMPARE(session->run()->state(), SessionRun::State::Finished);
        QCOMPARE(session->cycleTable()->rowCount(), 4);
        QStringList exps;
        for (const SessionRun::CycleResult &r : session->run()->results())
            exps << r.file.chopped(4) + QStringLiteral(".exp");

        // The records page lists the session; reject the second measurement cycle by hand.
        window.showPage(window.databasePage());
        PageDatabase *records = window.databasePage();
        records->reload();
        records->listTabs()->setCurrentWidget(records->sessionView());
        SessionListView *sessions = records->sessionView();
        sessions->selectSession(session->run()->sessionId());
        QCOMPARE(sessions->cycleTable()->rowCount(), 4);
        sessions->cycleTable()->selectRow(2);
        sessions->rejectButton()->click();
        QCOMPARE(ExpFile::values(exps[2]).value(QStringLiteral("Verdict")), QStringLiteral("2"));
        QList<double> sbp;
        for (int i : {1, 3})
            sbp << ExpFile::values(exps[i]).value(QStringLiteral("SBP")).toDouble();
        const double mean = (sbp[0] + sbp[1]) / 2.0;
        QAbstractItemModel *rows = sessions->sessionTable()->model();
        QTRY_COMPARE(rows->index(0, SessionTableModel::AcceptedColumn).data().toString(),
                     QStringLiteral("2/3"));
        QCOMPARE(rows->index(0, SessionTableModel::RodentColumn).data().toString(),
                 QStringLiteral("Rat 12"));
        QCOMPARE(rows->index(0, SessionTableModel::SBPColumn).data().toString(), meanSdText(sbp));

        // Export the session's cycles through the real dialog; the workbook has the sheet.
        QTemporaryDir exports;
        const QString path = exports.filePath(QStringLiteral("session.xlsx"));
        answerSaveDialog(path);
        records->preview()->exportButton()->click();
        QTRY_VERIFY(QFile::exists(path));
        if (!XlsxReader::available())
            QSKIP("no independent XLSX reader (python3-openpyxl) to check the workbook");
        QString error;
        const QJsonArray sheets = XlsxReader::read(path, &error);
        QVERIFY2(!sheets.isEmpty(), qPrintable(error));
        QJsonArray sessionRows;
        for (const auto &sheet : sheets) {
            if (sheet.toObject().value(QStringLiteral("name")).toString() ==
                QStringLiteral("Sessions"))
                sessionRows = sheet.toObject().value(QStringLiteral("rows")).toArray();
        }
        QCOMPARE(sessionRows.size(), 2); // the header and the one session
        const QJsonArray row = sessionRows[1].toArray();
        QCOMPARE(row[0].toString(), QStringLiteral("Rat 12"));
        QCOMPARE(row[3].toString(), QStringLiteral("2/3"));
        QVERIFY2(std::fabs(row[4].toDouble() - mean) < 0.05, qPrintable(QString::number(mean)));
    }
};

QTEST_MAIN(TestEndToEnd)
#include "tst_endtoend.moc"
