#pragma once

#include <QColor>
#include <QPushButton>

class PropertyListControl;
class QFrame;
class VTSettings;

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
    // The pop-up and the editor in it exist from the start; the pop-up is hidden until clicked.
    QFrame *popup() const { return m_popup; }
    PropertyListControl *editor() const { return m_editor; }

    // The icon's colour. Without one the icon takes the button's text colour and follows
    // palette and theme changes.
    void setIconColor(const QColor &color);

public slots:
    void showPopup();

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateIcon();

    QString m_iconPath;
    QString m_propertyName;
    QColor m_iconColor;
    QColor m_drawnColor;
    QFrame *m_popup;
    PropertyListControl *m_editor;
};
