#include "ui/WorkProgress.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace {
constexpr int kShowAfterMs = 400;
}

WorkProgress::WorkProgress(QWidget *parent, const QString &label)
    : m_dialog(new QProgressDialog(parent))
{
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setLabelText(label);
    m_dialog->setCancelButtonText(QCoreApplication::translate("Generic", "Cancel"));
    m_dialog->setMinimumDuration(kShowAfterMs);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setValue(0);
}

WorkProgress::~WorkProgress()
{
    delete m_dialog;
}

std::function<bool(int, int)> WorkProgress::callback()
{
    return [this](int done, int total) {
        if (!m_dialog)
            return true;
        if (m_dialog->maximum() != total)
            m_dialog->setMaximum(std::max(total, 1));
        m_dialog->setValue(std::min(done, m_dialog->maximum()));
        // Until the dialog shows, the window takes no input but timers and data still run.
        if (!m_dialog->isVisible())
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return !m_dialog->wasCanceled();
    };
}

bool WorkProgress::wasCancelled() const
{
    return m_dialog && m_dialog->wasCanceled();
}
