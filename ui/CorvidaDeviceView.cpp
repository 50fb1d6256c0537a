#include "ui/CorvidaDeviceView.h"

#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/BaseCorvidaDevice.h"
#include "device/ComCorvidaDevice.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "toolkit/GenericText.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/ExperimentViewer.h"
#include "ui/HeartRateWidget.h"
#include "ui/PanelHeaderFit.h"
#include "ui/PulseIndicator.h"
#include "ui/SerialNumberDialog.h"
#include "ui/SessionPanel.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QResizeEvent>
#include <QSpacerItem>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {
const QString kUsbIcon = QStringLiteral(":/resources/images/usb.svg");
const QString kDebugIcon = QStringLiteral(":/resources/images/debug.svg");
// Turn on, Measure and Save stay told apart when the panel is too narrow for their words.
const QString kTurnOnIcon = QStringLiteral(":/resources/images/power.svg");
const QString kTurnOffIcon = QStringLiteral(":/icons/stop.svg");
const QString kMeasureIcon = QStringLiteral(":/resources/images/play_circle.svg");
const QString kAbortIcon = QStringLiteral(":/resources/images/stop_circle.svg");
const QString kSaveIcon = QStringLiteral(":/resources/images/save.svg");

QPushButton *indicator(const QString &background, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setFixedSize(24, 24);
    button->setIconSize(QSize(18, 18));
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(QStringLiteral("QPushButton { border-radius: 12px; padding: 0; "
                                         "background: %1 }")
                              .arg(background));
    return button;
}

} // namespace

CorvidaDeviceView::CorvidaDeviceView(BaseCorvidaDevice *device, QWidget *parent)
    : QWidget(parent)
    , m_device(device)
    , m_recorder(new LiveRecorder(device, this))
{
    StyleHelper::instance()->paintBackground(this, QStringLiteral("--v-bg"));
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(6, 6, 6, 6);
    box->setSpacing(6);
    buildHeader();
    m_notice = new QLabel(this);
    m_notice->setObjectName(QStringLiteral("noticeLabel"));
    m_notice->setWordWrap(true);
    m_notice->setStyleSheet(QStringLiteral("QLabel { color: #C30; font-weight: bold }"));
    m_notice->hide();
    box->addWidget(m_notice);
    box->addWidget(m_session);

    auto *viewerBox = new QWidget(this);
    auto *viewerLayout = new QVBoxLayout(viewerBox);
    viewerLayout->setContentsMargins(0, 0, 0, 0);
    m_viewer = new ExperimentViewer(nullptr, viewerBox);
    viewerLayout->addWidget(m_viewer);
    box->addWidget(viewerBox, 100);
    m_viewer->setExperiment(experiment());
    // Units measuring side by side save in the same second: the unit's name in the file name
    // keeps their records apart.
    experiment()->setNameWithSerial(true);

    CorvidaOnlineExperiment *live = experiment();
    m_connections << connect(
        live, &CorvidaOnlineExperiment::pulseCalculated, m_heartRate,
        [this, live](double bpm) { m_heartRate->showRate(bpm, live->lastBeatCount()); });
    m_connections << connect(live, &CorvidaOnlineExperiment::startDateChanged, this,
                             &CorvidaDeviceView::refreshRecordedFileName);
    // The panel's own record goes on receiving what the unit sends: a measurement kept whole
    // would grow by the whole session. It is replaced by a preview, once the operator agrees.
    m_session->setBeforeStart([this] {
        if (!mayDiscardRecord())
            return false;
        if (!isDeviceStarted()) {
            m_recorder->setRecordRaw(false);
            m_recorder->turnOn();
        }
        return true;
    });
    // While a session runs, the screen shows the cycle it records.
    m_connections << connect(m_session, &SessionPanel::sessionStarted, this,
                             [this](SessionRun *run) {
                                 clearNotice();
                                 m_viewer->setExperiment(run->recorder()->experiment());
                             });
    m_connections << connect(m_session, &SessionPanel::runningChanged, this,
                             &CorvidaDeviceView::manageButtons);
    m_connections << connect(m_recorder, &LiveRecorder::dataUpdated, this,
                             &CorvidaDeviceView::onDataUpdated);
    m_connections << connect(m_recorder, &LiveRecorder::linkLost, this, [this] {
        addNotice(tr("The link to the unit was lost. What was recorded is kept; Corvida "
                     "reconnects the unit by itself."));
    });
    m_connections << connect(m_recorder, &LiveRecorder::limitReached, this, [this] {
        addNotice(tr("The measurement reached its limit of %1 minutes and was stopped. What "
                     "was recorded is kept and can be saved.")
                      .arg(LiveRecorder::MaxMeasurementSeconds / 60));
    });
    m_connections << connect(m_recorder, &LiveRecorder::pressureUncalibrated, this, [this] {
        addNotice(tr("The unit's pressure calibration was not accepted: pressures are sensor "
                     "values, not mmHg. The record is marked as not calibrated."));
    });
    m_connections << connect(StyleHelper::instance(), &StyleHelper::themeChanged, this,
                             &CorvidaDeviceView::tintIcons);
    tintIcons();
    connectToDevice();
    refreshRecordedFileName();
    manageButtons();
}

