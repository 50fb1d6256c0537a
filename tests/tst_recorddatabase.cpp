#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"
#include "support/RecordFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

QDateTime at(int minute)
{
    return QDateTime(QDate(2026, 11, 21), QTime(10, minute, 0));
}
} // namespace

class TestRecordDatabase : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void importNamesAndNotes_data();
    void importNamesAndNotes();
    void importOfSeveralFilesJoinsNotes();
    void damagedFilesStayListedAndMarked();
    void reloadKeepsRecordObjectsAndDropsRemovedOnes();
    void sortByColumn_data();
    void sortByColumn();
    void sortIsStoredAndSurvivesReload();
    void removeMovesBothFilesToTrash();
    void recalculateLeavesUnreadableRecordAlone();
    void cancelledReloadKeepsTheList();

private:
    QTemporaryDir m_sources;
    QString m_recording; // a real recording with its ".exp" beside it
    QString m_bare;      // the same recording without properties
};

void TestRecordDatabase::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_sources.isValid());
    m_recording = RecordFiles::write(m_sources.path(), {at(0), QStringLiteral("rat 1")});
    QVERIFY(!m_recording.isEmpty());
    QDir(m_sources.path()).mkpath(QStringLiteral("bare"));
    m_bare = m_sources.filePath(QStringLiteral("bare/b.edf"));
    QVERIFY(QFile::copy(m_recording, m_bare));
}

void TestRecordDatabase::importNamesAndNotes_data()
{
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QString>("chosenName");
    QTest::addColumn<bool>("withExp");
    QTest::addColumn<QString>("expected");

    QTest::newRow("free name") << QStringList() << "a.edf" << true << "a.edf";
    QTest::newRow("second time") << QStringList{"a.edf", "a.exp"} << "a.edf" << true << "a (2).edf";
    QTest::newRow("third time") << QStringList{"a.edf", "a.exp", "a (2).edf", "a (2).exp"}
                                << "a.edf" << true << "a (3).edf";
    QTest::newRow("upper-case name and suffix")
        << QStringList{"a.edf"} << "A.EDF" << true << "A (2).edf";
    QTest::newRow("numbered name taken in another case")
        << QStringList{"a.edf", "A (2).EDF"} << "a.edf" << true << "a (3).edf";
    QTest::newRow("lone properties hold their name")
        << QStringList{"a.exp"} << "a.edf" << true << "a (2).edf";
    QTest::newRow("bare recording") << QStringList{"a.edf"} << "a.edf" << false << "a (2).edf";
}

void TestRecordDatabase::importNamesAndNotes()
{
    QFETCH(QStringList, existing);
    QFETCH(QString, chosenName);
    QFETCH(bool, withExp);
    QFETCH(QString, expected);

    QTemporaryDir records;
    QTemporaryDir source;
    for (const QString &name : existing)
        QVERIFY(writeBytes(records.filePath(name), "someone else's"));
    const QString chosen = source.filePath(chosenName);
    QVERIFY(QFile::copy(m_recording, chosen));
    const QString chosenBase = chosenName.left(chosenName.size() - 4);
    QString chosenExp = m_recording;
    chosenExp.replace(QStringLiteral(".edf"), QStringLiteral(".exp"));
    // The properties beside the chosen file are spelt in the chosen file's case.
    const QString expSuffix = chosenName.endsWith(".EDF") ? ".EXP" : ".exp";
    if (withExp)
        QVERIFY(QFile::copy(chosenExp, source.filePath(chosenBase + expSuffix)));

    CorvidaSettings settings;
    RecordDatabase db(records.path(), &settings);
    const RecordDatabase::ImportResult result = db.importRecords({chosen});

    const QString target = records.filePath(expected);
    QCOMPARE(result.imported, QStringList{target});
    QVERIFY(result.failed.isEmpty());
    QCOMPARE(RecordFiles::readAll(target), RecordFiles::readAll(m_recording));
    const QString targetExp = target.left(target.size() - 4) + ".exp";
    QCOMPARE(QFile::exists(targetExp), withExp);
    if (withExp)
        QCOMPARE(RecordFiles::readAll(targetExp), RecordFiles::readAll(chosenExp));
    for (const QString &name : existing)
        QCOMPARE(RecordFiles::readAll(records.filePath(name)), QByteArray("someone else's"));

    if (expected == chosenName) {
        QVERIFY(result.notes.isEmpty());
    } else {
        QCOMPARE(result.notesText(),
                 QStringLiteral("File \"%1\" \nwas imported as \"%2\"").arg(chosenName, expected));
    }
    const int row = db.rowOf(target);
    QVERIFY(row >= 0);
    QCOMPARE(db.damage(row), RecordDatabase::Damage::None);
    QCOMPARE(db.record(row)->getRodent(), withExp ? QStringLiteral("rat 1") : QString());
    QCOMPARE(settings.getLastImportFolder(), QDir(source.path()).absolutePath());
}

