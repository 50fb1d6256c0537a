#pragma once

#include "session/PulseGate.h"
#include "toolkit/ConnectionHelper.h"

#include <QLabel>
#include <QList>
#include <QPointer>

class BaseCorvidaDevice;
class QTimer;

// "Pulse OK" or "No pulse" beside a unit's buttons: whether the live pulse is one a cuff cycle
// can measure (regular beats at a rodent's rate, strong enough). It helps the operator place the
// tail and warm the animal during a plain Turn on, and shows why a session waits before a cycle.
//
// Frames are only collected as they arrive; the judgement and the repaint happen once a second,
// and the text changes only when the answer does.
class PulseIndicator : public QLabel
{
    Q_OBJECT
public:
    enum class Reading { Unknown, PulseOk, NoPulse };
    Q_ENUM(Reading)

    // Once a second is often enough for a person looking at an animal.
    static constexpr int JudgeIntervalMs = 1000;

    explicit PulseIndicator(BaseCorvidaDevice *device, QWidget *parent = nullptr);

    void setLimits(const PulseGate::Limits &limits) { m_gate = PulseGate(limits); }
    // How much of the newest pulse is judged.
    void setWindowMs(qint64 ms) { m_windowMs = ms; }
    // For tests: judging then happens only when judge() is called.
    void setTimerActive(bool active);

    Reading reading() const { return m_reading; }

public slots:
    void judge();

private:
    void onFrame(const QList<QList<float>> &frame);
    void showReading(Reading reading);
    void retranslate();

protected:
    void changeEvent(QEvent *event) override;

private:
    QPointer<BaseCorvidaDevice> m_device;
    ConnectionHelper m_connections;
    PulseGate m_gate;
    qint64 m_windowMs = 3000;
    QList<double> m_window;
    QTimer *m_timer;
    Reading m_reading = Reading::Unknown;
};
