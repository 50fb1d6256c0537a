#pragma once

#include <QDialog>
#include <QPointer>

class ComCorvidaDevice;
class QDateTimeEdit;
class QLineEdit;
class QPushButton;

// The service dialog that writes a unit's serial number and production date into the unit.
class SerialNumberDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr int MaxSerialLength = 32;
    // Units made before this year do not exist; an older stored date means none was written.
    static constexpr int FirstProductionYear = 2004;

    explicit SerialNumberDialog(ComCorvidaDevice *device, QWidget *parent = nullptr);

    QLineEdit *serialEditor() const { return m_serial; }
    QDateTimeEdit *dateEditor() const { return m_date; }
    QPushButton *writeButton() const { return m_write; }

public slots:
    // Writes both values into the unit; closes the dialog when the unit took them.
    bool write();

protected:
    virtual void showWriteError();

private:
    QPointer<ComCorvidaDevice> m_device;
    QLineEdit *m_serial;
    QDateTimeEdit *m_date;
    QPushButton *m_write;
};
