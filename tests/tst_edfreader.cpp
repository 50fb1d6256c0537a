#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"
#include "support/EDFRawFile.h"
#include "toolkit/LogCapture.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>
#include <edflib.h>

namespace {
const QString kFormatError = QStringLiteral(
    "EDFReader: the file is not EDF(+) or BDF(+) compliant\r\n(it contains format errors)");

PatientInfo subject()
{
    PatientInfo p;
    p.patientName = QStringLiteral("Ivan Petrov");
    p.patientCode = QStringLiteral("R17");
    p.gender = 1;
    p.birthYear = 2024;
    p.birthMonth = 2;
    p.birthDay = 29;
    p.patientAdditional = QStringLiteral("left tail");
    p.adminCode = QStringLiteral("LAB3");
    p.equipment = QStringLiteral("Unit7");
    p.recordingAdditional = QStringLiteral("second session");
    p.startYear = 2026;
    p.startMonth = 11;
    p.startDay = 21;
    p.startHour = 14;
    p.startMinute = 5;
    p.startSecond = 9;
    return p;
}

// Three signals, 100 samples per second, 3.5 s: signal s holds s*10 + i/10.
void writeStandard(const QString &path)
{
    EDFWriter writer(path, QStringList{"Pressure", "Pulse", "IR"}, 100,
                     {{QStringLiteral("HP"), 0.5f}, {QStringLiteral("LP"), 40.0f}},
                     {1000.0, 1000.0, 1000.0});
    writer.setPatientInfo(subject());
    QList<float> data;
    for (int s = 0; s < 3; ++s)
        for (int i = 0; i < 350; ++i)
            data.append(float(s * 10 + i / 10.0));
    writer.writeData(350, data.constData());
    writer.addAnnotation(QStringLiteral("SBP"), 1500, -1);
    writer.close(true);
}

// A plain EDF file (no "+" in the reserved field) of one signal and one record, laid out by hand:
// the library writes only EDF+ and BDF+.
bool writePlainEdf(const QString &path)
{
    const auto field = [](const char *text, int width) {
        return QByteArray(text).leftJustified(width, ' ', true);
    };
    QByteArray bytes = field("0", 8) + field("patient", 80) + field("recording", 80) +
                       field("21.11.26", 8) + field("14.05.09", 8) + field("512", 8) +
                       field("", 44) + field("1", 8) + field("1", 8) + field("1", 4);
    bytes += field("Pressure", 16) + field("", 80) + field("mmHg", 8) + field("-100", 8) +
             field("100", 8) + field("-32768", 8) + field("32767", 8) + field("", 80) +
             field("10", 8) + field("", 32);
    bytes += QByteArray(20, '\0');
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QSet<QString> repairedCopies()
{
    const QStringList names =
        QDir(QDir::tempPath()).entryList({QStringLiteral("corvida-*.edf")}, QDir::Files);
    return QSet<QString>(names.cbegin(), names.cend());
}
} // namespace

class TestEDFReader : public QObject
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(m_dir.isValid()); }

    void roundTrip_data();
    void roundTrip();
    void identificationAndDescriptions();
    void prefilterMap_data();
    void prefilterMap();
    void headerRelaxations_data();
    void headerRelaxations();
    void quorvexiaSubjectIsCp1251();
    void refusedFiles_data();
    void refusedFiles();
    void secondOpenIsRefused();
    void tooManyOpenFilesIsOneLine();
    void readsOnClosedReaderOrMissingChannel();
    void collidingAnnotationOnsetsAllSurvive();

private:
    QString file(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

void TestEDFReader::roundTrip_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("range");
    QTest::addColumn<double>("stepSize"); // one digital step of the range on disk
    QTest::newRow("edf, small range") << "a.edf" << 10.0 << 20.0 / 65535;
    QTest::newRow("bdf, widened range") << "a.bdf" << 10.0 << 131071.0 / 65535;
    QTest::newRow("bdf, wider than the minimum") << "a.BDF" << 200000.0 << 400000.0 / 65535;
}

