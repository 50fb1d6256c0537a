#pragma once

#include "ui/SignalViewerMarker.h"
#include "ui/SignalViewerPainter.h"
#include "ui/SignalViewerSeries.h"

#include <QList>
#include <QWidget>

class QScrollBar;
class QToolButton;

// Draws time series (cuff pressure or PPG) against time in a window that scrolls in steps of
// five seconds, with vertical time markers that can be dragged.
//
// The offset (the time at the left edge) is always a multiple of five seconds. New data moves
// the window along to the newest samples unless following is paused. Only the visible span is
// drawn, reduced to a few points per pixel column, so a paint costs the same for a ten-second
// record as for a ten-minute one.
class SignalViewer : public QWidget
{
    Q_OBJECT
public:
    static constexpr int ScrollStepSeconds = 5;
    static constexpr int ScrollBarHeight = 16;
    // A marker within this many pixels of the mouse is caught by a press.
    static constexpr int MarkerHitPixels = 5;

    explicit SignalViewer(QWidget *parent = nullptr);
    ~SignalViewer() override;

    // Replaces all series and takes their data in (as updateData() does).
    void setSeries(const QList<SignalViewerSeries> &series);
    const QList<SignalViewerSeries> &series() const { return m_series; }
    // Legend entries with nothing drawn in the plot (what the marker line styles mean).
    void setLegendOnly(const QList<SignalViewerSeries> &entries);
    const QList<SignalViewerSeries> &legendOnly() const { return m_legendOnly; }

    // The value range set by the owner (the vertical scale); see also fit to data.
    void setValueRange(double lower, double upper);
    double lowerValue() const { return m_lower; }
    double upperValue() const { return m_upper; }
    // Fit to data: the range follows the lowest and highest sample in view instead of the set
    // one, until switched off. The small button at the top right of the plot switches it.
    void setFitToData(bool on);
    bool fitToData() const { return m_fitToData; }
    // The range the plot is drawn with: the fitted one or the set one.
    double shownLower() const { return m_fitToData && m_fitValid ? m_fitLower : m_lower; }
    double shownUpper() const { return m_fitToData && m_fitValid ? m_fitUpper : m_upper; }
    QToolButton *fitButton() const { return m_fitButton; }

    void setWindowLength(double seconds);
    double windowLength() const { return m_windowLength; }
    void setOffset(double seconds);
    double offset() const { return m_offset; }
    double totalLength() const { return m_totalLength; }

    void setScrollMode(bool on);
    bool scrollMode() const { return m_scrollMode; }
    // While paused, new data leaves the window where it is.
    void setFollowPaused(bool paused);
    bool followPaused() const { return m_followPaused; }

    void setTitle(const QString &title);
    QString title() const { return m_title; }
    void setUnit(const QString &unit);
    QString unit() const { return m_unit; }
    // Written under the right end of the time axis; empty for none.
    void setTimeTitle(const QString &title);

    // Adds the marker, or replaces the one with the same tag.
    void setMarker(const SignalViewerMarker &marker);
    void removeMarker(const QString &tag);
    void clearMarkers();
    const QList<SignalViewerMarker> &markers() const { return m_markers; }
    // The marker's time, or a negative value when there is no marker with that tag.
    double markerTime(const QString &tag) const;
    void setMarkersMovable(bool movable);
    bool markersMovable() const { return m_markersMovable; }
    QString draggedTag() const { return m_draggedTag; }

    // Axis and text colours for a dark background. Until set, the palette decides.
    void setDark(bool dark);
    bool isDark() const;

    // Inner margin on the left and the right of the plot, in pixels.
    int margin() const { return m_margin; }
    double pixelsPerSecond() const;
    double timeAt(double x) const;
    QRect plotRect() const;
    QScrollBar *scrollBar() const { return m_scrollBar; }

public slots:
    // The series' sources have new data: recount the length, the scroll range and follow the
    // newest samples unless paused.
    void updateData();

signals:
    void markerMoveStarted();
    void markerUpdated(QString markerTag, double posSeconds, QString text);
    void markerMoveStopped();
    void offsetSecondsChanged(int offset);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int scrollMaximum() const;
    void updateScrollRange();
    void placeScrollBar();
    void placeFitButton();
    // Recomputes the fitted range from the samples in view; true when it changed.
    bool refit();
    void onScrollBarMoved(int value);
    // The first movable marker within reach of widget x, or null.
    const SignalViewerMarker *markerAt(double x) const;
    bool pressAt(double x);
    void dragTo(double x);
    void release();

    QList<SignalViewerSeries> m_series;
    QList<SignalViewerSeries> m_legendOnly;
    QList<SignalViewerMarker> m_markers;
    SignalViewerPainter m_painter;
    QScrollBar *m_scrollBar;
    QToolButton *m_fitButton;
    QString m_title;
    QString m_unit;
    QString m_timeTitle;
    QString m_draggedTag;
    double m_totalLength = 0.0;
    double m_windowLength = 60.0;
    double m_offset = 0.0;
    double m_lower = 0.0;
    double m_upper = 1.0;
    double m_fitLower = 0.0;
    double m_fitUpper = 1.0;
    bool m_fitToData = false;
    bool m_fitValid = false;
    int m_margin = 48;
    bool m_markersMovable = false;
    bool m_scrollMode = false;
    bool m_followPaused = false;
    bool m_darkSet = false;
    bool m_dark = false;
};