CorvidaDeviceView::~CorvidaDeviceView() = default;

CorvidaOnlineExperiment *CorvidaDeviceView::experiment() const
{
    return m_recorder->experiment();
}

void CorvidaDeviceView::buildHeader()
{
    auto *row = new QHBoxLayout();
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    static_cast<QVBoxLayout *>(layout())->addLayout(row);
    // The rodent and comment editors move to a row of their own when the header has no room
    // for them to show their placeholders (PanelHeaderFit).
    m_editorRow = new QHBoxLayout();
    m_editorRow->setContentsMargins(0, 0, 0, 0);
    m_editorRow->setSpacing(4);
    static_cast<QVBoxLayout *>(layout())->addLayout(m_editorRow);

    m_found = indicator(QStringLiteral("#3C0"), this);
    m_found->setObjectName(QStringLiteral("foundIndicator"));
    m_found->setToolTip(tr("Corvida device found"));
    m_found->setContextMenuPolicy(Qt::CustomContextMenu);
    m_connections << connect(m_found, &QWidget::customContextMenuRequested, this,
                             [this](const QPoint &pos) {
                                 if (QMenu *menu = createServiceMenu()) {
                                     menu->exec(m_found->mapToGlobal(pos));
                                     delete menu;
                                 }
                             });
    m_notFound = indicator(QStringLiteral("#999"), this);
    m_notFound->setObjectName(QStringLiteral("notFoundIndicator"));
    m_notFound->setToolTip(tr("Corvida device not found"));
    m_titleLabel = new QLabel(this);
    m_titleLabel->setObjectName(QStringLiteral("deviceTitle"));
    m_titleLabel->setStyleSheet(QStringLiteral("QLabel { font-weight: bold }"));

    auto button = [this](const QString &name, const QString &text, const QString &tip) {
        auto *b = new QPushButton(text, this);
        b->setObjectName(name);
        b->setToolTip(tip);
        b->setIconSize(QSize(20, 20));
        return b;
    };
    m_turnOn = button(QStringLiteral("turnOnButton"), tr("Turn on"),
                      tr("Start the device and turn on data acquisition"));
    m_turnOff =
        button(QStringLiteral("turnOffButton"), tr("Turn off"), tr("Stop data acquisition"));
    m_measure = button(QStringLiteral("measureButton"), tr("Measure"),
                       tr("Start pressure pumping and start recording"));
    m_abort = button(QStringLiteral("abortButton"), tr("Abort"),
                     tr("Abort pressure pumping and stop recording"));
    m_save = button(QStringLiteral("saveButton"), genericText(QT_TRANSLATE_NOOP("Generic", "Save")),
                    tr("Save record"));
    m_connections << connect(m_turnOn, &QPushButton::clicked, this, &CorvidaDeviceView::turnOn);
    m_connections << connect(m_turnOff, &QPushButton::clicked, this, &CorvidaDeviceView::turnOff);
    m_connections << connect(m_measure, &QPushButton::clicked, this, &CorvidaDeviceView::measure);
    m_connections << connect(m_abort, &QPushButton::clicked, this, &CorvidaDeviceView::abort);
    m_connections << connect(m_save, &QPushButton::clicked, this, &CorvidaDeviceView::save);

    m_recordedFileBox = new QWidget(this);
    auto *fileLayout = new QHBoxLayout(m_recordedFileBox);
    fileLayout->setContentsMargins(0, 0, 0, 0);
    m_recordedFile = new QPushButton(m_recordedFileBox);
    m_recordedFile->setCursor(Qt::PointingHandCursor);
    m_recordedFile->setMinimumHeight(36);
    m_recordedFile->hide();
    fileLayout->addWidget(m_recordedFile);
    m_connections << connect(m_recordedFile, &QPushButton::clicked, this,
                             &CorvidaDeviceView::openRecordedFile);

    m_session = new SessionPanel(m_device, experiment(), this);
    m_pulse = new PulseIndicator(m_device, this);
    if (CorvidaModel *model = CorvidaModel::instance())
        m_pulse->setLimits(SessionPlan::fromSettings(*model->settings()).gate);
    m_heartRate = new HeartRateWidget(this);
    m_rodent = createTextEditor(QStringLiteral("Rodent"), QStringLiteral("rodentEditor"));
    m_comment = createTextEditor(QStringLiteral("Comment"), QStringLiteral("commentEditor"));
    m_editables = {m_rodent, m_comment, m_save};

    row->addWidget(m_found);
    row->addWidget(m_notFound);
    row->addWidget(m_titleLabel);
    row->addSpacing(2);
    row->addWidget(m_turnOn);
    row->addWidget(m_turnOff);
    row->addSpacing(2);
    row->addWidget(m_measure);
    row->addWidget(m_abort);
    row->addWidget(m_session->sessionButton());
    row->addWidget(m_pulse);
    m_saveGap = new QSpacerItem(10, 0, QSizePolicy::Fixed, QSizePolicy::Minimum);
    row->addSpacerItem(m_saveGap);
    row->addWidget(m_save);
    row->addWidget(m_recordedFileBox);
    row->addStretch(1);
    row->addWidget(m_heartRate);
    row->addStretch(1);
    row->addWidget(m_rodent, 100);
    row->addWidget(m_comment, 100);
    m_headerFit = std::make_unique<PanelHeaderFit>(
        PanelHeaderFit::Parts{row,
                              m_editorRow,
                              m_saveGap,
                              {m_turnOn, m_turnOff, m_measure, m_abort},
                              m_save,
                              m_session->sessionButton(),
                              m_rodent,
                              m_comment});
}