void TestEDFReader::roundTrip()
{
    QFETCH(QString, name);
    QFETCH(double, range);
    QFETCH(double, stepSize);
    const int rate = 250;
    const int samples = rate * 2 + 77;
    // A sine within the range and a ramp that runs out of it on both sides.
    QList<float> sine, ramp;
    for (int i = 0; i < samples; ++i) {
        sine.append(float(0.9 * range * std::sin(i * 0.05)));
        ramp.append(float(-2.0 * range + 4.0 * range * i / samples));
    }
    {
        EDFWriter writer(file(name), QStringList{"Sine", "Ramp"}, rate, {}, {range, range});
        for (int at = 0; at < samples; at += 50) {
            const int n = qMin(50, samples - at);
            writer.writeData(QList<QList<float>>{sine.mid(at, n), ramp.mid(at, n)});
        }
        QVERIFY(writer.close(true));
    }
    EDFReader reader(file(name));
    QVERIFY(reader.open());
    QCOMPARE(reader.getChannelNames(), QStringList({"Sine", "Ramp"}));
    QCOMPARE(reader.getSamplingRate(), float(rate));
    QCOMPARE(reader.samplesInFile(), qint64(3 * rate)); // 2.3 s padded to 3 records
    QCOMPARE(reader.durationSeconds(), 3.0);

    const QList<double> back = reader.getChannelData(0, 0, samples);
    QVector<double> both(2 * samples);
    QCOMPARE(reader.getBuffData(0, samples, both.data()), 0);
    const double widest =
        name.endsWith(QLatin1String("bdf"), Qt::CaseInsensitive) ? qMax(range, 65535.0) : range;
    for (int i = 0; i < samples; ++i) {
        QVERIFY2(qAbs(back.at(i) - sine.at(i)) <= stepSize, qPrintable(QString::number(i)));
        QCOMPARE(both.at(i), back.at(i));
        const double clamped = qBound(-widest, double(ramp.at(i)), widest);
        QVERIFY2(qAbs(both.at(samples + i) - clamped) <= stepSize + 1e-9 * widest,
                 qPrintable(QString::number(i)));
    }
    // The padding of the last record reads back as zeros.
    const QList<float> tail = reader.getChannelDataFloat(0, samples, 3 * rate - samples);
    for (float v : tail)
        QVERIFY(qAbs(v) <= stepSize);
}

void TestEDFReader::identificationAndDescriptions()
{
    writeStandard(file("id.edf"));
    EDFReader reader(file("id.edf"));
    LogCapture log;
    QVERIFY(reader.open());
    QCOMPARE(log.lines(), QStringList());
    const PatientInfo p = reader.patientInfo();
    QCOMPARE(p.patientName, QStringLiteral("Ivan Petrov"));
    QCOMPARE(p.gender, 1);
    QCOMPARE(QDate(p.birthYear, p.birthMonth, p.birthDay), QDate(2024, 2, 29));
    QCOMPARE(p.equipment, QStringLiteral("Unit7"));
    QCOMPARE(p.patientCode, QStringLiteral("R17"));
    QCOMPARE(p.adminCode, QStringLiteral("LAB3"));
    QVERIFY(p.patientAdditional.startsWith(QStringLiteral("left")));
    QVERIFY(p.recordingAdditional.startsWith(QStringLiteral("second")));
    QCOMPARE(reader.startDateTime(),
             QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::LocalTime));
    QCOMPARE(reader.physicalDimension(), QStringLiteral("uV"));
    QCOMPARE(reader.infoShort(), QStringLiteral("0:04, 3ch, 100.00Hz"));
    const QString full = reader.infoFull();
    QVERIFY2(full.contains(QStringLiteral("Subject:Ivan Petrov")), qPrintable(full));
    QVERIFY(full.contains(QStringLiteral("Start time:2026/11/21 14:05:09")));
    QCOMPARE(reader.getAnnotations().value(1500), QStringLiteral("SBP"));
}

