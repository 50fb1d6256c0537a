// Writing a full export as XLSX: the writer of the program against the previous one (the
// spreadsheet library), both writing the same five-minute recordings in one run, alternately, so
// a busy machine slows both alike. Prints the seconds of each per record, the sizes, and the
// ratio of their times (below 1 is faster).
#include "storage/XLSXHelper.h"
#include "storage/ZipArchiveCheck.h"
#include "toolkit/FileUtilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <random>
#include <xlsxwriter.h>

namespace {
// A record's full table as the export builds it: the result rows, then five minutes of
// pressure and pulse at 1000 Hz with the long decimals that scaled EDF+ samples have.
XLSXTable recordTable(int seed)
{
    const int n = 300 * 1000;
    std::mt19937 engine(seed);
    std::uniform_int_distribution<int> digital(-32768, 32767);
    const double pressureStep = 300.0 / 65535.0;
    const double pulseStep = 2.0 / 65535.0;
    XLSXTable table = {{QStringLiteral("SBP"), 118.25, QStringLiteral("mmHg")},
                       {QStringLiteral("DBP"), 82.5, QStringLiteral("mmHg")},
                       {QStringLiteral("Pulse"), 431.0, QStringLiteral("bpm")},
                       {QStringLiteral("Rodent"), QStringLiteral("rat 17")},
                       {QStringLiteral("Comment"), QStringLiteral("after <dose> & rest")},
                       {},
                       {QStringLiteral("Sampling rate"), 1000.0},
                       {QStringLiteral("Pressure, mmHg"), QStringLiteral("PPG, V")}};
    table.reserve(n + table.size());
    for (int i = 0; i < n; ++i) {
        const double pressure = std::round((180.0 - 150.0 * i / n) / pressureStep) * pressureStep;
        const double pulse =
            std::round((0.3 * std::sin(2.0 * M_PI * 6.0 * i / 1000.0) + 1e-4 * digital(engine)) /
                       pulseStep) *
            pulseStep;
        table << QList<QVariant>{pressure, pulse};
    }
    return table;
}

// The export as it was written before: everything through the spreadsheet library, then the
// same read-back check, flush to disk and rename.
bool previousWriter(const QStringList &names, const XLSXHelper::SheetSource &source,
                    const QString &path)
{
    const QString temporary = path + QStringLiteral(".part");
    const QByteArray name = QFile::encodeName(temporary);
    const QByteArray tmpDir = QFile::encodeName(QDir::tempPath());
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = const_cast<char *>(tmpDir.constData());
    options.use_zip64 = LXW_TRUE;
    lxw_workbook *workbook = workbook_new_opt(name.constData(), &options);
    if (!workbook)
        return false;
    lxw_format *dateFormat = workbook_add_format(workbook);
    format_set_num_format(dateFormat, "yyyy-mm-dd hh:mm:ss");
    bool ok = true;
    QStringList taken;
    QStringList parts = {QStringLiteral("[Content_Types].xml"), QStringLiteral("xl/workbook.xml")};
    for (int i = 0; i < names.size() && ok; ++i) {
        const QString sheetName = XLSXHelper::sheetName(names[i], taken);
        taken << sheetName;
        parts << QStringLiteral("xl/worksheets/sheet%1.xml").arg(i + 1);
        XLSXTable table;
        ok = source(i, &table);
        lxw_worksheet *sheet = workbook_add_worksheet(workbook, sheetName.toUtf8().constData());
        worksheet_set_column(sheet, 0, 0, 16.3, nullptr);
        ok = ok && XLSXHelper::fillSheet(sheet, table, 0, 0, dateFormat);
    }
    ok = workbook_close(workbook) == LXW_NO_ERROR && ok;
    ok = ok && ZipArchiveCheck::isComplete(temporary, parts) && FileUtilities::syncFile(temporary);
    QFile::remove(path);
    return ok && QFile::rename(temporary, path);
}

double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

void BM_XlsxWrite(benchmark::State &state)
{
    const int records = int(state.range(0));
    QList<XLSXTable> tables;
    for (int r = 0; r < std::min(records, 2); ++r)
        tables << recordTable(r + 1);
    QStringList names;
    for (int r = 0; r < records; ++r)
        names << QStringLiteral("2026-11-21_09-%1-00").arg(r, 2, 10, QLatin1Char('0'));
    const XLSXHelper::SheetSource source = [&tables](int index, XLSXTable *table) {
        *table = tables[index % tables.size()];
        return true;
    };
    QTemporaryDir dir;
    const QString oldPath = dir.filePath(QStringLiteral("old.xlsx"));
    const QString newPath = dir.filePath(QStringLiteral("new.xlsx"));
    double oldSeconds = 0, newSeconds = 0;
    for (auto _ : state) {
        const double t0 = threadSeconds();
        const bool a = previousWriter(names, source, oldPath);
        const double t1 = threadSeconds();
        const bool b = XLSXHelper::dataToXLSX(names, source, newPath);
        const double t2 = threadSeconds();
        if (!a || !b)
            state.SkipWithError("cannot write");
        oldSeconds += t1 - t0;
        newSeconds += t2 - t1;
    }
    const double n = double(state.iterations()) * records;
    state.counters["s_per_record_new"] = newSeconds / n;
    state.counters["s_per_record_previous"] = oldSeconds / n;
    state.counters["MB_new"] = double(QFileInfo(newPath).size()) / 1e6;
    state.counters["MB_previous"] = double(QFileInfo(oldPath).size()) / 1e6;
    state.counters["ratio"] = newSeconds / oldSeconds;
}
// Five records keep a run short; the ratio is the same per record for fifty.
BENCHMARK(BM_XlsxWrite)->Arg(5)->Unit(benchmark::kMillisecond)->Iterations(2);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
