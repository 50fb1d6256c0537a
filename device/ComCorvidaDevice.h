#pragma once

#include "device/BaseCorvidaDevice.h"
#include "device/CorvidaPacketDecoder.h"
#include "device/SerialPortList.h"
#include "toolkit/ConnectionHelper.h"
#include "toolkit/VClock.h"

#include <QDateTime>
#include <QSerialPort>

class QFile;
class QTimer;

// A measuring unit on a USB virtual serial port. Opens the port, asks the unit who it is and
// how its pressure sensor is calibrated, turns sample packets into frames, sends the
// acquisition and cuff commands, and keeps reopening a port that went away. While a
// measurement runs, the decoded samples are also mirrored into a CSV file for diagnosis.
//
// A device is either bound to a port name, or searches the system's ports for the first one
// that looks like a unit. A watchdog tick every two seconds does the reconnecting or searching;
// it never bothers the user, it just tries again.
class ComCorvidaDevice : public BaseCorvidaDevice
{
    Q_OBJECT
public:
    // Bound to one port; the id is the port name until the unit reports its serial number.
    explicit ComCorvidaDevice(const QString &portName, QObject *parent = nullptr);
    // Looks for its port itself.
    explicit ComCorvidaDevice(QObject *parent = nullptr);
    ~ComCorvidaDevice() override;

    static constexpr int WatchdogInterval = 2000; // ms
    // How long a silent stream gets to show that its bytes were only waiting for a busy event
    // loop before it counts as lost.
    static constexpr int LossConfirmMs = 200;

    QString portName() const { return m_portName; }
    bool isSearching() const { return m_searching; }
    bool autoConnect() const { return m_autoConnect; }
    void setAutoConnect(bool autoConnect) { m_autoConnect = autoConnect; }
    QDateTime productionDate() const { return m_productionDate; }
    QString productionDateText() const { return m_productionDateText; }
    bool isSerialRequestRepeated() const { return m_serialRequestRepeated; }
    bool isLinkUp() const { return m_linkUp; }
    const CorvidaPacketDecoder &decoder() const { return m_decoder; }

    // Where a searching device lists the ports from (the system's by default).
    void setPortListSource(SerialPortList::Source source);
    // With the watchdog inactive nothing runs by itself and watchdogTick() is called by hand.
    // The first tick after construction waits for the event loop, so this can still be set.
    void setWatchdogActive(bool active);
    bool isWatchdogActive() const { return m_watchdogActive; }
    // The clock the watchdog measures the stream's silence with.
    void setClock(VClock::Source clock);

    // Folder of the raw CSV mirror; empty means the platform's default.
    void setRawFolder(const QString &folder) { m_rawFolder = folder; }
    QString rawFolder() const;
    static QString defaultRawFolder();
    // The mirror file of the running measurement, empty when there is none.
    QString rawFilePath() const;

    // Programs the unit's serial number (at most 32 Latin-1 characters) and production date.
    bool writeSerialNumber(const QString &serialNumber, const QDateTime &production);
    bool requestSerialNumber();

    // The receive path: bytes as they came from the port. Public so recorded streams can be
    // replayed without a port.
    void receiveBytes(const QByteArray &bytes);

public slots:
    void connectDevice() override;
    void disconnectDevice() override;
    void startAcquisition() override;
    void stopAcquisition() override;
    void startMeasuring() override;
    void stopMeasuring() override;
    bool isConnected() const override;
    QList<QPair<QString, QString>> deviceInfo() const override;
    bool isPressureCalibrated() const override { return m_calibrated; }

    // One watchdog round: reconnect a bound device, search for a searching one.
    void watchdogTick();

private:
    void onReadyRead();
    void onPortError(QSerialPort::SerialPortError error);
    bool sendCommand(quint8 type, const QByteArray &payload = QByteArray());
    bool sendPacket(const QByteArray &packet);
    void handlePacket(const CorvidaPacketDecoder::Packet &packet);
    void handleSamples(const CorvidaPacketDecoder::Packet &packet);
    void handleCalibration(const CorvidaPacketDecoder::Packet &packet);
    void handleSerialNumber(const CorvidaPacketDecoder::Packet &packet);
    void reconnectTick();
    // While acquiring, a stream without a packet for a whole watchdog period is a lost link.
    void checkStream();
    void onStreamLost();
    void searchPort();
    void restartWatchdog();
    void closePort();
    void openRawFile();
    void closeRawFile();
    void writeRawFrame(const RawFrame &frame);

    QSerialPort *m_port = nullptr;
    QString m_portName;
    ConnectionHelper m_connections;
    CorvidaPacketDecoder m_decoder; // the receive buffer
    QTimer *m_watchdogTimer;
    bool m_autoConnect = true;
    QFile *m_rawFile = nullptr;
    QDateTime m_productionDate;
    QString m_productionDateText;
    bool m_serialRequestRepeated = false;
    bool m_linkUp = false;

    bool m_searching = false;
    bool m_watchdogActive = true;
    // Counts decoder resets, so the receive loop notices when a handler reconnected under it.
    quint64 m_receiveGeneration = 0;
    SerialPortList::Source m_portList;
    VClock::Source m_clock;
    qint64 m_lastPacketMs = 0; // last whole packet, or the start of acquisition
    QString m_rawFolder;
};
