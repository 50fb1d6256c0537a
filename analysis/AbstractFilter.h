#pragma once

#include <QList>
#include <QObject>
#include <QString>

// Base of the sample-by-sample filters. A filter keeps its state between calls, so a chain can
// clean an endless stream handed over in pieces of any length. Every Process overload feeds its
// samples, in order, through InternalProcess.
class AbstractFilter : public QObject
{
    Q_OBJECT
public:
    enum ImpulseResponseEnum { FIR = 0, IIR = 1 };
    Q_ENUM(ImpulseResponseEnum)

    enum FilterTypeEnum { LowPass = 0, HighPass = 1, BandPass = 2, BandStop = 3 };
    Q_ENUM(FilterTypeEnum)

    AbstractFilter(ImpulseResponseEnum impulseResponse, const QString &name,
                   QObject *parent = nullptr);

    ImpulseResponseEnum impulseResponse() const { return m_impulseResponse; }
    QString filterName() const { return m_name; }

    float Process(float x) { return InternalProcess(x); }
    QList<float> Process(const QList<float> &in);
    void Process(const float *in, float *out, int n);
    void Process(float *data, int n);
    void Process(float *data, int n, int step);
    // A negative n means the whole input list. An empty output list is first filled with n zeros.
    void Process(QList<float> *in, QList<float> *out, int n);
    // In place on the first n samples; a negative n means the whole list.
    void Process(QList<float> *data, int n);

public slots:
    virtual void Reset() = 0;
    virtual float InternalProcess(float x) = 0;

protected:
    // Filters n samples in place. Filters with a faster block form override it; the result must
    // be exactly that of InternalProcess on each sample in turn.
    virtual void processBlock(float *data, int n);

private:
    ImpulseResponseEnum m_impulseResponse;
    QString m_name;
};
