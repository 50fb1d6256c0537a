#include "support/MemoryRecord.h"
#include "ui/MultiExperimentViewer.h"
#include "ui/SignalViewer.h"

#include <QtTest>

namespace {
MemoryRecord *record(double seconds, double highest, double sbp, double dbp)
{
    auto *r = new MemoryRecord;
    QList<double> pressure(int(seconds * 100), 40.0);
    pressure[10] = highest;
    r->setSeries(pressure, QList<double>(pressure.size(), 0.1), 100.0);
    r->setSBPTime(sbp);
    r->setDBPTime(dbp);
    return r;
}
} // namespace

class TestMultiExperimentViewer : public QObject
{
    Q_OBJECT
private slots:
    void recordsAreLaidOverEachOtherInTheirOwnColours()
    {
        std::unique_ptr<MemoryRecord> a(record(10.0, 130.0, 4.5, 7.0));
        auto *b = record(23.0, 95.0, 6.0, 0.0);
        MultiExperimentViewer viewer;
        viewer.setExperiments({a.get(), nullptr, b});
        for (SignalViewer *v : {viewer.pressureViewer(), viewer.ppgViewer()}) {
            QCOMPARE(v->windowLength(), 25.0); // the whole of the longest, in five-second steps
            QCOMPARE(v->series().size(), 2);
            QCOMPARE(v->series()[1].color(), MultiExperimentViewer::colorFor(1));
            QCOMPARE(v->markerTime(QStringLiteral("DBP 1")), 7.0);
            QCOMPARE(v->markerTime(QStringLiteral("DBP 2")), -1.0); // not set
        }
        QCOMPARE(viewer.pressureViewer()->upperValue(), 140.0);
        // Overlaid markers are lines without labels (sixteen labels pile up into a stack); the
        // legend names the two line styles once.
        for (const SignalViewerMarker &m : viewer.pressureViewer()->markers())
            QVERIFY(m.text().isEmpty());
        QCOMPARE(viewer.ppgViewer()->legendOnly().size(), 2);
        QVERIFY(viewer.ppgViewer()->legendOnly()[0].penStyle() !=
                viewer.ppgViewer()->legendOnly()[1].penStyle());
        b->setSBPTime(8.0); // a marker moved in the single-record view shows here too
        QCOMPARE(viewer.pressureViewer()->markerTime(QStringLiteral("SBP 2")), 8.0);
        delete b; // a deleted record drops out
        QCoreApplication::processEvents();
        QCOMPARE(viewer.experiments(), QList<CorvidaExperiment *>{a.get()});
        QCOMPARE(viewer.ppgViewer()->series().size(), 1);
        QCOMPARE(viewer.ppgViewer()->windowLength(), 10.0);
    }
};

QTEST_MAIN(TestMultiExperimentViewer)
#include "tst_multiexperimentviewer.moc"
