#pragma once

#include <QWidget>

class QLabel;
class QStackedWidget;

// The heart-rate readout of a device panel: a heart with the rate in beats per minute, or a
// struck-out heart and no number while no rate is known.
class HeartRateWidget : public QWidget
{
    Q_OBJECT
public:
    explicit HeartRateWidget(QWidget *parent = nullptr);

    QString text() const;
    // 0: the heart is shown, 1: the struck-out heart.
    int iconPage() const;

public slots:
    void setHeartRate(int heartRateBPM);

private:
    static QString firstExisting(const QStringList &paths);

    QStackedWidget *m_icons;
    QLabel *m_label;
};
