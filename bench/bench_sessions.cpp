// Finding the sessions of a records folder of 10,000 records: 1,000 sessions of two acclimation
// and eight measurement cycles. The folder is written once; the listing then reads every
// ".exp" file and the first bytes of every recording, as "corvida-cli sessions" does.
#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "session/SessionCatalog.h"
#include "storage/RecordDatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {
constexpr int kSessions = 1000;
constexpr int kCyclesPerSession = 10;
constexpr int kAcclimation = 2;

// One session cycle written the way a session writes it; the others are copies whose ".exp"
// text differs in the session, the cycle and the values.
QString writeCycle(const QString &folder)
{
    CorvidaOnlineExperiment e;
    const int n = 15000;
    QList<double> pressure(n), pulse(n);
    for (int i = 0; i < n; ++i) {
        pressure[i] = 170.0 - 140.0 * i / n;
        pulse[i] = 0.3 * std::sin(2.0 * M_PI * 8.0 * i / 1000.0);
    }
    e.setSamplingRate(1000.0);
    e.updateData({pressure, pulse});
    e.setStartDateTime(QDateTime(QDate(2026, 11, 21), QTime(9, 0, 0)));
    e.setRodent(QStringLiteral("RODENT"));
    e.setSession(QStringLiteral("SESSION"));
    e.setCycle(99);
    e.setAcclimation(true);
    e.setPlanned(kCyclesPerSession - kAcclimation);
    e.setPulseBefore(true);
    e.setAccepted(true);
    e.setReason(QString());
    e.setSBP(118.0);
    e.setDBP(79.0);
    e.setBPM(480.0);
    if (!e.save(folder))
        return QString();
    return e.getFilepath().chopped(4);
}

bool fillFolder(const QString &folder)
{
    QTemporaryDir scratch;
    const QString base = writeCycle(scratch.path());
    QFile expFile(base + QStringLiteral(".exp"));
    if (base.isEmpty() || !expFile.open(QIODevice::ReadOnly))
        return false;
    const QString exp = QString::fromUtf8(expFile.readAll());
    for (int s = 0; s < kSessions; ++s) {
        const QDateTime start = QDateTime(QDate(2026, 1, 1), QTime(8, 0)).addSecs(3600LL * s);
        const QString session = start.toString(Qt::ISODate) + QStringLiteral(" CRV-%1").arg(s % 4);
        for (int c = 1; c <= kCyclesPerSession; ++c) {
            const QString name =
                folder + QStringLiteral("/s%1 c%2").arg(s, 4, 10, QLatin1Char('0')).arg(c);
            QString text = exp;
            text.replace(QStringLiteral(">SESSION<"), QLatin1Char('>') + session + QLatin1Char('<'))
                .replace(QStringLiteral(">RODENT<"), QStringLiteral(">rat %1<").arg(s % 50))
                .replace(QStringLiteral("<Cycle>99<"), QStringLiteral("<Cycle>%1<").arg(c))
                .replace(
                    QStringLiteral("<Acclimation>true<"),
                    QStringLiteral("<Acclimation>%1<")
                        .arg(c <= kAcclimation ? QStringLiteral("true") : QStringLiteral("false")))
                .replace(QStringLiteral("<SBP>118<"),
                         QStringLiteral("<SBP>%1<").arg(110 + (s + c) % 17));
            QFile out(name + QStringLiteral(".exp"));
            if (!out.open(QIODevice::WriteOnly) || out.write(text.toUtf8()) < 0)
                return false;
            if (!QFile::copy(base + QStringLiteral(".edf"), name + QStringLiteral(".edf")))
                return false;
        }
    }
    return true;
}

const QString &sessionsFolder()
{
    static QTemporaryDir dir;
    static const bool filled = fillFolder(dir.path());
    static const QString path = filled ? dir.path() : QString();
    return path;
}

// What "corvida-cli sessions" does: list the folder anew, then group and summarise.
void BM_ListSessionsOfFolder(benchmark::State &state)
{
    const QString folder = sessionsFolder();
    if (folder.isEmpty()) {
        state.SkipWithError("cannot make the records");
        return;
    }
    int sessions = 0;
    for (auto _ : state) {
        RecordDatabase db(folder);
        db.reload();
        sessions = int(SessionCatalog::group(db.records(), SessionStatistics()).size());
    }
    if (sessions != kSessions)
        state.SkipWithError("not every session was found");
    state.counters["records"] = double(kSessions * kCyclesPerSession);
    state.counters["sessions"] = double(sessions);
}
BENCHMARK(BM_ListSessionsOfFolder)->Unit(benchmark::kMillisecond)->Iterations(3);

// Grouping and statistics alone, over records already listed.
void BM_GroupListedRecords(benchmark::State &state)
{
    const QString folder = sessionsFolder();
    if (folder.isEmpty()) {
        state.SkipWithError("cannot make the records");
        return;
    }
    RecordDatabase db(folder);
    db.reload();
    const QList<CorvidaExperiment *> records = db.records();
    for (auto _ : state)
        benchmark::DoNotOptimize(SessionCatalog::group(records, SessionStatistics()));
    state.counters["records"] = double(records.size());
}
BENCHMARK(BM_GroupListedRecords)->Unit(benchmark::kMillisecond);
// Only reading the properties files into records, without listing the recordings.
void BM_ReadPropertiesOnly(benchmark::State &state)
{
    const QString folder = sessionsFolder();
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.exp")}, QDir::Files);
    for (auto _ : state) {
        for (const QString &name : names) {
            CorvidaExperiment e(folder + QLatin1Char('/') + name);
            benchmark::DoNotOptimize(e.getCycle());
        }
    }
    state.counters["records"] = double(names.size());
}
BENCHMARK(BM_ReadPropertiesOnly)->Unit(benchmark::kMillisecond)->Iterations(3);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
