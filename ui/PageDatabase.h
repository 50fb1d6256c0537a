#pragma once

#include "ui/CorvidaBasePage.h"

class QLabel;
class QListWidget;

// The second page. Reviewing, recalculating and exporting records are not part of this build
// yet: until they are, the page lists the recordings of the records folder and can show the
// folder, and says what is missing.
class PageDatabase : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageDatabase(QWidget *parent = nullptr);

    QString name() const override;
    QString iconPath() const override;

    // Set when a record was saved while the page was not shown; the next show reloads.
    void setNeedsReload(bool needed) { m_needsReload = needed; }
    bool needsReload() const { return m_needsReload; }
    // Path of the record selected in the list; empty without a selection.
    QString currentRecordPath() const;

public slots:
    // Lists the folder again and selects the record named by "LastExperimentPath".
    void reload();
    void scrollToCurrentRow();
    void openRecordsFolder();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QListWidget *m_list;
    QLabel *m_empty;
    bool m_needsReload = true;
};
