#include "ui/ExperimentViewer.h"

#include "analysis/CorvidaExperiment.h"
#include "analysis/CorvidaOnlineExperiment.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/GenericText.h"
#include "ui/MethodComboBox.h"
#include "ui/SignalViewer.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>

#include <cmath>

namespace {
const QString kSBP = QStringLiteral("SBP");
const QString kDBP = QStringLiteral("DBP");

enum class Trace { Pressure, Ppg, Amplitude, Peaks };

// The house colours are made for a light background; on a dark one the blue pressure and the
// brown peak dots all but disappear, so the dark theme brightens them.
QColor traceColor(Trace trace, bool dark)
{
    switch (trace) {
    case Trace::Pressure:
        return dark ? QColor(0x4a, 0x90, 0xd9) : QColor(0x11, 0x55, 0x99);
    case Trace::Ppg:
        return dark ? QColor(0xe0, 0x66, 0x66) : QColor(0xcc, 0x44, 0x44);
    case Trace::Amplitude:
        return dark ? QColor(0x33, 0xbb, 0x33) : QColor(0x11, 0x99, 0x11);
    case Trace::Peaks:
        return dark ? QColor(0xe0, 0x8a, 0x50) : QColor(0x66, 0x11, 0x00);
    }
    return QColor();
}

// Systolic orange and diastolic violet stand apart from the red PPG and the blue pressure.
QColor markerColor(const QString &tag, bool dark)
{
    if (tag == kSBP)
        return dark ? QColor(0xf3, 0x9c, 0x12) : QColor(0xd3, 0x54, 0x00);
    return dark ? QColor(0xb5, 0x7e, 0xdc) : QColor(0x8e, 0x44, 0xad);
}

// An icon from the resources; a missing one gives an empty icon, nothing worse.
QIcon resourceIcon(const QString &path)
{
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

// The icon recoloured to one colour.
QIcon tintedIcon(const QString &path, const QColor &color)
{
    const QIcon icon = resourceIcon(path);
    QPixmap pixmap = icon.pixmap(32, 32);
    if (pixmap.isNull())
        return icon;
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    return QIcon(pixmap);
}
} // namespace

ExperimentViewer::ExperimentViewer(CorvidaSettings *settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings                   ? settings
                 : CorvidaModel::instance() ? CorvidaModel::instance()->settings()
                                            : nullptr)
    , m_splitter(new QSplitter(Qt::Vertical, this))
    , m_methodRow(new QWidget(this))
    , m_methodBox(new MethodComboBox(m_methodRow))
    , m_methodNote(new QLabel(m_methodRow))
    , m_pressureViewer(new SignalViewer)
    , m_ppgViewer(new SignalViewer)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    // A finished record says which way placed its markers, and the operator can choose another.
    auto *methodLayout = new QHBoxLayout(m_methodRow);
    methodLayout->setContentsMargins(4, 2, 4, 0);
    methodLayout->addWidget(m_methodNote, 1);
    methodLayout->addWidget(new QLabel(tr("Markers placed by"), m_methodRow));
    methodLayout->addWidget(m_methodBox);
    m_methodNote->setStyleSheet(QStringLiteral("color: #cc3300"));
    m_methodNote->setWordWrap(true);
    m_methodBox->setToolTip(tr("Choosing the other way places the markers again with it; "
                               "markers placed by hand stay"));
    connect(m_methodBox, &MethodComboBox::methodChosen, this, &ExperimentViewer::onMethodChosen);
    layout->addWidget(m_methodRow);
    layout->addWidget(m_splitter, 1);
    m_splitter->addWidget(m_pressureViewer);
    m_splitter->addWidget(m_ppgViewer);
    m_splitter->setChildrenCollapsible(false);