// A one-line editor of a text property of the live record, named by its placeholder and tooltip.
QLineEdit *CorvidaDeviceView::createTextEditor(const QString &property, const QString &objectName)
{
    auto *editor = new QLineEdit(this);
    editor->setObjectName(objectName);
    const QString label = property == QLatin1String("Rodent") ? tr("Rodent") : tr("Comment");
    editor->setPlaceholderText(label);
    editor->setToolTip(label);
    editor->setClearButtonEnabled(false);
    CorvidaOnlineExperiment *live = experiment();
    editor->setText(live->property(property.toLatin1().constData()).toString());
    m_connections << connect(editor, &QLineEdit::textEdited, this,
                             [live, property](const QString &text) {
                                 live->setProperty(property.toLatin1().constData(), text);
                             });
    auto follow = [editor](const QString &text) {
        if (editor->text() != text)
            editor->setText(text);
    };
    if (property == QLatin1String("Rodent"))
        m_connections << connect(live, &CorvidaExperiment::changedRodent, editor, follow);
    else
        m_connections << connect(live, &CorvidaExperiment::changedComment, editor, follow);
    return editor;
}

void CorvidaDeviceView::connectToDevice()
{
    m_deviceConnections.clear();
    if (!m_device)
        return;
    BaseCorvidaDevice *d = m_device;
    for (auto signal : {&BaseCorvidaDevice::connected, &BaseCorvidaDevice::disconnected,
                        &BaseCorvidaDevice::started, &BaseCorvidaDevice::stopped,
                        &BaseCorvidaDevice::idChanged}) {
        m_deviceConnections << connect(d, signal, this, &CorvidaDeviceView::manageButtons);
    }
    m_deviceConnections << connect(d, &BaseCorvidaDevice::startedMeasuring, this,
                                   &CorvidaDeviceView::onMeasuringChanged);
    m_deviceConnections << connect(d, &BaseCorvidaDevice::stoppedMeasuring, this,
                                   &CorvidaDeviceView::onMeasuringChanged);
}

bool CorvidaDeviceView::isDeviceConnected() const
{
    return m_device && m_device->isConnected();
}

bool CorvidaDeviceView::isDeviceStarted() const
{
    return m_device && m_device->isAcquiring();
}

bool CorvidaDeviceView::isDeviceMeasuring() const
{
    return m_device && m_device->isMeasuring();
}

