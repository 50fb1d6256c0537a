#pragma once

#include "toolkit/ConnectionHelper.h"
#include "toolkit/widgets/AppHelper.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>

class CorvidaBasePage;
class CorvidaSettings;
class PageAboutApp;
class PageDatabase;
class PageExperimentMulti;
class PageSettings;
class QHBoxLayout;
class QPushButton;
class QStackedLayout;
class SettingsFileNotice;

// The program's one window: a top bar of page buttons over a stack of pages. It also owns
// three program-wide reactions: the question after a language change, Ctrl+Home for the
// simulated unit, and the hidden (Ctrl + right click) switch for debug mode.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // Builds the window and shows it.
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    CorvidaBasePage *currentPage() const;
    QList<QPushButton *> pageButtons() const { return m_pageButtons; }
    QPushButton *pageButton(const CorvidaBasePage *page) const;
    QPushButton *newRecordDot() const { return m_newRecordDot; }
    QWidget *topBar() const { return m_topBar; }
    PageExperimentMulti *experimentPage() const { return m_experimentPage; }
    PageDatabase *databasePage() const { return m_databasePage; }
    PageSettings *settingsPage() const { return m_settingsPage; }
    PageAboutApp *aboutPage() const { return m_aboutPage; }
    // Says, once, when the settings file could not be read or saved.
    SettingsFileNotice *settingsNotice() const { return m_settingsNotice; }

public slots:
    void showPage(CorvidaBasePage *page);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    // Closing with a measurement that was not saved asks first; No keeps the window open.
    void closeEvent(QCloseEvent *event) override;

    // The three-way language question; a test answers it instead of a person.
    virtual AppHelper::ConfirmResult askLanguageChange(const QString &title, const QString &text,
                                                       const QString &ok, const QString &notNow,
                                                       const QString &cancel);
    virtual void restartApplication();
    // Asked before closing or restarting would lose measurements that were not saved; true to
    // discard them. The same question as a panel's before a new recording.
    virtual bool confirmDiscardUnsaved(const QString &text);
    // Which modifiers are held right now (the debug menu opens only with Ctrl).
    virtual Qt::KeyboardModifiers currentModifiers() const;

private slots:
    void languageChanged();
    void openRecord(const QString &path);
    void settingsMenuRequested(const QPoint &pos);

private:
    void addPage(CorvidaBasePage *page, bool iconOnly, QWidget *extra = nullptr);
    void toggleVirtualDevice();
    // False when there are unsaved measurements and the operator keeps them.
    bool mayDiscardUnsaved(bool restarting);
    // The text in the running language, and in the other language when it reads differently.
    QString bilingual(const QString &language, const char *text, const QString &separator);

    CorvidaSettings *m_settings = nullptr;
    ConnectionHelper m_connections;
    QWidget *m_topBar = nullptr;
    QHBoxLayout *m_topBarLayout = nullptr;
    QStackedLayout *m_pageStack = nullptr;
    QList<QPushButton *> m_pageButtons;
    QList<QPointer<QWidget>> m_headerWidgets;
    QPushButton *m_newRecordDot = nullptr;
    PageExperimentMulti *m_experimentPage = nullptr;
    PageDatabase *m_databasePage = nullptr;
    PageSettings *m_settingsPage = nullptr;
    PageAboutApp *m_aboutPage = nullptr;
    SettingsFileNotice *m_settingsNotice = nullptr;
    // Set once the operator agreed to lose unsaved measurements, so the close that follows a
    // restart does not ask again.
    bool m_discardConfirmed = false;
};
