#include "settings/SettingsValueText.h"

#include <QColor>
#include <QDateTime>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QTest>

Q_DECLARE_METATYPE(QMetaEnum)

namespace {
QMetaEnum sortOrder()
{
    return QMetaEnum::fromType<Qt::SortOrder>();
}
} // namespace

class SettingsValueTextTest : public QObject
{
    Q_OBJECT
private slots:
    void valueIsWrittenInItsFileFormAndReadBack_data();
    void valueIsWrittenInItsFileFormAndReadBack();
    void handWrittenTextsMeanTheirValue_data();
    void handWrittenTextsMeanTheirValue();
    void textsThatDoNotFitTheTypeAreRefused_data();
    void textsThatDoNotFitTheTypeAreRefused();
    void currentDateTimeMarkerReadsAsTheMomentOfReading();
};

void SettingsValueTextTest::valueIsWrittenInItsFileFormAndReadBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QMetaEnum>("enumerator");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("exact"); // false where the text rounds on purpose

    const QMetaEnum none;
    QTest::newRow("true") << QVariant(true) << none << "true" << true;
    QTest::newRow("false") << QVariant(false) << none << "false" << true;
    QTest::newRow("negative int") << QVariant(-42) << none << "-42" << true;
    QTest::newRow("int64") << QVariant(qlonglong(-9007199254740993LL)) << none
                           << "-9007199254740993" << true;
    QTest::newRow("double tenth") << QVariant(0.1) << none << "0.1" << true;
    QTest::newRow("double whole") << QVariant(2.0) << none << "2" << true;
    QTest::newRow("double tiny") << QVariant(1.5e-7) << none << "1.5e-07" << true;
    QTest::newRow("double third") << QVariant(1.0 / 3) << none << "0.3333333333333333" << true;
    QTest::newRow("float tenth") << QVariant(0.1f) << none << "0.1" << true;
    QTest::newRow("colour") << QVariant(QColor(255, 0, 16)) << none << "#ff0010" << true;
    QTest::newRow("colour with alpha")
        << QVariant(QColor(1, 2, 3, 128)) << none << "#80010203" << true;
    QTest::newRow("byte array") << QVariant(QByteArray("hello")) << none << "aGVsbG8=" << true;
    QTest::newRow("binary bytes") << QVariant(QByteArray("\x00\xff\x10", 3)) << none << "AP8Q"
                                  << true;
    QTest::newRow("size") << QVariant(QSize(640, 480)) << none << "640;480" << true;
    QTest::newRow("point") << QVariant(QPoint(-3, 4)) << none << "-3;4" << true;
    QTest::newRow("point with fractions")
        << QVariant(QPointF(1.0 / 3, 2.5)) << none << "0.333333;2.5" << false;
    QTest::newRow("point with large coordinates")
        << QVariant(QPointF(1234567.0, -0.5)) << none << "1.23457e+06;-0.5" << false;
    QTest::newRow("char") << QVariant::fromValue(char('A')) << none << "65" << true;
    QTest::newRow("signed char") << QVariant::fromValue<signed char>(-5) << none << "-5" << true;
    QTest::newRow("unsigned char") << QVariant::fromValue<uchar>(200) << none << "200" << true;
    QTest::newRow("date-time") << QVariant(
                                      QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9, 123), Qt::UTC))
                               << none << "2026-11-21T14:05:09.123Z" << true;
    QTest::newRow("text with markup")
        << QVariant(QStringLiteral("a<b & \"c\"")) << none << "a<b & \"c\"" << true;
    QTest::newRow("enumeration key")
        << QVariant::fromValue(Qt::DescendingOrder) << sortOrder() << "DescendingOrder" << true;
    QTest::newRow("text list") << QVariant(QStringList{"a", "b;c"}) << none << "[\"a\",\"b;c\"]"
                               << true;
}

void SettingsValueTextTest::valueIsWrittenInItsFileFormAndReadBack()
{
    QFETCH(QVariant, value);
    QFETCH(QMetaEnum, enumerator);
    QFETCH(QString, text);
    QFETCH(bool, exact);
    QCOMPARE(SettingsValueText::toText(value, enumerator), text);
    bool ok = false;
    const QVariant back = SettingsValueText::fromText(text, value.metaType(), enumerator, &ok);
    QVERIFY(ok);
    QCOMPARE(back.metaType(), value.metaType());
    if (exact)
        QCOMPARE(back, value);
    else
        QCOMPARE(SettingsValueText::toText(back, enumerator), text);
}

