#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "session/SessionRun.h"
#include "settings/CorvidaSettings.h"
#include "support/ExpFile.h"
#include "support/SessionRig.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PulseIndicator.h"
#include "ui/SessionPanel.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>
#include <memory>

namespace {
constexpr qint64 kStepMs = 50;

QString visibleState(QWidget *w)
{
    return QString::fromLatin1(w->isVisibleTo(w->parentWidget()) ? "shown" : "hidden") +
           (w->isEnabled() ? "" : " disabled");
}
} // namespace

// The panel with the question about an unsaved record answered by the test.
class AnsweringView : public CorvidaDeviceView
{
public:
    using CorvidaDeviceView::CorvidaDeviceView;
    bool discard = false;
    int asked = 0;
    void answer(bool d) { discard = d; }

protected:
    bool confirmDiscard(const QString &) override
    {
        ++asked;
        return discard;
    }
};

// The unit's panel running a session on a simulated unit, the clock driven by the test.
class TestSessionPanel : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    VirtualCorvidaDevice *m_device = nullptr;
    std::unique_ptr<AnsweringView> m_view;
    qint64 m_now = 1'750'000'000'000;
    QStringList m_stateTexts;

    SessionPanel *session() const { return m_view->sessionPanel(); }

    void step()
    {
        m_now += kStepMs;
        m_device->tick();
        if (SessionRun *run = session()->run())
            run->tick();
        const QString text = session()->stateLabel()->text();
        if (m_stateTexts.isEmpty() || m_stateTexts.last() != text)
            m_stateTexts << text;
    }
    bool advanceUntil(const std::function<bool()> &done, qint64 limitMs = 600'000)
    {
        for (qint64 t = 0; t < limitMs && !done(); t += kStepMs)
            step();
        return done();
    }
    QStringList savedRecords() const
    {
        return QDir(m_model->recordsFolder())
            .entryList({QStringLiteral("*.exp")}, QDir::Files, QDir::Name);
    }
    QString buttons() const
    {
        return QStringList{
            visibleState(m_view->turnOffButton()), visibleState(m_view->measureButton()),
            visibleState(m_view->abortButton()), visibleState(session()->sessionButton()),
            visibleState(session()->abortButton())}
            .join(QStringLiteral(" | "));
    }
    void startSession(int acclimation, int cycles)
    {
        session()->acclimationEditor()->setValue(acclimation);
        session()->cyclesEditor()->setValue(cycles);
        session()->sessionButton()->click();
        QVERIFY(session()->isRunning());
    }

private slots:
    void init()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        CorvidaSettings *settings = m_model->settings();
        settings->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
        settings->setSessionInterval(5);
        settings->setSessionPulseWait(20);
        m_device = new VirtualCorvidaDevice();
        m_device->setTickTimerActive(false);
        m_device->setClock([this] { return m_now; });
        m_device->setRandomSource([] { return 0.5; });
        m_model->addDevice(m_device);
        m_device->connectDevice();
        m_view = std::make_unique<AnsweringView>(m_device);
        m_view->experiment()->setClock([this] { return m_now; });
        session()->setClock([this] { return m_now; });
        session()->setTickTimerActive(false);
        m_view->pulseIndicator()->setTimerActive(false);
        m_view->resize(1000, 600);
        m_view->show();
        m_stateTexts.clear();
    }
    void cleanup() { m_view.reset(), m_model.reset(), m_dir.reset(); }

    void sessionAt120Over30RunsToItsEndInTheTable()
    {
        m_view->rodentEditor()->setText(QStringLiteral("R-4"));
        emit m_view->rodentEditor()->textEdited(QStringLiteral("R-4"));
        QVERIFY(!session()->isVisibleTo(m_view.get()));
        startSession(1, 3);
        // The session has the unit: only its own Abort can stop it.
        QCOMPARE(buttons(), "shown disabled | hidden disabled | hidden | shown disabled | shown");
        QVERIFY(session()->isVisibleTo(m_view.get()));

        QVERIFY(advanceUntil([&] { return !session()->isRunning(); }));
        QCOMPARE(session()->run()->state(), SessionRun::State::Finished);
        // The session turns the unit off at its end, as the panel's Turn off would.
        QCOMPARE(buttons(), "hidden | shown disabled | hidden | shown | hidden");
        // The cycles are records of their own: nothing on the panel waits for Save, and Save
        // is not offered for a record the screen does not show.
        QVERIFY(!m_view->hasUnsavedMeasurement());
        QVERIFY(!m_view->saveButton()->isVisibleTo(m_view.get()));

        // Where the session was, in the order the operator saw it. After a pause the pulse
        // gathered meanwhile opens the gate at once, so the wait shows only before the first.
        const QStringList expected = {"Waiting for a steady pulse…",
                                      "Acclimation 1 of 1",
                                      "Acclimation 1 of 1 · pause before the next cycle",
                                      "Cycle 1 of 3",
                                      "Cycle 1 of 3 · pause before the next cycle",
                                      "Cycle 2 of 3",
                                      "Cycle 2 of 3 · pause before the next cycle",
                                      "Cycle 3 of 3",
                                      "Session finished: 4 cycles"};
        QCOMPARE(m_stateTexts, expected);

        // One row per saved record, in order, its pressures as the record's file has them.
        const QStringList records = savedRecords();
        QCOMPARE(records.size(), 4);
        QTableWidget *table = session()->cycleTable();
        QCOMPARE(table->rowCount(), 4);
        QList<double> sbp, dbp;
        for (int row = 0; row < 4; ++row) {
            const QMap<QString, QString> v =
                ExpFile::values(QDir(m_model->recordsFolder()).filePath(records[row]));
            QCOMPARE(v.value("Rodent"), QStringLiteral("R-4"));
            const double s = v.value("SBP").toDouble();
            const double d = v.value("DBP").toDouble();
            QVERIFY2(s > 100 && s < 140, qPrintable(v.value("SBP")));
            QCOMPARE(table->item(row, SessionPanel::SBPColumn)->text(), QString::number(s, 'f', 0));
            QCOMPARE(table->item(row, SessionPanel::DBPColumn)->text(), QString::number(d, 'f', 0));
            QCOMPARE(table->item(row, SessionPanel::MAPColumn)->text(),
                     QString::number(d + (s - d) / 3.0, 'f', 0));
            const bool accepted = v.value("Accepted") == QLatin1String("true");
            const QString result = table->item(row, SessionPanel::ResultColumn)->text();
            QVERIFY2(accepted ? result.endsWith("accepted") : result.endsWith(v.value("Reason")),
                     qPrintable(result));
            if (row > 0 && accepted)
                sbp << s, dbp << d;
        }
        // The acclimation cycle is marked and greyed; the measurement cycles are not.
        QCOMPARE(table->item(0, SessionPanel::CycleColumn)->text(), QStringLiteral("A1"));
        QCOMPARE(table->item(3, SessionPanel::CycleColumn)->text(), QStringLiteral("3"));
        QVERIFY(table->item(0, SessionPanel::SBPColumn)->foreground().color() !=
                table->item(1, SessionPanel::SBPColumn)->foreground().color());

        // Mean and sample SD of the accepted measurement cycles, computed here from the files.
        QVERIFY2(sbp.size() >= 2, "the simulated animal should give accepted cycles");
        const QString stats = session()->statisticsLabel()->text();
        QVERIFY2(stats.startsWith(QStringLiteral("Accepted %1 of 3").arg(sbp.size())),
                 qPrintable(stats));
        QVERIFY2(stats.contains("SBP " + meanSdText(sbp)), qPrintable(stats));
        QVERIFY2(stats.contains("DBP " + meanSdText(dbp)), qPrintable(stats));
    }

    void sessionEndingEarlyKeepsFinishedCycles_data()
    {
        QTest::addColumn<bool>("unitLost");
        QTest::addColumn<QString>("stateStart");
        QTest::newRow("abort") << false << "Session aborted during cycle 2";
        QTest::newRow("unit lost") << true << "Unit lost:";
    }
    void sessionEndingEarlyKeepsFinishedCycles()
    {
        QFETCH(bool, unitLost);
        QFETCH(QString, stateStart);
        startSession(0, 3);
        QVERIFY(advanceUntil([&] {
            return session()->run()->results().size() == 1 &&
                   session()->run()->state() == SessionRun::State::Measuring;
        }));
        if (unitLost)
            m_device->disconnectDevice();
        else
            session()->abortButton()->click();
        step();

        QVERIFY(!session()->isRunning());
        QVERIFY2(session()->stateLabel()->text().startsWith(stateStart),
                 qPrintable(session()->stateLabel()->text()));
        if (unitLost)
            QVERIFY(session()->stateLabel()->text().endsWith("Finished cycles kept: 1."));
        QCOMPARE(session()->cycleTable()->rowCount(), 1);
        QCOMPARE(savedRecords().size(), 1);
        QVERIFY(!session()->abortButton()->isVisibleTo(session()));
        // The unit is no longer in a cuff cycle; a lost one is waited for, an aborted one can
        // start again.
        QVERIFY(!m_device->isMeasuring());
        QCOMPARE(session()->sessionButton()->isEnabled(), !unitLost);
        // The statistics now say the session is incomplete.
        QVERIFY2(session()->statisticsLabel()->text().contains("Incomplete"),
                 qPrintable(session()->statisticsLabel()->text()));
    }

    void sessionAfterAnUnsavedMeasurementAsksAndDoesNotGrowIt_data()
    {
        QTest::addColumn<bool>("discard");
        QTest::newRow("keep it") << false;
        QTest::newRow("discard it") << true;
    }
    void sessionAfterAnUnsavedMeasurementAsksAndDoesNotGrowIt()
    {
        QFETCH(bool, discard);
        m_view->turnOnButton()->click();
        m_view->measureButton()->click();
        for (int i = 0; i < 100; ++i)
            step();
        m_view->abortButton()->click();
        QVERIFY(m_view->hasUnsavedMeasurement());
        const qsizetype measured = m_view->recorder()->recordedSamples();

        m_view->answer(discard);
        session()->sessionButton()->click();
        QCOMPARE(m_view->asked, 1);
        QCOMPARE(session()->isRunning(), discard);
        for (int i = 0; i < 100; ++i)
            step();
        if (!discard) {
            // Kept as it was, ready to be saved.
            QCOMPARE(m_view->recorder()->recordedSamples(), measured);
            QVERIFY(m_view->hasUnsavedMeasurement());
        } else {
            // The panel's record is a preview now, not the old measurement going on.
            QVERIFY(!m_view->recorder()->isKeepingAll());
        }
    }

    void pulseIndicatorTellsAPulseFromAFlatLine_data()
    {
        QTest::addColumn<bool>("simulatedPulse");
        QTest::addColumn<bool>("turnedOn");
        QTest::addColumn<bool>("measuring");
        QTest::addColumn<QString>("text");
        QTest::newRow("simulated animal") << true << true << false << "Pulse OK";
        QTest::newRow("flat line") << false << true << false << "No pulse";
        QTest::newRow("unit turned off") << false << false << false << "";
        // The pulse fades under a full cuff: no sign then, rather than a false "No pulse".
        QTest::newRow("cuff inflated") << true << true << true << "";
    }
    void pulseIndicatorTellsAPulseFromAFlatLine()
    {
        QFETCH(bool, simulatedPulse);
        QFETCH(bool, turnedOn);
        QFETCH(bool, measuring);
        QFETCH(QString, text);
        if (turnedOn)
            m_view->turnOnButton()->click();
        for (int i = 0; i < 80; ++i) {
            if (simulatedPulse) {
                step();
            } else {
                // A tail out of the sensor: the unit streams, the pulse channel stays level.
                const QList<float> level(50, 0.3f);
                emit m_device->pressurePulseData({level, level});
            }
        }
        PulseIndicator *indicator = m_view->pulseIndicator();
        if (measuring) {
            m_view->measureButton()->click();
            for (int i = 0; i < 20; ++i)
                step();
        }
        indicator->judge();
        QCOMPARE(indicator->isVisibleTo(m_view.get()), !text.isEmpty());
        if (!text.isEmpty())
            QCOMPARE(indicator->text(), text);
        else if (turnedOn)
            QCOMPARE(indicator->reading(), PulseIndicator::Reading::Unknown);
    }
};

QTEST_MAIN(TestSessionPanel)
#include "tst_sessionpanel.moc"