    m_pressureViewer->setTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Pressure")));
    m_pressureViewer->setUnit(genericText(QT_TRANSLATE_NOOP("Generic", "mmHg")));
    m_ppgViewer->setTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Photoplethysmogram")));
    // Volts of the pulse as if the sensor's steady level were 1.2 V, as the export names it.
    m_ppgViewer->setUnit(genericText(QT_TRANSLATE_NOOP("Generic", "V")));
    m_ppgViewer->setTimeTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Time")) +
                              QStringLiteral(", ") + tr("s"));
    m_ppgViewer->setScrollMode(true);
    for (SignalViewer *v : {m_pressureViewer, m_ppgViewer}) {
        v->setMarkersMovable(true);
        connect(v, &SignalViewer::markerUpdated, this,
                [this](const QString &tag, double time) { onMarkerUpdated(tag, time); });
        connect(v, &SignalViewer::markerMoveStopped, this, &ExperimentViewer::onMarkerMoveStopped);
    }
    // Only the PPG viewer has a scroll bar; the pressure viewer goes where the operator scrolls.
    // Both follow new data on their own, from series of the same length.
    connect(m_ppgViewer->scrollBar(), &QScrollBar::valueChanged, this, [this] {
        m_pressureViewer->setFollowPaused(m_ppgViewer->followPaused());
        m_pressureViewer->setOffset(m_ppgViewer->offset());
    });

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(RefreshIntervalMs);
    connect(&m_refreshTimer, &QTimer::timeout, this, &ExperimentViewer::refreshData);
    connect(m_splitter, &QSplitter::splitterMoved, this, &ExperimentViewer::onSplitterMoved);

    if (m_settings) {
        m_settingsConnections << connect(m_settings, &CorvidaSettings::changedVisualScale, this,
                                         &ExperimentViewer::applySettings);
        m_settingsConnections << connect(m_settings, &CorvidaSettings::changedPulseAxisLimit, this,
                                         &ExperimentViewer::applySettings);
        m_settingsConnections << connect(m_settings,
                                         &CorvidaSettings::changedPressurePPGSplitterRatio, this,
                                         &ExperimentViewer::applySplitterRatio);
    }
    m_dark = palette().color(QPalette::Window).lightness() < 128;
    applySettings();
    applySplitterRatio(m_settings ? m_settings->getPressurePPGSplitterRatio() : 0.4);
}

ExperimentViewer::~ExperimentViewer() = default;

double ExperimentViewer::pressureAxisUpper(double highestPressure)
{
    return std::max(120.0, (std::ceil(highestPressure / 10.0) + 1.0) * 10.0);
}

void ExperimentViewer::setExperiment(CorvidaExperiment *experiment)
{
    m_recordConnections.clear();
    m_refreshTimer.stop();
    m_experiment = experiment;
    m_live = qobject_cast<CorvidaOnlineExperiment *>(experiment) != nullptr;
    m_keptNote.clear();
    m_draggedTag.clear();
    m_peakBeats.clear();
    m_peakPoints.clear();
    m_envelopeUpper.clear();
    m_envelopeLower.clear();
    // A finished record opens at its start and stays where the operator scrolls it.
    for (SignalViewer *v : {m_pressureViewer, m_ppgViewer}) {
        v->setSeries({});
        v->setFollowPaused(!m_live);
    }
    if (experiment) {
        auto &c = m_recordConnections;
        c << connect(experiment, &CorvidaExperiment::dataUpdated, this,
                     &ExperimentViewer::scheduleRefresh);
        // A recalculation brings new beats.
        c << connect(experiment, &CorvidaExperiment::changedBPM, this,
                     &ExperimentViewer::scheduleRefresh);
        c << connect(experiment, &CorvidaExperiment::bpResetted, this,
                     &ExperimentViewer::scheduleRefresh);
        c << connect(experiment, &CorvidaExperiment::bpResetted, this, [this] {
            m_keptNote.clear();
            updateMethodRow();
        });
        c << connect(experiment, &CorvidaExperiment::changedMethod, this,
                     &ExperimentViewer::updateMethodRow);
        for (auto signal : {&CorvidaExperiment::changedSBPTime, &CorvidaExperiment::changedDBPTime,
                            &CorvidaExperiment::changedSBP, &CorvidaExperiment::changedDBP}) {
            c << connect(experiment, signal, this, &ExperimentViewer::updateMarkers);
        }
        c << connect(experiment, &QObject::destroyed, this, [this] {
            m_pressureViewer->setSeries({});
            m_ppgViewer->setSeries({});
            m_pressureViewer->clearMarkers();
            m_ppgViewer->clearMarkers();
        });
    }
    updateGraphics();
    updateMethodRow();
}

void ExperimentViewer::updateMethodRow()
{
    CorvidaExperiment *e = m_experiment;
    m_methodRow->setVisible(e && !m_live);
    if (!e || m_live)
        return;
    m_methodBox->setMethod(e->getMethod());
    // Only the refined way explains an empty result; the documented one simply finds nothing.
    const QString note = e->detectionNote().isEmpty() ? m_keptNote : e->detectionNote();
    m_methodNote->setText(note);
    m_methodNote->setVisible(!note.isEmpty());
}

