#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "support/MemoryRecord.h"
#include "ui/ExperimentViewer.h"
#include "ui/SignalViewer.h"

#include <QMenu>
#include <QScrollBar>
#include <QSplitter>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// A cuff that deflates from 150 mmHg by 4 mmHg a second, at 100 Hz.
QList<double> deflation(double seconds)
{
    QList<double> p;
    for (int i = 0; i < int(seconds * 100); ++i)
        p.append(150.0 - i / 100.0 * 4.0);
    return p;
}

// A simulated unit on a clock moved by hand, recording into its live record.
struct LiveRig {
    VirtualCorvidaDevice device;
    LiveRecorder recorder{&device};
    qint64 now = 5'000'000;
    LiveRig()
    {
        device.setTickTimerActive(false);
        device.setClock([this] { return now; });
        recorder.experiment()->setClock([this] { return now; });
        device.setPressureLimits(30, 120);
    }
    void run(int ms)
    {
        for (int t = 0; t < ms; t += 50) {
            now += 50;
            device.tick();
        }
    }
};

QAction *actionNamed(QMenu *menu, const QString &text)
{
    for (QAction *a : menu->actions()) {
        if (a->text() == text)
            return a;
    }
    return nullptr;
}
} // namespace

class TestExperimentViewer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init();
    void cleanup();
    void pressureAxisLeavesRoomAboveTheHighestPressure_data();
    void pressureAxisLeavesRoomAboveTheHighestPressure();
    void windowAndPpgAxisFollowTheSettings_data();
    void windowAndPpgAxisFollowTheSettings();
    void splitterRatioIsStoredAndShared();
    void draggedMarkerUpdatesTheRecordWhenLetGo();
    void liveDataIsRedrawnOnTheTimerNotPerFrame();
    void contextMenuNeedsTwoSecondsOfRecord_data();
    void contextMenuNeedsTwoSecondsOfRecord();
    void recalculateBringsBackTheDetectedMarkers();

private:
    QTemporaryDir *m_dir = nullptr;
    CorvidaSettings *m_settings = nullptr;
};

void TestExperimentViewer::init()
{
    m_dir = new QTemporaryDir;
    m_settings = new CorvidaSettings(m_dir->filePath(QStringLiteral("Settings.xml")));
}

void TestExperimentViewer::cleanup()
{
    delete m_settings;
    delete m_dir;
}

void TestExperimentViewer::pressureAxisLeavesRoomAboveTheHighestPressure_data()
{
    QTest::addColumn<double>("highest");
    QTest::addColumn<double>("upper");
    QTest::newRow("95 mmHg") << 95.0 << 120.0;
    QTest::newRow("135 mmHg") << 135.0 << 150.0;
    QTest::newRow("110 mmHg") << 110.0 << 120.0;
    QTest::newRow("110.5 mmHg") << 110.5 << 130.0;
    QTest::newRow("no pressure") << 0.0 << 120.0;
    QTest::newRow("250 mmHg") << 250.0 << 260.0;
}

void TestExperimentViewer::pressureAxisLeavesRoomAboveTheHighestPressure()
{
    QFETCH(double, highest);
    QFETCH(double, upper);
    MemoryRecord record;
    QList<double> pressure(500, 10.0);
    pressure[321] = highest;
    record.setSeries(pressure, QList<double>(500, 0.0), 100.0);
    ExperimentViewer viewer(m_settings);
    viewer.setExperiment(&record);
    QCOMPARE(viewer.pressureViewer()->lowerValue(), 0.0);
    QCOMPARE(viewer.pressureViewer()->upperValue(), upper);
}

void TestExperimentViewer::windowAndPpgAxisFollowTheSettings_data()
{
    QTest::addColumn<CorvidaSettings::VisualScales>("scale");
    QTest::addColumn<CorvidaSettings::PulseAxisLimits>("axis");
    QTest::addColumn<double>("window");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    using S = CorvidaSettings::VisualScales;
    using A = CorvidaSettings::PulseAxisLimits;
    QTest::newRow("10 s, 1.8") << S::Scale_10 << A::PulseAxis_1_800_m900 << 10.0 << -0.9 << 1.8;
    QTest::newRow("120 s, 0.2") << S::Scale_120 << A::PulseAxis_0_200_m100 << 120.0 << -0.1 << 0.2;
    QTest::newRow("90 s, 1.0") << S::Scale_90 << A::PulseAxis_1_000_m500 << 90.0 << -0.5 << 1.0;
}

void TestExperimentViewer::windowAndPpgAxisFollowTheSettings()
{
    QFETCH(CorvidaSettings::VisualScales, scale);
    QFETCH(CorvidaSettings::PulseAxisLimits, axis);
    QFETCH(double, window);
    QFETCH(double, lower);
    QFETCH(double, upper);
    ExperimentViewer viewer(m_settings);
    QCOMPARE(viewer.pressureViewer()->windowLength(), 60.0);
    QCOMPARE(viewer.ppgViewer()->upperValue(), 0.6);
    m_settings->setVisualScale(scale);
    m_settings->setPulseAxisLimit(axis);
    QCOMPARE(viewer.pressureViewer()->windowLength(), window);
    QCOMPARE(viewer.ppgViewer()->windowLength(), window);
    QCOMPARE(viewer.ppgViewer()->lowerValue(), lower);
    QCOMPARE(viewer.ppgViewer()->upperValue(), upper);
}

