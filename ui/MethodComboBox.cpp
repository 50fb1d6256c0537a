#include "ui/MethodComboBox.h"

#include "analysis/CorvidaExperiment.h"

#include <QEvent>
#include <QSignalBlocker>

MethodComboBox::MethodComboBox(QWidget *parent)
    : QComboBox(parent)
{
    addItem(QString(), QString());
    addItem(QString(), CorvidaExperiment::refinedMethod());
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    retranslate();
    connect(this, &QComboBox::activated, this, [this] { emit methodChosen(method()); });
}

QString MethodComboBox::method() const
{
    return currentData().toString();
}

void MethodComboBox::setMethod(const QString &method)
{
    const QSignalBlocker block(this);
    setCurrentIndex(method == CorvidaExperiment::refinedMethod() ? 1 : 0);
}

void MethodComboBox::changeEvent(QEvent *event)
{
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}

void MethodComboBox::retranslate()
{
    setItemText(0, CorvidaExperiment::methodText(false));
    setItemText(1, CorvidaExperiment::methodText(true));
    setItemData(0,
                tr("The long-standing way: SBP at the first beat of the returning regular pulse, "
                   "DBP where the growth of the pulse amplitude bends into its plateau"),
                Qt::ToolTipRole);
    setItemData(1,
                tr("A straight line through the rising pulse amplitudes: SBP where it leaves the "
                   "occluded level, DBP where it reaches the plateau"),
                Qt::ToolTipRole);
}
