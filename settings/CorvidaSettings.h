#pragma once

#include "settings/VTSettings.h"
#include "toolkit/StyleColorTheme.h"

#include <QPair>

// The application's settings, kept in "Settings.xml" in the data folder: every user setting
// and every remembered window value. Each property has get/set/reset operations and a change
// signal carrying the new value; the settings page builds its editors from the hints below.
class CorvidaSettings : public VTSettings
{
    Q_OBJECT
public:
    // Cuff pressure of a measurement, "Pressure_<upper>_<lower>" in mmHg.
    enum class PressureLimits {
        Pressure_300_75 = 0,
        Pressure_240_60 = 1,
        Pressure_200_50 = 2,
        Pressure_160_40 = 3,
        Pressure_120_30 = 4,
        Pressure_100_25 = 5
    };
    Q_ENUM(PressureLimits)
    // Width of the live signal window; the value is the number of seconds.
    enum class VisualScales {
        Scale_10 = 10,
        Scale_20 = 20,
        Scale_30 = 30,
        Scale_60 = 60,
        Scale_90 = 90,
        Scale_120 = 120
    };
    Q_ENUM(VisualScales)
    // Pulse axis, "PulseAxis_<upper with _ for the point>_m<lower in thousandths, no sign>".
    enum class PulseAxisLimits {
        PulseAxis_1_800_m900 = 0,
        PulseAxis_1_200_m600 = 1,
        PulseAxis_1_000_m500 = 2,
        PulseAxis_0_800_m400 = 3,
        PulseAxis_0_600_m300 = 4,
        PulseAxis_0_400_m200 = 5,
        PulseAxis_0_200_m100 = 6
    };
    Q_ENUM(PulseAxisLimits)
    enum class ExportBehaviorOption {
        OnExport_OpenFile = 0,
        OnExport_OpenFolder = 1,
        OnExport_DoNothing = 2
    };
    Q_ENUM(ExportBehaviorOption)
    enum class CorvidaViewMode { View_Grid = 0, View_Tabs = 1 };
    Q_ENUM(CorvidaViewMode)
    enum class CorvidaLanguage { en_US = 0, ru_RU = 1 };
    Q_ENUM(CorvidaLanguage)

    Q_PROPERTY(CorvidaLanguage Language READ getLanguage WRITE setLanguage RESET resetLanguage
                   NOTIFY changedLanguage)
    Q_CLASSINFO("LanguageNoDefault", "true")
    Q_CLASSINFO("LanguageEditable", "true")
    Q_CLASSINFO("LanguageIcon", ":/icons/translate.svg")
    Q_CLASSINFO("LanguageDefault", "CorvidaLanguage::ru_RU")

    Q_PROPERTY(StyleColorTheme::ColorThemeEnum ColorTheme READ getColorTheme WRITE setColorTheme
                   RESET resetColorTheme NOTIFY changedColorTheme)
    Q_CLASSINFO("ColorThemeEditable", "true")
    Q_CLASSINFO("ColorThemeIcon", ":/icons/brightness.svg")
    Q_CLASSINFO("ColorThemeDefault", "StyleHelper::ColorThemeEnum::System")

    Q_PROPERTY(PressureLimits PressureLimit READ getPressureLimit WRITE setPressureLimit RESET
                   resetPressureLimit NOTIFY changedPressureLimit)
    Q_CLASSINFO("PressureLimitEditable", "true")
    Q_CLASSINFO("PressureLimitIcon", ":/resources/images/pressure-gauge.svg")
    Q_CLASSINFO("PressureLimitDefault", "PressureLimits::Pressure_200_50")

    Q_PROPERTY(VisualScales VisualScale READ getVisualScale WRITE setVisualScale RESET
                   resetVisualScale NOTIFY changedVisualScale)
    Q_CLASSINFO("VisualScaleEditable", "true")
    Q_CLASSINFO("VisualScaleIcon", ":/icons/arrow-left-right.svg")
    Q_CLASSINFO("VisualScaleDefault", "VisualScales::Scale_60")

