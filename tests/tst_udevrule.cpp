#include "device/ComCorvidaDiscovery.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

// The packaged udev rule must open exactly the ports that discovery takes for a unit. The rule
// sees the USB product name as udev's ID_MODEL; Qt's port description is that same value with
// "_" shown as blanks.
namespace {

// What udev makes of a USB product name for ID_MODEL: runs of blanks become one "_", and every
// character outside its safe set becomes "_".
QString udevModel(const QString &product)
{
    static const QRegularExpression unsafe(QStringLiteral("[^0-9A-Za-z#+\\-.:=@_]"));
    return product.simplified().replace(QLatin1Char(' '), QLatin1Char('_')).replace(unsafe, "_");
}

// Walks the rule file for one "add" event of a tty with this ID_MODEL. Matches are globs with
// "|" between alternatives; a matching GOTO ends the walk (the file's only label is its end).
// Returns the assignments of the rule lines that applied.
QStringList applyRules(const QString &text, const QString &model)
{
    static const QRegularExpression pair(
        QStringLiteral("([A-Z_]+(?:\\{[^}]*\\})?)\\s*(==|!=|\\+=|:=|=)\\s*\"([^\"]*)\""));
    const QHash<QString, QString> event{
        {"ACTION", "add"}, {"SUBSYSTEM", "tty"}, {"ENV{ID_MODEL}", model}};
    QStringList assigned;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        if (line.trimmed().startsWith(QLatin1Char('#')))
            continue;
        bool matches = true;
        QStringList actions;
        for (auto it = pair.globalMatch(line); it.hasNext();) {
            const QRegularExpressionMatch k = it.next();
            const QString op = k.captured(2);
            if (op != QLatin1String("==") && op != QLatin1String("!=")) {
                actions << k.captured(1) + op + k.captured(3);
                continue;
            }
            QStringList globs = k.captured(3).split(QLatin1Char('|'));
            for (QString &glob : globs)
                glob = QRegularExpression::wildcardToRegularExpression(glob);
            const bool hit =
                QRegularExpression(globs.join('|')).match(event[k.captured(1)]).hasMatch();
            matches = matches && hit == (op == QLatin1String("=="));
        }
        if (!matches || actions.isEmpty() || actions.first().startsWith(QLatin1String("LABEL")))
            continue;
        if (actions.first().startsWith(QLatin1String("GOTO")))
            break;
        assigned << actions;
    }
    return assigned;
}

} // namespace

class TestUdevRule : public QObject
{
    Q_OBJECT
private slots:
    void ruleOpensExactlyThePortsDiscoveryTakes_data()
    {
        QTest::addColumn<QString>("product");
        QTest::newRow("our product name") << "BRENVATORIX CORVIDA BP-4 rev.2";
        QTest::newRow("our name, doubled blank") << "BRENVATORIX  CORVIDA";
        QTest::newRow("chip maker's name") << "STMicroelectronics Virtual COM Port";
        QTest::newRow("chip's usual product name") << "STM32 Virtual ComPort";
        QTest::newRow("other case") << "Brenvatorix Corvida";
        QTest::newRow("bluetooth link") << "Bluetooth BRENVATORIX CORVIDA";
        QTest::newRow("no product name") << "";
    }
    void ruleOpensExactlyThePortsDiscoveryTakes()
    {
        QFETCH(QString, product);
        QFile file(QStringLiteral(CORVIDA_UDEV_RULE));
        QVERIFY2(file.open(QIODevice::ReadOnly | QIODevice::Text), CORVIDA_UDEV_RULE);
        const QString model = udevModel(product);

        ComCorvidaDiscovery discovery;
        const QString description = QString(model).replace(QLatin1Char('_'), QLatin1Char(' '));
        discovery.setPortListSource(SerialPortList::fixed({{"ttyACM0", description, QString()}}));
        QSignalSpy found(&discovery, &ComCorvidaDiscovery::deviceFound);
        discovery.scan();

        const QStringList assigned = applyRules(QString::fromUtf8(file.readAll()), model);
        const QStringList opened{"GROUP=plugdev", "MODE=0660", "TAG+=uaccess"};
        QVERIFY2(assigned.isEmpty() || assigned == opened, qPrintable(assigned.join(' ')));
        QCOMPARE(assigned == opened, found.count() == 1);
    }
};

QTEST_GUILESS_MAIN(TestUdevRule)
#include "tst_udevrule.moc"
