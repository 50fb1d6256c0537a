#pragma once

#include <QObject>

class QSocketNotifier;

// Turns Ctrl+C (SIGINT) and SIGTERM into an ordinary event of the event loop, so a command can
// stop its unit, keep what was recorded and release the port instead of dying on the spot.
//
// A signal handler may do next to nothing safely: it writes the signal's number into a pipe and
// returns. The read end of the pipe is watched by the event loop like any other file. While a
// watcher exists it owns both signals; the previous handlers come back when it is destroyed.
class InterruptWatcher : public QObject
{
    Q_OBJECT
public:
    explicit InterruptWatcher(QObject *parent = nullptr);
    ~InterruptWatcher() override;

    // The first signal that arrived, 0 while none has.
    int signalNumber() const { return m_signal; }
    bool isInterrupted() const { return m_signal != 0; }
    // The status a shell gives a program ended by the signal: 128 + its number (130, 143).
    static int exitStatus(int signalNumber) { return 128 + signalNumber; }
    // "Ctrl+C" or "SIGTERM", for the one line the user reads.
    static QString signalName(int signalNumber);

signals:
    void interrupted(int signalNumber);

private:
    void readPipe();

    int m_signal = 0;
    QSocketNotifier *m_notifier = nullptr;
};
