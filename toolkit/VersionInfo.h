#pragma once

#include <QString>

// What the new-version endpoint says about the latest release. A missing key reads as empty
// text or false; valid is false for a reply that could not be read at all.
struct VersionInfo {
    QString version;
    QString link;
    QString changelog;
    QString info;
    QString date;
    bool critical = false;
    bool valid = false;
};
