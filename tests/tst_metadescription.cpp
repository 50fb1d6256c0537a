#include "support/SampleSettings.h"

#include "settings/CustomMetaDescription.h"
#include "settings/MetaDescriptor.h"
#include "settings/VisibleBoundRule.h"
#include "toolkit/LogCapture.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

// Hints a developer could get wrong: they must be reported, not trusted.
class BadHints : public VTSettings
{
    Q_OBJECT
    Q_PROPERTY(int Level MEMBER m_Level NOTIFY changedLevel)
    Q_CLASSINFO("LevelDefault", "high")
    Q_CLASSINFO("LevelVisibleBound", "Level")
public:
    using VTSettings::VTSettings;
signals:
    void changedLevel(int);

private:
    int m_Level = 2;
};

class MetaDescriptionTest : public QObject
{
    Q_OBJECT
private slots:
    void hintsReachTheCapabilities_data();
    void hintsReachTheCapabilities();
    void enumerationKeysCarryTheirIcons();
    void declaredPropertiesAreDescribedInOrder();
    void visibleBoundRuleIsParsed_data();
    void visibleBoundRuleIsParsed();
    void visibilityFollowsTheBoundSetting_data();
    void visibilityFollowsTheBoundSetting();
    void unreadableHintsAreLoggedAndIgnored();
    void descriptionFollowsThePropertyChangeSignal();
    void customDescriptionChecksAndKeepsItsValue();
    void customDescriptionsMakeAFileOfTheirOwn();
    void capabilitiesAsJsonUseTheFileTextsForEnumerationsAndColours();
    void setItemAnnouncesTheNewItem();
};

void MetaDescriptionTest::hintsReachTheCapabilities_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("expected");

    auto row = [](const char *property, const char *key, const QVariant &expected) {
        QTest::addRow("%s %s", property, key) << property << key << expected;
    };
    row("Count", "displayName", QStringLiteral("Count of things"));
    row("Count", "category", QStringLiteral("Numbers"));
    row("Count", "prefix", QStringLiteral("n="));
    row("Count", "minimum", -5);
    row("Count", "maximum", 50);
    row("Count", "step", 5);
    row("Count", "priority", 3);
    row("Count", "minWidth", 40);
    row("Count", "default", QStringLiteral("7"));
    row("Ratio", "precision", 3);
    row("Flag", "precision", -1);
    row("Flag", "displayName", QStringLiteral("Flag"));
    row("Gain", "hasDefault", false);
    row("Name", "placeholder", QStringLiteral("nobody"));
    row("Name", "suggestions", QStringList{"Rat", "Mouse"});
    row("Name", "hasDefault", true);
    row("Owner", "editor", QStringLiteral("enum"));
    row("Owner", "noDefault", true);
    row("Stamp", "readOnly", true);
    row("Blob", "notVisible", true);
    row("Blob", "visible", false);
    row("Labels", "editor", QStringLiteral("stringMap"));
    row("Tags", "editor", QStringLiteral("stringList"));
    row("Tint", "default", QStringLiteral("#102030"));
    row("Kind", "default", QStringLiteral("Gamma"));
    row("Order", "default", QStringLiteral("DescendingOrder"));
    row("Language", "editor", QStringLiteral("stringList"));
    row("Language", "editable", true);
    row("Language", "default", QStringLiteral("en_US")); // the subclass's override wins
    row("Transient", "stored", false);
}

void MetaDescriptionTest::hintsReachTheCapabilities()
{
    QFETCH(QString, property);
    QFETCH(QString, key);
    QFETCH(QVariant, expected);
    SampleSettings settings;
    const QVariantMap caps = settings.getPropertyCapabilities(property);
    QVERIFY2(caps.contains(key), qPrintable(key));
    QCOMPARE(caps.value(key), expected);
}

void MetaDescriptionTest::enumerationKeysCarryTheirIcons()
{
    SampleSettings settings;
    const QVariantList keys =
        settings.getPropertyCapabilities(QStringLiteral("Kind")).value("enumKeys").toList();
    QCOMPARE(keys.size(), 3);
    const QStringList expected[] = {
        {"Alpha", "0", ""}, {"Beta", "1", ":/icons/beta.svg"}, {"Gamma", "5", ""}};
    for (int i = 0; i < 3; ++i) {
        const QVariantMap key = keys[i].toMap();
        QCOMPARE(key.value("key").toString(), expected[i][0]);
        QCOMPARE(key.value("value").toString(), expected[i][1]);
        QCOMPARE(key.value("icon").toString(), expected[i][2]);
    }
    const QVariantList choices =
        settings.getPropertyCapabilities(QStringLiteral("Owner")).value("enumKeys").toList();
    QCOMPARE(choices.size(), 2);
    QCOMPARE(choices[1].toMap().value("key").toString(), QStringLiteral("clinic"));
}

