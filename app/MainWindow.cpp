#include "app/MainWindow.h"

#include "device/CorvidaModel.h"
#include "settings/AbstractMetaDescription.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/NewVersionButton.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/CorvidaDeviceView.h"
#include "ui/PageAboutApp.h"
#include "ui/PageDatabase.h"
#include "ui/PageExperimentMulti.h"
#include "ui/PageSettings.h"
#include "ui/SettingsFileNotice.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace {
// Saving and restoring the language re-announces it while the question is open or closing;
// this keeps those echoes from asking again.
bool s_languageQuestionOpen = false;

struct FlagGuard {
    explicit FlagGuard(bool &flag)
        : m_flag(flag)
    {
        m_flag = true;
    }
    ~FlagGuard() { m_flag = false; }
    bool &m_flag;
};
} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    CorvidaModel *model = CorvidaModel::instance();
    m_settings = model ? model->settings() : nullptr;
    setWindowTitle(QCoreApplication::translate("Generic", "Corvida") + QLatin1Char(' ') +
                   AppHelper::appVersion());

    m_pageStack = new QStackedLayout;
    m_pageStack->setContentsMargins(0, 0, 0, 0);
    m_topBar = new QWidget;
    m_topBar->setObjectName(QStringLiteral("topBar"));
    StyleHelper::instance()->paintBackground(m_topBar, QStringLiteral("--v-panel-bg"));
    m_topBarLayout = new QHBoxLayout(m_topBar);
    m_topBarLayout->setContentsMargins(8, 8, 8, 8);

    m_databasePage = new PageDatabase;
    m_experimentPage = new PageExperimentMulti;

    m_newRecordDot = new QPushButton;
    m_newRecordDot->setObjectName(QStringLiteral("newRecordDot"));
    m_newRecordDot->setFixedSize(10, 10);
    m_newRecordDot->setStyleSheet(
        QStringLiteral("QPushButton { border-radius: 5px; background: #3C0; border: 0 }"));
    m_newRecordDot->setToolTip(tr("New experiment in database"));
    m_newRecordDot->hide();
    m_connections << connect(m_experimentPage, &PageExperimentMulti::newRecordSaved, this, [this] {
        m_databasePage->setNeedsReload(true);
        m_newRecordDot->show();
    });

    m_settingsPage = new PageSettings;
    m_aboutPage = new PageAboutApp;
    addPage(m_experimentPage, false);
    addPage(m_databasePage, false, m_newRecordDot);
    addPage(m_settingsPage, true);
    addPage(m_aboutPage, true);
    m_connections << connect(pageButton(m_databasePage), &QPushButton::clicked, m_newRecordDot,
                             &QWidget::hide);

    QPushButton *settingsButton = pageButton(m_settingsPage);
    settingsButton->setContextMenuPolicy(Qt::CustomContextMenu);
    m_connections << connect(settingsButton, &QWidget::customContextMenuRequested, this,
                             &MainWindow::settingsMenuRequested);

    m_topBarLayout->addStretch(100);
    m_topBarLayout->addWidget(new NewVersionButton(
        QCoreApplication::translate("Generic", "New version") + QLatin1Char(' '), m_topBar));

    m_pageButtons.first()->setChecked(true);
    showPage(m_experimentPage);

    auto *central = new QWidget;
    central->setContentsMargins(0, 0, 0, 0);
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_topBar);
    m_settingsNotice = new SettingsFileNotice(m_settings, central);
    column->addWidget(m_settingsNotice);
    column->addLayout(m_pageStack, 100);
    setCentralWidget(central);
    setMinimumSize(800, 600);

    if (m_settings)
        m_connections << connect(m_settings, &CorvidaSettings::changedLanguage, this,
                                 &MainWindow::languageChanged);
    if (m_settings && m_settings->getStartFullscreen())
        showMaximized();
    else
        show();
    if (model)
        m_connections << connect(model, &CorvidaModel::onOpenRecord, this, &MainWindow::openRecord);
}

MainWindow::~MainWindow() = default;

