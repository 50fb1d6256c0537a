#include "cli/StreamCommand.h"
#include "toolkit/VLogger.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

namespace {
void printHelp(QTextStream &out)
{
    out << "Corvida command-line tool " << CORVIDA_VERSION << "\n\n"
        << "usage: corvida-cli <command> [options]\n\n"
        << "commands:\n"
        << "  " << StreamCommand::usage() << "\n"
        << "      print the processed stream of a simulated unit as CSV\n\n"
        << "  --help       this text\n"
        << "  --version    the program's version\n";
    out.flush();
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Corvida"));
    QCoreApplication::setOrganizationName(QStringLiteral("Brenvatorix"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVIDA_VERSION));
    VLogger::install();

    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = QCoreApplication::arguments();
    const QString command = args.value(1);

    if (command.isEmpty() || command == QLatin1String("--help") || command == QLatin1String("-h")) {
        printHelp(out);
        return command.isEmpty() ? 2 : 0;
    }
    if (command == QLatin1String("--version")) {
        out << "corvida-cli " << CORVIDA_VERSION << Qt::endl;
        return 0;
    }
    args.removeAt(1); // the parser of each command sees the program name and its own options
    if (command == QLatin1String("stream"))
        return StreamCommand::run(args, out, err);

    err << "unknown command: " << command << "\n";
    printHelp(err);
    return 2;
}
