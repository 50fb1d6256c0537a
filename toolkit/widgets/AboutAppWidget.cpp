#include "toolkit/widgets/AboutAppWidget.h"

#include "toolkit/widgets/AppHelper.h"
#include "toolkit/widgets/NewVersionButton.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QHostAddress>
#include <QLabel>
#include <QNetworkInterface>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace {
QString buttonStyle(const char *background, const char *hover, const char *text)
{
    return QStringLiteral("QPushButton { color: %3; background: %1; text-decoration: none; "
                          "border-radius: 4px; padding: 4px 8px; } "
                          "QPushButton:hover { background: %2; }")
        .arg(QLatin1String(background), QLatin1String(hover), QLatin1String(text));
}

QString htmlLink(const QString &url, const QString &text)
{
    return QStringLiteral("<a href=\"%1\">%2</a>").arg(url.toHtmlEscaped(), text.toHtmlEscaped());
}

QLabel *sectionTitle(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("aboutSection"));
    return label;
}
} // namespace

AboutAppWidget::AboutAppWidget(const Info &info, QWidget *parent)
    : QWidget(parent)
    , m_info(info)
{
    setObjectName(QStringLiteral("aboutApp"));
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    build();
    m_connections << connect(StyleHelper::instance(), &StyleHelper::themeChanged, this,
                             [this] { build(); });
}

bool AboutAppWidget::isBirthday(const QDate &birthday, const QDate &today)
{
    if (!birthday.isValid() || !today.isValid())
        return false;
    if (birthday.month() == 2 && birthday.day() == 29 && !QDate::isLeapYear(today.year()))
        return today.month() == 2 && today.day() == 28;
    return birthday.month() == today.month() && birthday.day() == today.day();
}

QString AboutAppWidget::ipAddress()
{
    for (const QHostAddress &address : QNetworkInterface::allAddresses())
        if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback())
            return address.toString();
    return {};
}

QWidget *AboutAppWidget::linkButton(const QString &text, const QString &tip, const QString &url,
                                    const QString &style)
{
    auto *button = new QPushButton(text, m_body);
    button->setToolTip(tip);
    button->setStyleSheet(style);
    button->setCursor(Qt::PointingHandCursor);
    connect(button, &QPushButton::clicked, button, [url] { QDesktopServices::openUrl(QUrl(url)); });
    return button;
}

