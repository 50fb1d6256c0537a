#include "ui/SignalViewer.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

// Offsets, the scroll bar and marker dragging, in the pixels the operator sees. The viewer is
// 2 x margin + 600 pixels wide with a 60-second window: 10 pixels a second.
namespace {
constexpr double kRate = 100.0;

QList<double> seconds(double s)
{
    return QList<double>(qsizetype(s * kRate), 1.0);
}

struct Rig {
    SignalViewer viewer;
    explicit Rig(double total, double window = 60.0)
    {
        viewer.resize(2 * viewer.margin() + 600, 300);
        viewer.setWindowLength(window);
        viewer.setFollowPaused(true);
        setTotal(total);
    }
    void setTotal(double total)
    {
        viewer.setSeries({SignalViewerSeries::fromSamples(seconds(total), kRate, Qt::blue)});
    }
    // Widget x of a time, given the scale above.
    double xOf(double t) const
    {
        return viewer.margin() + (t - viewer.offset()) * viewer.pixelsPerSecond();
    }
};
} // namespace

class TestSignalViewer : public QObject
{
    Q_OBJECT
private slots:
    void offsetSnapsToFiveSecondStepsInsideTheData_data();
    void offsetSnapsToFiveSecondStepsInsideTheData();
    void scrollBarRangeAndPlacement_data();
    void scrollBarRangeAndPlacement();
    void newDataIsFollowedUnlessPaused();
    void scrollingBackPausesFollowing();
    void markerHitWithinFivePixels_data();
    void markerHitWithinFivePixels();
    void draggedMarkerStaysInsideThePlot_data();
    void draggedMarkerStaysInsideThePlot();
    void traceIsDrawnAtItsValue_data();
    void traceIsDrawnAtItsValue();
    void busyTraceFillsTheBandBetweenItsExtremes();
};

void TestSignalViewer::offsetSnapsToFiveSecondStepsInsideTheData_data()
{
    QTest::addColumn<double>("total");
    QTest::addColumn<double>("requested");
    QTest::addColumn<double>("expected");
    QTest::newRow("window longer than the data") << 12.0 << 7.0 << 0.0;
    QTest::newRow("7 s gives 5 s") << 100.0 << 7.0 << 5.0;
    QTest::newRow("just under a step") << 100.0 << 34.999 << 30.0;
    QTest::newRow("negative") << 100.0 << -3.0 << 0.0;
    QTest::newRow("window would pass the end") << 100.0 << 45.0 << 40.0;
    QTest::newRow("far beyond the end") << 102.0 << 1000.0 << 45.0;
}

void TestSignalViewer::offsetSnapsToFiveSecondStepsInsideTheData()
{
    QFETCH(double, total);
    QFETCH(double, requested);
    QFETCH(double, expected);
    Rig rig(total);
    rig.viewer.setScrollMode(true);
    rig.viewer.setOffset(20.0);
    QSignalSpy changed(&rig.viewer, &SignalViewer::offsetSecondsChanged);
    rig.viewer.setOffset(requested);
    QCOMPARE(rig.viewer.offset(), expected);
    QCOMPARE(rig.viewer.scrollBar()->value(), int(expected / 5));
    if (expected != 20.0 && total > 60.0) {
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().toInt(), int(expected));
    }
}

void TestSignalViewer::scrollBarRangeAndPlacement_data()
{
    QTest::addColumn<double>("total");
    QTest::addColumn<bool>("scrollMode");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<bool>("shown");
    QTest::newRow("12 s") << 12.0 << true << 0 << false;
    QTest::newRow("exactly the window") << 60.0 << true << 0 << false;
    QTest::newRow("one second more") << 61.0 << true << 1 << true;
    QTest::newRow("100 s") << 100.0 << true << 8 << true;
    QTest::newRow("100 s, scroll mode off") << 100.0 << false << 8 << false;
}

void TestSignalViewer::scrollBarRangeAndPlacement()
{
    QFETCH(double, total);
    QFETCH(bool, scrollMode);
    QFETCH(int, maximum);
    QFETCH(bool, shown);
    Rig rig(total);
    rig.viewer.setScrollMode(scrollMode);
    rig.viewer.show();
    QScrollBar *bar = rig.viewer.scrollBar();
    QCOMPARE(bar->objectName(), QStringLiteral("scrollWithButtons"));
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), maximum);
    QCOMPARE(bar->isVisible(), shown);
    QCOMPARE(rig.viewer.contentsMargins().bottom(), shown ? 16 : 0);
    if (shown) {
        QCOMPARE(bar->geometry(), QRect(0, rig.viewer.height() - 16, rig.viewer.width(), 16));
    }
    // The plot keeps clear of the bar.
    QVERIFY(rig.viewer.plotRect().bottom() < rig.viewer.height() - (shown ? 16 : 0));
}