void MainWindow::addPage(CorvidaBasePage *page, bool iconOnly, QWidget *extra)
{
    m_pageStack->addWidget(page);
    auto *button = new QPushButton(m_topBar);
    button->setObjectName(page->name());
    button->setCheckable(true);
    button->setCursor(Qt::PointingHandCursor);
    auto *box = new QHBoxLayout(button);
    box->setContentsMargins(8, 8, 8, 8);
    auto *icon = new QLabel(button);
    StyleHelper::SetLabelIcon(icon, page->iconPath(), QColor(QStringLiteral("#FFF")),
                              QSize(24, 24));
    box->addWidget(icon);
    if (iconOnly) {
        button->setToolTip(page->name());
        button->setContentsMargins(0, 0, 0, 0);
        box->setContentsMargins(6, 6, 6, 6);
        button->setFixedWidth(38);
    } else {
        auto *label = new QLabel(page->name(), button);
        box->addWidget(label, 1, Qt::AlignLeft | Qt::AlignVCenter);
        const QMargins m = box->contentsMargins();
        int width = m.left() + m.right() + 20 + int(label->sizeHint().width() * 1.1 + 8);
        if (extra)
            width += extra->minimumSize().width() + 4;
        button->setMinimumWidth(width);
    }
    if (extra) {
        extra->setParent(button);
        box->addWidget(extra, 100, Qt::AlignLeft | Qt::AlignTop);
    }
    button->setMinimumHeight(38);
    m_topBarLayout->addWidget(button);
    m_pageButtons.append(button);
    m_connections << connect(button, &QPushButton::clicked, this, [this, page] { showPage(page); });
}

CorvidaBasePage *MainWindow::currentPage() const
{
    return qobject_cast<CorvidaBasePage *>(m_pageStack->currentWidget());
}

QPushButton *MainWindow::pageButton(const CorvidaBasePage *page) const
{
    for (QPushButton *button : m_pageButtons)
        if (page && button->objectName() == page->name())
            return button;
    return nullptr;
}

void MainWindow::showPage(CorvidaBasePage *page)
{
    if (!page)
        return;
    for (const auto &widget : std::as_const(m_headerWidgets)) {
        if (!widget)
            continue;
        widget->hide();
        m_topBarLayout->removeWidget(widget);
    }
    m_headerWidgets.clear();
    m_pageStack->setCurrentWidget(page);
    for (QPushButton *button : std::as_const(m_pageButtons))
        button->setChecked(button->objectName() == page->name());
    for (QWidget *widget : page->headerWidgets()) {
        m_topBarLayout->addWidget(widget);
        m_headerWidgets.append(widget);
        widget->show();
    }
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    // The only key of the window; other keys are left to whoever else wants them.
    if (event->key() == Qt::Key_Home && event->modifiers() == Qt::ControlModifier)
        toggleVirtualDevice();
    else
        event->ignore();
}

void MainWindow::toggleVirtualDevice()
{
    if (!m_settings)
        return;
    const int current = m_settings->getUseVirtualCorvida();
    qDebug().noquote() << (current != 0 ? "Stop using virtual corvida" : "Use virtual corvida");
    int next = current == 0 ? 1 : 0;
    if (AbstractMetaDescription *d =
            m_settings->getPropertyByName(QStringLiteral("UseVirtualCorvida"))) {
        if (d->minimum().isValid())
            next = qMax(next, d->minimum().toInt());
        if (d->maximum().isValid())
            next = qMin(next, d->maximum().toInt());
    }
    if (next != current)
        m_settings->setUseVirtualCorvida(next);
}

Qt::KeyboardModifiers MainWindow::currentModifiers() const
{
    return QGuiApplication::queryKeyboardModifiers();
}

void MainWindow::settingsMenuRequested(const QPoint &pos)
{
    if (!(currentModifiers() & Qt::ControlModifier) || !m_settings)
        return;
    QPushButton *button = pageButton(m_settingsPage);
    QMenu menu(this);
    QAction *debug = menu.addAction(QCoreApplication::translate("Generic", "DebugMode"));
    // Only ever switched on here; the settings page switches it off again.
    connect(debug, &QAction::triggered, this, [this] { m_settings->setDebugMode(true); });
    menu.exec(button ? button->mapToGlobal(pos) : pos);
}

