#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/PropertyListControl.h"
#include "ui/SettingDropDownButton.h"

#include <QComboBox>
#include <QFrame>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

class TestSettingDropDownButton : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(LanguageContext::instance()->setLanguage("en_US")); }

    void clickOpensTheOneSettingAndEditsReachTheSettings()
    {
        QTemporaryDir dir;
        CorvidaSettings settings(dir.filePath("Settings.xml"));
        QWidget window;
        window.resize(400, 300);
        auto *button = new SettingDropDownButton(":/icons/arrow-left-right.svg", "Horizontal scale",
                                                 &settings, "VisualScale", &window);
        button->move(20, 20);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!button->popup()->isVisible());

        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(button->popup()->isVisible());
        PropertyListControl *editor = button->editor();
        QCOMPARE(editor->propertyNames(), QStringList{"VisualScale"});
        QCOMPARE(editor->resetButton("VisualScale"), nullptr);

        auto *combo = qobject_cast<QComboBox *>(editor->editor("VisualScale"));
        QVERIFY(combo);
        const int index = combo->findData(QStringLiteral("Scale_20"));
        QVERIFY(index >= 0);
        combo->setCurrentIndex(index);
        emit combo->activated(index);
        QCOMPARE(settings.getVisualScale(), CorvidaSettings::VisualScales::Scale_20);
        // Set elsewhere (the settings page), the pop-up shows the new value.
        settings.setVisualScale(CorvidaSettings::VisualScales::Scale_90);
        QCOMPARE(combo->currentData().toString(), QStringLiteral("Scale_90"));
    }
};

QTEST_MAIN(TestSettingDropDownButton)
#include "tst_settingdropdownbutton.moc"
