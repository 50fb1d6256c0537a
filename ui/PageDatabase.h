#pragma once

#include "ui/CorvidaBasePage.h"

#include <QPointer>
#include <QStringList>

class CorvidaExperiment;
class CorvidaSettings;
class QMenu;
class QSplitter;
class QTableView;
class RecordDatabase;
class RecordPreview;
class RecordTableModel;
class SessionListView;
class AnimalView;
class QTabWidget;

// The second page: the records of the records folder in a table on the left, the selected
// record (or several laid over one another) on the right. From here records are renamed by
// rodent and comment, recalculated, imported, removed and exported.
//
// Every question and file dialog goes through a protected virtual method, so a test can answer
// in place of a person.
class PageDatabase : public CorvidaBasePage
{
    Q_OBJECT
public:
    explicit PageDatabase(QWidget *parent = nullptr);
    ~PageDatabase() override;

    QString name() const override;
    QString iconPath() const override;

    // Set when a record was saved while the page was not shown; the next show reloads.
    void setNeedsReload(bool needed) { m_needsReload = needed; }
    bool needsReload() const { return m_needsReload; }
    // Path of the current record when it is selected, else of the first selected one; empty
    // without a selection.
    QString currentRecordPath() const;
    // The selected records' ".edf" paths and the records themselves, in list order.
    QStringList selectedRecordPaths() const;
    QList<CorvidaExperiment *> selectedRecords() const;
    // Selects the records given by their ".edf" or ".exp" paths; the first becomes current.
    void selectRecords(const QStringList &paths);

    QTableView *table() const { return m_table; }
    RecordTableModel *model() const { return m_model; }
    RecordPreview *preview() const { return m_preview; }
    QSplitter *splitter() const { return m_splitter; }
    // The records list and the sessions view, side by side as tabs.
    QTabWidget *listTabs() const { return m_listTabs; }
    SessionListView *sessionView() const { return m_sessionView; }
    AnimalView *animalView() const { return m_animalView; }

    // The table's context menu for the selection; null without one. The caller owns it.
    QMenu *createContextMenu();

public slots:
    // Lists the folder again. Selects the record named by "LastExperimentPath" when it is
    // listed, and otherwise keeps the selection.
    void reload();
    void scrollToCurrentRow();
    // Shows what is selected on the right.
    void manageSelection();
    void importRecords();
    void removeExperiments(const QStringList &paths);
    // Keeps the complete recording of an interrupted save (".edf.part") as a record under a
    // free name and selects it.
    void recoverUnfinished(const QString &partPath);
    void recalcExperiment(CorvidaExperiment *exp);
    void recalculateSelected();
    void exportSelected();
    void openRecordsFolder();

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

    // A yes/no question; true for yes.
    virtual bool ask(const QString &title, const QString &text);
    virtual void warn(const QString &title, const QString &text);
    virtual QStringList askImportFiles(const QString &title, const QString &folder,
                                       const QString &filter);
    // The path to export to, empty when cancelled; `filter` comes in preselected and goes out
    // as chosen.
    virtual QString askExportPath(const QString &title, const QString &suggestedPath,
                                  const QString &filters, QString *filter);
    virtual void showInFolder(const QString &path);
    virtual void openFolder(const QString &folder);
    virtual void openFile(const QString &path);
    // Where to write a printed report, empty when cancelled.
    virtual QString askReportPath(const QString &suggestedPath);

private:
    void recalculate(const QList<CorvidaExperiment *> &records);
    QList<CorvidaExperiment *> shownRecords() const;
    void printReport(const QString &suggestedName);
    void onSelectionChanged();
    void applySplitterRatio();
    // Shows the Method column once a listed record uses the refined way, and gives the list
    // the room its columns need, up to half the page.
    void fitColumns(bool listChanged);
    void storeSplitterRatio();

    QPointer<CorvidaSettings> m_settings;
    RecordDatabase *m_database;
    RecordTableModel *m_model;
    QTableView *m_table;
    RecordPreview *m_preview;
    QSplitter *m_splitter;
    QTabWidget *m_listTabs = nullptr;
    SessionListView *m_sessionView = nullptr;
    AnimalView *m_animalView = nullptr;
    bool m_needsReload = true;
    // Set while the page itself rebuilds the selection, which is no choice of the user's.
    bool m_restoringSelection = false;
    bool m_splitterApplied = false;
};
