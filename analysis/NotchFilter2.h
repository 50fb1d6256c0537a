#pragma once

#include "analysis/AbstractFilter.h"
#include "analysis/IIRFilter.h"

// A second notch form, from the bilinear-transformed analogue notch: sampling rate, centre
// frequency and bandwidth (Hz, between the -3 dB points). Its zeros sit exactly on the unit
// circle, so the centre frequency is removed completely; the pass band is flat to within the
// bandwidth. Kept for analysis tools; the measuring path uses NotchFilter.
class NotchFilter2 : public AbstractFilter
{
    Q_OBJECT
public:
    NotchFilter2(float samplingRate, float centreFrequency, float bandwidth,
                 QObject *parent = nullptr);

    void Reset() override { m_stage->Reset(); }
    float InternalProcess(float x) override { return m_stage->processSample(x); }

protected:
    void processBlock(float *data, int n) override { m_stage->processSamples(data, n); }

private:
    IIRFilter *m_stage;
};
