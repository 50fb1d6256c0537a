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
    // One hint of each kind of text: number, list, flag, colour, enumeration, and the cases
    // where a hint is missing or overridden.
    row("Count", "minimum", -5);
    row("Count", "default", QStringLiteral("7"));
    row("Ratio", "precision", 3);
    row("Flag", "precision", -1);
    row("Flag", "displayName", QStringLiteral("Flag"));
    row("Gain", "hasDefault", false);
    row("Name", "suggestions", QStringList{"Rat", "Mouse"});
    row("Owner", "noDefault", true);
    row("Blob", "visible", false);
    row("Tint", "default", QStringLiteral("#102030"));
    row("Order", "default", QStringLiteral("DescendingOrder"));
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
    QCOMPARE(keys[1].toMap().value("icon").toString(), QStringLiteral(":/icons/beta.svg"));
    QCOMPARE(keys[2].toMap().value("key").toString(), QStringLiteral("Gamma"));
    QCOMPARE(keys[2].toMap().value("value").toString(), QStringLiteral("5"));
    QVERIFY(keys[2].toMap().value("icon").toString().isEmpty());
}

void MetaDescriptionTest::declaredPropertiesAreDescribedInOrder()
{
    SampleSettings settings;
    const QStringList expected = {"Language", "Flag",   "Count",    "Ratio", "Gain", "Name",
                                  "Owner",    "Tint",   "Order",    "Kind",  "Blob", "Extent",
                                  "Origin",   "Anchor", "Letter",   "Tiny",  "Byte", "Stamp",
                                  "Labels",   "Tags",   "Transient"};
    QCOMPARE(settings.getPropertiesNames(), expected);
    QVERIFY(!settings.containsProperty(QStringLiteral("objectName")));
}

void MetaDescriptionTest::visibleBoundRuleIsParsed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rule"); // property=value; "error" when the text is refused
    QTest::newRow("plain") << "DebugMode:true"
                           << "DebugMode=true";
    QTest::newRow("blanks") << "  DebugMode : true "
                            << "DebugMode=true";
    QTest::newRow("scoped key value") << "ViewMode:CorvidaViewMode::View_Tabs"
                                      << "ViewMode=CorvidaViewMode::View_Tabs";
    QTest::newRow("no rule") << ""
                             << "=";
    QTest::newRow("no colon") << "DebugMode"
                              << "error";
    QTest::newRow("no property") << ":true"
                                 << "error";
    QTest::newRow("name starts with a digit") << "1Mode:true"
                                              << "error";
    QTest::newRow("blank inside the name") << "Debug Mode:true"
                                           << "error";
}

void MetaDescriptionTest::visibleBoundRuleIsParsed()
{
    QFETCH(QString, text);
    QFETCH(QString, rule);
    bool parsed = rule == QLatin1String("error");
    const VisibleBoundRule r = VisibleBoundRule::parse(text, &parsed);
    QCOMPARE(parsed, rule != QLatin1String("error"));
    QCOMPARE(r.isValid(), parsed && rule != QLatin1String("="));
    if (parsed)
        QCOMPARE(r.property() + '=' + r.value(), rule);
    else
        QVERIFY(r.property().isEmpty());
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
    QCOMPARE(log.lines().size(), 2); // one line for each bad hint
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
    QSignalSpy spy(&threshold, &AbstractMetaDescription::valueChanged);
    QVERIFY(!threshold.setValue(11.0));
    QVERIFY(!threshold.setTextValue(QStringLiteral("abc")));
    QCOMPARE(spy.count(), 0);
    QVERIFY(threshold.setTextValue(QStringLiteral("2.5")));
    QVERIFY(threshold.setValue(2.5));
    QCOMPARE(spy.count(), 1);
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
    QMap<QString, QJsonValue> values;
    for (const QJsonValue &v : all)
        values.insert(v[QLatin1String("name")].toString(), v[QLatin1String("value")]);
    QCOMPARE(values.value("Kind").toString(), QStringLiteral("Gamma"));
    QCOMPARE(values.value("Tint").toString(), QStringLiteral("#102030"));
    QCOMPARE(values.value("Count").toInt(), 7);
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
    QCOMPARE(descriptor.rootName(), QStringLiteral("BadHints"));
}

QTEST_GUILESS_MAIN(MetaDescriptionTest)
#include "tst_metadescription.moc"
