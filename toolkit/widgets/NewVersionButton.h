#pragma once

#include "toolkit/ConnectionHelper.h"
#include "toolkit/VersionInfo.h"

#include <QPushButton>

// Shown only while the version check knows of a newer release; a click opens its page. The
// text is the caller's; the version number follows it.
class NewVersionButton : public QPushButton
{
    Q_OBJECT
public:
    explicit NewVersionButton(const QString &text, QWidget *parent = nullptr);

    static QString buttonStyle();

private slots:
    void showState();

private:
    QString m_text;
    ConnectionHelper m_connections;
};
