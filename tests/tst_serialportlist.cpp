#include "device/SerialPortList.h"

#include <QtTest>

class TestSerialPortList : public QObject
{
    Q_OBJECT
private slots:
    // The port list is read again only when the fingerprint changed, on every n-th call, or when
    // the fingerprint tells nothing; in between the last list comes back unchanged.
    void listsAgainOnlyWhenSomethingMayHaveChanged_data()
    {
        QTest::addColumn<int>("fullEvery");
        QTest::addColumn<QStringList>("prints");  // the fingerprint at each call
        QTest::addColumn<QList<int>>("listings"); // full listings made after each call
        QTest::newRow("steady machine")
            << 100 << QStringList{"a", "a", "a", "a"} << QList<int>{1, 1, 1, 1};
        QTest::newRow("a port plugged in, then out")
            << 100 << QStringList{"a", "a", "ab", "ab", "a"} << QList<int>{1, 1, 2, 2, 3};
        QTest::newRow("every third call lists anyway")
            << 3 << QStringList{"a", "a", "a", "a", "a", "a", "a"}
            << QList<int>{1, 1, 1, 2, 2, 2, 3};
        QTest::newRow("nothing to tell by")
            << 100 << QStringList{"", "", ""} << QList<int>{1, 2, 3};
    }

    void listsAgainOnlyWhenSomethingMayHaveChanged()
    {
        QFETCH(int, fullEvery);
        QFETCH(QStringList, prints);
        QFETCH(QList<int>, listings);
        int made = 0;
        QString print;
        // Each full listing shows a port named after the listing's number, so a stale list shows.
        const SerialPortList::Source source = SerialPortList::whenChanged(
            [&made] {
                ++made;
                return QList<SerialPortList::Entry>{
                    {QStringLiteral("ttyACM%1").arg(made), QStringLiteral("x"), QString()}};
            },
            [&print] { return print.toLatin1(); }, fullEvery);
        for (int call = 0; call < prints.size(); ++call) {
            print = prints[call];
            const QList<SerialPortList::Entry> entries = source();
            QCOMPARE(made, listings[call]);
            QCOMPARE(entries.size(), 1);
            QCOMPARE(entries[0].portName, QStringLiteral("ttyACM%1").arg(made));
        }
    }

    // The gate is worth something only if a machine where nothing was plugged gives the same
    // fingerprint twice (nothing in it that changes by itself).
    void systemFingerprintIsSteadyOnASteadyMachine()
    {
#ifndef Q_OS_LINUX
        QSKIP("The fingerprint is read from Linux device folders");
#endif
        const QByteArray first = SerialPortList::systemFingerprint();
        QVERIFY(!first.isEmpty());
        QCOMPARE(SerialPortList::systemFingerprint(), first);
    }
};

QTEST_GUILESS_MAIN(TestSerialPortList)
#include "tst_serialportlist.moc"
