#pragma once

#include <QMap>
#include <QString>

// Filter name ("HP", "LP", ...) to cut-off frequency in Hz. Kept in key order, which is the
// order the names appear in a signal's prefilter text.
using PrefilterMap = QMap<QString, float>;

// How one signal of a recording is described in the file header.
struct ChannelDim {
    QString label;
    double physicalMinimum = -1000.0;
    double physicalMaximum = 1000.0;
    QString physicalDimension = QStringLiteral("uV");
    // The same map for all signals of one writer.
    PrefilterMap prefilter;

    ChannelDim() = default;
    explicit ChannelDim(const QString &name, double range = 1000.0,
                        const PrefilterMap &filters = {})
        : label(name)
        , physicalMinimum(-range)
        , physicalMaximum(range)
        , prefilter(filters)
    {}
};
