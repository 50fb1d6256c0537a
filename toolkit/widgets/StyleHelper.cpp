#include "toolkit/widgets/StyleHelper.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QRegularExpression>
#include <QStyle>
#include <QSvgRenderer>
#include <QWidget>

StyleHelper::StyleHelper(QObject *parent)
    : QObject(parent)
    , m_desktopDark(desktopIsDark())
{}

StyleHelper *StyleHelper::instance()
{
    static StyleHelper *helper = new StyleHelper(QCoreApplication::instance());
    return helper;
}

bool StyleHelper::desktopIsDark()
{
    // Qt 6.4 has no colour-scheme query; the desktop's palette tells the same thing.
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

bool StyleHelper::readText(const QString &path, QString *text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug().noquote() << "STYLE: cannot read" << path;
        return false;
    }
    *text = QString::fromUtf8(file.readAll());
    return true;
}

bool StyleHelper::addStyleFile(const QString &path)
{
    QString text;
    if (!readText(path, &text))
        return false;
    addStyleSheet(text);
    return true;
}

void StyleHelper::addStyleSheet(const QString &sheet)
{
    m_sheets.append(sheet);
    apply();
}

QHash<QString, QString> StyleHelper::parseVariables(const QString &sheet)
{
    QHash<QString, QString> vars;
    static const QRegularExpression declaration(QStringLiteral("--([\\w-]+)\\s*:\\s*([^;]+);"));
    auto it = declaration.globalMatch(sheet);
    while (it.hasNext()) {
        const auto m = it.next();
        vars.insert(m.captured(1), m.captured(2).trimmed());
    }
    return vars;
}

bool StyleHelper::addThemeFile(const QString &path, const QString &themeName)
{
    QString text;
    if (!readText(path, &text))
        return false;
    m_themes.insert(themeName, parseVariables(text));
    apply();
    return true;
}

void StyleHelper::setColorTheme(ColorThemeEnum theme)
{
    if (theme == m_theme && !m_sheets.isEmpty())
        return;
    m_theme = theme;
    apply();
}

QString StyleHelper::activeThemeName() const
{
    const QString name = StyleColorTheme::themeName(m_theme);
    if (!name.isEmpty())
        return name;
    return m_desktopDark ? QStringLiteral("dark") : QStringLiteral("light");
}

bool StyleHelper::isDark() const
{
    return activeThemeName() == QLatin1String("dark");
}

QString StyleHelper::variable(const QString &name, const QString &fallback) const
{
    QString key = name;
    if (key.startsWith(QLatin1String("--")))
        key = key.mid(2);
    return m_themes.value(activeThemeName()).value(key, fallback);
}

QColor StyleHelper::color(const QString &name, const QColor &fallback) const
{
    const QString text = variable(name);
    const QColor c(text);
    return c.isValid() ? c : fallback;
}

QString StyleHelper::composedStyleSheet() const
{
    return Link(m_sheets.join(QLatin1Char('\n')));
}

QString StyleHelper::Link(const QString &styleSheet)
{
    // Declarations in a theme ("--v-bg: #FFF;") and uses in a sheet look alike; only uses are
    // replaced, so a variable directly followed by a colon is left alone.
    static const QRegularExpression use(
        QStringLiteral("--(v-[A-Za-z0-9-]*[A-Za-z0-9])(?![A-Za-z0-9-]|\\s*:)"));
    const QHash<QString, QString> vars = instance()->m_themes.value(instance()->activeThemeName());
    QString out;
    qsizetype last = 0;
    auto it = use.globalMatch(styleSheet);
    while (it.hasNext()) {
        const auto m = it.next();
        out += QStringView(styleSheet).mid(last, m.capturedStart() - last);
        out += vars.value(m.captured(1), QStringLiteral("transparent"));
        last = m.capturedEnd();
    }
    out += QStringView(styleSheet).mid(last);
    return out;
}

void StyleHelper::apply()
{
    auto *app = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (!app)
        return;
    // The palette carries the theme to what style sheets do not reach (native parts of
    // dialogs, disabled text, selection in views).
    QPalette palette = app->style()->standardPalette();
    const auto set = [&](QPalette::ColorRole role, const char *var) {
        const QColor c = color(QLatin1String(var));
        if (c.isValid())
            palette.setColor(role, c);
    };
    set(QPalette::Window, "v-bg");
    set(QPalette::WindowText, "v-text");
    set(QPalette::Base, "v-sub-bg");
    set(QPalette::AlternateBase, "v-idle-bg");
    set(QPalette::Text, "v-text");
    set(QPalette::Button, "v-idle-bg");
    set(QPalette::ButtonText, "v-text");
    set(QPalette::Highlight, "v-accent");
    set(QPalette::HighlightedText, "v-on-accent");
    set(QPalette::ToolTipBase, "v-sub-bg");
    set(QPalette::ToolTipText, "v-text");
    set(QPalette::PlaceholderText, "v-muted");
    set(QPalette::Link, "v-link");
    const QColor muted = color(QStringLiteral("v-muted"));
    if (muted.isValid()) {
        palette.setColor(QPalette::Disabled, QPalette::Text, muted);
        palette.setColor(QPalette::Disabled, QPalette::WindowText, muted);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, muted);
    }
    app->setPalette(palette);
    app->setStyleSheet(composedStyleSheet());
    for (const auto &entry : std::as_const(m_painted))
        if (entry.first)
            entry.first->update();
    emit themeChanged(isDark());
}

void StyleHelper::paintBackground(QWidget *widget, const QString &variable, const QColor &fallback)
{
    if (!widget)
        return;
    m_painted.append({widget, {variable, fallback}});
    widget->installEventFilter(this);
    widget->update();
}

bool StyleHelper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        for (const auto &entry : std::as_const(m_painted)) {
            if (entry.first != watched)
                continue;
            auto *widget = entry.first.data();
            QPainter painter(widget);
            painter.fillRect(widget->rect(), color(entry.second.first, entry.second.second));
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

QPixmap StyleHelper::tintedPixmap(const QString &path, const QColor &color, const QSize &size,
                                  qreal devicePixelRatio)
{
    QPixmap pixmap(size * devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(path);
    if (!renderer.isValid()) {
        qDebug().noquote() << "STYLE: no icon" << path;
        return pixmap;
    }
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon StyleHelper::tintedIcon(const QString &path, const QColor &color, const QSize &size)
{
    QIcon icon;
    icon.addPixmap(tintedPixmap(path, color, size, 1.0));
    icon.addPixmap(tintedPixmap(path, color, size, 2.0));
    QColor disabled = color;
    disabled.setAlphaF(0.4f);
    icon.addPixmap(tintedPixmap(path, disabled, size, 1.0), QIcon::Disabled);
    return icon;
}

void StyleHelper::SetLabelIcon(QLabel *label, const QString &path, const QColor &color,
                               const QSize &size)
{
    if (!label)
        return;
    label->setFixedSize(size);
    label->setPixmap(tintedPixmap(path, color, size, label->devicePixelRatioF()));
}
