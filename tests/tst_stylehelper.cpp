#include "toolkit/widgets/StyleHelper.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QtTest>

class TestStyleHelper : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString writeFile(const QString &name, const QByteArray &text)
    {
        QFile file(m_dir.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(text) ? file.fileName() : QString();
    }

private slots:
    void initTestCase()
    {
        StyleHelper *style = StyleHelper::instance();
        const QByteArray light = "--v-bg: #FFFFFF;\n--v-panel-bg: #102030;\n--v-sub-bg: #EEE;\n";
        QVERIFY(style->addThemeFile(writeFile("light.css", light), "light"));
        const QByteArray dark = "--v-bg: #000000;\n--v-panel-bg: #405060;\n";
        QVERIFY(style->addThemeFile(writeFile("dark.css", dark), "dark"));
        QVERIFY(style->addStyleFile(writeFile("style.css", "QLabel { color: --v-bg; }")));
        style->setColorTheme(StyleColorTheme::Light);
    }

    void linkReplacesVariablesOfTheActiveTheme_data()
    {
        QTest::addColumn<QString>("sheet");
        QTest::addColumn<QString>("linked");
        QTest::newRow("longer name")
            << QString("b: --v-sub-bg; c: --v-bg") << QString("b: #EEE; c: #FFFFFF");
        QTest::newRow("unknown") << QString("a { b: --v-no; }") << QString("a { b: transparent; }");
        QTest::newRow("declaration") << QString("--v-bg: red;") << QString("--v-bg: red;");
        QTest::newRow("two in one value") << QString("1px solid --v-panel-bg; x: --v-bg")
                                          << QString("1px solid #102030; x: #FFFFFF");
    }
    void linkReplacesVariablesOfTheActiveTheme()
    {
        QFETCH(QString, sheet);
        QTEST(StyleHelper::Link(sheet), "linked");
    }

    void themeChoiceReachesSheetAndPanels()
    {
        StyleHelper *style = StyleHelper::instance();
        QWidget panel;
        panel.resize(40, 20);
        style->paintBackground(&panel, QStringLiteral("--v-panel-bg"));
        QSignalSpy changed(style, &StyleHelper::themeChanged);
        style->setColorTheme(StyleColorTheme::Dark);
        QVERIFY(style->isDark());
        QCOMPARE(changed.size(), 1);
        QVERIFY(qApp->styleSheet().contains(QStringLiteral("QLabel { color: #000000; }")));
        QCOMPARE(panel.grab().toImage().pixelColor(20, 10), QColor(0x40, 0x50, 0x60));
        style->setColorTheme(StyleColorTheme::Light);
        QVERIFY(qApp->styleSheet().contains(QStringLiteral("QLabel { color: #FFFFFF; }")));
        QCOMPARE(panel.grab().toImage().pixelColor(20, 10), QColor(0x10, 0x20, 0x30));
    }
};

QTEST_MAIN(TestStyleHelper)
#include "tst_stylehelper.moc"
