// Files written by EDFWriter must open in an EDF+ reader that shares no code with ours: the
// biosig tools (Debian package biosig-tools). The test skips when they are not installed.
#include "storage/EDFWriter.h"

#include <QtTest>
#include <cmath>

namespace {
const QStringList kLabels = {"Pressure", "Pulse", "MPX"};
const QStringList kUnits = {"mmHg", "V", "uV"};
const QList<double> kRanges = {8191.75, 1.799945068359375, 32767.0};
constexpr int kRate = 200;
constexpr int kSamples = kRate * 3 + kRate / 2;

float sample(int signal, int i)
{
    return float(0.8 * kRanges.at(signal) * std::sin(0.01 * (signal + 1) * i));
}

QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60000) ? process.readAllStandardOutput() : QByteArray();
}
} // namespace

class TestEDFInterop : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_tool = QStandardPaths::findExecutable(QStringLiteral("save2gdf"));
        if (m_tool.isEmpty())
            QSKIP("save2gdf (Debian package biosig-tools) is not installed");
    }

    void independentReaderSeesTheSameRecording_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("EDF+") << "rec.edf";
        QTest::newRow("BDF+") << "rec.bdf";
    }

    void independentReaderSeesTheSameRecording()
    {
        QFETCH(QString, name);
        const QString path = m_dir.filePath(name);
        qint64 now = 1'763'000'000'000;
        {
            QList<ChannelDim> channels;
            for (int s = 0; s < kLabels.size(); ++s) {
                ChannelDim c(kLabels.at(s), kRanges.at(s));
                c.physicalDimension = kUnits.at(s);
                channels.append(c);
            }
            EDFWriter writer(path, channels, kRate, [&now] { return now; });
            writer.takeStartTime(now);
            for (int at = 0; at < kSamples; at += 40) {
                QList<QList<float>> block(kLabels.size());
                for (int s = 0; s < kLabels.size(); ++s)
                    for (int i = at; i < at + 40; ++i)
                        block[s].append(sample(s, i));
                writer.writeData(block);
            }
            writer.addAnnotation(QStringLiteral("SBP"), 1500, -1);
            writer.addAnnotation(QStringLiteral("DBP"), 2750, -1);
            now += 3250;
            QCOMPARE(writer.addAnnotationR(QStringLiteral("cuff")).second, 3250);
            QVERIFY(writer.close(true));
        }

        const QByteArray json = run(m_tool, {QStringLiteral("-JSON"), path});
        const QJsonObject header = QJsonDocument::fromJson(json.mid(json.indexOf('{'))).object();
        QCOMPARE(header.value("Samplingrate").toDouble(), double(kRate));
        QMap<qint64, QString> marks;
        for (const QJsonValue &e : header.value("EVENT").toArray())
            marks.insert(qRound64(e.toObject().value("POS").toDouble() * 1000),
                         e.toObject().value("Description").toString());
        QCOMPARE(marks, (QMap<qint64, QString>{{1500, "SBP"}, {2750, "DBP"}, {3250, "cuff"}}));

        const QString csv = m_dir.filePath(name + ".csv");
        run(m_tool, {QStringLiteral("-CSV"), path, csv});
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> rows = file.readAll().split('\n');
        QVERIFY(rows.size() > kSamples);
        QVERIFY(rows.at(0).startsWith("\"Pressure [mmHg]\",\"Pulse [V]\",\"MPX [uV]\""));
        const bool bdf = name.endsWith(QLatin1String(".bdf"));
        for (int i = 0; i < kSamples; ++i) {
            const QList<QByteArray> cells = rows.at(i + 1).split(',');
            QCOMPARE(cells.size(), kLabels.size());
            for (int s = 0; s < kLabels.size(); ++s) {
                const double step =
                    2 * (bdf ? qMax(kRanges.at(s), 65535.5) : kRanges.at(s)) / 65535;
                // The other reader sees the stored polarity; undo it. Its text has six digits.
                const double seen = -cells.at(s).toDouble();
                QVERIFY2(qAbs(seen - sample(s, i)) <= step + 1e-5 * qAbs(seen),
                         qPrintable(QStringLiteral("signal %1 sample %2").arg(s).arg(i)));
            }
        }
    }

private:
    QString m_tool;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEDFInterop)
#include "tst_edfinterop.moc"
