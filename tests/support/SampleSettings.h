#pragma once

#include "settings/SettingsWithLanguage.h"

#include <QColor>
#include <QDateTime>
#include <QPointF>

// One property of each kind the store converts, with hints; changes reach changedProperty.
class SampleSettings : public SettingsWithLanguage
{
    Q_OBJECT
public:
    enum class Mode { Alpha = 0, Beta = 1, Gamma = 5 };
    Q_ENUM(Mode)

    Q_CLASSINFO("LanguageDefaultOverride", "en_US")

    Q_PROPERTY(bool Flag MEMBER m_Flag NOTIFY changedFlag)
    Q_CLASSINFO("FlagDefault", "true")
    Q_PROPERTY(int Count MEMBER m_Count NOTIFY changedCount)
    Q_CLASSINFO("CountDefault", "7")
    Q_CLASSINFO("CountMinimum", "-5")
    Q_CLASSINFO("CountMaximum", "50")
    Q_PROPERTY(double Ratio MEMBER m_Ratio NOTIFY changedRatio)
    Q_CLASSINFO("RatioDefault", "0.25")
    Q_PROPERTY(float Gain MEMBER m_Gain NOTIFY changedGain)
    Q_CLASSINFO("GainVisibleBound", "Kind:Beta")
    Q_PROPERTY(QString Name MEMBER m_Name NOTIFY changedName)
    Q_PROPERTY(QColor Tint MEMBER m_Tint NOTIFY changedTint)
    Q_CLASSINFO("TintDefault", "#102030")
    Q_PROPERTY(Mode Kind MEMBER m_Kind NOTIFY changedKind)
    Q_CLASSINFO("KindDefault", "Mode::Gamma")
    Q_PROPERTY(QByteArray Blob MEMBER m_Blob NOTIFY changedBlob)
    Q_CLASSINFO("BlobNotVisible", "true")
    Q_PROPERTY(QPointF Anchor MEMBER m_Anchor NOTIFY changedAnchor)
    Q_CLASSINFO("AnchorVisibleBinded", "Flag:true")
    Q_PROPERTY(QDateTime Stamp MEMBER m_Stamp NOTIFY changedStamp)
    Q_CLASSINFO("StampReadOnly", "true")
    Q_PROPERTY(QVariantMap Labels MEMBER m_Labels NOTIFY changedLabels)
    Q_CLASSINFO("LabelsSpecialType", "StringMap")

public:
    explicit SampleSettings(const QString &filePath = QString(), bool autoSave = true,
                            VTSettingsFormat format = XML);

signals:
    void changedFlag(bool);
    void changedCount(int);
    void changedRatio(double);
    void changedGain(float);
    void changedName(QString);
    void changedTint(QColor);
    void changedKind(SampleSettings::Mode);
    void changedBlob(QByteArray);
    void changedAnchor(QPointF);
    void changedStamp(QDateTime);
    void changedLabels(QVariantMap);

private slots:
    void anyPropertyChanged();

private:
    bool m_Flag = false;
    int m_Count = 0;
    double m_Ratio = 0;
    float m_Gain = 0;
    QString m_Name;
    QColor m_Tint;
    Mode m_Kind = Mode::Alpha;
    QByteArray m_Blob;
    QPointF m_Anchor;
    QDateTime m_Stamp;
    QVariantMap m_Labels;
};
