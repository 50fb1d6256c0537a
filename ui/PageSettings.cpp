#include "ui/PageSettings.h"

#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/widgets/PropertyListControl.h"
#include "ui/MethodComboBox.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QFrame>
#include <QScrollArea>
#include <QVBoxLayout>

// The settings page shows setting names and enumeration keys through the translation files
// (context "CorvidaSettings"); listing them here lets lupdate find them.
[[maybe_unused]] static const char *const kSettingTexts[] = {
    QT_TRANSLATE_NOOP("CorvidaSettings", "Language"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "ColorTheme"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PressureLimit"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "VisualScale"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxisLimit"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "StartFullscreen"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "ExportBehavior"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "ViewMode"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "DebugMode"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "UseVirtualCorvida"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SimulatedAnimal"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "ShowDisconnectedDevices"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SaveRawData"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionAcclimationCycles"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionMeasurementCycles"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionInterval"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionPulseWait"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionPulseAmplitude"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionHeartRateMin"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionHeartRateMax"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionSBPMin"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionSBPMax"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionDBPMin"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionDBPMax"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionPulsePressureMin"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionIrregularBeatsMax"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionMinAccepted"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "SessionSBPSDMax"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "en_US"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "ru_RU"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "System"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Light"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Dark"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_300_75"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_240_60"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_200_50"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_160_40"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_120_30"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Pressure_100_25"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_10"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_20"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_30"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_60"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_90"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "Scale_120"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_1_800_m900"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_1_200_m600"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_1_000_m500"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_0_800_m400"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_0_600_m300"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_0_400_m200"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "PulseAxis_0_200_m100"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "OnExport_OpenFile"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "OnExport_OpenFolder"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "OnExport_DoNothing"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "View_Grid"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "View_Tabs"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "mouse"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "rat"),
    QT_TRANSLATE_NOOP("CorvidaSettings", "hypertensive-rat"),
};

PageSettings::PageSettings(QWidget *parent)
    : CorvidaBasePage(parent)
{
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(24, 20, 24, 20);
    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto *card = new QFrame;
    card->setObjectName(QStringLiteral("card"));
    card->setMinimumWidth(560);
    card->setMaximumWidth(720);
    auto *cardBox = new QVBoxLayout(card);
    cardBox->setContentsMargins(20, 16, 20, 16);
    CorvidaSettings *settings =
        CorvidaModel::instance() ? CorvidaModel::instance()->settings() : nullptr;
    m_list = new PropertyListControl(settings, QString(), card);
    cardBox->addWidget(m_list);

    // The setting holds "documented" or "refined"; a record holds "" or "refined".
    m_method = new MethodComboBox(card);
    m_method->setObjectName(QStringLiteral("detectionMethod"));
    m_method->setToolTip(tr("How new records place their SBP and DBP markers. A record keeps its "
                            "own way; it can be changed in the record's viewer."));
    auto *methodRow = new QFormLayout;
    methodRow->addRow(tr("Marker detection for new records"), m_method);
    cardBox->addLayout(methodRow);
    if (settings) {
        m_method->setMethod(settings->getDetectionMethod());
        connect(m_method, &MethodComboBox::methodChosen, settings, [settings](const QString &m) {
            settings->setDetectionMethod(m.isEmpty() ? QStringLiteral("documented") : m);
        });
        connect(settings, &CorvidaSettings::changedDetectionMethod, m_method,
                &MethodComboBox::setMethod);
    } else {
        m_method->setEnabled(false);
    }
    auto *holder = new QWidget;
    holder->setObjectName(QStringLiteral("settingsHolder"));
    auto *holderBox = new QVBoxLayout(holder);
    holderBox->setContentsMargins(0, 0, 0, 0);
    holderBox->addWidget(card, 0, Qt::AlignHCenter | Qt::AlignTop);
    holderBox->addStretch(1);
    scroll->setWidget(holder);
    box->addWidget(scroll);
}

QString PageSettings::name() const
{
    return tr("Settings");
}

QString PageSettings::iconPath() const
{
    return QStringLiteral(":/resources/images/settings.svg");
}
