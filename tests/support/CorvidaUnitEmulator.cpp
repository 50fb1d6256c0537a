#include "support/CorvidaUnitEmulator.h"

#include <QFile>
#include <QSocketNotifier>
#include <QTimer>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace {
constexpr int kMaxGroupsPerPacket = 31;
constexpr qint64 kMaxSamplesPerTick = 10000;

qint16 clampCount(double value)
{
    const double r = std::round(value);
    if (r > 32767.0)
        return 32767;
    if (r < -32768.0)
        return -32768;
    return qint16(r);
}

QByteArray le16(quint16 value)
{
    return CorvidaUnitEmulator::le64(value).left(2);
}

QByteArray f32(float value)
{
    quint32 bits;
    std::memcpy(&bits, &value, 4);
    return CorvidaUnitEmulator::le64(bits).left(4);
}

// 100 ns steps since 1601-01-01 UTC.
quint64 fileTime(const QDateTime &dateTime)
{
    return quint64(QDateTime(QDate(1601, 1, 1), QTime(0, 0), Qt::UTC).msecsTo(dateTime)) * 10000ULL;
}
} // namespace

CorvidaUnitEmulator::CorvidaUnitEmulator(QObject *parent)
    : QObject(parent)
    , m_streamTimer(new QTimer(this))
    , m_clock(VClock::wall())
    , m_production(QDateTime(QDate(2021, 3, 15), QTime(12, 0), Qt::UTC))
{
    m_lastTick = m_clock();
    m_streamTimer->setInterval(10);
    connect(m_streamTimer, &QTimer::timeout, this, &CorvidaUnitEmulator::tick);
}

CorvidaUnitEmulator::~CorvidaUnitEmulator()
{
    unplug();
}

QString CorvidaUnitEmulator::portPath() const
{
    return m_linkDir.filePath(QStringLiteral("corvida-unit"));
}

bool CorvidaUnitEmulator::plug()
{
    if (isPlugged())
        return true;
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0)
        return false;
    char name[128];
    // Holding the slave open keeps the pair from hanging up between port sessions, and setting
    // it raw here means the line discipline never echoes or translates our bytes.
    const int slave =
        grantpt(master) == 0 && unlockpt(master) == 0 && ptsname_r(master, name, sizeof name) == 0
            ? ::open(name, O_RDWR | O_NOCTTY | O_NONBLOCK)
            : -1;
    if (slave < 0) {
        ::close(master);
        return false;
    }
    ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
    termios tio;
    if (::tcgetattr(slave, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(slave, TCSANOW, &tio);
    }
    m_master = master;
    m_slaveHold = slave;
    QFile::remove(portPath());
    QFile::link(QString::fromLocal8Bit(name), portPath());

    m_readNotifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(m_readNotifier, &QSocketNotifier::activated, this, &CorvidaUnitEmulator::onReadable);
    m_writeNotifier = new QSocketNotifier(m_master, QSocketNotifier::Write, this);
    m_writeNotifier->setEnabled(false);
    connect(m_writeNotifier, &QSocketNotifier::activated, this, &CorvidaUnitEmulator::flush);

    // A unit that was just plugged in is idle.
    m_streaming = false;
    m_measuring = false;
    m_deflating = false;
    m_pressure = m_restPressure;
    m_inBuffer.clear();
    m_outBuffer.clear();
    m_lastTick = m_clock();
    return true;
}

void CorvidaUnitEmulator::unplug()
{
    if (!isPlugged())
        return;
    delete m_readNotifier;
    m_readNotifier = nullptr;
    delete m_writeNotifier;
    m_writeNotifier = nullptr;
    ::close(m_slaveHold);
    ::close(m_master);
    m_slaveHold = -1;
    m_master = -1;
    m_outBuffer.clear();
    QFile::remove(portPath());
    m_streaming = false;
    m_measuring = false;
}

void CorvidaUnitEmulator::setClock(VClock::Source clock)
{
    m_clock = clock ? std::move(clock) : VClock::wall();
    m_lastTick = m_clock();
}

void CorvidaUnitEmulator::setStreamTimerActive(bool active)
{
    if (active)
        m_streamTimer->start();
    else
        m_streamTimer->stop();
}

