#include "toolkit/LogCapture.h"

#include <QMutexLocker>

namespace {
// Captures nest: the innermost one is current and hands lines on to the one outside it.
LogCapture *g_current = nullptr;
} // namespace

LogCapture::LogCapture()
{
    m_outer = g_current;
    g_current = this;
    // Only the outermost capture replaces the handler; inner ones are reached through the chain.
    if (!m_outer)
        m_previous = qInstallMessageHandler(&LogCapture::handler);
}

LogCapture::~LogCapture()
{
    g_current = m_outer;
    if (!m_outer)
        qInstallMessageHandler(m_previous);
}

void LogCapture::handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QtMessageHandler previous = nullptr;
    for (LogCapture *c = g_current; c; c = c->m_outer) {
        QMutexLocker lock(&c->m_mutex);
        c->m_lines.append(message);
        if (!c->m_outer)
            previous = c->m_previous;
    }
    if (previous)
        previous(type, context, message);
}

QStringList LogCapture::lines() const
{
    QMutexLocker lock(&m_mutex);
    return m_lines;
}

bool LogCapture::contains(const QString &text) const
{
    return count(text) > 0;
}

int LogCapture::count(const QString &text) const
{
    QMutexLocker lock(&m_mutex);
    int n = 0;
    for (const QString &line : m_lines)
        if (line.contains(text))
            ++n;
    return n;
}

void LogCapture::clear()
{
    QMutexLocker lock(&m_mutex);
    m_lines.clear();
}
