#pragma once

#include <QPointer>
#include <QString>
#include <functional>

class QProgressDialog;
class QWidget;

// A cancellable progress dialog for work on many records (listing a large folder, importing,
// exporting). It appears only when the work lasts more than a moment, and while the work runs
// the event loop keeps turning, so measurements in progress on other units go on.
class WorkProgress
{
public:
    WorkProgress(QWidget *parent, const QString &label);
    ~WorkProgress();
    WorkProgress(const WorkProgress &) = delete;
    WorkProgress &operator=(const WorkProgress &) = delete;

    // Called with the work done so far and the whole; false once the user cancelled.
    std::function<bool(int, int)> callback();
    bool wasCancelled() const;

private:
    QPointer<QProgressDialog> m_dialog;
};
