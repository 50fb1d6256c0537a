#include "device/VirtualCorvidaDevice.h"

#include <QDebug>
#include <QRandomGenerator>
#include <QTimer>
#include <cmath>

int VirtualCorvidaDevice::s_virtualCounter = 0;
qint64 VirtualCorvidaDevice::s_sampleCounter = 0;

VirtualCorvidaDevice::VirtualCorvidaDevice(QObject *parent)
    : BaseCorvidaDevice(parent)
    , m_tickTimer(new QTimer(this))
    , m_clock(VClock::wall())
    , m_random([] { return QRandomGenerator::global()->generateDouble(); })
{
    m_number = ++s_virtualCounter;
    m_id = QStringLiteral("V%1").arg(m_number);
    m_lastTickTime = m_clock();
    m_tickTimer->setInterval(50);
    connect(m_tickTimer, &QTimer::timeout, this, &VirtualCorvidaDevice::tick);
    m_tickTimer->start();
}

VirtualCorvidaDevice::~VirtualCorvidaDevice() = default;

void VirtualCorvidaDevice::setClock(VClock::Source clock)
{
    m_clock = clock ? std::move(clock) : VClock::wall();
    m_lastTickTime = m_clock();
}

void VirtualCorvidaDevice::setRandomSource(RandomSource random)
{
    if (random)
        m_random = std::move(random);
}

void VirtualCorvidaDevice::setTickTimerActive(bool active)
{
    if (active)
        m_tickTimer->start();
    else
        m_tickTimer->stop();
}

qint64 VirtualCorvidaDevice::sharedSampleCounter()
{
    return s_sampleCounter;
}

void VirtualCorvidaDevice::setAnimal(const QString &preset)
{
    SyntheticAnimal::Preset p;
    if (!SyntheticAnimal::presetFromName(preset, &p)) {
        m_animal.reset();
        m_cycle = SyntheticAnimal::Cycle();
        return;
    }
    if (m_animal && animal() == preset)
        return;
    // The device's number is its animal's seed: four units show four different animals.
    m_animal = std::make_unique<SyntheticAnimal>(p, SyntheticAnimal::Clean, quint32(m_number));
    generateCycle(m_measuring);
}

QString VirtualCorvidaDevice::animal() const
{
    return m_animal ? m_cycle.truth.preset : QString();
}

void VirtualCorvidaDevice::generateCycle(bool measuring)
{
    SyntheticAnimal::Parameters &p = m_animal->parameters();
    const SyntheticAnimal::Parameters kept = p;
    if (measuring) {
        p.topPressure = m_targetPressure;
    } else {
        // At rest: the cuff stays open, ten seconds of pulse played over and over.
        p.topPressure = 0.0;
        p.restSeconds = 5.0;
    }
    m_cycle = m_animal->generate();
    p = kept;
    m_cyclePosition = 0;
    m_cycleIsMeasurement = measuring;
}

void VirtualCorvidaDevice::makeAnimalFrame(RawFrame &frame, int n)
{
    for (int i = 0; i < n; ++i) {
        if (m_cyclePosition >= m_cycle.pressure.size()) {
            // After a measurement the cuff stays open until it is stopped, as with the test
            // signal.
            if (m_cycleIsMeasurement || m_cycle.pressure.isEmpty())
                generateCycle(false);
            m_cyclePosition = 0;
        }
        m_cuffPressure = m_cycle.pressure[m_cyclePosition];
        frame[MPX][i] = m_cuffPressure;
        frame[AC][i] = m_cycle.pulse[m_cyclePosition];
        frame[DC][i] = 1.2;
        frame[IR][i] = 1.0;
        ++m_cyclePosition;
    }
}

void VirtualCorvidaDevice::connectDevice()
{
    disconnectDevice();
    m_linked = true;
    emit connected();
}

void VirtualCorvidaDevice::disconnectDevice()
{
    stopMeasuring();
    m_linked = false;
    emit disconnected();
}