void ExperimentViewer::onMethodChosen(const QString &method)
{
    CorvidaExperiment *e = m_experiment;
    if (!e || m_live)
        return;
    const bool kept = e->changeMethod(method);
    m_keptNote = kept ? tr("Markers kept where they were: they were placed by hand or during the "
                           "measurement. Recalculate to have them placed the chosen way.")
                      : QString();
    updateGraphics();
    updateMethodRow();
}

void ExperimentViewer::updateGraphics()
{
    m_refreshTimer.stop();
    CorvidaExperiment *e = m_experiment;
    if (!e) {
        for (SignalViewer *v : {m_pressureViewer, m_ppgViewer}) {
            v->setSeries({});
            v->clearMarkers();
        }
        return;
    }
    const double rate = e->getSamplingRate();
    m_scannedSamples = 0;
    m_highestPressure = 0.0;
    m_peakBeats.clear();
    m_peakPoints.clear();
    updatePressureAxis();

    const QColor pressureColor = traceColor(Trace::Pressure, m_dark);
    const QColor ppgColor = traceColor(Trace::Ppg, m_dark);
    QList<SignalViewerSeries> pressure;
    QList<SignalViewerSeries> ppg;
    if (m_live) {
        // The recorder keeps appending to these lists; they are fetched at each paint only.
        const QPointer<CorvidaExperiment> p(e);
        pressure << SignalViewerSeries::fromSampleSource(
            [p] { return p ? p->getPressure() : QList<double>(); }, rate, pressureColor, 2.0);
        ppg << SignalViewerSeries::fromSampleSource(
                   [p] { return p ? p->getPulse() : QList<double>(); }, rate, ppgColor, 1.5)
                   .named(genericText(QT_TRANSLATE_NOOP("Generic", "PPG")));
    } else {
        pressure << SignalViewerSeries::fromSamples(e->getPressure(), rate, pressureColor, 2.0);
        ppg << SignalViewerSeries::fromSamples(e->getPulse(), rate, ppgColor, 1.5)
                   .named(genericText(QT_TRANSLATE_NOOP("Generic", "PPG")));
    }
    // The amplitude of each beat drawn half above and half below the zero line: an envelope
    // that hugs the pulse wave, so its growth towards the diastolic bend can be seen in place.
    const QColor amplitudeColor = traceColor(Trace::Amplitude, m_dark);
    ppg << SignalViewerSeries::fromPointSource([this] { return m_envelopeUpper; },
                                               SignalViewerSeries::Style::Line, amplitudeColor, 2.0)
               .named(tr("Amplitude"));
    ppg << SignalViewerSeries::fromPointSource(
        [this] { return m_envelopeLower; }, SignalViewerSeries::Style::Line, amplitudeColor, 2.0);
    ppg << SignalViewerSeries::fromPointSource([this] { return m_peakPoints; },
                                               SignalViewerSeries::Style::Dots,
                                               traceColor(Trace::Peaks, m_dark), 5.0)
               .named(tr("Peaks"));

    // Recalculating a finished record keeps the window where the operator left it.
    const double keep = m_ppgViewer->offset();
    const bool sameRecord = !m_pressureViewer->series().isEmpty();
    refreshPeaks();
    m_pressureViewer->setSeries(pressure);
    m_ppgViewer->setSeries(ppg);
    if (!m_live) {
        m_pressureViewer->setOffset(sameRecord ? keep : 0.0);
        m_ppgViewer->setOffset(sameRecord ? keep : 0.0);
    }
    updateMarkers();
}

void ExperimentViewer::refreshData()
{
    m_refreshTimer.stop();
    CorvidaExperiment *e = m_experiment;
    if (!e)
        return;
    const QList<SignalViewerSeries> &shown = m_pressureViewer->series();
    if (!m_live || shown.isEmpty() || shown.first().rate() != e->getSamplingRate()) {
        updateGraphics();
        return;
    }
    refreshPeaks();
    updatePressureAxis();
    m_pressureViewer->updateData();
    m_ppgViewer->updateData();
}

void ExperimentViewer::scheduleRefresh()
{
    if (!m_refreshTimer.isActive())
        m_refreshTimer.start();
}

