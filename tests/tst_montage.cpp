#include "storage/AmplifierChannel.h"
#include "storage/Montage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

class TestMontage : public QObject
{
    Q_OBJECT
private slots:
    void typeTexts_data();
    void typeTexts();
    void tableCells_data();
    void tableCells();
    void oneLineTextKeepsBandStopKey();
    void filterTextFallsBackToValues();
    void channelJsonUsesBsfKey();
    void montageJsonRoundTrip();
    void montageFromForeignJson();
    void namesIndicesAndRemoval();
    void copiesShareUntilCopyChannels();
    void selectableValuesFollowFilterLists();
};

void TestMontage::typeTexts_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    const QStringList texts = {"EEG", "ECG", "EMG", "EOG", "Resp", "GSR", "PPG", "Temp"};
    for (int i = 0; i < texts.size(); ++i)
        QTest::newRow(qPrintable(texts.at(i))) << i << texts.at(i);
}

void TestMontage::typeTexts()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    AmplifierChannel channel(0, 1.0f, AmplifierChannel::ChannelType(type));
    QCOMPARE(channel.getTextType(), text);
    AmplifierChannel other;
    other.setTextChannelType(text);
    QCOMPARE(int(other.getChannelType()), type);
    other.setTextChannelType(QStringLiteral("ppg")); // texts are exact: unknown leaves it
    QCOMPARE(int(other.getChannelType()), type);
}

void TestMontage::tableCells_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");
    QTest::newRow("index") << 0 << "3";
    QTest::newRow("type") << 1 << "PPG";
    QTest::newRow("name") << 2 << "Pulse";
    QTest::newRow("group 1") << 3 << "2";
    QTest::newRow("group 2") << 4 << "-1";
    QTest::newRow("scale, six digits") << 5 << "0.333333";
    QTest::newRow("HPF") << 6 << "0.5";
    QTest::newRow("LPF") << 7 << "40";
    QTest::newRow("BSF large") << 8 << "1.23457e+06";
    QTest::newRow("past the last column") << 9 << "";
    QTest::newRow("negative column") << -1 << "";
}

void TestMontage::tableCells()
{
    QFETCH(int, column);
    QFETCH(QString, text);
    AmplifierChannel channel(3, 1.0f / 3.0f, AmplifierChannel::PPG);
    channel.setChannelName(QStringLiteral("Pulse"));
    channel.setGroup1(2);
    channel.setGroup2(-1);
    channel.setHPF(0.5f);
    channel.setLPF(40.0f);
    channel.setBSF(1234567.0f);
    QCOMPARE(channel.getTextValue(column), text);
}

void TestMontage::oneLineTextKeepsBandStopKey()
{
    AmplifierChannel channel(1, 2.5f, AmplifierChannel::ECG);
    channel.setChannelName(QStringLiteral("Lead I"));
    channel.setGroup1(4);
    channel.setLPF(100.0f);
    channel.setHPF(0.1f);
    channel.setBSF(50.0f);
    QCOMPARE(channel.makeTextView(),
             QStringLiteral("index=1;name=Lead I;type=ECG;g1=4;g2=0;scale=2.5;LPF=100;HPF=0.1;"
                            "BSO=50;\n"));
}

void TestMontage::filterTextFallsBackToValues()
{
    AmplifierChannel channel;
    channel.setHPF(0.5f);
    channel.setLPF(40.0f);
    QCOMPARE(channel.getTextFilterView(), QStringLiteral("HP:0.500000;LP:40.000000;BS:0.000000;"));
    channel.setTextFilter(QStringLiteral("custom"));
    QCOMPARE(channel.getTextFilterView(), QStringLiteral("custom"));
}

void TestMontage::channelJsonUsesBsfKey()
{
    // Written by hand: the keys files already carry.
    const QByteArray text = R"({"index":2,"name":"Pressure","type":7,"scale":0.25,"G1":1,"G2":3,
        "filters":{"HPF":0.1,"LPF":30,"BSF":60}})";
    const AmplifierChannel channel(QJsonDocument::fromJson(text).object());
    QCOMPARE(channel.getIndex(), 2);
    QCOMPARE(channel.getName(), QStringLiteral("Pressure"));
    QCOMPARE(channel.getTextType(), QStringLiteral("Temp"));
    QCOMPARE(channel.getScale(), 0.25f);
    QCOMPARE(channel.getGroup1(), 1);
    QCOMPARE(channel.getGroup2(), 3);
    QCOMPARE(channel.getHPF(), 0.1f);
    QCOMPARE(channel.getLPF(), 30.0f);
    QCOMPARE(channel.getBSF(), 60.0f);
    const QJsonObject back = channel.toJson();
    QCOMPARE(back.value("filters").toObject().value("BSF").toDouble(), 60.0);
    QVERIFY(!back.value("filters").toObject().contains("BSO"));
    QCOMPARE(back.value("type").toInt(), 7);
}