    Q_PROPERTY(PulseAxisLimits PulseAxisLimit READ getPulseAxisLimit WRITE setPulseAxisLimit RESET
                   resetPulseAxisLimit NOTIFY changedPulseAxisLimit)
    Q_CLASSINFO("PulseAxisLimitEditable", "true")
    Q_CLASSINFO("PulseAxisLimitIcon", ":/icons/arrow-up-down.svg")
    Q_CLASSINFO("PulseAxisLimitDefault", "PulseAxisLimits::PulseAxis_0_600_m300")

    Q_PROPERTY(bool StartFullscreen READ getStartFullscreen WRITE setStartFullscreen RESET
                   resetStartFullscreen NOTIFY changedStartFullscreen)
    Q_CLASSINFO("StartFullscreenEditable", "true")
    Q_CLASSINFO("StartFullscreenIcon", ":/icons/fullscreen.svg")
    Q_CLASSINFO("StartFullscreenDefault", "true")

    Q_PROPERTY(ExportBehaviorOption ExportBehavior READ getExportBehavior WRITE setExportBehavior
                   RESET resetExportBehavior NOTIFY changedExportBehavior)
    Q_CLASSINFO("ExportBehaviorEditable", "true")
    Q_CLASSINFO("ExportBehaviorIcon", ":/icons/file-export.svg")
    Q_CLASSINFO("ExportBehaviorDefault", "ExportBehaviorOption::OnExport_OpenFile")

    Q_PROPERTY(
        double DatabaseSplitterRatio READ getDatabaseSplitterRatio WRITE setDatabaseSplitterRatio
            RESET resetDatabaseSplitterRatio NOTIFY changedDatabaseSplitterRatio)
    Q_CLASSINFO("DatabaseSplitterRatioNotVisible", "true")
    Q_CLASSINFO("DatabaseSplitterRatioEditable", "true")
    Q_CLASSINFO("DatabaseSplitterRatioDefault", "0.2")

    Q_PROPERTY(double PressurePPGSplitterRatio READ getPressurePPGSplitterRatio WRITE
                   setPressurePPGSplitterRatio RESET resetPressurePPGSplitterRatio NOTIFY
                       changedPressurePPGSplitterRatio)
    Q_CLASSINFO("PressurePPGSplitterRatioNotVisible", "true")
    Q_CLASSINFO("PressurePPGSplitterRatioEditable", "true")
    Q_CLASSINFO("PressurePPGSplitterRatioDefault", "0.4")

    Q_PROPERTY(QString LastImportFolder READ getLastImportFolder WRITE setLastImportFolder RESET
                   resetLastImportFolder NOTIFY changedLastImportFolder)
    Q_CLASSINFO("LastImportFolderNotVisible", "true")
    Q_CLASSINFO("LastImportFolderEditable", "true")
    Q_CLASSINFO("LastImportFolderDefault", "\"\"")

    Q_PROPERTY(QString LastExportFolder READ getLastExportFolder WRITE setLastExportFolder RESET
                   resetLastExportFolder NOTIFY changedLastExportFolder)
    Q_CLASSINFO("LastExportFolderNotVisible", "true")
    Q_CLASSINFO("LastExportFolderEditable", "true")
    Q_CLASSINFO("LastExportFolderDefault", "\"\"")

    Q_PROPERTY(QString LastExportFilter READ getLastExportFilter WRITE setLastExportFilter RESET
                   resetLastExportFilter NOTIFY changedLastExportFilter)
    Q_CLASSINFO("LastExportFilterNotVisible", "true")
    Q_CLASSINFO("LastExportFilterEditable", "true")
    Q_CLASSINFO("LastExportFilterDefault", "\"\"")

