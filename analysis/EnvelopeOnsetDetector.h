#pragma once

#include <QList>
#include <QPointF>
#include <QString>

// The refined way of placing the systolic and diastolic markers. It reads the pulse amplitude
// of every beat against the cuff pressure during deflation (the envelope) and fits a straight
// line through its rising part, between a fifth and four fifths of the way from the floor (the
// occluded pulse) to the plateau (the open artery):
//   - SBP is where that line leaves the floor: the cuff pressure at which the pulse starts to
//     come back, found from all the rising beats together rather than from the first beat large
//     enough to be seen. A rise that is curved rather than straight is fitted too
//     (RiseOnsetFit) and the higher onset kept; with a noisy sensor SBP is the corner of the
//     whole-envelope fit below, made with the noise taken out;
//   - DBP is the knee where growth stops, found by fitting floor, rise and plateau to the whole
//     envelope at once (EnvelopeHingeFit).
// The amplitudes are smoothed with a running median of five beats first, so a premature beat
// or a single artefact does not bend the line.
//
// It never guesses: a recording with no pulse returning during deflation gets no markers and a
// reason instead.
class EnvelopeOnsetDetector
{
public:
    struct Result {
        double systolicTime = 0.0;  // s, 0 when not found
        double diastolicTime = 0.0; // s, 0 when not found
        double systolic = 0.0;      // mmHg where the line leaves the floor
        double diastolic = 0.0;     // mmHg of the knee where the growth stops
        // Below this cuff pressure the artery is surely open: the lower of the line's SBP and
        // the corner where the fit of the whole envelope leaves its floor. 0 when not found.
        double surelyOpenBelow = 0.0;
        QString reason;             // why there are no markers, in words for the operator
    };

    // pressure: the cuff pressure series; amplitudes: (beat time in s, amplitude) of every
    // beat, as the peak finder gives them.
    static Result detect(const QList<double> &pressure, const QList<QPointF> &amplitudes,
                         double samplingRate);

    // Leaves out the beats of a moving animal: those far above the beats around them. The three
    // lists describe the same beats and are shortened together.
    static void dropMovement(QList<double> &times, QList<double> &amplitudes, QList<double> &cuff);

    // Running median over `width` points (odd), the ends using what is there.
    static QList<double> runningMedian(const QList<double> &values, int width);
};
