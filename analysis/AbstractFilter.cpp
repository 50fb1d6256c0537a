#include "analysis/AbstractFilter.h"

#include <algorithm>

AbstractFilter::AbstractFilter(ImpulseResponseEnum impulseResponse, const QString &name,
                               QObject *parent)
    : QObject(parent)
    , m_impulseResponse(impulseResponse)
    , m_name(name)
{
    setObjectName(name);
}

QList<float> AbstractFilter::Process(const QList<float> &in)
{
    QList<float> out(in.size());
    Process(in.constData(), out.data(), int(in.size()));
    return out;
}

void AbstractFilter::Process(const float *in, float *out, int n)
{
    if (!in || !out || n <= 0)
        return;
    if (in != out)
        std::copy(in, in + n, out);
    processBlock(out, n);
}

void AbstractFilter::Process(float *data, int n)
{
    if (!data || n <= 0)
        return;
    processBlock(data, n);
}

void AbstractFilter::processBlock(float *data, int n)
{
    for (int i = 0; i < n; ++i)
        data[i] = InternalProcess(data[i]);
}

void AbstractFilter::Process(float *data, int n, int step)
{
    if (!data || step <= 0)
        return;
    for (int i = 0; i < n; ++i)
        data[qsizetype(i) * step] = InternalProcess(data[qsizetype(i) * step]);
}

void AbstractFilter::Process(QList<float> *in, QList<float> *out, int n)
{
    if (!in || !out)
        return;
    if (n < 0)
        n = int(in->size());
    n = std::min(n, int(in->size()));
    if (n <= 0)
        return;
    if (out->isEmpty())
        out->fill(0.0f, n);
    n = std::min(n, int(out->size()));
    Process(in->constData(), out->data(), n);
}

void AbstractFilter::Process(QList<float> *data, int n)
{
    if (!data)
        return;
    if (n < 0 || n > data->size())
        n = int(data->size());
    if (n <= 0)
        return;
    Process(data->data(), n);
}