qint16 CorvidaUnitEmulator::pressureCount(double mmHg) const
{
    const double x0 = m_calibration[0], y0 = m_calibration[1];
    const double x1 = m_calibration[2], y1 = m_calibration[3];
    const double sensor = x0 + (mmHg - y0) * (x1 - x0) / (y1 - y0);
    return clampCount(sensor / 0.25); // MPX counts are quarter units
}

QByteArray CorvidaUnitEmulator::le64(quint64 value)
{
    QByteArray b(8, '\0');
    for (int i = 0; i < 8; ++i)
        b[i] = char((value >> (8 * i)) & 0xFF);
    return b;
}

QByteArray CorvidaUnitEmulator::packet(int type, const QByteArray &payload)
{
    QByteArray b;
    b.append("\x55\x55", 2);
    b.append(char(type));
    b.append(char(payload.size()));
    b.append(payload);
    b.append("\xCC\xCC", 2);
    return b;
}

void CorvidaUnitEmulator::writeRaw(const QByteArray &bytes)
{
    if (!isPlugged())
        return;
    m_outBuffer.append(bytes);
    flush();
}

void CorvidaUnitEmulator::flush()
{
    while (!m_outBuffer.isEmpty()) {
        const ssize_t n = ::write(m_master, m_outBuffer.constData(), size_t(m_outBuffer.size()));
        if (n <= 0)
            break;
        m_outBuffer.remove(0, n);
    }
    // Whatever the terminal would not take goes out when it has room again, never half a packet
    // lost: a real unit's USB link does not drop bytes in the middle of a stream either.
    if (m_writeNotifier)
        m_writeNotifier->setEnabled(!m_outBuffer.isEmpty());
}

void CorvidaUnitEmulator::onReadable()
{
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(m_master, buffer, sizeof buffer);
        if (n <= 0)
            break;
        m_received.append(buffer, n);
        m_inBuffer.append(buffer, n);
    }
    parseReceived();
}

void CorvidaUnitEmulator::parseReceived()
{
    for (;;) {
        const int start = m_inBuffer.indexOf(QByteArray("\x55\x55", 2));
        if (start < 0) {
            // Keep a lone trailing 0x55, it may be half a start mark.
            m_inBuffer = m_inBuffer.endsWith('\x55') ? QByteArray(1, '\x55') : QByteArray();
            return;
        }
        m_inBuffer.remove(0, start);
        if (m_inBuffer.size() < 4)
            return;
        const int length = quint8(m_inBuffer[3]);
        if (m_inBuffer.size() < length + 6)
            return;
        if (quint8(m_inBuffer[4 + length]) != 0xCC || quint8(m_inBuffer[5 + length]) != 0xCC) {
            m_inBuffer.remove(0, 1); // not a packet after all; look further on
            continue;
        }
        Packet p{quint8(m_inBuffer[2]), m_inBuffer.mid(4, length)};
        m_inBuffer.remove(0, length + 6);
        handleCommand(p);
    }
}

void CorvidaUnitEmulator::handleCommand(const Packet &p)
{
    switch (p.type) {
    case 1:
        m_streaming = true;
        m_lastTick = m_clock();
        break;
    case 2:
        m_streaming = false;
        break;
    case 3:
        if (p.payload.size() == 4) {
            m_upper = quint8(p.payload[0]) | (quint8(p.payload[1]) << 8);
            m_lower = quint8(p.payload[2]) | (quint8(p.payload[3]) << 8);
            m_measuring = true;
            m_deflating = false;
            if (m_animal)
                startAnimalCycle(true);
        }
        break;
    case 4:
        m_measuring = false;
        m_deflating = false;
        m_pressure = m_restPressure; // the valve opens
        if (m_animal)
            startAnimalCycle(false);
        break;
    case 6: {
        QByteArray payload = le64(fileTime(m_production));
        for (float v : m_calibration)
            payload.append(f32(v));
        writeRaw(packet(6, payload));
        break;
    }
    case 7:
        if (p.payload.size() < 40) { // a request; a write is not answered
            QByteArray payload = le64(fileTime(m_production));
            QByteArray sn = m_serialNumber.left(32);
            sn.append(QByteArray(32 - sn.size(), '\0'));
            payload.append(sn);
            writeRaw(packet(7, payload));
        }
        break;
    default:
        break;
    }
}

void CorvidaUnitEmulator::tick()
{
    const qint64 now = m_clock();
    const qint64 due = std::min(now - m_lastTick, kMaxSamplesPerTick);
    m_lastTick = now;
    if (!isPlugged() || !m_streaming || due <= 0)
        return;
    sendSamples(int(due));
}

