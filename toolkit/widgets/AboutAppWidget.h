#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QWidget>

class QLabel;
class QVBoxLayout;

// The about panel: the program's identity and build, links to its manual, API and change log,
// the version check, the computer's address, the maker's contacts and the developers. What it
// shows is handed in; a link or block without data is left out rather than shown empty.
class AboutAppWidget : public QWidget
{
    Q_OBJECT
public:
    struct Developer {
        QString name;
        QDate birthday; // only month and day matter
    };
    struct Info {
        QString appName;
        QString version;
        QDate buildDate;
        QString iconPath;
        QString manualUrl;
        QString apiUrl;
        QString changelogUrl;
        QString maker;
        QString licence;
        QStringList contacts; // lines; "mailto:" and "http" lines become links
        QList<Developer> developers;
    };

    explicit AboutAppWidget(const Info &info, QWidget *parent = nullptr);

    // Whether today is the developer's birthday (29 February counts on 28 February in other
    // years).
    static bool isBirthday(const QDate &birthday, const QDate &today);
    // The first IPv4 address of the computer that is not loopback; empty when there is none.
    static QString ipAddress();

protected:
    void changeEvent(QEvent *event) override;

private:
    void build();
    QWidget *linkButton(const QString &text, const QString &tip, const QString &url,
                        const QString &style);

    Info m_info;
    QWidget *m_body = nullptr;
    ConnectionHelper m_connections;
};