bool CorvidaDeviceView::hasUnsavedMeasurement() const
{
    return m_unsavedMeasurement && m_recorder->isSaveable() && m_recorder->savedPath().isEmpty();
}

void CorvidaDeviceView::setTitleVisible(bool visible)
{
    m_titleLabel->setVisible(visible);
}

void CorvidaDeviceView::manageButtons()
{
    const bool connected = isDeviceConnected();
    const bool started = isDeviceStarted();
    const bool measuring = isDeviceMeasuring();
    // A session drives the unit by itself: its own Abort is the only way in.
    const bool session = m_session->isRunning();
    // While the screen shows a session's cycle, Save would save something else: the session
    // has saved its cycles itself.
    const bool showsSession = m_viewer->experiment() != experiment();
    const bool saveable = m_recorder->isSaveable() && !showsSession;

    m_found->setVisible(connected);
    m_notFound->setVisible(!connected);
    m_turnOn->setEnabled(connected && !session);
    m_turnOn->setVisible(!started);
    m_turnOff->setEnabled(connected && !measuring && !session);
    m_turnOff->setVisible(started);
    m_measure->setEnabled(connected && started && !session);
    m_measure->setVisible(!measuring && !session);
    m_abort->setEnabled(connected);
    m_abort->setVisible(measuring && !session);
    m_session->sessionButton()->setEnabled(m_session->canStart());

    setEditablesEnabled(!session);
    m_save->setVisible(saveable);
    updateSaveLook();
    m_recordedFile->hide();
    m_recordedFile->setFlat(true);
    m_heartRate->setVisible(started);

    updateTitle();
    applyWidthLayout(width());
}

void CorvidaDeviceView::updateSaveLook()
{
    const bool attention = hasUnsavedMeasurement() && !isDeviceMeasuring();
    if (m_save->property("attention").toBool() == attention && !m_save->icon().isNull())
        return;
    m_save->setProperty("attention", attention);
    m_save->style()->unpolish(m_save);
    m_save->style()->polish(m_save);
    const QColor text = StyleHelper::instance()->color(QStringLiteral("--v-text"), Qt::black);
    m_save->setIcon(StyleHelper::tintedIcon(kSaveIcon, attention ? QColor(Qt::white) : text));
    m_save->setToolTip(attention ? tr("Save record") + QStringLiteral(": ") +
                                       tr("the measurement has not been saved yet")
                                 : tr("Save record"));
}

void CorvidaDeviceView::updateTitle()
{
    if (!m_device)
        return;
    m_title = m_device->deviceId();
    m_titleLabel->setText(m_title);
    m_titleLabel->setToolTip(m_title);
    m_found->setToolTip(tr("Corvida device found") + QLatin1Char('\n') + m_title);
    m_notFound->setToolTip(tr("Corvida device not found") + QLatin1Char('\n') + m_title);
    emit tooltipUpdated();
}

void CorvidaDeviceView::applyWidthLayout(int w)
{
    m_recordedFileBox->setVisible(w >= RecordedFileMinWidth);

    const bool texts = w > IconOnlyMaxWidth;
    m_heartRate->setCompact(!texts);
    const bool longTexts = w > ShortTextMaxWidth;
    // The Russian words are the source texts here; the translation files hold the English long
    // and short forms.
    m_turnOn->setText(!texts ? QString() : longTexts ? tr("Включить") : tr("Вкл"));
    m_turnOff->setText(!texts ? QString() : longTexts ? tr("Выключить") : tr("Выкл"));
    m_measure->setText(!texts ? QString() : longTexts ? tr("Измерение") : tr("Изм"));
    m_abort->setText(!texts ? QString() : longTexts ? tr("Прервать") : tr("Стоп"));
    // The Session button came last into a full row: it gives up its word first.
    m_session->setCompact(w <= ShortTextMaxWidth + 200);
    m_save->setText(longTexts ? genericText(QT_TRANSLATE_NOOP("Generic", "Save")) : QString());
    const QMargins margins = layout()->contentsMargins();
    m_headerFit->fit(w, margins.left() + margins.right(), !texts);
    m_recordedFile->setStyleSheet(QStringLiteral("font-size: ") +
                                  (longTexts ? QStringLiteral("14px") : QStringLiteral("10px")));
    showRecordedFileName();
}

