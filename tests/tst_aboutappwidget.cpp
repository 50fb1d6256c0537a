#include "toolkit/widgets/AboutAppWidget.h"

#include <QLabel>
#include <QtTest>

class TestAboutAppWidget : public QObject
{
    Q_OBJECT
private slots:
    void birthday_data()
    {
        QTest::addColumn<QDate>("birthday");
        QTest::addColumn<QDate>("today");
        QTest::addColumn<bool>("expected");
        QTest::newRow("same day other year") << QDate(1990, 5, 17) << QDate(2026, 5, 17) << true;
        QTest::newRow("same day other month") << QDate(1990, 5, 17) << QDate(2026, 6, 17) << false;
        QTest::newRow("29 Feb in a leap year") << QDate(1992, 2, 29) << QDate(2028, 2, 29) << true;
        QTest::newRow("29 Feb kept on 28 Feb") << QDate(1992, 2, 29) << QDate(2026, 2, 28) << true;
        QTest::newRow("29 Feb not on 1 Mar") << QDate(1992, 2, 29) << QDate(2026, 3, 1) << false;
        QTest::newRow("28 Feb in a leap year") << QDate(1992, 2, 28) << QDate(2028, 2, 29) << false;
        QTest::newRow("no birthday") << QDate() << QDate(2026, 5, 17) << false;
    }
    void birthday()
    {
        QFETCH(QDate, birthday);
        QFETCH(QDate, today);
        QTEST(AboutAppWidget::isBirthday(birthday, today), "expected");
    }

    void balloonOnlyForTodaysBirthday()
    {
        const QDate d = QDate::currentDate(), t = d.addDays(1); // 2000 had a 29 February
        AboutAppWidget::Info info;
        info.developers = {{"Today", QDate(2000, d.month(), d.day())},
                           {"Tomorrow", QDate(2000, t.month(), t.day())}};
        AboutAppWidget about(info);
        QCOMPARE(about.findChildren<QLabel *>(QStringLiteral("birthdayBalloon")).size(), 1);
    }

    void feedbackHeadingOnlyOverAWayToReachTheMaker()
    {
        AboutAppWidget::Info info;
        info.maker = QStringLiteral("Quorvex");
        info.licence = QStringLiteral("proprietary");
        const auto texts = [](const AboutAppWidget &about) {
            QStringList all;
            for (const QLabel *label : about.findChildren<QLabel *>())
                all << label->text();
            return all.join(QLatin1Char('|'));
        };
        const AboutAppWidget bare(info);
        QVERIFY(!texts(bare).contains(QStringLiteral("Feedback")));
        QVERIFY(texts(bare).contains(QStringLiteral("Quorvex")));
        QVERIFY(texts(bare).contains(QStringLiteral("Licence: proprietary")));
        info.contacts = {QStringLiteral("mailto:lab@example.org")};
        const AboutAppWidget withContact(info);
        QVERIFY(texts(withContact).contains(QStringLiteral("Feedback")));
        QVERIFY(texts(withContact).contains(QStringLiteral("lab@example.org")));
    }
};

QTEST_MAIN(TestAboutAppWidget)
#include "tst_aboutappwidget.moc"
