#include "ui/HeartRateWidget.h"

#include <QCoreApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>

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
    setHeartRate(0);
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
    if (heartRateBPM < 1) {
        m_label->clear();
        m_icons->setCurrentIndex(1);
        return;
    }
    m_label->setText(QString::number(heartRateBPM) + QLatin1Char(' ') +
                     QCoreApplication::translate("DimensionRR", "BPM"));
    m_icons->setCurrentIndex(0);
}

QString HeartRateWidget::firstExisting(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (QFile::exists(path))
            return path;
    }
    return QString();
}
