#include "device/ComCorvidaDevice.h"

#include "device/CorvidaPacket.h"
#include "toolkit/QuorvexCommon.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTimer>

namespace {
// How long a command may take to leave before we carry on regardless.
constexpr int kWriteWaitMs = 100;
// A raw frame holds at most 255 / 8 groups; reserving that once per packet avoids regrowth.
constexpr int kMaxGroups = CorvidaPacket::MaxPayload / CorvidaPacket::GroupSize;
} // namespace

ComCorvidaDevice::ComCorvidaDevice(const QString &portName, QObject *parent)
    : BaseCorvidaDevice(parent)
    , m_portName(portName)
    , m_watchdogTimer(new QTimer(this))
    , m_portList(SerialPortList::system())
    , m_clock(VClock::wall())
{
    // A searching device keeps the running id of the base until the unit names itself.
    if (!portName.isEmpty())
        m_id = portName;
    m_watchdogTimer->setInterval(WatchdogInterval);
    connect(m_watchdogTimer, &QTimer::timeout, this, &ComCorvidaDevice::watchdogTick);
    m_watchdogTimer->start();
    // The first round runs as soon as the event loop is reached rather than inside the
    // constructor, so whoever made the device has connected its signals by then.
    QTimer::singleShot(0, this, [this] {
        if (m_watchdogActive)
            watchdogTick();
    });
}

ComCorvidaDevice::ComCorvidaDevice(QObject *parent)
    : ComCorvidaDevice(QString(), parent)
{
    m_searching = true;
}

ComCorvidaDevice::~ComCorvidaDevice()
{
    m_watchdogTimer->stop();
    m_connections.clear();
    stopMeasuring();
    closePort();
    if (m_linkUp) {
        m_linkUp = false;
        emit disconnected();
    }
}

void ComCorvidaDevice::setPortListSource(SerialPortList::Source source)
{
    m_portList = source ? std::move(source) : SerialPortList::system();
}

void ComCorvidaDevice::setWatchdogActive(bool active)
{
    m_watchdogActive = active;
    if (active)
        m_watchdogTimer->start();
    else
        m_watchdogTimer->stop();
}

void ComCorvidaDevice::setClock(VClock::Source clock)
{
    m_clock = clock ? std::move(clock) : VClock::wall();
    m_lastPacketMs = m_clock();
}

void ComCorvidaDevice::restartWatchdog()
{
    if (m_watchdogActive)
        m_watchdogTimer->start();
}

QString ComCorvidaDevice::defaultRawFolder()
{
#ifdef Q_OS_WIN
    return QStringLiteral("C:/Temp/");
#else
    return QDir::tempPath();
#endif
}

QString ComCorvidaDevice::rawFolder() const
{
    return m_rawFolder.isEmpty() ? defaultRawFolder() : m_rawFolder;
}

QString ComCorvidaDevice::rawFilePath() const
{
    return m_rawFile ? m_rawFile->fileName() : QString();
}

bool ComCorvidaDevice::isConnected() const
{
    return m_port && m_port->isOpen() && m_linkUp;
}

QList<QPair<QString, QString>> ComCorvidaDevice::deviceInfo() const
{
    QList<QPair<QString, QString>> rows = BaseCorvidaDevice::deviceInfo();
    rows.append({tr("Port"), m_portName});
    if (!m_productionDateText.isEmpty())
        rows.append({tr("Produced"), m_productionDateText});
    return rows;
}

