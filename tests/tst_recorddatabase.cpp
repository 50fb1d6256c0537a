#include "analysis/CorvidaExperiment.h"
#include "storage/EDFReader.h"
#include "storage/RecordDatabase.h"
#include "support/EDFRawFile.h"
#include "support/RecordFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QDateTime at(int minute)
{
    return QDateTime(QDate(2026, 11, 21), QTime(10, minute, 0));
}
} // namespace

class TestRecordDatabase : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_recording = RecordFiles::write(m_sources.path(), {at(0), QStringLiteral("rat 1")});
    }
    void importNamesAndNotes_data()
    {
        QTest::addColumn<QStringList>("existing");
        QTest::addColumn<QString>("chosenName");
        QTest::addColumn<QString>("expected");

        QTest::newRow("third time")
            << QStringList{"a.edf", "a.exp", "a (2).edf", "a (2).exp"} << "a.edf"
            << "a (3).edf";
        QTest::newRow("numbered name taken in another case")
            << QStringList{"a.edf", "A (2).EDF"} << "a.edf"
            << "a (3).edf";
        QTest::newRow("lone properties hold their name") << QStringList{"a.exp"} << "a.edf"
                                                         << "a (2).edf";
    }
    void importNamesAndNotes()
    {
        QFETCH(QStringList, existing);
        QFETCH(QString, chosenName);
        QFETCH(QString, expected);

        QTemporaryDir records, source;
        for (const QString &name : existing)
            QVERIFY(RecordFiles::writeAll(records.filePath(name), "someone else's"));
        const QString chosen = source.filePath(chosenName);
        QVERIFY(QFile::copy(m_recording, chosen));
        const QString chosenExp = m_recording.chopped(4) + ".exp";
        QVERIFY(QFile::copy(chosenExp, chosen.chopped(4) + ".exp"));

        RecordDatabase db(records.path());
        const QString missing = source.filePath("missing.edf");
        const RecordDatabase::ImportResult result = db.importRecords({chosen, missing});

        const QString target = records.filePath(expected);
        QCOMPARE(result.imported, QStringList{target});
        QCOMPARE(result.failed, QStringList{missing});
        QCOMPARE(RecordFiles::readAll(target), RecordFiles::readAll(m_recording));
        QCOMPARE(RecordFiles::readAll(target.chopped(4) + ".exp"), RecordFiles::readAll(chosenExp));
        for (const QString &name : existing)
            QCOMPARE(RecordFiles::readAll(records.filePath(name)), QByteArray("someone else's"));
        QCOMPARE(result.notesText(),
                 QStringLiteral("File \"%1\" \nwas imported as \"%2\"").arg(chosenName, expected));
        QCOMPARE(db.record(db.rowOf(target))->getRodent(), QStringLiteral("rat 1"));
    }
    void damagedFilesStayListedAndMarked()
    {
        QTemporaryDir records;
        const QString good = RecordFiles::write(records.path(), {at(1), QStringLiteral("good")});
        const QString brokenProps =
            RecordFiles::write(records.path(), {at(2), QStringLiteral("x")});
        QVERIFY(RecordFiles::writeAll(brokenProps.chopped(4) + ".exp", "<CorvidaExperiment><Ro"));
        QVERIFY(RecordFiles::writeAll(records.filePath("empty.edf"), QByteArray()));
        // A cut-off recording: the fixed header promises two signal headers that are not there.
        QVERIFY(RecordFiles::writeAll(records.filePath("cut.edf"),
                                      RecordFiles::readAll(good).left(256 + 100)));

        RecordDatabase db(records.path());
        QVERIFY(db.reload());
        QCOMPARE(db.count(), 4);
        const auto damageOf = [&db](const QString &path) { return db.damage(db.rowOf(path)); };
        QCOMPARE(damageOf(good), RecordDatabase::Damage::None);
        QCOMPARE(damageOf(brokenProps), RecordDatabase::Damage::Properties);
        QCOMPARE(damageOf(records.filePath("empty.edf")), RecordDatabase::Damage::Recording);
        QCOMPARE(damageOf(records.filePath("cut.edf")), RecordDatabase::Damage::Recording);
    }
    // Files the reader refuses although their first 256 bytes are fine.
    void listNoLongerShowsDamagedRecordingsAsSound_data()
    {
        // Where the patch goes: a fixed-header offset, or a field of the second signal's header
        // (0 label, 3 physical minimum, 4 physical maximum, 5 digital minimum, 8 samples); a
        // negative offset cuts that many bytes off the end.
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("field");
        QTest::addColumn<QByteArray>("patch");
        QTest::addColumn<int>("damage");
        const int none = int(RecordDatabase::Damage::None);
        const int bad = int(RecordDatabase::Damage::Recording);
        QTest::newRow("sound") << 0 << -1 << QByteArray() << none;
        QTest::newRow("cut inside the data") << -150 << -1 << QByteArray() << bad;
        QTest::newRow("record count one too high") << 236 << -1 << QByteArray("3       ") << bad;
        QTest::newRow("physical maximum not a number") << 0 << 4 << QByteArray("abc     ") << bad;
        QTest::newRow("digital minimum above the maximum")
            << 0 << 5 << QByteArray("32767   ") << bad;
        QTest::newRow("no samples") << 0 << 8 << QByteArray("0       ") << bad;
        QTest::newRow("another label is fine") << 0 << 0 << QByteArray("Cuff            ") << none;
    }
    void listNoLongerShowsDamagedRecordingsAsSound()
    {
        QFETCH(int, offset);
        QFETCH(int, field);
        QFETCH(QByteArray, patch);
        QFETCH(int, damage);
        QTemporaryDir records;
        const QString path = RecordFiles::write(records.path(), {at(1), QStringLiteral("x")});
        QByteArray bytes = RecordFiles::readAll(path);
        QCOMPARE(bytes.mid(236, 8), QByteArray("2       ")); // two seconds of one-second records
        if (field >= 0) {
            // Each field is stored for all signals before the next field starts.
            const int widths[] = {16, 80, 8, 8, 8, 8, 8, 80, 8};
            const int n = EDFRawFile(path).signalCount();
            offset = 256 + widths[field] * 1;
            for (int f = 0; f < field; ++f)
                offset += widths[f] * n;
        }
        if (offset < 0)
            bytes.chop(-offset);
        else
            bytes.replace(offset, patch.size(), patch);
        QVERIFY(RecordFiles::writeAll(path, bytes));

        RecordDatabase db(records.path());
        QVERIFY(db.reload());
        QCOMPARE(int(db.damage(db.rowOf(path))), damage);
        // The reader agrees: what the list calls sound opens, the rest does not.
        EDFReader reader(path);
        QCOMPARE(reader.open(), damage == int(RecordDatabase::Damage::None));
    }

    // A crash inside a save leaves "<name>.edf.part" (and maybe "<name>.exp").
    void interruptedSaveIsListedAndRecoveredUnderAFreeName_data()
    {
        QTest::addColumn<bool>("nameTaken");
        QTest::addColumn<QString>("recoveredName");
        QTest::addColumn<QString>("rodent"); // of the recovered record
        QTest::newRow("its own name, with its properties") << false << "crash.edf"
                                                           << "rat 5";
        QTest::newRow("name taken: a bare record beside") << true << "crash (2).edf"
                                                          << "";
    }
    void interruptedSaveIsListedAndRecoveredUnderAFreeName()
    {
        QFETCH(bool, nameTaken);
        QFETCH(QString, recoveredName);
        QTemporaryDir records;
        const QString folder = records.path();
        const QString part = folder + QStringLiteral("/crash.edf.part");
        QVERIFY(QFile::copy(m_recording, part));
        QByteArray takenBytes;
        if (nameTaken) {
            const QString taken = RecordFiles::write(folder, {at(7), QStringLiteral("rat 7")});
            QVERIFY(QFile::rename(taken, folder + QStringLiteral("/CRASH.edf")));
            QVERIFY(
                QFile::rename(taken.chopped(4) + ".exp", folder + QStringLiteral("/crash.exp")));
            takenBytes = RecordFiles::readAll(folder + QStringLiteral("/CRASH.edf"));
        } else {
            QVERIFY(RecordFiles::writeAll(
                folder + QStringLiteral("/crash.exp"),
                "<CorvidaExperiment><Rodent>rat 5</Rodent></CorvidaExperiment>"));
        }

        RecordDatabase db(folder);
        QVERIFY(db.reload());
        const int row = db.rowOf(part);
        QVERIFY(row >= 0);
        QVERIFY(db.isUnfinished(row));
        QCOMPARE(db.damage(row), RecordDatabase::Damage::Unfinished);
        QCOMPARE(db.text(row, RecordDatabase::TitleColumn), QStringLiteral("crash.edf.part"));
        QCOMPARE(db.text(row, RecordDatabase::RodentColumn), QString());

        QString recovered;
        QString error;
        QVERIFY2(db.recoverUnfinished(part, &recovered, &error), qPrintable(error));
        QCOMPARE(recovered, folder + QLatin1Char('/') + recoveredName);
        QCOMPARE(RecordFiles::readAll(recovered), RecordFiles::readAll(m_recording));
        QVERIFY(!QFile::exists(part));
        if (nameTaken)
            QCOMPARE(RecordFiles::readAll(folder + QStringLiteral("/CRASH.edf")), takenBytes);
        const int now = db.rowOf(recovered);
        QVERIFY(now >= 0);
        QCOMPARE(db.damage(now), RecordDatabase::Damage::None);
        QTEST(db.text(now, RecordDatabase::RodentColumn), "rodent");
        QCOMPARE(db.count(), nameTaken ? 2 : 1);
    }
    void incompleteInterruptedSaveIsListedButNotRecovered()
    {
        QTemporaryDir records;
        const QString part = records.filePath(QStringLiteral("crash.edf.part"));
        const QByteArray cut = RecordFiles::readAll(m_recording).chopped(7);
        QVERIFY(RecordFiles::writeAll(part, cut));
        RecordDatabase db(records.path());
        QVERIFY(db.reload());
        QCOMPARE(db.damage(db.rowOf(part)), RecordDatabase::Damage::UnfinishedIncomplete);
        QString error;
        QVERIFY(!db.recoverUnfinished(part, nullptr, &error));
        QCOMPARE(error, RecordDatabase::damageText(RecordDatabase::Damage::UnfinishedIncomplete));
        QCOMPARE(RecordFiles::readAll(part), cut);
        QCOMPARE(QDir(records.path()).entryList(QDir::Files), QStringList{"crash.edf.part"});
    }
    void sortByColumn_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("order");
        QTest::addColumn<QStringList>("rodents");

        // Records: minute 1 "rat 10" 95/60, minute 2 "Rat 9" 120/80, minute 3 "alpha" 120/70.
        QTest::newRow("rodent ascending, numbers as people read them")
            << int(RecordDatabase::RodentColumn) << int(Qt::AscendingOrder)
            << QStringList{"alpha", "Rat 9", "rat 10"};
        QTest::newRow("pressure descending by value, not by text")
            << int(RecordDatabase::PressureColumn) << int(Qt::DescendingOrder)
            << QStringList{"Rat 9", "alpha", "rat 10"};
    }
    void sortByColumn()
    {
        QFETCH(int, column);
        QFETCH(int, order);
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
        QTEST(seen, "rodents");
    }
    void removeMovesBothFilesToTrash()
    {
        // The trash lives in the data folder of a home of our own, on the same file system as the
        // records, so the user's real trash is never touched. (In test mode the data folder is
        // ".qttest/share" in the home, and Qt only makes the trash inside a data folder that
        // exists.)
        QTemporaryDir root;
        for (const char *dir : {"home/.qttest/share", "data", "Records"})
            QDir(root.path()).mkpath(QString::fromLatin1(dir));
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
        while (it.hasNext())
            if (const QString path = it.next(); path.contains(QLatin1String("Trash/files/")))
                trashed << QFileInfo(path).fileName();
        trashed.sort();
        const QString base = QFileInfo(full).completeBaseName();
        QCOMPARE(trashed, (QStringList{base + ".edf", base + ".exp", "bare.edf"}));
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden).size(), 2);
    }

private:
    QTemporaryDir m_sources;
    QString m_recording; // a real recording with its ".exp" beside it
};

QTEST_GUILESS_MAIN(TestRecordDatabase)
#include "tst_recorddatabase.moc"