void TestSignalViewer::newDataIsFollowedUnlessPaused()
{
    QList<double> data;
    SignalViewer viewer;
    viewer.resize(800, 300);
    viewer.setWindowLength(60.0);
    viewer.setSeries({SignalViewerSeries::fromSampleSource([&] { return data; }, kRate, Qt::red)});
    QVERIFY(!viewer.followPaused());
    data = seconds(50);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 0.0);
    // 62 s: the newest data in view with room after it, int(ceil(62 / 5 + 1)) x 5 - 60.
    data = seconds(62);
    viewer.updateData();
    QCOMPARE(viewer.totalLength(), 62.0);
    QCOMPARE(viewer.offset(), 10.0);
    data = seconds(71);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 20.0);
    viewer.setFollowPaused(true);
    data = seconds(90);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 20.0);
    QCOMPARE(viewer.totalLength(), 90.0);
    // A recording that starts over brings the window back to its start.
    viewer.setFollowPaused(false);
    data = seconds(3);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 0.0);
}

void TestSignalViewer::scrollingBackPausesFollowing()
{
    QList<double> data = seconds(100);
    SignalViewer viewer;
    viewer.resize(800, 300);
    viewer.setScrollMode(true);
    viewer.setSeries({SignalViewerSeries::fromSampleSource([&] { return data; }, kRate, Qt::red)});
    QCOMPARE(viewer.offset(), 45.0);
    viewer.scrollBar()->setValue(2);
    QVERIFY(viewer.followPaused());
    QCOMPARE(viewer.offset(), 10.0);
    data = seconds(110);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 10.0);
    viewer.scrollBar()->setValue(viewer.scrollBar()->maximum());
    QVERIFY(!viewer.followPaused());
    data = seconds(120);
    viewer.updateData();
    QCOMPARE(viewer.offset(), 65.0);
}

void TestSignalViewer::markerHitWithinFivePixels_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("distance");
    QTest::addColumn<bool>("movable");
    QTest::addColumn<bool>("caught");
    QTest::newRow("on the line") << 0.0 << 0.0 << true << true;
    QTest::newRow("4 px right") << 0.0 << 4.0 << true << true;
    QTest::newRow("4 px left") << 0.0 << -4.0 << true << true;
    QTest::newRow("5 px right") << 0.0 << 5.0 << true << false;
    QTest::newRow("5 px left") << 0.0 << -5.0 << true << false;
    QTest::newRow("scrolled window, 4 px") << 10.0 << 4.0 << true << true;
    QTest::newRow("fixed marker") << 0.0 << 0.0 << false << false;
}

void TestSignalViewer::markerHitWithinFivePixels()
{
    QFETCH(double, offset);
    QFETCH(double, distance);
    QFETCH(bool, movable);
    QFETCH(bool, caught);
    Rig rig(120.0);
    rig.viewer.setOffset(offset);
    rig.viewer.setMarkersMovable(true);
    rig.viewer.setMarker(SignalViewerMarker(QStringLiteral("other"), QStringLiteral("other"), 40.0,
                                            SignalViewerMarker::Kind::Movable, Qt::blue));
    rig.viewer.setMarker(SignalViewerMarker(
        QStringLiteral("SBP"), QStringLiteral("SBP"), 20.0,
        movable ? SignalViewerMarker::Kind::Movable : SignalViewerMarker::Kind::Fixed, Qt::red));
    QSignalSpy started(&rig.viewer, &SignalViewer::markerMoveStarted);
    const QPoint at(qRound(rig.xOf(20.0) + distance), 100);
    // Hovering shows the same reach as a press has.
    QMouseEvent hover(QEvent::MouseMove, QPointF(at), rig.viewer.mapToGlobal(QPointF(at)),
                      Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&rig.viewer, &hover);
    QCOMPARE(rig.viewer.cursor().shape(), caught ? Qt::SizeHorCursor : Qt::ArrowCursor);
    QTest::mousePress(&rig.viewer, Qt::LeftButton, {}, at);
    QCOMPARE(started.count(), caught ? 1 : 0);
    QCOMPARE(rig.viewer.draggedTag(), caught ? QStringLiteral("SBP") : QString());
    QCOMPARE(rig.viewer.cursor().shape(), caught ? Qt::SizeHorCursor : Qt::ArrowCursor);
    QTest::mouseRelease(&rig.viewer, Qt::LeftButton, {}, at);
    QVERIFY(rig.viewer.draggedTag().isEmpty());
    QCOMPARE(rig.viewer.cursor().shape(), Qt::ArrowCursor);

    // Markers that may not be moved are not caught at all.
    rig.viewer.setMarkersMovable(false);
    QTest::mousePress(&rig.viewer, Qt::LeftButton, {}, QPoint(qRound(rig.xOf(40.0)), 100));
    QVERIFY(rig.viewer.draggedTag().isEmpty());
}

void TestSignalViewer::draggedMarkerStaysInsideThePlot_data()
{
    QTest::addColumn<int>("dropX"); // pixels from the widget's left edge, margin added below
    QTest::addColumn<double>("expected");
    // Offset 10 s, 10 px a second: the plot shows 10 s to 70 s.
    QTest::newRow("inside") << 123 << 22.3;
    QTest::newRow("plot's left end") << 0 << 10.0;
    QTest::newRow("beyond the left") << -30 << 10.0;
    QTest::newRow("beyond the right edge") << 900 << 70.0;
}

