#pragma once

#include "analysis/CorvidaExperiment.h"

// A finished record held in memory: the series are handed in and there is no file to read.
class MemoryRecord : public CorvidaExperiment
{
    Q_OBJECT
public:
    using CorvidaExperiment::CorvidaExperiment;

    void setSeries(const QList<double> &pressure, const QList<double> &pulse, double rate);

protected:
    void loadSeries() override {}
};