void TestRecordDatabase::importOfSeveralFilesJoinsNotes()
{
    QTemporaryDir records;
    RecordDatabase db(records.path());
    QVERIFY(db.importRecords({m_recording, m_bare}).notes.isEmpty());
    const RecordDatabase::ImportResult again =
        db.importRecords({m_recording, m_bare, m_recording, m_sources.filePath("missing.edf")});
    const QString name = QFileInfo(m_recording).fileName();
    const QString base = QFileInfo(m_recording).completeBaseName();
    QCOMPARE(again.notesText(), QStringLiteral("File \"%1\" \nwas imported as \"%2 (2).edf\"\n\n"
                                               "File \"b.edf\" \nwas imported as \"b (2).edf\"\n\n"
                                               "File \"%1\" \nwas imported as \"%2 (3).edf\"")
                                    .arg(name, base));
    QCOMPARE(again.failed, QStringList{m_sources.filePath("missing.edf")});
    QCOMPARE(db.count(), 5);
}

void TestRecordDatabase::damagedFilesStayListedAndMarked()
{
    QTemporaryDir records;
    const QString good = RecordFiles::write(records.path(), {at(1), QStringLiteral("good")});
    const QString brokenProps = RecordFiles::write(records.path(), {at(2), QStringLiteral("x")});
    QVERIFY(
        writeBytes(brokenProps.left(brokenProps.size() - 4) + ".exp", "<CorvidaExperiment><Ro"));
    QVERIFY(QFile::copy(m_recording, records.filePath("bare.edf")));
    QVERIFY(writeBytes(records.filePath("empty.edf"), QByteArray()));
    QVERIFY(writeBytes(records.filePath("text.edf"), QByteArray(300, 'x')));
    // A cut-off recording: the fixed header promises two signal headers that are not there.
    QByteArray cut = RecordFiles::readAll(good).left(256 + 100);
    QVERIFY(writeBytes(records.filePath("cut.edf"), cut));

    RecordDatabase db(records.path());
    QVERIFY(db.reload());
    QCOMPARE(db.count(), 6);
    const auto damageOf = [&db, &records](const QString &name) {
        return db.damage(db.rowOf(records.filePath(name)));
    };
    QCOMPARE(damageOf(QFileInfo(good).fileName()), RecordDatabase::Damage::None);
    QCOMPARE(damageOf("bare.edf"), RecordDatabase::Damage::None);
    QCOMPARE(damageOf(QFileInfo(brokenProps).fileName()), RecordDatabase::Damage::Properties);
    QCOMPARE(damageOf("empty.edf"), RecordDatabase::Damage::Recording);
    QCOMPARE(damageOf("text.edf"), RecordDatabase::Damage::Recording);
    QCOMPARE(damageOf("cut.edf"), RecordDatabase::Damage::Recording);
    QVERIFY(!db.damageText(db.rowOf(records.filePath("cut.edf"))).isEmpty());
    QCOMPARE(db.text(db.rowOf(good), RecordDatabase::RodentColumn), QStringLiteral("good"));
}

void TestRecordDatabase::reloadKeepsRecordObjectsAndDropsRemovedOnes()
{
    QTemporaryDir records;
    const QString first = RecordFiles::write(records.path(), {at(1)});
    const QString second = RecordFiles::write(records.path(), {at(2)});
    RecordDatabase db(records.path());
    QVERIFY(db.reload());
    QPointer<CorvidaExperiment> kept = db.record(db.rowOf(first));
    QPointer<CorvidaExperiment> dropped = db.record(db.rowOf(second));
    kept->setRodent(QStringLiteral("edited"));

    QVERIFY(QFile::remove(second));
    QVERIFY(db.reload());
    QCOMPARE(db.count(), 1);
    QCOMPARE(db.record(0), kept.data());
    QVERIFY(dropped.isNull());
    QCOMPARE(db.text(0, RecordDatabase::RodentColumn), QStringLiteral("edited"));
}

void TestRecordDatabase::sortByColumn_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("order");
    QTest::addColumn<QStringList>("rodents");

    // Records: minute 1 "rat 10" 95/60, minute 2 "Rat 9" 120/80, minute 3 "alpha" 120/70.
    QTest::newRow("title descending")
        << int(RecordDatabase::TitleColumn) << int(Qt::DescendingOrder)
        << QStringList{"alpha", "Rat 9", "rat 10"};
    QTest::newRow("rodent ascending, numbers as people read them")
        << int(RecordDatabase::RodentColumn) << int(Qt::AscendingOrder)
        << QStringList{"alpha", "Rat 9", "rat 10"};
    QTest::newRow("pressure descending by value, not by text")
        << int(RecordDatabase::PressureColumn) << int(Qt::DescendingOrder)
        << QStringList{"Rat 9", "alpha", "rat 10"};
}

void TestRecordDatabase::sortByColumn()
{
    QFETCH(int, column);
    QFETCH(int, order);
    QFETCH(QStringList, rodents);
    QTemporaryDir records;
    RecordFiles::write(records.path(), {at(1), QStringLiteral("rat 10"), {}, 95, 60});
    RecordFiles::write(records.path(), {at(2), QStringLiteral("Rat 9"), {}, 120, 80});
    RecordFiles::write(records.path(), {at(3), QStringLiteral("alpha"), {}, 120, 70});
    RecordDatabase db(records.path());
    QVERIFY(db.reload());
    db.sort(column, Qt::SortOrder(order));
    QStringList seen;
    for (int row = 0; row < db.count(); ++row)
        seen << db.text(row, RecordDatabase::RodentColumn);
    QCOMPARE(seen, rodents);
}

