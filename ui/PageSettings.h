#pragma once

#include "ui/CorvidaBasePage.h"

class MethodComboBox;
class PropertyListControl;

// Every visible application setting, edited in place; changes are saved as they are made.
class PageSettings : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageSettings(QWidget *parent = nullptr);

    QString name() const override;
    QString iconPath() const override;
    PropertyListControl *propertyList() const { return m_list; }
    // How new records place their markers (the "DetectionMethod" setting).
    MethodComboBox *detectionMethodBox() const { return m_method; }

private:
    PropertyListControl *m_list;
    MethodComboBox *m_method;
};
