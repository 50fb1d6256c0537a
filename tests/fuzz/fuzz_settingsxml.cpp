// libFuzzer target: "Settings.xml" as the program reads it at start-up. Nothing may crash, hang
// or trip the sanitizers, and whatever was read must survive a save: the file written from the
// settings reads back to the same settings.
#include "FuzzFiles.h"

#include "settings/CorvidaSettings.h"
#include "settings/MetaDescriptor.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzFiles::silenceLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString folder = FuzzFiles::freshFolder();
    const QString path = folder + QStringLiteral("/Settings.xml");
    if (!FuzzFiles::writeInput(path, data, size))
        return 0;
    CorvidaSettings settings(path);
    settings.setAutoSave(false);
    const QByteArray written = settings.descriptor()->saveAsXmlBytes();
    const QString copy = folder + QStringLiteral("/Copy.xml");
    if (!settings.saveAs(copy))
        std::abort();
    CorvidaSettings again(copy);
    if (again.descriptor()->saveAsXmlBytes() != written)
        std::abort();
    return 0;
}