void MetaDescriptionTest::declaredPropertiesAreDescribedInOrder()
{
    SampleSettings settings;
    const QStringList expected = {"Language", "Flag",   "Count",    "Ratio", "Gain", "Name",
                                  "Owner",    "Tint",   "Order",    "Kind",  "Blob", "Extent",
                                  "Origin",   "Anchor", "Letter",   "Tiny",  "Byte", "Stamp",
                                  "Labels",   "Tags",   "Transient"};
    QCOMPARE(settings.getPropertiesNames(), expected);
    QCOMPARE(settings.descriptor()->rootName(), QStringLiteral("SampleSettings"));
    QCOMPARE(settings.getClassName(), QStringLiteral("SampleSettings"));
    QVERIFY(!settings.containsProperty(QStringLiteral("objectName")));
}

void MetaDescriptionTest::visibleBoundRuleIsParsed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "DebugMode:true" << true << "DebugMode"
                           << "true";
    QTest::newRow("blanks") << "  DebugMode : true " << true << "DebugMode"
                            << "true";
    QTest::newRow("scoped key value") << "ViewMode:CorvidaViewMode::View_Tabs" << true << "ViewMode"
                                      << "CorvidaViewMode::View_Tabs";
    QTest::newRow("empty value") << "Name:" << true << "Name"
                                 << "";
    QTest::newRow("no rule") << "" << true << ""
                             << "";
    QTest::newRow("no colon") << "DebugMode" << false << ""
                              << "";
    QTest::newRow("no property") << ":true" << false << ""
                                 << "";
    QTest::newRow("name starts with a digit") << "1Mode:true" << false << ""
                                              << "";
    QTest::newRow("blank inside the name") << "Debug Mode:true" << false << ""
                                           << "";
}

void MetaDescriptionTest::visibleBoundRuleIsParsed()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(QString, property);
    QFETCH(QString, value);
    bool parsed = !ok;
    const VisibleBoundRule rule = VisibleBoundRule::parse(text, &parsed);
    QCOMPARE(parsed, ok);
    QCOMPARE(rule.isValid(), !property.isEmpty());
    QCOMPARE(rule.property(), property);
    QCOMPARE(rule.value(), value);
}

void MetaDescriptionTest::visibilityFollowsTheBoundSetting_data()
{
    QTest::addColumn<QString>("bound");
    QTest::addColumn<QVariant>("boundValue");
    QTest::addColumn<QString>("property");
    QTest::addColumn<bool>("visible");
    const QVariant beta = QVariant::fromValue(SampleSettings::Mode::Beta);
    const QVariant gamma = QVariant::fromValue(SampleSettings::Mode::Gamma);
    QTest::newRow("enumeration matches") << "Kind" << beta << "Gain" << true;
    QTest::newRow("enumeration differs") << "Kind" << gamma << "Gain" << false;
    QTest::newRow("older spelling, true") << "Flag" << QVariant(true) << "Anchor" << true;
    QTest::newRow("older spelling, false") << "Flag" << QVariant(false) << "Anchor" << false;
    QTest::newRow("not visible stays hidden") << "Flag" << QVariant(true) << "Blob" << false;
    QTest::newRow("no rule") << "Flag" << QVariant(false) << "Count" << true;
}

void MetaDescriptionTest::visibilityFollowsTheBoundSetting()
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

void MetaDescriptionTest::unreadableHintsAreLoggedAndIgnored()
{
    BadHints settings;
    LogCapture log;
    QCOMPARE(settings.getPropertiesNames(), QStringList{"Level"});
    QCOMPARE(log.count(QStringLiteral("LevelDefault")) + log.count(QStringLiteral("Default hint")),
             1);
    QCOMPARE(log.count(QStringLiteral("VisibleBound")), 1);
    QVERIFY(!settings.getPropertyByName(QStringLiteral("Level"))->hasDefault());
    QVERIFY(settings.isPropertyVisible(QStringLiteral("Level")));
    settings.loadDefaults();
    QCOMPARE(settings.getValue(QStringLiteral("Level")).toInt(), 2);
}

void MetaDescriptionTest::descriptionFollowsThePropertyChangeSignal()
{
    SampleSettings settings;
    AbstractMetaDescription *count = settings.getPropertyByName(QStringLiteral("Count"));
    QSignalSpy spy(count, &AbstractMetaDescription::valueChanged);
    settings.setProperty("Count", 3);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 3);
    QVERIFY(!count->setValue(51)); // above the Maximum hint
    QVERIFY(!count->setTextValue(QStringLiteral("3.5")));
    QCOMPARE(settings.property("Count").toInt(), 3);
    QCOMPARE(spy.count(), 1);
}

