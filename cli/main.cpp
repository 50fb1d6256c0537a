#include "cli/AnalyzeCommand.h"
#include "cli/CliContext.h"
#include "cli/ExportCommand.h"
#include "cli/InfoCommand.h"
#include "cli/ListCommand.h"
#include "cli/MeasureCommand.h"
#include "cli/PortsCommand.h"
#include "cli/RecoverCommand.h"
#include "cli/SessionCommand.h"
#include "cli/SessionsCommand.h"
#include "cli/SimulateCommand.h"
#include "cli/StreamCommand.h"
#include "cli/VerdictCommand.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

namespace {
void printHelp(QTextStream &out)
{
    out << "Corvida command-line tool " << CORVIDA_VERSION << "\n\n"
        << "usage: corvida-cli [--data DIR] <command> [options]\n\n"
        << "commands:\n"
        << "  " << PortsCommand::usage() << "\n"
        << "      list the serial ports and which of them are measuring units\n"
        << "  " << MeasureCommand::usage() << "\n"
        << "      measure once and save the record into the records folder\n"
        << "  " << SessionCommand::usage() << "\n"
        << "      a measurement session: acclimation and measurement cycles, accepted or\n"
        << "      rejected one by one, and the session's mean and spread\n"
        << "  " << SessionsCommand::usage() << "\n"
        << "      the sessions of the records folder with their results\n"
        << "  " << VerdictCommand::usage() << "\n"
        << "      accept or reject cycles of a session by hand, or leave them to the rules\n"
        << "  " << AnalyzeCommand::usage() << "\n"
        << "      recalculate records and print their results\n"
        << "  " << InfoCommand::usage() << "\n"
        << "      describe recording files\n"
        << "  " << ListCommand::usage() << "\n"
        << "      the records folder as the records page lists it\n"
        << "  " << RecoverCommand::usage() << "\n"
        << "      keep the recording of an interrupted save as a record\n"
        << "  " << ExportCommand::usage() << "\n"
        << "      write records to a spreadsheet or CSV file\n"
        << "  " << StreamCommand::usage() << "\n"
        << "      print the processed stream of a simulated unit as CSV\n"
        << "  " << SimulateCommand::usage() << "\n"
        << "      one measurement of a simulated animal as a record, and its true values\n\n"
        << "options:\n"
        << "  --data DIR   the working folder holding Settings.xml and Records/\n"
        << "               (default: " << QuorvexCommon::userDataFolder() << ")\n"
        << "  --help       this text\n"
        << "  --version    the program's version\n";
    out.flush();
}

// Takes "--data DIR" or "--data=DIR" out of the arguments, wherever it stands.
bool takeDataFolder(QStringList &args, QString *folder, QString *error)
{
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--data")) {
            if (i + 1 >= args.size()) {
                *error = QStringLiteral("--data needs a folder");
                return false;
            }
            *folder = args[i + 1];
            args.remove(i, 2);
            return true;
        }
        if (args[i].startsWith(QLatin1String("--data="))) {
            *folder = args[i].mid(7);
            args.removeAt(i);
            return true;
        }
    }
    return true;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QuorvexCommon::setApplicationIdentity();
    // The program's debug log is for the window's console; a script wants only its results.
    if (qEnvironmentVariableIsEmpty("CORVIDA_DEBUG"))
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));

    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = QCoreApplication::arguments();
    QString dataFolder = QuorvexCommon::userDataFolder();
    QString error;
    if (!takeDataFolder(args, &dataFolder, &error)) {
        err << "corvida-cli: " << error << Qt::endl;
        return 1;
    }
    const QString command = args.value(1);
    if (command.isEmpty() || command == QLatin1String("--help") || command == QLatin1String("-h") ||
        command == QLatin1String("help")) {
        printHelp(out);
        return command.isEmpty() ? 1 : 0;
    }
    if (command == QLatin1String("--version")) {
        out << "corvida-cli " << CORVIDA_VERSION << Qt::endl;
        return 0;
    }
    args.removeAt(1); // each command's parser sees the program name and its own options
    CliContext context(dataFolder, out, err);
    if (command == QLatin1String("ports"))
        return PortsCommand::run(args, context);
    if (command == QLatin1String("measure"))
        return MeasureCommand::run(args, context);
    if (command == QLatin1String("session"))
        return SessionCommand::run(args, context);
    if (command == QLatin1String("sessions"))
        return SessionsCommand::run(args, context);
    if (command == QLatin1String("verdict"))
        return VerdictCommand::run(args, context);
    if (command == QLatin1String("analyze"))
        return AnalyzeCommand::run(args, context);
    if (command == QLatin1String("info"))
        return InfoCommand::run(args, context);
    if (command == QLatin1String("list"))
        return ListCommand::run(args, context);
    if (command == QLatin1String("recover"))
        return RecoverCommand::run(args, context);
    if (command == QLatin1String("export"))
        return ExportCommand::run(args, context);
    if (command == QLatin1String("simulate"))
        return SimulateCommand::run(args, context);
    if (command == QLatin1String("stream"))
        return StreamCommand::run(args, context);

    err << "corvida-cli: unknown command \"" << command << "\"; see corvida-cli --help" << Qt::endl;
    return 1;
}
