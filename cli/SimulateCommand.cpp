#include "cli/SimulateCommand.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "cli/CliContext.h"
#include "device/SyntheticAnimal.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/FileUtilities.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {
QJsonObject truthObject(const SyntheticAnimal::Truth &t, const QString &file)
{
    return QJsonObject{{QStringLiteral("file"), file},
                       {QStringLiteral("animal"), t.preset},
                       {QStringLiteral("condition"), t.condition},
                       {QStringLiteral("seed"), qint64(t.seed)},
                       {QStringLiteral("SBP"), t.systolic},
                       {QStringLiteral("DBP"), t.diastolic},
                       {QStringLiteral("BPM"), t.heartRate},
                       {QStringLiteral("SBPTime"), t.systolicTime},
                       {QStringLiteral("DBPTime"), t.diastolicTime},
                       {QStringLiteral("beats"), t.beats}};
}
} // namespace

int SimulateCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption animalOption(QStringLiteral("animal"),
                                          QStringLiteral("mouse, rat or hypertensive-rat."),
                                          QStringLiteral("NAME"));
    const QCommandLineOption conditionOption(
        QStringLiteral("condition"),
        QStringLiteral("One of: ") + SyntheticAnimal::conditionNames().join(QStringLiteral(", ")) +
            QStringLiteral(" (default clean)."),
        QStringLiteral("NAME"), QStringLiteral("clean"));
    const QCommandLineOption seedOption(QStringLiteral("seed"),
                                        QStringLiteral("0 to 4294967295 (default 1)."),
                                        QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption outOption(QStringLiteral("out"),
                                       QStringLiteral("The recording to write (.edf); the "
                                                      ".exp file is written beside it."),
                                       QStringLiteral("FILE"));
    parser.addOptions({animalOption, conditionOption, seedOption, outOption});
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());

    SyntheticAnimal::Preset preset;
    if (!parser.isSet(animalOption))
        return context.fail(QStringLiteral("simulate needs --animal: ") +
                            SyntheticAnimal::presetNames().join(QStringLiteral(", ")));
    if (!SyntheticAnimal::presetFromName(parser.value(animalOption), &preset))
        return context.fail(QStringLiteral("unknown animal \"%1\"; use one of: %2")
                                .arg(parser.value(animalOption),
                                     SyntheticAnimal::presetNames().join(QStringLiteral(", "))));
    SyntheticAnimal::Condition condition;
    if (!SyntheticAnimal::conditionFromName(parser.value(conditionOption), &condition))
        return context.fail(QStringLiteral("unknown condition \"%1\"; use one of: %2")
                                .arg(parser.value(conditionOption),
                                     SyntheticAnimal::conditionNames().join(QStringLiteral(", "))));
    bool ok = false;
    const qulonglong seed = parser.value(seedOption).toULongLong(&ok);
    if (!ok || seed > 0xffffffffULL)
        return context.fail(QStringLiteral("--seed wants a whole number from 0 to 4294967295, "
                                           "not \"%1\"")
                                .arg(parser.value(seedOption)));
    const QString out = parser.value(outOption);
    if (out.isEmpty() || !out.endsWith(QLatin1String(".edf"), Qt::CaseInsensitive))
        return context.fail(QStringLiteral("simulate needs --out FILE.edf"));
    const QFileInfo target(out);
    const QString expPath = CliContext::expPathFor(target.absoluteFilePath());
    if (target.exists() || QFileInfo::exists(expPath))
        return context.fail(QStringLiteral("%1 exists; a record is never written over")
                                .arg(QDir::toNativeSeparators(out)));
    if (!target.absoluteDir().exists())
        return context.fail(
            QStringLiteral("no folder %1").arg(QDir::toNativeSeparators(target.absolutePath())));

    SyntheticAnimal animal(preset, condition, quint32(seed));
    const SyntheticAnimal::Cycle cycle = animal.generate();

    // The record is saved as the device panel saves one, into a folder of its own beside the
    // target, and then takes the name asked for.
    QTemporaryDir work(target.absolutePath() + QStringLiteral("/.corvida-simulate-XXXXXX"));
    if (!work.isValid())
        return context.fail(QStringLiteral("cannot write in %1")
                                .arg(QDir::toNativeSeparators(target.absolutePath())));
    CorvidaOnlineExperiment record;
    record.setSamplingRate(cycle.samplingRate);
    record.updateData({cycle.pressure, cycle.pulse});
    record.setRodent(QStringLiteral("simulated %1").arg(cycle.truth.preset));
    record.setComment(QStringLiteral("%1, seed %2").arg(cycle.truth.condition).arg(seed));
    if (context.settings()->getDetectionMethod() == CorvidaExperiment::refinedMethod())
        record.setMethod(CorvidaExperiment::refinedMethod());
    QString error;
    if (!record.save(work.path(), &error))
        return context.fail(error);
    record.recalculate(false);
    const QString savedExp = record.getFilepath();
    const QString savedEdf = record.recordingPath();
    QString why;
    if (!FileUtilities::renameNoReplace(savedEdf, target.absoluteFilePath(), &why))
        return context.fail(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(out), why));
    if (!FileUtilities::renameNoReplace(savedExp, expPath, &why)) {
        QFile::remove(target.absoluteFilePath());
        return context.fail(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(expPath), why));
    }
    context.out() << QJsonDocument(truthObject(cycle.truth, out)).toJson(QJsonDocument::Indented);
    context.out().flush();
    return 0;
}