    Q_PROPERTY(QString LastExperimentPath READ getLastExperimentPath WRITE setLastExperimentPath
                   RESET resetLastExperimentPath NOTIFY changedLastExperimentPath)
    Q_CLASSINFO("LastExperimentPathNotVisible", "true")
    Q_CLASSINFO("LastExperimentPathEditable", "true")
    Q_CLASSINFO("LastExperimentPathDefault", "\"\"")

    Q_PROPERTY(qint32 SortingColumn READ getSortingColumn WRITE setSortingColumn RESET
                   resetSortingColumn NOTIFY changedSortingColumn)
    Q_CLASSINFO("SortingColumnNotVisible", "true")
    Q_CLASSINFO("SortingColumnEditable", "true")
    Q_CLASSINFO("SortingColumnDefault", "0")

    Q_PROPERTY(Qt::SortOrder SortingOrder READ getSortingOrder WRITE setSortingOrder RESET
                   resetSortingOrder NOTIFY changedSortingOrder)
    Q_CLASSINFO("SortingOrderNotVisible", "true")
    Q_CLASSINFO("SortingOrderEditable", "true")
    Q_CLASSINFO("SortingOrderDefault", "Qt::SortOrder::DescendingOrder")

    Q_PROPERTY(bool ShowSuggestions READ getShowSuggestions WRITE setShowSuggestions RESET
                   resetShowSuggestions NOTIFY changedShowSuggestions)
    Q_CLASSINFO("ShowSuggestionsNotVisible", "true")
    Q_CLASSINFO("ShowSuggestionsEditable", "true")
    Q_CLASSINFO("ShowSuggestionsDefault", "true")

    Q_PROPERTY(CorvidaViewMode ViewMode READ getViewMode WRITE setViewMode RESET resetViewMode
                   NOTIFY changedViewMode)
    Q_CLASSINFO("ViewModeEditable", "true")
    Q_CLASSINFO("ViewModeIcon", ":/icons/checkbox-intermediate.svg")
    Q_CLASSINFO("ViewModeIconView_Grid", ":/resources/images/grid_view.svg")
    Q_CLASSINFO("ViewModeIconView_Tabs", ":/resources/images/tabs_view.svg")
    Q_CLASSINFO("ViewModeMinWidth", "120")
    Q_CLASSINFO("ViewModeDefault", "CorvidaViewMode::View_Grid")

    Q_PROPERTY(bool DebugMode READ getDebugMode WRITE setDebugMode RESET resetDebugMode NOTIFY
                   changedDebugMode)
    Q_CLASSINFO("DebugModeEditable", "true")
    Q_CLASSINFO("DebugModeVisibleBound", "DebugMode:true")
    Q_CLASSINFO("DebugModeDefault", "false")

    Q_PROPERTY(qint32 UseVirtualCorvida READ getUseVirtualCorvida WRITE setUseVirtualCorvida RESET
                   resetUseVirtualCorvida NOTIFY changedUseVirtualCorvida)
    Q_CLASSINFO("UseVirtualCorvidaEditable", "true")
    Q_CLASSINFO("UseVirtualCorvidaVisibleBound", "DebugMode:true")
    Q_CLASSINFO("UseVirtualCorvidaDefault", "0")
    Q_CLASSINFO("UseVirtualCorvidaMinimum", "0")
    Q_CLASSINFO("UseVirtualCorvidaMaximum", "4")
    Q_CLASSINFO("UseVirtualCorvidaStep", "1")

    Q_PROPERTY(bool ShowDisconnectedDevices READ getShowDisconnectedDevices WRITE
                   setShowDisconnectedDevices RESET resetShowDisconnectedDevices NOTIFY
                       changedShowDisconnectedDevices)
    Q_CLASSINFO("ShowDisconnectedDevicesEditable", "true")
    Q_CLASSINFO("ShowDisconnectedDevicesVisibleBound", "DebugMode:true")
    Q_CLASSINFO("ShowDisconnectedDevicesDefault", "false")