void TestExperimentViewer::splitterRatioIsStoredAndShared()
{
    m_settings->setPressurePPGSplitterRatio(0.25);
    ExperimentViewer viewer(m_settings);
    viewer.resize(800, 805);
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    const auto ratio = [](ExperimentViewer &v) {
        const QList<int> s = v.splitter()->sizes();
        return double(s[0]) / (s[0] + s[1]);
    };
    QVERIFY(std::fabs(ratio(viewer) - 0.25) < 0.01);
    QVERIFY(!viewer.splitter()->childrenCollapsible());

    // Drag the handle down by 200 pixels.
    QSplitterHandle *handle = viewer.splitter()->handle(1);
    const QPoint grip = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, grip);
    QTest::mouseMove(handle, grip + QPoint(0, 200));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, grip + QPoint(0, 200));
    const double moved = ratio(viewer);
    QVERIFY2(moved > 0.45, qPrintable(QString::number(moved)));
    QCOMPARE(m_settings->getPressurePPGSplitterRatio(), moved);
}

void TestExperimentViewer::draggedMarkerUpdatesTheRecordWhenLetGo()
{
    MemoryRecord record;
    record.setSeries(deflation(30), QList<double>(3000, 0.0), 100.0);
    record.setSBPTime(10.0);
    record.setDBPTime(20.0);
    ExperimentViewer viewer(m_settings);
    viewer.setExperiment(&record);
    SignalViewer *ppg = viewer.ppgViewer();
    SignalViewer *pressure = viewer.pressureViewer();
    viewer.resize(2 * ppg->margin() + 600, 600); // 10 pixels a second over the 60 s window
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    QCOMPARE(ppg->pixelsPerSecond(), 10.0);
    for (SignalViewer *v : {pressure, ppg}) {
        QCOMPARE(v->markerTime(QStringLiteral("SBP")), 10.0);
        QCOMPARE(v->markerTime(QStringLiteral("DBP")), 20.0);
    }
    const auto label = [](SignalViewer *v, const QString &tag) {
        for (const SignalViewerMarker &m : v->markers()) {
            if (m.tag() == tag)
                return m.text();
        }
        return QString();
    };
    QCOMPARE(label(ppg, QStringLiteral("SBP")), QStringLiteral("SBP 110"));

    QSignalSpy changed(&record, &CorvidaExperiment::changedSBPTime);
    const int y = ppg->height() / 2;
    QTest::mousePress(ppg, Qt::LeftButton, {}, QPoint(ppg->margin() + 100, y));
    QTest::mouseMove(ppg, QPoint(ppg->margin() + 123, y));
    // Both plots show the marker where the mouse is; the record waits for the release.
    QCOMPARE(pressure->markerTime(QStringLiteral("SBP")), 12.3);
    QCOMPARE(label(pressure, QStringLiteral("SBP")), QStringLiteral("SBP 101"));
    QCOMPARE(changed.count(), 0);
    QTest::mouseRelease(ppg, Qt::LeftButton, {}, QPoint(ppg->margin() + 123, y));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(record.getSBPTime(), 12.3);
    QCOMPARE(record.getSBP(), 150.0 - 1230 / 100.0 * 4.0);
    QCOMPARE(record.getDBPTime(), 20.0);
    QCOMPARE(pressure->markerTime(QStringLiteral("SBP")), 12.3);

    // A marker the record clears disappears from both plots.
    record.resetDBPTime();
    QCOMPARE(pressure->markerTime(QStringLiteral("DBP")), -1.0);
    QCOMPARE(ppg->markerTime(QStringLiteral("DBP")), -1.0);
}