void CorvidaDeviceView::turnOn()
{
    if (!isDeviceConnected() || isDeviceStarted() || !mayDiscardRecord())
        return;
    m_recorder->setRecordRaw(CorvidaModel::saveRawData());
    m_heartRate->setHeartRate(0);
    clearNotice();
    m_viewer->setExperiment(experiment());
    m_recorder->turnOn();
    manageButtons();
}

void CorvidaDeviceView::turnOff()
{
    // Turning off a unit in a session ends the session; its finished cycles stay.
    if (m_session->isRunning()) {
        m_session->abort();
        return;
    }
    if (!isDeviceConnected() || !isDeviceStarted())
        return;
    m_device->stopAcquisition();
}

void CorvidaDeviceView::measure()
{
    if (!isDeviceConnected() || !isDeviceStarted() || isDeviceMeasuring() ||
        m_session->isRunning() || !mayDiscardRecord())
        return;
    m_recorder->setRecordRaw(CorvidaModel::saveRawData());
    clearNotice();
    m_viewer->setExperiment(experiment());
    m_recorder->measure();
}

void CorvidaDeviceView::abort()
{
    if (m_session->isRunning()) {
        m_session->abort();
        return;
    }
    if (!isDeviceConnected() || !isDeviceStarted() || !isDeviceMeasuring())
        return;
    m_recorder->abort();
}

bool CorvidaDeviceView::mayDiscardRecord()
{
    // A new recording replaces the record on screen. A measured record that was never saved
    // is only replaced when the operator says so.
    if (!hasUnsavedMeasurement())
        return true;
    if (!confirmDiscard(tr("The last measurement of %1 has not been saved. Discard it and start "
                           "a new recording?")
                            .arg(m_title)))
        return false;
    m_unsavedMeasurement = false;
    return true;
}

bool CorvidaDeviceView::confirmDiscard(const QString &text)
{
    return QMessageBox::question(this, tr("Record not saved"), text,
                                 QMessageBox::Discard | QMessageBox::Cancel,
                                 QMessageBox::Cancel) == QMessageBox::Discard;
}

void CorvidaDeviceView::onMeasuringChanged()
{
    // A session saves its cycles itself; they are not this panel's unsaved record.
    if (isDeviceMeasuring() && !m_session->isRunning())
        m_unsavedMeasurement = true;
    // A finished cuff cycle leaves a record to look at: bring it fully into view.
    m_viewer->refreshData();
    manageButtons();
}

void CorvidaDeviceView::onDataUpdated()
{
    // Save appears once the record is long enough, without waiting for the next state change.
    if (m_recorder->isSaveable() && !m_save->isVisible() && m_save->isEnabled() &&
        m_viewer->experiment() == experiment())
        m_save->setVisible(true);
}

void CorvidaDeviceView::save()
{
    CorvidaModel *model = CorvidaModel::instance();
    const QString folder = model ? model->recordsFolder() : QString();
    QString error;
    if (folder.isEmpty()) {
        error = tr("There is no records folder.");
    } else if (m_recorder->save(folder, &error)) {
        m_unsavedMeasurement = false;
        setEditablesEnabled(false);
        updateSaveLook();
        setRecordedFileName(QFileInfo(savedRecordPath()).fileName());
        m_recordedFile->setToolTip(genericText(QT_TRANSLATE_NOOP("Generic", "Open")) +
                                   QLatin1Char(' ') + m_recordedFileName);
        m_recordedFile->setFlat(false);
        m_recordedFile->setEnabled(true);
        m_recordedFile->show();
        emit newRecordSaved();
        return;
    }
    showSaveWarning(tr("Запись не сохранена!") + QLatin1Char('\n') + error);
}

void CorvidaDeviceView::refreshRecordedFileName()
{
    setRecordedFileName(experiment()->baseFileName() + QStringLiteral(".edf"));
    m_recordedFile->setToolTip(tr("Recorded file") + QStringLiteral(": ") + m_recordedFileName);
}

void CorvidaDeviceView::setRecordedFileName(const QString &name)
{
    m_recordedFileName = name;
    m_recordedFile->setObjectName(name);
    showRecordedFileName();
}

void CorvidaDeviceView::showRecordedFileName()
{
    // A narrow header gets the name shortened in the middle, where the date and the unit
    // both stay readable; the tooltip has it whole.
    const int room = std::max(80, int(width() * 0.22));
    QFont font = m_recordedFile->font();
    font.setPixelSize(width() > ShortTextMaxWidth ? 14 : 10);
    m_recordedFile->setText(shortFileName(m_recordedFileName, QFontMetrics(font), room - 16));
}

