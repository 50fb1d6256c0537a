#include "ui/CorvidaBasePage.h"

CorvidaBasePage::CorvidaBasePage(QWidget *parent)
    : QWidget(parent)
{
    // Pages are painted from the style sheet ("CorvidaBasePage { background: ... }").
    setAttribute(Qt::WA_StyledBackground, true);
}

QList<QWidget *> CorvidaBasePage::headerWidgets() const
{
    QList<QWidget *> list;
    for (const auto &w : m_headerWidgets)
        if (w)
            list.append(w);
    return list;
}

void CorvidaBasePage::addHeaderWidget(QWidget *widget)
{
    if (!widget)
        return;
    widget->hide();
    m_headerWidgets.append(widget);
}