    Q_PROPERTY(bool SaveRawData READ getSaveRawData WRITE setSaveRawData RESET resetSaveRawData
                   NOTIFY changedSaveRawData)
    Q_CLASSINFO("SaveRawDataEditable", "true")
    Q_CLASSINFO("SaveRawDataVisibleBound", "DebugMode:true")
    Q_CLASSINFO("SaveRawDataDefault", "false")

public:
    // Takes the defaults, then reads the file (when the path is not empty).
    explicit CorvidaSettings(const QString &filePath = QString(), QObject *parent = nullptr);

    // (upper, lower) cuff pressure in mmHg named by the key, for example (200, 50).
    static QPair<double, double> pressureLimitPair(PressureLimits limits);
    // (lower, upper) of the pulse axis named by the key, for example (-0.3, 0.6).
    static QPair<double, double> pulseAxisRange(PulseAxisLimits limits);
    // "en_US", "ru_RU"; empty for a value outside the enumeration.
    static QString languageName(CorvidaLanguage language);

    // Until a language has been chosen or read from the file this is CorvidaLanguage(-1), which
    // is no key at all: start-up then picks the system's language.
    CorvidaLanguage getLanguage() const { return m_Language; }
    StyleColorTheme::ColorThemeEnum getColorTheme() const { return m_ColorTheme; }
    PressureLimits getPressureLimit() const { return m_PressureLimit; }
    VisualScales getVisualScale() const { return m_VisualScale; }
    PulseAxisLimits getPulseAxisLimit() const { return m_PulseAxisLimit; }
    bool getStartFullscreen() const { return m_StartFullscreen; }
    ExportBehaviorOption getExportBehavior() const { return m_ExportBehavior; }
    double getDatabaseSplitterRatio() const { return m_DatabaseSplitterRatio; }
    double getPressurePPGSplitterRatio() const { return m_PressurePPGSplitterRatio; }
    QString getLastImportFolder() const { return m_LastImportFolder; }
    QString getLastExportFolder() const { return m_LastExportFolder; }
    QString getLastExportFilter() const { return m_LastExportFilter; }
    QString getLastExperimentPath() const { return m_LastExperimentPath; }
    qint32 getSortingColumn() const { return m_SortingColumn; }
    Qt::SortOrder getSortingOrder() const { return m_SortingOrder; }
    bool getShowSuggestions() const { return m_ShowSuggestions; }
    CorvidaViewMode getViewMode() const { return m_ViewMode; }
    bool getDebugMode() const { return m_DebugMode; }
    qint32 getUseVirtualCorvida() const { return m_UseVirtualCorvida; }
    bool getShowDisconnectedDevices() const { return m_ShowDisconnectedDevices; }
    bool getSaveRawData() const { return m_SaveRawData; }

public slots:
    void setLanguage(CorvidaSettings::CorvidaLanguage Language);
    void setColorTheme(StyleColorTheme::ColorThemeEnum ColorTheme);
    void setPressureLimit(CorvidaSettings::PressureLimits PressureLimit);
    void setVisualScale(CorvidaSettings::VisualScales VisualScale);
    void setPulseAxisLimit(CorvidaSettings::PulseAxisLimits PulseAxisLimit);
    void setStartFullscreen(bool StartFullscreen);
    void setExportBehavior(CorvidaSettings::ExportBehaviorOption ExportBehavior);
    void setDatabaseSplitterRatio(double DatabaseSplitterRatio);
    void setPressurePPGSplitterRatio(double PressurePPGSplitterRatio);
    void setLastImportFolder(const QString &LastImportFolder);
    void setLastExportFolder(const QString &LastExportFolder);
    void setLastExportFilter(const QString &LastExportFilter);
    void setLastExperimentPath(const QString &LastExperimentPath);
    void setSortingColumn(qint32 SortingColumn);
    void setSortingOrder(Qt::SortOrder SortingOrder);
    void setShowSuggestions(bool ShowSuggestions);
    void setViewMode(CorvidaSettings::CorvidaViewMode ViewMode);
    void setDebugMode(bool DebugMode);
    void setUseVirtualCorvida(qint32 UseVirtualCorvida);
    void setShowDisconnectedDevices(bool ShowDisconnectedDevices);
    void setSaveRawData(bool SaveRawData);

