#include "analysis/CorvidaOnlineExperiment.h"
#include "storage/EDFMarkRewriter.h"
#include "storage/EDFWriter.h"
#include "support/EdfLibProbe.h"
#include "support/RecordFiles.h"
#include "support/TailCuff.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <memory>
#include <sys/stat.h>

namespace {
using Marks = QList<QPair<QString, qint64>>;

std::unique_ptr<CorvidaOnlineExperiment> measurement(bool flat = false)
{
    return TailCuff::measurement(20.0, flat ? TailCuff::Pulse::Flat : TailCuff::Pulse::Returns);
}

// A rewritten file is a new file put in place of the old one.
ino_t inodeOf(const QString &path)
{
    struct stat s = {};
    return ::stat(QFile::encodeName(path).constData(), &s) == 0 ? s.st_ino : 0;
}

// The header as written: everything before the first data record.
QByteArray headerOf(const QString &path)
{
    const QByteArray bytes = RecordFiles::readAll(path);
    return bytes.left(256 * (bytes.mid(252, 4).trimmed().toInt() + 1));
}

Marks sorted(Marks marks)
{
    std::sort(marks.begin(), marks.end(),
              [](const auto &a, const auto &b) { return a.second < b.second; });
    return marks;
}

// A file of five one-second records of three signals at 100 Hz with the given marks.
QString writeFile(const QString &path, const Marks &marks, int records = 5, int startMs = 0)
{
    EDFWriter writer(path, {ChannelDim("A", 100.0), ChannelDim("B", 5.0), ChannelDim("C", 1.0)},
                     100);
    PatientInfo info;
    info.startYear = 2026;
    info.startMonth = 3;
    info.startDay = 14;
    info.startHour = 9;
    info.startMinute = 26;
    info.startSecond = 53;
    info.startMillisecond = startMs;
    writer.setPatientInfo(info);
    QList<QList<float>> data(3);
    for (int i = 0; i < records * 100; ++i) {
        data[0] << float(50 * std::sin(i * 0.37));
        data[1] << float(i % 17 - 8) * 0.5f;
        data[2] << float(std::cos(i * 0.01));
    }
    writer.writeData(data);
    for (const auto &mark : marks)
        writer.addAnnotation(mark.first, int(mark.second), -1);
    return writer.close(true) ? path : QString();
}
} // namespace

