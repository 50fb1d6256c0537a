#include "toolkit/widgets/AboutAppWidget.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

class TestAboutAppWidget : public QObject
{
    Q_OBJECT
private slots:
    void birthday_data();
    void birthday();
    void showsOnlyWhatItWasGiven();
    void balloonOnlyForTodaysBirthday();
};

void TestAboutAppWidget::birthday_data()
{
    QTest::addColumn<QDate>("birthday");
    QTest::addColumn<QDate>("today");
    QTest::addColumn<bool>("expected");
    QTest::newRow("same day other year") << QDate(1990, 5, 17) << QDate(2026, 5, 17) << true;
    QTest::newRow("day after") << QDate(1990, 5, 17) << QDate(2026, 5, 18) << false;
    QTest::newRow("same day other month") << QDate(1990, 5, 17) << QDate(2026, 6, 17) << false;
    QTest::newRow("29 Feb in a leap year") << QDate(1992, 2, 29) << QDate(2028, 2, 29) << true;
    QTest::newRow("29 Feb kept on 28 Feb") << QDate(1992, 2, 29) << QDate(2026, 2, 28) << true;
    QTest::newRow("29 Feb not on 1 Mar") << QDate(1992, 2, 29) << QDate(2026, 3, 1) << false;
    QTest::newRow("28 Feb in a leap year") << QDate(1992, 2, 28) << QDate(2028, 2, 29) << false;
    QTest::newRow("no birthday") << QDate() << QDate(2026, 5, 17) << false;
}

void TestAboutAppWidget::birthday()
{
    QFETCH(QDate, birthday);
    QFETCH(QDate, today);
    QFETCH(bool, expected);
    QCOMPARE(AboutAppWidget::isBirthday(birthday, today), expected);
}

void TestAboutAppWidget::showsOnlyWhatItWasGiven()
{
    AboutAppWidget::Info info;
    info.appName = QStringLiteral("Corvida");
    info.version = QStringLiteral("1.2.3");
    info.buildDate = QDate(2026, 11, 21);
    info.manualUrl = QStringLiteral("https://example.invalid/manual");
    AboutAppWidget about(info);
    QStringList texts;
    for (QLabel *label : about.findChildren<QLabel *>())
        texts.append(label->text());
    QVERIFY(texts.contains(QStringLiteral("Version 1.2.3")));
    QVERIFY(std::any_of(texts.cbegin(), texts.cend(), [](const QString &t) {
        return t.startsWith(QStringLiteral("built on 2026-11-21, ")) && t.contains("-bit");
    }));
    QStringList buttons;
    for (QPushButton *button : about.findChildren<QPushButton *>())
        if (!button->isHidden())
            buttons.append(button->text());
    // No API or change-log address was given, and no new version is known.
    QCOMPARE(buttons, QStringList{QStringLiteral("Manual")});
    // Without contacts or developers their blocks are left out.
    QVERIFY(!texts.contains(QStringLiteral("Feedback")));
    QVERIFY(!texts.contains(QStringLiteral("Developers")));
}

void TestAboutAppWidget::balloonOnlyForTodaysBirthday()
{
    AboutAppWidget::Info info;
    info.appName = QStringLiteral("Corvida");
    // Born in a leap year, so every day of the year (29 February too) exists.
    const QDate today = QDate::currentDate();
    const QDate tomorrow = today.addDays(1);
    info.developers = {{QStringLiteral("Today"), QDate(2000, today.month(), today.day())},
                       {QStringLiteral("Tomorrow"), QDate(2000, tomorrow.month(), tomorrow.day())}};
    AboutAppWidget about(info);
    QCOMPARE(about.findChildren<QLabel *>(QStringLiteral("birthdayBalloon")).size(), 1);
}

QTEST_MAIN(TestAboutAppWidget)
#include "tst_aboutappwidget.moc"
