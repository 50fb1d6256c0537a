#include "storage/Montage.h"

#include <QJsonArray>

namespace {
constexpr int kTableColumns = 9;
}

Montage::Montage(const QString &name)
{
    setMontageName(name);
}

Montage::Montage(const QJsonObject &json)
{
    fromJson(json);
}

void Montage::push_back(const ChannelPtr &channel)
{
    if (channel)
        m_channels.append(channel);
}

void Montage::insert(int position, const ChannelPtr &channel)
{
    if (!channel)
        return;
    m_channels.insert(qBound(0, position, size()), channel);
}

void Montage::erase(int position)
{
    if (position >= 0 && position < size())
        m_channels.removeAt(position);
}

void Montage::resize(int count)
{
    count = qMax(count, 0);
    while (size() > count)
        m_channels.removeLast();
    while (size() < count)
        m_channels.append(ChannelPtr::create(size()));
}

bool Montage::removeChannel(int index)
{
    for (int i = 0; i < size(); ++i) {
        if (m_channels.at(i)->getIndex() == index) {
            m_channels.removeAt(i);
            rebuildMontageChannelList();
            return true;
        }
    }
    return false;
}

void Montage::copyChannels(const Montage &other)
{
    m_channels.clear();
    for (const ChannelPtr &c : other.m_channels)
        m_channels.append(ChannelPtr::create(*c));
}

QStringList Montage::getChannelNames() const
{
    QStringList names;
    for (const ChannelPtr &c : m_channels)
        names.append(c->getName());
    return names;
}

int Montage::getIndexByName(const QString &name) const
{
    for (int i = 0; i < size(); ++i)
        if (m_channels.at(i)->getName() == name)
            return i;
    return -1;
}

int Montage::getECGChannel() const
{
    for (int i = 0; i < size(); ++i)
        if (m_channels.at(i)->getChannelType() == AmplifierChannel::ECG)
            return i;
    return -1;
}

void Montage::setMontageName(const QString &name)
{
    m_name = name;
    m_fileName = name.isEmpty() ? QString() : name + QLatin1String(".xml");
}

QList<QStringList> Montage::makeChannelDataList() const
{
    QList<QStringList> rows;
    for (const ChannelPtr &c : m_channels) {
        QStringList row;
        for (int column = 0; column < kTableColumns; ++column)
            row.append(c->getTextValue(column));
        rows.append(row);
    }
    return rows;
}

void Montage::makeNewListFromFile(const QStringList &labels)
{
    m_channels.clear();
    for (int i = 0; i < labels.size(); ++i) {
        auto channel = ChannelPtr::create(i, 0.0f, AmplifierChannel::EEG);
        channel->setChannelName(labels.at(i));
        m_channels.append(channel);
    }
}

void Montage::rebuildMontageChannelList()
{
    for (int i = 0; i < size(); ++i)
        m_channels.at(i)->setIndex(i);
}

void Montage::createChannelFilterList()
{
    const auto filters = AmplifierChannel::defaultFilterValues();
    const auto groups = AmplifierChannel::defaultGroupValues();
    for (const ChannelPtr &c : m_channels)
        c->setFilterValueLists(filters, filters, filters, groups);
}

void Montage::removeChannelFilterList()
{
    for (const ChannelPtr &c : m_channels)
        c->clearFilterValueLists();
}

QJsonObject Montage::toJson() const
{
    QJsonArray list;
    for (const ChannelPtr &c : m_channels)
        list.append(c->toJson());
    QJsonObject json;
    json.insert(QLatin1String("name"), m_name);
    json.insert(QLatin1String("file_name"), m_fileName);
    json.insert(QLatin1String("chan_list"), list);
    return json;
}

void Montage::fromJson(const QJsonObject &json)
{
    if (json.contains(QLatin1String("name")))
        setMontageName(json.value(QLatin1String("name")).toString());
    if (json.contains(QLatin1String("chan_list"))) {
        m_channels.clear();
        const QJsonArray list = json.value(QLatin1String("chan_list")).toArray();
        for (const QJsonValue &v : list)
            m_channels.append(ChannelPtr::create(v.toObject()));
    }
}
