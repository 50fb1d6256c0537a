#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"
#include "storage/RecordExport.h"
#include "support/RecordFiles.h"
#include "support/XlsxArchive.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

const RecordFiles::Plan kFirst = {QDateTime(QDate(2026, 11, 21), QTime(10, 0, 0)),
                                  QStringLiteral("=1+1"),
                                  QStringLiteral("cage 4; left"),
                                  121.4,
                                  80.6,
                                  2.0,
                                  100.0};
const RecordFiles::Plan kSecond = {QDateTime(QDate(2026, 11, 21), QTime(10, 5, 0)),
                                   QStringLiteral("Крыса 2"),
                                   QString(),
                                   0,
                                   0,
                                   2.0,
                                   100.0};
const QString kFirstName = QStringLiteral("2026-11-21_10-00-00");
const QString kSecondName = QStringLiteral("2026-11-21_10-05-00");
} // namespace

class TestRecordExport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void twoRecordsEssentialCsvIsByteExact();
    void twoRecordsEssentialXlsxHasSummaryAndTextCells();
    void oneRecordHasNoSummary();
    void fullContentHasEverySample();
    void failureLeavesNoFileAndSaysWhere_data();
    void failureLeavesNoFileAndSaysWhere();
    void cancelLeavesOlderFileAlone();
    void dialogSuggestionsAndStoredChoice();

private:
    QTemporaryDir m_records;
    RecordDatabase *m_db = nullptr;
    QList<CorvidaExperiment *> m_both;
};

void TestRecordExport::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(!RecordFiles::write(m_records.path(), kFirst).isEmpty());
    QVERIFY(!RecordFiles::write(m_records.path(), kSecond).isEmpty());
    m_db = new RecordDatabase(m_records.path(), nullptr, this);
    QVERIFY(m_db->reload());
    m_db->sort(RecordDatabase::TitleColumn, Qt::AscendingOrder);
    m_both = m_db->records();
    QCOMPARE(m_both.size(), 2);
}

void TestRecordExport::twoRecordsEssentialCsvIsByteExact()
{
    QTemporaryDir out;
    const QString path = out.filePath("both.csv");
    QString error;
    QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[1], &error),
             RecordExport::Result::Written);
    const QByteArray expected = "\xEF\xBB\xBF"
                                "Summary\r\n"
                                "Title;Rodent;Comment;Pressure;\r\n"
                                "2026-11-21_10-00-00.exp;=1+1;\"cage 4; left\";121/81;\r\n"
                                "2026-11-21_10-05-00.exp;" +
                                QStringLiteral("Крыса 2").toUtf8() +
                                ";;?;\r\n"
                                "\r\n"
                                "2026-11-21_10-00-00\r\n"
                                "SBP;121.4;mmHg;\r\n"
                                "DBP;80.6;mmHg;\r\n"
                                "Pulse;0;bpm;\r\n"
                                "Rodent;=1+1;\r\n"
                                "Comment;\"cage 4; left\";\r\n"
                                "\r\n"
                                "2026-11-21_10-05-00\r\n"
                                "SBP;0;mmHg;\r\n"
                                "DBP;0;mmHg;\r\n"
                                "Pulse;0;bpm;\r\n"
                                "Rodent;" +
                                QStringLiteral("Крыса 2").toUtf8() +
                                ";\r\n"
                                "Comment;;\r\n"
                                "\r\n";
    QCOMPARE(RecordFiles::readAll(path), expected);
    QCOMPARE(filesIn(out.path()), QStringList{"both.csv"});
}

void TestRecordExport::twoRecordsEssentialXlsxHasSummaryAndTextCells()
{
    if (!XlsxReader::available())
        QSKIP("openpyxl for /usr/bin/python3 is missing (scripts/install-deps.sh installs it)");
    QTemporaryDir out;
    const QString path = out.filePath("both.xlsx");
    QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[0]),
             RecordExport::Result::Written);
    const QJsonArray book = XlsxReader::read(path);
    QCOMPARE(book.size(), 3);
    QStringList names;
    for (const auto &sheet : book)
        names << sheet.toObject()["name"].toString();
    QCOMPARE(names, (QStringList{"Summary", kFirstName, kSecondName}));
    const QJsonArray summary = book[0].toObject()["rows"].toArray();
    QCOMPARE(summary[1].toArray()[3].toString(), QStringLiteral("121/81"));
    const QJsonArray first = book[1].toObject()["rows"].toArray();
    QVERIFY(first[0].toArray()[1].isDouble());
    QCOMPARE(first[0].toArray()[1].toDouble(), 121.4);

    // A rodent written "=1+1" must stay a text: as a formula a spreadsheet would compute it.
    QString error;
    const QByteArray xml = XlsxArchive::member(path, "xl/worksheets/sheet2.xml", &error);
    QVERIFY2(!xml.isEmpty(), qPrintable(error));
    QVERIFY(xml.contains("=1+1"));
    QVERIFY(!xml.contains("<f>"));
}

