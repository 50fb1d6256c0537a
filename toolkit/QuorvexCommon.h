#pragma once

#include <QDateTime>
#include <QString>

// Small helpers shared across the program.
class QuorvexCommon
{
public:
    // A date-time as text that is safe in a file name on every platform, for example
    // "2026-11-21_14-05-09" (with seconds) or "2026-11-21_14-05" (without). A null date-time
    // stands for the current local time.
    static QString dateTimeFileString(const QDateTime &dateTime = QDateTime(),
                                      bool withSeconds = true);

    // A duration in seconds as "m:ss", or "h:mm:ss" from one hour on; negative durations get a
    // leading minus.
    static QString timeToText(double seconds);

    // Gives the process the names the window and the command-line tool share, so both find the
    // same per-user data folder.
    static void setApplicationIdentity();

    // The program's own per-user data folder (holding "Settings.xml" and "Records/"), ending in
    // "/". The application and organisation names must be set before.
    static QString userDataFolder();

    // Creates the folder and its parents when missing. True when the folder exists afterwards.
    static bool CreateDirIfNotExists(const QString &path);
};
