#include "support/MemoryRecord.h"

void MemoryRecord::setSeries(const QList<double> &pressure, const QList<double> &pulse, double rate)
{
    m_pressure = pressure;
    m_pulse = pulse;
    m_samplingRate = rate;
}
