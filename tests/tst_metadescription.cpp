#include "support/SampleSettings.h"

#include "settings/AbstractMetaDescriptor.h"
#include "settings/CustomMetaDescription.h"
#include "settings/VisibleBoundRule.h"

#include <QSignalSpy>
#include <QTest>

class MetaDescriptionTest : public QObject
{
    Q_OBJECT
private slots:
    void visibleBoundRuleIsParsed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("rule"); // property=value; "error" when the text is refused
        const auto row = [](const char *name, const char *text, const char *rule) {
            QTest::newRow(name) << QString::fromLatin1(text) << QString::fromLatin1(rule);
        };
        row("blanks", "  Debug_Mode1 : true ", "Debug_Mode1=true");
        row("name starts with a digit", "1Mode:true", "error");
        row("scoped key value", "ViewMode:CorvidaViewMode::View_Tabs",
            "ViewMode=CorvidaViewMode::View_Tabs");
        row("no rule", "", "=");
    }
    void visibleBoundRuleIsParsed()
    {
        QFETCH(QString, text);
        QFETCH(QString, rule);
        bool parsed = rule == QLatin1String("error");
        const VisibleBoundRule r = VisibleBoundRule::parse(text, &parsed);
        QCOMPARE(parsed, rule != QLatin1String("error"));
        QCOMPARE(r.isValid(), parsed && rule != QLatin1String("="));
        QCOMPARE(r.property() + '=' + r.value(), parsed ? rule : QStringLiteral("="));
    }
    void visibilityFollowsTheBoundSetting_data()
    {
        QTest::addColumn<QString>("bound");
        QTest::addColumn<QVariant>("boundValue");
        QTest::addColumn<QString>("property");
        QTest::addColumn<bool>("visible");
        const QVariant beta = QVariant::fromValue(SampleSettings::Mode::Beta);
        QTest::newRow("enumeration matches") << "Kind" << beta << "Gain" << true;
        QTest::newRow("not visible stays hidden") << "Flag" << QVariant(true) << "Blob" << false;
    }
    void visibilityFollowsTheBoundSetting()
    {
        QFETCH(QString, bound);
        QFETCH(QVariant, boundValue);
        QFETCH(QString, property);
        QFETCH(bool, visible);
        SampleSettings settings;
        QVERIFY(settings.setValue(bound, boundValue));
        QCOMPARE(settings.isPropertyVisible(property), visible);
        QCOMPARE(settings.getPropertyCapabilities(property).value("visible").toBool(), visible);
    }
    void descriptionFollowsThePropertyChangeSignal()
    {
        SampleSettings settings;
        AbstractMetaDescription *count = settings.getPropertyByName(QStringLiteral("Count"));
        QSignalSpy spy(count, &AbstractMetaDescription::valueChanged);
        settings.setProperty("Count", 3);
        QCOMPARE(spy.count(), 1);
        QVERIFY(!count->setValue(51)); // above the Maximum hint
        QCOMPARE(spy.count(), 1);
    }
    // Hints are worked out once per class and setting; a setting of the same name in a derived
    // class that overrides its default must keep its own, whichever class is described first.
    void sameSettingInABaseAndADerivedClassKeepsEachDefault()
    {
        const auto language = [](auto &settings) {
            return settings.getPropertyByName(QStringLiteral("Language"))->defaultValue();
        };
        SettingsWithLanguage base;
        SampleSettings derived;
        SettingsWithLanguage baseAgain;
        QCOMPARE(language(base), QVariant(QString()));
        QCOMPARE(language(derived), QVariant(QStringLiteral("en_US")));
        QCOMPARE(language(baseAgain), QVariant(QString()));
        SampleSettings derivedAgain;
        QCOMPARE(language(derivedAgain), QVariant(QStringLiteral("en_US")));
    }
    void customDescriptionsMakeAFileOfTheirOwn()
    {
        auto makeDescriptor = [](AbstractMetaDescriptor &descriptor) {
            descriptor.setRootName(QStringLiteral("Extra"));
            auto *order = new CustomMetaDescription(QStringLiteral("Order"),
                                                    QMetaType::fromType<Qt::SortOrder>());
            order->setEnumerator(QMetaEnum::fromType<Qt::SortOrder>());
            order->setHint(QStringLiteral("Default"),
                           QStringLiteral("Qt::SortOrder::DescendingOrder"));
            descriptor.append(order);
            auto *ratio =
                new CustomMetaDescription(QStringLiteral("Ratio"), QMetaType(QMetaType::Double));
            ratio->setHints({{"Minimum", "0"}, {"Maximum", "10"}});
            descriptor.append(ratio);
            descriptor.defaults();
        };
        AbstractMetaDescriptor written;
        makeDescriptor(written);
        QCOMPARE(written.propertyByName(QStringLiteral("Order"))->textValue(),
                 QStringLiteral("DescendingOrder"));
        QVERIFY(written.setTextValue(QStringLiteral("Order"), QStringLiteral("AscendingOrder")));
        QVERIFY(written.setValue(QStringLiteral("Ratio"), 2.5));

        AbstractMetaDescriptor read;
        makeDescriptor(read);
        QVERIFY(read.loadFromXmlString(written.saveAsXmlString()));
        QCOMPARE(read.getQVariantMap(), written.getQVariantMap());
    }
};

QTEST_GUILESS_MAIN(MetaDescriptionTest)
#include "tst_metadescription.moc"
