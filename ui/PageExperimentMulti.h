#pragma once

#include "ui/CorvidaBasePage.h"

class QLabel;
class QListWidget;

// The first page. Live measurement panels are not part of this build yet: until they are, the
// page says so plainly and lists the units the program currently sees.
class PageExperimentMulti : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageExperimentMulti(QWidget *parent = nullptr);

    QString name() const override;
    QString iconPath() const override;

public slots:
    void refreshDevices();

signals:
    // A device panel saved a new record into the records folder.
    void newRecordSaved();

private:
    QListWidget *m_devices;
    QLabel *m_empty;
};