void ComCorvidaDevice::connectDevice()
{
    disconnectDevice();
    m_serialRequestRepeated = false;
    m_watchdogTimer->stop();
    if (m_portName.isEmpty()) {
        restartWatchdog();
        return;
    }

    // A new port means a fresh stream: whatever stalled the old one is gone.
    m_decoder.reset();
    ++m_receiveGeneration;
    m_lastPacketMs = m_clock();

    auto *port = new QSerialPort(m_portName, this);
    port->setBaudRate(QSerialPort::Baud115200, QSerialPort::AllDirections);
    port->setDataBits(QSerialPort::Data8);
    port->setStopBits(QSerialPort::OneStop);
    port->setParity(QSerialPort::NoParity);
    if (port->open(QIODevice::ReadWrite)) {
        m_port = port;
        m_connections << connect(port, &QSerialPort::readyRead, this,
                                 &ComCorvidaDevice::onReadyRead);
        m_connections << connect(port, &QSerialPort::errorOccurred, this,
                                 &ComCorvidaDevice::onPortError);
        // Stop first: the unit may still be streaming from an earlier session.
        sendCommand(CorvidaPacket::StopAcquisition);
        sendCommand(CorvidaPacket::SerialNumber);
        sendCommand(CorvidaPacket::Calibration);
    } else {
        qDebug() << "PORT NOT OPEN" << m_portName << port->errorString();
        delete port;
        if (m_linkUp) {
            m_linkUp = false;
            emit disconnected();
        }
    }
    restartWatchdog();
}

void ComCorvidaDevice::disconnectDevice()
{
    m_connections.clear();
    stopMeasuring(); // tells the unit to release the cuff and stop while the port is still there
    closePort();
    m_serialRequestRepeated = false;
    if (m_linkUp) {
        m_linkUp = false;
        emit disconnected();
    }
}

void ComCorvidaDevice::closePort()
{
    if (!m_port)
        return;
    QSerialPort *port = m_port;
    m_port = nullptr;
    port->close();
    // This may run inside one of the port's own signals, so it is deleted later.
    port->deleteLater();
}

void ComCorvidaDevice::startAcquisition()
{
    clearHistory();
    m_acquiring = true;
    // The unit gets one watchdog period from now to start streaming.
    m_lastPacketMs = m_clock();
    sendCommand(CorvidaPacket::StartAcquisition);
    emit started();
}

void ComCorvidaDevice::stopAcquisition()
{
    m_acquiring = false;
    sendCommand(CorvidaPacket::StopAcquisition);
    emit stopped();
}

void ComCorvidaDevice::startMeasuring()
{
    const double lower = m_lowerPressure;
    const double upper = m_upperPressure;
    if (lower < 0 || lower > upper)
        return;
    startAcquisition();
    clearHistory();
    sendPacket(CorvidaPacket::measuringCommand(upper, lower));
    m_measurementStopped = false;
    m_measuring = true;
    openRawFile();
    emit startedMeasuring();
}

void ComCorvidaDevice::stopMeasuring()
{
    sendCommand(CorvidaPacket::StopMeasuring);
    m_measurementStopped = true;
    m_measuring = false;
    emit stoppedMeasuring();
    stopAcquisition();
    closeRawFile();
}

bool ComCorvidaDevice::writeSerialNumber(const QString &serialNumber, const QDateTime &production)
{
    return sendCommand(CorvidaPacket::SerialNumber,
                       CorvidaPacket::serialNumberPayload(serialNumber, production));
}

bool ComCorvidaDevice::requestSerialNumber()
{
    return sendCommand(CorvidaPacket::SerialNumber);
}

bool ComCorvidaDevice::sendCommand(quint8 type, const QByteArray &payload)
{
    return sendPacket(CorvidaPacket::encode(type, payload));
}

bool ComCorvidaDevice::sendPacket(const QByteArray &packet)
{
    if (!m_port)
        return false;
    if (!m_port->isOpen() && !m_port->open(QIODevice::ReadWrite))
        return false;
    // Writing can report a port error, and the error closes the device, so the port may be
    // gone (or replaced) once write() returns.
    QPointer<QSerialPort> port = m_port;
    const qint64 written = port->write(packet);
    if (port && port == m_port && port->isOpen())
        port->waitForBytesWritten(kWriteWaitMs);
    return written > 0;
}