void TestRecordDatabase::sortIsStoredAndSurvivesReload()
{
    QTemporaryDir records;
    RecordFiles::write(records.path(), {at(1), QStringLiteral("b")});
    RecordFiles::write(records.path(), {at(2), QStringLiteral("a")});
    const QString settingsPath = records.filePath("Settings.xml");
    {
        CorvidaSettings settings(settingsPath);
        RecordDatabase(records.path(), &settings)
            .sort(RecordDatabase::RodentColumn, Qt::AscendingOrder);
    }
    CorvidaSettings reread(settingsPath);
    RecordDatabase db(records.path(), &reread);
    QVERIFY(db.reload());
    QVERIFY(db.reload());
    QCOMPARE(db.sortOrder(), Qt::AscendingOrder);
    QCOMPARE(db.text(0, RecordDatabase::RodentColumn), QStringLiteral("a"));
}

void TestRecordDatabase::removeMovesBothFilesToTrash()
{
    // The trash lives in the data folder of a home of our own, on the same file system as the
    // records, so the user's real trash is never touched. (In test mode the data folder is
    // ".qttest/share" in the home, and Qt only makes the trash inside a data folder that exists.)
    QTemporaryDir root;
    QDir(root.path()).mkpath(QStringLiteral("home/.qttest/share"));
    QDir(root.path()).mkpath(QStringLiteral("data"));
    QDir(root.path()).mkpath(QStringLiteral("Records"));
    const QByteArray oldHome = qgetenv("HOME");
    const QByteArray oldData = qgetenv("XDG_DATA_HOME");
    qputenv("HOME", root.filePath("home").toLocal8Bit());
    qputenv("XDG_DATA_HOME", root.filePath("data").toLocal8Bit());
    const QString folder = root.filePath("Records");
    const QString full = RecordFiles::write(folder, {at(1)});
    const QString kept = RecordFiles::write(folder, {at(2)});
    QVERIFY(QFile::copy(m_recording, folder + "/bare.edf"));

    RecordDatabase db(folder);
    QVERIFY(db.reload());
    QString error;
    const bool removed = db.removeRecords({full, folder + "/bare.exp"}, &error);
    // A record of another folder is none of this list's business.
    const bool foreignRemoved = db.removeRecords({m_recording});
    qputenv("HOME", oldHome);
    qputenv("XDG_DATA_HOME", oldData);
    QVERIFY2(removed, qPrintable(error));
    QVERIFY(!foreignRemoved);
    QVERIFY(QFile::exists(m_recording));
    QCOMPARE(db.count(), 1);
    QCOMPARE(db.edfPath(0), kept);

    QStringList trashed;
    QDirIterator it(root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (path.contains(QLatin1String("Trash/files/")))
            trashed << QFileInfo(path).fileName();
    }
    trashed.sort();

    const QString base = QFileInfo(full).completeBaseName();
    QCOMPARE(trashed, (QStringList{base + ".edf", base + ".exp", "bare.edf"}));
    QCOMPARE(filesIn(folder).size(), 2);
}

void TestRecordDatabase::recalculateLeavesUnreadableRecordAlone()
{
    QTemporaryDir records;
    const QString path = RecordFiles::write(records.path(), {at(1), {}, {}, 130, 90});
    QVERIFY(writeBytes(path, QByteArray(256, ' ')));
    RecordDatabase db(records.path());
    QVERIFY(db.reload());
    QStringList errors;
    QVERIFY(!RecordDatabase::recalculate({db.record(0)}, &errors));
    QCOMPARE(errors.size(), 1);
    QVERIFY(errors.first().contains(QFileInfo(path).completeBaseName()));
    const CorvidaExperiment reread(path.left(path.size() - 4) + ".exp");
    QCOMPARE(reread.getSBP(), 130.0);
    QCOMPARE(reread.getDBP(), 90.0);
}

void TestRecordDatabase::cancelledReloadKeepsTheList()
{
    QTemporaryDir records;
    for (int i = 0; i < 3; ++i)
        RecordFiles::write(records.path(), {at(i)});
    RecordDatabase db(records.path());
    QVERIFY(db.reload());
    CorvidaExperiment *first = db.record(0);
    RecordFiles::write(records.path(), {at(9)});
    QList<int> calls;
    QVERIFY(!db.reload([&calls](int done, int total) {
        calls << done << total;
        return done < 2;
    }));
    QCOMPARE(calls, (QList<int>{0, 4, 1, 4, 2, 4}));
    QCOMPARE(db.count(), 3);
    QCOMPARE(db.record(0), first);
}

QTEST_GUILESS_MAIN(TestRecordDatabase)
#include "tst_recorddatabase.moc"
