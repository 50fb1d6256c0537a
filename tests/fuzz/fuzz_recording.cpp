// libFuzzer target: a whole recording file (header, data records, annotations) put into a
// records folder, listed by the record database, its series loaded and its blood pressure found
// anew both ways, as the records page and "corvida-cli analyze" do. Nothing may crash, hang, trip the
// sanitizers or allocate without bound; a record the list calls sound must load.
//
// Seeds are records written by the program itself: EDF+ and BDF+, marks, a Cyrillic rodent, and
// a patient field in CP1251 and in UTF-8 as other programs write it.
#include "FuzzFiles.h"

#include "analysis/CorvidaExperiment.h"
#include "storage/EDFReader.h"
#include "storage/RecordDatabase.h"

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzFiles::silenceLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString folder = FuzzFiles::freshFolder();
    // BDF+ starts with the byte 255; the program knows the kind by the file's suffix.
    const bool bdf = size > 0 && data[0] == 0xFF;
    const QString path = folder + (bdf ? QStringLiteral("/rec.bdf") : QStringLiteral("/rec.edf"));
    if (!FuzzFiles::writeInput(path, data, size))
        return 0;

    RecordDatabase database(folder);
    database.reload();
    for (int row = 0; row < database.count(); ++row) {
        CorvidaExperiment *record = database.record(row);
        record->setAutoSave(false); // reading never writes
        const QList<double> pressure = record->getPressure();
        const QList<double> pulse = record->getPulse();
        (void)record->getSamplingRate();
        record->recalculate(false);
        for (const int beat : record->beats()) {
            if (beat < 0 || beat >= pulse.size())
                std::abort();
        }
        record->recalculate(true);
        // The refined way reads the same damaged series its own way.
        record->changeMethod(CorvidaExperiment::refinedMethod());
        record->recalculate(true);
        (void)record->exportTable(false);
        (void)database.text(row, 0);
    }

    // The reader on its own, as "corvida-cli info" uses it.
    EDFReader reader(path);
    if (reader.open()) {
        (void)reader.infoFull();
        (void)reader.getAnnotations();
        for (int channel = 0; channel < reader.signalCount(); ++channel)
            (void)reader.getChannelData(channel, 0,
                                        int(std::min<qint64>(reader.samplesInFile(), 4096)));
        reader.close();
    }
    return 0;
}
