#include "analysis/CorvidaExperiment.h"
#include "device/CorvidaModel.h"
#include "storage/RecordExport.h"
#include "support/ExpFile.h"
#include "support/SessionRig.h"
#include "ui/AnimalHistoryPlot.h"
#include "ui/AnimalView.h"
#include "ui/MultiExperimentViewer.h"
#include "ui/PageDatabase.h"
#include "ui/RecordPreview.h"
#include "ui/SessionListView.h"
#include "ui/SessionTableModel.h"

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace {
// The records page with the export dialog answered by the test.
class ExportingPage : public PageDatabase
{
public:
    QString exportPath;
    QStringList warnings;

protected:
    QString askExportPath(const QString &, const QString &, const QString &,
                          QString *filter) override
    {
        *filter = RecordExport::filters()[1];
        return exportPath;
    }
    void warn(const QString &, const QString &text) override { warnings << text; }
    void openFile(const QString &path) override { opened << path; }
    QString askReportPath(const QString &) override { return exportPath; }

public:
    QStringList opened;

protected:
    void showInFolder(const QString &) override {}
};

// The text of a PDF as poppler's pdftotext reads it; empty when the tool is missing.
QString pdfText(const QString &path)
{
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (tool.isEmpty())
        return {};
    QProcess p;
    p.start(tool, {QStringLiteral("-layout"), path, QStringLiteral("-")});
    p.waitForFinished(30000);
    return QString::fromUtf8(p.readAllStandardOutput()).simplified();
}
} // namespace

