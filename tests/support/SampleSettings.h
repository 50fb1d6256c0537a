#pragma once

#include "settings/SettingsWithLanguage.h"

#include <QColor>
#include <QDateTime>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QStringList>
#include <QVariantMap>

// A settings class with one property of every type the store converts, and hints on several,
// for tests of the store itself. Properties are plain members; every change signal is routed
// to changedProperty, as a hand-written setter would do.
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
    Q_CLASSINFO("CountStep", "5")
    Q_CLASSINFO("CountPrefix", "n=")
    Q_CLASSINFO("CountSuffix", " pcs")
    Q_CLASSINFO("CountCategory", "Numbers")
    Q_CLASSINFO("CountDescription", "How many things")
    Q_CLASSINFO("CountDisplayName", "Count of things")
    Q_CLASSINFO("CountPriority", "3")
    Q_CLASSINFO("CountMinWidth", "40")
    Q_CLASSINFO("CountMaxWidth", "200")
    Q_CLASSINFO("CountIcon", ":/icons/count.svg")
    Q_PROPERTY(double Ratio MEMBER m_Ratio NOTIFY changedRatio)
    Q_CLASSINFO("RatioDefault", "0.25")
    Q_CLASSINFO("RatioPrecision", "3")
    Q_PROPERTY(float Gain MEMBER m_Gain NOTIFY changedGain)
    Q_CLASSINFO("GainVisibleBound", "Kind:Beta")
    Q_PROPERTY(QString Name MEMBER m_Name NOTIFY changedName)
    Q_CLASSINFO("NameDefault", "\"\"")
    Q_CLASSINFO("NamePlaceholder", "nobody")
    Q_CLASSINFO("NameSuggestions", "Rat;Mouse")
    Q_PROPERTY(QString Owner MEMBER m_Owner NOTIFY changedOwner)
    Q_CLASSINFO("OwnerNoDefault", "true")
    Q_CLASSINFO("OwnerDefault", "lab")
    Q_CLASSINFO("OwnerEnum", "lab;clinic")
    Q_PROPERTY(QColor Tint MEMBER m_Tint NOTIFY changedTint)
    Q_CLASSINFO("TintDefault", "#102030")
    Q_PROPERTY(Qt::SortOrder Order MEMBER m_Order NOTIFY changedOrder)
    Q_CLASSINFO("OrderDefault", "Qt::SortOrder::DescendingOrder")
    Q_PROPERTY(Mode Kind MEMBER m_Kind NOTIFY changedKind)
    Q_CLASSINFO("KindDefault", "Mode::Gamma")
    Q_CLASSINFO("KindIconBeta", ":/icons/beta.svg")
    Q_PROPERTY(QByteArray Blob MEMBER m_Blob NOTIFY changedBlob)
    Q_CLASSINFO("BlobNotVisible", "true")
    Q_PROPERTY(QSize Extent MEMBER m_Extent NOTIFY changedExtent)
    Q_PROPERTY(QPoint Origin MEMBER m_Origin NOTIFY changedOrigin)
    Q_PROPERTY(QPointF Anchor MEMBER m_Anchor NOTIFY changedAnchor)
    Q_CLASSINFO("AnchorVisibleBinded", "Flag:true")
    Q_PROPERTY(char Letter MEMBER m_Letter NOTIFY changedLetter)
    Q_PROPERTY(signed char Tiny MEMBER m_Tiny NOTIFY changedTiny)
    Q_PROPERTY(uchar Byte MEMBER m_Byte NOTIFY changedByte)
    Q_PROPERTY(QDateTime Stamp MEMBER m_Stamp NOTIFY changedStamp)
    Q_CLASSINFO("StampDefault", "QDateTime::currentDateTime")
    Q_CLASSINFO("StampReadOnly", "true")
    Q_PROPERTY(QVariantMap Labels MEMBER m_Labels NOTIFY changedLabels)
    Q_CLASSINFO("LabelsSpecialType", "StringMap")
    Q_PROPERTY(QStringList Tags MEMBER m_Tags NOTIFY changedTags)
    Q_PROPERTY(int Transient MEMBER m_Transient NOTIFY changedTransient STORED false)

public:
    explicit SampleSettings(const QString &filePath = QString(), bool autoSave = true,
                            VTSettingsFormat format = XML);

signals:
    void changedFlag(bool);
    void changedCount(int);
    void changedRatio(double);
    void changedGain(float);
    void changedName(QString);
    void changedOwner(QString);
    void changedTint(QColor);
    void changedOrder(Qt::SortOrder);
    void changedKind(SampleSettings::Mode);
    void changedBlob(QByteArray);
    void changedExtent(QSize);
    void changedOrigin(QPoint);
    void changedAnchor(QPointF);
    void changedLetter(char);
    void changedTiny(signed char);
    void changedByte(uchar);
    void changedStamp(QDateTime);
    void changedLabels(QVariantMap);
    void changedTags(QStringList);
    void changedTransient(int);

private slots:
    void anyPropertyChanged();

private:
    bool m_Flag = false;
    int m_Count = 0;
    double m_Ratio = 0;
    float m_Gain = 0;
    QString m_Name;
    QString m_Owner;
    QColor m_Tint;
    Qt::SortOrder m_Order = Qt::AscendingOrder;
    Mode m_Kind = Mode::Alpha;
    QByteArray m_Blob;
    QSize m_Extent;
    QPoint m_Origin;
    QPointF m_Anchor;
    char m_Letter = 0;
    signed char m_Tiny = 0;
    uchar m_Byte = 0;
    QDateTime m_Stamp;
    QVariantMap m_Labels;
    QStringList m_Tags;
    int m_Transient = 0;
};
