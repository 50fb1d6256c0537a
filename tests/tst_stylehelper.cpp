#include "toolkit/widgets/StyleHelper.h"

#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>
#include <QtTest>

class TestStyleHelper : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void linkReplacesVariablesOfTheActiveTheme_data();
    void linkReplacesVariablesOfTheActiveTheme();
    void themeChoiceSetsDarkness();
    void applicationSheetFollowsTheTheme();
    void tintedIconKeepsShapeInOneColour();
    void panelBackgroundIsPaintedFromVariable();

private:
    QTemporaryDir m_dir;
    QString writeFile(const QString &name, const QByteArray &text);
};

QString TestStyleHelper::writeFile(const QString &name, const QByteArray &text)
{
    const QString path = m_dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(text);
    return path;
}

void TestStyleHelper::initTestCase()
{
    StyleHelper *style = StyleHelper::instance();
    QVERIFY(style->addThemeFile(
        writeFile("light.css", "--v-bg: #FFFFFF;\n--v-panel-bg: #102030;\n--v-sub-bg: #EEE;\n"),
        QStringLiteral("light")));
    QVERIFY(style->addThemeFile(writeFile("dark.css", "--v-bg: #000000;\n--v-panel-bg: #405060;\n"),
                                QStringLiteral("dark")));
    QVERIFY(style->addStyleFile(writeFile("style.css", "QLabel { color: --v-bg; }")));
    QVERIFY(!style->addStyleFile(m_dir.filePath("missing.css")));
    style->setColorTheme(StyleColorTheme::Light);
}

void TestStyleHelper::linkReplacesVariablesOfTheActiveTheme_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("linked");
    QTest::newRow("one") << "QWidget { background: --v-bg; }"
                         << "QWidget { background: #FFFFFF; }";
    QTest::newRow("longer name not cut short") << "a { b: --v-sub-bg; c: --v-bg }"
                                               << "a { b: #EEE; c: #FFFFFF }";
    QTest::newRow("unknown becomes transparent") << "a { b: --v-nothing; }"
                                                 << "a { b: transparent; }";
    QTest::newRow("declaration left alone") << "--v-bg: red;"
                                            << "--v-bg: red;";
    QTest::newRow("no variable") << "a { b: #123; }"
                                 << "a { b: #123; }";
    QTest::newRow("two in one value") << "border: 1px solid --v-panel-bg; x: --v-bg"
                                      << "border: 1px solid #102030; x: #FFFFFF";
}

void TestStyleHelper::linkReplacesVariablesOfTheActiveTheme()
{
    QFETCH(QString, sheet);
    QFETCH(QString, linked);
    QCOMPARE(StyleHelper::Link(sheet), linked);
}

void TestStyleHelper::themeChoiceSetsDarkness()
{
    StyleHelper *style = StyleHelper::instance();
    QSignalSpy changed(style, &StyleHelper::themeChanged);
    style->setColorTheme(StyleColorTheme::Dark);
    QVERIFY(style->isDark());
    QCOMPARE(style->color(QStringLiteral("--v-bg")), QColor(Qt::black));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toBool(), true);
    style->setColorTheme(StyleColorTheme::System);
    QCOMPARE(style->isDark(), StyleHelper::desktopIsDark());
    style->setColorTheme(StyleColorTheme::Light);
    QVERIFY(!style->isDark());
    QCOMPARE(StyleHelper::Link(QStringLiteral("--v-bg")), QStringLiteral("#FFFFFF"));
}

void TestStyleHelper::applicationSheetFollowsTheTheme()
{
    StyleHelper *style = StyleHelper::instance();
    style->setColorTheme(StyleColorTheme::Dark);
    QVERIFY(qApp->styleSheet().contains(QStringLiteral("QLabel { color: #000000; }")));
    QCOMPARE(qApp->palette().color(QPalette::Window), QColor(Qt::black));
    style->setColorTheme(StyleColorTheme::Light);
    QVERIFY(qApp->styleSheet().contains(QStringLiteral("QLabel { color: #FFFFFF; }")));
}

void TestStyleHelper::tintedIconKeepsShapeInOneColour()
{
    // A filled square in the left half only.
    const QString path = writeFile(
        "half.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20\" height=\"20\">"
                    "<rect x=\"0\" y=\"0\" width=\"10\" height=\"20\" fill=\"#00FF00\"/></svg>");
    const QImage image =
        StyleHelper::tintedPixmap(path, QColor(200, 10, 10), QSize(20, 20)).toImage();
    QCOMPARE(image.size(), QSize(20, 20));
    QCOMPARE(image.pixelColor(3, 10), QColor(200, 10, 10));
    QCOMPARE(image.pixelColor(16, 10).alpha(), 0);

    QLabel label;
    StyleHelper::SetLabelIcon(&label, path, Qt::white, QSize(24, 24));
    QCOMPARE(label.size(), QSize(24, 24));
    QVERIFY(!label.pixmap().isNull());
    // A missing icon gives an empty picture, not a crash.
    QVERIFY(StyleHelper::tintedPixmap(m_dir.filePath("none.svg"), Qt::red, QSize(8, 8))
                .toImage()
                .pixelColor(4, 4)
                .alpha() == 0);
}

void TestStyleHelper::panelBackgroundIsPaintedFromVariable()
{
    StyleHelper *style = StyleHelper::instance();
    QWidget panel;
    panel.resize(40, 20);
    style->paintBackground(&panel, QStringLiteral("--v-panel-bg"));
    QCOMPARE(panel.grab().toImage().pixelColor(20, 10), QColor(0x10, 0x20, 0x30));
    style->setColorTheme(StyleColorTheme::Dark);
    QCOMPARE(panel.grab().toImage().pixelColor(20, 10), QColor(0x40, 0x50, 0x60));
    style->setColorTheme(StyleColorTheme::Light);
}

QTEST_MAIN(TestStyleHelper)
#include "tst_stylehelper.moc"