// The sessions view of the records page, on sessions measured by a simulated unit on a clock the
// test moves.
class TestSessionListView : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    std::unique_ptr<PageDatabase> m_page;
    qint64 m_now = 1'750'000'000'000;

    // Runs a whole session into the records folder; its cycles' ".exp" paths in cycle order.
    QStringList measureSession(const QString &rodent, int acclimation, int cycles)
    {
        SessionRig rig(m_model->recordsFolder(), SessionRig::plan120(acclimation, cycles, rodent));
        rig.now = m_now;
        const QStringList paths = rig.runToEnd();
        m_now = rig.now + 60'000;
        return paths;
    }
    // The records page with its Sessions tab in front.
    void openPage()
    {
        m_page = std::make_unique<PageDatabase>();
        m_page->resize(1200, 700);
        m_page->show();
        m_page->reload();
        m_page->listTabs()->setCurrentWidget(view());
    }
    SessionListView *view() const { return m_page->sessionView(); }
    QString cell(int row, int column) const
    {
        QAbstractItemModel *m = view()->sessionTable()->model();
        return m->data(m->index(row, column)).toString();
    }
    int rowOfRodent(const QString &rodent) const
    {
        QAbstractItemModel *m = view()->sessionTable()->model();
        for (int row = 0; row < m->rowCount(); ++row) {
            if (cell(row, SessionTableModel::RodentColumn) == rodent)
                return row;
        }
        return -1;
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
    }
    void cleanup() { m_page.reset(), m_model.reset(), m_dir.reset(); }

    void rejectingACycleByHandChangesTheFileAndTheStatistics()
    {
        const QStringList r7 = measureSession(QStringLiteral("R7"), 1, 3);
        QCOMPARE(r7.size(), 4);
        openPage();
        QCOMPARE(view()->sessionTable()->model()->rowCount(), 1);

        // The row, against the records' files.
        QList<double> sbp;
        int accepted = 0;
        for (const QString &path : r7.mid(1)) {
            const QMap<QString, QString> v = ExpFile::values(path);
            if (v.value("Accepted") == QLatin1String("true"))
                ++accepted, sbp << v.value("SBP").toDouble();
        }
        QVERIFY2(accepted == 3, "the simulated animal at 120/30 gives accepted cycles");
        QCOMPARE(cell(0, SessionTableModel::RodentColumn), QStringLiteral("R7"));
        QCOMPARE(cell(0, SessionTableModel::AcceptedColumn), QStringLiteral("3/3"));
        QCOMPARE(cell(0, SessionTableModel::SBPColumn), meanSdText(sbp));
        QVERIFY(!cell(0, SessionTableModel::UnitColumn).isEmpty());

        // Selecting the session lays all its cycles, acclimation too, over one another.
        view()->sessionTable()->selectRow(0);
        QCOMPARE(view()->cycleTable()->rowCount(), 4);
        // Numbered as the panel numbered them while they ran.
        QStringList numbers;
        for (int row = 0; row < 4; ++row)
            numbers << view()->cycleTable()->item(row, SessionListView::CycleNumber)->text();
        QCOMPARE(numbers, (QStringList{"A1", "1", "2", "3"}));
        QCOMPARE(m_page->preview()->currentView(), m_page->preview()->multiViewer());
        QCOMPARE(m_page->preview()->multiViewer()->experiments().size(), 4);

        // Reject the second measurement cycle by hand.
        QVERIFY(!view()->rejectButton()->isEnabled());
        view()->cycleTable()->selectRow(2);
        view()->rejectButton()->click();
        QCOMPARE(ExpFile::values(r7[2]).value("Verdict"), QStringLiteral("2"));
        QApplication::processEvents();
        QCOMPARE(cell(0, SessionTableModel::AcceptedColumn), QStringLiteral("2/3"));
        QCOMPARE(cell(0, SessionTableModel::SBPColumn), meanSdText({sbp[0], sbp[2]}));
        QVERIFY(view()
                    ->cycleTable()
                    ->item(2, SessionListView::CycleVerdict)
                    ->text()
                    .contains(QStringLiteral("by hand")));
        // The session stays selected through the rebuild.
        QCOMPARE(view()->cycleTable()->rowCount(), 4);

        // Given back to the automatic verdict, the cycle counts again.
        view()->cycleTable()->selectRow(2);
        view()->automaticButton()->click();
        QCOMPARE(ExpFile::values(r7[2]).value("Verdict"), QStringLiteral("0"));
        QApplication::processEvents();
        QCOMPARE(cell(0, SessionTableModel::AcceptedColumn), QStringLiteral("3/3"));

        // An acclimation cycle accepted by hand still never counts.
        view()->cycleTable()->selectRow(0);
        view()->acceptButton()->click();
        QApplication::processEvents();
        QCOMPARE(cell(0, SessionTableModel::AcceptedColumn), QStringLiteral("3/3"));
    }

    void exportWithTheSessionsInFrontWritesThatSessionsCycles()
    {
        const QStringList rat = measureSession(QStringLiteral("Rat 7"), 1, 2);
        const QStringList mouse = measureSession(QStringLiteral("Mouse 2"), 0, 1);
        QCOMPARE(rat.size(), 3);
        QCOMPARE(mouse.size(), 1);
        QTemporaryDir out;
        auto page = std::make_unique<ExportingPage>();
        page->show();
        page->reload();
        page->exportPath = out.filePath(QStringLiteral("rat.csv"));
        // A record selected in the list must not be what the sessions view exports.
        page->selectRecords({mouse[0]});
        page->listTabs()->setCurrentWidget(page->sessionView());
        page->sessionView()->selectSession(
            ExpFile::values(rat[0]).value(QStringLiteral("Session")));
        page->preview()->exportButton()->click();
        QVERIFY2(page->warnings.isEmpty(), qPrintable(page->warnings.join('\n')));

        QFile file(page->exportPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (const QString &path : rat)
            QVERIFY2(text.contains(QFileInfo(path).completeBaseName()), qPrintable(path));
        QVERIFY(!text.contains(QFileInfo(mouse[0]).completeBaseName()));
        page.reset();
    }

    void animalViewShowsOneRodentsSessionsAcrossDays()
    {
        const QStringList first = measureSession(QStringLiteral("Rat 7"), 0, 2);
        m_now += 86'400'000; // the next day
        QCOMPARE(measureSession(QStringLiteral("Mouse 2"), 0, 1).size(), 1);
        const QStringList second = measureSession(QStringLiteral("Rat 7"), 1, 1);
        QCOMPARE(first.size(), 2);
        QCOMPARE(second.size(), 2);
        openPage();
        view()->selectSession(ExpFile::values(second[0]).value(QStringLiteral("Session")));
        AnimalView *animal = m_page->animalView();
        QCOMPARE(animal->rodent(), QStringLiteral("Rat 7"));
        QCOMPARE(animal->rodentChooser()->count(), 2);

        // The rat's two days, oldest first, against the records' files.
        QCOMPARE(animal->table()->rowCount(), 2);
        QList<double> firstSbp;
        for (const QString &path : first)
            firstSbp << ExpFile::values(path).value("SBP").toDouble();
        QCOMPARE(animal->table()->item(0, AnimalView::AcceptedColumn)->text(), "2/2");
        QCOMPARE(animal->table()->item(0, AnimalView::SBPColumn)->text(), meanSdText(firstSbp));
        QCOMPARE(animal->table()->item(1, AnimalView::AcceptedColumn)->text(), "1/1");
        const QList<AnimalHistoryPlot::Day> days = animal->plot()->days();
        QCOMPARE(days.size(), 2);
        QVERIFY(days[0].when < days[1].when);
        QVERIFY(days[0].hasMean && days[1].hasMean);
        QCOMPARE(days[1].sbp, ExpFile::values(second[1]).value("SBP").toDouble());
        // Two cycles or one are too few for a trusted day (five by default): both are flagged.
        QVERIFY(days[0].flagged && days[1].flagged);

        // Rejecting the second day's only measurement cycle leaves that day without a mean.
        view()->cycleTable()->selectRow(1);
        view()->rejectButton()->click();
        QApplication::processEvents();
        QCOMPARE(animal->table()->item(1, AnimalView::AcceptedColumn)->text(), "0/1");
        QVERIFY(!animal->plot()->days()[1].hasMean);

        // The plot draws with and without means.
        m_page->listTabs()->setCurrentWidget(animal);
        QVERIFY(!animal->plot()->grab().isNull());
    }

    void printedReportsReadBackWithTheirVerdictsAndStatistics()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is needed to read the reports back");
        const QStringList cycles = measureSession(QStringLiteral("Rat 7"), 1, 3);
        QCOMPARE(cycles.size(), 4);
        m_now += 86'400'000;
        QCOMPARE(measureSession(QStringLiteral("Rat 7"), 0, 1).size(), 1);
        QTemporaryDir out;
        auto page = std::make_unique<ExportingPage>();
        page->show();
        page->reload();
        page->listTabs()->setCurrentWidget(page->sessionView());
        SessionListView *sessions = page->sessionView();
        sessions->selectSession(ExpFile::values(cycles[0]).value(QStringLiteral("Session")));
        sessions->cycleTable()->selectRow(2);
        sessions->rejectButton()->click();
        QApplication::processEvents();

        page->exportPath = out.filePath(QStringLiteral("session.pdf"));
        sessions->reportButton()->click();
        QCOMPARE(page->opened, QStringList{page->exportPath});
        const QString text = pdfText(page->exportPath);
        QVERIFY2(text.contains(QStringLiteral("Rodent: Rat 7")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("Accepted measurement cycles: 2 of 3")));
        QVERIFY(text.contains(QStringLiteral("rejected by the operator")));
        QList<double> kept;
        for (int i : {1, 3})
            kept << ExpFile::values(cycles[i]).value("SBP").toDouble();
        QVERIFY2(text.contains(QStringLiteral("SBP %1 mmHg").arg(meanSdText(kept))),
                 qPrintable(text));
        // One trace per accepted measurement cycle: cycles 1 and 3, not the rejected 2.
        QVERIFY(text.contains(QStringLiteral("Cycle 1:")) && text.contains("Cycle 3:"));
        QVERIFY(!text.contains(QStringLiteral("Cycle 2:")));

        page->listTabs()->setCurrentWidget(page->animalView());
        page->exportPath = out.filePath(QStringLiteral("animal.pdf"));
        page->animalView()->reportButton()->click();
        const QString animal = pdfText(page->exportPath);
        QVERIFY2(animal.contains(QStringLiteral("Blood pressure across days")), qPrintable(animal));
        QVERIFY(animal.contains(QStringLiteral("Sessions: 2")));
        QVERIFY(page->warnings.isEmpty());
        page.reset();
    }

    void sessionsAreFilteredByRodentAndKeepTheRecordsListApart()
    {
        QCOMPARE(measureSession(QStringLiteral("Rat 7"), 0, 1).size(), 1);
        QCOMPARE(measureSession(QStringLiteral("Mouse 2"), 0, 2).size(), 2);
        openPage();
        QAbstractItemModel *m = view()->sessionTable()->model();
        QCOMPARE(m->rowCount(), 2);
        // Newest first.
        QCOMPARE(cell(0, SessionTableModel::RodentColumn), QStringLiteral("Mouse 2"));
        // Too few accepted cycles flag both sessions (the default asks for five).
        QCOMPARE(cell(rowOfRodent("Rat 7"), SessionTableModel::FlagColumn), QStringLiteral("⚑"));

        view()->rodentFilter()->setText(QStringLiteral("rat"));
        QCOMPARE(m->rowCount(), 1);
        QCOMPARE(cell(0, SessionTableModel::RodentColumn), QStringLiteral("Rat 7"));
        view()->rodentFilter()->setText(QStringLiteral("hamster"));
        QCOMPARE(m->rowCount(), 0);

        // The records list still has every cycle as a record of its own.
        QCOMPARE(m_page->table()->model()->rowCount(), 3);
    }
};

QTEST_MAIN(TestSessionListView)
#include "tst_sessionlistview.moc"
