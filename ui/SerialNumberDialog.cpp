#include "ui/SerialNumberDialog.h"

#include "device/ComCorvidaDevice.h"

#include <QDateTimeEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

SerialNumberDialog::SerialNumberDialog(ComCorvidaDevice *device, QWidget *parent)
    : QDialog(parent)
    , m_device(device)
{
    setWindowTitle(QStringLiteral("SN"));
    auto *form = new QFormLayout(this);
    m_serial = new QLineEdit(this);
    m_serial->setMaxLength(MaxSerialLength);
    m_serial->setText(device ? device->serialNumber() : QString());
    form->addRow(QStringLiteral("SN"), m_serial);

    QDateTime stored = device ? device->productionDate() : QDateTime();
    if (!stored.isValid() || stored.date().year() < FirstProductionYear)
        stored = QDateTime::currentDateTime();
    auto *dateRow = new QHBoxLayout();
    m_date = new QDateTimeEdit(stored, this);
    m_date->setCalendarPopup(true);
    m_date->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    dateRow->addWidget(m_date, 1);
    auto *today = new QPushButton(tr("Today"), this);
    connect(today, &QPushButton::clicked, this,
            [this] { m_date->setDateTime(QDateTime::currentDateTime()); });
    dateRow->addWidget(today);
    form->addRow(tr("Production date"), dateRow);

    m_write = new QPushButton(tr("Write"), this);
    m_write->setDefault(true);
    connect(m_write, &QPushButton::clicked, this, &SerialNumberDialog::write);
    form->addRow(m_write);
}

bool SerialNumberDialog::write()
{
    if (!m_device || !m_device->writeSerialNumber(m_serial->text().trimmed(), m_date->dateTime())) {
        showWriteError();
        return false;
    }
    accept();
    return true;
}

void SerialNumberDialog::showWriteError()
{
    QMessageBox::warning(this, windowTitle(),
                         tr("The serial number could not be written: the unit is not connected."));
}
