#include "settings/CorvidaSettings.h"

#include <QMetaEnum>
#include <QStringList>

CorvidaSettings::CorvidaSettings(const QString &filePath, QObject *parent)
    : VTSettings(filePath, true, parent, XML)
{
    loadDefaults();
    reload();
}

template <typename T, typename Signal>
void CorvidaSettings::assign(T &member, const T &value, Signal signal, const char *name)
{
    if (member == value)
        return;
    member = value;
    emit(this->*signal)(member);
    changedProperty(QLatin1String(name));
}

QPair<double, double> CorvidaSettings::pressureLimitPair(PressureLimits limits)
{
    // The pair is spelled out in the key itself: "Pressure_200_50".
    const char *key = QMetaEnum::fromType<PressureLimits>().valueToKey(int(limits));
    const QStringList parts = QString::fromLatin1(key).split(QLatin1Char('_'));
    if (parts.size() != 3)
        return {0.0, 0.0};
    return {parts[1].toDouble(), parts[2].toDouble()};
}

QPair<double, double> CorvidaSettings::pulseAxisRange(PulseAxisLimits limits)
{
    // "PulseAxis_0_600_m300": upper 0.600 (underscore for the decimal point), lower -0.300
    // (thousandths, sign left out).
    const QString key =
        QString::fromLatin1(QMetaEnum::fromType<PulseAxisLimits>().valueToKey(int(limits)));
    const QString prefix = QStringLiteral("PulseAxis_");
    const int lowerAt = key.indexOf(QLatin1String("_m"));
    if (!key.startsWith(prefix) || lowerAt < 0)
        return {0.0, 0.0};
    QString upperText = key.mid(prefix.size(), lowerAt - prefix.size());
    upperText.replace(QLatin1Char('_'), QLatin1Char('.'));
    const double upper = upperText.toDouble();
    const double lower = -key.mid(lowerAt + 2).toDouble() / 1000.0;
    return {lower, upper};
}

QString CorvidaSettings::languageName(CorvidaLanguage language)
{
    return QString::fromLatin1(QMetaEnum::fromType<CorvidaLanguage>().valueToKey(int(language)));
}

void CorvidaSettings::setLanguage(CorvidaSettings::CorvidaLanguage Language)
{
    assign(m_Language, Language, &CorvidaSettings::changedLanguage, "Language");
}

void CorvidaSettings::setColorTheme(StyleColorTheme::ColorThemeEnum ColorTheme)
{
    assign(m_ColorTheme, ColorTheme, &CorvidaSettings::changedColorTheme, "ColorTheme");
}

void CorvidaSettings::setPressureLimit(CorvidaSettings::PressureLimits PressureLimit)
{
    assign(m_PressureLimit, PressureLimit, &CorvidaSettings::changedPressureLimit, "PressureLimit");
}

void CorvidaSettings::setVisualScale(CorvidaSettings::VisualScales VisualScale)
{
    assign(m_VisualScale, VisualScale, &CorvidaSettings::changedVisualScale, "VisualScale");
}

void CorvidaSettings::setPulseAxisLimit(CorvidaSettings::PulseAxisLimits PulseAxisLimit)
{
    assign(m_PulseAxisLimit, PulseAxisLimit, &CorvidaSettings::changedPulseAxisLimit,
           "PulseAxisLimit");
}

void CorvidaSettings::setStartFullscreen(bool StartFullscreen)
{
    assign(m_StartFullscreen, StartFullscreen, &CorvidaSettings::changedStartFullscreen,
           "StartFullscreen");
}

void CorvidaSettings::setExportBehavior(CorvidaSettings::ExportBehaviorOption ExportBehavior)
{
    assign(m_ExportBehavior, ExportBehavior, &CorvidaSettings::changedExportBehavior,
           "ExportBehavior");
}

void CorvidaSettings::setDatabaseSplitterRatio(double DatabaseSplitterRatio)
{
    assign(m_DatabaseSplitterRatio, DatabaseSplitterRatio,
           &CorvidaSettings::changedDatabaseSplitterRatio, "DatabaseSplitterRatio");
}