void ExperimentViewer::refreshPeaks()
{
    CorvidaExperiment *e = m_experiment;
    const QList<int> beats = e ? e->beats() : QList<int>();
    if (beats.isEmpty()) {
        m_peakBeats.clear();
        m_peakPoints.clear();
        m_envelopeUpper.clear();
        m_envelopeLower.clear();
        return;
    }
    // Dots and envelope are made once per beat detection, not at every refresh.
    if (beats.constData() == m_peakBeats.constData() && beats.size() == m_peakBeats.size())
        return;
    m_peakBeats = beats;
    m_peakPoints.clear();
    m_envelopeUpper.clear();
    m_envelopeLower.clear();
    const QList<QPointF> amplitudes = e->amplitudeSeries();
    m_envelopeUpper.reserve(amplitudes.size());
    m_envelopeLower.reserve(amplitudes.size());
    for (const QPointF &a : amplitudes) {
        m_envelopeUpper.append(QPointF(a.x(), a.y() / 2.0));
        m_envelopeLower.append(QPointF(a.x(), -a.y() / 2.0));
    }
    const QList<double> pulse = e->getPulse();
    const double rate = e->getSamplingRate();
    if (rate <= 0.0)
        return;
    m_peakPoints.reserve(beats.size());
    for (int b : beats) {
        if (b >= 0 && b < pulse.size())
            m_peakPoints.append(QPointF(b / rate, pulse[b]));
    }
}

void ExperimentViewer::updatePressureAxis()
{
    CorvidaExperiment *e = m_experiment;
    const QList<double> pressure = e ? e->getPressure() : QList<double>();
    // A live record only grows until it starts over; then the scan starts over too.
    if (pressure.size() < m_scannedSamples) {
        m_scannedSamples = 0;
        m_highestPressure = 0.0;
    }
    for (qsizetype i = m_scannedSamples; i < pressure.size(); ++i)
        m_highestPressure = std::max(m_highestPressure, pressure[i]);
    m_scannedSamples = pressure.size();
    m_pressureViewer->setValueRange(0.0, pressureAxisUpper(m_highestPressure));
}

QString ExperimentViewer::markerText(const QString &tag, double time)
{
    QString text = genericText(tag == kSBP ? QT_TRANSLATE_NOOP("Generic", "SBP")
                                           : QT_TRANSLATE_NOOP("Generic", "DBP"));
    const double pressure = m_experiment ? m_experiment->pressureAt(time) : 0.0;
    if (pressure > 0.0)
        text += QLatin1Char(' ') + QString::number(qRound(pressure));
    if (tag == kDBP && m_experiment &&
        diastolicDoubtful(m_experiment->getPressure(), m_experiment->getSamplingRate(), time))
        text += QStringLiteral(" ?");
    return text;
}

bool ExperimentViewer::diastolicDoubtful(const QList<double> &pressure, double rate, double time)
{
    const qsizetype at = qsizetype(time * rate);
    if (!(time > 0.0) || !(rate > 0.0) || at < 0 || at >= pressure.size())
        return false;
    // The cuff must pass the 10 mmHg below the point while it deflates, with beats to compare;
    // an Abort empties it in a blink (the last 8 of those 10 mmHg in well under 0.15 s).
    const double start = pressure[at] - 2.0;
    const double below = pressure[at] - 10.0;
    qsizetype startAt = -1;
    for (qsizetype i = at; i < pressure.size(); ++i) {
        if (startAt < 0 && pressure[i] < start)
            startAt = i;
        if (pressure[i] < below)
            return double(i - startAt) / rate < 0.15;
    }
    return true;
}

void ExperimentViewer::updateMarkers()
{
    CorvidaExperiment *e = m_experiment;
    for (const QString &tag : {kSBP, kDBP}) {
        // The marker being dragged belongs to the mouse until it is let go.
        if (tag == m_draggedTag)
            continue;
        const double time = !e ? 0.0 : tag == kSBP ? e->getSBPTime() : e->getDBPTime();
        for (SignalViewer *v : {m_pressureViewer, m_ppgViewer}) {
            if (time > 0.0) {
                v->setMarker(SignalViewerMarker(tag, markerText(tag, time), time,
                                                SignalViewerMarker::Kind::Movable,
                                                markerColor(tag, m_dark)));
            } else {
                v->removeMarker(tag);
            }
        }
    }
}

void ExperimentViewer::onMarkerUpdated(const QString &tag, double time)
{
    m_draggedTag = tag;
    m_draggedTime = time;
    const SignalViewerMarker marker(tag, markerText(tag, time), time,
                                    SignalViewerMarker::Kind::Movable, markerColor(tag, m_dark));
    m_pressureViewer->setMarker(marker);
    m_ppgViewer->setMarker(marker);
}

