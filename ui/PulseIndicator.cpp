#include "ui/PulseIndicator.h"

#include "device/BaseCorvidaDevice.h"

#include <QEvent>
#include <QTimer>

PulseIndicator::PulseIndicator(BaseCorvidaDevice *device, QWidget *parent)
    : QLabel(parent)
    , m_device(device)
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("pulseIndicator"));
    setAlignment(Qt::AlignCenter);
    m_timer->setInterval(JudgeIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &PulseIndicator::judge);
    m_timer->start();
    if (m_device)
        m_connections << connect(m_device, &BaseCorvidaDevice::pressurePulseData, this,
                                 &PulseIndicator::onFrame);
    showReading(Reading::Unknown);
}

void PulseIndicator::setTimerActive(bool active)
{
    if (active)
        m_timer->start();
    else
        m_timer->stop();
}

void PulseIndicator::onFrame(const QList<QList<float>> &frame)
{
    if (frame.size() < 2 || !m_device)
        return;
    for (float v : frame[1])
        m_window.append(v);
    // The oldest part goes only once the window has doubled, so a frame never moves the
    // whole window.
    const qsizetype keep = qsizetype(m_windowMs * m_device->sampleRate() / 1000.0);
    if (keep > 0 && m_window.size() > 2 * keep)
        m_window.remove(0, m_window.size() - keep);
}

void PulseIndicator::judge()
{
    // With the cuff inflated the pulse is meant to vanish: nothing to say until it is empty.
    if (!m_device || !m_device->isAcquiring() || m_device->isMeasuring()) {
        m_window.clear();
        showReading(Reading::Unknown);
        return;
    }
    const double rate = m_device->sampleRate();
    const qsizetype keep = qsizetype(m_windowMs * rate / 1000.0);
    if (keep <= 0 || m_window.size() < keep) {
        showReading(Reading::Unknown);
        return;
    }
    const QList<double> newest = m_window.mid(m_window.size() - keep);
    showReading(m_gate.assess(newest, rate).open ? Reading::PulseOk : Reading::NoPulse);
}

void PulseIndicator::showReading(Reading reading)
{
    const bool changed = reading != m_reading || text().isEmpty();
    m_reading = reading;
    setVisible(reading != Reading::Unknown);
    if (changed)
        retranslate();
}

void PulseIndicator::retranslate()
{
    if (m_reading == Reading::PulseOk) {
        setText(tr("Pulse OK"));
        setToolTip(tr("Regular beats at a rodent's rate: a cuff cycle can measure this pulse"));
        setStyleSheet(QStringLiteral("QLabel { background: #2E7D32; color: white; "
                                     "border-radius: 4px; padding: 2px 6px; }"));
    } else {
        setText(tr("No pulse"));
        setToolTip(tr("No steady pulse: check the tail in the sensor and warm the animal"));
        setStyleSheet(QStringLiteral("QLabel { background: #B71C1C; color: white; "
                                     "border-radius: 4px; padding: 2px 6px; }"));
    }
}

void PulseIndicator::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}
