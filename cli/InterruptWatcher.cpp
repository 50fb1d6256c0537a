#include "cli/InterruptWatcher.h"

#include <QDebug>
#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
// Written by the handler, which may touch nothing but plain integers and write().
volatile sig_atomic_t g_writeFd = -1;
int g_pipe[2] = {-1, -1};
struct sigaction g_previousInt;
struct sigaction g_previousTerm;

void onSignal(int signalNumber)
{
    const int savedErrno = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    if (g_writeFd >= 0)
        (void)!::write(g_writeFd, &byte, 1);
    errno = savedErrno;
}
} // namespace
#endif

InterruptWatcher::InterruptWatcher(QObject *parent)
    : QObject(parent)
{
#ifdef Q_OS_UNIX
    if (g_writeFd >= 0 || ::pipe(g_pipe) != 0) {
        qDebug() << "CLI: cannot watch for Ctrl+C" << (g_writeFd >= 0 ? "twice" : "");
        return;
    }
    for (int fd : g_pipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    g_writeFd = g_pipe[1];
    m_notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InterruptWatcher::readPipe);

    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    // Interrupted system calls carry on; the event loop learns of the signal through the pipe.
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, &g_previousInt);
    ::sigaction(SIGTERM, &action, &g_previousTerm);
#endif
}

InterruptWatcher::~InterruptWatcher()
{
#ifdef Q_OS_UNIX
    if (!m_notifier)
        return;
    ::sigaction(SIGINT, &g_previousInt, nullptr);
    ::sigaction(SIGTERM, &g_previousTerm, nullptr);
    g_writeFd = -1;
    delete m_notifier;
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
#endif
}

QString InterruptWatcher::signalName(int signalNumber)
{
#ifdef Q_OS_UNIX
    if (signalNumber == SIGINT)
        return QStringLiteral("Ctrl+C");
    if (signalNumber == SIGTERM)
        return QStringLiteral("SIGTERM");
#endif
    return QStringLiteral("signal %1").arg(signalNumber);
}

void InterruptWatcher::readPipe()
{
#ifdef Q_OS_UNIX
    unsigned char byte = 0;
    while (::read(g_pipe[0], &byte, 1) == 1) {
        // Only the first counts: a second Ctrl+C while the record is being saved changes nothing.
        if (m_signal != 0)
            continue;
        m_signal = byte;
        emit interrupted(m_signal);
    }
#endif
}