void TestSignalViewer::draggedMarkerStaysInsideThePlot()
{
    QFETCH(int, dropX);
    QFETCH(double, expected);
    Rig rig(120.0);
    rig.viewer.setOffset(10.0);
    rig.viewer.setMarkersMovable(true);
    rig.viewer.setMarker(SignalViewerMarker(QStringLiteral("DBP"), QStringLiteral("DBP 80"), 30.0,
                                            SignalViewerMarker::Kind::Movable, Qt::red));
    QSignalSpy updated(&rig.viewer, &SignalViewer::markerUpdated);
    QSignalSpy stopped(&rig.viewer, &SignalViewer::markerMoveStopped);
    QTest::mousePress(&rig.viewer, Qt::LeftButton, {}, QPoint(qRound(rig.xOf(30.0)), 100));
    const QPoint drop(rig.viewer.margin() + dropX, 100);
    QTest::mouseMove(&rig.viewer, drop);
    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.first().at(0).toString(), QStringLiteral("DBP"));
    QCOMPARE(updated.first().at(1).toDouble(), expected);
    QCOMPARE(updated.first().at(2).toString(), QStringLiteral("DBP 80"));
    QCOMPARE(rig.viewer.markerTime(QStringLiteral("DBP")), expected);
    QTest::mouseRelease(&rig.viewer, Qt::LeftButton, {}, drop);
    QCOMPARE(stopped.count(), 1);
    // Once let go, moving the mouse moves nothing.
    QTest::mouseMove(&rig.viewer, QPoint(rig.viewer.margin() + 300, 100));
    QCOMPARE(updated.count(), 1);
}

void TestSignalViewer::traceIsDrawnAtItsValue_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QColor>("axis");
    QTest::newRow("light") << false << QColor(Qt::black);
    QTest::newRow("dark") << true << QColor(0xcc, 0xcc, 0xcc);
}

void TestSignalViewer::traceIsDrawnAtItsValue()
{
    QFETCH(bool, dark);
    QFETCH(QColor, axis);
    // A flat line at 75 on a 0..100 axis lies a quarter of the plot height below its top, and
    // only while the series lasts (20 s of the 60 s window).
    SignalViewer viewer;
    viewer.resize(2 * viewer.margin() + 600, 300);
    viewer.setDark(dark);
    viewer.setValueRange(0, 100);
    const QColor trace(0x11, 0x55, 0x99);
    viewer.setSeries({SignalViewerSeries::fromSamples(QList<double>(2000, 75.0), kRate, trace, 3)});
    const QImage image = viewer.grab().toImage();
    const QRect plot = viewer.plotRect();
    const int y = plot.top() + qRound(plot.height() * 0.25);
    // The line is smoothed, so look for its colour within a pixel of where it belongs.
    const auto traceNear = [&](int x, int atY) {
        for (int dy = -1; dy <= 1; ++dy) {
            const QColor c = image.pixelColor(x, atY + dy);
            if (std::abs(c.red() - trace.red()) + std::abs(c.green() - trace.green()) +
                    std::abs(c.blue() - trace.blue()) <
                40)
                return true;
        }
        return false;
    };
    QVERIFY(traceNear(plot.left() + 100, y));
    QVERIFY(!traceNear(plot.left() + 300, y));
    QVERIFY(!traceNear(plot.left() + 100, y - 10));
    QCOMPARE(image.pixelColor(plot.left(), plot.top() + 7), axis);
}

void TestSignalViewer::busyTraceFillsTheBandBetweenItsExtremes()
{
    // A trace that swings between 20 and 80 at every sample covers the band between them in
    // every column it reaches, and nothing above or below.
    SignalViewer viewer;
    viewer.resize(2 * viewer.margin() + 600, 300);
    viewer.setValueRange(0, 100);
    QList<double> swing;
    for (int i = 0; i < 2000; ++i)
        swing.append(i % 2 ? 20.0 : 80.0);
    const QColor trace(0xcc, 0x44, 0x44);
    viewer.setSeries({SignalViewerSeries::fromSamples(swing, kRate, trace, 2)});
    const QImage image = viewer.grab().toImage();
    const QRect plot = viewer.plotRect();
    const auto yOf = [&](double v) { return plot.bottom() - qRound(plot.height() * v / 100.0); };
    for (int x = plot.left() + 1; x < plot.left() + 199; x += 7) {
        for (double v : {22.0, 50.0, 78.0})
            QCOMPARE(image.pixelColor(x, yOf(v)), trace);
        QVERIFY(image.pixelColor(x, yOf(85)) != trace);
        QVERIFY(image.pixelColor(x, yOf(15)) != trace);
    }
    QVERIFY(image.pixelColor(plot.left() + 205, yOf(50)) != trace);
}

QTEST_MAIN(TestSignalViewer)
#include "tst_signalviewer.moc"
