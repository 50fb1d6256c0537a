#pragma once

#include <QWidget>

class QLabel;
class QStackedWidget;

// The heart-rate readout of a device panel: a heart with the rate in beats per minute, or a
// struck-out heart and no number while no rate is known. A rate that cannot be trusted (outside
// what a rodent's heart does, or from a handful of beats) is shown greyed, and its tooltip says
// why.
class HeartRateWidget : public QWidget
{
    Q_OBJECT
public:
    explicit HeartRateWidget(QWidget *parent = nullptr);

    QString text() const;
    // 0: the heart is shown, 1: the struck-out heart.
    int iconPage() const;

    // Fewer beats than this in the three seconds a rate is computed over make it uncertain.
    static constexpr int kMinBeats = 5;
    // Why a rate from that many beats cannot be trusted; empty when it can (beats < 0: unknown).
    static QString doubtAbout(double bpm, int beats);
    bool isUncertain() const { return m_uncertain; }

public slots:
    void setHeartRate(int heartRateBPM);
    void showRate(double bpm, int beats);
    // Only the number, without "BPM", for a narrow panel.
    void setCompact(bool compact);

private:
    static QString firstExisting(const QStringList &paths);

    QStackedWidget *m_icons;
    QLabel *m_label;
    bool m_uncertain = false;
    bool m_compact = false;
    double m_bpm = 0.0;
    int m_beats = -1;
};
