#include "ui/HeartRateWidget.h"

#include <QCoreApplication>
#include <QFile>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <cmath>

#include "analysis/PeakFinder.h"

namespace {
QLabel *iconLabel(const QString &path, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setFixedSize(24, 24);
    if (!path.isEmpty())
        label->setPixmap(QIcon(path).pixmap(QSize(24, 24)));
    return label;
}
} // namespace

HeartRateWidget::HeartRateWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    m_icons = new QStackedWidget(this);
    m_icons->setFixedSize(24, 24);
    m_icons->addWidget(iconLabel(firstExisting({QStringLiteral(":/Images/heart.svg"),
                                                QStringLiteral(":/resources/images/heart.svg"),
                                                QStringLiteral(":/ECG/heart.svg")}),
                                 m_icons));
    m_icons->addWidget(iconLabel(firstExisting({QStringLiteral(":/Images/heart-off.svg"),
                                                QStringLiteral(":/resources/images/heart-off.svg"),
                                                QStringLiteral(":/ECG/heart-gray.svg")}),
                                 m_icons));
    box->addWidget(m_icons);
    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("heartRate"));
    m_label->setStyleSheet(QStringLiteral("QLabel { font-weight: bold }"));
    box->addWidget(m_label);
    setCompact(false);
    setHeartRate(0);
}

void HeartRateWidget::setCompact(bool compact)
{
    m_compact = compact;
    // Room for the widest rate from the start, so that a crowded header never cuts it off.
    QFont bold = m_label->font();
    bold.setBold(true);
    m_label->setMinimumWidth(
        QFontMetrics(bold).horizontalAdvance(
            compact ? QStringLiteral("888")
                    : QStringLiteral("888 ") + QCoreApplication::translate("DimensionRR", "BPM")) +
        4);
    showRate(m_bpm, m_beats);
}

QString HeartRateWidget::text() const
{
    return m_label->text();
}

int HeartRateWidget::iconPage() const
{
    return m_icons->currentIndex();
}

void HeartRateWidget::setHeartRate(int heartRateBPM)
{
    showRate(heartRateBPM, -1);
}

QString HeartRateWidget::doubtAbout(double bpm, int beats)
{
    if (bpm < PeakFinder::kMinBPM || bpm > PeakFinder::kMaxBPM)
        return tr("Outside the %1–%2 BPM a rat's or mouse's heart beats at: check the sensor and "
                  "the animal.")
            .arg(PeakFinder::kMinBPM)
            .arg(PeakFinder::kMaxBPM);
    if (beats >= 0 && beats < kMinBeats)
        return tr("Only %n beat(s) found in the last 3 seconds: too few for a steady rate.", "",
                  beats);
    return QString();
}

void HeartRateWidget::showRate(double bpm, int beats)
{
    m_bpm = bpm;
    m_beats = beats;
    const int rate = std::isfinite(bpm) ? int(bpm) : 0;
    if (rate < 1) {
        m_label->clear();
        m_icons->setCurrentIndex(1);
        m_uncertain = false;
        setToolTip(tr("No heart rate: no regular pulse was found in the last 3 seconds."));
        return;
    }
    // A narrow panel shows the number beside the heart; the tooltip says what it counts.
    // The rate comes once a second per unit and is mostly what it was: a label given the same
    // text or style sheet again is laid out and restyled all the same, so only changes go in.
    const QString text = m_compact ? QString::number(rate)
                                   : QString::number(rate) + QLatin1Char(' ') +
                                         QCoreApplication::translate("DimensionRR", "BPM");
    if (m_label->text() != text)
        m_label->setText(text);
    m_icons->setCurrentIndex(0);
    const QString doubt = doubtAbout(bpm, beats);
    m_uncertain = !doubt.isEmpty();
    // Greyed rather than bold: the number is there, but not as a confident reading.
    const QString sheet = m_uncertain ? QStringLiteral("QLabel { color: #8a8f96 }")
                                      : QStringLiteral("QLabel { font-weight: bold }");
    if (m_label->styleSheet() != sheet)
        m_label->setStyleSheet(sheet);
    setToolTip(m_uncertain ? tr("Uncertain heart rate.") + QLatin1Char(' ') + doubt
                           : tr("Heart rate over the last 3 seconds."));
}

QString HeartRateWidget::firstExisting(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (QFile::exists(path))
            return path;
    }
    return QString();
}