void AboutAppWidget::build()
{
    if (m_body) {
        layout()->removeWidget(m_body);
        m_body->deleteLater();
    }
    m_body = new QWidget(this);
    layout()->addWidget(m_body);
    auto *box = new QVBoxLayout(m_body);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(10);

    auto *head = new QHBoxLayout;
    head->setSpacing(16);
    if (!m_info.iconPath.isEmpty()) {
        auto *icon = new QLabel(m_body);
        StyleHelper::SetLabelIcon(icon, m_info.iconPath,
                                  StyleHelper::instance()->color(QStringLiteral("v-accent")),
                                  QSize(64, 64));
        head->addWidget(icon, 0, Qt::AlignTop);
    }
    auto *identity = new QVBoxLayout;
    auto *name = new QLabel(m_info.appName, m_body);
    name->setObjectName(QStringLiteral("aboutAppName"));
    identity->addWidget(name);
    identity->addWidget(new QLabel(tr("Version") + QLatin1Char(' ') + m_info.version, m_body));
    QString build;
    if (m_info.buildDate.isValid())
        build = tr("built on") + QLatin1Char(' ') +
                m_info.buildDate.toString(QStringLiteral("yyyy-MM-dd")) + QStringLiteral(", ");
    build += QString::number(AppHelper::bitness()) + tr("-bit") + QLatin1Char(' ') +
             AppHelper::OSVersion();
    auto *buildLabel = new QLabel(build, m_body);
    buildLabel->setObjectName(QStringLiteral("aboutMuted"));
    buildLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    identity->addWidget(buildLabel);
    if (!m_info.maker.isEmpty() || !m_info.licence.isEmpty()) {
        QStringList lines;
        if (!m_info.maker.isEmpty())
            lines << QStringLiteral("© ") + m_info.maker;
        if (!m_info.licence.isEmpty())
            lines << tr("Licence") + QStringLiteral(": ") + m_info.licence;
        auto *legal = new QLabel(lines.join(QStringLiteral("\n")), m_body);
        legal->setObjectName(QStringLiteral("aboutLegal"));
        legal->setTextInteractionFlags(Qt::TextSelectableByMouse);
        identity->addWidget(legal);
    }
    identity->addStretch(1);
    head->addLayout(identity, 1);
    box->addLayout(head);

    auto *links = new QHBoxLayout;
    links->setSpacing(8);
    if (!m_info.manualUrl.isEmpty())
        links->addWidget(linkButton(tr("Manual"), tr("Open app manual"), m_info.manualUrl,
                                    buttonStyle("#159", "#048", "#FFF")));
    if (!m_info.apiUrl.isEmpty())
        links->addWidget(linkButton(tr("Open API in browser"), QString(), m_info.apiUrl,
                                    buttonStyle("#c9d950", "#b5c439", "#000")));
    if (!m_info.changelogUrl.isEmpty())
        links->addWidget(linkButton(tr("ChangeLog"), tr("Open change log"), m_info.changelogUrl,
                                    buttonStyle("#ff9900", "#cc6600", "#000")));
    links->addWidget(new NewVersionButton(
        QCoreApplication::translate("Generic", "New version") + QLatin1Char(' '), m_body));
    links->addStretch(1);
    box->addLayout(links);

    const QString ip = ipAddress();
    auto *ipLabel = new QLabel(
        tr("IP address") + QStringLiteral(": ") + (ip.isEmpty() ? tr("none") : ip), m_body);
    ipLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->addWidget(ipLabel);

    // The maker is named beside the version; "Feedback" stands only over a way to reach them.
    QStringList contactLines;
    for (const QString &line : m_info.contacts) {
        if (line.startsWith(QLatin1String("mailto:")))
            contactLines.append(htmlLink(line, line.mid(7)));
        else if (line.startsWith(QLatin1String("http")))
            contactLines.append(htmlLink(line, line));
        else
            contactLines.append(line.toHtmlEscaped());
    }
    if (!contactLines.isEmpty()) {
        box->addSpacing(6);
        box->addWidget(sectionTitle(tr("Feedback"), m_body));
        auto *contacts = new QLabel(contactLines.join(QStringLiteral("<br>")), m_body);
        contacts->setTextFormat(Qt::RichText);
        contacts->setOpenExternalLinks(true);
        contacts->setTextInteractionFlags(Qt::TextBrowserInteraction);
        box->addWidget(contacts);
    }

    if (!m_info.developers.isEmpty()) {
        box->addSpacing(6);
        box->addWidget(sectionTitle(tr("Developers"), m_body));
        const QDate today = QDate::currentDate();
        for (const Developer &developer : m_info.developers) {
            auto *row = new QHBoxLayout;
            row->setSpacing(6);
            auto *label = new QLabel(developer.name, m_body);
            row->addWidget(label);
            if (isBirthday(developer.birthday, today)) {
                auto *balloon = new QLabel(m_body);
                balloon->setObjectName(QStringLiteral("birthdayBalloon"));
                balloon->setFixedSize(20, 20);
                balloon->setPixmap(StyleHelper::tintedPixmap(
                    QStringLiteral(":/resources/images/balloon.svg"), QColor(0xE5, 0x39, 0x35),
                    QSize(20, 20), devicePixelRatioF()));
                row->addWidget(balloon);
            }
            row->addStretch(1);
            box->addLayout(row);
        }
    }
    box->addStretch(1);
}

void AboutAppWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        build();
    QWidget::changeEvent(event);
}
