#pragma once

#include "session/SessionCatalog.h"

#include <QList>
#include <QString>

class CorvidaSettings;
class QPainter;

// The printable report of a session or of an animal, as a PDF for the lab notebook: who was
// measured, when and with which unit, the counts and limits used, the cycles with their
// verdicts and reasons, the statistics and flags, and one small pressure trace per accepted
// cycle with its SBP and DBP markers. An animal's report has its history plot and one line per
// session.
class SessionReport
{
public:
    explicit SessionReport(const CorvidaSettings *settings);

    // False with `error` set when the file cannot be written.
    bool writeSession(const QString &path, const SessionCatalog::Session &session,
                      QString *error = nullptr) const;
    bool writeAnimal(const QString &path, const QString &rodent,
                     const QList<SessionCatalog::Session> &sessions,
                     QString *error = nullptr) const;

    // "Rat 7 2026-11-24.pdf": a name a file dialog can offer.
    static QString suggestedName(const QString &rodent, const QDateTime &when);

private:
    const CorvidaSettings *m_settings;
};