void SettingsValueTextTest::handWrittenTextsMeanTheirValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QMetaEnum>("enumerator");

    const QMetaEnum none;
    const QVariant descending = QVariant::fromValue(Qt::DescendingOrder);
    QTest::newRow("two quotes are the empty text") << "\"\"" << QVariant(QString()) << none;
    QTest::newRow("text keeps its blanks") << " a b " << QVariant(QStringLiteral(" a b ")) << none;
    QTest::newRow("key with framework scope")
        << "Qt::SortOrder::DescendingOrder" << descending << sortOrder();
    QTest::newRow("key with enumeration name")
        << "SortOrder::DescendingOrder" << descending << sortOrder();
    QTest::newRow("key with class scope") << "Qt::DescendingOrder" << descending << sortOrder();
    QTest::newRow("bare key") << "DescendingOrder" << descending << sortOrder();
    QTest::newRow("number of a key") << "1" << descending << sortOrder();
    QTest::newRow("upper-case boolean") << "TRUE" << QVariant(true) << none;
    QTest::newRow("boolean as digit") << "0" << QVariant(false) << none;
    QTest::newRow("number with blanks") << " 12 " << QVariant(12) << none;
    QTest::newRow("size with blanks") << " 3 ; 4 " << QVariant(QSize(3, 4)) << none;
    QTest::newRow("upper-case colour") << "#FF0010" << QVariant(QColor(255, 0, 16)) << none;
    QTest::newRow("empty byte array") << "" << QVariant(QByteArray()) << none;
}

void SettingsValueTextTest::handWrittenTextsMeanTheirValue()
{
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    QFETCH(QMetaEnum, enumerator);
    bool ok = false;
    const QVariant value = SettingsValueText::fromText(text, expected.metaType(), enumerator, &ok);
    QVERIFY(ok);
    QCOMPARE(value, expected);
}

void SettingsValueTextTest::textsThatDoNotFitTheTypeAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<QMetaEnum>("enumerator");

    const QMetaEnum none;
    const int order = QMetaType::fromType<Qt::SortOrder>().id();
    QTest::newRow("word for boolean") << "yes" << int(QMetaType::Bool) << none;
    QTest::newRow("trailing junk") << "12abc" << int(QMetaType::Int) << none;
    QTest::newRow("int overflow") << "3000000000" << int(QMetaType::Int) << none;
    QTest::newRow("byte overflow") << "300" << int(QMetaType::UChar) << none;
    QTest::newRow("signed char underflow") << "-129" << int(QMetaType::SChar) << none;
    QTest::newRow("negative unsigned") << "-1" << int(QMetaType::UInt) << none;
    QTest::newRow("not a number") << "nan" << int(QMetaType::Double) << none;
    QTest::newRow("infinity") << "inf" << int(QMetaType::Double) << none;
    QTest::newRow("float overflow") << "1e39" << int(QMetaType::Float) << none;
    QTest::newRow("colour name without #") << "red" << int(QMetaType::QColor) << none;
    QTest::newRow("five hex digits") << "#12345" << int(QMetaType::QColor) << none;
    QTest::newRow("not base64") << "not base64!" << int(QMetaType::QByteArray) << none;
    QTest::newRow("three sizes") << "3;4;5" << int(QMetaType::QSize) << none;
    QTest::newRow("one coordinate") << "3" << int(QMetaType::QPoint) << none;
    QTest::newRow("unknown key") << "Qt::SortOrder::Sideways" << order << sortOrder();
    QTest::newRow("key of another enumeration")
        << "Qt::Orientation::DescendingOrder" << order << sortOrder();
    QTest::newRow("number of no key") << "7" << order << sortOrder();
    QTest::newRow("impossible date") << "2026-13-45T10:00:00" << int(QMetaType::QDateTime) << none;
}

void SettingsValueTextTest::textsThatDoNotFitTheTypeAreRefused()
{
    QFETCH(QString, text);
    QFETCH(int, type);
    QFETCH(QMetaEnum, enumerator);
    bool ok = true;
    const QVariant value = SettingsValueText::fromText(text, QMetaType(type), enumerator, &ok);
    QVERIFY(!ok);
    QVERIFY(!value.isValid());
}

void SettingsValueTextTest::currentDateTimeMarkerReadsAsTheMomentOfReading()
{
    const QDateTime before = QDateTime::currentDateTime();
    bool ok = false;
    const QDateTime read = SettingsValueText::fromText(QStringLiteral("QDateTime::currentDateTime"),
                                                       QMetaType(QMetaType::QDateTime), {}, &ok)
                               .toDateTime();
    QVERIFY(ok);
    QVERIFY(read >= before);
    QVERIFY(read <= QDateTime::currentDateTime());
}

QTEST_GUILESS_MAIN(SettingsValueTextTest)
#include "tst_settingsvaluetext.moc"