void TestEDFReader::prefilterMap_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<PrefilterMap>("expected");
    QTest::newRow("ours") << QByteArray("HP:0.5Hz LP:40.0Hz ")
                          << PrefilterMap{{QStringLiteral("HP"), 0.5f},
                                          {QStringLiteral("LP"), 40.0f}};
    QTest::newRow("none") << QByteArray("0") << PrefilterMap{};
    QTest::newRow("long names cut to two letters")
        << QByteArray("HPF:0.1Hz  NOTCH:50Hz") << PrefilterMap{{"HP", 0.1f}, {"NO", 50.0f}};
}

void TestEDFReader::prefilterMap()
{
    QFETCH(QByteArray, field);
    QFETCH(PrefilterMap, expected);
    writeStandard(file("pf.edf"));
    const qint64 at = 256 + (16 + 80 + 8 * 5) * EDFRawFile(file("pf.edf")).signalCount();
    QVERIFY(EDFRawFile::patch(file("pf.edf"), at, field.leftJustified(80, ' ')));
    EDFReader reader(file("pf.edf"));
    QVERIFY(reader.open());
    QCOMPARE(reader.prefilter(), expected);
}

void TestEDFReader::headerRelaxations_data()
{
    QTest::addColumn<QByteArray>("find"); // where to damage: the first place this text occurs
    QTest::addColumn<QByteArray>("replace");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("subject");
    const QString name = QStringLiteral("Ivan Petrov");
    QTest::newRow("version not printable")
        << QByteArray("0       ") << QByteArray("\x01       ", 8)
        << QStringList{"EDF HEADER ERROR: FILE 2", "EDF HEADER ERROR: FILE 3"} << name;
    // Four bytes of UTF-8 in place of "Ivan": the library sees '_', we decode the original.
    QTest::newRow("8-bit patient name")
        << QByteArray("Ivan") << QString::fromUtf8("Ив").toUtf8()
        << QStringList{"EDF HEADER ERROR: PATIENT NAME"} << QString::fromUtf8("Ив Petrov");
    QTest::newRow("control byte in recording")
        << QByteArray("Unit7") << QByteArray("Uni\tX") << QStringList{"EDF HEADER ERROR: RECORDING"}
        << name;
    QTest::newRow("start date byte") << QByteArray("21.11.26")
                                     << QByteArray("\x7f"
                                                   "1.11.26")
                                     << QStringList{"EDF HEADER ERROR: STARTDATE"} << name;
}

void TestEDFReader::headerRelaxations()
{
    QFETCH(QByteArray, find);
    QFETCH(QByteArray, replace);
    QFETCH(QStringList, lines);
    QFETCH(QString, subject);
    writeStandard(file("h.edf"));
    const int at = int(EDFRawFile(file("h.edf")).fixed(0, 256).indexOf(find));
    QVERIFY(at >= 0);
    QVERIFY(EDFRawFile::patch(file("h.edf"), at, replace));

    const QSet<QString> before = repairedCopies();
    {
        EDFReader reader(file("h.edf"));
        LogCapture log;
        QVERIFY(reader.open());
        QCOMPARE(log.lines(), lines);
        QCOMPARE(reader.patientInfo().patientName, subject);
        QCOMPARE(reader.startDateTime().date(), QDate(2026, 11, 21));
        QVERIFY(qAbs(reader.getChannelData(1, 100, 1).at(0) - 20.0) < 0.05);
        QCOMPARE(reader.getAnnotations().value(1500), QStringLiteral("SBP"));
        reader.close();
        QCOMPARE(repairedCopies() - before, QSet<QString>()); // the copy is gone on close
    }
    // The original is left as it was.
    QCOMPARE(EDFRawFile(file("h.edf")).fixed(at, replace.size()), replace);
}

