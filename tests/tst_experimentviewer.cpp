#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/SyntheticAnimal.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "support/MemoryRecord.h"
#include "ui/ExperimentViewer.h"
#include "ui/MethodComboBox.h"
#include "ui/SignalViewer.h"

#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
void deflateFrom150By4PerSecond(MemoryRecord &record, double seconds)
{
    QList<double> p;
    for (int i = 0; i < int(seconds * 100); ++i)
        p.append(150.0 - i / 100.0 * 4.0);
    record.setSeries(p, QList<double>(p.size(), 0.0), 100.0);
}

// A viewer shown at 10 pixels a second over its 60 s window.
void showAtTenPixelsASecond(ExperimentViewer &viewer)
{
    viewer.resize(2 * viewer.ppgViewer()->margin() + 600, 600);
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    QCOMPARE(viewer.ppgViewer()->pixelsPerSecond(), 10.0);
}
} // namespace

class TestExperimentViewer : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<CorvidaSettings> m_settings;

private slots:
    void init()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_settings = std::make_unique<CorvidaSettings>(m_dir.filePath("Settings.xml"));
    }

    void pressureAxisLeavesRoomAboveTheHighestPressure_data()
    {
        QTest::addColumn<double>("highest");
        QTest::addColumn<double>("upper");
        QTest::newRow("135 mmHg") << 135.0 << 150.0;
        QTest::newRow("110 mmHg") << 110.0 << 120.0;
        QTest::newRow("110.5 mmHg") << 110.5 << 130.0;
        QTest::newRow("no pressure") << 0.0 << 120.0;
        QTest::newRow("250 mmHg") << 250.0 << 260.0;
    }
    void pressureAxisLeavesRoomAboveTheHighestPressure()
    {
        QFETCH(double, highest);
        MemoryRecord record;
        QList<double> pressure(500, 10.0);
        pressure[321] = highest;
        record.setSeries(pressure, QList<double>(500, 0.0), 100.0);
        ExperimentViewer viewer(m_settings.get());
        viewer.setExperiment(&record);
        QCOMPARE(viewer.pressureViewer()->lowerValue(), 0.0);
        QTEST(viewer.pressureViewer()->upperValue(), "upper");
    }

    // Seen in the field: DBP on the last beat of a record that stopped with the cuff near
    // 100 mmHg. The point is where the detection puts it, but nothing below it was recorded.
    void diastolicPointWithoutTheCuffBelowItIsDoubtful_data()
    {
        QTest::addColumn<double>("time");
        QTest::addColumn<double>("abortAt"); // the valve let the cuff down at once; 0: never
        QTest::addColumn<bool>("doubtful");
        QTest::newRow("cuff fell 10 mmHg below it") << 5.0 << 0.0 << false; // 130 -> 110 at the end
        QTest::newRow("record ends 8 mmHg below it") << 8.0 << 0.0 << true; // 118 -> 110
        QTest::newRow("on the last sample") << 9.999 << 0.0 << true;
        QTest::newRow("no marker") << 0.0 << 0.0 << false;
        QTest::newRow("after the end") << 12.0 << 0.0 << false;
        // The records of four units stopped together with Abort: the cuff went from 94 mmHg to 0
        // in a blink, with no beat under the DBP to judge it by.
        QTest::newRow("Abort right after it") << 8.5 << 8.7 << true;
        QTest::newRow("Abort after the cuff fell 10 mmHg below it") << 5.0 << 8.7 << false;
    }
    void diastolicPointWithoutTheCuffBelowItIsDoubtful()
    {
        QFETCH(double, time);
        QFETCH(double, abortAt);
        QList<double> pressure;
        for (int i = 0; i < 10000; ++i) {
            // 150 mmHg falling 4 mmHg a second for 10 s; an Abort empties the cuff in 50 ms.
            const double t = i / 1000.0;
            const double deflating = 150.0 - 4.0 * t;
            pressure << (abortAt > 0.0 && t > abortAt
                             ? std::max(0.0, deflating * (1.0 - (t - abortAt) / 0.05))
                             : deflating);
        }
        QTEST(ExperimentViewer::diastolicDoubtful(pressure, 1000.0, time), "doubtful");
    }

    void draggedMarkerUpdatesTheRecordWhenLetGo()
    {
        MemoryRecord record;
        deflateFrom150By4PerSecond(record, 30);
        record.setSBPTime(10.0);
        record.setDBPTime(20.0);
        ExperimentViewer viewer(m_settings.get());
        viewer.setExperiment(&record);
        showAtTenPixelsASecond(viewer);
        SignalViewer *ppg = viewer.ppgViewer();
        SignalViewer *pressure = viewer.pressureViewer();
        QSignalSpy changed(&record, &CorvidaExperiment::changedSBPTime);
        const int y = ppg->height() / 2;
        QTest::mousePress(ppg, Qt::LeftButton, {}, QPoint(ppg->margin() + 100, y));
        QTest::mouseMove(ppg, QPoint(ppg->margin() + 123, y));
        // Both plots show the marker where the mouse is; the record waits for the release.
        QCOMPARE(pressure->markerTime(QStringLiteral("SBP")), 12.3);
        QCOMPARE(changed.count(), 0);
        QTest::mouseRelease(ppg, Qt::LeftButton, {}, QPoint(ppg->margin() + 123, y));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(record.getSBPTime(), 12.3);
        QCOMPARE(record.getSBP(), 150.0 - 1230 / 100.0 * 4.0);
        // A marker the record clears disappears from both plots.
        record.resetDBPTime();
        QCOMPARE(pressure->markerTime(QStringLiteral("DBP")), -1.0);
        QCOMPARE(ppg->markerTime(QStringLiteral("DBP")), -1.0);
    }

    void liveDataIsRedrawnOnTheTimerNotPerFrame()
    {
        VirtualCorvidaDevice device;
        LiveRecorder recorder(&device);
        qint64 now = 5'000'000;
        device.setTickTimerActive(false);
        device.setClock([&now] { return now; });
        recorder.experiment()->setClock([&now] { return now; });
        device.setPressureLimits(30, 120);
        const auto run = [&](int ms) {
            for (int t = 0; t < ms; t += 50) {
                now += 50;
                device.tick();
            }
        };
        ExperimentViewer viewer(m_settings.get());
        viewer.resize(800, 600);
        viewer.setExperiment(recorder.experiment());
        QVERIFY(recorder.turnOn());
        run(2000);
        // Forty frames have come in, and the viewers have not been touched once.
        QVERIFY(viewer.refreshPending());
        QCOMPARE(viewer.pressureViewer()->totalLength(), 0.0);
        viewer.refreshData();
        QCOMPARE(viewer.pressureViewer()->totalLength(), 2.0);
        // Beyond the window both plots move on to the newest data, together.
        run(68000);
        viewer.refreshData();
        QCOMPARE(viewer.ppgViewer()->totalLength(), 70.0);
        QCOMPARE(viewer.ppgViewer()->offset(), 15.0);
        QCOMPARE(viewer.pressureViewer()->offset(), 15.0);
        // Scrolling back holds both plots there while data keep coming.
        viewer.ppgViewer()->scrollBar()->setValue(1);
        QCOMPARE(viewer.pressureViewer()->offset(), 5.0);
        run(5000);
        viewer.refreshData();
        QCOMPARE(viewer.ppgViewer()->offset(), 5.0);
        QCOMPARE(viewer.pressureViewer()->offset(), 5.0);
    }

    void contextMenuNeedsTwoSecondsOfRecord_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("offered");
        QTest::newRow("1.99 s") << 1.99 << false;
        QTest::newRow("2 s") << 2.0 << true;
    }
    void contextMenuNeedsTwoSecondsOfRecord()
    {
        QFETCH(double, seconds);
        ExperimentViewer viewer(m_settings.get());
        showAtTenPixelsASecond(viewer);
        const QPoint at(viewer.ppgViewer()->margin() + 15, 50); // 1.5 s, in the pressure plot
        QVERIFY(!viewer.createContextMenu(at));                 // no record
        MemoryRecord record;
        deflateFrom150By4PerSecond(record, seconds);
        viewer.setExperiment(&record);
        std::unique_ptr<QMenu> menu(viewer.createContextMenu(at));
        QTEST(bool(menu), "offered");
        if (!menu)
            return;
        menu->actions()[1]->trigger();
        QCOMPARE(record.getDBPTime(), 1.5);
        QCOMPARE(viewer.ppgViewer()->markerTime(QStringLiteral("DBP")), 1.5);
    }

    // A finished record says which way placed its markers; the operator choosing the other way
    // has the record's markers placed again by it, or is told why there are none.
    void methodChoiceShowsAndChangesTheRecordsWay_data()
    {
        QTest::addColumn<bool>("pulse");
        QTest::newRow("cold tail") << true;
        QTest::newRow("no pulse") << false;
    }
    void methodChoiceShowsAndChangesTheRecordsWay()
    {
        QFETCH(bool, pulse);
        SyntheticAnimal::Cycle cycle =
            SyntheticAnimal(SyntheticAnimal::Rat, SyntheticAnimal::ColdTail, 21).generate();
        if (!pulse) {
            for (qsizetype i = 0; i < cycle.pulse.size(); ++i)
                cycle.pulse[i] = 0.001 * std::sin(i * 0.05);
        }
        MemoryRecord record, refined;
        for (MemoryRecord *r : {&record, &refined})
            r->setSeries(cycle.pressure, cycle.pulse, cycle.samplingRate);
        refined.setMethod(CorvidaExperiment::refinedMethod());
        refined.recalculate(true);
        record.recalculate(true);

        ExperimentViewer viewer(m_settings.get());
        showAtTenPixelsASecond(viewer);
        viewer.setExperiment(&record);
        MethodComboBox *box = viewer.methodBox();
        QVERIFY(box->isVisible());
        QCOMPARE(box->currentText(), QStringLiteral("Documented"));
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QVERIFY(record.usesRefinedMethod());
        QCOMPARE(record.getSBPTime(), refined.getSBPTime());
        QCOMPARE(record.getDBPTime(), refined.getDBPTime());
        QCOMPARE(viewer.ppgViewer()->markerTime(QStringLiteral("SBP")),
                 pulse ? refined.getSBPTime() : -1.0);
        QCOMPARE(viewer.methodNote()->isVisible(), !pulse);
        if (!pulse)
            QCOMPARE(viewer.methodNote()->text(), refined.detectionNote());

        // The way changed elsewhere shows too; a live record offers no choice.
        record.setMethod(QString());
        QCOMPARE(box->currentText(), QStringLiteral("Documented"));
        CorvidaOnlineExperiment live;
        viewer.setExperiment(&live);
        QVERIFY(!box->isVisible());
    }

    void markersTheOldWayDidNotPlaceStayAndTheViewerSaysSo()
    {
        // A marker the documented way would not put where it is (the operator's, or one found
        // during the measurement on the series as it was then) stays when the way changes, and
        // the viewer says why nothing moved and what to do; Recalculate places it the new way.
        const SyntheticAnimal::Cycle cycle =
            SyntheticAnimal(SyntheticAnimal::Rat, SyntheticAnimal::Clean, 21).generate();
        MemoryRecord record, refined;
        for (MemoryRecord *r : {&record, &refined})
            r->setSeries(cycle.pressure, cycle.pulse, cycle.samplingRate);
        refined.setMethod(CorvidaExperiment::refinedMethod());
        refined.recalculate(true);
        record.recalculate(true);
        const double own = record.getSBPTime() - 0.5;
        record.setSBPTime(own);

        ExperimentViewer viewer(m_settings.get());
        showAtTenPixelsASecond(viewer);
        viewer.setExperiment(&record);
        QVERIFY(!viewer.methodNote()->isVisible());
        viewer.methodBox()->setFocus();
        QTest::keyClick(viewer.methodBox(), Qt::Key_Down);
        QVERIFY(record.usesRefinedMethod());
        QCOMPARE(record.getSBPTime(), own);
        QCOMPARE(record.getDBPTime(), refined.getDBPTime());
        QVERIFY(viewer.methodNote()->isVisible());
        QVERIFY(viewer.methodNote()->text().contains(QStringLiteral("Recalculate")));

        record.recalculate(true);
        QCOMPARE(record.getSBPTime(), refined.getSBPTime());
        QVERIFY(!viewer.methodNote()->isVisible());
    }
};

QTEST_MAIN(TestExperimentViewer)
#include "tst_experimentviewer.moc"
