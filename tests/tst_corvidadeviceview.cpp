#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/ComCorvidaDevice.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/HeartRateWidget.h"

#include <QDir>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace {
// The panel with its warnings collected and the held modifier keys chosen by the test.
class AnsweringView : public CorvidaDeviceView
{
public:
    using CorvidaDeviceView::CorvidaDeviceView;
    QStringList warnings;
    QStringList questions;
    bool discard = false;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;

protected:
    void showSaveWarning(const QString &text) override { warnings << text; }
    Qt::KeyboardModifiers currentModifiers() const override { return modifiers; }
    bool confirmDiscard(const QString &text) override
    {
        questions << text;
        return discard;
    }
};

// A unit whose pressure calibration never arrived or was refused.
class UncalibratedUnit : public VirtualCorvidaDevice
{
public:
    bool isPressureCalibrated() const override { return false; }
};
} // namespace

class TestCorvidaDeviceView : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CorvidaModel> m_model;
    VirtualCorvidaDevice *m_device = nullptr;
    std::unique_ptr<AnsweringView> m_view;
    qint64 m_now = 5'000'000;

    void run(int ms)
    {
        for (int t = 0; t < ms; t += 50) {
            m_now += 50;
            m_device->tick();
        }
    }
    static QString state(QPushButton *b)
    {
        return QString::fromLatin1(b->isVisibleTo(b->parentWidget()) ? "shown" : "hidden") +
               (b->isEnabled() ? "" : " disabled");
    }
    QString buttons() const
    {
        return QStringList{state(m_view->turnOnButton()), state(m_view->turnOffButton()),
                           state(m_view->measureButton()), state(m_view->abortButton()),
                           state(m_view->saveButton())}
            .join(QStringLiteral(" | "));
    }