void TestEDFReader::quorvexiaSubjectIsCp1251()
{
    // A plain EDF file from the sibling product: the whole patient field is a Cyrillic name in
    // code page 1251, and the recording field names the product.
    const QString path = file("q.edf");
    QVERIFY(writePlainEdf(path));
    const QString name = QString::fromUtf8("Крыса Белка №3");
    QTextCodec *cp1251 = QTextCodec::codecForName("CP1251");
    QVERIFY(cp1251);
    QVERIFY(EDFRawFile::patch(path, 8, cp1251->fromUnicode(name).leftJustified(80, ' ')));
    QVERIFY(EDFRawFile::patch(path, 88, QByteArray("Quorvexia 2.4").leftJustified(80, ' ')));
    {
        EDFReader reader(path);
        LogCapture log;
        QVERIFY(reader.open());
        QCOMPARE(log.lines(), QStringList{"EDF HEADER ERROR: PATIENT NAME"});
        QCOMPARE(reader.patientInfo().patientName, name);
        QCOMPARE(reader.patientInfo().gender, -1);
    }
    // Without the product's name the bytes are not taken for CP1251.
    QVERIFY(EDFRawFile::patch(path, 88, QByteArray("Startdate X X X X").leftJustified(80, ' ')));
    EDFReader other(path);
    QVERIFY(other.open());
    QVERIFY(other.patientInfo().patientName != name);
}

void TestEDFReader::refusedFiles_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("line");
    QTest::newRow("missing") << "missing"
                             << "EDFReader: can not open file, no such file or directory";
    QTest::newRow("shorter than the header") << "100 bytes"
                                             << "EDF HEADER ERROR: FILE 1";
    QTest::newRow("truncated data") << "truncated" << kFormatError;
    QTest::newRow("record count absurd") << "records 99999999" << kFormatError;
    QTest::newRow("signal count absurd") << "signals" << kFormatError;
    QTest::newRow("samples per record absurd") << "samples" << kFormatError;
    QTest::newRow("text file named .edf") << "text" << kFormatError;
    QTest::newRow("255 without BIOSEMI") << "biosemi" << kFormatError;
    QTest::newRow("patient field without subfields") << "subfields" << kFormatError;
}

void TestEDFReader::refusedFiles()
{
    QFETCH(QString, damage);
    QFETCH(QString, line);
    const QString path = file("bad.edf");
    writeStandard(path);
    const EDFRawFile raw(path);
    QFile f(path);
    if (damage == "missing") {
        QVERIFY(f.remove());
    } else if (damage == "100 bytes" || damage == "truncated") {
        QVERIFY(f.resize(damage == "truncated" ? raw.bytes().size() - 301 : 100));
    } else if (damage == "records 99999999") {
        QVERIFY(EDFRawFile::patch(path, 236, "99999999"));
    } else if (damage == "signals") {
        QVERIFY(EDFRawFile::patch(path, 252, "9999"));
    } else if (damage == "samples") {
        const qint64 at = 256 + (16 + 80 + 8 * 5 + 80) * raw.signalCount();
        QVERIFY(EDFRawFile::patch(path, at, "99999999"));
    } else if (damage == "text") {
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        for (int i = 0; i < 40; ++i)
            f.write("Just some notes about the rats, nothing to see here.\n");
        f.close();
    } else if (damage == "biosemi") {
        QVERIFY(EDFRawFile::patch(path, 0, "\xff"));
    } else if (damage == "subfields") {
        QVERIFY(EDFRawFile::patch(path, 8, QByteArray("Ivan").leftJustified(80, ' ')));
    }
    EDFReader reader(path);
    LogCapture log;
    QVERIFY(!reader.open());
    QCOMPARE(log.lines(), QStringList{line});
    QCOMPARE(reader.getChannelBuffData(0, 0, 1, nullptr), -2);
}

void TestEDFReader::secondOpenIsRefused()
{
    writeStandard(file("twice.edf"));
    EDFReader first(file("twice.edf"));
    QVERIFY(first.open());
    QVERIFY(!first.open());
    EDFReader second(file("twice.edf"));
    QVERIFY(!second.open()); // the library keeps one handle per file
    first.close();
    QVERIFY(second.open());
}

