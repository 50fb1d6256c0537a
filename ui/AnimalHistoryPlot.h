#pragma once

#include <QDateTime>
#include <QList>
#include <QWidget>

// One animal's sessions across days: mean ± SD of SBP and DBP against the date in the upper
// plot, of the heart rate in the lower one. A flagged session is drawn hollow, and a session
// without a mean (acclimation only, or nothing accepted) as a grey mark on the date axis, so
// training days and days to repeat stand apart from good ones.
class AnimalHistoryPlot : public QWidget
{
    Q_OBJECT
public:
    struct Day {
        QDateTime when;
        double sbp = 0.0, sbpSd = 0.0;
        double dbp = 0.0, dbpSd = 0.0;
        double bpm = 0.0, bpmSd = 0.0;
        bool hasMean = false;
        bool flagged = false;
    };

    explicit AnimalHistoryPlot(QWidget *parent = nullptr);

    void setDays(const QList<Day> &days);
    QList<Day> days() const { return m_days; }

    QSize minimumSizeHint() const override { return {320, 260}; }

    // Draws into any painter (the window, a printed page) within `area`.
    void render(QPainter &painter, const QRectF &area) const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<Day> m_days;
};
