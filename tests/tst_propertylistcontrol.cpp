#include "settings/CorvidaSettings.h"
#include "support/SampleSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/PropertyListControl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>
#include <memory>

class TestPropertyListControl : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void listsTheVisibleSettingsInOrder();
    void enumerationEditorShowsWordsAndIcons();
    void editsReachTheSettingsAndTheFile_data();
    void editsReachTheSettingsAndTheFile();
    void spinBoxHoldsTheDeclaredLimits();
    void refusedValueLeavesEditorOnStoredValue();
    void outsideChangesShowInTheEditor();
    void debugRowsFollowDebugModeLive();
    void resetButtonRestoresDefault();
    void filterShowsOnlyNamedSettings();
    void editorsFollowTheHintsOfAnySettingsClass();
    void categoriesGetHeadersThatHideWithTheirRows();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaSettings> m_settings;
    QString path() const { return m_dir->filePath(QStringLiteral("Settings.xml")); }
};

void TestPropertyListControl::initTestCase()
{
    QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
}

void TestPropertyListControl::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<CorvidaSettings>(path());
}

void TestPropertyListControl::cleanup()
{
    m_settings.reset();
    m_dir.reset();
}

void TestPropertyListControl::listsTheVisibleSettingsInOrder()
{
    PropertyListControl list(m_settings.get());
    const QStringList expected = {
        "Language",       "ColorTheme",        "PressureLimit",           "VisualScale",
        "PulseAxisLimit", "StartFullscreen",   "ExportBehavior",          "ViewMode",
        "DebugMode",      "UseVirtualCorvida", "ShowDisconnectedDevices", "SaveRawData"};
    // Remembered window state (splitter ratios, last folders, sorting) never gets a row.
    QCOMPARE(list.propertyNames(), expected);
    QVERIFY(!list.editor(QStringLiteral("LastExportFolder")));
    QVERIFY(qobject_cast<QComboBox *>(list.editor(QStringLiteral("PressureLimit"))));
    QVERIFY(qobject_cast<QCheckBox *>(list.editor(QStringLiteral("StartFullscreen"))));
    QVERIFY(qobject_cast<QSpinBox *>(list.editor(QStringLiteral("UseVirtualCorvida"))));
}

void TestPropertyListControl::enumerationEditorShowsWordsAndIcons()
{
    PropertyListControl list(m_settings.get());
    auto *pressure = qobject_cast<QComboBox *>(list.editor(QStringLiteral("PressureLimit")));
    QCOMPARE(pressure->count(), 6);
    QCOMPARE(pressure->itemData(0).toString(), QStringLiteral("Pressure_300_75"));
    QCOMPARE(pressure->currentData().toString(), QStringLiteral("Pressure_200_50"));
    QCOMPARE(pressure->currentText(), QStringLiteral("200 → 50 mmHg"));
    auto *view = qobject_cast<QComboBox *>(list.editor(QStringLiteral("ViewMode")));
    QCOMPARE(view->count(), 2);
    for (int i = 0; i < view->count(); ++i)
        QVERIFY(!view->itemIcon(i).isNull());
    QVERIFY(pressure->itemIcon(0).isNull());
}

void TestPropertyListControl::editsReachTheSettingsAndTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("fileText");
    QTest::newRow("drop-down") << "PressureLimit"
                               << "Pressure_120_30";
    QTest::newRow("drop-down of another class's enumeration") << "ColorTheme"
                                                              << "Dark";
    QTest::newRow("check box") << "StartFullscreen"
                               << "false";
    QTest::newRow("spin box") << "UseVirtualCorvida"
                              << "3";
}

void TestPropertyListControl::editsReachTheSettingsAndTheFile()
{
    QFETCH(QString, name);
    QFETCH(QString, fileText);
    m_settings->setDebugMode(true);
    PropertyListControl list(m_settings.get());
    QSignalSpy edited(&list, &PropertyListControl::edited);
    QWidget *editor = list.editor(name);
    if (auto *combo = qobject_cast<QComboBox *>(editor)) {
        const int index = combo->findData(fileText);
        QVERIFY(index >= 0);
        combo->setCurrentIndex(index);
        emit combo->activated(index); // what a pick from the list sends
    } else if (auto *box = qobject_cast<QCheckBox *>(editor)) {
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    } else if (auto *spin = qobject_cast<QSpinBox *>(editor)) {
        spin->setValue(fileText.toInt());
    }
    QCOMPARE(m_settings->getTextValue(name), fileText);
    QCOMPARE(edited.size(), 1);
    CorvidaSettings reread(path());
    QCOMPARE(reread.getTextValue(name), fileText);
}