    void resetLanguage();
    void resetColorTheme();
    void resetPressureLimit();
    void resetVisualScale();
    void resetPulseAxisLimit();
    void resetStartFullscreen();
    void resetExportBehavior();
    void resetDatabaseSplitterRatio();
    void resetPressurePPGSplitterRatio();
    void resetLastImportFolder();
    void resetLastExportFolder();
    void resetLastExportFilter();
    void resetLastExperimentPath();
    void resetSortingColumn();
    void resetSortingOrder();
    void resetShowSuggestions();
    void resetViewMode();
    void resetDebugMode();
    void resetUseVirtualCorvida();
    void resetShowDisconnectedDevices();
    void resetSaveRawData();

signals:
    void changedLanguage(CorvidaSettings::CorvidaLanguage Language);
    void changedColorTheme(StyleColorTheme::ColorThemeEnum ColorTheme);
    void changedPressureLimit(CorvidaSettings::PressureLimits PressureLimit);
    void changedVisualScale(CorvidaSettings::VisualScales VisualScale);
    void changedPulseAxisLimit(CorvidaSettings::PulseAxisLimits PulseAxisLimit);
    void changedStartFullscreen(bool StartFullscreen);
    void changedExportBehavior(CorvidaSettings::ExportBehaviorOption ExportBehavior);
    void changedDatabaseSplitterRatio(double DatabaseSplitterRatio);
    void changedPressurePPGSplitterRatio(double PressurePPGSplitterRatio);
    void changedLastImportFolder(QString LastImportFolder);
    void changedLastExportFolder(QString LastExportFolder);
    void changedLastExportFilter(QString LastExportFilter);
    void changedLastExperimentPath(QString LastExperimentPath);
    void changedSortingColumn(qint32 SortingColumn);
    void changedSortingOrder(Qt::SortOrder SortingOrder);
    void changedShowSuggestions(bool ShowSuggestions);
    void changedViewMode(CorvidaSettings::CorvidaViewMode ViewMode);
    void changedDebugMode(bool DebugMode);
    void changedUseVirtualCorvida(qint32 UseVirtualCorvida);
    void changedShowDisconnectedDevices(bool ShowDisconnectedDevices);
    void changedSaveRawData(bool SaveRawData);

private:
    // The one setter pattern: compare, store, announce, hand the name to the store.
    template <typename T, typename Signal>
    void assign(T &member, const T &value, Signal signal, const char *name);

    CorvidaLanguage m_Language = CorvidaLanguage(-1);
    StyleColorTheme::ColorThemeEnum m_ColorTheme = StyleColorTheme::System;
    PressureLimits m_PressureLimit = PressureLimits::Pressure_200_50;
    VisualScales m_VisualScale = VisualScales::Scale_60;
    PulseAxisLimits m_PulseAxisLimit = PulseAxisLimits::PulseAxis_0_600_m300;
    bool m_StartFullscreen = true;
    ExportBehaviorOption m_ExportBehavior = ExportBehaviorOption::OnExport_OpenFile;
    double m_DatabaseSplitterRatio = 0.2;
    double m_PressurePPGSplitterRatio = 0.4;
    QString m_LastImportFolder;
    QString m_LastExportFolder;
    QString m_LastExportFilter;
    QString m_LastExperimentPath;
    qint32 m_SortingColumn = 0;
    Qt::SortOrder m_SortingOrder = Qt::DescendingOrder;
    bool m_ShowSuggestions = true;
    CorvidaViewMode m_ViewMode = CorvidaViewMode::View_Grid;
    bool m_DebugMode = false;
    qint32 m_UseVirtualCorvida = 0;
    bool m_ShowDisconnectedDevices = false;
    bool m_SaveRawData = false;
};
