#include "ui/SettingDropDownButton.h"

#include "toolkit/widgets/PropertyListControl.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QEvent>
#include <QFrame>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>
#include <QVBoxLayout>
#include <algorithm>

SettingDropDownButton::SettingDropDownButton(const QString &iconPath, const QString &text,
                                             VTSettings *settings, const QString &propertyName,
                                             QWidget *parent)
    : QPushButton(text, parent)
    , m_text(text)
    , m_iconPath(iconPath)
    , m_propertyName(propertyName)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("settingDropDown"));
    setCursor(Qt::PointingHandCursor);
    setIconSize(QSize(18, 18));
    updateIcon();
    connect(this, &QPushButton::clicked, this, &SettingDropDownButton::showPopup);
}

QFrame *SettingDropDownButton::popup()
{
    if (m_popup)
        return m_popup;
    m_popup = new QFrame(this, Qt::Popup);
    m_popup->setObjectName(QStringLiteral("settingDropDownPopup"));
    m_popup->setFrameShape(QFrame::StyledPanel);
    auto *box = new QVBoxLayout(m_popup);
    box->setContentsMargins(10, 10, 10, 10);
    m_editor = new PropertyListControl(m_settings, QString(), m_popup);
    box->addWidget(m_editor);
    m_editor->setShowDefaultButtons(false);
    m_editor->setShowHeaders(false);
    m_editor->setPropertyFilter({m_propertyName});
    return m_popup;
}

PropertyListControl *SettingDropDownButton::editor()
{
    popup();
    return m_editor;
}

void SettingDropDownButton::setIconColor(const QColor &color)
{
    m_iconColor = color;
    updateIcon();
}

void SettingDropDownButton::setCompact(bool compact)
{
    if (compact == m_compact)
        return;
    m_compact = compact;
    setText(compact ? QString() : m_text);
    setToolTip(compact ? m_text : QString());
}

int SettingDropDownButton::widthWithText() const
{
    // What QPushButton::sizeHint() measures, with the text whether it is shown or not.
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text = m_text;
    const QSize text = fontMetrics().size(Qt::TextShowMnemonic, m_text);
    const QSize contents(iconSize().width() + 4 + text.width(),
                         std::max(iconSize().height(), text.height()));
    return style()->sizeFromContents(QStyle::CT_PushButton, &option, contents, this).width();
}

void SettingDropDownButton::showPopup()
{
    popup();
    m_popup->adjustSize();
    const QSize size = m_popup->sizeHint().expandedTo(QSize(width(), 0));
    m_popup->resize(size);
    // Below the button, or above it when the screen ends first; never off the screen's sides.
    QPoint pos = mapToGlobal(QPoint(0, height()));
    if (const QScreen *s = screen()) {
        const QRect area = s->availableGeometry();
        if (pos.y() + size.height() > area.bottom())
            pos.setY(mapToGlobal(QPoint(0, 0)).y() - size.height());
        pos.setX(
            std::clamp(pos.x(), area.left(), std::max(area.left(), area.right() - size.width())));
    }
    m_popup->move(pos);
    m_popup->show();
}

void SettingDropDownButton::changeEvent(QEvent *event)
{
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        updateIcon();
}

void SettingDropDownButton::updateIcon()
{
    const QColor color =
        m_iconColor.isValid() ? m_iconColor : palette().color(QPalette::ButtonText);
    // Setting the icon can itself bring a style change; draw only when the colour changed.
    if (color == m_drawnColor)
        return;
    m_drawnColor = color;
    setIcon(StyleHelper::tintedIcon(m_iconPath, color, iconSize()));
}