private slots:
    void init()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_dir = std::make_unique<QTemporaryDir>();
        m_model = std::make_unique<CorvidaModel>(m_dir->path());
        m_device = new VirtualCorvidaDevice();
        m_device->setTickTimerActive(false);
        m_device->setClock([this] { return m_now; });
        m_device->setRandomSource([] { return 0.0; });
        m_model->addDevice(m_device);
        m_device->connectDevice();
        m_device->setPressureLimits(30, 120);
        m_view = std::make_unique<AnsweringView>(m_device);
        m_view->experiment()->setClock([this] { return m_now; });
        m_view->resize(1000, 500);
        m_view->show();
    }
    void cleanup() { m_view.reset(), m_model.reset(), m_dir.reset(); }

    // The whole way from Turn on to the Records page is in tst_endtoend; here, what the panel
    // shows at each step.
    void buttonsFollowAWholeMeasurementToTheRecordsPage()
    {
        QCOMPARE(buttons(), "shown | hidden | shown disabled | hidden | hidden");
        QVERIFY(m_view->foundIndicator()->isVisibleTo(m_view.get()));
        QVERIFY(!m_view->notFoundIndicator()->isVisibleTo(m_view.get()));

        m_view->turnOnButton()->click();
        QCOMPARE(buttons(), "hidden | shown | shown | hidden | hidden");
        QVERIFY(m_view->heartRateWidget()->isVisibleTo(m_view.get()));

        m_view->rodentEditor()->setText(QStringLiteral("R-17"));
        emit m_view->rodentEditor()->textEdited(QStringLiteral("R-17"));
        m_view->measureButton()->click();
        // Turn off stays in sight but cannot cut a running cuff cycle short.
        QCOMPARE(buttons(), "hidden | shown disabled | hidden | shown | hidden");
        run(3000);
        QVERIFY(m_view->saveButton()->isVisibleTo(m_view.get()));

        // While it records, Save looks like the other buttons; once the cuff cycle ends with
        // the record unsaved, it stands out.
        QVERIFY(!m_view->saveButton()->property("attention").toBool());
        m_view->abortButton()->click();
        QVERIFY(m_view->saveButton()->isEnabled());
        QVERIFY(m_view->saveButton()->property("attention").toBool());
        m_view->saveButton()->click();
        QVERIFY2(m_view->warnings.isEmpty(), qPrintable(m_view->warnings.join('\n')));
        const QString edf = m_view->savedRecordPath();
        QVERIFY(!m_view->saveButton()->isEnabled());
        QVERIFY(!m_view->rodentEditor()->isEnabled());
        QCOMPARE(m_view->experiment()->getSN(), m_device->deviceId());
        QCOMPARE(m_view->recordedFileName(), QFileInfo(edf).fileName());
        QVERIFY(edf.contains(m_device->deviceId())); // units saving in the same second stay apart

        m_view->recordedFileButton()->click();
        QVERIFY(!m_view->recordedFileButton()->isVisibleTo(m_view.get()));
        // The next state change opens the editors for the next record.
        m_view->turnOnButton()->click();
        QVERIFY(m_view->rodentEditor()->isEnabled());
        QCOMPARE(m_view->rodentEditor()->text(), QStringLiteral("R-17"));
    }
    void headerTextsFollowThePanelWidth_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("texts"); // Turn off / Measure; without a translator, in Russian
        QTest::addColumn<bool>("fileShown");
        QTest::addColumn<int>("editorWidth");
        QTest::addColumn<bool>("ownRow"); // the editors below the buttons
        QTest::newRow("four units, small screen") << 258 << "/" << false << 60 << true;
        QTest::newRow("300") << 300 << "/" << false << 60 << true;
        QTest::newRow("500") << 500 << "/" << false << 80 << false;
        QTest::newRow("501") << 501 << "Выкл/Изм" << false << 80 << true;
        QTest::newRow("600") << 600 << "Выкл/Изм" << false << 96 << false;
        QTest::newRow("601") << 601 << "Выкл/Изм" << true << 96 << false;
        QTest::newRow("700") << 700 << "Выкл/Изм" << true << 112 << false;
        QTest::newRow("701") << 701 << "Выключить/Измерение" << true << 112 << false;
        QTest::newRow("2000") << 2000 << "Выключить/Измерение" << true << 220 << false;
    }
    void headerTextsFollowThePanelWidth()
    {
        QFETCH(int, width);
        m_view->turnOnButton()->click();
        run(1000);
        // As in the page's grid: the panel's least width is its layout's, not a window's.
        m_view->layout()->setSizeConstraint(QLayout::SetNoConstraint);
        m_view->setMinimumSize(0, 0);
        m_view->resize(width, 400);
        QCoreApplication::processEvents();
        QTEST(m_view->turnOffButton()->text() + '/' + m_view->measureButton()->text(), "texts");
        QCOMPARE(m_view->saveButton()->text().isEmpty(), width <= 700);
        QTEST(m_view->recordedFileContainer()->isVisibleTo(m_view.get()), "fileShown");
        // Nothing in the header runs past the panel's edge: the heart rate was cut off in the
        // four-unit grid of a small screen, and "Comment" shrank to "Com...".
        auto *heart = m_view->findChild<HeartRateWidget *>();
        QVERIFY(heart && heart->isVisibleTo(m_view.get()));
        const int top = m_view->turnOffButton()->y();
        for (QWidget *item :
             {static_cast<QWidget *>(m_view->turnOffButton()),
              static_cast<QWidget *>(m_view->measureButton()), static_cast<QWidget *>(heart),
              static_cast<QWidget *>(m_view->rodentEditor()),
              static_cast<QWidget *>(m_view->commentEditor())}) {
            QVERIFY2(item->geometry().right() < width - 2, item->metaObject()->className());
            QVERIFY2(item->width() >= item->minimumSizeHint().width(),
                     item->metaObject()->className());
        }
        QFETCH(int, editorWidth);
        const bool ownRow = m_view->rodentEditor()->y() > top + 10;
        QCOMPARE(m_view->commentEditor()->y(), m_view->rodentEditor()->y());
        for (QLineEdit *editor : {m_view->rodentEditor(), m_view->commentEditor()}) {
            const int placeholder =
                editor->fontMetrics().horizontalAdvance(editor->placeholderText());
            QVERIFY2(placeholder + 16 <= editor->width(), qPrintable(editor->placeholderText()));
            // Beside the buttons, each takes its share; on a row of their own, half the row.
            if (!ownRow) {
                QVERIFY(editor->width() >= editorWidth);
                QVERIFY(editor->width() <= std::max(editorWidth, placeholder + 30));
            } else {
                QVERIFY(editor->width() >= width / 2 - 20);
            }
        }
        // Where there is room the editors stay beside the buttons.
        QTEST(ownRow, "ownRow");
        // Each pair is as wide as its wider member, so swapping them does not move the header.
        QCOMPARE(m_view->turnOnButton()->minimumWidth(), m_view->turnOffButton()->minimumWidth());
        QCOMPARE(m_view->measureButton()->minimumWidth(), m_view->abortButton()->minimumWidth());
    }
    void failedSaveWarnsAndKeepsEverythingForARetry()
    {
        m_view->turnOnButton()->click();
        m_view->measureButton()->click();
        run(2500);
        m_view->abortButton()->click();
        // A file where the records folder should be: no save can succeed, even for root.
        const QString folder = QDir(m_model->recordsFolder()).absolutePath();
        QVERIFY(QDir(folder).removeRecursively());
        QFile blocker(folder);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();

        m_view->saveButton()->click();
        QCOMPARE(m_view->warnings.size(), 1);
        QVERIFY(m_view->warnings.first().startsWith(QStringLiteral("Запись не сохранена!\n")));
        QVERIFY(m_view->warnings.first().size() > QStringLiteral("Запись не сохранена!\n").size());
        QVERIFY(m_view->saveButton()->isEnabled());
        QVERIFY(m_view->rodentEditor()->isEnabled());
        QVERIFY(!m_view->recordedFileButton()->isVisibleTo(m_view.get()));
        QCOMPARE(m_view->recorder()->recordedSamples(), 2500);

        QVERIFY(QFile::remove(folder));
        QVERIFY(QDir().mkpath(folder));
        m_view->saveButton()->click();
        QCOMPARE(m_view->warnings.size(), 1);
        QVERIFY(QFile::exists(m_view->savedRecordPath()));
    }
    void heartRateOfZeroShowsTheStruckOutHeart()
    {
        HeartRateWidget widget;
        widget.setHeartRate(487);
        QCOMPARE(widget.text(), QStringLiteral("487 BPM"));
        QCOMPARE(widget.iconPage(), 0);
        widget.setHeartRate(0);
        QVERIFY(widget.text().isEmpty());
        QCOMPARE(widget.iconPage(), 1);
        QVERIFY(widget.toolTip().contains(QStringLiteral("no regular pulse")));
    }
    void shortenedFileNameKeepsTheTimeOfDay_data()
    {
        QTest::addColumn<int>("room");
        QTest::addColumn<QString>("shown");
        const QFontMetrics fm(QApplication::font());
        const QString name = QStringLiteral("2026-11-21_10-05-00 (CV0042).edf");
        QTest::newRow("room for all") << fm.horizontalAdvance(name) + 8 << name;
        QTest::newRow("suffix dropped")
            << fm.horizontalAdvance(name) - 5 << QStringLiteral("2026-11-21_10-05-00 (CV0042)");
        QTest::newRow("date dropped")
            << fm.horizontalAdvance("10-05-00 (CV0042)") + 2 << QStringLiteral("10-05-00 (CV0042)");
    }
    void shortenedFileNameKeepsTheTimeOfDay()
    {
        QFETCH(int, room);
        const QFontMetrics fm(QApplication::font());
        const QString name = QStringLiteral("2026-11-21_10-05-00 (CV0042).edf");
        QTEST(CorvidaDeviceView::shortFileName(name, fm, room), "shown");
        // However narrow, the time of day comes first.
        QVERIFY(CorvidaDeviceView::shortFileName(name, fm, 60).startsWith(QStringLiteral("10-")));
    }

    void heartRateThatCannotBeRightIsShownUncertain_data()
    {
        QTest::addColumn<double>("bpm");
        QTest::addColumn<int>("beats");
        QTest::addColumn<QString>("why"); // empty: a confident reading
        QTest::newRow("a rat at rest") << 380.0 << 19 << QString();
        QTest::newRow("slower than any rodent") << 120.0 << 6 << "Outside the 180–900 BPM";
        QTest::newRow("faster than any rodent") << 960.0 << 40 << "Outside the 180–900 BPM";
        QTest::newRow("from three beats") << 420.0 << 3 << "Only 3 beat(s)";
        QTest::newRow("beats unknown") << 420.0 << -1 << QString();
    }
    void heartRateThatCannotBeRightIsShownUncertain()
    {
        QFETCH(double, bpm);
        QFETCH(int, beats);
        QFETCH(QString, why);
        HeartRateWidget widget;
        widget.showRate(bpm, beats);
        QCOMPARE(widget.text(), QString::number(int(bpm)) + QStringLiteral(" BPM"));
        QCOMPARE(widget.isUncertain(), !why.isEmpty());
        if (!why.isEmpty())
            QVERIFY2(widget.toolTip().contains(why), qPrintable(widget.toolTip()));
    }
    void serviceMenuOnlyForSerialUnitsWithCtrlAndAlt()
    {
        m_view->modifiers = Qt::ControlModifier | Qt::AltModifier;
        QVERIFY(!m_view->createServiceMenu()); // a simulated unit has no serial number to write

        ComCorvidaDevice serial(QStringLiteral("/dev/null-corvida"));
        AnsweringView view(&serial);
        view.modifiers = Qt::ControlModifier;
        QVERIFY(!view.createServiceMenu());
        view.modifiers = Qt::ControlModifier | Qt::AltModifier;
        std::unique_ptr<QMenu> menu(view.createServiceMenu());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().first()->text(), QStringLiteral("SN"));
        // Without a unit on the line nothing is connected, so every button is off.
        QVERIFY(!view.turnOnButton()->isEnabled());
        QVERIFY(view.notFoundIndicator()->isVisibleTo(&view));
        QVERIFY(!view.foundIndicator()->isVisibleTo(&view));
    }
    void anUnsavedMeasurementIsOnlyReplacedWhenTheOperatorSaysSo()
    {
        // Turning on and off again without measuring asks nothing.
        m_view->turnOnButton()->click();
        run(2000);
        m_view->turnOffButton()->click();
        m_view->turnOnButton()->click();
        QVERIFY(m_view->questions.isEmpty());

        m_view->measureButton()->click();
        run(3000);
        m_view->abortButton()->click();
        m_view->turnOnButton()->click(); // declined: the measurement stays
        QCOMPARE(m_view->questions.size(), 1);
        QVERIFY(!m_device->isAcquiring());
        QCOMPARE(m_view->recorder()->recordedSamples(), 3000);

        m_view->discard = true;
        m_view->turnOnButton()->click();
        QCOMPARE(m_view->questions.size(), 2);
        QVERIFY(m_device->isAcquiring());
        QCOMPARE(m_view->recorder()->recordedSamples(), 0);

        // A saved measurement goes without a question.
        m_view->measureButton()->click();
        run(3000);
        m_view->abortButton()->click();
        m_view->saveButton()->click();
        m_view->turnOnButton()->click();
        QCOMPARE(m_view->questions.size(), 2);
    }
    // The panel used to show a connected, measuring unit while the stream was dead.
    void lostLinkIsShownAndTheRecordKept()
    {
        m_view->turnOnButton()->click();
        m_view->measureButton()->click();
        run(3000);
        QVERIFY(!m_view->noticeLabel()->isVisibleTo(m_view.get()));
        // What the serial unit does when its watchdog finds the stream dead.
        emit m_device->linkLost();
        m_device->disconnectDevice();
        QVERIFY(m_view->noticeLabel()->isVisibleTo(m_view.get()));
        QVERIFY2(
            m_view->noticeLabel()->text().contains(QStringLiteral("link to the unit was lost")),
            qPrintable(m_view->noticeLabel()->text()));
        QVERIFY(m_view->notFoundIndicator()->isVisibleTo(m_view.get()));
        QVERIFY(!m_view->abortButton()->isVisibleTo(m_view.get()));
        QCOMPARE(m_view->recorder()->recordedSamples(), 3000);
        QVERIFY(m_view->saveButton()->isVisibleTo(m_view.get()));

        // Back again, the record is saved and a new recording starts without the old notice.
        m_device->connectDevice();
        m_view->saveButton()->click();
        QVERIFY2(m_view->warnings.isEmpty(), qPrintable(m_view->warnings.join('\n')));
        m_view->turnOnButton()->click();
        QVERIFY(!m_view->noticeLabel()->isVisibleTo(m_view.get()));
    }
    void uncalibratedPressureIsAnnouncedAndMarked()
    {
        UncalibratedUnit unit;
        unit.setTickTimerActive(false);
        unit.setClock([this] { return m_now; });
        AnsweringView view(&unit);
        view.show();
        view.turnOnButton()->click();
        view.measureButton()->click();
        for (int t = 0; t < 1500; t += 50) {
            m_now += 50;
            unit.tick();
        }
        QVERIFY(view.noticeLabel()->isVisibleTo(&view));
        QVERIFY2(view.noticeLabel()->text().contains(QStringLiteral("not mmHg")),
                 qPrintable(view.noticeLabel()->text()));
        QVERIFY(view.experiment()->isUncalibrated());
    }
};

QTEST_MAIN(TestCorvidaDeviceView)
#include "tst_corvidadeviceview.moc"
