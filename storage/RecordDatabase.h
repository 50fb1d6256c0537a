#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class CorvidaExperiment;
class CorvidaSettings;

// The records folder seen as a database: every ".edf" file in it is a record, with the ".exp"
// file of the same base name holding its properties when there is one. There is no index; the
// list is rebuilt from the folder. The records page and the command-line tool share this class;
// it shows nothing itself and returns the texts a caller may want to show.
//
// Listing reads only the ".exp" files and the header of each ".edf" file (see EDFHeaderCheck),
// never the series, so a folder of thousands of records lists at once. A record whose files
// cannot be read is still listed, with damage() saying what is wrong: hiding it would look like a
// lost measurement. So is the recording an interrupted save left under "<name>.edf.part".
class RecordDatabase : public QObject
{
    Q_OBJECT
public:
    enum Column {
        TitleColumn = 0,
        RodentColumn,
        CommentColumn,
        PressureColumn,
        MAPColumn,
        HeartRateColumn,
        // Which way placed the markers: "Documented" or "Refined".
        MethodColumn,
        ColumnCount
    };
    Q_ENUM(Column)

    // What of a listed record cannot be read. An interrupted save leaves its recording under a
    // name ending in ".edf.part"; it is listed as such, complete (recoverable) or not.
    enum class Damage { None, Recording, Properties, Unfinished, UnfinishedIncomplete };
    Q_ENUM(Damage)

    // Called with the work done so far and the whole; returning false cancels.
    using Progress = std::function<bool(int done, int total)>;

    struct ImportResult {
        QStringList imported; // the new ".edf" paths in the records folder, in the given order
        QStringList notes;    // one per file that had to take a new name
        QStringList failed;   // chosen files that were not imported
        bool cancelled = false;
        // The notes as one message, separated by an empty line; empty when nothing was renamed.
        QString notesText() const { return notes.join(QStringLiteral("\n\n")); }
    };

    // `settings` (optional) gives the saved sort and receives the sort and the import folder.
    explicit RecordDatabase(const QString &recordsFolder, CorvidaSettings *settings = nullptr,
                            QObject *parent = nullptr);
    ~RecordDatabase() override;

    QString recordsFolder() const { return m_folder; }

    // Lists the folder again and sorts by the current column and order. Records still in the
    // folder keep their objects, so a page showing one is not left with a dangling pointer;
    // records that are gone are deleted. False when cancelled, and the list stays as it was.
    bool reload(const Progress &progress = {});

    int count() const { return int(m_entries.size()); }
    CorvidaExperiment *record(int row) const;
    QList<CorvidaExperiment *> records() const;
    QString edfPath(int row) const;
    Damage damage(int row) const;
    // A translated sentence for a damaged row; empty for a sound one.
    QString damageText(int row) const;
    static QString damageText(Damage damage);
    // An interrupted save's recording rather than a record.
    bool isUnfinished(int row) const;

    // Gives the complete recording of an interrupted save (its ".edf.part" path) the name it
    // was to have, or the next free one (" (2)", " (3)", ...) when that is taken. Nothing is
    // ever overwritten; the ".exp" file written by the same save stays with it when the name is
    // its own. False with `error` when the file is incomplete, unreadable or cannot be renamed.
    // Reloads on success.
    bool recoverUnfinished(const QString &partPath, QString *recoveredPath = nullptr,
                           QString *error = nullptr);
    // The row of a record given by its ".edf" or ".exp" path, or -1.
    int rowOf(const QString &path) const;
    int rowOf(const CorvidaExperiment *record) const;
    // The given records in the order of the list (those not listed are dropped).
    QList<CorvidaExperiment *> inListOrder(const QList<CorvidaExperiment *> &records) const;

    // The list's columns: Title, Rodent, Comment, Pressure, MAP, Heart rate, Method.
    static QStringList columnHeaders();
    static QString cellText(const CorvidaExperiment *record, int column);
    QString text(int row, int column) const;
    // The record's base name, shared by its two files ("?" when it has no file).
    static QString recordName(const CorvidaExperiment *record);

    // Sorts the list; the column and order are kept for later reloads and stored in the
    // settings, which are saved at once.
    void sort(int column, Qt::SortOrder order);
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    // Copies each file into the folder with its ".exp" companion. A name already taken (in any
    // case) becomes "<base> (2).edf", "<base> (3).edf" and so on, with a note for the user.
    // Stores the source folder as the last import folder and reloads.
    ImportResult importRecords(const QStringList &files, const Progress &progress = {});
    static QString importDialogTitle();
    static QString importFilter();

    // Moves each record's ".edf" and ".exp" files (given by either path) to the system's trash;
    // a file that is not there is skipped. An interrupted save's ".edf.part" goes alone. Reloads.
    // False with `error` naming the files that could not be moved; the others are moved all the
    // same.
    bool removeRecords(const QStringList &paths, QString *error = nullptr);
    static QString removeTitle();
    static QString removeQuestion(int count);

    // Finds each record's blood pressure anew, dropping the markers it had, and saves its
    // properties. A record whose recording cannot be read is left untouched, with a line in
    // `errors`. False when a record failed or the work was cancelled.
    static bool recalculate(const QList<CorvidaExperiment *> &records,
                            QStringList *errors = nullptr, const Progress &progress = {});
    static QString recalculateTitle();
    static QString recalculateQuestion();

signals:
    // The list was rebuilt; rows and record pointers of records no longer listed are stale.
    void reloaded();

private:
    struct Entry {
        CorvidaExperiment *record = nullptr;
        QString edfPath;
        Damage damage = Damage::None;
        bool unfinished = false;
        qint64 edfSize = -1;
        QDateTime edfModified;
        qint64 expSize = -1;
        QDateTime expModified;
    };

    void sortEntries();

    QString m_folder;
    CorvidaSettings *m_settings = nullptr;
    QList<Entry> m_entries;
    int m_sortColumn = TitleColumn;
    Qt::SortOrder m_sortOrder = Qt::DescendingOrder;
};