void TestPropertyListControl::spinBoxHoldsTheDeclaredLimits()
{
    m_settings->setDebugMode(true);
    PropertyListControl list(m_settings.get());
    auto *spin = qobject_cast<QSpinBox *>(list.editor(QStringLiteral("UseVirtualCorvida")));
    QCOMPARE(spin->minimum(), 0);
    QCOMPARE(spin->maximum(), 4);
    QCOMPARE(spin->singleStep(), 1);
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("9"));
    QCOMPARE(m_settings->getUseVirtualCorvida(), 0);
    spin->setValue(4);
    QTest::keyClick(spin, Qt::Key_Up);
    QCOMPARE(m_settings->getUseVirtualCorvida(), 4);
}

void TestPropertyListControl::refusedValueLeavesEditorOnStoredValue()
{
    m_settings->setDebugMode(true);
    PropertyListControl list(m_settings.get());
    // Through the store, as the editor itself goes: an out-of-range value is refused.
    QVERIFY(!m_settings->setValue(QStringLiteral("UseVirtualCorvida"), 7));
    QCOMPARE(m_settings->getUseVirtualCorvida(), 0);
    auto *spin = qobject_cast<QSpinBox *>(list.editor(QStringLiteral("UseVirtualCorvida")));
    QCOMPARE(spin->value(), 0);
}

void TestPropertyListControl::outsideChangesShowInTheEditor()
{
    PropertyListControl list(m_settings.get());
    m_settings->setVisualScale(CorvidaSettings::VisualScales::Scale_10);
    m_settings->setStartFullscreen(false);
    auto *scale = qobject_cast<QComboBox *>(list.editor(QStringLiteral("VisualScale")));
    QCOMPARE(scale->currentData().toString(), QStringLiteral("Scale_10"));
    auto *box = qobject_cast<QCheckBox *>(list.editor(QStringLiteral("StartFullscreen")));
    QVERIFY(!box->isChecked());
}

void TestPropertyListControl::debugRowsFollowDebugModeLive()
{
    PropertyListControl list(m_settings.get());
    const QStringList debugRows = {"DebugMode", "UseVirtualCorvida", "ShowDisconnectedDevices",
                                   "SaveRawData"};
    for (const QString &name : debugRows)
        QVERIFY2(!list.isRowShown(name), qPrintable(name));
    QVERIFY(list.isRowShown(QStringLiteral("Language")));

    m_settings->setDebugMode(true);
    for (const QString &name : debugRows)
        QVERIFY2(list.isRowShown(name), qPrintable(name));

    // Switching it off in its own row hides the row and its companions again.
    auto *box = qobject_cast<QCheckBox *>(list.editor(QStringLiteral("DebugMode")));
    QVERIFY(box->isChecked());
    box->click();
    QVERIFY(!m_settings->getDebugMode());
    for (const QString &name : debugRows)
        QVERIFY2(!list.isRowShown(name), qPrintable(name));
}

void TestPropertyListControl::resetButtonRestoresDefault()
{
    m_settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_100_25);
    PropertyListControl list(m_settings.get());
    QToolButton *reset = list.resetButton(QStringLiteral("PressureLimit"));
    QVERIFY(reset);
    QVERIFY(reset->isEnabled());
    reset->click();
    QCOMPARE(m_settings->getPressureLimit(), CorvidaSettings::PressureLimits::Pressure_200_50);
    QVERIFY(!reset->isEnabled());
    // The language has no default of its own to go back to.
    QVERIFY(!list.resetButton(QStringLiteral("Language")));
}

