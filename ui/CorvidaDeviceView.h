#pragma once

#include "device/BaseCorvidaDevice.h"
#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QPointer>
#include <QWidget>
#include <memory>

class CorvidaOnlineExperiment;
class ExperimentViewer;
class HeartRateWidget;
class LiveRecorder;
class QFontMetrics;
class QHBoxLayout;
class QSpacerItem;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class PanelHeaderFit;
class PulseIndicator;
class SessionPanel;

// The panel of one measuring unit on the Experiment page: presence indicators, the acquisition
// and measurement buttons, Save and the last saved file, the heart rate, the rodent and comment
// of the record, and below them the live record itself.
//
// The panel owns the unit's live record (through its recorder). The buttons only ever ask what
// the unit's state allows; which of them are shown and enabled follows that state.
class CorvidaDeviceView : public QWidget
{
    Q_OBJECT
public:
    // Width thresholds of the header (pixels of the panel's width).
    static constexpr int IconOnlyMaxWidth = 500;
    static constexpr int ShortTextMaxWidth = 700;
    static constexpr int RecordedFileMinWidth = 601;
    // A record's file name fitted into `room` pixels, keeping the time of day and the unit.
    static QString shortFileName(const QString &name, const QFontMetrics &fm, int room);

    explicit CorvidaDeviceView(BaseCorvidaDevice *device, QWidget *parent = nullptr);
    ~CorvidaDeviceView() override;

    BaseCorvidaDevice *device() const { return m_device; }
    QString title() const { return m_title; }
    LiveRecorder *recorder() const { return m_recorder; }
    CorvidaOnlineExperiment *experiment() const;
    ExperimentViewer *viewer() const { return m_viewer; }

    // The unit's state as the buttons see it; false without a unit.
    bool isDeviceConnected() const;
    bool isDeviceStarted() const;
    bool isDeviceMeasuring() const;
    // A measurement (a cuff cycle) was recorded and has not been saved.
    bool hasUnsavedMeasurement() const;
    // The ".edf" file of the last saved record; empty before a save.
    QString savedRecordPath() const;

    // The title label is hidden when a tab caption already names the unit.
    void setTitleVisible(bool visible);

    QPushButton *foundIndicator() const { return m_found; }
    QPushButton *notFoundIndicator() const { return m_notFound; }
    QLabel *titleLabel() const { return m_titleLabel; }
    QPushButton *turnOnButton() const { return m_turnOn; }
    QPushButton *turnOffButton() const { return m_turnOff; }
    QPushButton *measureButton() const { return m_measure; }
    QPushButton *abortButton() const { return m_abort; }
    QPushButton *saveButton() const { return m_save; }
    QPushButton *recordedFileButton() const { return m_recordedFile; }
    // The whole name of the file the button stands for (the button may show it shortened).
    QString recordedFileName() const { return m_recordedFileName; }
    QWidget *recordedFileContainer() const { return m_recordedFileBox; }
    HeartRateWidget *heartRateWidget() const { return m_heartRate; }
    QLineEdit *rodentEditor() const { return m_rodent; }
    QLineEdit *commentEditor() const { return m_comment; }
    // What went wrong with the current recording (link lost, limit reached, no calibration);
    // hidden while there is nothing to say.
    QLabel *noticeLabel() const { return m_notice; }
    SessionPanel *sessionPanel() const { return m_session; }
    PulseIndicator *pulseIndicator() const { return m_pulse; }

    // The service menu of the found indicator (serial units, Ctrl and Alt held); null when it
    // is not offered. The caller owns the menu.
    QMenu *createServiceMenu();

public slots:
    void connectToDevice();
    void manageButtons();
    void turnOn();
    void turnOff();
    void measure();
    void abort();
    void save();
    void openRecordedFile();

signals:
    void newRecordSaved();
    void tooltipUpdated();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

    // Seams for the tests: the warning after a failed save, the held modifier keys, and the
    // serial-number dialog.
    virtual void showSaveWarning(const QString &text);
    virtual Qt::KeyboardModifiers currentModifiers() const;
    virtual void openSerialNumberDialog();
    // Asked before a new recording would replace a measurement that was not saved.
    virtual bool confirmDiscard(const QString &text);

private:
    void buildHeader();
    QLineEdit *createTextEditor(const QString &property, const QString &objectName);
    void updateTitle();
    // Save is green while a finished measurement waits to be saved, plain otherwise.
    void updateSaveLook();
    bool mayDiscardRecord();
    void applyWidthLayout(int width);
    void onMeasuringChanged();
    void onDataUpdated();
    void refreshRecordedFileName();
    void setRecordedFileName(const QString &name);
    void showRecordedFileName();
    void tintIcons();
    void setEditablesEnabled(bool enabled);
    void addNotice(const QString &text);
    void clearNotice();

    QPointer<BaseCorvidaDevice> m_device;
    LiveRecorder *m_recorder;
    ConnectionHelper m_deviceConnections;
    ConnectionHelper m_connections;
    QString m_title;
    QPushButton *m_found = nullptr;
    QPushButton *m_notFound = nullptr;
    QLabel *m_titleLabel = nullptr;
    QPushButton *m_turnOn = nullptr;
    QPushButton *m_turnOff = nullptr;
    QPushButton *m_measure = nullptr;
    QPushButton *m_abort = nullptr;
    QPushButton *m_save = nullptr;
    QWidget *m_recordedFileBox = nullptr;
    QPushButton *m_recordedFile = nullptr;
    HeartRateWidget *m_heartRate = nullptr;
    QHBoxLayout *m_editorRow = nullptr;
    QSpacerItem *m_saveGap = nullptr;
    std::unique_ptr<PanelHeaderFit> m_headerFit;
    QLineEdit *m_rodent = nullptr;
    QLineEdit *m_comment = nullptr;
    QLabel *m_notice = nullptr;
    SessionPanel *m_session = nullptr;
    PulseIndicator *m_pulse = nullptr;
    QList<QWidget *> m_editables;
    ExperimentViewer *m_viewer = nullptr;
    bool m_unsavedMeasurement = false;
    QString m_recordedFileName;
};
