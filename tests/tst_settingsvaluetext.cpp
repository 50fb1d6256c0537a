#include "settings/SettingsValueText.h"

#include <QColor>
#include <QTest>

namespace {
QMetaEnum enumeratorFor(QMetaType type)
{
    return type == QMetaType::fromType<Qt::SortOrder>() ? QMetaEnum::fromType<Qt::SortOrder>()
                                                        : QMetaEnum();
}
} // namespace

class SettingsValueTextTest : public QObject
{
    Q_OBJECT
private slots:
    void valueIsWrittenInItsFileFormAndReadBack_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("int64") << QVariant(qlonglong(-9007199254740993LL)) << "-9007199254740993";
        QTest::newRow("double third") << QVariant(1.0 / 3) << "0.3333333333333333";
        QTest::newRow("colour with alpha") << QVariant(QColor(1, 2, 3, 128)) << "#80010203";
        QTest::newRow("byte array") << QVariant(QByteArray("hello")) << "aGVsbG8=";
        QTest::newRow("point") << QVariant(QPointF(1.5, -2)) << "1.5;-2";
        const QDateTime at(QDate(2026, 11, 21), QTime(14, 5, 9, 123), Qt::UTC);
        QTest::newRow("date-time") << QVariant(at) << "2026-11-21T14:05:09.123Z";
        QTest::newRow("enumeration")
            << QVariant::fromValue(Qt::DescendingOrder) << "DescendingOrder";
        QTest::newRow("text list") << QVariant(QStringList{"a", "b;c"}) << "[\"a\",\"b;c\"]";
    }
    void valueIsWrittenInItsFileFormAndReadBack()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        const QMetaEnum enumerator = enumeratorFor(value.metaType());
        QCOMPARE(SettingsValueText::toText(value, enumerator), text);
        bool ok = false;
        const QVariant back = SettingsValueText::fromText(text, value.metaType(), enumerator, &ok);
        QCOMPARE(back.metaType(), value.metaType());
        QCOMPARE(back, value);
    }
    void handWrittenTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected"); // its type is the one asked for
        QTest::addColumn<bool>("ok");
        const QVariant descending = QVariant::fromValue(Qt::DescendingOrder);
        QTest::newRow("scoped key") << "Qt::SortOrder::DescendingOrder" << descending << true;
        QTest::newRow("upper-case boolean") << "TRUE" << QVariant(true) << true;
        QTest::newRow("trailing junk") << "12abc" << QVariant(0) << false;
        QTest::newRow("byte overflow") << "300" << QVariant::fromValue<uchar>(0) << false;
        QTest::newRow("key of another type")
            << "Qt::Orientation::DescendingOrder" << descending << false;
    }
    void handWrittenTexts()
    {
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        QFETCH(bool, ok);
        bool parsed = !ok;
        const QVariant value = SettingsValueText::fromText(
            text, expected.metaType(), enumeratorFor(expected.metaType()), &parsed);
        QCOMPARE(parsed, ok);
        QCOMPARE(value, ok ? expected : QVariant());
    }
};

QTEST_GUILESS_MAIN(SettingsValueTextTest)
#include "tst_settingsvaluetext.moc"
