#include "ui/PageAboutApp.h"

#include "toolkit/widgets/AppHelper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QUrl>
#include <QVBoxLayout>

PageAboutApp::PageAboutApp(QWidget *parent)
    : CorvidaBasePage(parent)
{
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(24, 20, 24, 20);
    auto *card = new QFrame(this);
    card->setObjectName(QStringLiteral("card"));
    card->setMinimumWidth(560);
    card->setMaximumWidth(720);
    auto *cardBox = new QVBoxLayout(card);
    cardBox->setContentsMargins(24, 20, 24, 20);
    cardBox->addWidget(new AboutAppWidget(productInfo(), card));
    box->addWidget(card, 0, Qt::AlignHCenter | Qt::AlignTop);
    box->addStretch(1);
}

QString PageAboutApp::name() const
{
    return tr("About");
}

QString PageAboutApp::iconPath() const
{
    return QStringLiteral(":/icons/information.svg");
}

QString PageAboutApp::manualUrl()
{
    // The package puts the manual beside the other documentation; a build folder has the HTML
    // page the build made. The Markdown is the last resort: a browser shows it as plain text.
    const QDir program(QCoreApplication::applicationDirPath());
    for (const QString &relative :
         {QStringLiteral("../share/doc/corvida/manual.html"), QStringLiteral("docs/manual.html"),
          QStringLiteral("../docs/manual.html"), QStringLiteral("../share/doc/corvida/manual.md"),
          QStringLiteral("../docs/manual.md"), QStringLiteral("../../docs/manual.md")}) {
        const QString path = program.absoluteFilePath(relative);
        if (QFile::exists(path))
            return QUrl::fromLocalFile(QDir::cleanPath(path)).toString();
    }
    return QString();
}

AboutAppWidget::Info PageAboutApp::productInfo()
{
    AboutAppWidget::Info info;
    info.appName = QCoreApplication::translate("Generic", "Corvida");
    info.version = AppHelper::appVersion();
    info.buildDate = AppHelper::buildDate();
    info.iconPath = QStringLiteral(":/resources/images/pressure.svg");
    info.maker = QStringLiteral("Quorvex");
    info.licence = tr("proprietary, all rights reserved");
    info.manualUrl = manualUrl();
    // The web address and contact are set when the program is built for a customer
    // (CORVIDA_WEBSITE, CORVIDA_CONTACT); the panel leaves out what it has no data for, as it
    // does the API and change-log pages and the developer list, which the product does not have.
#ifdef CORVIDA_WEBSITE
    if (!QStringLiteral(CORVIDA_WEBSITE).isEmpty())
        info.contacts << QStringLiteral(CORVIDA_WEBSITE);
#endif
#ifdef CORVIDA_CONTACT
    if (!QStringLiteral(CORVIDA_CONTACT).isEmpty())
        info.contacts << QStringLiteral("mailto:") + QStringLiteral(CORVIDA_CONTACT);
#endif
    return info;
}