void CorvidaSettings::setPressurePPGSplitterRatio(double PressurePPGSplitterRatio)
{
    assign(m_PressurePPGSplitterRatio, PressurePPGSplitterRatio,
           &CorvidaSettings::changedPressurePPGSplitterRatio, "PressurePPGSplitterRatio");
}

void CorvidaSettings::setLastImportFolder(const QString &LastImportFolder)
{
    assign(m_LastImportFolder, LastImportFolder, &CorvidaSettings::changedLastImportFolder,
           "LastImportFolder");
}

void CorvidaSettings::setLastExportFolder(const QString &LastExportFolder)
{
    assign(m_LastExportFolder, LastExportFolder, &CorvidaSettings::changedLastExportFolder,
           "LastExportFolder");
}

void CorvidaSettings::setSimulatedAnimal(const QString &SimulatedAnimal)
{
    assign(m_SimulatedAnimal, SimulatedAnimal, &CorvidaSettings::changedSimulatedAnimal,
           "SimulatedAnimal");
}

void CorvidaSettings::setDetectionMethod(const QString &DetectionMethod)
{
    assign(m_DetectionMethod, DetectionMethod, &CorvidaSettings::changedDetectionMethod,
           "DetectionMethod");
}

void CorvidaSettings::setLastExportFilter(const QString &LastExportFilter)
{
    assign(m_LastExportFilter, LastExportFilter, &CorvidaSettings::changedLastExportFilter,
           "LastExportFilter");
}

void CorvidaSettings::setLastExperimentPath(const QString &LastExperimentPath)
{
    assign(m_LastExperimentPath, LastExperimentPath, &CorvidaSettings::changedLastExperimentPath,
           "LastExperimentPath");
}

void CorvidaSettings::setSortingColumn(qint32 SortingColumn)
{
    assign(m_SortingColumn, SortingColumn, &CorvidaSettings::changedSortingColumn, "SortingColumn");
}

void CorvidaSettings::setSortingOrder(Qt::SortOrder SortingOrder)
{
    assign(m_SortingOrder, SortingOrder, &CorvidaSettings::changedSortingOrder, "SortingOrder");
}

void CorvidaSettings::setShowSuggestions(bool ShowSuggestions)
{
    assign(m_ShowSuggestions, ShowSuggestions, &CorvidaSettings::changedShowSuggestions,
           "ShowSuggestions");
}

void CorvidaSettings::setViewMode(CorvidaSettings::CorvidaViewMode ViewMode)
{
    assign(m_ViewMode, ViewMode, &CorvidaSettings::changedViewMode, "ViewMode");
}

void CorvidaSettings::setDebugMode(bool DebugMode)
{
    assign(m_DebugMode, DebugMode, &CorvidaSettings::changedDebugMode, "DebugMode");
}

void CorvidaSettings::setUseVirtualCorvida(qint32 UseVirtualCorvida)
{
    assign(m_UseVirtualCorvida, UseVirtualCorvida, &CorvidaSettings::changedUseVirtualCorvida,
           "UseVirtualCorvida");
}

void CorvidaSettings::setShowDisconnectedDevices(bool ShowDisconnectedDevices)
{
    assign(m_ShowDisconnectedDevices, ShowDisconnectedDevices,
           &CorvidaSettings::changedShowDisconnectedDevices, "ShowDisconnectedDevices");
}

void CorvidaSettings::setSaveRawData(bool SaveRawData)
{
    assign(m_SaveRawData, SaveRawData, &CorvidaSettings::changedSaveRawData, "SaveRawData");
}

void CorvidaSettings::resetLanguage()
{
    resetValue(QStringLiteral("Language"));
}

void CorvidaSettings::resetColorTheme()
{
    resetValue(QStringLiteral("ColorTheme"));
}

void CorvidaSettings::resetPressureLimit()
{
    resetValue(QStringLiteral("PressureLimit"));
}

void CorvidaSettings::resetVisualScale()
{
    resetValue(QStringLiteral("VisualScale"));
}

void CorvidaSettings::resetPulseAxisLimit()
{
    resetValue(QStringLiteral("PulseAxisLimit"));
}

