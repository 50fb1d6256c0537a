#include "ui/PageExperimentMulti.h"

#include "device/BaseCorvidaDevice.h"
#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/GenericText.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/SessionPanel.h"
#include "ui/SettingDropDownButton.h"
#include "ui/SuggestionsWidget.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <cmath>

namespace {
const QString kGridIcon = QStringLiteral(":/resources/images/grid_view.svg");
const QString kTabsIcon = QStringLiteral(":/resources/images/tabs_view.svg");
const QString kStartAllIcon = QStringLiteral(":/resources/images/play-all.svg");
const QString kStopAllIcon = QStringLiteral(":/resources/images/stop-all.svg");
const QString kMeasureAllIcon = QStringLiteral(":/resources/images/measure-all.svg");
const QString kAbortAllIcon = QStringLiteral(":/resources/images/stopmeasure-all.svg");
const QString kSessionAllIcon = QStringLiteral(":/resources/images/session-all.svg");
const QString kSuggestionsIcon = QStringLiteral(":/resources/images/suggestions.svg");

QPushButton *iconButton(QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setFixedSize(32, 32);
    button->setIconSize(QSize(28, 28));
    button->setCursor(Qt::PointingHandCursor);
    return button;
}
} // namespace

PageExperimentMulti::PageExperimentMulti(QWidget *parent)
    : CorvidaBasePage(parent)
{
    CorvidaModel *model = CorvidaModel::instance();
    m_settings = model ? model->settings() : nullptr;
    StyleHelper::instance()->paintBackground(this, QStringLiteral("--v-idle-bg"));

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    // The header row goes into the main window's top bar, where it takes no height from the
    // plots; row 0 of the page stays empty.
    addHeaderWidget(buildHeader());

    m_empty = new QLabel(tr("No devices found"), this);
    m_empty->setObjectName(QStringLiteral("subtext"));
    m_empty->setStyleSheet(QStringLiteral("font-size: 20px"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_gridBox = new QWidget(this);
    m_grid = new QGridLayout(m_gridBox);
    m_grid->setContentsMargins(6, 6, 6, 6);
    m_tabsBox = new QWidget(this);
    auto *tabsLayout = new QVBoxLayout(m_tabsBox);
    tabsLayout->setContentsMargins(6, 6, 6, 6);
    m_tabs = new QTabWidget(m_tabsBox);
    m_tabs->setDocumentMode(true);
    m_tabs->setStyleSheet(
        StyleHelper::Link(QStringLiteral("QTabBar::tab { background: --v-sub-bg; min-width: 50px } "
                                         "QTabBar::tab:selected { background: --v-bg; }")));
    tabsLayout->addWidget(m_tabs);
    grid->addWidget(m_empty, 1, 0);
    grid->addWidget(m_gridBox, 1, 0);
    grid->addWidget(m_tabsBox, 1, 0);
    m_suggestions = new SuggestionsWidget(this);
    grid->addWidget(m_suggestions, 1, 1);
    m_connections << connect(m_suggestions, &SuggestionsWidget::closeRequested, this, [this] {
        if (m_settings)
            m_settings->setShowSuggestions(false);
        setSuggestionsShown(false);
    });
    grid->setColumnStretch(0, 100);
    grid->setRowStretch(1, 100);

    if (model) {
        m_connections << connect(model, &CorvidaModel::onCorvadaConnected, this,
                                 &PageExperimentMulti::onDeviceConnected);
        m_connections << connect(model, &CorvidaModel::onCorvadaDisconnected, this,
                                 &PageExperimentMulti::onDeviceDisconnected);
        for (BaseCorvidaDevice *device : model->devices())
            addPanel(device);
    }
    if (m_settings) {
        m_connections << connect(m_settings, &CorvidaSettings::changedViewMode, this,
                                 &PageExperimentMulti::arrangePanels);
        m_connections << connect(m_settings, &CorvidaSettings::changedPressureLimit, this,
                                 &PageExperimentMulti::arrangePanels);
        m_connections << connect(m_settings, &CorvidaSettings::changedShowSuggestions, this,
                                 &PageExperimentMulti::setSuggestionsShown);
    }
    m_connections << connect(StyleHelper::instance(), &StyleHelper::themeChanged, this, [this] {
        tintIcons();
        m_tabs->setStyleSheet(StyleHelper::Link(
            QStringLiteral("QTabBar::tab { background: --v-sub-bg; min-width: 50px } "
                           "QTabBar::tab:selected { background: --v-bg; }")));
    });
    setSuggestionsShown(m_settings ? m_settings->getShowSuggestions() : true);
    arrangePanels();
}

PageExperimentMulti::~PageExperimentMulti()
{
    // The panels stop listening before the devices they show go away with the model.
    m_connections.clear();
    qDeleteAll(m_panels);
    m_panels.clear();
}

QString PageExperimentMulti::name() const
{
    return tr("Experiment");
}

QString PageExperimentMulti::iconPath() const
{
    return QStringLiteral(":/resources/images/pressure.svg");
}

QWidget *PageExperimentMulti::buildHeader()
{
    auto *header = new QWidget(this);
    header->setObjectName(QStringLiteral("experimentHeader"));
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);

    m_gridButton = iconButton(header);
    m_gridButton->setObjectName(QStringLiteral("gridViewButton"));
    m_gridButton->setCheckable(true);
    m_gridButton->setStyleSheet(QStringLiteral(
        "QPushButton { border-top-left-radius: 8px; border-bottom-left-radius: 8px; }"));
    m_tabsButton = iconButton(header);
    m_tabsButton->setObjectName(QStringLiteral("tabsViewButton"));
    m_tabsButton->setCheckable(true);
    m_tabsButton->setStyleSheet(QStringLiteral(
        "QPushButton { border-top-right-radius: 8px; border-bottom-right-radius: 8px; }"));
    auto storeMode = [this](CorvidaSettings::CorvidaViewMode mode) {
        if (m_settings && m_settings->getViewMode() != mode)
            m_settings->setViewMode(mode);
        arrangePanels();
    };
    m_connections << connect(m_gridButton, &QPushButton::clicked, this, [storeMode] {
        storeMode(CorvidaSettings::CorvidaViewMode::View_Grid);
    });
    m_connections << connect(m_tabsButton, &QPushButton::clicked, this, [storeMode] {
        storeMode(CorvidaSettings::CorvidaViewMode::View_Tabs);
    });
    row->addWidget(m_gridButton);
    row->addWidget(m_tabsButton);
    row->addSpacing(20);

    m_startAll = iconButton(header);
    m_stopAll = iconButton(header);
    m_measureAll = iconButton(header);
    m_abortAll = iconButton(header);
    m_sessionAll = iconButton(header);
    m_sessionAll->setObjectName(QStringLiteral("sessionAllButton"));
    m_connections << connect(m_sessionAll, &QPushButton::clicked, this,
                             &PageExperimentMulti::startSessionAll);
    m_startAll->setObjectName(QStringLiteral("startAllButton"));
    m_stopAll->setObjectName(QStringLiteral("stopAllButton"));
    m_measureAll->setObjectName(QStringLiteral("measureAllButton"));
    m_abortAll->setObjectName(QStringLiteral("abortAllButton"));
    m_connections << connect(m_startAll, &QPushButton::clicked, this,
                             &PageExperimentMulti::startAll);
    m_connections << connect(m_stopAll, &QPushButton::clicked, this, &PageExperimentMulti::stopAll);
    m_connections << connect(m_measureAll, &QPushButton::clicked, this,
                             &PageExperimentMulti::measureAll);
    m_connections << connect(m_abortAll, &QPushButton::clicked, this,
                             &PageExperimentMulti::abortAll);
    row->addWidget(m_startAll);
    row->addWidget(m_stopAll);
    row->addSpacing(10);
    row->addWidget(m_measureAll);
    row->addWidget(m_abortAll);
    row->addSpacing(10);
    row->addWidget(m_sessionAll);
    row->addSpacing(20);

    if (m_settings) {
        m_dropDowns << new SettingDropDownButton(
            QStringLiteral(":/resources/images/pressure-gauge.svg"),
            genericText(QT_TRANSLATE_NOOP("Generic", "Pressure limits")), m_settings,
            QStringLiteral("PressureLimit"), header);
        m_dropDowns << new SettingDropDownButton(QStringLiteral(":/icons/arrow-left-right.svg"),
                                                 tr("Horizontal scale"), m_settings,
                                                 QStringLiteral("VisualScale"), header);
        m_dropDowns << new SettingDropDownButton(QStringLiteral(":/icons/arrow-up-down.svg"),
                                                 tr("Vertical scale"), m_settings,
                                                 QStringLiteral("PulseAxisLimit"), header);
        for (int i = 0; i < m_dropDowns.size(); ++i) {
            m_dropDowns[i]->setIconColor(Qt::white);
            row->addWidget(m_dropDowns[i]);
            row->addSpacing(i == 0 ? 20 : 6);
        }
    }
    row->addStretch(100);

    m_suggestionsButton =
        new QPushButton(genericText(QT_TRANSLATE_NOOP("Generic", "Suggestions")), header);
    m_suggestionsButton->setObjectName(QStringLiteral("suggestionsButton"));
    m_suggestionsButton->setCheckable(true);
    m_suggestionsButton->setIconSize(QSize(24, 24));
    m_suggestionsButton->setMinimumHeight(32);
    m_suggestionsButton->setStyleSheet(QStringLiteral("QPushButton { padding: 0 10px; }"));
    m_suggestionsButton->setCursor(Qt::PointingHandCursor);
    m_connections << connect(m_suggestionsButton, &QPushButton::toggled, this, [this](bool on) {
        if (m_settings && m_settings->getShowSuggestions() != on)
            m_settings->setShowSuggestions(on);
        setSuggestionsShown(on);
    });
    row->addWidget(m_suggestionsButton);
    retranslate();
    tintIcons();
    m_header = header;
    header->installEventFilter(this);
    return header;
}

bool PageExperimentMulti::eventFilter(QObject *watched, QEvent *event)
{
    // The header lives in the window's top bar: when the bar gets too narrow for the texts of
    // the drop-downs and the suggestions button, they show their icons only.
    if (m_header && watched == m_header && event->type() == QEvent::ParentChange) {
        if (m_header->parentWidget())
            m_header->parentWidget()->installEventFilter(this);
    } else if (m_header && watched == m_header->parentWidget() && event->type() == QEvent::Resize) {
        fitHeader();
    }
    return CorvidaBasePage::eventFilter(watched, event);
}

void PageExperimentMulti::fitHeader()
{
    QWidget *bar = m_header ? m_header->parentWidget() : nullptr;
    if (!bar)
        return;
    if (!m_headerIconsOnly) {
        m_headerFullWidth = bar->sizeHint().width();
        if (bar->width() < m_headerFullWidth)
            setHeaderIconsOnly(true);
    } else if (bar->width() >= m_headerFullWidth) {
        setHeaderIconsOnly(false);
    }
}

void PageExperimentMulti::setHeaderIconsOnly(bool iconsOnly)
{
    m_headerIconsOnly = iconsOnly;
    retranslate();
}

void PageExperimentMulti::retranslate()
{
    m_gridButton->setToolTip(tr("Shows devices in grid"));
    m_tabsButton->setToolTip(tr("Shows devices in tabs"));
    m_startAll->setToolTip(tr("Start all available devices and turn on data acquisition"));
    m_stopAll->setToolTip(tr("Stop data acquisition for all available devices"));
    m_measureAll->setToolTip(tr("Begin pressure pumping and recording for all started devices"));
    m_abortAll->setToolTip(tr("Abort pressure pumping and stop record for all available devices"));
    m_sessionAll->setToolTip(tr("Start a session on all units"));
    m_suggestionsButton->setText(
        m_headerIconsOnly ? QString() : genericText(QT_TRANSLATE_NOOP("Generic", "Suggestions")));
    m_suggestionsButton->setToolTip(tr("Show experiment tips and recommendations"));
    if (m_dropDowns.size() == 3) {
        const QStringList texts = {genericText(QT_TRANSLATE_NOOP("Generic", "Pressure limits")),
                                   tr("Horizontal scale"), tr("Vertical scale")};
        for (int i = 0; i < 3; ++i) {
            m_dropDowns[i]->setText(m_headerIconsOnly ? QString() : texts[i]);
            m_dropDowns[i]->setToolTip(texts[i]);
        }
    }
    if (m_empty)
        m_empty->setText(tr("No devices found"));
}

void PageExperimentMulti::tintIcons()
{
    const QColor white(0xFF, 0xFF, 0xFF);
    m_gridButton->setIcon(StyleHelper::tintedIcon(kGridIcon, white, QSize(28, 28)));
    m_tabsButton->setIcon(StyleHelper::tintedIcon(kTabsIcon, white, QSize(28, 28)));
    m_startAll->setIcon(StyleHelper::tintedIcon(kStartAllIcon, white, QSize(28, 28)));
    m_stopAll->setIcon(StyleHelper::tintedIcon(kStopAllIcon, white, QSize(28, 28)));
    m_measureAll->setIcon(StyleHelper::tintedIcon(kMeasureAllIcon, white, QSize(28, 28)));
    m_abortAll->setIcon(StyleHelper::tintedIcon(kAbortAllIcon, white, QSize(28, 28)));
    m_sessionAll->setIcon(StyleHelper::tintedIcon(kSessionAllIcon, white, QSize(28, 28)));
    m_suggestionsButton->setIcon(StyleHelper::tintedIcon(kSuggestionsIcon, white));
}

CorvidaDeviceView *PageExperimentMulti::panelOf(const BaseCorvidaDevice *device) const
{
    for (CorvidaDeviceView *panel : m_panels) {
        if (panel->device() == device)
            return panel;
    }
    return nullptr;
}

void PageExperimentMulti::onDeviceConnected(const QString &id)
{
    CorvidaModel *model = CorvidaModel::instance();
    if (!model)
        return;
    bool added = false;
    for (BaseCorvidaDevice *device : model->devices()) {
        if (device->deviceId() == id && !panelOf(device)) {
            addPanel(device);
            added = true;
        }
    }
    if (added)
        arrangePanels();
}

void PageExperimentMulti::onDeviceDisconnected(const QString &id)
{
    const bool keepAll = m_settings && m_settings->getShowDisconnectedDevices();
    bool dropped = false;
    for (CorvidaDeviceView *panel : QList<CorvidaDeviceView *>(m_panels)) {
        if (!panel->device() || panel->device()->deviceId() != id)
            continue;
        // A record that was measured but not saved outlives its unit's link: the panel stays
        // (showing the unit as not found) until the operator has saved or discarded it.
        if (keepAll || panel->hasUnsavedMeasurement()) {
            panel->manageButtons();
            continue;
        }
        dropPanel(panel);
        dropped = true;
    }
    if (dropped)
        arrangePanels();
}

void PageExperimentMulti::addPanel(BaseCorvidaDevice *device)
{
    auto *panel = new CorvidaDeviceView(device, this);
    panel->hide();
    m_connections << connect(panel, &CorvidaDeviceView::newRecordSaved, this,
                             &PageExperimentMulti::newRecordSaved);
    m_connections << connect(panel, &CorvidaDeviceView::tooltipUpdated, this, [this, panel] {
        const int index = m_tabs->indexOf(panel);
        if (index >= 0) {
            m_tabs->setTabText(index, panel->title());
            m_tabs->setTabToolTip(index, panel->title());
        }
    });
    // Keep the order of the model's device set.
    QList<CorvidaDeviceView *> ordered;
    CorvidaModel *model = CorvidaModel::instance();
    const QList<BaseCorvidaDevice *> devices =
        model ? model->devices() : QList<BaseCorvidaDevice *>();
    m_panels << panel;
    for (BaseCorvidaDevice *d : devices) {
        if (CorvidaDeviceView *p = panelOf(d))
            ordered << p;
    }
    for (CorvidaDeviceView *p : std::as_const(m_panels)) {
        if (!ordered.contains(p))
            ordered << p;
    }
    m_panels = ordered;
}

void PageExperimentMulti::dropPanel(CorvidaDeviceView *panel)
{
    m_panels.removeAll(panel);
    const int index = m_tabs->indexOf(panel);
    if (index >= 0)
        m_tabs->removeTab(index);
    m_grid->removeWidget(panel);
    delete panel;
}

bool PageExperimentMulti::isTabsView() const
{
    return m_settings && m_settings->getViewMode() == CorvidaSettings::CorvidaViewMode::View_Tabs;
}

void PageExperimentMulti::arrangePanels()
{
    QWidget *currentTab = m_tabs->currentWidget();
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        panel->hide();
        m_grid->removeWidget(panel);
    }
    while (m_tabs->count() > 0)
        m_tabs->removeTab(0);
    for (int r = 0; r < m_gridRows; ++r)
        m_grid->setRowStretch(r, 0);
    for (int c = 0; c < m_gridColumns; ++c)
        m_grid->setColumnStretch(c, 0);
    m_gridRows = m_gridColumns = 0;

    const int n = int(m_panels.size());
    const bool tabs = isTabsView();
    if (tabs) {
        for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
            const int index = m_tabs->addTab(panel, panel->title());
            m_tabs->setTabToolTip(index, panel->title());
            panel->setTitleVisible(n == 1);
        }
        m_tabs->tabBar()->setVisible(n >= 2);
        const int index = m_tabs->indexOf(currentTab);
        m_tabs->setCurrentIndex(index >= 0 ? index : 0);
    } else {
        const int columns = n > 2 ? int(std::ceil(n * 0.5)) : n;
        for (int i = 0; i < n; ++i) {
            const int row = i / columns;
            const int column = i - row * columns;
            m_grid->addWidget(m_panels[i], row, column);
            m_panels[i]->setTitleVisible(true);
            m_gridRows = std::max(m_gridRows, row + 1);
        }
        m_gridColumns = columns;
        for (int r = 0; r < m_gridRows; ++r)
            m_grid->setRowStretch(r, 100);
        for (int c = 0; c < m_gridColumns; ++c)
            m_grid->setColumnStretch(c, 100);
    }
    m_tabsBox->setVisible(tabs && n > 0);
    m_gridBox->setVisible(!tabs && n > 0);
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        // In tabs the tab widget shows the current panel only.
        if (!tabs)
            panel->show();
        panel->setEnabled(panel->device() != nullptr);
    }
    m_gridButton->setChecked(!tabs);
    m_tabsButton->setChecked(tabs);
    m_gridButton->setVisible(n > 1);
    m_tabsButton->setVisible(n > 1);
    m_empty->setVisible(n == 0);
}