void ExperimentViewer::onMarkerMoveStopped()
{
    if (m_draggedTag.isEmpty())
        return;
    const QString tag = m_draggedTag;
    m_draggedTag.clear();
    // The record is told once, when the marker is let go: with automatic saving on, every
    // change of a marker rewrites the record's file.
    if (m_experiment) {
        if (tag == kSBP)
            m_experiment->setSBPTime(m_draggedTime);
        else
            m_experiment->setDBPTime(m_draggedTime);
    }
    updateMarkers();
}

void ExperimentViewer::applySettings()
{
    double window = 60.0;
    QPair<double, double> range(-0.3, 0.6);
    if (m_settings) {
        window = double(int(m_settings->getVisualScale()));
        range = CorvidaSettings::pulseAxisRange(m_settings->getPulseAxisLimit());
    }
    m_pressureViewer->setWindowLength(window);
    m_ppgViewer->setWindowLength(window);
    m_ppgViewer->setValueRange(range.first, range.second);
}

void ExperimentViewer::applySplitterRatio(double ratio)
{
    if (!(ratio > 0.0 && ratio < 1.0))
        return;
    const QList<int> sizes = m_splitter->sizes();
    const int total = sizes.size() == 2 && sizes[0] + sizes[1] > 0 ? sizes[0] + sizes[1] : 10000;
    // Our own move comes back through the settings; leave the splitter alone then.
    if (sizes.size() == 2 && sizes[0] + sizes[1] > 0 &&
        std::fabs(double(sizes[0]) / total - ratio) * total < 1.0)
        return;
    const int top = int(std::lround(ratio * total));
    m_splitter->setSizes({top, total - top});
}

void ExperimentViewer::onSplitterMoved()
{
    const QList<int> sizes = m_splitter->sizes();
    if (!m_settings || sizes.size() != 2 || sizes[0] + sizes[1] <= 0)
        return;
    m_settings->setPressurePPGSplitterRatio(double(sizes[0]) / (sizes[0] + sizes[1]));
}

void ExperimentViewer::setDark(bool dark)
{
    m_darkSet = true;
    m_dark = dark;
    m_pressureViewer->setDark(dark);
    m_ppgViewer->setDark(dark);
    updateGraphics();
}

SignalViewer *ExperimentViewer::viewerAt(const QPoint &pos) const
{
    for (SignalViewer *v : {m_pressureViewer, m_ppgViewer}) {
        if (v->rect().contains(v->mapFrom(this, pos)))
            return v;
    }
    return nullptr;
}

QMenu *ExperimentViewer::createContextMenu(const QPoint &pos)
{
    CorvidaExperiment *e = m_experiment;
    if (!e)
        return nullptr;
    const double rate = e->getSamplingRate();
    const double length = rate > 0.0 ? double(e->getPressure().size()) / rate : 0.0;
    SignalViewer *viewer = viewerAt(pos);
    if (length < MinimumMenuSeconds || !viewer)
        return nullptr;
    // The time under the mouse, kept inside the plot and the record.
    const int margin = viewer->margin();
    const double x = std::clamp(double(viewer->mapFrom(this, pos).x()), double(margin),
                                double(std::max(margin, viewer->width() - margin)));
    const double time = std::clamp(viewer->timeAt(x), 0.0, length);

    auto *menu = new QMenu(this);
    const QIcon label = tintedIcon(QStringLiteral(":/icons/label_outline.svg"),
                                   m_dark ? QColor(0xff, 0xff, 0xff) : QColor(0x30, 0x30, 0x30));
    QPointer<CorvidaExperiment> p(e);
    menu->addAction(label, tr("Place SBP marker here"), this, [p, time] {
        if (p)
            p->setSBPTime(time);
    });
    menu->addAction(label, tr("Place DBP marker here"), this, [p, time] {
        if (p)
            p->setDBPTime(time);
    });
    menu->addSeparator();
    menu->addAction(resourceIcon(QStringLiteral(":/resources/images/calculate.svg")),
                    tr("Recalculate experiment"), this, [this, p] {
                        if (!p)
                            return;
                        // The operator asks for the detection again, so its markers replace
                        // the ones there are.
                        p->recalculate(true);
                        updateGraphics();
                        updateMethodRow();
                    });
    return menu;
}

void ExperimentViewer::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createContextMenu(event->pos());
    if (!menu)
        return;
    menu->exec(event->globalPos());
    delete menu;
}

void ExperimentViewer::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_darkSet) {
        m_dark = palette().color(QPalette::Window).lightness() < 128;
        updateGraphics();
    }
}
