// Draws the pictures shown in the experiment tips into the folder given as the argument. The
// pulse traces come from the simulated unit, so the pictures show what the program shows.
#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "ui/ExperimentViewer.h"
#include "ui/SignalViewer.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>

#include <cmath>
#include <functional>

namespace {
const QColor kTrace(0xcc, 0x44, 0x44);
const QColor kBad(0xcc, 0x33, 0x00);
const QColor kGood(0x33, 0xaa, 0x33);

// Runs a simulated unit for `ms` milliseconds and returns what the recorder kept.
QList<double> simulatedPulse(int ms, bool measure, CorvidaOnlineExperiment **experimentOut,
                             LiveRecorder **recorderOut, VirtualCorvidaDevice *device)
{
    static qint64 now = 5'000'000;
    device->setTickTimerActive(false);
    device->setClock([] { return now; });
    if (!measure)
        device->setRandomSource([] { return 0.0; });
    device->setPressureLimits(50, 200);
    auto *recorder = new LiveRecorder(device);
    recorder->experiment()->setClock([] { return now; });
    recorder->turnOn();
    if (measure)
        recorder->measure();
    for (int t = 0; t < ms; t += 50) {
        now += 50;
        device->tick();
    }
    if (measure)
        recorder->abort();
    if (experimentOut)
        *experimentOut = recorder->experiment();
    if (recorderOut)
        *recorderOut = recorder;
    return recorder->experiment()->getPulse();
}

// A trace in a small rounded frame, as the operator sees a PPG strip.
QImage strip(const QList<double> &values, const QColor &frame)
{
    QImage image(100, 70, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(frame, 3));
    p.setBrush(Qt::white);
    p.drawRoundedRect(QRectF(1.5, 1.5, 97, 67), 8, 8);
    p.setPen(QPen(QColor(0xdd, 0xdd, 0xdd), 1));
    for (int y = 15; y < 70; y += 20)
        p.drawLine(QPointF(6, y), QPointF(94, y));
    double lo = 1e9, hi = -1e9;
    for (double v : values)
        lo = std::min(lo, v), hi = std::max(hi, v);
    const double span = std::max(hi - lo, 1e-9);
    QPainterPath path;
    for (int i = 0; i < values.size(); ++i) {
        const QPointF pt(6 + 88.0 * i / (values.size() - 1), 60 - 50.0 * (values[i] - lo) / span);
        i == 0 ? path.moveTo(pt) : path.lineTo(pt);
    }
    p.setPen(QPen(kTrace, 1.6));
    p.setBrush(Qt::NoBrush);
    p.drawPath(path);
    return image;
}

// The same steady pulse, changed as a bad sensor contact or a moving animal changes it.
QList<double> altered(const QList<double> &pulse, const std::function<double(int, double)> &f)
{
    QList<double> out;
    for (int i = 0; i < pulse.size(); ++i)
        out << f(i, pulse[i]);
    return out;
}

// A restrained rodent on the warming plate, its tail through the cuff and sensor: hanging free
// over the edge, or lying on the plate.
QImage placement(bool valid)
{
    QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    // The warming plate with heat waves.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xf0, 0x8c, 0x3c));
    // Lying on the plate, the tail is warmed where it must not be: the plate reaches under it.
    p.drawRoundedRect(QRectF(10, 120, valid ? 200 : 285, 22), 5, 5);
    p.setPen(QPen(QColor(0xf0, 0x8c, 0x3c), 2));
    for (int x = 30; x < 200; x += 40) {
        QPainterPath wave;
        wave.moveTo(x, 115);
        wave.cubicTo(x - 8, 105, x + 8, 98, x, 88);
        p.drawPath(wave);
    }
    // The restrainer tube with the animal in it.
    p.setPen(QPen(QColor(0x55, 0x66, 0x77), 2));
    p.setBrush(QColor(0xcf, 0xe3, 0xf3, 160));
    p.drawRoundedRect(QRectF(40, 70, 140, 48), 22, 22);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x9a, 0x8f, 0x85));
    p.drawEllipse(QRectF(55, 78, 118, 36));
    p.drawEllipse(QRectF(40, 84, 34, 24));
    // The tail, with the cuff (dark) and the sensor (blue) on it.
    QPainterPath tail;
    tail.moveTo(172, 98);
    QPointF cuff, sensor;
    if (valid) {
        tail.cubicTo(215, 100, 230, 130, 250, 185);
        cuff = QPointF(218, 118);
        sensor = QPointF(236, 148);
    } else {
        tail.cubicTo(190, 110, 200, 117, 206, 117);
        tail.lineTo(290, 117);
        cuff = QPointF(228, 112);
        sensor = QPointF(258, 113);
    }
    p.setPen(QPen(QColor(0xd9, 0xa5, 0x9a), 5, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawPath(tail);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x33, 0x33, 0x33));
    p.drawRoundedRect(QRectF(cuff.x() - 10, cuff.y() - 8, 20, 16), 4, 4);
    p.setBrush(QColor(0x1c, 0x7e, 0xd6));
    p.drawRoundedRect(QRectF(sensor.x() - 7, sensor.y() - 6, 14, 12), 3, 3);
    // The verdict.
    p.setPen(QPen(valid ? kGood : kBad, 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (valid) {
        p.drawPolyline(QPolygonF({QPointF(230, 30), QPointF(248, 50), QPointF(282, 12)}));
    } else {
        p.drawLine(QPointF(236, 14), QPointF(276, 54));
        p.drawLine(QPointF(276, 14), QPointF(236, 54));
    }
    return image;
}
} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc < 2) {
        qWarning("usage: corvida_illustrations <folder>");
        return 1;
    }
    QDir out(QString::fromLocal8Bit(argv[1]));
    if (!out.mkpath(QStringLiteral(".")))
        return 1;
    bool ok = true;
    auto save = [&](const QImage &image, const char *name) {
        ok = image.save(out.filePath(QString::fromLatin1(name))) && ok;
    };

    save(placement(true), "valid-placement.png");
    save(placement(false), "invalid-placement.png");

    // Half a second of a steady pulse of the simulated unit (at rest, cuff open).
    VirtualCorvidaDevice steadyUnit;
    const QList<double> pulse =
        simulatedPulse(3000, false, nullptr, nullptr, &steadyUnit).mid(2400, 500);
    save(strip(pulse, kGood), "ppg-valid.png");
    // Weak: a cold tail gives a small pulse that the noise of the sensor swamps.
    save(strip(altered(pulse,
                       [](int i, double v) {
                           return 0.12 * v + 0.35 * std::sin(i * 1.7) * std::cos(i * 0.37);
                       }),
               kBad),
         "ppg-invalid-1.png");
    // Unsteady: the amplitude swells and fades as the vessel opens and closes.
    save(strip(altered(pulse,
                       [](int i, double v) {
                           return v * (0.15 + 0.85 * std::pow(std::sin(i * 0.0125), 2.0));
                       }),
               kBad),
         "ppg-invalid-2.png");
    // Movement: the animal shifts and the baseline jumps far beyond the pulse.
    save(strip(altered(pulse,
                       [](int i, double v) {
                           const double jump =
                               (i > 180 && i < 260) ? 4.0 * std::sin((i - 180) * 0.04) : 0.0;
                           return v + jump;
                       }),
               kBad),
         "ppg-invalid-3.png");

    // A whole measurement of the simulated unit as the experiment viewer shows it.
    QTemporaryDir settingsDir;
    CorvidaSettings settings(settingsDir.filePath(QStringLiteral("Settings.xml")));
    VirtualCorvidaDevice measuringUnit;
    CorvidaOnlineExperiment *experiment = nullptr;
    simulatedPulse(9000, true, &experiment, nullptr, &measuringUnit);
    settings.setVisualScale(CorvidaSettings::VisualScales::Scale_10);
    settings.setPulseAxisLimit(CorvidaSettings::PulseAxisLimits::PulseAxis_1_800_m900);
    experiment->recalculate(false);
    ExperimentViewer viewer(&settings);
    viewer.setDark(false);
    viewer.resize(480, 300);
    viewer.setExperiment(experiment);
    viewer.refreshData();
    viewer.pressureViewer()->setFollowPaused(true);
    save(viewer.grab().toImage(), "valid-experiment.png");
    return ok ? 0 : 1;
}