void ComCorvidaDevice::onPortError(QSerialPort::SerialPortError error)
{
    if (error == QSerialPort::NoError)
        return;
    qDebug() << "Port error" << m_portName << error;
    if (m_acquiring)
        emit linkLost();
    disconnectDevice();
}

void ComCorvidaDevice::onReadyRead()
{
    if (m_port)
        receiveBytes(m_port->readAll());
}

void ComCorvidaDevice::receiveBytes(const QByteArray &bytes)
{
    if (!m_linkUp) {
        m_linkUp = true;
        emit connected();
    }
    m_decoder.append(bytes);
    const quint64 generation = m_receiveGeneration;
    CorvidaPacketDecoder::Packet packet;
    // A handler's signal may reach code that reconnects the device; the decoder has then been
    // reset and the packet in hand points at nothing, so the loop ends.
    while (generation == m_receiveGeneration && m_decoder.next(packet)) {
        m_lastPacketMs = m_clock();
        handlePacket(packet);
    }
}

void ComCorvidaDevice::handlePacket(const CorvidaPacketDecoder::Packet &packet)
{
    switch (packet.type) {
    case CorvidaPacket::Samples:
        handleSamples(packet);
        break;
    case CorvidaPacket::Calibration:
        handleCalibration(packet);
        break;
    case CorvidaPacket::SerialNumber:
        handleSerialNumber(packet);
        break;
    default:
        break; // other types carry nothing for us
    }
}

void ComCorvidaDevice::handleSamples(const CorvidaPacketDecoder::Packet &packet)
{
    RawFrame frame(CorvidaPacket::ChannelCount);
    for (QList<double> &channel : frame)
        channel.reserve(kMaxGroups);
    if (CorvidaPacket::decodeSamples(packet.payload, packet.length, frame) == 0)
        return; // nothing to hand on
    if (m_measuring && m_rawFile)
        writeRawFrame(frame);
    processRawFrame(frame);
}

void ComCorvidaDevice::handleCalibration(const CorvidaPacketDecoder::Packet &packet)
{
    CorvidaPacket::CalibrationData c;
    if (!CorvidaPacket::decodeCalibration(packet.payload, packet.length, c))
        return;
    applyCalibration(c.timeMs, c.x0, c.y0, c.x1, c.y1);
}

void ComCorvidaDevice::handleSerialNumber(const CorvidaPacketDecoder::Packet &packet)
{
    CorvidaPacket::SerialData data;
    switch (CorvidaPacket::decodeSerialNumber(packet.payload, packet.length, data)) {
    case CorvidaPacket::SerialResult::Empty:
        return;
    case CorvidaPacket::SerialResult::Invalid:
        qDebug()
            << "INVALID SN DATA"
            << QByteArray(reinterpret_cast<const char *>(packet.payload), packet.length).toHex(' ');
        return;
    case CorvidaPacket::SerialResult::Valid:
        break;
    }
    const QDateTime produced = QDateTime::fromMSecsSinceEpoch(data.productionMs);
    qDebug() << "GOT SN/DT" << data.serialNumber << produced;
    // Units that were never programmed report a zero or garbage date.
    if (produced.isValid() && produced.date().year() > 2004) {
        m_productionDate = produced;
        m_productionDateText = produced.toString(QStringLiteral("yyyy-MM-dd"));
    } else {
        m_productionDate = QDateTime();
        m_productionDateText.clear();
    }
    if (data.serialNumber.isEmpty()) {
        m_serialNumber.clear();
        return;
    }
    m_serialNumber = data.serialNumber;
    m_id = data.serialNumber;
    qDebug() << "COMCRV" << m_portName << m_serialNumber;
    emit idChanged();
}

void ComCorvidaDevice::watchdogTick()
{
    if (m_port && m_port->isOpen())
        checkStream();
    if (m_searching)
        searchPort();
    else
        reconnectTick();
}

