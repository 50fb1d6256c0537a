#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QPointer>
#include <QWidget>

// Base of the main window's pages. The window reads three things of a page: its display name
// (also the object name of its button), the resource path of its icon, and the widgets it
// wants in the window's top bar while it is the current page.
class CorvidaBasePage : public QWidget
{
    Q_OBJECT
public:
    explicit CorvidaBasePage(QWidget *parent = nullptr);

    virtual QString name() const = 0;
    virtual QString iconPath() const = 0;
    QList<QWidget *> headerWidgets() const;

protected:
    // The page keeps ownership until the window takes the widget into its top bar; a widget
    // stays hidden while its page is not current.
    void addHeaderWidget(QWidget *widget);

    ConnectionHelper m_connections;

private:
    QList<QPointer<QWidget>> m_headerWidgets;
};
