#pragma once

#include <QJsonObject>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

// One recorded signal: its place, name, kind, display groups, scale and filter settings.
class AmplifierChannel
{
public:
    enum ChannelType { EEG = 0, ECG, EMG, EOG, Resp, GSR, PPG, Temp };
    using ValueList = QSharedPointer<const QList<float>>;

    AmplifierChannel(int index = 0, float scale = 1.0f, ChannelType type = EEG);
    explicit AmplifierChannel(const QJsonObject &json);

    static QStringList channelTypeTexts();
    // The selectable filter cut-offs and display groups shared by all channels of the family.
    static ValueList defaultFilterValues();
    static ValueList defaultGroupValues();

    int getIndex() const { return m_index; }
    void setIndex(int index) { m_index = index; }
    QString getName() const { return m_name; }
    void setChannelName(const QString &name) { m_name = name; }
    ChannelType getChannelType() const { return m_type; }
    void setChannelType(ChannelType type) { m_type = type; }
    QString getTextType() const;
    // Unknown text leaves the type as it is.
    void setTextChannelType(const QString &text);

    float getScale() const { return m_scale; }
    void setScale(float scale) { m_scale = scale; }
    int getGroup1() const { return m_group1; }
    void setGroup1(int group) { m_group1 = group; }
    int getGroup2() const { return m_group2; }
    void setGroup2(int group) { m_group2 = group; }

    float getHPF() const { return m_hpf; }
    void setHPF(float hz) { m_hpf = hz; }
    float getLPF() const { return m_lpf; }
    void setLPF(float hz) { m_lpf = hz; }
    float getBSF() const { return m_bsf; }
    void setBSF(float hz) { m_bsf = hz; }

    void setFilterValueLists(ValueList hpf, ValueList lpf, ValueList bsf, ValueList groups);
    void clearFilterValueLists();
    QStringList getHPFValues() const { return valueTexts(m_hpfValues); }
    QStringList getLPFValues() const { return valueTexts(m_lpfValues); }
    QStringList getBSFValues() const { return valueTexts(m_bsfValues); }
    QStringList getGroupValues() const { return valueTexts(m_groupValues); }
    // Position of the current value in its list, or -1.
    int getCurrentIndexHPF() const { return indexOf(m_hpfValues, m_hpf); }
    int getCurrentIndexLPF() const { return indexOf(m_lpfValues, m_lpf); }
    int getCurrentIndexBSF() const { return indexOf(m_bsfValues, m_bsf); }

    // One cell of a channel table; columns 0..8, anything else is empty.
    QString getTextValue(int column) const;
    void setTextFilter(const QString &text) { m_filterText = text; }
    QString getTextFilterView() const;
    QString makeTextView() const;
    QJsonObject toJson() const;

private:
    static QString number(double value);
    static QStringList valueTexts(const ValueList &values);
    static int indexOf(const ValueList &values, float value);

    int m_index = 0;
    QString m_name;
    ChannelType m_type = EEG;
    int m_group1 = 0;
    int m_group2 = 0;
    float m_scale = 1.0f;
    float m_lpf = 0.0f;
    float m_hpf = 0.0f;
    float m_bsf = 0.0f;
    QString m_filterText;
    ValueList m_hpfValues;
    ValueList m_lpfValues;
    ValueList m_bsfValues;
    ValueList m_groupValues;
};
