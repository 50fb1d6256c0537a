#include "storage/AmplifierChannel.h"
#include "storage/Montage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

class TestMontage : public QObject
{
    Q_OBJECT
private slots:
    void typeTexts();
    void tableCells_data();
    void tableCells();
    void filterTextFallsBackToValues();
    void channelJsonUsesBsfKeyAndTextUsesBso();
    void montageJsonRoundTrip();
    void montageFromForeignJson();
    void namesIndicesAndRemoval();
    void copiesShareUntilCopyChannels();
    void selectableValuesFollowFilterLists();
};

void TestMontage::typeTexts()
{
    const QStringList texts = {"EEG", "ECG", "EMG", "EOG", "Resp", "GSR", "PPG", "Temp"};
    for (int type = 0; type < texts.size(); ++type) {
        QCOMPARE(AmplifierChannel(0, 1.0f, AmplifierChannel::ChannelType(type)).getTextType(),
                 texts[type]);
        AmplifierChannel other;
        other.setTextChannelType(texts[type]);
        QCOMPARE(int(other.getChannelType()), type);
        other.setTextChannelType(QStringLiteral("ppg")); // texts are exact: unknown leaves it
        QCOMPARE(int(other.getChannelType()), type);
    }
}

void TestMontage::tableCells_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");
    QTest::newRow("type") << 1 << "PPG";
    QTest::newRow("group 2") << 4 << "-1";
    QTest::newRow("scale, six digits") << 5 << "0.333333";
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

void TestMontage::filterTextFallsBackToValues()
{
    AmplifierChannel channel;
    channel.setHPF(0.5f);
    channel.setLPF(40.0f);
    QCOMPARE(channel.getTextFilterView(), QStringLiteral("HP:0.500000;LP:40.000000;BS:0.000000;"));
    channel.setTextFilter(QStringLiteral("custom"));
    QCOMPARE(channel.getTextFilterView(), QStringLiteral("custom"));
}

void TestMontage::channelJsonUsesBsfKeyAndTextUsesBso()
{
    // Written by hand: the keys files already carry.
    const QByteArray text = R"({"index":2,"name":"Pressure","type":7,"scale":0.25,"G1":1,"G2":3,
        "filters":{"HPF":0.1,"LPF":30,"BSF":60}})";
    const AmplifierChannel channel(QJsonDocument::fromJson(text).object());
    QCOMPARE(channel.makeTextView(),
             QStringLiteral("index=2;name=Pressure;type=Temp;g1=1;g2=3;scale=0.25;LPF=30;HPF=0.1;"
                            "BSO=60;\n"));
    const QJsonObject back = channel.toJson();
    QCOMPARE(back.value("filters").toObject().value("BSF").toDouble(), 60.0);
    QVERIFY(!back.value("filters").toObject().contains("BSO"));
}

void TestMontage::montageJsonRoundTrip()
{
    Montage montage(QStringLiteral("Rat tail"));
    montage.makeNewListFromFile({"Pressure", "Pulse", "IR"});
    montage.channel(1)->setChannelType(AmplifierChannel::PPG);
    montage.channel(2)->setLPF(15.0f);
    const QJsonObject json = montage.toJson();
    QCOMPARE(json.value("file_name").toString(), QStringLiteral("Rat tail.xml"));

    const Montage back(json);
    QCOMPARE(back.getMontageName(), QStringLiteral("Rat tail"));
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
    montage.makeNewListFromFile({"Pressure", "Pulse", "IR", "ECG"});
    montage.channel(3)->setChannelType(AmplifierChannel::ECG);
    QCOMPARE(montage.getIndexByName(QStringLiteral("IR")), 2);
    QCOMPARE(montage.getIndexByName(QStringLiteral("ir")), -1);
    QCOMPARE(montage.getECGChannel(), 3);

    QVERIFY(montage.removeChannel(1));
    QVERIFY(!montage.removeChannel(7));
    QCOMPARE(montage.getChannelNames(), QStringList({"Pressure", "IR", "ECG"}));
    QCOMPARE(montage.channel(2)->getIndex(), 2); // renumbered after removal
    montage.erase(42);
    montage.resize(5);
    QVERIFY(montage.channel(4));
    montage.resize(1);
    QCOMPARE(montage.getChannelNames(), QStringList({"Pressure"}));
    QCOMPARE(montage.getECGChannel(), -1);
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
    QCOMPARE(channel->getHPFValues().value(channel->getCurrentIndexHPF()), QStringLiteral("0.5"));
    QCOMPARE(channel->getCurrentIndexLPF(), -1);
    montage.removeChannelFilterList();
    QVERIFY(channel->getHPFValues().isEmpty());
}

QTEST_GUILESS_MAIN(TestMontage)
#include "tst_montage.moc"
