#include "ui/PageExperimentMulti.h"

#include "device/BaseCorvidaDevice.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

PageExperimentMulti::PageExperimentMulti(QWidget *parent)
    : CorvidaBasePage(parent)
{
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(24, 20, 24, 20);
    box->setSpacing(12);
    auto *title = new QLabel(tr("Measuring units"), this);
    title->setObjectName(QStringLiteral("pageTitle"));
    box->addWidget(title);
    auto *notice = new QLabel(tr("Live measurement is not available in this version yet. The "
                                 "units the program finds are listed below; they cannot be "
                                 "turned on or measured from this window."),
                              this);
    notice->setObjectName(QStringLiteral("notice"));
    notice->setWordWrap(true);
    box->addWidget(notice);
    m_devices = new QListWidget(this);
    m_devices->setObjectName(QStringLiteral("deviceList"));
    m_devices->setSelectionMode(QAbstractItemView::NoSelection);
    m_devices->setFocusPolicy(Qt::NoFocus);
    box->addWidget(m_devices, 1);
    m_empty = new QLabel(tr("No devices found"), this);
    m_empty->setObjectName(QStringLiteral("subtext"));
    m_empty->setStyleSheet(QStringLiteral("font-size: 20px"));
    m_empty->setAlignment(Qt::AlignCenter);
    box->addWidget(m_empty, 1);

    if (CorvidaModel *model = CorvidaModel::instance()) {
        m_connections << connect(model, &CorvidaModel::onCorvadaConnected, this,
                                 &PageExperimentMulti::refreshDevices);
        m_connections << connect(model, &CorvidaModel::onCorvadaDisconnected, this,
                                 &PageExperimentMulti::refreshDevices);
    }
    refreshDevices();
}

QString PageExperimentMulti::name() const
{
    return tr("Experiment");
}

QString PageExperimentMulti::iconPath() const
{
    return QStringLiteral(":/resources/images/pressure.svg");
}

void PageExperimentMulti::refreshDevices()
{
    m_devices->clear();
    CorvidaModel *model = CorvidaModel::instance();
    const QList<BaseCorvidaDevice *> devices =
        model ? model->devices() : QList<BaseCorvidaDevice *>();
    for (BaseCorvidaDevice *device : devices) {
        if (!device->isConnected())
            continue;
        QString text =
            (qobject_cast<VirtualCorvidaDevice *>(device) ? tr("Simulated unit") : tr("Unit")) +
            QLatin1Char(' ') + device->deviceId();
        if (!device->serialNumber().isEmpty() && device->serialNumber() != text)
            text += QStringLiteral("  ·  ") + tr("serial number") + QLatin1Char(' ') +
                    device->serialNumber();
        m_devices->addItem(text);
    }
    const bool any = m_devices->count() > 0;
    m_devices->setVisible(any);
    m_empty->setVisible(!any);
}
