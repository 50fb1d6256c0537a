#pragma once

#include <QDate>
#include <QMessageBox>
#include <QString>
#include <QStringList>

class QWidget;

// Application-level helpers: identity of the running program, restarting it, and the
// three-way question.
class AppHelper
{
public:
    enum ConfirmResult { Confirmed, Declined, Cancelled };

    static QString appVersion();
    static QDate buildDate();
    // "Debian GNU/Linux 12 (bookworm)", "Windows 10 Version 22H2".
    static QString OSVersion();
    // 64 or 32.
    static int bitness();
    // Starts a new copy of the program with the same arguments (plus the extra ones) and ends
    // this one through the event loop, so the window and the model are destroyed in order.
    static bool restart(const QStringList &extraArguments = {});

    // Asks with three buttons: the first confirms, the second declines, the third (and closing
    // the dialog) cancels.
    static ConfirmResult confirmDialogWithCancel(QWidget *parent, const QString &title,
                                                 const QString &text, const QString &okText,
                                                 const QString &noText, const QString &cancelText,
                                                 QMessageBox::Icon icon = QMessageBox::Question);
};
