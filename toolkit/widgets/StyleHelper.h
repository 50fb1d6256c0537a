#pragma once

#include "toolkit/StyleColorTheme.h"

#include <QColor>
#include <QHash>
#include <QIcon>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPixmap>
#include <QPointer>

class QLabel;
class QWidget;

// The program's look. Style sheets name colours by style variables ("--v-bg", "--v-panel-bg",
// "--v-idle-bg", "--v-sub-bg", "--v-accent", and the others a theme defines), written where a
// value goes: "background: --v-panel-bg;". A theme sheet gives their values, one
// "--v-name: value;" per line. The active theme is light or dark, or follows the desktop
// ("System").
class StyleHelper : public QObject
{
    Q_OBJECT
public:
    using ColorThemeEnum = StyleColorTheme::ColorThemeEnum;

    static StyleHelper *instance();

    // Sheets are applied in the order they were added.
    bool addStyleFile(const QString &path);
    bool addThemeFile(const QString &path, const QString &themeName);
    void addStyleSheet(const QString &sheet);

    void setColorTheme(ColorThemeEnum theme);
    ColorThemeEnum colorTheme() const { return m_theme; }
    // The theme in force: "light" or "dark" (System resolved against the desktop).
    QString activeThemeName() const;
    bool isDark() const;
    // Whether the desktop prefers a dark look: a window colour darker than its text.
    static bool desktopIsDark();

    // A style variable of the active theme (with or without the leading "--"); fallback when
    // the theme does not define it.
    QString variable(const QString &name, const QString &fallback = QString()) const;
    QColor color(const QString &name, const QColor &fallback = QColor()) const;
    // The composed sheet as it is handed to the application.
    QString composedStyleSheet() const;

    // Paints the widget's background from a style variable, following theme changes.
    void paintBackground(QWidget *widget, const QString &variable,
                         const QColor &fallback = Qt::transparent);

    // An SVG icon drawn in one colour (its alpha kept), for every icon of the interface.
    static QPixmap tintedPixmap(const QString &path, const QColor &color, const QSize &size,
                                qreal devicePixelRatio = 1.0);
    static QIcon tintedIcon(const QString &path, const QColor &color,
                            const QSize &size = QSize(24, 24));
    static void SetLabelIcon(QLabel *label, const QString &path, const QColor &color,
                             const QSize &size = QSize(24, 24));
    // The sheet with every style variable replaced by its value in the active theme; for
    // widgets that carry a sheet of their own. An unknown variable becomes "transparent".
    static QString Link(const QString &styleSheet);

signals:
    void themeChanged(bool dark);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit StyleHelper(QObject *parent = nullptr);
    void apply();
    static QHash<QString, QString> parseVariables(const QString &sheet);
    static bool readText(const QString &path, QString *text);

    QList<QString> m_sheets;
    QHash<QString, QHash<QString, QString>> m_themes;
    ColorThemeEnum m_theme = StyleColorTheme::System;
    bool m_desktopDark = false;
    QList<QPair<QPointer<QWidget>, QPair<QString, QColor>>> m_painted;
};
