#include "ui/MultiExperimentViewer.h"

#include "analysis/CorvidaExperiment.h"
#include "toolkit/GenericText.h"
#include "ui/ExperimentViewer.h"
#include "ui/SignalViewer.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>

#include <cmath>

namespace {
QString recordName(CorvidaExperiment *e)
{
    if (!e->getRodent().trimmed().isEmpty())
        return e->getRodent().trimmed();
    return e->listLabel();
}
} // namespace

MultiExperimentViewer::MultiExperimentViewer(QWidget *parent)
    : QWidget(parent)
    , m_splitter(new QSplitter(Qt::Vertical, this))
    , m_pressureViewer(new SignalViewer)
    , m_ppgViewer(new SignalViewer)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);
    m_splitter->addWidget(m_pressureViewer);
    m_splitter->addWidget(m_ppgViewer);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setSizes({4000, 6000});
    m_pressureViewer->setTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Pressure")));
    m_pressureViewer->setUnit(genericText(QT_TRANSLATE_NOOP("Generic", "mmHg")));
    m_ppgViewer->setTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Photoplethysmogram")));
    // Volts of the pulse as if the sensor's steady level were 1.2 V, as the export names it.
    m_ppgViewer->setUnit(genericText(QT_TRANSLATE_NOOP("Generic", "V")));
    m_ppgViewer->setTimeTitle(genericText(QT_TRANSLATE_NOOP("Generic", "Time")) +
                              QStringLiteral(", ") + tr("s"));
    m_ppgViewer->setScrollMode(true);
    for (SignalViewer *v : {m_pressureViewer, m_ppgViewer})
        v->setFollowPaused(true);
    connect(m_ppgViewer->scrollBar(), &QScrollBar::valueChanged, this,
            [this] { m_pressureViewer->setOffset(m_ppgViewer->offset()); });
}

MultiExperimentViewer::~MultiExperimentViewer() = default;

QColor MultiExperimentViewer::colorFor(int index)
{
    static const QColor colors[] = {QColor(0x11, 0x55, 0x99), QColor(0xcc, 0x44, 0x44),
                                    QColor(0x11, 0x99, 0x11), QColor(0x8e, 0x44, 0xad),
                                    QColor(0xd3, 0x54, 0x00), QColor(0x16, 0xa0, 0x85),
                                    QColor(0x66, 0x11, 0x00), QColor(0x7f, 0x8c, 0x8d)};
    const int n = int(sizeof(colors) / sizeof(colors[0]));
    return colors[((index % n) + n) % n];
}

void MultiExperimentViewer::setExperiments(const QList<CorvidaExperiment *> &experiments)
{
    m_connections.clear();
    m_experiments.clear();
    for (CorvidaExperiment *e : experiments) {
        if (!e)
            continue;
        m_experiments.append(e);
        for (auto signal : {&CorvidaExperiment::changedSBPTime, &CorvidaExperiment::changedDBPTime})
            m_connections << connect(e, signal, this, &MultiExperimentViewer::updateGraphics);
        m_connections << connect(e, &QObject::destroyed, this, [this] {
            // Forget it now; the list is rebuilt from the records that are left.
            QMetaObject::invokeMethod(this, &MultiExperimentViewer::updateGraphics,
                                      Qt::QueuedConnection);
        });
    }
    updateGraphics();
    m_pressureViewer->setOffset(0);
    m_ppgViewer->setOffset(0);
}

QList<CorvidaExperiment *> MultiExperimentViewer::experiments() const
{
    QList<CorvidaExperiment *> list;
    for (const auto &e : m_experiments) {
        if (e)
            list.append(e);
    }
    return list;
}

Qt::PenStyle MultiExperimentViewer::markerStyle(const char *label)
{
    return qstrcmp(label, "SBP") == 0 ? Qt::DashLine : Qt::DotLine;
}

void MultiExperimentViewer::updateGraphics()
{
    QList<SignalViewerSeries> pressure;
    QList<SignalViewerSeries> ppg;
    double longest = 0.0;
    double highest = 0.0;
    double pulseLow = 0.0, pulseHigh = 0.0;
    m_pressureViewer->clearMarkers();
    m_ppgViewer->clearMarkers();
    int index = 0;
    for (const auto &p : std::as_const(m_experiments)) {
        CorvidaExperiment *e = p;
        if (!e)
            continue;
        const QColor color = colorFor(index++);
        const double rate = e->getSamplingRate();
        const QList<double> pressureSeries = e->getPressure();
        if (rate > 0.0)
            longest = std::max(longest, double(pressureSeries.size()) / rate);
        for (double v : pressureSeries)
            highest = std::max(highest, v);
        const QString name = recordName(e);
        pressure << SignalViewerSeries::fromSamples(pressureSeries, rate, color, 1.5).named(name);
        const QList<double> pulse = e->getPulse();
        for (double v : pulse) {
            pulseLow = std::min(pulseLow, v);
            pulseHigh = std::max(pulseHigh, v);
        }
        ppg << SignalViewerSeries::fromSamples(pulse, rate, color, 1.2);
        const QString suffix = QLatin1Char(' ') + QString::number(index);
        const struct {
            const char *label;
            double time;
        } marks[] = {{QT_TRANSLATE_NOOP("Generic", "SBP"), e->getSBPTime()},
                     {QT_TRANSLATE_NOOP("Generic", "DBP"), e->getDBPTime()}};
        // Lines in the record's colour, dashed for SBP and dotted for DBP; the legend names the
        // two once. Labels on every line would pile up into an unreadable stack.
        for (const auto &m : marks) {
            if (m.time <= 0.0)
                continue;
            SignalViewerMarker marker(QLatin1String(m.label) + suffix, QString(), m.time,
                                      SignalViewerMarker::Kind::Fixed, color);
            marker.setLineStyle(markerStyle(m.label));
            m_pressureViewer->setMarker(marker);
            m_ppgViewer->setMarker(marker);
        }
    }
    const QColor neutral(0x80, 0x80, 0x80); // reads on the light and the dark theme
    QList<SignalViewerSeries> legend;
    if (!m_pressureViewer->markers().isEmpty()) {
        for (const char *label :
             {QT_TRANSLATE_NOOP("Generic", "SBP"), QT_TRANSLATE_NOOP("Generic", "DBP")})
            legend << SignalViewerSeries::fromSamples({}, 0.0, neutral, 1.5)
                          .named(genericText(label))
                          .withPenStyle(markerStyle(label));
    }
    m_ppgViewer->setLegendOnly(legend);
    // The whole of the longest record fits the window, in the viewers' five-second steps.
    const double window = std::max(double(SignalViewer::ScrollStepSeconds),
                                   std::ceil(longest / SignalViewer::ScrollStepSeconds) *
                                       SignalViewer::ScrollStepSeconds);
    for (SignalViewer *v : {m_pressureViewer, m_ppgViewer})
        v->setWindowLength(window);
    m_pressureViewer->setValueRange(0.0, ExperimentViewer::pressureAxisUpper(highest));
    m_pressureViewer->setSeries(pressure);
    m_ppgViewer->setSeries(ppg);
    // Records measured with different settings share one PPG axis that fits them all.
    const double pad = (pulseHigh - pulseLow) * 0.05;
    if (pulseHigh > pulseLow)
        m_ppgViewer->setValueRange(pulseLow - pad, pulseHigh + pad);
}

void MultiExperimentViewer::setDark(bool dark)
{
    m_pressureViewer->setDark(dark);
    m_ppgViewer->setDark(dark);
}
