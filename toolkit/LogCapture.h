#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

// Collects every log line written while it lives (tests use it to check what was logged).
// Lines still reach the handler that was installed before it.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    bool contains(const QString &text) const;
    int count(const QString &text) const;
    void clear();

private:
    static void handler(QtMsgType type, const QMessageLogContext &context, const QString &message);
    QtMessageHandler m_previous = nullptr;
    LogCapture *m_outer = nullptr;
    mutable QMutex m_mutex;
    QStringList m_lines;
};
