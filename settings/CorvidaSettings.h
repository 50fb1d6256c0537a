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

    // How new records find their markers: "documented" (the long-standing way) or "refined"
    // (the line through the rising pulse envelope). A record keeps the way it was made with.
    Q_PROPERTY(QString DetectionMethod READ getDetectionMethod WRITE setDetectionMethod RESET
                   resetDetectionMethod NOTIFY changedDetectionMethod)
    Q_CLASSINFO("DetectionMethodNotVisible", "true")
    Q_CLASSINFO("DetectionMethodEditable", "true")
    Q_CLASSINFO("DetectionMethodDefault", "documented")

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

    // What the simulated units play: "" the test signal, or a simulated animal ("mouse", "rat",
    // "hypertensive-rat") whose pulse returns at its own true SBP.
    Q_PROPERTY(QString SimulatedAnimal READ getSimulatedAnimal WRITE setSimulatedAnimal RESET
                   resetSimulatedAnimal NOTIFY changedSimulatedAnimal)
    Q_CLASSINFO("SimulatedAnimalEditable", "true")
    Q_CLASSINFO("SimulatedAnimalVisibleBound", "DebugMode:true")
    Q_CLASSINFO("SimulatedAnimalDefault", "\"\"")
    Q_CLASSINFO("SimulatedAnimalEnum", "[\"\", \"mouse\", \"rat\", \"hypertensive-rat\"]")
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

    // Measurement sessions: how many cycles, how long between them, when a cycle is accepted and
    // when a session's spread is too large. Their meaning is in the manual's "Sessions" section.
    Q_PROPERTY(qint32 SessionAcclimationCycles READ getSessionAcclimationCycles WRITE
                   setSessionAcclimationCycles RESET resetSessionAcclimationCycles NOTIFY
                       changedSessionAcclimationCycles)
    Q_CLASSINFO("SessionAcclimationCyclesEditable", "true")
    Q_CLASSINFO("SessionAcclimationCyclesDefault", "5")
    Q_CLASSINFO("SessionAcclimationCyclesMinimum", "0")
    Q_CLASSINFO("SessionAcclimationCyclesMaximum", "50")
    Q_CLASSINFO("SessionAcclimationCyclesStep", "1")
    Q_PROPERTY(qint32 SessionMeasurementCycles READ getSessionMeasurementCycles WRITE
                   setSessionMeasurementCycles RESET resetSessionMeasurementCycles NOTIFY
                       changedSessionMeasurementCycles)
    Q_CLASSINFO("SessionMeasurementCyclesEditable", "true")
    Q_CLASSINFO("SessionMeasurementCyclesDefault", "10")
    Q_CLASSINFO("SessionMeasurementCyclesMinimum", "1")
    Q_CLASSINFO("SessionMeasurementCyclesMaximum", "100")
    Q_CLASSINFO("SessionMeasurementCyclesStep", "1")
    Q_PROPERTY(double SessionInterval READ getSessionInterval WRITE setSessionInterval RESET
                   resetSessionInterval NOTIFY changedSessionInterval)
    Q_CLASSINFO("SessionIntervalEditable", "true")
    Q_CLASSINFO("SessionIntervalDefault", "10")
    Q_CLASSINFO("SessionIntervalMinimum", "0")
    Q_CLASSINFO("SessionIntervalMaximum", "600")
    Q_CLASSINFO("SessionIntervalStep", "1")
    Q_CLASSINFO("SessionIntervalPrecision", "0")
    Q_PROPERTY(double SessionPulseWait READ getSessionPulseWait WRITE setSessionPulseWait RESET
                   resetSessionPulseWait NOTIFY changedSessionPulseWait)
    Q_CLASSINFO("SessionPulseWaitEditable", "true")
    Q_CLASSINFO("SessionPulseWaitDefault", "60")
    Q_CLASSINFO("SessionPulseWaitMinimum", "0")
    Q_CLASSINFO("SessionPulseWaitMaximum", "600")
    Q_CLASSINFO("SessionPulseWaitStep", "5")
    Q_CLASSINFO("SessionPulseWaitPrecision", "0")
    Q_PROPERTY(
        double SessionPulseAmplitude READ getSessionPulseAmplitude WRITE setSessionPulseAmplitude
            RESET resetSessionPulseAmplitude NOTIFY changedSessionPulseAmplitude)
    Q_CLASSINFO("SessionPulseAmplitudeEditable", "true")
    Q_CLASSINFO("SessionPulseAmplitudeDefault", "0.02")
    Q_CLASSINFO("SessionPulseAmplitudeMinimum", "0")
    Q_CLASSINFO("SessionPulseAmplitudeMaximum", "1")
    Q_CLASSINFO("SessionPulseAmplitudeStep", "0.01")
    Q_CLASSINFO("SessionPulseAmplitudePrecision", "3")
    Q_PROPERTY(double SessionHeartRateMin READ getSessionHeartRateMin WRITE setSessionHeartRateMin
                   RESET resetSessionHeartRateMin NOTIFY changedSessionHeartRateMin)
    Q_CLASSINFO("SessionHeartRateMinEditable", "true")
    Q_CLASSINFO("SessionHeartRateMinDefault", "250")
    Q_CLASSINFO("SessionHeartRateMinMinimum", "100")
    Q_CLASSINFO("SessionHeartRateMinMaximum", "900")
    Q_CLASSINFO("SessionHeartRateMinStep", "10")
    Q_CLASSINFO("SessionHeartRateMinPrecision", "0")
    Q_PROPERTY(double SessionHeartRateMax READ getSessionHeartRateMax WRITE setSessionHeartRateMax
                   RESET resetSessionHeartRateMax NOTIFY changedSessionHeartRateMax)
    Q_CLASSINFO("SessionHeartRateMaxEditable", "true")
    Q_CLASSINFO("SessionHeartRateMaxDefault", "750")
    Q_CLASSINFO("SessionHeartRateMaxMinimum", "100")
    Q_CLASSINFO("SessionHeartRateMaxMaximum", "900")
    Q_CLASSINFO("SessionHeartRateMaxStep", "10")
    Q_CLASSINFO("SessionHeartRateMaxPrecision", "0")
    Q_PROPERTY(double SessionSBPMin READ getSessionSBPMin WRITE setSessionSBPMin RESET
                   resetSessionSBPMin NOTIFY changedSessionSBPMin)
    Q_CLASSINFO("SessionSBPMinEditable", "true")
    Q_CLASSINFO("SessionSBPMinDefault", "60")
    Q_CLASSINFO("SessionSBPMinMinimum", "0")
    Q_CLASSINFO("SessionSBPMinMaximum", "300")
    Q_CLASSINFO("SessionSBPMinStep", "5")
    Q_CLASSINFO("SessionSBPMinPrecision", "0")
    Q_PROPERTY(double SessionSBPMax READ getSessionSBPMax WRITE setSessionSBPMax RESET
                   resetSessionSBPMax NOTIFY changedSessionSBPMax)
    Q_CLASSINFO("SessionSBPMaxEditable", "true")
    Q_CLASSINFO("SessionSBPMaxDefault", "250")
    Q_CLASSINFO("SessionSBPMaxMinimum", "0")
    Q_CLASSINFO("SessionSBPMaxMaximum", "300")
    Q_CLASSINFO("SessionSBPMaxStep", "5")
    Q_CLASSINFO("SessionSBPMaxPrecision", "0")
    Q_PROPERTY(double SessionDBPMin READ getSessionDBPMin WRITE setSessionDBPMin RESET
                   resetSessionDBPMin NOTIFY changedSessionDBPMin)
    Q_CLASSINFO("SessionDBPMinEditable", "true")
    Q_CLASSINFO("SessionDBPMinDefault", "30")
    Q_CLASSINFO("SessionDBPMinMinimum", "0")
    Q_CLASSINFO("SessionDBPMinMaximum", "300")
    Q_CLASSINFO("SessionDBPMinStep", "5")
    Q_CLASSINFO("SessionDBPMinPrecision", "0")
    Q_PROPERTY(double SessionDBPMax READ getSessionDBPMax WRITE setSessionDBPMax RESET
                   resetSessionDBPMax NOTIFY changedSessionDBPMax)
    Q_CLASSINFO("SessionDBPMaxEditable", "true")
    Q_CLASSINFO("SessionDBPMaxDefault", "200")
    Q_CLASSINFO("SessionDBPMaxMinimum", "0")
    Q_CLASSINFO("SessionDBPMaxMaximum", "300")
    Q_CLASSINFO("SessionDBPMaxStep", "5")
    Q_CLASSINFO("SessionDBPMaxPrecision", "0")
    Q_PROPERTY(double SessionPulsePressureMin READ getSessionPulsePressureMin WRITE
                   setSessionPulsePressureMin RESET resetSessionPulsePressureMin NOTIFY
                       changedSessionPulsePressureMin)
    Q_CLASSINFO("SessionPulsePressureMinEditable", "true")
    Q_CLASSINFO("SessionPulsePressureMinDefault", "10")
    Q_CLASSINFO("SessionPulsePressureMinMinimum", "0")
    Q_CLASSINFO("SessionPulsePressureMinMaximum", "100")
    Q_CLASSINFO("SessionPulsePressureMinStep", "1")
    Q_CLASSINFO("SessionPulsePressureMinPrecision", "0")
    Q_PROPERTY(double SessionIrregularBeatsMax READ getSessionIrregularBeatsMax WRITE
                   setSessionIrregularBeatsMax RESET resetSessionIrregularBeatsMax NOTIFY
                       changedSessionIrregularBeatsMax)
    Q_CLASSINFO("SessionIrregularBeatsMaxEditable", "true")
    Q_CLASSINFO("SessionIrregularBeatsMaxDefault", "25")
    Q_CLASSINFO("SessionIrregularBeatsMaxMinimum", "0")
    Q_CLASSINFO("SessionIrregularBeatsMaxMaximum", "100")
    Q_CLASSINFO("SessionIrregularBeatsMaxStep", "5")
    Q_CLASSINFO("SessionIrregularBeatsMaxPrecision", "0")
    Q_PROPERTY(qint32 SessionMinAccepted READ getSessionMinAccepted WRITE setSessionMinAccepted
                   RESET resetSessionMinAccepted NOTIFY changedSessionMinAccepted)
    Q_CLASSINFO("SessionMinAcceptedEditable", "true")
    Q_CLASSINFO("SessionMinAcceptedDefault", "5")
    Q_CLASSINFO("SessionMinAcceptedMinimum", "1")
    Q_CLASSINFO("SessionMinAcceptedMaximum", "100")
    Q_CLASSINFO("SessionMinAcceptedStep", "1")
    Q_PROPERTY(double SessionSBPSDMax READ getSessionSBPSDMax WRITE setSessionSBPSDMax RESET
                   resetSessionSBPSDMax NOTIFY changedSessionSBPSDMax)
    Q_CLASSINFO("SessionSBPSDMaxEditable", "true")
    Q_CLASSINFO("SessionSBPSDMaxDefault", "10")
    Q_CLASSINFO("SessionSBPSDMaxMinimum", "0")
    Q_CLASSINFO("SessionSBPSDMaxMaximum", "100")
    Q_CLASSINFO("SessionSBPSDMaxStep", "1")
    Q_CLASSINFO("SessionSBPSDMaxPrecision", "1")

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
    QString getDetectionMethod() const { return m_DetectionMethod; }
    QString getSimulatedAnimal() const { return m_SimulatedAnimal; }
    QString getLastExperimentPath() const { return m_LastExperimentPath; }
    qint32 getSortingColumn() const { return m_SortingColumn; }
    Qt::SortOrder getSortingOrder() const { return m_SortingOrder; }
    bool getShowSuggestions() const { return m_ShowSuggestions; }
    CorvidaViewMode getViewMode() const { return m_ViewMode; }
    bool getDebugMode() const { return m_DebugMode; }
    qint32 getUseVirtualCorvida() const { return m_UseVirtualCorvida; }
    bool getShowDisconnectedDevices() const { return m_ShowDisconnectedDevices; }
    bool getSaveRawData() const { return m_SaveRawData; }
    qint32 getSessionAcclimationCycles() const { return m_SessionAcclimationCycles; }
    qint32 getSessionMeasurementCycles() const { return m_SessionMeasurementCycles; }
    double getSessionInterval() const { return m_SessionInterval; }
    double getSessionPulseWait() const { return m_SessionPulseWait; }
    double getSessionPulseAmplitude() const { return m_SessionPulseAmplitude; }
    double getSessionHeartRateMin() const { return m_SessionHeartRateMin; }
    double getSessionHeartRateMax() const { return m_SessionHeartRateMax; }
    double getSessionSBPMin() const { return m_SessionSBPMin; }
    double getSessionSBPMax() const { return m_SessionSBPMax; }
    double getSessionDBPMin() const { return m_SessionDBPMin; }
    double getSessionDBPMax() const { return m_SessionDBPMax; }
    double getSessionPulsePressureMin() const { return m_SessionPulsePressureMin; }
    double getSessionIrregularBeatsMax() const { return m_SessionIrregularBeatsMax; }
    qint32 getSessionMinAccepted() const { return m_SessionMinAccepted; }
    double getSessionSBPSDMax() const { return m_SessionSBPSDMax; }

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
    void setDetectionMethod(const QString &DetectionMethod);
    void setSimulatedAnimal(const QString &SimulatedAnimal);
    void setLastExperimentPath(const QString &LastExperimentPath);
    void setSortingColumn(qint32 SortingColumn);
    void setSortingOrder(Qt::SortOrder SortingOrder);
    void setShowSuggestions(bool ShowSuggestions);
    void setViewMode(CorvidaSettings::CorvidaViewMode ViewMode);
    void setDebugMode(bool DebugMode);
    void setUseVirtualCorvida(qint32 UseVirtualCorvida);
    void setShowDisconnectedDevices(bool ShowDisconnectedDevices);
    void setSaveRawData(bool SaveRawData);
    void setSessionAcclimationCycles(qint32 SessionAcclimationCycles);
    void setSessionMeasurementCycles(qint32 SessionMeasurementCycles);
    void setSessionInterval(double SessionInterval);
    void setSessionPulseWait(double SessionPulseWait);
    void setSessionPulseAmplitude(double SessionPulseAmplitude);
    void setSessionHeartRateMin(double SessionHeartRateMin);
    void setSessionHeartRateMax(double SessionHeartRateMax);
    void setSessionSBPMin(double SessionSBPMin);
    void setSessionSBPMax(double SessionSBPMax);
    void setSessionDBPMin(double SessionDBPMin);
    void setSessionDBPMax(double SessionDBPMax);
    void setSessionPulsePressureMin(double SessionPulsePressureMin);
    void setSessionIrregularBeatsMax(double SessionIrregularBeatsMax);
    void setSessionMinAccepted(qint32 SessionMinAccepted);
    void setSessionSBPSDMax(double SessionSBPSDMax);

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
    void resetDetectionMethod();
    void resetSimulatedAnimal();
    void resetLastExperimentPath();
    void resetSortingColumn();
    void resetSortingOrder();
    void resetShowSuggestions();
    void resetViewMode();
    void resetDebugMode();
    void resetUseVirtualCorvida();
    void resetShowDisconnectedDevices();
    void resetSaveRawData();
    void resetSessionAcclimationCycles();
    void resetSessionMeasurementCycles();
    void resetSessionInterval();
    void resetSessionPulseWait();
    void resetSessionPulseAmplitude();
    void resetSessionHeartRateMin();
    void resetSessionHeartRateMax();
    void resetSessionSBPMin();
    void resetSessionSBPMax();
    void resetSessionDBPMin();
    void resetSessionDBPMax();
    void resetSessionPulsePressureMin();
    void resetSessionIrregularBeatsMax();
    void resetSessionMinAccepted();
    void resetSessionSBPSDMax();

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
    void changedDetectionMethod(QString DetectionMethod);
    void changedSimulatedAnimal(QString SimulatedAnimal);
    void changedLastExperimentPath(QString LastExperimentPath);
    void changedSortingColumn(qint32 SortingColumn);
    void changedSortingOrder(Qt::SortOrder SortingOrder);
    void changedShowSuggestions(bool ShowSuggestions);
    void changedViewMode(CorvidaSettings::CorvidaViewMode ViewMode);
    void changedDebugMode(bool DebugMode);
    void changedUseVirtualCorvida(qint32 UseVirtualCorvida);
    void changedShowDisconnectedDevices(bool ShowDisconnectedDevices);
    void changedSaveRawData(bool SaveRawData);
    void changedSessionAcclimationCycles(qint32 SessionAcclimationCycles);
    void changedSessionMeasurementCycles(qint32 SessionMeasurementCycles);
    void changedSessionInterval(double SessionInterval);
    void changedSessionPulseWait(double SessionPulseWait);
    void changedSessionPulseAmplitude(double SessionPulseAmplitude);
    void changedSessionHeartRateMin(double SessionHeartRateMin);
    void changedSessionHeartRateMax(double SessionHeartRateMax);
    void changedSessionSBPMin(double SessionSBPMin);
    void changedSessionSBPMax(double SessionSBPMax);
    void changedSessionDBPMin(double SessionDBPMin);
    void changedSessionDBPMax(double SessionDBPMax);
    void changedSessionPulsePressureMin(double SessionPulsePressureMin);
    void changedSessionIrregularBeatsMax(double SessionIrregularBeatsMax);
    void changedSessionMinAccepted(qint32 SessionMinAccepted);
    void changedSessionSBPSDMax(double SessionSBPSDMax);

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
    QString m_DetectionMethod = QStringLiteral("documented");
    QString m_SimulatedAnimal;
    QString m_LastExperimentPath;
    qint32 m_SortingColumn = 0;
    Qt::SortOrder m_SortingOrder = Qt::DescendingOrder;
    bool m_ShowSuggestions = true;
    CorvidaViewMode m_ViewMode = CorvidaViewMode::View_Grid;
    bool m_DebugMode = false;
    qint32 m_UseVirtualCorvida = 0;
    bool m_ShowDisconnectedDevices = false;
    bool m_SaveRawData = false;
    qint32 m_SessionAcclimationCycles = 5;
    qint32 m_SessionMeasurementCycles = 10;
    double m_SessionInterval = 10.0;
    double m_SessionPulseWait = 60.0;
    double m_SessionPulseAmplitude = 0.02;
    double m_SessionHeartRateMin = 250.0;
    double m_SessionHeartRateMax = 750.0;
    double m_SessionSBPMin = 60.0;
    double m_SessionSBPMax = 250.0;
    double m_SessionDBPMin = 30.0;
    double m_SessionDBPMax = 200.0;
    double m_SessionPulsePressureMin = 10.0;
    double m_SessionIrregularBeatsMax = 25.0;
    qint32 m_SessionMinAccepted = 5;
    double m_SessionSBPSDMax = 10.0;
};
