#include "toolkit/widgets/AppHelper.h"

#include <QApplication>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QSysInfo>

QString AppHelper::appVersion()
{
    const QString v = QCoreApplication::applicationVersion();
    return v.isEmpty() ? QStringLiteral(CORVIDA_VERSION) : v;
}

QDate AppHelper::buildDate()
{
    // __DATE__ reads "Nov 21 2026", with a padding space before one-digit days.
    return QLocale::c().toDate(QString::fromLatin1(__DATE__).simplified(),
                               QStringLiteral("MMM d yyyy"));
}

QString AppHelper::OSVersion()
{
    return QSysInfo::prettyProductName();
}

int AppHelper::bitness()
{
    return QSysInfo::WordSize;
}

bool AppHelper::restart(const QStringList &extraArguments)
{
    QStringList arguments = QCoreApplication::arguments();
    const QString program = QCoreApplication::applicationFilePath();
    if (!arguments.isEmpty())
        arguments.removeFirst();
    arguments += extraArguments;
    if (!QProcess::startDetached(program, arguments)) {
        qDebug().noquote() << "RESTART failed to start" << program;
        return false;
    }
    QCoreApplication::quit();
    return true;
}

AppHelper::ConfirmResult
AppHelper::confirmDialogWithCancel(QWidget *parent, const QString &title, const QString &text,
                                   const QString &okText, const QString &noText,
                                   const QString &cancelText, QMessageBox::Icon icon)
{
    QMessageBox box(icon, title, text, QMessageBox::NoButton, parent);
    QPushButton *ok = box.addButton(okText, QMessageBox::AcceptRole);
    QPushButton *no = box.addButton(noText, QMessageBox::NoRole);
    QPushButton *cancel = box.addButton(cancelText, QMessageBox::RejectRole);
    box.setDefaultButton(ok);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == ok)
        return Confirmed;
    if (box.clickedButton() == no)
        return Declined;
    return Cancelled;
}
