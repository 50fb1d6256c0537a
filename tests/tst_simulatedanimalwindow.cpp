#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/widgets/PropertyListControl.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"
#include "ui/SessionPanel.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>
#include <cmath>
#include <memory>

// The simulated animal as the operator meets it in the window: chosen on the settings page,
// played by every simulated unit as an animal of its own, and measured by sessions.
class TestSimulatedAnimalWindow : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    QList<VirtualCorvidaDevice *> m_units;
    qint64 m_now = 9'000'000;

    CorvidaSettings *settings() const { return m_model->settings(); }
    static QComboBox *animalChoice(PageSettings &page)
    {
        return qobject_cast<QComboBox *>(
            page.propertyList()->editor(QStringLiteral("SimulatedAnimal")));
    }
    static void choose(QComboBox *combo, const QString &key)
    {
        const int index = combo->findData(key);
        QVERIFY(index >= 0);
        combo->setCurrentIndex(index);
        emit combo->activated(index); // what a click on the item does
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        // Four simulated units as the setting makes them, on a clock the test moves.
        settings()->setUseVirtualCorvida(4);
        m_units.clear();
        for (BaseCorvidaDevice *device : m_model->devices()) {
            if (auto *unit = qobject_cast<VirtualCorvidaDevice *>(device)) {
                unit->setTickTimerActive(false);
                unit->setClock([this] { return m_now; });
                m_units << unit;
            }
        }
    }
    void cleanup()
    {
        m_model.reset();
        m_dir.reset();
    }

    void dropDownNamesTheAnimalsInEachLanguage_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("English") << QStringLiteral("en_US")
                                 << QStringList{"None", "Mouse", "Rat", "Hypertensive rat"};
        QTest::newRow("Russian") << QStringLiteral("ru_RU")
                                 << QStringList{"Нет", "Мышь", "Крыса", "Гипертензивная крыса"};
    }
    void dropDownNamesTheAnimalsInEachLanguage()
    {
        QFETCH(QString, language);
        QFETCH(QStringList, texts);
        QTranslator translator;
        QVERIFY(translator.load(QStringLiteral(":/i18n/corvida_%1.qm").arg(language)));
        QCoreApplication::installTranslator(&translator);
        PageSettings page;
        QComboBox *combo = animalChoice(page);
        QCoreApplication::removeTranslator(&translator);
        QVERIFY(combo);
        QStringList shown, keys;
        for (int i = 0; i < combo->count(); ++i) {
            shown << combo->itemText(i);
            keys << combo->itemData(i).toString();
        }
        QCOMPARE(shown, texts);
        // What goes into the settings file: the names the command line takes, empty for none.
        QCOMPARE(keys, (QStringList{"", "mouse", "rat", "hypertensive-rat"}));
        QCOMPARE(combo->currentIndex(), 0); // a new settings file plays the test signal
    }

    void choosingAnAnimalMakesEveryUnitPlayOneOfItsOwn()
    {
        PageSettings page;
        QComboBox *combo = animalChoice(page);
        QVERIFY(combo);
        choose(combo, QStringLiteral("hypertensive-rat"));
        QCOMPARE(settings()->getSimulatedAnimal(), QStringLiteral("hypertensive-rat"));
        QSet<quint32> seeds;
        for (VirtualCorvidaDevice *unit : std::as_const(m_units)) {
            QCOMPARE(unit->animal(), QStringLiteral("hypertensive-rat"));
            seeds << unit->animalTruth().seed;
        }
        QCOMPARE(seeds.size(), 4);

        // A unit added later plays the chosen animal too.
        settings()->setUseVirtualCorvida(5);
        const QList<BaseCorvidaDevice *> devices = m_model->devices();
        QCOMPARE(qobject_cast<VirtualCorvidaDevice *>(devices.last())->animal(),
                 QStringLiteral("hypertensive-rat"));

        choose(combo, QString());
        QCOMPARE(settings()->getSimulatedAnimal(), QString());
        for (BaseCorvidaDevice *device : devices)
            QVERIFY(qobject_cast<VirtualCorvidaDevice *>(device)->animal().isEmpty());

        // A setting changed elsewhere (the settings file, the command line) shows in the box.
        settings()->setSimulatedAnimal(QStringLiteral("mouse"));
        QCOMPARE(combo->currentData().toString(), QStringLiteral("mouse"));
    }

    void sessionOnAllUnitsMeasuresFourAnimals()
    {
        settings()->setSimulatedAnimal(QStringLiteral("rat"));
        settings()->setSessionAcclimationCycles(0);
        settings()->setSessionMeasurementCycles(2);
        settings()->setSessionInterval(2);
        QHash<VirtualCorvidaDevice *, QList<SyntheticAnimal::Truth>> truths;
        for (VirtualCorvidaDevice *unit : std::as_const(m_units))
            connect(unit, &BaseCorvidaDevice::startedMeasuring, this,
                    [&truths, unit] { truths[unit] << unit->animalTruth(); });

        PageExperimentMulti page;
        const QList<CorvidaDeviceView *> panels = page.panels();
        QCOMPARE(panels.size(), 4);
        for (CorvidaDeviceView *panel : panels) {
            panel->sessionPanel()->setClock([this] { return m_now; });
            panel->sessionPanel()->setTickTimerActive(false);
        }
        page.sessionAllButton()->click();
        const auto running = [&] {
            for (CorvidaDeviceView *panel : panels)
                if (panel->sessionPanel()->isRunning())
                    return true;
            return false;
        };
        QVERIFY(running());
        for (int step = 0; step < 4000 && running(); ++step) {
            m_now += 50;
            for (VirtualCorvidaDevice *unit : std::as_const(m_units))
                unit->tick();
            for (CorvidaDeviceView *panel : panels)
                if (SessionRun *run = panel->sessionPanel()->run())
                    run->tick();
        }

        QSet<double> heartRates;
        for (CorvidaDeviceView *panel : panels) {
            auto *unit = qobject_cast<VirtualCorvidaDevice *>(panel->device());
            SessionRun *run = panel->sessionPanel()->run();
            QVERIFY(run);
            QCOMPARE(run->state(), SessionRun::State::Finished);
            const QList<SessionRun::CycleResult> results = run->results();
            QCOMPARE(results.size(), 2);
            QCOMPARE(truths.value(unit).size(), 2);
            for (int i = 0; i < results.size(); ++i) {
                const SessionRun::CycleResult &r = results[i];
                const SyntheticAnimal::Truth t = truths.value(unit).at(i);
                const QString figures =
                    QStringLiteral("%1 cycle %2: %3/%4 at %5 bpm, truth %6/%7 at %8 %9")
                        .arg(unit->deviceId())
                        .arg(r.cycle)
                        .arg(r.sbp, 0, 'f', 1)
                        .arg(r.dbp, 0, 'f', 1)
                        .arg(r.bpm, 0, 'f', 1)
                        .arg(t.systolic)
                        .arg(t.diastolic)
                        .arg(t.heartRate, 0, 'f', 1)
                        .arg(r.reason);
                qInfo().noquote() << figures;
                QVERIFY2(r.accepted, qPrintable(figures));
                QVERIFY2(std::fabs(r.bpm - t.heartRate) <= 0.035 * t.heartRate,
                         qPrintable(figures));
                heartRates << r.bpm;
            }
        }
        // Four animals, not one animal shown four times.
        QCOMPARE(heartRates.size(), 8);
    }
};

QTEST_MAIN(TestSimulatedAnimalWindow)
#include "tst_simulatedanimalwindow.moc"