class TestRecordingMarks : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void marksFollowMarkersAfterSaveMoveAndRecalculation()
    {
        QTemporaryDir dir;
        std::unique_ptr<CorvidaOnlineExperiment> live = measurement();
        live->recalculate(false);
        QVERIFY(live->getSBPTime() > 4 && live->getDBPTime() > live->getSBPTime());
        QVERIFY(live->save(dir.path()));
        const QString exp = live->getFilepath();
        const QString edf = TailCuff::edfOf(exp);
        const qint64 sbp = qint64(live->getSBPTime() * 1000);
        const qint64 dbp = qint64(live->getDBPTime() * 1000);
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "SBP"), QList<qint64>{sbp});
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "DBP"), QList<qint64>{dbp});
        const QList<QList<int>> samples = EdfLibProbe::digitalSamples(edf);
        const QByteArray header = headerOf(edf);
        QCOMPARE(samples.size(), 2);

        CorvidaExperiment stored(exp);
        QCOMPARE(stored.getPressure().size(), 20000);
        // Reading with nothing changed writes nothing: the file is the very same one.
        const ino_t inode = inodeOf(edf);
        stored.recalculate(false);
        stored.setSBPTime(stored.getSBPTime());
        QCOMPARE(inodeOf(edf), inode);

        stored.setSBPTime(9.0); // the operator drags the systolic marker
        QVERIFY(inodeOf(edf) != inode);
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "SBP"), QList<qint64>{9000});
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "DBP"), QList<qint64>{dbp});
        stored.recalculate(true);
        QVERIFY(stored.getSBPTime() > 4 && stored.getDBPTime() > stored.getSBPTime());
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "SBP"),
                 QList<qint64>{qint64(stored.getSBPTime() * 1000)});
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "DBP"),
                 QList<qint64>{qint64(stored.getDBPTime() * 1000)});
        QCOMPARE(EdfLibProbe::digitalSamples(edf), samples);
        QCOMPARE(headerOf(edf), header);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    }

    void clearedMarkerComesBackFromStaleMark_data()
    {
        QTest::addColumn<bool>("olderProgram");
        QTest::newRow("reset finds no systolic point") << false;
        // Files saved before the marks followed the markers: the ".exp" file says "not set" while
        // the recording still carries the old mark.
        QTest::newRow("recording left behind by an older save") << true;
    }
    void clearedMarkerComesBackFromStaleMark()
    {
        QFETCH(bool, olderProgram);
        QTemporaryDir dir;
        std::unique_ptr<CorvidaOnlineExperiment> live = measurement(true);
        live->setSBPTime(6.0);
        QVERIFY(live->save(dir.path()));
        const QString exp = live->getFilepath();
        QCOMPARE(EdfLibProbe::onsetsOf(TailCuff::edfOf(exp), "SBP"), QList<qint64>{6000});
        {
            CorvidaExperiment stored(exp);
            if (olderProgram) {
                stored.setAutoSave(false);
                stored.resetSBPTime();
                stored.resetSBP();
                QVERIFY(stored.VTSettings::save());
            } else {
                stored.recalculate(true);
                QCOMPARE(stored.getSBPTime(), 0.0);
                QCOMPARE(EdfLibProbe::onsetsOf(TailCuff::edfOf(exp), "SBP"), QList<qint64>());
            }
        }
        CorvidaExperiment reopened(exp);
        QCOMPARE(reopened.getPressure().size(), 20000);
        QCOMPARE(reopened.getSBPTime(), 0.0);
        QCOMPARE(reopened.getSBP(), 0.0);
    }

    void rewriteKeepsSamplesHeaderAndOtherMarks_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("startMs");
        QTest::newRow("EDF+") << "marks.edf" << 0;
        // The marks count from the whole second of the header; the first record says how much
        // later the recording starts.
        QTest::newRow("EDF+ starting 109 ms into a second") << "marks.edf" << 109;
        QTest::newRow("BDF+ starting 250 ms into a second") << "marks.bdf" << 250;
    }
    void rewriteKeepsSamplesHeaderAndOtherMarks()
    {
        QFETCH(QString, name);
        QFETCH(int, startMs);
        QTemporaryDir dir;
        const Marks before = {{"Start", 0},  {"SBP", 1200}, {QString::fromUtf8("Notiz ü"), 2500},
                              {"DBP", 3000}, {"SBP", 3300}, {"SBPX", 3400}};
        const QString path = writeFile(dir.filePath(name), before, 5, startMs);
        QVERIFY(!path.isEmpty());
        QCOMPARE(sorted(EdfLibProbe::marks(path)), sorted(before));
        const QList<QList<int>> samples = EdfLibProbe::digitalSamples(path);
        QCOMPARE(samples.size(), 3);
        const QByteArray header = headerOf(path);

        QString error;
        QVERIFY2(EDFMarkRewriter::replaceMarks(path, {"SBP", "DBP"}, {{"SBP", 4100}, {"DBP", 4567}},
                                               &error),
                 qPrintable(error));
        const Marks after = {{"Start", 0},
                             {QString::fromUtf8("Notiz ü"), 2500},
                             {"SBPX", 3400},
                             {"SBP", 4100},
                             {"DBP", 4567}};
        QCOMPARE(sorted(EdfLibProbe::marks(path)), after);
        QCOMPARE(EdfLibProbe::digitalSamples(path), samples);
        QCOMPARE(headerOf(path), header);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{name});
    }

    void rewriteRefusesAndKeepsTheFile_data()
    {
        QTest::addColumn<int>("marks");
        QTest::addColumn<int>("cut");
        QTest::newRow("no room for so many marks") << 60 << 0;
        QTest::newRow("recording cut off") << 1 << 300;
    }
    void rewriteRefusesAndKeepsTheFile()
    {
        QFETCH(int, marks);
        QFETCH(int, cut);
        QTemporaryDir dir;
        const QString path = writeFile(dir.filePath("one.edf"), {{"SBP", 100}}, 1);
        QVERIFY(!path.isEmpty());
        QByteArray bytes = RecordFiles::readAll(path);
        bytes.chop(cut);
        QVERIFY(RecordFiles::writeAll(path, bytes));
        Marks wanted;
        for (int i = 0; i < marks; ++i)
            wanted << qMakePair(QStringLiteral("SBP"), qint64(100 + i));
        QString error;
        QVERIFY(!EDFMarkRewriter::replaceMarks(path, {"SBP"}, wanted, &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(RecordFiles::readAll(path), bytes);
    }
};

QTEST_GUILESS_MAIN(TestRecordingMarks)
#include "tst_recordingmarks.moc"
