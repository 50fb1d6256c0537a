#include "analysis/CorvidaExperiment.h"
#include "storage/RecordDatabase.h"
#include "storage/RecordExport.h"
#include "support/RecordFiles.h"
#include "support/XlsxArchive.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

const RecordFiles::Plan kFirst{QDateTime(QDate(2026, 11, 21), QTime(10, 0, 0)), "=1+1",
                               "cage 4; left", 121.4, 80.6};
const RecordFiles::Plan kSecond{QDateTime(QDate(2026, 11, 21), QTime(10, 5, 0)), "Крыса 2"};
} // namespace

class TestRecordExport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(!RecordFiles::write(m_records.path(), kFirst).isEmpty());
        QVERIFY(!RecordFiles::write(m_records.path(), kSecond).isEmpty());
        m_db = new RecordDatabase(m_records.path(), nullptr, this);
        QVERIFY(m_db->reload());
        m_db->sort(RecordDatabase::TitleColumn, Qt::AscendingOrder);
        m_both = m_db->records();
    }
    void twoRecordsEssentialCsvIsByteExact()
    {
        QTemporaryDir out;
        const QString path = out.filePath("both.csv");
        QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[1]),
                 RecordExport::Result::Written);
        const QByteArray expected =
            "\xEF\xBB\xBFSummary\r\nTitle;Rodent;Comment;Pressure;MAP;Heart rate;"
            "\"SBP, mmHg\";\"DBP, mmHg\";\"Pulse, bpm\";Start;\r\n"
            "2026-11-21_10-00-00;=1+1;\"cage 4; left\";121/81;94;?;121.4;80.6;;"
            "2026-11-21 10:00:00;\r\n"
            "2026-11-21_10-05-00;Крыса 2;;?;;?;;;;2026-11-21 10:05:00;\r\n\r\n"
            "2026-11-21_10-00-00\r\nSBP;121.4;mmHg;\r\nDBP;80.6;mmHg;\r\nPulse;0;bpm;\r\n"
            "Rodent;=1+1;\r\nComment;\"cage 4; left\";\r\n\r\n"
            "2026-11-21_10-05-00\r\nSBP;0;mmHg;\r\nDBP;0;mmHg;\r\nPulse;0;bpm;\r\n"
            "Rodent;Крыса 2;\r\nComment;;\r\n\r\n";
        QCOMPARE(RecordFiles::readAll(path), expected);
        QCOMPARE(filesIn(out.path()), QStringList{"both.csv"});
    }
    void twoRecordsEssentialXlsxHasSummaryAndTextCells()
    {
        if (!XlsxReader::available())
            QSKIP("openpyxl for /usr/bin/python3 is missing (scripts/install-deps.sh installs it)");
        QTemporaryDir out;
        const QString path = out.filePath("both.xlsx");
        QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[0]),
                 RecordExport::Result::Written);
        const QJsonArray book = XlsxReader::read(path);
        QCOMPARE(book.size(), 3);
        const QJsonArray first = book[1].toObject()["rows"].toArray();
        QCOMPARE(first[0].toArray()[1].toDouble(), 121.4);

        // The summary's values for statistics: numbers, a real date, and nothing where no value
        // was found (a 0 would pull a mean down).
        const QJsonArray summary = book[0].toObject()["rows"].toArray();
        const QJsonArray found = summary[1].toArray(), missing = summary[2].toArray();
        // The numbers follow the list's columns up to the heart rate; the method column comes
        // only when some record was found the refined way.
        const int sbp = RecordDatabase::MethodColumn;
        QCOMPARE(found[sbp].toDouble(), 121.4);
        QCOMPARE(found[sbp + 1].toDouble(), 80.6);
        QVERIFY(found[sbp + 2].isNull() && missing[sbp].isNull() && missing[sbp + 1].isNull());
        QCOMPARE(found[sbp + 3].toObject()["datetime"].toString(),
                 QStringLiteral("2026-11-21T10:00:00"));
        QCOMPARE(missing[sbp + 3].toObject()["datetime"].toString(),
                 QStringLiteral("2026-11-21T10:05:00"));
        // A record's sheet shows its row titles ("Comment") without widening the column by hand.
        QVERIFY(book[1].toObject()["widthA"].toDouble() >= 9);

        // A rodent written "=1+1" must stay a text: as a formula a spreadsheet would compute it.
        const QByteArray xml = XlsxArchive::member(path, "xl/worksheets/sheet2.xml");
        QVERIFY(xml.contains("=1+1") && !xml.contains("<f>"));
    }
    void fullContentHasEverySample()
    {
        QTemporaryDir out;
        const QString path = out.filePath("full.csv");
        QCOMPARE(RecordExport::write({m_both.first()}, path, RecordExport::filters()[3]),
                 RecordExport::Result::Written);
        const QList<QByteArray> lines = RecordFiles::readAll(path).split('\n');
        QCOMPARE(lines.size(), 1 + 5 + 1 + 1 + 1 + 200 + 1 + 1);
        // Titles holding a "," are quoted, so a spreadsheet splitting at "," keeps them whole.
        QCOMPARE(lines[7] + lines[8],
                 QByteArray("Sampling rate;100;\r\"Pressure, mmHg\";\"PPG, V\";\r"));
        // The recording keeps 16 bits per sample: 0.25 mmHg and 1.8 V / 32767 apart.
        for (int i : {0, 57, 199}) {
            const QList<QByteArray> cells = lines[9 + i].split(';');
            QVERIFY(qAbs(cells[0].toDouble() - RecordFiles::pressureAt(kFirst, i)) <= 0.125);
            QVERIFY(qAbs(cells[1].toDouble() - RecordFiles::pulseAt(kFirst, i)) <= 0.6e-4);
        }
    }
    void refinedRecordAddsMethodToSummaryAndEverySheet()
    {
        QTemporaryDir records, out;
        QVERIFY(!RecordFiles::write(records.path(), kFirst).isEmpty());
        QVERIFY(!RecordFiles::write(records.path(), kSecond).isEmpty());
        RecordDatabase db(records.path());
        QVERIFY(db.reload());
        db.sort(RecordDatabase::TitleColumn, Qt::AscendingOrder);
        db.record(1)->setMethod(CorvidaExperiment::refinedMethod());
        const QString path = out.filePath("both.csv");
        QCOMPARE(RecordExport::write(db.records(), path, RecordExport::filters()[1]),
                 RecordExport::Result::Written);
        const QByteArray expected =
            "\xEF\xBB\xBFSummary\r\nTitle;Rodent;Comment;Pressure;MAP;Heart rate;"
            "\"SBP, mmHg\";\"DBP, mmHg\";\"Pulse, bpm\";Start;Method;\r\n"
            "2026-11-21_10-00-00;=1+1;\"cage 4; left\";121/81;94;?;121.4;80.6;;"
            "2026-11-21 10:00:00;Documented;\r\n"
            "2026-11-21_10-05-00;Крыса 2;;?;;?;;;;2026-11-21 10:05:00;Refined;\r\n\r\n"
            "2026-11-21_10-00-00\r\nSBP;121.4;mmHg;\r\nDBP;80.6;mmHg;\r\nPulse;0;bpm;\r\n"
            "Rodent;=1+1;\r\nComment;\"cage 4; left\";\r\nMethod;Documented;\r\n\r\n"
            "2026-11-21_10-05-00\r\nSBP;0;mmHg;\r\nDBP;0;mmHg;\r\nPulse;0;bpm;\r\n"
            "Rodent;Крыса 2;\r\nComment;;\r\nMethod;Refined;\r\n\r\n";
        QCOMPARE(RecordFiles::readAll(path), expected);

        // Full content: the method closes the result rows, the samples follow as before.
        const QString full = out.filePath("full.csv");
        QCOMPARE(RecordExport::write({db.record(1)}, full, RecordExport::filters()[3]),
                 RecordExport::Result::Written);
        const QList<QByteArray> lines = RecordFiles::readAll(full).split('\n');
        QCOMPARE(lines.size(), 1 + 5 + 1 + 1 + 1 + 1 + 200 + 1 + 1);
        QCOMPARE(lines[6] + lines[7] + lines[8].left(14),
                 QByteArray("Method;Refined;\r\rSampling rate;"));
    }
    void failedOrCancelledExportLeavesOlderFileAlone_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<bool>("cancel"); // else a folder holds the name: the file cannot take it
        QTest::newRow("csv failed") << 3 << false;
        QTest::newRow("xlsx cancelled") << 0 << true;
    }
    void failedOrCancelledExportLeavesOlderFileAlone()
    {
        QFETCH(int, filter);
        QFETCH(bool, cancel);
        QTemporaryDir out;
        const QString path = out.filePath("older");
        QFile older(path);
        QVERIFY(cancel ? older.open(QIODevice::WriteOnly) && older.write("keep me") == 7
                       : QDir(out.path()).mkdir("older"));
        older.close();
        QString error;
        QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[filter], &error,
                                     [&](int done, int) { return !cancel || done < 1; }),
                 cancel ? RecordExport::Result::Cancelled : RecordExport::Result::Failed);
        QCOMPARE(error,
                 cancel ? QString() : "Error saving \"" + QDir::toNativeSeparators(path) + '"');
        QCOMPARE(RecordFiles::readAll(path), cancel ? QByteArray("keep me") : QByteArray());
        QCOMPARE(filesIn(out.path()), cancel ? QStringList{"older"} : QStringList());
    }

private:
    QTemporaryDir m_records;
    RecordDatabase *m_db = nullptr;
    QList<CorvidaExperiment *> m_both;
};

QTEST_GUILESS_MAIN(TestRecordExport)
#include "tst_recordexport.moc"