void ComCorvidaDevice::checkStream()
{
    if (!m_acquiring || m_clock() - m_lastPacketMs < WatchdogInterval)
        return;
    // After the event loop was held up (a long save, say), this tick may come before the bytes
    // that waited meanwhile in the port. They are read as soon as the loop runs again, so the
    // verdict waits a moment: a stream that delivers a packet by then is alive.
    const qint64 lastPacket = m_lastPacketMs;
    const quint64 generation = m_receiveGeneration;
    QTimer::singleShot(LossConfirmMs, this, [this, lastPacket, generation] {
        if (m_acquiring && m_port && m_lastPacketMs == lastPacket &&
            generation == m_receiveGeneration)
            onStreamLost();
    });
}

void ComCorvidaDevice::onStreamLost()
{
    // Garbage on the line leaves the decoder stalled until the port is reopened (the unit has
    // no checksum to resynchronise on); a unit that stopped talking looks the same from here.
    // Either way nothing more will arrive on this port, so it is closed and reopened, and
    // whoever records from it learns that the link was lost.
    qDebug() << "LINK LOST" << m_portName << "no packet for" << m_clock() - m_lastPacketMs << "ms"
             << (m_decoder.isBlocked() ? "stream out of step," : "stream silent,")
             << m_decoder.pendingBytes() + m_decoder.droppedBytes() << "bytes unread";
    emit linkLost();
    disconnectDevice();
    if (!m_portName.isEmpty() && !m_searching)
        connectDevice();
}

void ComCorvidaDevice::reconnectTick()
{
    if (m_port && !m_portName.isEmpty()) {
        if (m_port->isOpen()) {
            if (m_serialNumber.isEmpty() && !m_serialRequestRepeated) {
                qDebug() << "Try to get SN for the second time";
                m_serialRequestRepeated = true;
                requestSerialNumber();
            }
        } else {
            qDebug() << "Port" << m_portName << "is not open. Reconnecting";
            connectDevice();
        }
    }
    if (!m_port && !m_portName.isEmpty())
        connectDevice();
}

void ComCorvidaDevice::searchPort()
{
    if (isConnected())
        return;
    emit disconnected();
    const QList<SerialPortList::Entry> ports =
        m_portList ? m_portList() : QList<SerialPortList::Entry>();
    for (const SerialPortList::Entry &entry : ports) {
        if (SerialPortList::isBluetooth(entry))
            continue;
        qDebug() << "FOUND PORT" << entry.portName << entry.description;
        if (SerialPortList::describesUnit(entry)) {
            m_portName = entry.portName;
            qDebug() << "FOUND PORT" << m_portName;
            if (m_autoConnect)
                connectDevice();
            return;
        }
    }
}

void ComCorvidaDevice::openRawFile()
{
    closeRawFile();
    const QString folder = rawFolder();
    QuorvexCommon::CreateDirIfNotExists(folder);
    const QString name = QStringLiteral("Corvida-") +
                         QuorvexCommon::dateTimeFileString(QDateTime()) + QStringLiteral(".csv");
    auto *file = new QFile(QDir(folder).filePath(name), this);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug() << "Raw data file not open" << file->fileName() << file->errorString();
        delete file;
        return;
    }
    file->write("MPX;AC;DC;IR\n");
    m_rawFile = file;
}

void ComCorvidaDevice::closeRawFile()
{
    if (!m_rawFile)
        return;
    m_rawFile->close();
    delete m_rawFile;
    m_rawFile = nullptr;
}

void ComCorvidaDevice::writeRawFrame(const RawFrame &frame)
{
    const qsizetype groups = frame[0].size();
    QByteArray text;
    text.reserve(groups * 4 * 16);
    for (qsizetype i = 0; i < groups; ++i) {
        for (int c = 0; c < CorvidaPacket::ChannelCount; ++c) {
            // A comma as decimal mark, so the file opens as numbers in a spreadsheet set to
            // the units' home locale.
            QByteArray value = QByteArray::number(frame[c][i], 'f', 8);
            value.replace('.', ',');
            text.append(value);
            text.append(';');
        }
        text.append('\n');
    }
    m_rawFile->write(text);
}