void TestEDFReader::tooManyOpenFilesIsOneLine()
{
    writeStandard(file("0.edf"));
    std::vector<std::unique_ptr<EDFReader>> readers;
    LogCapture log;
    // The library keeps a fixed table of open files; well before 1000 one open must fail.
    for (int i = 1; i < 1000 && log.lines().isEmpty(); ++i) {
        const QString copy = file(QStringLiteral("%1.edf").arg(i));
        QVERIFY(QFile::copy(file("0.edf"), copy));
        readers.push_back(std::make_unique<EDFReader>(copy));
        readers.back()->open();
    }
    QCOMPARE(log.lines(), QStringList{"EDFReader: to many files opened"});
    QVERIFY(!readers.back()->isFileOpened());
    readers.front()->close();
    QVERIFY(readers.back()->open()); // a freed place can be taken again
}

void TestEDFReader::readsOnClosedReaderOrMissingChannel()
{
    writeStandard(file("c.edf"));
    EDFReader reader(file("c.edf"));
    double buffer[8] = {};
    QCOMPARE(reader.getBuffData(0, 2, buffer), -2);
    QCOMPARE(reader.getChannelData(0, 0, 3), QList<double>(3, 0.0));

    QVERIFY(reader.open());
    QCOMPARE(reader.getChannelBuffData(3, 0, 2, buffer), -2);
    QCOMPARE(reader.getChannelBuffData(-1, 0, 2, buffer), -2);
    QCOMPARE(reader.getChannelBuffData(2, 10, 2, buffer), 0);
    QVERIFY(qAbs(buffer[0] - 21.0) < 0.05);
    // Past the end: the read fails and leaves zeros, not stale values.
    buffer[1] = 123.0;
    QCOMPARE(reader.getChannelBuffData(2, reader.samplesInFile() - 1, 2, buffer), -1);
    QCOMPARE(buffer[1], 0.0);
    const QList<double> tail = reader.getChannelData(1, reader.samplesInFile() - 1, 3);
    QCOMPARE(tail.size(), 3);
    QCOMPARE(tail.at(2), 0.0);

    reader.close();
    QCOMPARE(reader.getBuffData(0, 2, buffer), -2);
}

void TestEDFReader::collidingAnnotationOnsetsAllSurvive()
{
    // Written through the library directly: our writer only takes whole milliseconds.
    const QString path = file("marks.edf");
    const int handle =
        edfopen_file_writeonly(path.toLocal8Bit().constData(), EDFLIB_FILETYPE_EDFPLUS, 1);
    QVERIFY(handle >= 0);
    edf_set_number_of_annotation_signals(handle, 3); // room for several marks per record
    edf_set_samplefrequency(handle, 0, 10);
    edf_set_physical_maximum(handle, 0, 1);
    edf_set_physical_minimum(handle, 0, -1);
    edf_set_digital_maximum(handle, 0, 32767);
    edf_set_digital_minimum(handle, 0, -32768);
    double zeros[10] = {};
    for (int r = 0; r < 3; ++r)
        QCOMPARE(edfwrite_physical_samples(handle, zeros), 0);
    // onsets in 0.1 ms
    edfwrite_annotation_utf8(handle, 10000, -1, "first");
    edfwrite_annotation_utf8(handle, 10004, -1, "second");
    edfwrite_annotation_utf8(handle, 10009, -1, "third");
    edfwrite_annotation_utf8(handle, 10020, -1, "fourth");
    edfwrite_annotation_utf8(handle, 20000, -1, "later");
    QCOMPARE(edfclose_file(handle), 0);

    EDFReader reader(path);
    QVERIFY(reader.open());
    const QMap<qint64, QString> marks = reader.getAnnotations();
    QCOMPARE(marks.keys(), QList<qint64>({1000, 1001, 1002, 1003, 2000}));
    QCOMPARE(marks.values(), QStringList({"first", "second", "third", "fourth", "later"}));
}

QTEST_GUILESS_MAIN(TestEDFReader)
#include "tst_edfreader.moc"