QString MainWindow::bilingual(const QString &language, const char *text, const QString &separator)
{
    const QString running = QCoreApplication::translate("Generic", text);
    const QString other = LanguageContext::instance()->translate(language, "Generic", text);
    return running == other ? running : running + separator + other;
}

void MainWindow::languageChanged()
{
    if (s_languageQuestionOpen || !m_settings)
        return;
    FlagGuard guard(s_languageQuestionOpen);
    LanguageContext *languages = LanguageContext::instance();
    const QString running = languages->currentLanguage();
    const QString wanted = CorvidaSettings::languageName(m_settings->getLanguage());
    if (wanted.isEmpty() || wanted == running)
        return;

    const QString slash = QStringLiteral("/");
    const QString title = bilingual(wanted, QT_TRANSLATE_NOOP("Generic", "Language change"), slash);
    const QString text = bilingual(
        wanted,
        QT_TRANSLATE_NOOP("Generic", "To translate the app to the other language a restart is "
                                     "required. \nRestart now?"),
        QStringLiteral("\r\n\r\n"));
    const QString ok = bilingual(wanted, QT_TRANSLATE_NOOP("Generic", "OK"), slash);
    const QString notNow = bilingual(wanted, QT_TRANSLATE_NOOP("Generic", "Not now"), slash);
    const QString cancel = bilingual(wanted, QT_TRANSLATE_NOOP("Generic", "Cancel"), slash);

    switch (askLanguageChange(title, text, ok, notNow, cancel)) {
    case AppHelper::Confirmed:
        m_settings->save();
        languages->setLanguage(wanted);
        // Keeping an unsaved measurement postpones the restart, as "Not now" does.
        if (mayDiscardUnsaved(true))
            restartApplication();
        break;
    case AppHelper::Declined:
        m_settings->save();
        languages->setLanguage(wanted);
        break;
    case AppHelper::Cancelled:
        m_settings->setLanguage(running.contains(QLatin1String("en"))
                                    ? CorvidaSettings::CorvidaLanguage::en_US
                                    : CorvidaSettings::CorvidaLanguage::ru_RU);
        break;
    }
}

AppHelper::ConfirmResult MainWindow::askLanguageChange(const QString &title, const QString &text,
                                                       const QString &ok, const QString &notNow,
                                                       const QString &cancel)
{
    return AppHelper::confirmDialogWithCancel(this, title, text, ok, notNow, cancel,
                                              QMessageBox::Question);
}

void MainWindow::restartApplication()
{
    AppHelper::restart();
}

bool MainWindow::confirmDiscardUnsaved(const QString &text)
{
    return QMessageBox::question(this, CorvidaDeviceView::tr("Record not saved"), text,
                                 QMessageBox::Discard | QMessageBox::Cancel,
                                 QMessageBox::Cancel) == QMessageBox::Discard;
}

bool MainWindow::mayDiscardUnsaved(bool restarting)
{
    if (m_discardConfirmed || !m_experimentPage)
        return true;
    QStringList units;
    for (const CorvidaDeviceView *panel : m_experimentPage->panels())
        if (panel->hasUnsavedMeasurement())
            units << panel->title();
    if (units.isEmpty())
        return true;
    const QString names = units.join(QStringLiteral(", "));
    QString text;
    if (units.size() == 1)
        text = restarting ? tr("The last measurement of %1 has not been saved. Discard it and "
                               "restart Corvida now?")
                          : tr("The last measurement of %1 has not been saved. Discard it and "
                               "close Corvida?");
    else
        text = restarting ? tr("The last measurements of %1 have not been saved. Discard them "
                               "and restart Corvida now?")
                          : tr("The last measurements of %1 have not been saved. Discard them "
                               "and close Corvida?");
    m_discardConfirmed = confirmDiscardUnsaved(text.arg(names));
    return m_discardConfirmed;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!mayDiscardUnsaved(false)) {
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
}

void MainWindow::openRecord(const QString &path)
{
    if (!QFileInfo::exists(path) || !m_settings)
        return;
    if (m_settings->getLastExperimentPath() != path)
        m_settings->setLastExperimentPath(path);
    if (QPushButton *button = pageButton(m_databasePage))
        button->click();
    m_databasePage->reload();
    m_databasePage->scrollToCurrentRow();
}
