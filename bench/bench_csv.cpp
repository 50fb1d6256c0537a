// Writing a full export as CSV: the writer of the program against the previous one (a string per
// line, Qt's number text), both writing the same 5-minute recording to a file in one run,
// alternately, so a busy machine slows both alike. Prints MB/s of each and the ratio of their
// times (below 1 is faster).
#include "storage/XLSXHelper.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>

namespace {
XLSXTable recording()
{
    const int n = 300 * 1000;
    XLSXTable table = {{QStringLiteral("SBP"), 118.0, QStringLiteral("mmHg")},
                       {QStringLiteral("Rodent"), QStringLiteral("rat 17")},
                       {},
                       {QStringLiteral("Sampling rate"), 1000.0},
                       {QStringLiteral("Pressure, mmHg"), QStringLiteral("PPG, V")}};
    table.reserve(n + table.size());
    for (int i = 0; i < n; ++i)
        table << QList<QVariant>{180.0 - 150.0 * i / n,
                                 0.3 * std::sin(2.0 * M_PI * 6.0 * i / 1000.0)};
    return table;
}

bool previousWriter(const QList<XLSXSheet> &sheets, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray chunk("\xEF\xBB\xBF");
    const QString separator = QStringLiteral(";");
    const QString lineEnd = QStringLiteral("\r\n");
    for (const XLSXSheet &sheet : sheets) {
        chunk += sheet.first.toUtf8() + lineEnd.toUtf8();
        for (const QList<QVariant> &row : sheet.second) {
            QString line;
            for (const QVariant &cell : row) {
                QString text;
                if (cell.typeId() == QMetaType::Double)
                    text = QString::number(cell.toDouble(), 'g', QLocale::FloatingPointShortest);
                else if (XLSXHelper::isNumber(cell))
                    text = cell.toString();
                else
                    text = XLSXHelper::csvCell(cell, separator);
                line += text + separator;
            }
            chunk += line.toUtf8() + lineEnd.toUtf8();
            if (chunk.size() > (1 << 20)) {
                file.write(chunk);
                chunk.clear();
            }
        }
        chunk += lineEnd.toUtf8();
    }
    file.write(chunk);
    return file.commit();
}

// Processor time of this thread, system calls included, as the export's figures are counted.
double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

void BM_CsvWriteVsPrevious(benchmark::State &state)
{
    QTemporaryDir dir;
    const QList<XLSXSheet> sheets = {{QStringLiteral("2026-11-21_09-00-00"), recording()}};
    const QString oldPath = dir.filePath(QStringLiteral("old.csv"));
    const QString newPath = dir.filePath(QStringLiteral("new.csv"));
    double oldSeconds = 0, newSeconds = 0;
    for (auto _ : state) {
        const double t0 = threadSeconds();
        const bool a = previousWriter(sheets, oldPath);
        const double t1 = threadSeconds();
        const bool b =
            XLSXHelper::dataToCSV(sheets, newPath, QStringLiteral(";"), QStringLiteral("\r\n"));
        const double t2 = threadSeconds();
        if (!a || !b)
            state.SkipWithError("cannot write");
        oldSeconds += t1 - t0;
        newSeconds += t2 - t1;
    }
    const double mb = double(QFileInfo(newPath).size()) / 1e6 * double(state.iterations());
    state.counters["MB/s_new"] = mb / newSeconds;
    state.counters["MB/s_previous"] = mb / oldSeconds;
    state.counters["ratio"] = newSeconds / oldSeconds;
}
BENCHMARK(BM_CsvWriteVsPrevious)->Unit(benchmark::kMillisecond)->Iterations(5);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
