// libFuzzer target: a record's ".exp" properties file as the records folder reads it. Nothing
// may crash, hang or trip the sanitizers, and what was read must survive a save unchanged.
#include "FuzzFiles.h"

#include "analysis/CorvidaExperiment.h"
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
    const QString path = folder + QStringLiteral("/rec.exp");
    if (!FuzzFiles::writeInput(path, data, size))
        return 0;
    CorvidaExperiment record(path);
    record.setAutoSave(false);
    (void)record.getPressure(); // there is no recording beside it
    (void)record.exportTable(true);
    const QByteArray written = record.descriptor()->saveAsXmlBytes();
    const QString copy = folder + QStringLiteral("/copy.exp");
    if (!record.saveAs(copy))
        std::abort();
    CorvidaExperiment again(copy);
    again.setAutoSave(false);
    if (again.descriptor()->saveAsXmlBytes() != written)
        std::abort();
    return 0;
}