void TestExperimentViewer::liveDataIsRedrawnOnTheTimerNotPerFrame()
{
    LiveRig rig;
    ExperimentViewer viewer(m_settings);
    viewer.resize(800, 600);
    viewer.setExperiment(rig.recorder.experiment());
    QVERIFY(viewer.isLive());
    QVERIFY(rig.recorder.turnOn());
    QSignalSpy frames(rig.recorder.experiment(), &CorvidaExperiment::dataUpdated);
    rig.run(2000);
    QCOMPARE(frames.count(), 40);
    // Forty frames have come in, and the viewers have not been touched once.
    QVERIFY(viewer.refreshPending());
    QCOMPARE(viewer.pressureViewer()->totalLength(), 0.0);
    viewer.refreshData();
    QVERIFY(!viewer.refreshPending());
    QCOMPARE(viewer.pressureViewer()->totalLength(), 2.0);
    QCOMPARE(viewer.ppgViewer()->totalLength(), 2.0);

    // Beyond the window both plots move on to the newest data, together.
    rig.run(68000);
    viewer.refreshData();
    QCOMPARE(viewer.ppgViewer()->totalLength(), 70.0);
    QCOMPARE(viewer.ppgViewer()->offset(), 15.0);
    QCOMPARE(viewer.pressureViewer()->offset(), 15.0);
    // Scrolling back holds both plots there while data keep coming.
    viewer.ppgViewer()->scrollBar()->setValue(1);
    QCOMPARE(viewer.pressureViewer()->offset(), 5.0);
    rig.run(5000);
    viewer.refreshData();
    QCOMPARE(viewer.ppgViewer()->offset(), 5.0);
    QCOMPARE(viewer.pressureViewer()->offset(), 5.0);
    QVERIFY(!viewer.grab().isNull());

    // A new recording brings the window back to its start.
    QVERIFY(rig.recorder.measure());
    rig.run(500);
    viewer.refreshData();
    QCOMPARE(viewer.ppgViewer()->totalLength(), 0.5);
    QCOMPARE(viewer.ppgViewer()->offset(), 0.0);
}

void TestExperimentViewer::contextMenuNeedsTwoSecondsOfRecord_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<bool>("offered");
    QTest::newRow("1.99 s") << 1.99 << false;
    QTest::newRow("2 s") << 2.0 << true;
    QTest::newRow("30 s") << 30.0 << true;
}

void TestExperimentViewer::contextMenuNeedsTwoSecondsOfRecord()
{
    QFETCH(double, seconds);
    QFETCH(bool, offered);
    ExperimentViewer viewer(m_settings);
    viewer.resize(2 * viewer.ppgViewer()->margin() + 600, 600);
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    const QPoint at(viewer.ppgViewer()->margin() + 15, 50); // 1.5 s, in the pressure plot
    QVERIFY(!viewer.createContextMenu(at));                 // no record
    MemoryRecord record;
    record.setSeries(deflation(seconds), QList<double>(int(seconds * 100), 0.0), 100.0);
    viewer.setExperiment(&record);
    std::unique_ptr<QMenu> menu(viewer.createContextMenu(at));
    QCOMPARE(bool(menu), offered);
    if (!menu)
        return;
    const QList<QAction *> actions = menu->actions();
    QCOMPARE(actions.size(), 4);
    QCOMPARE(actions[0]->text(), QStringLiteral("Place SBP marker here"));
    QCOMPARE(actions[1]->text(), QStringLiteral("Place DBP marker here"));
    QVERIFY(actions[2]->isSeparator());
    QCOMPARE(actions[3]->text(), QStringLiteral("Recalculate experiment"));
    actions[1]->trigger();
    QCOMPARE(record.getDBPTime(), 1.5);
    QCOMPARE(record.getDBP(), 144.0);
    QCOMPARE(viewer.ppgViewer()->markerTime(QStringLiteral("DBP")), 1.5);
}

void TestExperimentViewer::recalculateBringsBackTheDetectedMarkers()
{
    QTemporaryDir records;
    QString path;
    {
        LiveRig rig;
        QVERIFY(rig.recorder.turnOn());
        QVERIFY(rig.recorder.measure());
        rig.run(14000);
        QVERIFY(rig.recorder.save(records.path()));
        path = rig.recorder.savedPath();
    }
    CorvidaExperiment record(path);
    ExperimentViewer viewer(m_settings);
    viewer.resize(1000, 600);
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    viewer.setExperiment(&record);
    QVERIFY(!viewer.isLive());
    QVERIFY(viewer.ppgViewer()->followPaused());
    QCOMPARE(viewer.ppgViewer()->offset(), 0.0);
    const double detected = record.getSBPTime();
    QVERIFY(detected > 4.0);
    // Peak dots and the two envelope lines come from the detection.
    const QList<SignalViewerSeries> traces = viewer.ppgViewer()->series();
    QCOMPARE(traces.size(), 4);
    QCOMPARE(traces[3].points().size(), record.beats().size());
    QCOMPARE(traces[1].points().size(), record.amplitudeSeries().size());

    SignalViewer *ppg = viewer.ppgViewer();
    const QPoint at = ppg->mapTo(&viewer, QPoint(ppg->margin() + 10, ppg->height() / 2));
    std::unique_ptr<QMenu> menu(viewer.createContextMenu(at));
    QVERIFY(menu);
    actionNamed(menu.get(), QStringLiteral("Place SBP marker here"))->trigger();
    QCOMPARE(record.getSBPTime(), 10 / ppg->pixelsPerSecond());
    QVERIFY(record.getSBPTime() != detected);
    actionNamed(menu.get(), QStringLiteral("Recalculate experiment"))->trigger();
    // The file keeps the samples at single precision, so the beat may move by a sample.
    QVERIFY(std::fabs(record.getSBPTime() - detected) <= 0.0011);
    QCOMPARE(ppg->markerTime(QStringLiteral("SBP")), record.getSBPTime());
}

QTEST_MAIN(TestExperimentViewer)
#include "tst_experimentviewer.moc"