void CorvidaSettings::resetStartFullscreen()
{
    resetValue(QStringLiteral("StartFullscreen"));
}

void CorvidaSettings::resetExportBehavior()
{
    resetValue(QStringLiteral("ExportBehavior"));
}

void CorvidaSettings::resetDatabaseSplitterRatio()
{
    resetValue(QStringLiteral("DatabaseSplitterRatio"));
}

void CorvidaSettings::resetPressurePPGSplitterRatio()
{
    resetValue(QStringLiteral("PressurePPGSplitterRatio"));
}

void CorvidaSettings::resetLastImportFolder()
{
    resetValue(QStringLiteral("LastImportFolder"));
}

void CorvidaSettings::resetLastExportFolder()
{
    resetValue(QStringLiteral("LastExportFolder"));
}

void CorvidaSettings::resetSimulatedAnimal()
{
    resetValue(QStringLiteral("SimulatedAnimal"));
}

void CorvidaSettings::resetDetectionMethod()
{
    resetValue(QStringLiteral("DetectionMethod"));
}

void CorvidaSettings::resetLastExportFilter()
{
    resetValue(QStringLiteral("LastExportFilter"));
}

void CorvidaSettings::resetLastExperimentPath()
{
    resetValue(QStringLiteral("LastExperimentPath"));
}

void CorvidaSettings::resetSortingColumn()
{
    resetValue(QStringLiteral("SortingColumn"));
}

void CorvidaSettings::resetSortingOrder()
{
    resetValue(QStringLiteral("SortingOrder"));
}

void CorvidaSettings::resetShowSuggestions()
{
    resetValue(QStringLiteral("ShowSuggestions"));
}

void CorvidaSettings::resetViewMode()
{
    resetValue(QStringLiteral("ViewMode"));
}

void CorvidaSettings::resetDebugMode()
{
    resetValue(QStringLiteral("DebugMode"));
}

void CorvidaSettings::resetUseVirtualCorvida()
{
    resetValue(QStringLiteral("UseVirtualCorvida"));
}

void CorvidaSettings::resetShowDisconnectedDevices()
{
    resetValue(QStringLiteral("ShowDisconnectedDevices"));
}

void CorvidaSettings::resetSaveRawData()
{
    resetValue(QStringLiteral("SaveRawData"));
}

void CorvidaSettings::setSessionAcclimationCycles(qint32 SessionAcclimationCycles)
{
    assign(m_SessionAcclimationCycles, SessionAcclimationCycles,
           &CorvidaSettings::changedSessionAcclimationCycles, "SessionAcclimationCycles");
}

void CorvidaSettings::setSessionMeasurementCycles(qint32 SessionMeasurementCycles)
{
    assign(m_SessionMeasurementCycles, SessionMeasurementCycles,
           &CorvidaSettings::changedSessionMeasurementCycles, "SessionMeasurementCycles");
}

void CorvidaSettings::setSessionInterval(double SessionInterval)
{
    assign(m_SessionInterval, SessionInterval, &CorvidaSettings::changedSessionInterval,
           "SessionInterval");
}

void CorvidaSettings::setSessionPulseWait(double SessionPulseWait)
{
    assign(m_SessionPulseWait, SessionPulseWait, &CorvidaSettings::changedSessionPulseWait,
           "SessionPulseWait");
}

void CorvidaSettings::setSessionPulseAmplitude(double SessionPulseAmplitude)
{
    assign(m_SessionPulseAmplitude, SessionPulseAmplitude,
           &CorvidaSettings::changedSessionPulseAmplitude, "SessionPulseAmplitude");
}

void CorvidaSettings::setSessionHeartRateMin(double SessionHeartRateMin)
{
    assign(m_SessionHeartRateMin, SessionHeartRateMin, &CorvidaSettings::changedSessionHeartRateMin,
           "SessionHeartRateMin");
}

void CorvidaSettings::setSessionHeartRateMax(double SessionHeartRateMax)
{
    assign(m_SessionHeartRateMax, SessionHeartRateMax, &CorvidaSettings::changedSessionHeartRateMax,
           "SessionHeartRateMax");
}

