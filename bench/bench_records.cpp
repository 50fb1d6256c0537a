// The records folder as the records page sees it: listing 2,000 records, and exporting 50 full
// 5-minute records (1000 Hz) to XLSX and to CSV, with the size of the file written.
#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "storage/RecordDatabase.h"
#include "storage/RecordExport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {
// One measurement written the way the program writes it, then copied under other names: the
// listing reads only the first bytes of each recording, so copies cost it the same.
QString writeRecord(const QString &folder, int seconds, double rate)
{
    CorvidaOnlineExperiment e;
    const int n = int(seconds * rate);
    QList<double> pressure(n), pulse(n);
    for (int i = 0; i < n; ++i) {
        pressure[i] = 180.0 - 150.0 * i / n;
        pulse[i] = 0.3 * std::sin(2.0 * M_PI * 6.0 * i / rate);
    }
    e.setSamplingRate(rate);
    e.updateData({pressure, pulse});
    e.setStartDateTime(QDateTime(QDate(2026, 11, 21), QTime(9, 0, 0)));
    e.setRodent(QStringLiteral("rat 17"));
    e.setSBP(118.0);
    e.setDBP(79.0);
    if (!e.save(folder))
        return QString();
    QString base = e.getFilepath();
    base.chop(4);
    return base;
}

bool fillFolder(const QString &folder, int count, int seconds)
{
    QTemporaryDir scratch;
    const QString base = writeRecord(scratch.path(), seconds, 1000.0);
    if (base.isEmpty())
        return false;
    for (int i = 0; i < count; ++i) {
        const QString name = folder + QStringLiteral("/record %1").arg(i, 5, 10, QLatin1Char('0'));
        if (!QFile::copy(base + QStringLiteral(".edf"), name + QStringLiteral(".edf")) ||
            !QFile::copy(base + QStringLiteral(".exp"), name + QStringLiteral(".exp")))
            return false;
    }
    return true;
}

const QString &listingFolder()
{
    static QTemporaryDir dir;
    static const bool filled = fillFolder(dir.path(), 2000, 10);
    static const QString path = filled ? dir.path() : QString();
    return path;
}

const QString &exportFolder()
{
    static QTemporaryDir dir;
    static const bool filled = fillFolder(dir.path(), 50, 300);
    static const QString path = filled ? dir.path() : QString();
    return path;
}

// A new database each time: every record object is made and every ".exp" file read.
void BM_ReloadNewList(benchmark::State &state)
{
    const QString folder = listingFolder();
    if (folder.isEmpty()) {
        state.SkipWithError("cannot make the records");
        return;
    }
    for (auto _ : state) {
        RecordDatabase db(folder);
        db.reload();
        benchmark::DoNotOptimize(db.count());
    }
    state.counters["records"] = 2000;
    // 10,000 records listed in under a second means at least 10,000 here.
    state.counters["records_per_s"] =
        benchmark::Counter(2000, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ReloadNewList)->Unit(benchmark::kMillisecond);

// The goal as it stands: a real folder of 10,000 records (of one second each, to spare the
// disk; listing reads the header and the properties, not the samples) listed anew.
void BM_ReloadTenThousand(benchmark::State &state)
{
    static QTemporaryDir dir;
    static const bool filled = fillFolder(dir.path(), 10000, 1);
    if (!filled) {
        state.SkipWithError("cannot make the records");
        return;
    }
    for (auto _ : state) {
        RecordDatabase db(dir.path());
        db.reload();
        benchmark::DoNotOptimize(db.count());
    }
    state.counters["records"] = 10000;
    state.counters["ratio_to_1s"] = benchmark::Counter(
        1.0, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_ReloadTenThousand)->Unit(benchmark::kMillisecond);

// Reloading the list the page already shows: the record objects are kept.
void BM_ReloadShownList(benchmark::State &state)
{
    const QString folder = listingFolder();
    RecordDatabase db(folder);
    db.reload();
    for (auto _ : state) {
        db.reload();
        benchmark::DoNotOptimize(db.count());
    }
}
BENCHMARK(BM_ReloadShownList)->Unit(benchmark::kMillisecond);

void exportAll(benchmark::State &state, int filter)
{
    const QString folder = exportFolder();
    if (folder.isEmpty()) {
        state.SkipWithError("cannot make the records");
        return;
    }
    RecordDatabase db(folder);
    db.reload();
    const QList<CorvidaExperiment *> records = db.records();
    QTemporaryDir out;
    const QString filterText = RecordExport::filters()[filter];
    const QString path = RecordExport::withSuffix(out.filePath(QStringLiteral("all")), filterText);
    for (auto _ : state) {
        if (RecordExport::write(records, path, filterText) != RecordExport::Result::Written)
            state.SkipWithError("export failed");
    }
    state.counters["records"] = double(records.size());
    state.counters["MB"] = double(QFileInfo(path).size()) / (1024.0 * 1024.0);
}

void BM_ExportFullXlsx(benchmark::State &state)
{
    exportAll(state, 2);
}
BENCHMARK(BM_ExportFullXlsx)->Unit(benchmark::kSecond)->Iterations(1);

void BM_ExportFullCsv(benchmark::State &state)
{
    exportAll(state, 3);
}
BENCHMARK(BM_ExportFullCsv)->Unit(benchmark::kSecond)->Iterations(1);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
