#include "storage/EDFHeaderCheck.h"
#include "storage/EDFReader.h"
#include "support/EDFRawFile.h"
#include "support/RecordFiles.h"
#include "support/StandardRecording.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

// The list decides from the header alone whether a recording can be opened. The reader (the
// library behind it) is the judge here: every damaged file below is opened by it, and the
// header check must come to the same verdict.
namespace {
void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

// The sweep writes thousands of files; it runs in memory where there is a memory file system.
QString scratchTemplate()
{
    const QString shm = QStringLiteral("/dev/shm");
    return (QFileInfo(shm).isDir() && QFileInfo(shm).isWritable() ? shm : QDir::tempPath()) +
           QStringLiteral("/tst_edfheadercheck-XXXXXX");
}

bool readerOpens(const QString &path)
{
    EDFReader reader(path);
    return reader.open();
}
} // namespace

class TestEDFHeaderCheck : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const char *name : {"sound.edf", "sound.bdf"}) {
            const QString path = m_dir.filePath(QLatin1String(name));
            QVERIFY(writeStandardRecording(path));
            QVERIFY(readerOpens(path));
            QVERIFY(EDFHeaderCheck::ofFile(path).isReadable());
        }
    }

    // Every byte of the header replaced by a few telling characters, one at a time: thousands of
    // damaged headers, each judged by the reader and by the check.
    void agreesWithTheReaderOnEveryHeaderByte_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("EDF+") << QStringLiteral("sound.edf");
        QTest::newRow("BDF+") << QStringLiteral("sound.bdf");
    }
    void agreesWithTheReaderOnEveryHeaderByte()
    {
        QFETCH(QString, name);
        const QByteArray sound = RecordFiles::readAll(m_dir.filePath(name));
        const int headerBytes = EDFRawFile(m_dir.filePath(name)).headerBytes();
        QStringList disagreements;
        int refused = 0;
        const QtMessageHandler previous = qInstallMessageHandler(quiet);
        for (int at = 0; at < headerBytes; ++at) {
            for (char c : {' ', '0', '9', 'X', '-', '.', '+', 'e', '\x01'}) {
                if (sound[at] == c)
                    continue;
                QByteArray bytes = sound;
                bytes[at] = c;
                // A new file each time: a disk file system may flush a file cut to nothing and
                // written again, which made this sweep take minutes.
                const QString path = m_dir.filePath(QStringLiteral("mutant-%1-%2.%3")
                                                        .arg(at)
                                                        .arg(int(uchar(c)))
                                                        .arg(name.right(3)));
                if (!RecordFiles::writeAll(path, bytes))
                    break;
                const bool opens = readerOpens(path);
                const EDFHeaderCheck check = EDFHeaderCheck::ofFile(path);
                QFile::remove(path);
                refused += opens ? 0 : 1;
                if (opens != check.isReadable() && disagreements.size() < 20)
                    disagreements << QStringLiteral("byte %1 = '%2': reader %3, check %4 (%5)")
                                         .arg(at)
                                         .arg(QLatin1Char(c))
                                         .arg(opens ? "opens" : "refuses")
                                         .arg(check.isReadable() ? "passes" : "fails")
                                         .arg(check.detail());
            }
        }
        qInstallMessageHandler(previous);
        QVERIFY2(disagreements.isEmpty(), qPrintable(disagreements.join(QLatin1Char('\n'))));
        // The sweep must really have produced both kinds of file.
        QVERIFY2(refused > 1000, qPrintable(QString::number(refused)));
    }

    // What a failed save or a copy gone wrong leaves: the data cut, padded, or a record count
    // that does not match the data.
    void dataSizeMustMatchTheHeader_data()
    {
        QTest::addColumn<int>("cut");          // bytes taken off the end (negative: added)
        QTest::addColumn<QByteArray>("count"); // the record count field, empty to keep it
        QTest::addColumn<int>("problem");
        QTest::newRow("sound") << 0 << QByteArray() << int(EDFHeaderCheck::None);
        QTest::newRow("last byte missing") << 1 << QByteArray() << int(EDFHeaderCheck::CutOff);
        QTest::newRow("cut inside the second record")
            << 1500 << QByteArray() << int(EDFHeaderCheck::CutOff);
        QTest::newRow("no data at all") << -1 << QByteArray() << int(EDFHeaderCheck::CutOff);
        QTest::newRow("one byte too many") << -2 << QByteArray() << int(EDFHeaderCheck::TooLong);
        QTest::newRow("count one too high")
            << 0 << QByteArray("5       ") << int(EDFHeaderCheck::CutOff);
        QTest::newRow("count one too low")
            << 0 << QByteArray("3       ") << int(EDFHeaderCheck::TooLong);
        QTest::newRow("count unknown (-1)")
            << 0 << QByteArray("-1      ") << int(EDFHeaderCheck::NoRecords);
        QTest::newRow("count zero")
            << 0 << QByteArray("0       ") << int(EDFHeaderCheck::NoRecords);
    }
    void dataSizeMustMatchTheHeader()
    {
        QFETCH(int, cut);
        QFETCH(QByteArray, count);
        QFETCH(int, problem);
        const QString soundPath = m_dir.filePath(QStringLiteral("sound.edf"));
        QByteArray bytes = RecordFiles::readAll(soundPath);
        const int headerBytes = EDFRawFile(soundPath).headerBytes();
        if (cut == -1)
            bytes.truncate(headerBytes);
        else if (cut == -2)
            bytes.append('\0');
        else
            bytes.chop(cut);
        if (!count.isEmpty())
            bytes.replace(236, 8, count);
        const QString path = m_dir.filePath(QStringLiteral("sized.edf"));
        QVERIFY(RecordFiles::writeAll(path, bytes));

        const EDFHeaderCheck check = EDFHeaderCheck::ofFile(path);
        QCOMPARE(int(check.problem()), problem);
        QCOMPARE(readerOpens(path), problem == EDFHeaderCheck::None);
    }

private:
    QTemporaryDir m_dir{scratchTemplate()};
};

QTEST_GUILESS_MAIN(TestEDFHeaderCheck)
#include "tst_edfheadercheck.moc"