QString CorvidaDeviceView::shortFileName(const QString &name, const QFontMetrics &fm, int room)
{
    // What tells records apart is the time of day and the unit: the date and the suffix go
    // first, and only then is the rest cut at its end.
    QString text = name;
    if (text.endsWith(QLatin1String(".edf"), Qt::CaseInsensitive) &&
        fm.horizontalAdvance(text) > room)
        text.chop(4);
    static const QRegularExpression date(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}_"));
    if (fm.horizontalAdvance(text) > room)
        text.remove(date);
    return fm.elidedText(text, Qt::ElideRight, room);
}

void CorvidaDeviceView::openRecordedFile()
{
    const QString path = savedRecordPath();
    if (CorvidaModel *model = CorvidaModel::instance(); model && !path.isEmpty())
        emit model->onOpenRecord(path);
    m_recordedFile->hide();
}

QString CorvidaDeviceView::savedRecordPath() const
{
    // The recorder names the properties file; the record is the recording beside it.
    const QString path = m_recorder->savedPath();
    if (path.isEmpty())
        return path;
    const QFileInfo info(path);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral(".edf"));
}

void CorvidaDeviceView::addNotice(const QString &text)
{
    QStringList lines = m_notice->text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.contains(text))
        return;
    lines << text;
    m_notice->setText(lines.join(QLatin1Char('\n')));
    m_notice->show();
}

void CorvidaDeviceView::clearNotice()
{
    m_notice->clear();
    m_notice->hide();
}

void CorvidaDeviceView::setEditablesEnabled(bool enabled)
{
    for (QWidget *w : m_editables)
        w->setEnabled(enabled);
}

QMenu *CorvidaDeviceView::createServiceMenu()
{
    if (!qobject_cast<ComCorvidaDevice *>(m_device.data()))
        return nullptr;
    const Qt::KeyboardModifiers held = currentModifiers();
    if (!(held & Qt::ControlModifier) || !(held & Qt::AltModifier))
        return nullptr;
    auto *menu = new QMenu(this);
    menu->addAction(QStringLiteral("SN"), this, &CorvidaDeviceView::openSerialNumberDialog);
    return menu;
}

void CorvidaDeviceView::openSerialNumberDialog()
{
    if (auto *device = qobject_cast<ComCorvidaDevice *>(m_device.data())) {
        SerialNumberDialog dialog(device, this);
        dialog.exec();
    }
}

void CorvidaDeviceView::showSaveWarning(const QString &text)
{
    QMessageBox::warning(this, QApplication::applicationName(), text);
}

Qt::KeyboardModifiers CorvidaDeviceView::currentModifiers() const
{
    return QApplication::queryKeyboardModifiers();
}

void CorvidaDeviceView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    applyWidthLayout(event->size().width());
}

void CorvidaDeviceView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_turnOn->setToolTip(tr("Start the device and turn on data acquisition"));
        m_turnOff->setToolTip(tr("Stop data acquisition"));
        m_measure->setToolTip(tr("Start pressure pumping and start recording"));
        m_abort->setToolTip(tr("Abort pressure pumping and stop recording"));
        m_save->setToolTip(tr("Save record"));
        updateTitle();
        applyWidthLayout(width());
    }
}

void CorvidaDeviceView::tintIcons()
{
    const QColor text = StyleHelper::instance()->color(QStringLiteral("--v-text"), Qt::black);
    const QString presence =
        qobject_cast<VirtualCorvidaDevice *>(m_device.data()) ? kDebugIcon : kUsbIcon;
    m_found->setIcon(StyleHelper::tintedIcon(presence, QColor(0x30, 0x30, 0x30)));
    m_notFound->setIcon(StyleHelper::tintedIcon(presence, QColor(0xCC, 0x33, 0x00)));
    m_turnOn->setIcon(StyleHelper::tintedIcon(kTurnOnIcon, text));
    m_turnOff->setIcon(StyleHelper::tintedIcon(kTurnOffIcon, text));
    m_measure->setIcon(StyleHelper::tintedIcon(kMeasureIcon, text));
    m_abort->setIcon(StyleHelper::tintedIcon(kAbortIcon, text));
    m_save->setIcon(QIcon());
    updateSaveLook();
}