void TestRecordExport::oneRecordHasNoSummary()
{
    QTemporaryDir out;
    const QString path = out.filePath("one.csv");
    QCOMPARE(RecordExport::write({m_both.last()}, path, RecordExport::filters()[1]),
             RecordExport::Result::Written);
    QVERIFY(
        RecordFiles::readAll(path).startsWith("\xEF\xBB\xBF" + kSecondName.toUtf8() + "\r\nSBP;"));
}

void TestRecordExport::fullContentHasEverySample()
{
    QTemporaryDir out;
    const QString path = out.filePath("full.csv");
    QCOMPARE(RecordExport::write({m_both.first()}, path, RecordExport::filters()[3]),
             RecordExport::Result::Written);
    const QList<QByteArray> lines = RecordFiles::readAll(path).split('\n');
    // Name, five results, an empty row, the rate, the column titles, 200 samples, the empty
    // line after the sheet, and what follows the last line end.
    QCOMPARE(lines.size(), 1 + 5 + 1 + 1 + 1 + 200 + 1 + 1);
    QCOMPARE(lines[1], QByteArray("SBP;121.4;mmHg;\r"));
    QCOMPARE(lines[6], QByteArray("\r"));
    QCOMPARE(lines[7], QByteArray("Sampling rate;100;\r"));
    QCOMPARE(lines[8], QByteArray("Pressure, mmHg;PPG, V;\r"));
    // The recording keeps 16 bits per sample: 0.25 mmHg and 1.8 V / 32767 apart.
    for (int i : {0, 57, 199}) {
        const QList<QByteArray> cells = lines[9 + i].split(';');
        QCOMPARE(cells.size(), 3);
        QVERIFY(qAbs(cells[0].toDouble() - RecordFiles::pressureAt(kFirst, i)) <= 0.125);
        QVERIFY(qAbs(cells[1].toDouble() - RecordFiles::pulseAt(kFirst, i)) <= 0.6e-4);
    }
}

void TestRecordExport::failureLeavesNoFileAndSaysWhere_data()
{
    QTest::addColumn<int>("filter");
    QTest::newRow("xlsx") << 0;
    QTest::newRow("csv") << 3;
}

void TestRecordExport::failureLeavesNoFileAndSaysWhere()
{
    QFETCH(int, filter);
    QTemporaryDir out;
    // A folder already holds the chosen name, so the finished file cannot take it.
    const QString path = out.filePath("taken");
    QVERIFY(QDir(out.path()).mkdir("taken"));
    QString error;
    QCOMPARE(RecordExport::write(m_both, path, RecordExport::filters()[filter], &error),
             RecordExport::Result::Failed);
    QCOMPARE(error, QStringLiteral("Error saving \"%1\"").arg(QDir::toNativeSeparators(path)));
    QVERIFY(filesIn(out.path()).isEmpty());
}

void TestRecordExport::cancelLeavesOlderFileAlone()
{
    for (int filter : {0, 1}) {
        QTemporaryDir out;
        const QString path = out.filePath("older");
        QFile older(path);
        QVERIFY(older.open(QIODevice::WriteOnly));
        older.write("keep me");
        older.close();
        QList<int> seen;
        QString error;
        const RecordExport::Result result = RecordExport::write(
            m_both, path, RecordExport::filters()[filter], &error, [&seen](int done, int) {
                seen << done;
                return done < 1;
            });
        QCOMPARE(result, RecordExport::Result::Cancelled);
        QCOMPARE(seen, (QList<int>{0, 1}));
        QVERIFY(error.isEmpty());
        QCOMPARE(RecordFiles::readAll(path), QByteArray("keep me"));
        QCOMPARE(filesIn(out.path()), QStringList{"older"});
    }
}

void TestRecordExport::dialogSuggestionsAndStoredChoice()
{
    QCOMPARE(RecordExport::filterString(),
             QStringLiteral("Essential data (*.xlsx);;Essential data (*.csv);;"
                            "Full data (*.xlsx);;Full data (*.csv)"));
    QCOMPARE(RecordExport::suggestedFileName({m_both.first()}), kFirstName);
    QCOMPARE(RecordExport::suggestedFileName(m_both), kFirstName + "-" + kSecondName);

    CorvidaSettings settings;
    QCOMPARE(RecordExport::startFolder(&settings, "/default"), QStringLiteral("/default"));
    QCOMPARE(RecordExport::preselectedFilter(&settings), RecordExport::filters().first());
    QTemporaryDir out;
    RecordExport::storeChoice(&settings, out.filePath("x.csv"), RecordExport::filters()[3]);
    QCOMPARE(RecordExport::startFolder(&settings, "/default"), QDir(out.path()).absolutePath());
    QCOMPARE(RecordExport::preselectedFilter(&settings), RecordExport::filters()[3]);

    settings.setExportBehavior(CorvidaSettings::ExportBehaviorOption::OnExport_OpenFolder);
    QCOMPARE(RecordExport::afterExport(&settings), RecordExport::AfterExport::ShowInFolder);
    QCOMPARE(RecordExport::afterExport(7), RecordExport::AfterExport::Nothing);
}

QTEST_GUILESS_MAIN(TestRecordExport)
#include "tst_recordexport.moc"