void TestPropertyListControl::filterShowsOnlyNamedSettings()
{
    PropertyListControl list(m_settings.get());
    list.setPropertyFilter({QStringLiteral("PressureLimit")});
    list.setShowDefaultButtons(false);
    QCOMPARE(list.propertyNames(), QStringList{QStringLiteral("PressureLimit")});
    QVERIFY(!list.resetButton(QStringLiteral("PressureLimit")));
    QVERIFY(!list.editor(QStringLiteral("ColorTheme")));
}

void TestPropertyListControl::editorsFollowTheHintsOfAnySettingsClass()
{
    SampleSettings sample(m_dir->filePath(QStringLiteral("sample.xml")));
    sample.loadDefaults();
    PropertyListControl list(&sample);
    auto *count = qobject_cast<QSpinBox *>(list.editor(QStringLiteral("Count")));
    QVERIFY(count);
    QCOMPARE(count->minimum(), -5);
    QCOMPARE(count->maximum(), 50);
    QCOMPARE(count->singleStep(), 5);
    QCOMPARE(count->prefix(), QStringLiteral("n="));
    QCOMPARE(count->suffix(), QStringLiteral(" pcs"));
    QCOMPARE(count->value(), 7);
    QCOMPARE(count->minimumWidth(), 40);
    QCOMPARE(count->maximumWidth(), 200);
    bool labelFound = false;
    for (QLabel *label : list.findChildren<QLabel *>())
        labelFound = labelFound || label->text() == QStringLiteral("Count of things");
    QVERIFY(labelFound);

    auto *ratio = qobject_cast<QDoubleSpinBox *>(list.editor(QStringLiteral("Ratio")));
    QVERIFY(ratio);
    QCOMPARE(ratio->decimals(), 3);
    auto *name = qobject_cast<QLineEdit *>(list.editor(QStringLiteral("Name")));
    QCOMPARE(name->placeholderText(), QStringLiteral("nobody"));

    // A list of texts in an Enum hint is a drop-down too.
    auto *owner = qobject_cast<QComboBox *>(list.editor(QStringLiteral("Owner")));
    QVERIFY(owner);
    QCOMPARE(owner->count(), 2);
    QVERIFY(qobject_cast<QPushButton *>(list.editor(QStringLiteral("Tint"))));
    QVERIFY(qobject_cast<QDateTimeEdit *>(list.editor(QStringLiteral("Stamp"))));
    QVERIFY(!list.editor(QStringLiteral("Blob"))); // NotVisible

    // Only settings declared Editable can be changed here; ReadOnly wins over Editable.
    QVERIFY(list.editor(QStringLiteral("Language"))->isEnabled());
    QVERIFY(!list.editor(QStringLiteral("Count"))->isEnabled());
    QVERIFY(!list.editor(QStringLiteral("Stamp"))->isEnabled());

    // Anchor is shown only while Flag is on (the older "VisibleBinded" spelling of the rule).
    QVERIFY(list.isRowShown(QStringLiteral("Anchor")));
    QVERIFY(sample.setValue(QStringLiteral("Flag"), false));
    QVERIFY(!list.isRowShown(QStringLiteral("Anchor")));
    QVERIFY(!qobject_cast<QCheckBox *>(list.editor(QStringLiteral("Flag")))->isChecked());
}

void TestPropertyListControl::categoriesGetHeadersThatHideWithTheirRows()
{
    SampleSettings sample(m_dir->filePath(QStringLiteral("sample.xml")));
    PropertyListControl all(&sample);
    QStringList headers;
    for (QLabel *label : all.findChildren<QLabel *>(QStringLiteral("propertyHeader")))
        headers.append(label->text());
    headers.sort();
    QCOMPARE(headers, (QStringList{QStringLiteral("General"), QStringLiteral("Numbers")}));

    PropertyListControl numbers(&sample, QStringLiteral("Numbers"));
    QCOMPARE(numbers.propertyNames(), QStringList{QStringLiteral("Count")});
    numbers.setShowHeaders(false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(numbers.findChildren<QLabel *>(QStringLiteral("propertyHeader")).isEmpty());
}

QTEST_MAIN(TestPropertyListControl)
#include "tst_propertylistcontrol.moc"
