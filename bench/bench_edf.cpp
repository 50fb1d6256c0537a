// A 10-minute recording of 6 signals at 1000 Hz, written and read back through EDFWriter and
// EDFReader, next to a plain EDFlib loop doing the same work.
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <edflib.h>

namespace {
constexpr int kSignals = 6;
constexpr int kRate = 1000;
constexpr int kSeconds = 600;
constexpr int kBlock = 100; // samples per signal in one block handed to the writer
constexpr double kRange = 1000.0;

float value(int signal, qint64 i)
{
    return float(800.0 * std::sin(0.001 * (signal + 1) * double(i)));
}

// Blocks as the writer takes them: all samples of signal 0, then signal 1, ...
const QList<float> &blocks()
{
    static const QList<float> data = [] {
        QList<float> d;
        d.reserve(qsizetype(kSignals) * kRate * kSeconds);
        for (qint64 start = 0; start < qint64(kRate) * kSeconds; start += kBlock)
            for (int s = 0; s < kSignals; ++s)
                for (int i = 0; i < kBlock; ++i)
                    d.append(value(s, start + i));
        return d;
    }();
    return data;
}

// One row of doubles per signal and record, as the library takes them.
const QList<double> &records()
{
    static const QList<double> data = [] {
        QList<double> d;
        d.reserve(qsizetype(kSignals) * kRate * kSeconds);
        for (int r = 0; r < kSeconds; ++r)
            for (int s = 0; s < kSignals; ++s)
                for (int i = 0; i < kRate; ++i)
                    d.append(-double(value(s, qint64(r) * kRate + i)));
        return d;
    }();
    return data;
}

QString path(const QTemporaryDir &dir)
{
    return dir.filePath(QStringLiteral("bench.edf"));
}

void writeWithWriter(const QString &file)
{
    QStringList labels;
    for (int s = 0; s < kSignals; ++s)
        labels.append(QStringLiteral("S%1").arg(s));
    EDFWriter writer(file, labels, kRate, {}, QList<double>(kSignals, kRange));
    const float *data = blocks().constData();
    for (qint64 at = 0; at < blocks().size(); at += kSignals * kBlock)
        writer.writeData(kBlock, data + at);
    writer.close(true);
}

void writePlain(const QString &file)
{
    const int handle =
        edfopen_file_writeonly(file.toLocal8Bit().constData(), EDFLIB_FILETYPE_EDFPLUS, kSignals);
    edf_set_number_of_annotation_signals(handle, 2);
    for (int s = 0; s < kSignals; ++s) {
        edf_set_samplefrequency(handle, s, kRate);
        edf_set_physical_maximum(handle, s, kRange);
        edf_set_physical_minimum(handle, s, -kRange);
        edf_set_digital_maximum(handle, s, 32767);
        edf_set_digital_minimum(handle, s, -32768);
        edf_set_label(handle, s, QStringLiteral("S%1").arg(s).toLatin1().constData());
    }
    double *data = const_cast<double *>(records().constData());
    for (qint64 at = 0; at < records().size(); at += kRate)
        edfwrite_physical_samples(handle, data + at);
    edfclose_file(handle);
}

void BM_WriterWrite(benchmark::State &state)
{
    QTemporaryDir dir;
    blocks();
    for (auto _ : state)
        writeWithWriter(path(dir));
}

void BM_PlainEdflibWrite(benchmark::State &state)
{
    QTemporaryDir dir;
    records();
    for (auto _ : state)
        writePlain(path(dir));
}

void readWithReader(const QString &file)
{
    EDFReader reader(file);
    reader.open();
    for (int s = 0; s < kSignals; ++s) {
        QList<double> values = reader.getChannelData(s, 0, kRate * kSeconds);
        benchmark::DoNotOptimize(values.data());
    }
    reader.close();
}

void readPlain(const QString &file, edf_hdr_struct *header, QList<double> &values)
{
    edfopen_file_readonly(file.toLocal8Bit().constData(), header, EDFLIB_READ_ALL_ANNOTATIONS);
    for (int s = 0; s < kSignals; ++s) {
        edfseek(header->handle, s, 0, EDFSEEK_SET);
        edfread_physical_samples(header->handle, s, kRate * kSeconds, values.data());
        benchmark::DoNotOptimize(values.data());
    }
    edfclose_file(header->handle);
}

void BM_ReaderRead(benchmark::State &state)
{
    QTemporaryDir dir;
    writeWithWriter(path(dir));
    for (auto _ : state)
        readWithReader(path(dir));
}

void BM_PlainEdflibRead(benchmark::State &state)
{
    QTemporaryDir dir;
    writeWithWriter(path(dir));
    auto header = std::make_unique<edf_hdr_struct>();
    QList<double> values(kRate * kSeconds);
    for (auto _ : state)
        readPlain(path(dir), header.get(), values);
}

// Processor time of this thread, system calls included: what the work costs, whatever else
// runs on the machine.
double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// The program's way and the plain loop alternately in one run, so load on the machine weighs on
// both alike; "ratio" is the program's time over the plain loop's (1 means no cost on top).
template <typename Ours, typename Plain>
void ratioOf(benchmark::State &state, Ours ours, Plain plain)
{
    double oursSeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        const double t0 = threadSeconds();
        ours();
        const double t1 = threadSeconds();
        plain();
        const double t2 = threadSeconds();
        oursSeconds += t1 - t0;
        plainSeconds += t2 - t1;
    }
    state.counters["ratio"] = oursSeconds / plainSeconds;
}

void BM_WriteRatio(benchmark::State &state)
{
    QTemporaryDir dir;
    blocks();
    records();
    const QString ours = dir.filePath(QStringLiteral("ours.edf"));
    const QString plain = dir.filePath(QStringLiteral("plain.edf"));
    ratioOf(
        state, [&] { writeWithWriter(ours); }, [&] { writePlain(plain); });
}

void BM_ReadRatio(benchmark::State &state)
{
    QTemporaryDir dir;
    writeWithWriter(path(dir));
    auto header = std::make_unique<edf_hdr_struct>();
    QList<double> values(kRate * kSeconds);
    ratioOf(
        state, [&] { readWithReader(path(dir)); },
        [&] { readPlain(path(dir), header.get(), values); });
}
} // namespace

BENCHMARK(BM_WriterWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainEdflibWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReaderRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainEdflibRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteRatio)->Unit(benchmark::kMillisecond)->Iterations(60);
BENCHMARK(BM_ReadRatio)->Unit(benchmark::kMillisecond)->Iterations(60);
BENCHMARK_MAIN();
