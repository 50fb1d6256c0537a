#include "settings/CorvidaSettings.h"

#include "settings/AbstractMetaDescription.h"
#include "settings/MetaDescriptor.h"
#include "toolkit/LogCapture.h"

#include <QFile>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

QMetaMethod signalNamed(const QObject &object, const QByteArray &name)
{
    const QMetaObject *meta = object.metaObject();
    for (int i = 0; i < meta->methodCount(); ++i)
        if (meta->method(i).methodType() == QMetaMethod::Signal && meta->method(i).name() == name)
            return meta->method(i);
    return {};
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

} // namespace

class CorvidaSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void resetRestoresTheDefaultAndAnnouncesIt_data();
    void resetRestoresTheDefaultAndAnnouncesIt();
    void writtenFileHasOneIndentedElementPerSetting();
    void languageStaysUnsetUntilChosen();
    void fileOfAnotherVersionKeepsWhatItCanRead();
    void debugSettingsAreShownOnlyInDebugMode();
    void virtualDeviceCountOutsideItsRangeIsRefused();
    void limitKeysGiveTheirRanges();

private:
    QTemporaryDir m_dir;
};

void CorvidaSettingsTest::resetRestoresTheDefaultAndAnnouncesIt_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("defaultText");
    QTest::addColumn<QString>("otherText");
    const char *rows[][3] = {
        {"ColorTheme", "System", "Dark"},
        {"PressureLimit", "Pressure_200_50", "Pressure_120_30"},
        {"VisualScale", "Scale_60", "Scale_10"},
        {"PulseAxisLimit", "PulseAxis_0_600_m300", "PulseAxis_1_800_m900"},
        {"StartFullscreen", "true", "false"},
        {"ExportBehavior", "OnExport_OpenFile", "OnExport_DoNothing"},
        {"DatabaseSplitterRatio", "0.2", "0.35"},
        {"PressurePPGSplitterRatio", "0.4", "0.5"},
        {"LastImportFolder", "", "/data/in"},
        {"LastExportFolder", "", "/data/out"},
        {"LastExportFilter", "", "CSV (*.csv)"},
        {"LastExperimentPath", "", "Records/a.edf"},
        {"SortingColumn", "0", "3"},
        {"SortingOrder", "DescendingOrder", "AscendingOrder"},
        {"ShowSuggestions", "true", "false"},
        {"ViewMode", "View_Grid", "View_Tabs"},
        {"DebugMode", "false", "true"},
        {"UseVirtualCorvida", "0", "4"},
        {"ShowDisconnectedDevices", "false", "true"},
        {"SaveRawData", "false", "true"},
        {"Language", "ru_RU", "en_US"},
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << row[0] << row[1] << row[2];
}

void CorvidaSettingsTest::resetRestoresTheDefaultAndAnnouncesIt()
{
    QFETCH(QString, name);
    QFETCH(QString, defaultText);
    QFETCH(QString, otherText);
    const QString path = m_dir.filePath(QStringLiteral("reset-%1.xml").arg(name));
    CorvidaSettings settings(path);
    if (name != QLatin1String("Language"))
        QCOMPARE(settings.getTextValue(name), defaultText);

    QSignalSpy changed(&settings, signalNamed(settings, "changed" + name.toLatin1()));
    QVERIFY(changed.isValid());
    QVERIFY(settings.setTextValue(name, otherText));
    QCOMPARE(changed.count(), 1);
    QVERIFY(QMetaObject::invokeMethod(&settings, qPrintable(QStringLiteral("reset") + name)));
    QCOMPARE(settings.getTextValue(name), defaultText);
    QCOMPARE(changed.count(), 2);
    // The signal carries the new value.
    QCOMPARE(settings.getPropertyByName(name)->toText(changed.at(1).at(0)), defaultText);

    const QString element = QStringLiteral("<%1>%2</%1>").arg(name, defaultText);
    QVERIFY2(readFile(path).contains(element.toUtf8()), qPrintable(element));
}

void CorvidaSettingsTest::writtenFileHasOneIndentedElementPerSetting()
{
    const QString path = m_dir.filePath(QStringLiteral("Settings.xml"));
    CorvidaSettings settings(path);
    settings.setDebugMode(true);
    const QByteArray expected = R"(<?xml version="1.0" encoding="UTF-8"?>
<CorvidaSettings>
    <ColorTheme>System</ColorTheme>
    <PressureLimit>Pressure_200_50</PressureLimit>
    <VisualScale>Scale_60</VisualScale>
    <PulseAxisLimit>PulseAxis_0_600_m300</PulseAxisLimit>
    <StartFullscreen>true</StartFullscreen>
    <ExportBehavior>OnExport_OpenFile</ExportBehavior>
    <DatabaseSplitterRatio>0.2</DatabaseSplitterRatio>
    <PressurePPGSplitterRatio>0.4</PressurePPGSplitterRatio>
    <LastImportFolder></LastImportFolder>
    <LastExportFolder></LastExportFolder>
    <LastExportFilter></LastExportFilter>
    <LastExperimentPath></LastExperimentPath>
    <SortingColumn>0</SortingColumn>
    <SortingOrder>DescendingOrder</SortingOrder>
    <ShowSuggestions>true</ShowSuggestions>
    <ViewMode>View_Grid</ViewMode>
    <DebugMode>true</DebugMode>
    <UseVirtualCorvida>0</UseVirtualCorvida>
    <ShowDisconnectedDevices>false</ShowDisconnectedDevices>
    <SaveRawData>false</SaveRawData>
</CorvidaSettings>
)";
    QCOMPARE(QString::fromUtf8(readFile(path)), QString::fromUtf8(expected));
}

