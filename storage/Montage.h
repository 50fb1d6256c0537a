#pragma once

#include "storage/AmplifierChannel.h"

#include <QJsonObject>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

// The ordered signals of one recording and its sampling frequency. Channels are shared: a copy
// of a montage points at the same channel objects until copyChannels() is used.
class Montage
{
public:
    using ChannelPtr = QSharedPointer<AmplifierChannel>;

    Montage() = default;
    explicit Montage(const QString &name);
    explicit Montage(const QJsonObject &json);
    Montage(const Montage &other) = default;
    Montage &operator=(const Montage &other) = default;

    int size() const { return int(m_channels.size()); }
    bool empty() const { return m_channels.isEmpty(); }
    void push_back(const ChannelPtr &channel);
    void insert(int position, const ChannelPtr &channel);
    void erase(int position);
    void resize(int count);
    // Removes the channel with this index value and renumbers the rest.
    bool removeChannel(int index);
    void clearChannel() { m_channels.clear(); }
    // Deep copy: afterwards this montage owns its own channel objects.
    void copyChannels(const Montage &other);
    const QList<ChannelPtr> &getData() const { return m_channels; }
    ChannelPtr channel(int position) const { return m_channels.value(position); }

    QStringList getChannelNames() const;
    int getIndexByName(const QString &name) const;
    // Position of the first channel of type ECG, or -1.
    int getECGChannel() const;

    float getCurrentSampleFreq() const { return m_sampleFreq; }
    void setCurrentSampleFreq(float hz) { m_sampleFreq = hz; }
    QString getMontageName() const { return m_name; }
    void setMontageName(const QString &name);
    // Montages are kept as "<name>.xml" beside each other.
    QString getMontageFileName() const { return m_fileName; }

    // Table rows, one per channel, columns as AmplifierChannel::getTextValue.
    QList<QStringList> makeChannelDataList() const;
    // Replaces the channels with one per label, in order (the signals found in a file).
    void makeNewListFromFile(const QStringList &labels);
    // Sets each channel's index to its position.
    void rebuildMontageChannelList();
    void createChannelFilterList();
    void removeChannelFilterList();

    QJsonObject toJson() const;
    void fromJson(const QJsonObject &json);

private:
    QString m_name;
    QString m_fileName;
    QList<ChannelPtr> m_channels;
    float m_sampleFreq = 0.0f;
};

using MontagePtr = QSharedPointer<Montage>;
