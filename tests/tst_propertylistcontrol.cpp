#include "settings/CorvidaSettings.h"
#include "support/SampleSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/PropertyListControl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>
#include <memory>

class TestPropertyListControl : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<CorvidaSettings> m_settings;
    QString path() const { return m_dir.filePath("Settings.xml"); }
    QSpinBox *spinOf(PropertyListControl &list, const QString &name)
    {
        return qobject_cast<QSpinBox *>(list.editor(name));
    }

private slots:
    void init()
    {
        QVERIFY(LanguageContext::instance()->setLanguage(QStringLiteral("en_US")));
        m_settings.reset();
        QFile::remove(path());
        m_settings = std::make_unique<CorvidaSettings>(path());
    }

    void editsReachTheSettingsAndTheFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("fileText");
        QTest::newRow("drop-down") << QString("PressureLimit") << QString("Pressure_120_30");
        QTest::newRow("another class's enumeration") << QString("ColorTheme") << QString("Dark");
        QTest::newRow("check box") << QString("StartFullscreen") << QString("false");
        QTest::newRow("spin box") << QString("UseVirtualCorvida") << QString("3");
    }
    void editsReachTheSettingsAndTheFile()
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
        } else {
            spinOf(list, name)->setValue(fileText.toInt());
        }
        QCOMPARE(m_settings->getTextValue(name), fileText);
        QCOMPARE(edited.size(), 1);
        CorvidaSettings reread(path());
        QCOMPARE(reread.getTextValue(name), fileText);
    }

    void spinBoxHoldsTheDeclaredLimits()
    {
        m_settings->setDebugMode(true);
        PropertyListControl list(m_settings.get());
        QSpinBox *spin = spinOf(list, QStringLiteral("UseVirtualCorvida"));
        QCOMPARE(spin->minimum(), 0);
        spin->selectAll();
        QTest::keyClicks(spin, QStringLiteral("9"));
        QCOMPARE(m_settings->getUseVirtualCorvida(), 0);
        spin->setValue(4);
        QTest::keyClick(spin, Qt::Key_Up);
        QCOMPARE(m_settings->getUseVirtualCorvida(), 4);
        // Through the store, as the editor itself goes: an out-of-range value is refused.
        QVERIFY(!m_settings->setValue(QStringLiteral("UseVirtualCorvida"), 7));
        QCOMPARE(m_settings->getUseVirtualCorvida(), 4);
        QCOMPARE(spin->value(), 4);
    }

    void debugRowsFollowDebugModeLive()
    {
        PropertyListControl list(m_settings.get());
        const QStringList debugRows = {"DebugMode", "UseVirtualCorvida", "ShowDisconnectedDevices",
                                       "SaveRawData"};
        const auto shown = [&](bool expected) {
            for (const QString &name : debugRows)
                QVERIFY2(list.isRowShown(name) == expected, qPrintable(name));
        };
        shown(false);
        QVERIFY(list.isRowShown(QStringLiteral("Language")));
        m_settings->setDebugMode(true);
        shown(true);
        QVERIFY(list.isRowShown(QStringLiteral("PressureLimit")));
        // Window values are never on the settings page.
        QVERIFY(!list.isRowShown(QStringLiteral("DatabaseSplitterRatio")));
        // Switching it off in its own row hides the row and its companions again.
        qobject_cast<QCheckBox *>(list.editor(QStringLiteral("DebugMode")))->click();
        QVERIFY(!m_settings->getDebugMode());
        shown(false);
    }

    void resetButtonRestoresDefault()
    {
        m_settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_100_25);
        PropertyListControl list(m_settings.get());
        QToolButton *reset = list.resetButton(QStringLiteral("PressureLimit"));
        QVERIFY(reset->isEnabled());
        reset->click();
        QCOMPARE(m_settings->getPressureLimit(), CorvidaSettings::PressureLimits::Pressure_200_50);
        QVERIFY(!reset->isEnabled());
    }

    void editorsFollowTheHintsOfAnySettingsClass()
    {
        SampleSettings sample(m_dir.filePath(QStringLiteral("sample.xml")));
        sample.loadDefaults();
        PropertyListControl list(&sample);
        QSpinBox *count = spinOf(list, QStringLiteral("Count"));
        QCOMPARE(count->minimum(), -5);
        QCOMPARE(count->maximum(), 50);
        QVERIFY(!list.editor(QStringLiteral("Blob"))); // NotVisible
        // Only settings declared Editable can be changed here; ReadOnly wins over Editable.
        QVERIFY(list.editor(QStringLiteral("Language"))->isEnabled());
        QVERIFY(!count->isEnabled());
        QVERIFY(!list.editor(QStringLiteral("Stamp"))->isEnabled());
        // Anchor is shown only while Flag is on (the older "VisibleBinded" spelling of the rule).
        QVERIFY(list.isRowShown(QStringLiteral("Anchor")));
        QVERIFY(sample.setValue(QStringLiteral("Flag"), false));
        QVERIFY(!list.isRowShown(QStringLiteral("Anchor")));
        QVERIFY(!qobject_cast<QCheckBox *>(list.editor(QStringLiteral("Flag")))->isChecked());
    }
};

QTEST_MAIN(TestPropertyListControl)
#include "tst_propertylistcontrol.moc"
