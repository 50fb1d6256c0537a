#pragma once

#include "analysis/CorvidaOnlineExperiment.h"

#include <QList>
#include <QString>
#include <memory>

// The cuff cycle most record tests share, at 1000 Hz: up to 160 mmHg in 2 s, then down by
// 10 mmHg a second; a 450 bpm pulse (7.5 Hz) is a trace of 0.005 V while the cuff presses harder
// than 120 mmHg and comes back at 6 s, so the systolic point lies near 120 mmHg.
namespace TailCuff {
enum class Pulse {
    Returns, // back at full height (0.3 V) at once
    Grows,   // from 0.01 V to full height over the 3 s after it returns
    Flat,    // none at all
};

double pressureAt(double seconds);
void series(QList<double> *pressure, QList<double> *pulse, double seconds = 20.0,
            Pulse shape = Pulse::Returns);
// The cycle as a measurement just taken, not analysed and not saved.
std::unique_ptr<CorvidaOnlineExperiment> measurement(double seconds = 20.0,
                                                     Pulse shape = Pulse::Returns);
// The cycle saved into `folder`; the ".edf" path, empty when the save failed.
QString savedRecord(const QString &folder);
// The ".exp" file beside a recording, and the recording beside an ".exp" file.
QString expOf(const QString &edf);
QString edfOf(const QString &exp);
} // namespace TailCuff
