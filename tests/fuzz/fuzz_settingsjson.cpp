// libFuzzer target: the application settings in their JSON form. Nothing may crash, hang or
// trip the sanitizers, and what was read must survive a save unchanged.
#include "FuzzFiles.h"

#include "settings/CorvidaSettings.h"
#include "settings/MetaDescriptor.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzFiles::silenceLog();
    return 0;
}

namespace {
QByteArray readJson(CorvidaSettings &settings, const QString &path)
{
    settings.setAutoSave(false);
    settings.setFormat(VTSettings::JSON);
    settings.setFilepath(path);
    settings.reload();
    return settings.descriptor()->saveToJsonByteArray();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString folder = FuzzFiles::freshFolder();
    const QString path = folder + QStringLiteral("/settings.json");
    if (!FuzzFiles::writeInput(path, data, size))
        return 0;
    CorvidaSettings settings{QString()};
    const QByteArray written = readJson(settings, path);
    const QString copy = folder + QStringLiteral("/copy.json");
    if (!settings.saveAs(copy))
        std::abort();
    CorvidaSettings again{QString()};
    if (readJson(again, copy) != written)
        std::abort();
    return 0;
}
