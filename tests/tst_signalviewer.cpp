#include "ui/SignalViewer.h"
#include "ui/SignalViewerPainter.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>

#include <cmath>

// In the pixels the operator sees: 2 x margin + 600 wide, a 60 s window, 10 pixels a second.
namespace {
constexpr double kRate = 100.0;

QList<double> seconds(double s)
{
    return QList<double>(qsizetype(s * kRate), 1.0);
}
struct Rig {
    SignalViewer viewer;
    explicit Rig(double total)
    {
        viewer.resize(2 * viewer.margin() + 600, 300);
        viewer.setFollowPaused(true);
        viewer.setMarkersMovable(true);
        viewer.setSeries({SignalViewerSeries::fromSamples(seconds(total), kRate, Qt::blue)});
    }
    void mark(const QString &tag, double t, bool movable = true)
    {
        using K = SignalViewerMarker::Kind;
        viewer.setMarker(SignalViewerMarker(tag, tag, t, movable ? K::Movable : K::Fixed, Qt::red));
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
    void offsetAndScrollBarStayInsideTheData_data()
    {
        QTest::addColumn<double>("total");
        QTest::addColumn<double>("requested");
        QTest::addColumn<double>("expected");
        QTest::addColumn<int>("maximum");
        QTest::newRow("window longer than the data") << 12.0 << 7.0 << 0.0 << 0;
        QTest::newRow("exactly the window") << 60.0 << 7.0 << 0.0 << 0;
        QTest::newRow("one second more") << 61.0 << 7.0 << 5.0 << 1;
        QTest::newRow("just under a step") << 100.0 << 34.999 << 30.0 << 8;
        QTest::newRow("negative") << 100.0 << -3.0 << 0.0 << 8;
        QTest::newRow("window would pass the end") << 100.0 << 45.0 << 40.0 << 8;
        QTest::newRow("far beyond the end") << 102.0 << 1000.0 << 45.0 << 9;
    }
    void offsetAndScrollBarStayInsideTheData()
    {
        QFETCH(double, total);
        QFETCH(double, requested);
        QFETCH(double, expected);
        QFETCH(int, maximum);
        Rig rig(total);
        rig.viewer.setScrollMode(true);
        rig.viewer.show();
        rig.viewer.setOffset(20.0);
        const double before = rig.viewer.offset();
        QSignalSpy changed(&rig.viewer, &SignalViewer::offsetSecondsChanged);
        rig.viewer.setOffset(requested);
        QCOMPARE(rig.viewer.offset(), expected);
        QScrollBar *bar = rig.viewer.scrollBar();
        QCOMPARE(bar->value(), int(expected / 5));
        QCOMPARE(bar->maximum(), maximum);
        QCOMPARE(bar->isVisible(), maximum > 0);
        if (expected != before) {
            QCOMPARE(changed.count(), 1);
            QCOMPARE(changed.first().first().toInt(), int(expected));
        }
        // The plot keeps clear of the bar, which only scroll mode shows.
        QVERIFY(rig.viewer.plotRect().bottom() < rig.viewer.height() - (maximum ? 16 : 0));
        rig.viewer.setScrollMode(false);
        QVERIFY(!bar->isVisible());
    }

    void newDataIsFollowedUnlessPaused()
    {
        QList<double> data;
        SignalViewer viewer;
        viewer.resize(800, 300);
        viewer.setScrollMode(true);
        viewer.setSeries(
            {SignalViewerSeries::fromSampleSource([&] { return data; }, kRate, Qt::red)});
        const auto feed = [&](double total, double offset) {
            data = seconds(total);
            viewer.updateData();
            QCOMPARE(viewer.totalLength(), total);
            QCOMPARE(viewer.offset(), offset);
        };
        feed(50, 0.0);
        feed(62, 10.0); // the newest data in view with room after: ceil(62 / 5 + 1) x 5 - 60
        feed(71, 20.0);
        viewer.setFollowPaused(true);
        feed(90, 20.0);
        // A recording that starts over brings the window back to its start.
        viewer.setFollowPaused(false);
        feed(3, 0.0);
        feed(100, 45.0); // scrolling back pauses following, scrolling to the end resumes it
        viewer.scrollBar()->setValue(2);
        QVERIFY(viewer.followPaused());
        feed(110, 10.0);
        viewer.scrollBar()->setValue(viewer.scrollBar()->maximum());
        QVERIFY(!viewer.followPaused());
        feed(120, 65.0);
    }

    void markerHitWithinFivePixels_data()
    {
        QTest::addColumn<double>("offset");
        QTest::addColumn<double>("distance");
        QTest::addColumn<bool>("movable");
        QTest::addColumn<bool>("caught");
        QTest::newRow("on the line") << 0.0 << 0.0 << true << true;
        QTest::newRow("4 px right") << 0.0 << 4.0 << true << true;
        QTest::newRow("5 px right") << 0.0 << 5.0 << true << false;
        QTest::newRow("5 px left") << 0.0 << -5.0 << true << false;
        QTest::newRow("scrolled window, 4 px") << 10.0 << 4.0 << true << true;
        QTest::newRow("fixed marker") << 0.0 << 0.0 << false << false;
    }

    void markerHitWithinFivePixels()
    {
        QFETCH(double, offset);
        QFETCH(double, distance);
        QFETCH(bool, movable);
        QFETCH(bool, caught);
        Rig rig(120.0);
        rig.viewer.setOffset(offset);
        rig.mark(QStringLiteral("other"), 40.0);
        rig.mark(QStringLiteral("SBP"), 20.0, movable);
        const QPoint at(qRound(rig.xOf(20.0) + distance), 100);
        QTest::mousePress(&rig.viewer, Qt::LeftButton, {}, at);
        QCOMPARE(rig.viewer.draggedTag(), caught ? QStringLiteral("SBP") : QString());
        QTest::mouseRelease(&rig.viewer, Qt::LeftButton, {}, at);
    }

    void draggedMarkerStaysInsideThePlot_data()
    {
        QTest::addColumn<int>("dropX"); // pixels from the widget's left edge, margin added below
        QTest::addColumn<double>("expected");
        // Offset 10 s, 10 px a second: the plot shows 10 s to 70 s.
        QTest::newRow("inside") << 123 << 22.3;
        QTest::newRow("plot's left end") << 0 << 10.0;
        QTest::newRow("beyond the left") << -30 << 10.0;
        QTest::newRow("beyond the right edge") << 900 << 70.0;
    }

    void draggedMarkerStaysInsideThePlot()
    {
        QFETCH(int, dropX);
        Rig rig(120.0);
        rig.viewer.setOffset(10.0);
        rig.mark(QStringLiteral("DBP"), 30.0);
        QSignalSpy updated(&rig.viewer, &SignalViewer::markerUpdated);
        QSignalSpy stopped(&rig.viewer, &SignalViewer::markerMoveStopped);
        QTest::mousePress(&rig.viewer, Qt::LeftButton, {}, QPoint(qRound(rig.xOf(30.0)), 100));
        const QPoint drop(rig.viewer.margin() + dropX, 100);
        QTest::mouseMove(&rig.viewer, drop);
        QCOMPARE(updated.count(), 1);
        QTEST(updated.first().at(1).toDouble(), "expected");
        QTest::mouseRelease(&rig.viewer, Qt::LeftButton, {}, drop);
        QCOMPARE(stopped.count(), 1);
        // Once let go, moving the mouse moves nothing.
        QTest::mouseMove(&rig.viewer, QPoint(rig.viewer.margin() + 300, 100));
        QCOMPARE(updated.count(), 1);
    }

    // The pulse at the default vertical scale ran past both edges and drew as a solid block.
    void clippedTraceIsMarkedAndFitToDataShowsAllOfIt()
    {
        QList<double> pulse;
        for (int i = 0; i < 20000; ++i)
            pulse << std::sin(i / 1000.0 * 2 * M_PI * 7.0) * (i < 10000 ? 0.1 : 1.0);
        SignalViewer viewer;
        viewer.resize(2 * viewer.margin() + 600, 240);
        viewer.setWindowLength(20.0);
        viewer.setValueRange(-0.3, 0.6);
        viewer.setSeries({SignalViewerSeries::fromSamples(pulse, 1000.0, Qt::red)});
        const auto clipMarks = [&viewer](bool top) {
            QImage screen(viewer.size(), QImage::Format_ARGB32);
            viewer.render(&screen);
            const QRect plot = viewer.plotRect();
            const int y = top ? plot.top() - 1 : plot.bottom() + 1;
            int marked = 0, firstMarked = -1;
            for (int x = plot.left(); x <= plot.right(); ++x) {
                if (screen.pixelColor(x, y) == SignalViewerPainter::kClipColor) {
                    ++marked;
                    if (firstMarked < 0)
                        firstMarked = x - plot.left();
                }
            }
            return QPair<int, int>(marked, firstMarked);
        };
        // Only the loud half runs past the edges, and only there is it marked.
        for (bool top : {true, false}) {
            const auto [marked, first] = clipMarks(top);
            QVERIFY2(marked > 250 && marked < 320, qPrintable(QString::number(marked)));
            QVERIFY(std::abs(first - 300) <= 3);
        }

        viewer.fitButton()->click();
        QVERIFY(viewer.fitToData());
        QVERIFY(viewer.shownLower() < -1.0 && viewer.shownLower() > -1.2);
        QVERIFY(viewer.shownUpper() > 1.0 && viewer.shownUpper() < 1.2);
        QCOMPARE(viewer.lowerValue(), -0.3); // the set scale is kept for when fit is undone
        QCOMPARE(clipMarks(true).first, 0);
        QCOMPARE(clipMarks(false).first, 0);
        viewer.fitButton()->click();
        QCOMPARE(viewer.shownUpper(), 0.6);
    }

    // The pressure plot of a unit in the four-unit grid is about 70 px high: it once showed
    // only "0" on its axis.
    void smallPlotStillShowsAScale_data()
    {
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("lower");
        QTest::addColumn<double>("upper");
        QTest::newRow("four-unit pressure") << 70.0 << 0.0 << 250.0;
        QTest::newRow("four-unit pulse") << 110.0 << -0.3 << 0.6;
        QTest::newRow("narrow pulse range") << 70.0 << -0.2 << 0.22;
        QTest::newRow("full HD pressure") << 300.0 << 0.0 << 250.0;
    }
    void smallPlotStillShowsAScale()
    {
        QFETCH(double, height);
        QFETCH(double, lower);
        QFETCH(double, upper);
        SignalViewerPainter::Frame frame;
        frame.plot = QRectF(40, 20, 400, height);
        frame.lower = lower;
        frame.upper = upper;
        const QFontMetricsF fm(QApplication::font());
        const double step = SignalViewerPainter::ticksFor(frame, fm).valueStep;
        QVERIFY(step > 0);
        const double first = std::ceil(lower / step - 1e-9) * step;
        const int labels = int(std::floor((upper - first) / step + 1e-9)) + 1;
        QVERIFY2(labels >= 2, qPrintable(QString::number(step)));
        QVERIFY(step / (upper - lower) * height >= fm.height()); // the labels do not overlap
    }

    // A growing live trace repaints only its newest columns; what that leaves on screen must be
    // what a full paint would draw.
    void repaintOfTheNewestColumnsMatchesAFullPaint()
    {
        QList<double> pulse;
        auto grow = [&pulse](int samples) {
            for (int i = 0; i < samples; ++i) {
                const double t = pulse.size() / 1000.0;
                pulse.append(std::sin(t * 2 * M_PI * 8.0) * (0.3 + 0.2 * std::sin(t)));
            }
        };
        SignalViewer viewer;
        viewer.resize(2 * viewer.margin() + 700, 240);
        viewer.setValueRange(-0.6, 0.6);
        viewer.setSeries(
            {SignalViewerSeries::fromSampleSource([&pulse] { return pulse; }, 1000.0, Qt::red)});
        grow(20'000);
        viewer.updateData();
        QImage screen(viewer.size(), QImage::Format_ARGB32_Premultiplied);
        viewer.render(&screen);
        const double before = viewer.margin() + 20.0 * viewer.pixelsPerSecond();
        grow(1'500);
        viewer.updateData();
        const double after = viewer.margin() + 21.5 * viewer.pixelsPerSecond();
        const QRect columns(int(before) - 3, 0, int(after - before) + 7, viewer.height());
        viewer.render(&screen, columns.topLeft(), QRegion(columns));
        QImage full(viewer.size(), QImage::Format_ARGB32_Premultiplied);
        viewer.render(&full);
        QCOMPARE(screen, full);
    }

    // A viewer keeps the columns of a finished record between paints. Whatever changed since,
    // its picture must be the one a viewer painting for the first time shows.
    void repaintMatchesAFirstPaint_data()
    {
        QTest::addColumn<QString>("change");
        QTest::newRow("nothing") << "nothing";
        QTest::newRow("scrolled") << "scrolled";
        QTest::newRow("value range") << "range";
        QTest::newRow("other record of the same length") << "record";
        QTest::newRow("resized") << "resized";
    }
    void repaintMatchesAFirstPaint()
    {
        QFETCH(QString, change);
        const auto wave = [](double hz) {
            QList<double> x(60'000);
            for (qsizetype i = 0; i < x.size(); ++i)
                x[i] = 0.4 * std::sin(i / 1000.0 * 2 * M_PI * hz) + 0.05 * std::sin(i * 0.37);
            return x;
        };
        struct View {
            QList<double> samples;
            double offset = 10.0;
            double lower = -0.6;
            int width = 700;
        };
        const auto setUp = [](SignalViewer &viewer, const View &v) {
            viewer.resize(2 * viewer.margin() + v.width, 240);
            viewer.setFollowPaused(true);
            viewer.setWindowLength(40);
            viewer.setValueRange(v.lower, 0.6);
            viewer.setSeries({SignalViewerSeries::fromSamples(v.samples, 1000.0, Qt::red)});
            viewer.setOffset(v.offset);
        };
        const auto picture = [](SignalViewer &viewer) {
            QImage image(viewer.size(), QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::white);
            viewer.render(&image);
            return image;
        };
        View view{wave(6.13)};
        SignalViewer kept;
        setUp(kept, view);
        const QImage first = picture(kept);
        if (change == "scrolled")
            view.offset = 20.0;
        else if (change == "range")
            view.lower = -0.3;
        else if (change == "record")
            view.samples = wave(7.51);
        else if (change == "resized")
            view.width = 640;
        setUp(kept, view);
        const QImage again = picture(kept);
        SignalViewer fresh;
        setUp(fresh, view);
        QCOMPARE(again, picture(fresh));
        QCOMPARE(again == first, change == "nothing");
    }

    // The plot area of dense traces, pixel for pixel, against pictures saved from the viewer
    // when its drawing was last changed on purpose: a busy trace is filled as upright bars or
    // as rows, whichever is cheaper (the cases below take both), and neither may move a pixel. Set
    // CORVIDA_SAVE_PLOT_PICTURES to a folder to write new pictures after a deliberate change of the
    // look.
    void denseTracePaintsTheSavedPixels_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("window");
        QTest::addColumn<double>("amplitude");
        QTest::addColumn<double>("penWidth");
        QTest::newRow("120 s of pulse") << "pulse120s" << 120.0 << 0.5 << 1.5;
        QTest::newRow("10 s of pulse") << "pulse10s" << 10.0 << 0.5 << 1.5;
        QTest::newRow("hairline") << "hairline60s" << 60.0 << 0.5 << 1.0;
        QTest::newRow("wide pen") << "wide30s" << 30.0 << 0.5 << 3.0;
        QTest::newRow("runs past both edges") << "clipped20s" << 20.0 << 1.4 << 1.5;
    }
    void denseTracePaintsTheSavedPixels()
    {
        QFETCH(QString, name);
        QFETCH(double, window);
        QFETCH(double, amplitude);
        QFETCH(double, penWidth);
        // Beats at 7.3 Hz with a sharp rise, a slow fall and some ripple, like a pulse wave.
        QList<double> x(qsizetype(window * 1000) + 5000);
        for (qsizetype i = 0; i < x.size(); ++i) {
            const double phase = std::fmod(i / 1000.0 * 7.3, 1.0);
            const double beat = phase < 0.2 ? 0.5 * (1 - std::cos(M_PI * phase / 0.2))
                                            : std::pow(1 - (phase - 0.2) / 0.8, 2.0);
            x[i] = amplitude * (beat - 0.4) + 0.02 * std::sin(i * 0.91);
        }
        SignalViewer viewer;
        viewer.resize(2 * viewer.margin() + 1000, 300);
        viewer.setFollowPaused(true);
        viewer.setDark(false);
        viewer.setWindowLength(window);
        viewer.setValueRange(-0.6, 0.8);
        viewer.setSeries(
            {SignalViewerSeries::fromSamples(x, 1000.0, QColor(0xcc, 0x44, 0x44), penWidth)});
        viewer.setOffset(5.0);
        QImage screen(viewer.size(), QImage::Format_ARGB32_Premultiplied);
        screen.fill(Qt::white);
        viewer.render(&screen);
        // The trace may run two pixels past the plot; the rest of the widget is text.
        const QRect plot = viewer.plotRect().adjusted(0, -3, 0, 3);
        const QImage shown = screen.copy(plot).convertToFormat(QImage::Format_RGB32);

        const QString file = name + QStringLiteral(".png");
        const QString saveTo = qEnvironmentVariable("CORVIDA_SAVE_PLOT_PICTURES");
        if (!saveTo.isEmpty())
            QVERIFY(shown.save(QDir(saveTo).filePath(file)));
        const QString path = QFINDTESTDATA(QStringLiteral("data/plots/") + file);
        QVERIFY2(!path.isEmpty(), qPrintable(file));
        const QImage saved = QImage(path).convertToFormat(QImage::Format_RGB32);
        QCOMPARE(shown.size(), saved.size());
        int differing = 0;
        for (int y = 0; y < saved.height(); ++y) {
            for (int xPixel = 0; xPixel < saved.width(); ++xPixel)
                differing += shown.pixel(xPixel, y) != saved.pixel(xPixel, y) ? 1 : 0;
        }
        QCOMPARE(differing, 0);
    }
};

QTEST_MAIN(TestSignalViewer)
#include "tst_signalviewer.moc"