void PageExperimentMulti::startAll()
{
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        if (panel->isDeviceConnected() && !panel->isDeviceStarted())
            panel->turnOn();
    }
}

void PageExperimentMulti::stopAll()
{
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        if (panel->isDeviceConnected() && panel->isDeviceStarted())
            panel->turnOff();
    }
}

void PageExperimentMulti::measureAll()
{
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        if (panel->isDeviceConnected() && panel->isDeviceStarted() && !panel->isDeviceMeasuring())
            panel->measure();
    }
}

void PageExperimentMulti::startSessionAll()
{
    // A unit already in a session or a cuff cycle is left as it is.
    for (CorvidaDeviceView *panel : std::as_const(m_panels))
        panel->sessionPanel()->start();
}

void PageExperimentMulti::abortAll()
{
    for (CorvidaDeviceView *panel : std::as_const(m_panels)) {
        // A session waiting for a pulse or between cycles is stopped too.
        if (panel->sessionPanel()->isRunning() ||
            (panel->isDeviceConnected() && panel->isDeviceStarted() && panel->isDeviceMeasuring()))
            panel->abort();
    }
}

void PageExperimentMulti::setSuggestionsShown(bool shown)
{
    if (m_suggestionsButton->isChecked() != shown)
        m_suggestionsButton->setChecked(shown);
    m_suggestions->setVisible(shown);
}

void PageExperimentMulti::changeEvent(QEvent *event)
{
    CorvidaBasePage::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}