bool CorvidaUnitEmulator::setAnimal(const QString &preset, quint32 seed, const QString &condition)
{
    if (preset.isEmpty()) {
        m_animal.reset();
        return true;
    }
    SyntheticAnimal::Preset p;
    SyntheticAnimal::Condition c;
    if (!SyntheticAnimal::presetFromName(preset, &p) ||
        !SyntheticAnimal::conditionFromName(condition, &c))
        return false;
    m_animal = std::make_unique<SyntheticAnimal>(p, c, seed);
    m_truths.clear();
    startAnimalCycle(m_measuring);
    return true;
}

void CorvidaUnitEmulator::startAnimalCycle(bool measuring)
{
    SyntheticAnimal::Parameters &p = m_animal->parameters();
    const SyntheticAnimal::Parameters kept = p;
    if (measuring) {
        // The pump starts at once and runs to the upper limit; the valve lets the cuff down at
        // this unit's rate.
        p.topPressure = m_upper;
        p.inflationRate = m_inflateRate;
        p.deflationRate = m_deflateRate;
        p.restSeconds = 0.2;
    } else {
        // At rest the cuff stays open: ten seconds of the animal's pulse, then the next ten.
        p.topPressure = 0.0;
        p.restSeconds = 5.0;
    }
    m_cycle = m_animal->generate();
    m_cyclePosition = 0;
    m_cyclePeak = qsizetype((p.restSeconds + p.topPressure / p.inflationRate) * 1000.0);
    p = kept;
    if (measuring)
        m_truths << m_cycle.truth;
}

CorvidaUnitEmulator::Counts CorvidaUnitEmulator::nextAnimalSample()
{
    if (m_cyclePosition >= m_cycle.pressure.size()) {
        m_measuring = false;
        startAnimalCycle(false);
    }
    if (m_measuring && m_cyclePosition > m_cyclePeak &&
        m_cycle.pressure[m_cyclePosition] <= m_lower) {
        // Down at the lower limit the valve opens and the animal goes on at rest.
        m_measuring = false;
        startAnimalCycle(false);
    }
    m_pressure = m_cycle.pressure[m_cyclePosition];
    const double pulse = m_cycle.pulse[m_cyclePosition];
    ++m_cyclePosition;
    ++m_samplesSent;
    // The unit's pulse is AC over DC scaled by 1.2, so this AC count gives back the animal's
    // pulse at the DC the unit reports.
    return {pressureCount(m_pressure), clampCount(pulse * m_dcCounts / 1.2), m_dcCounts,
            m_irCounts};
}

CorvidaUnitEmulator::Counts CorvidaUnitEmulator::nextSample()
{
    if (m_animal)
        return nextAnimalSample();
    if (m_measuring) {
        // Inflate to the upper limit, then let the pressure fall to the lower one and release.
        if (!m_deflating) {
            m_pressure += m_inflateRate / 1000.0;
            if (m_pressure >= m_upper) {
                m_pressure = m_upper;
                m_deflating = true;
            }
        } else {
            m_pressure -= m_deflateRate / 1000.0;
            if (m_pressure <= m_lower) {
                m_pressure = m_restPressure;
                m_measuring = false;
                m_deflating = false;
            }
        }
    } else {
        m_pressure = m_restPressure;
    }
    // The pulse is squeezed off while the cuff is above the systolic pressure.
    const double t = double(m_samplesSent) / 1000.0;
    const double amplitude = m_pressure < m_systolic ? m_pulseCounts : 0.0;
    ++m_samplesSent;
    return {pressureCount(m_pressure), clampCount(amplitude * std::sin(2 * M_PI * m_pulseHz * t)),
            m_dcCounts, m_irCounts};
}

void CorvidaUnitEmulator::sendSamples(int count)
{
    QByteArray out;
    while (count > 0) {
        const int groups = std::min(count, kMaxGroupsPerPacket);
        QByteArray payload;
        payload.reserve(groups * 8);
        for (int g = 0; g < groups; ++g) {
            const Counts c = nextSample();
            if (m_recordSamples)
                m_sentSamples.append(c);
            for (qint16 v : c)
                payload.append(le16(quint16(v)));
        }
        out.append(packet(5, payload));
        count -= groups;
    }
    writeRaw(out);
}
