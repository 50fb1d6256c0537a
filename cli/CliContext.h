#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <memory>

class CorvidaSettings;
class QCommandLineParser;

// What every subcommand of corvida-cli shares: the data folder with its settings and records
// folder, and the output streams. Errors are one clear line on stderr and exit status 1.
class CliContext
{
public:
    CliContext(const QString &dataFolder, QTextStream &out, QTextStream &err);
    ~CliContext();

    QString dataFolder() const { return m_dataFolder; }
    QString recordsFolder() const { return m_dataFolder + QStringLiteral("Records/"); }
    // Loaded on first use; creates the data folder when needed.
    CorvidaSettings *settings();

    QTextStream &out() { return m_out; }
    QTextStream &err() { return m_err; }
    // Writes "corvida-cli: <message>" to stderr and returns the failure status.
    int fail(const QString &message);
    // Whether a command was asked for its help ("--help" or "-h" among its arguments). Asked
    // before anything else, so that no command takes "--help" for a file name.
    static bool asksForHelp(const QStringList &arguments);
    // Prints "usage: corvida-cli <usage>" and the parser's options on stdout; status 0.
    int help(const QString &usage, const QCommandLineParser *parser = nullptr);

    // Whether the path names a record this program can read: an existing EDF+ file with the
    // "Pressure" and "Pulse" signals. Otherwise `why` says what is wrong, in one line.
    static bool checkRecord(const QString &edfPath, QString *why);
    // The ".exp" file that belongs to a record's ".edf" file.
    static QString expPathFor(const QString &edfPath);

    // One line of a ";"-separated table, each cell quoted as the CSV export quotes it, so a
    // comment holding ";" or "," never adds a column.
    static QString tableLine(const QStringList &cells);

    // Whether stderr is a terminal (progress lines are shown only there).
    static bool stderrIsTerminal();

private:
    QString m_dataFolder;
    QTextStream &m_out;
    QTextStream &m_err;
    std::unique_ptr<CorvidaSettings> m_settings;
};
