#include "settings/CorvidaSettings.h"
#include "settings/MetaDescriptor.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// A full "Settings.xml" as the program leaves it: every setting, the language chosen.
struct SettingsFile {
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("Settings.xml"));
    SettingsFile()
    {
        CorvidaSettings settings(path);
        settings.setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
        settings.setLastExperimentPath(QStringLiteral("Records/2026-11-21_14-05-09.edf"));
    }
};

void BM_SaveSettingsFile(benchmark::State &state)
{
    SettingsFile file;
    CorvidaSettings settings(file.path);
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.save());
}
BENCHMARK(BM_SaveSettingsFile)->Unit(benchmark::kMicrosecond);

void BM_ReloadSettingsFile(benchmark::State &state)
{
    SettingsFile file;
    CorvidaSettings settings(file.path);
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.reload());
}
BENCHMARK(BM_ReloadSettingsFile)->Unit(benchmark::kMicrosecond);

// What start-up pays: build the descriptions, take the defaults, read the file.
void BM_CreateSettingsFromFile(benchmark::State &state)
{
    SettingsFile file;
    for (auto _ : state) {
        CorvidaSettings settings(file.path);
        benchmark::DoNotOptimize(settings.getPressureLimit());
    }
}
BENCHMARK(BM_CreateSettingsFromFile)->Unit(benchmark::kMicrosecond);

// One change with automatic saving: the whole file is rewritten atomically.
void BM_ChangeOneSettingWithAutoSave(benchmark::State &state)
{
    SettingsFile file;
    CorvidaSettings settings(file.path);
    bool on = false;
    for (auto _ : state) {
        on = !on;
        settings.setShowSuggestions(on);
    }
}
BENCHMARK(BM_ChangeOneSettingWithAutoSave)->Unit(benchmark::kMicrosecond);

void BM_SettingsToXmlText(benchmark::State &state)
{
    CorvidaSettings settings;
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.descriptor()->saveAsXmlBytes());
}
BENCHMARK(BM_SettingsToXmlText)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
