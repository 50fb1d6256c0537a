#include "storage/AmplifierChannel.h"

#include <QJsonValue>
#include <cmath>

AmplifierChannel::AmplifierChannel(int index, float scale, ChannelType type)
    : m_index(index)
    , m_type(type)
    , m_scale(scale)
{}

AmplifierChannel::AmplifierChannel(const QJsonObject &json)
{
    m_index = json.value(QLatin1String("index")).toInt();
    m_name = json.value(QLatin1String("name")).toString();
    const int type = json.value(QLatin1String("type")).toInt();
    if (type >= EEG && type <= Temp)
        m_type = ChannelType(type);
    m_scale = float(json.value(QLatin1String("scale")).toDouble(1.0));
    m_group1 = json.value(QLatin1String("G1")).toInt();
    m_group2 = json.value(QLatin1String("G2")).toInt();
    const QJsonObject filters = json.value(QLatin1String("filters")).toObject();
    m_hpf = float(filters.value(QLatin1String("HPF")).toDouble());
    m_lpf = float(filters.value(QLatin1String("LPF")).toDouble());
    m_bsf = float(filters.value(QLatin1String("BSF")).toDouble());
}

QStringList AmplifierChannel::channelTypeTexts()
{
    return {QStringLiteral("EEG"), QStringLiteral("ECG"),  QStringLiteral("EMG"),
            QStringLiteral("EOG"), QStringLiteral("Resp"), QStringLiteral("GSR"),
            QStringLiteral("PPG"), QStringLiteral("Temp")};
}

AmplifierChannel::ValueList AmplifierChannel::defaultFilterValues()
{
    static const ValueList values(
        new QList<float>{0.0f, 0.1f, 0.5f, 1.0f, 5.0f, 10.0f, 20.0f, 40.0f, 50.0f, 60.0f, 100.0f});
    return values;
}

AmplifierChannel::ValueList AmplifierChannel::defaultGroupValues()
{
    static const ValueList values(new QList<float>{0, 1, 2, 3, 4, 5, 6, 7, 8});
    return values;
}

QString AmplifierChannel::getTextType() const
{
    return channelTypeTexts().value(m_type);
}

void AmplifierChannel::setTextChannelType(const QString &text)
{
    const int type = channelTypeTexts().indexOf(text);
    if (type >= 0)
        m_type = ChannelType(type);
}

void AmplifierChannel::setFilterValueLists(ValueList hpf, ValueList lpf, ValueList bsf,
                                           ValueList groups)
{
    m_hpfValues = std::move(hpf);
    m_lpfValues = std::move(lpf);
    m_bsfValues = std::move(bsf);
    m_groupValues = std::move(groups);
}

void AmplifierChannel::clearFilterValueLists()
{
    setFilterValueLists({}, {}, {}, {});
}

QString AmplifierChannel::getTextValue(int column) const
{
    switch (column) {
    case 0:
        return QString::number(m_index);
    case 1:
        return getTextType();
    case 2:
        return m_name;
    case 3:
        return QString::number(m_group1);
    case 4:
        return QString::number(m_group2);
    case 5:
        return number(m_scale);
    case 6:
        return number(m_hpf);
    case 7:
        return number(m_lpf);
    case 8:
        return number(m_bsf);
    default:
        return {};
    }
}

QString AmplifierChannel::getTextFilterView() const
{
    if (!m_filterText.isEmpty())
        return m_filterText;
    return QString::asprintf("HP:%f;LP:%f;BS:%f;", double(m_hpf), double(m_lpf), double(m_bsf));
}

QString AmplifierChannel::makeTextView() const
{
    // Band-stop is "BSO=" here but "BSF" in JSON; saved texts of both kinds exist.
    return QStringLiteral("index=%1;name=%2;type=%3;g1=%4;g2=%5;scale=%6;LPF=%7;HPF=%8;BSO=%9;\n")
        .arg(QString::number(m_index), m_name, getTextType(), QString::number(m_group1),
             QString::number(m_group2), number(m_scale), number(m_lpf), number(m_hpf),
             number(m_bsf));
}

QJsonObject AmplifierChannel::toJson() const
{
    QJsonObject filters;
    filters.insert(QLatin1String("HPF"), double(m_hpf));
    filters.insert(QLatin1String("LPF"), double(m_lpf));
    filters.insert(QLatin1String("BSF"), double(m_bsf));
    QJsonObject json;
    json.insert(QLatin1String("index"), m_index);
    json.insert(QLatin1String("name"), m_name);
    json.insert(QLatin1String("type"), int(m_type));
    json.insert(QLatin1String("scale"), double(m_scale));
    json.insert(QLatin1String("G1"), m_group1);
    json.insert(QLatin1String("G2"), m_group2);
    json.insert(QLatin1String("filters"), filters);
    return json;
}

QString AmplifierChannel::number(double value)
{
    return QString::number(value, 'g', 6);
}

QStringList AmplifierChannel::valueTexts(const ValueList &values)
{
    QStringList texts;
    if (!values)
        return texts;
    for (float v : *values)
        texts.append(number(v));
    return texts;
}

int AmplifierChannel::indexOf(const ValueList &values, float value)
{
    if (!values)
        return -1;
    for (int i = 0; i < values->size(); ++i)
        if (std::fabs(values->at(i) - value) < 1e-6f)
            return i;
    return -1;
}
