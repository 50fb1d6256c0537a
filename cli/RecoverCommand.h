#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli recover FILE...": gives the complete recording of an interrupted save (a
// ".edf.part" file, as "list" shows it) a record's name again, never overwriting one.
class RecoverCommand
{
public:
    static QString usage() { return QStringLiteral("recover FILE.edf.part..."); }
    static int run(const QStringList &arguments, CliContext &context);
};
