#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

// The program's debug log. Lines go through Qt's message handler; the device link marks its
// lines with short upper-case tags ("PORT NOT OPEN", "GOT SN/DT", ...) so they can be found in a
// long log. install() puts a handler in front of Qt's default one that adds a time stamp and
// keeps the most recent lines for the interface's console.
class VLogger
{
public:
    static void install();
    static QStringList recentLines();
    static void clearRecent();
    static int recentCapacity() { return 2000; }

private:
    static void handler(QtMsgType type, const QMessageLogContext &context, const QString &message);
};
