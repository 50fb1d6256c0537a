#pragma once

#include <QCommandLineOption>
#include <QPair>
#include <QStringList>

class QCommandLineParser;
class CliContext;

// "corvida-cli measure": one whole measurement from a unit into the records folder, the same
// steps as the device panel's Turn on, Measure, Abort and Save.
class MeasureCommand
{
public:
    static QString usage()
    {
        return QStringLiteral("measure (--port NAME | --simulated [--animal NAME]) "
                              "[--limits UPPER/LOWER] [--seconds N] [--rodent TEXT] "
                              "[--comment TEXT]");
    }
    static int run(const QStringList &arguments, CliContext &context);

    // The shortest record there is: one second of samples.
    static constexpr double MinimumSeconds = 1.0;

    // "200/50" → (200, 50). False for anything that is not two finite numbers, upper first and
    // above lower once both are cut to whole mmHg (as the unit takes them), lower at least 1,
    // upper at most 300.
    static bool parseLimits(const QString &text, QPair<double, double> *limits);
    // What a simulated unit plays: the --animal value if given ("none" for the test signal, or
    // a simulated animal's name), else the Simulated animal setting. False with a one-line
    // reason for a name that is no animal, or --animal without --simulated.
    static bool chooseAnimal(const QCommandLineParser &parser, const QCommandLineOption &animal,
                             const QCommandLineOption &simulated, const QString &setting,
                             QString *preset, QString *why);
    static QCommandLineOption animalOption();
    // Whether a serial port can be opened now; otherwise a one-line reason.
    static bool probePort(const QString &port, QString *why);
};
