#include "storage/AmplifierChannel.h"
#include "storage/Montage.h"

#include <QJsonDocument>
#include <QtTest>

class TestMontage : public QObject
{
    Q_OBJECT
private slots:
    void channelJsonUsesBsfKeyAndTextUsesBso()
    {
        // Written by hand: the keys files already carry.
        const QByteArray text = R"({"index":2,"name":"Pressure","type":7,"scale":0.25,"G1":1,"G2":3,
            "filters":{"HPF":0.1,"LPF":30,"BSF":60}})";
        const AmplifierChannel channel(QJsonDocument::fromJson(text).object());
        QCOMPARE(channel.makeTextView(),
                 QStringLiteral("index=2;name=Pressure;type=Temp;g1=1;g2=3;scale=0.25;LPF=30;"
                                "HPF=0.1;BSO=60;\n"));
        const QJsonObject back = channel.toJson();
        QCOMPARE(back.value("filters").toObject().value("BSF").toDouble(), 60.0);
        QVERIFY(!back.value("filters").toObject().contains("BSO"));
    }

    void montageJsonRoundTrip()
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

    void removalRenumbersAndForgetsTheEcgChannel()
    {
        Montage montage;
        montage.makeNewListFromFile({"Pressure", "Pulse", "IR", "ECG"});
        montage.channel(3)->setChannelType(AmplifierChannel::ECG);
        QCOMPARE(montage.getECGChannel(), 3);
        QVERIFY(montage.removeChannel(1));
        QCOMPARE(montage.getChannelNames(), QStringList({"Pressure", "IR", "ECG"}));
        QCOMPARE(montage.channel(2)->getIndex(), 2); // renumbered after removal
        QCOMPARE(montage.getIndexByName(QStringLiteral("ECG")), 2);
        montage.resize(1);
        QCOMPARE(montage.getECGChannel(), -1);
    }

    void copiesShareUntilCopyChannels()
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
};

QTEST_GUILESS_MAIN(TestMontage)
#include "tst_montage.moc"
