#pragma once

#include "ui/CorvidaBasePage.h"

#include <QList>
#include <QPointer>

class BaseCorvidaDevice;
class CorvidaDeviceView;
class CorvidaSettings;
class QGridLayout;
class QLabel;
class QPushButton;
class QTabWidget;
class SettingDropDownButton;
class SuggestionsWidget;

// The first page: one device panel per measuring unit, in a grid or in tabs, with buttons that
// act on all units at once, the pressure limits and display scales, and the experiment tips.
class PageExperimentMulti : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageExperimentMulti(QWidget *parent = nullptr);
    ~PageExperimentMulti() override;

    QString name() const override;
    QString iconPath() const override;

    QList<CorvidaDeviceView *> panels() const { return m_panels; }
    CorvidaDeviceView *panelOf(const BaseCorvidaDevice *device) const;

    QWidget *gridContainer() const { return m_gridBox; }
    QGridLayout *gridLayout() const { return m_grid; }
    QWidget *tabsContainer() const { return m_tabsBox; }
    QTabWidget *tabWidget() const { return m_tabs; }
    QLabel *emptyLabel() const { return m_empty; }
    QPushButton *gridButton() const { return m_gridButton; }
    QPushButton *tabsButton() const { return m_tabsButton; }
    QPushButton *startAllButton() const { return m_startAll; }
    QPushButton *stopAllButton() const { return m_stopAll; }
    QPushButton *measureAllButton() const { return m_measureAll; }
    QPushButton *abortAllButton() const { return m_abortAll; }
    QPushButton *sessionAllButton() const { return m_sessionAll; }
    QPushButton *suggestionsButton() const { return m_suggestionsButton; }
    SuggestionsWidget *suggestionsWidget() const { return m_suggestions; }
    QList<SettingDropDownButton *> dropDowns() const { return m_dropDowns; }

public slots:
    void arrangePanels();
    void startAll();
    void stopAll();
    void measureAll();
    void abortAll();
    void startSessionAll();

signals:
    // A device panel saved a new record into the records folder.
    void newRecordSaved();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildHeader();
    void onDeviceConnected(const QString &id);
    void onDeviceDisconnected(const QString &id);
    void addPanel(BaseCorvidaDevice *device);
    void dropPanel(CorvidaDeviceView *panel);
    void setSuggestionsShown(bool shown);
    void retranslate();
    void fitHeader();
    void setHeaderIconsOnly(bool iconsOnly);
    void tintIcons();
    bool isTabsView() const;

    CorvidaSettings *m_settings = nullptr;
    QList<CorvidaDeviceView *> m_panels;
    QWidget *m_gridBox = nullptr;
    QGridLayout *m_grid = nullptr;
    QWidget *m_tabsBox = nullptr;
    QTabWidget *m_tabs = nullptr;
    QLabel *m_empty = nullptr;
    QPushButton *m_gridButton = nullptr;
    QPushButton *m_tabsButton = nullptr;
    QPushButton *m_startAll = nullptr;
    QPushButton *m_stopAll = nullptr;
    QPushButton *m_measureAll = nullptr;
    QPushButton *m_abortAll = nullptr;
    QPushButton *m_sessionAll = nullptr;
    QPushButton *m_suggestionsButton = nullptr;
    QList<SettingDropDownButton *> m_dropDowns;
    SuggestionsWidget *m_suggestions = nullptr;
    // Owned by the window's top bar once it shows there, which may delete it first.
    QPointer<QWidget> m_header;
    bool m_headerIconsOnly = false;
    int m_headerFullWidth = 0;
    int m_gridRows = 0;
    int m_gridColumns = 0;
};
