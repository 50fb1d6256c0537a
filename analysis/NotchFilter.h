#pragma once

#include "analysis/AbstractFilter.h"
#include "analysis/IIRFilter.h"

// Second-order notch (band-reject) at a centre frequency with the given width in Hz:
// R = 1 - 3|w|/fs, c = cos(2 pi f0/fs), K = (1 - 2Rc + R^2) / (2 - 2c),
// H(z) = (K - 2Kc z^-1 + K z^-2) / (1 - 2Rc z^-1 + R^2 z^-2).
class NotchFilter : public AbstractFilter
{
    Q_OBJECT
public:
    NotchFilter(float samplingRate, float centreFrequency, float width, QObject *parent = nullptr);

    int filterType() const { return BandStop; }
    IIRFilter *stage() const { return m_stage; }

    void Reset() override { m_stage->Reset(); }
    float InternalProcess(float x) override { return m_stage->processSample(x); }

    // The design shared by the notch (type 3) and its band-pass twin (type 2). Any other type
    // leaves both lists empty and returns false.
    static bool coefficients(int type, float samplingRate, float centreFrequency, float width,
                             QList<float> *numerator, QList<float> *denominator);

protected:
    void processBlock(float *data, int n) override { m_stage->processSamples(data, n); }

private:
    IIRFilter *m_stage;
};