void MetaDescriptionTest::customDescriptionChecksAndKeepsItsValue()
{
    CustomMetaDescription threshold(QStringLiteral("Threshold"), QMetaType(QMetaType::Double), 1.5);
    threshold.setHints({{"Minimum", "0"}, {"Maximum", "10"}, {"Suffix", " mmHg"}});
    QCOMPARE(threshold.getValue().toDouble(), 1.5);
    QCOMPARE(threshold.defaultValue().toDouble(), 1.5);
    QSignalSpy spy(&threshold, &AbstractMetaDescription::valueChanged);
    QVERIFY(!threshold.setValue(11.0));
    QVERIFY(!threshold.setTextValue(QStringLiteral("abc")));
    QCOMPARE(spy.count(), 0);
    QVERIFY(threshold.setTextValue(QStringLiteral("2.5")));
    QVERIFY(threshold.setValue(2.5));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDouble(), 2.5);
    QVERIFY(threshold.resetValue());
    QCOMPARE(threshold.getValue().toDouble(), 1.5);
    QCOMPARE(threshold.capabilities().value("suffix").toString(), QStringLiteral(" mmHg"));
}

void MetaDescriptionTest::customDescriptionsMakeAFileOfTheirOwn()
{
    auto makeDescriptor = [](AbstractMetaDescriptor &descriptor) {
        descriptor.setRootName(QStringLiteral("Extra"));
        auto *order = new CustomMetaDescription(QStringLiteral("Order"),
                                                QMetaType::fromType<Qt::SortOrder>());
        order->setEnumerator(QMetaEnum::fromType<Qt::SortOrder>());
        order->setHint(QStringLiteral("Default"), QStringLiteral("Qt::SortOrder::DescendingOrder"));
        descriptor.append(order);
        descriptor.append(
            new CustomMetaDescription(QStringLiteral("Note"), QMetaType(QMetaType::QString)));
        descriptor.defaults();
    };
    AbstractMetaDescriptor written;
    makeDescriptor(written);
    QCOMPARE(written.propertyByName(QStringLiteral("Order"))->textValue(),
             QStringLiteral("DescendingOrder"));
    QVERIFY(written.setTextValue(QStringLiteral("Order"), QStringLiteral("AscendingOrder")));
    QVERIFY(written.setValue(QStringLiteral("Note"), QStringLiteral("x & y")));
    const QString xml = written.saveAsXmlString();
    QVERIFY(xml.contains(QStringLiteral("<Extra>")));

    AbstractMetaDescriptor read;
    makeDescriptor(read);
    QVERIFY(read.loadFromXmlString(xml));
    QCOMPARE(read.getQVariantMap(), written.getQVariantMap());
    AbstractMetaDescriptor fromJson;
    makeDescriptor(fromJson);
    QVERIFY(fromJson.loadFromJsonString(written.saveToJsonString()));
    QCOMPARE(fromJson.getQVariantMap(), written.getQVariantMap());
}

void MetaDescriptionTest::capabilitiesAsJsonUseTheFileTextsForEnumerationsAndColours()
{
    SampleSettings settings;
    settings.loadDefaults();
    const QJsonArray all = settings.getAllCapabilitiesJson();
    QCOMPARE(all.size(), settings.getPropertiesNames().size());
    QJsonObject kind, tint, count;
    for (const QJsonValue &v : all) {
        const QJsonObject o = v.toObject();
        if (o.value("name") == QLatin1String("Kind"))
            kind = o;
        else if (o.value("name") == QLatin1String("Tint"))
            tint = o;
        else if (o.value("name") == QLatin1String("Count"))
            count = o;
    }
    QCOMPARE(kind.value("value").toString(), QStringLiteral("Gamma"));
    QCOMPARE(tint.value("value").toString(), QStringLiteral("#102030"));
    QCOMPARE(count.value("value").toInt(), 7);
    QCOMPARE(count.value("maximum").toDouble(), 50.0);
}

void MetaDescriptionTest::setItemAnnouncesTheNewItem()
{
    SampleSettings first;
    BadHints second;
    MetaDescriptor descriptor;
    QSignalSpy spy(&descriptor, &MetaDescriptor::itemChanged);
    descriptor.setItem(&first);
    descriptor.setItem(&first);
    QCOMPARE(spy.count(), 1);
    descriptor.setItem(&second);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(descriptor.count(), 1);
    QCOMPARE(descriptor.rootName(), QStringLiteral("BadHints"));
}

QTEST_GUILESS_MAIN(MetaDescriptionTest)
#include "tst_metadescription.moc"