void CorvidaSettingsTest::languageStaysUnsetUntilChosen()
{
    const QString path = m_dir.filePath(QStringLiteral("language.xml"));
    writeFile(path, "<CorvidaSettings><PressureLimit>Pressure_160_40</PressureLimit>"
                    "</CorvidaSettings>");
    {
        CorvidaSettings settings(path);
        QCOMPARE(settings.getPressureLimit(), CorvidaSettings::PressureLimits::Pressure_160_40);
        QVERIFY(!settings.isPropertySet(QStringLiteral("Language")));
        QCOMPARE(CorvidaSettings::languageName(settings.getLanguage()), QString());
        // Saving other settings must not invent a language for the next start.
        settings.setSaveRawData(true);
        QVERIFY(readFile(path).contains("<SaveRawData>true</SaveRawData>"));
        QVERIFY(!readFile(path).contains("<Language>"));

        settings.setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
        QVERIFY(readFile(path).contains("<Language>en_US</Language>"));
    }
    CorvidaSettings again(path);
    QVERIFY(again.isPropertySet(QStringLiteral("Language")));
    QCOMPARE(again.getLanguage(), CorvidaSettings::CorvidaLanguage::en_US);
}

void CorvidaSettingsTest::fileOfAnotherVersionKeepsWhatItCanRead()
{
    const QString path = m_dir.filePath(QStringLiteral("older.xml"));
    const QByteArray content = "<?xml version=\"1.0\"?>\n<CorvidaSettings>\n"
                               "<Language>ru_RU</Language>\n"
                               "<SerialBaudRate>115200</SerialBaudRate>\n"
                               "<VisualScale>Scale_45</VisualScale>\n"
                               "<SortingOrder>Qt::SortOrder::AscendingOrder</SortingOrder>\n"
                               "<DatabaseSplitterRatio>0,3</DatabaseSplitterRatio>\n"
                               "<UseVirtualCorvida>2</UseVirtualCorvida>\n"
                               "</CorvidaSettings>\n";
    writeFile(path, content);
    LogCapture log;
    CorvidaSettings settings(path);
    QCOMPARE(settings.getLanguage(), CorvidaSettings::CorvidaLanguage::ru_RU);
    QCOMPARE(settings.getVisualScale(), CorvidaSettings::VisualScales::Scale_60);
    QCOMPARE(settings.getSortingOrder(), Qt::AscendingOrder);
    QCOMPARE(settings.getDatabaseSplitterRatio(), 0.2);
    QCOMPARE(settings.getUseVirtualCorvida(), 2);
    QCOMPARE(log.count(QStringLiteral("SerialBaudRate")), 1);
    QCOMPARE(log.count(QStringLiteral("Scale_45")), 1);
    QCOMPARE(log.count(QStringLiteral("0,3")), 1);
    QCOMPARE(readFile(path), content); // loading alone writes nothing
}

void CorvidaSettingsTest::debugSettingsAreShownOnlyInDebugMode()
{
    CorvidaSettings settings;
    const QStringList debugOnly = {"DebugMode", "UseVirtualCorvida", "ShowDisconnectedDevices",
                                   "SaveRawData"};
    for (const QString &name : debugOnly)
        QVERIFY2(!settings.isPropertyVisible(name), qPrintable(name));
    QVERIFY(settings.isPropertyVisible(QStringLiteral("PressureLimit")));
    // Window values are never on the settings page.
    for (const char *hidden : {"DatabaseSplitterRatio", "LastExperimentPath", "SortingOrder"})
        QVERIFY2(!settings.isPropertyVisible(hidden), hidden);
    settings.setDebugMode(true);
    for (const QString &name : debugOnly)
        QVERIFY2(settings.isPropertyVisible(name), qPrintable(name));
}

void CorvidaSettingsTest::virtualDeviceCountOutsideItsRangeIsRefused()
{
    CorvidaSettings settings;
    QVERIFY(settings.setValue(QStringLiteral("UseVirtualCorvida"), 4));
    QVERIFY(!settings.setValue(QStringLiteral("UseVirtualCorvida"), 5));
    QVERIFY(!settings.setTextValue(QStringLiteral("UseVirtualCorvida"), QStringLiteral("-1")));
    QCOMPARE(settings.getUseVirtualCorvida(), 4);
}

void CorvidaSettingsTest::limitKeysGiveTheirRanges()
{
    using P = CorvidaSettings::PressureLimits;
    const QList<QPair<P, QPair<double, double>>> pressures = {
        {P::Pressure_300_75, {300, 75}}, {P::Pressure_240_60, {240, 60}},
        {P::Pressure_200_50, {200, 50}}, {P::Pressure_160_40, {160, 40}},
        {P::Pressure_120_30, {120, 30}}, {P::Pressure_100_25, {100, 25}}};
    for (const auto &[key, pair] : pressures)
        QCOMPARE(CorvidaSettings::pressureLimitPair(key), pair);
    using A = CorvidaSettings::PulseAxisLimits;
    const QList<QPair<A, QPair<double, double>>> axes = {
        {A::PulseAxis_1_800_m900, {-0.9, 1.8}}, {A::PulseAxis_1_200_m600, {-0.6, 1.2}},
        {A::PulseAxis_1_000_m500, {-0.5, 1.0}}, {A::PulseAxis_0_800_m400, {-0.4, 0.8}},
        {A::PulseAxis_0_600_m300, {-0.3, 0.6}}, {A::PulseAxis_0_400_m200, {-0.2, 0.4}},
        {A::PulseAxis_0_200_m100, {-0.1, 0.2}}};
    for (const auto &[key, range] : axes)
        QCOMPARE(CorvidaSettings::pulseAxisRange(key), range);
}

QTEST_GUILESS_MAIN(CorvidaSettingsTest)
#include "tst_corvidasettings.moc"
