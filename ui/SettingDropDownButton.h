#pragma once

#include "settings/VTSettings.h"

#include <QColor>
#include <QPointer>
#include <QPushButton>

class PropertyListControl;
class QFrame;

// A button with an icon and a text that opens a small pop-up holding the editor of one setting,
// without the default button and the headers of the settings page. Pages use it for settings
// the operator changes while looking at the data (the viewers' scales, the pressure limits), so
// the value is one click away and the change shows at once.
class SettingDropDownButton : public QPushButton
{
    Q_OBJECT
public:
    SettingDropDownButton(const QString &iconPath, const QString &text, VTSettings *settings,
                          const QString &propertyName, QWidget *parent = nullptr);

    QString propertyName() const { return m_propertyName; }
    // The pop-up and the editor in it are made when first needed (a window holds several of
    // these buttons, and building their editors up front slowed the start); the pop-up is
    // hidden until clicked.
    QFrame *popup();
    PropertyListControl *editor();

    // The icon's colour. Without one the icon takes the button's text colour and follows
    // palette and theme changes.
    void setIconColor(const QColor &color);

    // Icon only, the text as tooltip: for a bar that is short of room.
    void setCompact(bool compact);
    bool isCompact() const { return m_compact; }
    // The width the button wants with its text shown, compact or not.
    int widthWithText() const;

public slots:
    void showPopup();

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateIcon();

    QString m_text;
    QString m_iconPath;
    QString m_propertyName;
    QColor m_iconColor;
    QColor m_drawnColor;
    bool m_compact = false;
    QPointer<VTSettings> m_settings;
    QFrame *m_popup = nullptr;
    PropertyListControl *m_editor = nullptr;
};
