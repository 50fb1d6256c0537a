#pragma once

#include "toolkit/widgets/AboutAppWidget.h"
#include "ui/CorvidaBasePage.h"

// The program's identity, build and version state, and who makes it.
class PageAboutApp : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageAboutApp(QWidget *parent = nullptr);

    QString name() const override;
    QString iconPath() const override;

    // What the about panel shows for this program.
    static AboutAppWidget::Info productInfo();
    // A file URL of the manual that comes with the program; empty when there is none.
    static QString manualUrl();
};
