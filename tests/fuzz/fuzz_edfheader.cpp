// libFuzzer target: a valid EDF+ file whose header bytes are taken from the fuzzer's input,
// opened and read by EDFReader. Nothing may crash, hang or allocate without bound.
//
// The first input byte chooses how the rest is applied to the valid header: even, the bytes
// are XORed onto it (an empty input is the valid file, so the fuzzer starts close to real files);
// odd, they replace it (so values the fuzzer learns from comparisons land as they are). A second
// byte below 16 also cuts the file to that many header bytes times 32.
#include "storage/EDFFixedHeader.h"
#include "storage/EDFReader.h"
#include "storage/EDFWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstring>

namespace {
QByteArray g_valid;
int g_headerBytes = 0;
QString g_path;

void silent(QtMsgType, const QMessageLogContext &, const QString &) {}

void makeValidFile()
{
    static QTemporaryDir dir;
    const QString seed = dir.filePath(QStringLiteral("seed.edf"));
    {
        EDFWriter writer(seed, QStringList{"Pressure", "Pulse"}, 50, {{QStringLiteral("HP"), 0.5f}},
                         {8191.75, 1.8});
        PatientInfo info;
        info.patientName = QStringLiteral("Rat");
        info.startYear = 2026;
        info.startMonth = 1;
        info.startDay = 2;
        writer.setPatientInfo(info);
        QList<float> data;
        for (int i = 0; i < 2 * 120; ++i)
            data.append(float(i % 50));
        writer.writeData(data);
        writer.addAnnotation(QStringLiteral("SBP"), 500, -1);
        writer.close(true);
    }
    QFile file(seed);
    if (file.open(QIODevice::ReadOnly))
        g_valid = file.readAll();
    g_headerBytes = 256 * (g_valid.mid(252, 4).trimmed().toInt() + 1);
    g_path = dir.filePath(QStringLiteral("fuzz.edf"));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(silent);
    makeValidFile();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes = g_valid;
    if (size > 0) {
        const bool replace = data[0] & 1;
        const size_t n = std::min<size_t>(size - 1, size_t(g_headerBytes));
        for (size_t i = 0; i < n; ++i)
            bytes[qsizetype(i)] =
                char(replace ? data[i + 1] : bytes.at(qsizetype(i)) ^ data[i + 1]);
        if (size > 1 && data[1] < 16)
            bytes.truncate(qsizetype(data[1]) * 32);
    }
    {
        QFile file(g_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(bytes);
    }

    const EDFFixedHeader fixed(bytes);
    (void)fixed.repaired();
    (void)fixed.identification();

    EDFReader reader(g_path);
    if (reader.open()) {
        double buffer[64] = {};
        reader.getBuffData(0, 64 / std::max(reader.signalCount(), 1), buffer);
        reader.getChannelData(0, reader.samplesInFile() - 5, 10);
        (void)reader.getAnnotations();
        (void)reader.infoFull();
        reader.close();
    }
    return 0;
}
