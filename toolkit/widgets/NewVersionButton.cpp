#include "toolkit/widgets/NewVersionButton.h"

#include "toolkit/VersionChecker.h"

#include <QDesktopServices>
#include <QUrl>

NewVersionButton::NewVersionButton(const QString &text, QWidget *parent)
    : QPushButton(parent)
    , m_text(text)
{
    setObjectName(QStringLiteral("newVersionButton"));
    setCursor(Qt::PointingHandCursor);
    setStyleSheet(buttonStyle());
    VersionChecker *checker = VersionChecker::instance();
    m_connections << connect(checker, &VersionChecker::checked, this, &NewVersionButton::showState);
    m_connections << connect(this, &QPushButton::clicked, this, [] {
        const VersionInfo info = VersionChecker::instance()->LastVersion();
        if (!info.link.isEmpty())
            QDesktopServices::openUrl(QUrl(info.link));
    });
    showState();
}

QString NewVersionButton::buttonStyle()
{
    return QStringLiteral("QPushButton { color: #FFF; background: #0BE; text-decoration: none; "
                          "border-radius: 4px; padding: 4px 8px; } "
                          "QPushButton:hover { background: #0AD; }");
}

void NewVersionButton::showState()
{
    VersionChecker *checker = VersionChecker::instance();
    const VersionInfo info = checker->LastVersion();
    setText(m_text + info.version);
    QString tip = info.info;
    if (!info.date.isEmpty())
        tip = info.date + (tip.isEmpty() ? QString() : QStringLiteral("\n") + tip);
    setToolTip(tip);
    setVisible(checker->newVersionAvailable());
}
