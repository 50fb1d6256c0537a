#include "device/ComCorvidaDiscovery.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

// The packaged udev rule must open exactly the ports that discovery takes for a unit. The rule
// sees the USB product name as udev's ID_MODEL; Qt's port description is that same value with
// "_" shown as blanks. A small evaluator walks the rule file for one "add" event of a tty.
namespace {

// What udev makes of a USB product name for ID_MODEL: runs of blanks become one "_", and every
// character outside its safe set becomes "_".
QString udevModel(const QString &product)
{
    QString model = product.simplified();
    model.replace(QLatin1Char(' '), QLatin1Char('_'));
    static const QRegularExpression unsafe(QStringLiteral("[^0-9A-Za-z#+\\-.:=@_]"));
    return model.replace(unsafe, QStringLiteral("_"));
}

// One udev match: a glob with "|" between alternatives, case-sensitive.
bool globMatches(const QString &pattern, const QString &value)
{
    for (const QString &alternative : pattern.split(QLatin1Char('|'))) {
        const QRegularExpression re(QRegularExpression::wildcardToRegularExpression(alternative));
        if (re.match(value).hasMatch())
            return true;
    }
    return false;
}

struct Outcome {
    QString group;
    QString mode;
    QStringList tags;
    QString error;
};

Outcome applyRules(const QString &text, const QHash<QString, QString> &event)
{
    static const QRegularExpression pair(
        QStringLiteral("([A-Z_]+(?:\\{[^}]*\\})?)\\s*(==|!=|\\+=|:=|=)\\s*\"([^\"]*)\""));
    Outcome out;
    QString skipTo;
    for (const QString &raw : text.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        QList<QRegularExpressionMatch> keys;
        for (auto it = pair.globalMatch(line); it.hasNext();)
            keys << it.next();
        if (!skipTo.isEmpty()) {
            if (!keys.isEmpty() && keys.first().captured(1) == QLatin1String("LABEL") &&
                keys.first().captured(3) == skipTo)
                skipTo.clear();
            continue;
        }
        bool matches = true;
        for (const QRegularExpressionMatch &k : keys) {
            const QString op = k.captured(2);
            if (op != QLatin1String("==") && op != QLatin1String("!="))
                continue;
            if (!event.contains(k.captured(1))) {
                out.error = QStringLiteral("no value for ") + k.captured(1);
                return out;
            }
            matches = matches && globMatches(k.captured(3), event.value(k.captured(1))) ==
                                     (op == QLatin1String("=="));
        }
        if (!matches)
            continue;
        for (const QRegularExpressionMatch &k : keys) {
            const QString key = k.captured(1);
            if (key == QLatin1String("GOTO"))
                skipTo = k.captured(3);
            else if (key == QLatin1String("GROUP"))
                out.group = k.captured(3);
            else if (key == QLatin1String("MODE"))
                out.mode = k.captured(3);
            else if (key == QLatin1String("TAG") && k.captured(2) == QLatin1String("+="))
                out.tags << k.captured(3);
        }
    }
    return out;
}

} // namespace

class TestUdevRule : public QObject
{
    Q_OBJECT
private slots:
    void ruleOpensExactlyThePortsDiscoveryTakes_data();
    void ruleOpensExactlyThePortsDiscoveryTakes();
};

void TestUdevRule::ruleOpensExactlyThePortsDiscoveryTakes_data()
{
    QTest::addColumn<QString>("product");
    QTest::newRow("our product name") << "BRENVATORIX CORVIDA";
    QTest::newRow("our name with a model") << "BRENVATORIX CORVIDA BP-4 rev.2";
    QTest::newRow("our name, doubled blank") << "BRENVATORIX  CORVIDA";
    QTest::newRow("chip maker's name") << "STMicroelectronics Virtual COM Port";
    QTest::newRow("chip's usual product name") << "STM32 Virtual ComPort";
    QTest::newRow("other case") << "Brenvatorix Corvida";
    QTest::newRow("bluetooth link") << "Bluetooth BRENVATORIX CORVIDA";
    QTest::newRow("other adapter") << "FT232R USB UART";
    QTest::newRow("no product name") << "";
}

void TestUdevRule::ruleOpensExactlyThePortsDiscoveryTakes()
{
    QFETCH(QString, product);
    QFile file(QStringLiteral(CORVIDA_UDEV_RULE));
    QVERIFY2(file.open(QIODevice::ReadOnly | QIODevice::Text), CORVIDA_UDEV_RULE);
    const QString model = udevModel(product);

    ComCorvidaDiscovery discovery;
    const QString description = QString(model).replace(QLatin1Char('_'), QLatin1Char(' '));
    discovery.setPortListSource(
        SerialPortList::fixed({{QStringLiteral("ttyACM0"), description, QString()}}));
    QSignalSpy found(&discovery, &ComCorvidaDiscovery::deviceFound);
    discovery.scan();

    const Outcome out = applyRules(QString::fromUtf8(file.readAll()),
                                   {{QStringLiteral("ACTION"), QStringLiteral("add")},
                                    {QStringLiteral("SUBSYSTEM"), QStringLiteral("tty")},
                                    {QStringLiteral("ENV{ID_MODEL}"), model}});
    QVERIFY2(out.error.isEmpty(), qPrintable(out.error));
    const bool opened = out.group == QLatin1String("plugdev") &&
                        out.mode == QLatin1String("0660") &&
                        out.tags.contains(QLatin1String("uaccess"));
    QVERIFY2(opened || (out.group.isEmpty() && out.mode.isEmpty() && out.tags.isEmpty()),
             "the rule half-applies to a port");
    QCOMPARE(opened, found.count() == 1);
}

QTEST_GUILESS_MAIN(TestUdevRule)
#include "tst_udevrule.moc"
