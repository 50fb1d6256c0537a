#pragma once

#include "analysis/AbstractFilter.h"
#include "analysis/IIRFilter.h"

#include <complex>

// Butterworth filter designed by the bilinear transform with pre-warping. The order is rounded
// up to an even number and capped at 20; both frequencies are clamped to [0, fs/2].
//
//   type 0: low-pass at f1                 type 1: high-pass at f2
//   type 2: high-pass at f1, then low-pass at f2
//   type 3: low-pass at f1, then high-pass at f2 (in series, on purpose: not a band-reject)
class ButterworthFilter : public AbstractFilter
{
    Q_OBJECT
public:
    ButterworthFilter(int type, int order, float samplingRate, float firstFrequency,
                      float secondFrequency, QObject *parent = nullptr);

    int designOrder() const { return m_order; }
    int mode() const { return m_mode; }
    float firstFrequency() const { return m_f1; }
    float secondFrequency() const { return m_f2; }
    IIRFilter *stageA() const { return m_stageA; }
    IIRFilter *stageB() const { return m_stageB; }

    void Reset() override;
    float InternalProcess(float x) override;

    // Designs one low-pass or high-pass Butterworth as order/2 second-order sections, each
    // {b0, b1, b2, 1, a1, a2}, and the overall gain that makes the pass band unity.
    static void Butter(int order, double cutoff, double samplingRate, bool highPass,
                       QList<QList<float>> *sections, double *gain);

protected:
    void processBlock(float *data, int n) override;

private:
    static void FilterTransform(std::complex<double> pole, bool highPass,
                                QList<QList<float>> *sections, double *gain);
    IIRFilter *makeStage(double cutoff, bool highPass);

    int m_order;
    float m_samplingRate;
    float m_f1;
    float m_f2;
    int m_mode;
    IIRFilter *m_stageA = nullptr;
    IIRFilter *m_stageB = nullptr;
};
