#include "support/MemoryRecord.h"
#include "ui/MultiExperimentViewer.h"
#include "ui/SignalViewer.h"

#include <QtTest>

namespace {
MemoryRecord *record(double seconds, double highest, double sbp, double dbp, const QString &rodent)
{
    auto *r = new MemoryRecord;
    QList<double> pressure(int(seconds * 100), 40.0);
    pressure[10] = highest;
    r->setSeries(pressure, QList<double>(pressure.size(), 0.1), 100.0);
    r->setSBPTime(sbp);
    r->setDBPTime(dbp);
    r->setRodent(rodent);
    return r;
}
} // namespace

class TestMultiExperimentViewer : public QObject
{
    Q_OBJECT
private slots:
    void recordsAreLaidOverEachOtherInTheirOwnColours();
    void aDeletedRecordDropsOut();
};

void TestMultiExperimentViewer::recordsAreLaidOverEachOtherInTheirOwnColours()
{
    std::unique_ptr<MemoryRecord> a(record(10.0, 130.0, 4.5, 7.0, QStringLiteral("R1")));
    std::unique_ptr<MemoryRecord> b(record(23.0, 95.0, 6.0, 0.0, QStringLiteral("R2")));
    MultiExperimentViewer viewer;
    viewer.setExperiments({a.get(), nullptr, b.get()});
    QCOMPARE(viewer.experiments(), (QList<CorvidaExperiment *>{a.get(), b.get()}));
    for (SignalViewer *v : {viewer.pressureViewer(), viewer.ppgViewer()}) {
        // The whole of the longest record, in five-second steps.
        QCOMPARE(v->windowLength(), 25.0);
        QCOMPARE(v->offset(), 0.0);
        QCOMPARE(v->series().size(), 2);
        QCOMPARE(v->series()[0].color(), MultiExperimentViewer::colorFor(0));
        QCOMPARE(v->series()[1].color(), MultiExperimentViewer::colorFor(1));
        QVERIFY(MultiExperimentViewer::colorFor(0) != MultiExperimentViewer::colorFor(1));
        QCOMPARE(v->markerTime(QStringLiteral("SBP 1")), 4.5);
        QCOMPARE(v->markerTime(QStringLiteral("DBP 1")), 7.0);
        QCOMPARE(v->markerTime(QStringLiteral("SBP 2")), 6.0);
        QCOMPARE(v->markerTime(QStringLiteral("DBP 2")), -1.0); // not set
    }
    QCOMPARE(viewer.pressureViewer()->series()[1].name(), QStringLiteral("R2"));
    QCOMPARE(viewer.pressureViewer()->upperValue(), 140.0);

    // A marker moved in the single-record view shows here too.
    b->setSBPTime(8.0);
    QCOMPARE(viewer.pressureViewer()->markerTime(QStringLiteral("SBP 2")), 8.0);
}

void TestMultiExperimentViewer::aDeletedRecordDropsOut()
{
    std::unique_ptr<MemoryRecord> a(record(10.0, 130.0, 4.5, 7.0, QString()));
    auto *b = record(20.0, 95.0, 6.0, 0.0, QString());
    MultiExperimentViewer viewer;
    viewer.setExperiments({a.get(), b});
    delete b;
    QCoreApplication::processEvents();
    QCOMPARE(viewer.experiments().size(), 1);
    QCOMPARE(viewer.ppgViewer()->series().size(), 1);
    QCOMPARE(viewer.ppgViewer()->windowLength(), 10.0);
    QVERIFY(!viewer.grab().isNull());
}

QTEST_MAIN(TestMultiExperimentViewer)
#include "tst_multiexperimentviewer.moc"