void CorvidaSettings::setSessionSBPMin(double SessionSBPMin)
{
    assign(m_SessionSBPMin, SessionSBPMin, &CorvidaSettings::changedSessionSBPMin, "SessionSBPMin");
}

void CorvidaSettings::setSessionSBPMax(double SessionSBPMax)
{
    assign(m_SessionSBPMax, SessionSBPMax, &CorvidaSettings::changedSessionSBPMax, "SessionSBPMax");
}

void CorvidaSettings::setSessionDBPMin(double SessionDBPMin)
{
    assign(m_SessionDBPMin, SessionDBPMin, &CorvidaSettings::changedSessionDBPMin, "SessionDBPMin");
}

void CorvidaSettings::setSessionDBPMax(double SessionDBPMax)
{
    assign(m_SessionDBPMax, SessionDBPMax, &CorvidaSettings::changedSessionDBPMax, "SessionDBPMax");
}

void CorvidaSettings::setSessionPulsePressureMin(double SessionPulsePressureMin)
{
    assign(m_SessionPulsePressureMin, SessionPulsePressureMin,
           &CorvidaSettings::changedSessionPulsePressureMin, "SessionPulsePressureMin");
}

void CorvidaSettings::setSessionIrregularBeatsMax(double SessionIrregularBeatsMax)
{
    assign(m_SessionIrregularBeatsMax, SessionIrregularBeatsMax,
           &CorvidaSettings::changedSessionIrregularBeatsMax, "SessionIrregularBeatsMax");
}

void CorvidaSettings::setSessionMinAccepted(qint32 SessionMinAccepted)
{
    assign(m_SessionMinAccepted, SessionMinAccepted, &CorvidaSettings::changedSessionMinAccepted,
           "SessionMinAccepted");
}

void CorvidaSettings::setSessionSBPSDMax(double SessionSBPSDMax)
{
    assign(m_SessionSBPSDMax, SessionSBPSDMax, &CorvidaSettings::changedSessionSBPSDMax,
           "SessionSBPSDMax");
}

void CorvidaSettings::resetSessionAcclimationCycles()
{
    resetValue(QStringLiteral("SessionAcclimationCycles"));
}

void CorvidaSettings::resetSessionMeasurementCycles()
{
    resetValue(QStringLiteral("SessionMeasurementCycles"));
}

void CorvidaSettings::resetSessionInterval()
{
    resetValue(QStringLiteral("SessionInterval"));
}

void CorvidaSettings::resetSessionPulseWait()
{
    resetValue(QStringLiteral("SessionPulseWait"));
}

void CorvidaSettings::resetSessionPulseAmplitude()
{
    resetValue(QStringLiteral("SessionPulseAmplitude"));
}

void CorvidaSettings::resetSessionHeartRateMin()
{
    resetValue(QStringLiteral("SessionHeartRateMin"));
}

void CorvidaSettings::resetSessionHeartRateMax()
{
    resetValue(QStringLiteral("SessionHeartRateMax"));
}

void CorvidaSettings::resetSessionSBPMin()
{
    resetValue(QStringLiteral("SessionSBPMin"));
}

void CorvidaSettings::resetSessionSBPMax()
{
    resetValue(QStringLiteral("SessionSBPMax"));
}

void CorvidaSettings::resetSessionDBPMin()
{
    resetValue(QStringLiteral("SessionDBPMin"));
}

void CorvidaSettings::resetSessionDBPMax()
{
    resetValue(QStringLiteral("SessionDBPMax"));
}

void CorvidaSettings::resetSessionPulsePressureMin()
{
    resetValue(QStringLiteral("SessionPulsePressureMin"));
}

void CorvidaSettings::resetSessionIrregularBeatsMax()
{
    resetValue(QStringLiteral("SessionIrregularBeatsMax"));
}

void CorvidaSettings::resetSessionMinAccepted()
{
    resetValue(QStringLiteral("SessionMinAccepted"));
}

void CorvidaSettings::resetSessionSBPSDMax()
{
    resetValue(QStringLiteral("SessionSBPSDMax"));
}
