#include "settings/CorvidaSettings.h"
#include "support/RecordFiles.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using RecordFiles::readAll;

class CorvidaSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void resetRestoresTheDefaultAndSavesIt_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("defaultText");
        QTest::addColumn<QString>("otherText");
        QTest::newRow("enumeration") << "PressureLimit"
                                     << "Pressure_200_50"
                                     << "Pressure_120_30";
        QTest::newRow("number") << "DatabaseSplitterRatio"
                                << "0.2"
                                << "0.35";
    }
    void resetRestoresTheDefaultAndSavesIt()
    {
        QFETCH(QString, name);
        QFETCH(QString, defaultText);
        QFETCH(QString, otherText);
        const QString path = m_dir.filePath(QStringLiteral("reset-%1.xml").arg(name));
        CorvidaSettings settings(path);
        QVERIFY(settings.setTextValue(name, otherText));
        QVERIFY(QMetaObject::invokeMethod(&settings, qPrintable(QStringLiteral("reset") + name)));
        QCOMPARE(settings.getTextValue(name), defaultText);
        const QString element = QStringLiteral("<%1>%2</%1>").arg(name, defaultText);
        QVERIFY2(readAll(path).contains(element.toUtf8()), qPrintable(element));
    }
    void languageStaysUnsetUntilChosen()
    {
        const QString path = m_dir.filePath(QStringLiteral("language.xml"));
        QVERIFY(RecordFiles::writeAll(
            path, "<CorvidaSettings><SaveRawData>false</SaveRawData></CorvidaSettings>"));
        {
            CorvidaSettings settings(path);
            QVERIFY(!settings.isPropertySet(QStringLiteral("Language")));
            // Saving other settings must not invent a language for the next start.
            settings.setSaveRawData(true);
            const QByteArray saved = readAll(path);
            QVERIFY(saved.contains("<SaveRawData>true<") && !saved.contains("<Language>"));
            settings.setLanguage(CorvidaSettings::CorvidaLanguage::en_US);
        }
        CorvidaSettings again(path);
        QCOMPARE(again.getLanguage(), CorvidaSettings::CorvidaLanguage::en_US);
    }
    void fileOfAnotherVersionKeepsWhatItCanRead()
    {
        const QString path = m_dir.filePath(QStringLiteral("older.xml"));
        const QByteArray content = "<?xml version=\"1.0\"?>\n<CorvidaSettings>\n"
                                   "<SerialBaudRate>115200</SerialBaudRate>\n"
                                   "<VisualScale>Scale_45</VisualScale>\n"
                                   "<SortingOrder>Qt::SortOrder::AscendingOrder</SortingOrder>\n"
                                   "<DatabaseSplitterRatio>0,3</DatabaseSplitterRatio>\n"
                                   "</CorvidaSettings>\n";
        QVERIFY(RecordFiles::writeAll(path, content));
        CorvidaSettings settings(path);
        QCOMPARE(settings.getVisualScale(), CorvidaSettings::VisualScales::Scale_60);
        QCOMPARE(settings.getSortingOrder(), Qt::AscendingOrder);
        QCOMPARE(settings.getDatabaseSplitterRatio(), 0.2);
        QCOMPARE(readAll(path), content); // loading alone writes nothing
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(CorvidaSettingsTest)
#include "tst_corvidasettings.moc"