void VirtualCorvidaDevice::startAcquisition()
{
    clearHistory();
    m_acquiring = true;
    m_lastTickTime = m_clock();
    // A new preview starts from the animal at rest, not from the middle of its last cuff cycle.
    if (m_animal && m_cycleIsMeasurement)
        generateCycle(false);
    emit started();
}

void VirtualCorvidaDevice::stopAcquisition()
{
    m_acquiring = false;
    emit stopped();
}

void VirtualCorvidaDevice::startMeasuring()
{
    if (m_lowerPressure < 0 || m_lowerPressure > m_upperPressure) {
        qDebug() << "Invalid pressure limits" << m_lowerPressure << m_upperPressure;
        return;
    }
    startAcquisition();
    clearHistory();
    m_measurementStartTime = m_clock();
    m_targetPressure = m_upperPressure;
    m_cuffPressure = 0.0; // the cuff was released at the end of the last cycle
    m_measurementStopped = false;
    m_measuring = true;
    if (m_animal)
        generateCycle(true);
    emit startedMeasuring();
}

void VirtualCorvidaDevice::stopMeasuring()
{
    m_measurementStopped = true;
    m_measuring = false;
    emit stoppedMeasuring();
    stopAcquisition();
}

double VirtualCorvidaDevice::amplitudeAt(double p, qint64 t) const
{
    const double S = m_simulatedSystolic;
    const double D = m_simulatedDiastolic;
    const double L = D - (S - D) / 3.0;
    const qint64 n1 = qint64(std::fabs((L - S) / 0.1));
    if (t <= m_inflationTime || p >= S)
        return 0.002;
    if (n1 == 0)
        return m_pulseAmplitude;
    if (p > L) {
        // Returns linearly from nothing at the systolic pressure to full at L.
        const qint64 n2 = qint64(std::fabs((p - L) / 0.1));
        return double(n1 - n2) * m_pulseAmplitude / double(n1);
    }
    if (p > D)
        return m_pulseAmplitude;
    // Fades slowly below the diastolic pressure.
    const qint64 n3 = qint64(std::fabs((D - p) * 0.2 / 0.1));
    return double(n1 - n3) * m_pulseAmplitude / double(n1);
}

void VirtualCorvidaDevice::tick()
{
    if (!m_acquiring)
        return;
    const qint64 now = m_clock();
    const double due = double(now - m_lastTickTime) * 1000.0 / m_rate + m_fractionCarry;
    const double whole = std::floor(due);
    m_fractionCarry = due - whole;
    m_lastTickTime = now;
    if (whole < 1.0)
        return;
    const int n = int(whole);

    RawFrame frame(4);
    for (QList<double> &channel : frame)
        channel.resize(n);
    const float omega = float(2.0 * M_PI / m_rate) * float(m_heartRate / 60.0);

    if (m_animal) {
        makeAnimalFrame(frame, n);
    } else if (!m_measuring) {
        for (int i = 0; i < n; ++i, ++s_sampleCounter) {
            frame[MPX][i] = m_random() * 10.0;
            frame[AC][i] = std::sin(double(s_sampleCounter) * omega) * m_pulseAmplitude;
            frame[DC][i] = 1.2;
            frame[IR][i] = 1.0;
        }
    } else {
        const qint64 t = now - m_measurementStartTime;
        const double step = t < m_inflationTime ? m_targetPressure / double(m_inflationTime)
                                                : -2.0 * m_targetPressure / double(m_deflationTime);
        for (int i = 0; i < n; ++i, ++s_sampleCounter) {
            m_cuffPressure += step + m_random() * 0.1;
            if (m_cuffPressure < 0)
                m_cuffPressure = 0;
            const double a = amplitudeAt(m_cuffPressure, t);
            frame[MPX][i] = m_cuffPressure;
            frame[AC][i] = std::sin(double(s_sampleCounter) * omega) * a +
                           m_random() * 0.02 * m_pulseAmplitude;
            frame[DC][i] = 1.2;
            frame[IR][i] = 1.0;
        }
    }
    processRawFrame(frame);
}
