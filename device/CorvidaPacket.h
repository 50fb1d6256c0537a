#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

// The unit's packet format, the same in both directions: 0x55 0x55, type, payload length N,
// N payload bytes, 0xCC 0xCC. There is no checksum; numbers inside payloads are little-endian.
// This class builds the commands the computer sends and reads the payloads the unit sends.
// Cutting a byte stream into packets is CorvidaPacketDecoder's job.
class CorvidaPacket
{
public:
    enum Type : quint8 {
        StartAcquisition = 1,
        StopAcquisition = 2,
        StartMeasuring = 3,
        StopMeasuring = 4,
        Samples = 5,
        Calibration = 6,
        SerialNumber = 7,
    };

    static constexpr int HeaderSize = 4; // start mark, type, length
    static constexpr int Overhead = 6;   // header and end mark
    static constexpr int MaxPayload = 255;
    static constexpr int ChannelCount = 4;
    static constexpr int GroupSize = ChannelCount * 2; // one signed 16-bit count per channel
    static constexpr int CalibrationSize = 24;
    static constexpr int SerialPayloadSize = 40;
    static constexpr int SerialTextSize = 32;

    // Counts to values: MPX, AC, DC, IR.
    static constexpr double MpxFactor = 0.25;
    static constexpr double PulseFactor = 1.8 / 32768.0;
    static constexpr double IrFactor = 1.32 / 32768.0;

    struct CalibrationData {
        qint64 timeMs = 0; // since 1970-01-01 UTC
        float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    };

    enum class SerialResult { Empty, Invalid, Valid };
    struct SerialData {
        qint64 productionMs = 0; // since 1970-01-01 UTC
        QString serialNumber;    // trimmed, may be empty
    };

    // A whole packet ready for the wire. Payloads longer than 255 bytes cannot be framed and
    // give an empty array.
    static QByteArray encode(quint8 type, const QByteArray &payload = QByteArray());
    // Type 3: upper limit first, then lower, each as whole mmHg cut toward zero.
    static QByteArray measuringCommand(double upper, double lower);
    // The 40-byte payload of type 7 that programs a unit's serial number and production date.
    static QByteArray serialNumberPayload(const QString &serialNumber, const QDateTime &production);

    // Appends the whole sample groups of a type-5 payload to the four channel lists of frame
    // (which must hold four lists); a trailing partial group is ignored. Returns the group count.
    static int decodeSamples(const uchar *payload, int length, QList<QList<double>> &frame);
    // A type-6 payload; false unless it is exactly 24 bytes.
    static bool decodeCalibration(const uchar *payload, int length, CalibrationData &out);
    // A type-7 payload: empty, too short (1 to 39 bytes) or valid.
    static SerialResult decodeSerialNumber(const uchar *payload, int length, SerialData &out);

    // The unit counts time in 100 ns steps since 1601-01-01 00:00 UTC.
    static qint64 fileTimeToMSecs(quint64 fileTime);
    static quint64 msecsToFileTime(qint64 msecs);
};
