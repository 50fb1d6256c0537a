#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli stream": prints the processed stream of a simulated unit as CSV, one line per
// sample (time in s, pressure in mmHg, pulse, IR), optionally through one cuff cycle.
class StreamCommand
{
public:
    static int run(const QStringList &arguments, CliContext &context);
    static QString usage();
};
