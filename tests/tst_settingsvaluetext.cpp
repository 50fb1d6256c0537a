#include "settings/SettingsValueText.h"

#include <QColor>
#include <QDateTime>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QTest>

namespace {
// The one enumeration these tables use; other types have none.
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
    void valueIsWrittenInItsFileFormAndReadBack_data();
    void valueIsWrittenInItsFileFormAndReadBack();
    void handWrittenTexts_data();
    void handWrittenTexts();
    void currentDateTimeMarkerReadsAsTheMomentOfReading();
};

void SettingsValueTextTest::valueIsWrittenInItsFileFormAndReadBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("exact"); // false where the text rounds on purpose

    QTest::newRow("true") << QVariant(true) << "true" << true;
    QTest::newRow("negative int") << QVariant(-42) << "-42" << true;
    QTest::newRow("int64") << QVariant(qlonglong(-9007199254740993LL)) << "-9007199254740993"
                           << true;
    QTest::newRow("double tenth") << QVariant(0.1) << "0.1" << true;
    QTest::newRow("double tiny") << QVariant(1.5e-7) << "1.5e-07" << true;
    QTest::newRow("double third") << QVariant(1.0 / 3) << "0.3333333333333333" << true;
    QTest::newRow("float tenth") << QVariant(0.1f) << "0.1" << true;
    QTest::newRow("colour") << QVariant(QColor(255, 0, 16)) << "#ff0010" << true;
    QTest::newRow("colour with alpha") << QVariant(QColor(1, 2, 3, 128)) << "#80010203" << true;
    QTest::newRow("byte array") << QVariant(QByteArray("hello")) << "aGVsbG8=" << true;
    QTest::newRow("size") << QVariant(QSize(640, 480)) << "640;480" << true;
    QTest::newRow("point with fractions")
        << QVariant(QPointF(1.0 / 3, 2.5)) << "0.333333;2.5" << false;
    QTest::newRow("point with large coordinates")
        << QVariant(QPointF(1234567.0, -0.5)) << "1.23457e+06;-0.5" << false;
    QTest::newRow("char") << QVariant::fromValue(char('A')) << "65" << true;
    QTest::newRow("date-time") << QVariant(
                                      QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9, 123), Qt::UTC))
                               << "2026-11-21T14:05:09.123Z" << true;
    QTest::newRow("enumeration key")
        << QVariant::fromValue(Qt::DescendingOrder) << "DescendingOrder" << true;
    QTest::newRow("text list") << QVariant(QStringList{"a", "b;c"}) << "[\"a\",\"b;c\"]" << true;
}

void SettingsValueTextTest::valueIsWrittenInItsFileFormAndReadBack()
{
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QFETCH(bool, exact);
    const QMetaEnum enumerator = enumeratorFor(value.metaType());
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

void SettingsValueTextTest::handWrittenTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected"); // its type is the one asked for
    QTest::addColumn<bool>("ok");

    const QVariant descending = QVariant::fromValue(Qt::DescendingOrder);
    const auto refused = [](const char *name, const char *text, const QVariant &ofType) {
        QTest::newRow(name) << text << ofType << false;
    };
    QTest::newRow("two quotes are the empty text") << "\"\"" << QVariant(QString()) << true;
    QTest::newRow("text keeps its blanks") << " a b " << QVariant(QStringLiteral(" a b ")) << true;
    QTest::newRow("key with framework scope")
        << "Qt::SortOrder::DescendingOrder" << descending << true;
    QTest::newRow("key with enumeration name")
        << "SortOrder::DescendingOrder" << descending << true;
    QTest::newRow("key with class scope") << "Qt::DescendingOrder" << descending << true;
    QTest::newRow("bare key") << "DescendingOrder" << descending << true;
    QTest::newRow("number of a key") << "1" << descending << true;
    QTest::newRow("upper-case boolean") << "TRUE" << QVariant(true) << true;
    QTest::newRow("boolean as digit") << "0" << QVariant(false) << true;
    QTest::newRow("number with blanks") << " 12 " << QVariant(12) << true;
    QTest::newRow("upper-case colour") << "#FF0010" << QVariant(QColor(255, 0, 16)) << true;
    QTest::newRow("empty byte array") << "" << QVariant(QByteArray()) << true;

    refused("word for boolean", "yes", QVariant(true));
    refused("trailing junk", "12abc", QVariant(0));
    refused("int overflow", "3000000000", QVariant(0));
    refused("byte overflow", "300", QVariant::fromValue<uchar>(0));
    refused("signed char underflow", "-129", QVariant::fromValue<signed char>(0));
    refused("negative unsigned", "-1", QVariant(0u));
    refused("not a number", "nan", QVariant(0.0));
    refused("infinity", "inf", QVariant(0.0));
    refused("float overflow", "1e39", QVariant(0.0f));
    refused("colour name without #", "red", QVariant(QColor()));
    refused("not base64", "not base64!", QVariant(QByteArray()));
    refused("three sizes", "3;4;5", QVariant(QSize()));
    refused("one coordinate", "3", QVariant(QPoint()));
    refused("unknown key", "Qt::SortOrder::Sideways", descending);
    refused("key of another enumeration", "Qt::Orientation::DescendingOrder", descending);
    refused("number of no key", "7", descending);
    refused("impossible date", "2026-13-45T10:00:00", QVariant(QDateTime()));
}

void SettingsValueTextTest::handWrittenTexts()
{
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    const QVariant value = SettingsValueText::fromText(text, expected.metaType(),
                                                       enumeratorFor(expected.metaType()), &parsed);
    QCOMPARE(parsed, ok);
    QCOMPARE(value, ok ? expected : QVariant());
}

void SettingsValueTextTest::currentDateTimeMarkerReadsAsTheMomentOfReading()
{
    const QDateTime before = QDateTime::currentDateTime();
    bool ok = false;
    const QDateTime read = SettingsValueText::fromText(QStringLiteral("QDateTime::currentDateTime"),
                                                       QMetaType(QMetaType::QDateTime), {}, &ok)
                               .toDateTime();
    QVERIFY(ok);
    QVERIFY(read >= before && read <= QDateTime::currentDateTime());
}

QTEST_GUILESS_MAIN(SettingsValueTextTest)
#include "tst_settingsvaluetext.moc"