void TestMontage::montageJsonRoundTrip()
{
    Montage montage(QStringLiteral("Rat tail"));
    montage.makeNewListFromFile({"Pressure", "Pulse", "IR"});
    montage.channel(1)->setChannelType(AmplifierChannel::PPG);
    montage.channel(2)->setLPF(15.0f);
    const QJsonObject json = montage.toJson();
    QCOMPARE(json.value("name").toString(), QStringLiteral("Rat tail"));
    QCOMPARE(json.value("file_name").toString(), QStringLiteral("Rat tail.xml"));
    QCOMPARE(json.value("chan_list").toArray().size(), 3);

    const Montage back(json);
    QCOMPARE(back.getMontageName(), QStringLiteral("Rat tail"));
    QCOMPARE(back.getChannelNames(), QStringList({"Pressure", "Pulse", "IR"}));
    QCOMPARE(back.channel(1)->getChannelType(), AmplifierChannel::PPG);
    QCOMPARE(back.channel(2)->getLPF(), 15.0f);
    QCOMPARE(back.makeChannelDataList(), montage.makeChannelDataList());
}

void TestMontage::montageFromForeignJson()
{
    Montage montage(QStringLiteral("old"));
    montage.makeNewListFromFile({"A"});
    // Without "chan_list" the channels stay; without "name" the name stays.
    montage.fromJson(QJsonDocument::fromJson(R"({"other":1})").object());
    QCOMPARE(montage.getMontageName(), QStringLiteral("old"));
    QCOMPARE(montage.size(), 1);
    montage.fromJson(QJsonDocument::fromJson(R"({"chan_list":[{}, "junk"]})").object());
    QCOMPARE(montage.size(), 2);
    QCOMPARE(montage.channel(1)->getName(), QString());
}

void TestMontage::namesIndicesAndRemoval()
{
    Montage montage;
    QVERIFY(montage.empty());
    montage.makeNewListFromFile({"Pressure", "Pulse", "IR", "ECG"});
    montage.channel(3)->setChannelType(AmplifierChannel::ECG);
    QCOMPARE(montage.getIndexByName(QStringLiteral("IR")), 2);
    QCOMPARE(montage.getIndexByName(QStringLiteral("ir")), -1);
    QCOMPARE(montage.getIndexByName(QStringLiteral("Missing")), -1);
    QCOMPARE(montage.getECGChannel(), 3);

    QVERIFY(montage.removeChannel(1));
    QVERIFY(!montage.removeChannel(7));
    QCOMPARE(montage.getChannelNames(), QStringList({"Pressure", "IR", "ECG"}));
    QCOMPARE(montage.channel(2)->getIndex(), 2); // renumbered after removal
    montage.insert(0, Montage::ChannelPtr::create(9));
    montage.rebuildMontageChannelList();
    QCOMPARE(montage.channel(1)->getIndex(), 1);
    montage.erase(0);
    montage.erase(42);
    QCOMPARE(montage.size(), 3);
    montage.resize(5);
    QCOMPARE(montage.size(), 5);
    QVERIFY(montage.channel(4));
    montage.resize(1);
    QCOMPARE(montage.getChannelNames(), QStringList({"Pressure"}));
    QCOMPARE(montage.getECGChannel(), -1);
    montage.clearChannel();
    QVERIFY(montage.empty());
}

void TestMontage::copiesShareUntilCopyChannels()
{
    Montage first;
    first.makeNewListFromFile({"A"});
    Montage shared(first);
    Montage own;
    own.copyChannels(first);
    first.channel(0)->setChannelName(QStringLiteral("renamed"));
    QCOMPARE(shared.channel(0)->getName(), QStringLiteral("renamed"));
    QCOMPARE(own.channel(0)->getName(), QStringLiteral("A"));
}

void TestMontage::selectableValuesFollowFilterLists()
{
    Montage montage;
    montage.makeNewListFromFile({"A"});
    const auto channel = montage.channel(0);
    channel->setHPF(0.5f);
    channel->setLPF(33.0f); // not in the list
    QCOMPARE(channel->getCurrentIndexHPF(), -1);
    montage.createChannelFilterList();
    QVERIFY(channel->getHPFValues().contains(QStringLiteral("0.5")));
    QCOMPARE(channel->getHPFValues().at(channel->getCurrentIndexHPF()), QStringLiteral("0.5"));
    QCOMPARE(channel->getCurrentIndexLPF(), -1);
    montage.removeChannelFilterList();
    QVERIFY(channel->getHPFValues().isEmpty());
}

QTEST_GUILESS_MAIN(TestMontage)
#include "tst_montage.moc"
