#include "ui/PageDatabase.h"

#include "analysis/CorvidaExperiment.h"
#include "device/CorvidaModel.h"
#include "session/SessionCatalog.h"
#include "session/SessionVerdictKeeper.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"
#include "storage/RecordExport.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/AnimalView.h"
#include "ui/FileBrowser.h"
#include "ui/RecordPreview.h"
#include "ui/RecordTableModel.h"
#include "ui/SessionListView.h"
#include "ui/WorkProgress.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {
QPushButton *headerButton(const QString &icon, const QString &tip, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setIcon(StyleHelper::tintedIcon(icon, Qt::white));
    button->setIconSize(QSize(24, 24));
    button->setFixedSize(38, 38);
    button->setToolTip(tip);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

// A white symbol on a dark square, readable on the menu in either theme.
QIcon menuIcon(const QString &path)
{
    constexpr int kSize = 48; // drawn at twice the shown size for sharp high-density screens
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x30, 0x30, 0x30));
    painter.drawRoundedRect(pixmap.rect(), 8, 8);
    painter.drawPixmap(8, 8, StyleHelper::tintedPixmap(path, Qt::white, QSize(32, 32)));
    painter.end();
    pixmap.setDevicePixelRatio(2.0);
    return QIcon(pixmap);
}
} // namespace

PageDatabase::PageDatabase(QWidget *parent)
    : CorvidaBasePage(parent)
{
    CorvidaModel *app = CorvidaModel::instance();
    m_settings = app ? app->settings() : nullptr;
    m_database = new RecordDatabase(app ? app->recordsFolder() : QString(), m_settings, this);
    // A session cycle whose marker is moved here is judged again.
    new SessionVerdictKeeper(m_database, m_settings, this);
    m_model = new RecordTableModel(m_database, this);
    m_connections << connect(
        m_model, &RecordTableModel::saveFailed, this,
        [this](const QString &path) { warn(tr("Records"), RecordExport::errorText(path)); });

    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("recordTable"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::SelectedClicked);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_table->setWordWrap(false);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    // Room for the title and the three other headers, also in Russian (fitColumns).
    m_table->setMinimumWidth(500);
    QHeaderView *header = m_table->horizontalHeader();
    // Every column shows its title and values whole, but for long comments (the tooltip holds
    // all of a comment); a narrow window scrolls the table sideways rather than cut "118/69" to
    // "118...".
    for (int c = 0; c < RecordDatabase::ColumnCount; ++c)
        header->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(RecordDatabase::CommentColumn, QHeaderView::Interactive);
    header->setStretchLastSection(true);
    const auto listChanged = [this] { fitColumns(true); };
    m_connections << connect(m_model, &QAbstractItemModel::modelReset, this, listChanged);
    m_connections << connect(m_model, &QAbstractItemModel::dataChanged, this, listChanged);
    m_connections << connect(m_model, &QAbstractItemModel::rowsInserted, this, listChanged);
    fitColumns(true);
    // Sorting starts from the stored column and order; clicking a header sorts and stores.
    header->setSortIndicator(m_database->sortColumn(), m_database->sortOrder());
    m_table->setSortingEnabled(true);
    m_connections << connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged,
                             this, &PageDatabase::onSelectionChanged);
    m_connections << connect(m_table, &QWidget::customContextMenuRequested, this,
                             [this](const QPoint &pos) {
                                 QMenu *menu = createContextMenu();
                                 if (!menu)
                                     return;
                                 menu->exec(m_table->viewport()->mapToGlobal(pos));
                                 delete menu;
                             });
    auto *removeKey = new QAction(m_table);
    removeKey->setShortcut(QKeySequence::Delete);
    removeKey->setShortcutContext(Qt::WidgetShortcut);
    m_table->addAction(removeKey);
    m_connections << connect(removeKey, &QAction::triggered, this,
                             [this] { removeExperiments(selectedRecordPaths()); });

    m_preview = new RecordPreview(m_settings, this);
    m_connections << connect(m_preview, &RecordPreview::recalculateRequested, this,
                             &PageDatabase::recalculateSelected);
    m_connections << connect(m_preview, &RecordPreview::exportRequested, this,
                             &PageDatabase::exportSelected);

    m_sessionView = new SessionListView(m_database, m_settings, this);
    m_connections << connect(m_sessionView, &SessionListView::cyclesSelected, this,
                             [this](const QList<CorvidaExperiment *> &cycles) {
                                 // The animal view follows the animal of the chosen session.
                                 if (!cycles.isEmpty())
                                     m_animalView->setRodent(cycles.first()->getRodent());
                                 if (m_listTabs->currentWidget() != m_table)
                                     m_preview->showRecords(cycles);
                             });
    m_connections << connect(
        m_sessionView, &SessionListView::saveFailed, this,
        [this](const QString &path) { warn(tr("Records"), RecordExport::errorText(path)); });
    m_listTabs = new QTabWidget(this);
    m_listTabs->setObjectName(QStringLiteral("recordListTabs"));
    m_listTabs->addTab(m_table, tr("Records"));
    m_listTabs->addTab(m_sessionView, tr("Sessions"));
    m_animalView = new AnimalView(m_sessionView->model(), this);
    m_listTabs->addTab(m_animalView, tr("Animal"));
    m_connections << connect(m_sessionView, &SessionListView::reportRequested, this,
                             &PageDatabase::printReport);
    m_connections << connect(m_animalView, &AnimalView::reportRequested, this,
                             &PageDatabase::printReport);
    // The preview shows what the tab in front has selected.
    m_connections << connect(m_listTabs, &QTabWidget::currentChanged, this,
                             [this] { manageSelection(); });

    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_listTabs);
    m_splitter->addWidget(m_preview);
    m_connections << connect(m_splitter, &QSplitter::splitterMoved, this,
                             &PageDatabase::storeSplitterRatio);
    applySplitterRatio();

    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(8, 8, 8, 8);
    box->addWidget(m_splitter);

    QPushButton *reloadButton =
        headerButton(QStringLiteral(":/icons/refresh.svg"), tr("Reload records"), this);
    m_connections << connect(reloadButton, &QPushButton::clicked, this, &PageDatabase::reload);
    addHeaderWidget(reloadButton);
    QPushButton *folderButton =
        headerButton(QStringLiteral(":/icons/folder.svg"), tr("Open in explorer"), this);
    m_connections << connect(folderButton, &QPushButton::clicked, this,
                             &PageDatabase::openRecordsFolder);
    addHeaderWidget(folderButton);
    QPushButton *importButton = headerButton(QStringLiteral(":/resources/images/add_record.svg"),
                                             tr("Import record"), this);
    m_connections << connect(importButton, &QPushButton::clicked, this,
                             &PageDatabase::importRecords);
    addHeaderWidget(importButton);

    manageSelection();
}

PageDatabase::~PageDatabase()
{
    // The viewers hold records the database owns; let them go first.
    m_restoringSelection = true;
    m_preview->showRecords({});
}

QString PageDatabase::name() const
{
    return tr("Records");
}

QString PageDatabase::iconPath() const
{
    return QStringLiteral(":/resources/images/database.svg");
}

QString PageDatabase::currentRecordPath() const
{
    const QModelIndex current = m_table->currentIndex();
    if (current.isValid() && m_table->selectionModel()->isRowSelected(current.row()))
        return m_model->path(current.row());
    const QStringList paths = selectedRecordPaths();
    return paths.isEmpty() ? QString() : paths.first();
}

QStringList PageDatabase::selectedRecordPaths() const
{
    QList<int> rows;
    for (const QModelIndex &i : m_table->selectionModel()->selectedRows())
        rows << i.row();
    std::sort(rows.begin(), rows.end());
    QStringList paths;
    for (int row : std::as_const(rows))
        paths << m_model->path(row);
    return paths;
}

QList<CorvidaExperiment *> PageDatabase::selectedRecords() const
{
    QList<CorvidaExperiment *> records;
    for (const QString &path : selectedRecordPaths()) {
        const int row = m_model->rowOf(path);
        // An interrupted save is no record to recalculate or export until it is recovered.
        if (m_database->isUnfinished(row))
            continue;
        if (CorvidaExperiment *r = m_model->record(row))
            records << r;
    }
    return records;
}

void PageDatabase::selectRecords(const QStringList &paths)
{
    QItemSelection selection;
    QModelIndex first;
    for (const QString &path : paths) {
        const int row = m_model->rowOf(path);
        if (row < 0)
            continue;
        const QModelIndex index = m_model->index(row, 0);
        if (!first.isValid())
            first = index;
        selection.select(index, index);
    }
    QItemSelectionModel *model = m_table->selectionModel();
    if (first.isValid())
        model->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    model->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QMenu *PageDatabase::createContextMenu()
{
    const QStringList paths = selectedRecordPaths();
    if (paths.isEmpty())
        return nullptr;
    auto *menu = new QMenu(this);
    const QIcon remove = menuIcon(QStringLiteral(":/icons/delete.svg"));
    if (paths.size() == 1 && m_database->isUnfinished(m_model->rowOf(paths.first()))) {
        const QString path = paths.first();
        QAction *recover = menu->addAction(
            menuIcon(QStringLiteral(":/resources/images/add_record.svg")), tr("Recover recording"),
            this, [this, path] { recoverUnfinished(path); });
        recover->setEnabled(m_database->damage(m_model->rowOf(path)) ==
                            RecordDatabase::Damage::Unfinished);
        menu->addAction(menuIcon(QStringLiteral(":/icons/folder.svg")), tr("Show in folder"), this,
                        [this, path] { showInFolder(path); });
        menu->addAction(remove, tr("Remove experiment"), this,
                        [this, paths] { removeExperiments(paths); });
    } else if (paths.size() == 1) {
        const QString path = paths.first();
        QPointer<CorvidaExperiment> record = m_model->record(m_model->rowOf(path));
        menu->addAction(menuIcon(QStringLiteral(":/resources/images/calculate.svg")),
                        tr("Recalculate experiment"), this, [this, record] {
                            if (record)
                                recalcExperiment(record);
                        });
        menu->addAction(menuIcon(QStringLiteral(":/icons/folder.svg")), tr("Show in folder"), this,
                        [this, path] { showInFolder(path); });
        menu->addAction(remove, tr("Remove experiment"), this,
                        [this, paths] { removeExperiments(paths); });
    } else {
        menu->addAction(remove, tr("Remove experiments"), this,
                        [this, paths] { removeExperiments(paths); });
    }
    return menu;
}

void PageDatabase::reload()
{
    m_needsReload = false;
    if (!CorvidaModel::instance() || m_database->recordsFolder().isEmpty())
        return;
    QStringList wanted = selectedRecordPaths();
    const QString last = m_settings ? m_settings->getLastExperimentPath() : QString();
    m_restoringSelection = true;
    {
        WorkProgress progress(this, tr("Reading the records folder"));
        m_model->reload(progress.callback());
    }
    if (!last.isEmpty() && m_model->rowOf(last) >= 0)
        wanted = {last};
    selectRecords(wanted);
    m_restoringSelection = false;
    manageSelection();
    scrollToCurrentRow();
}

void PageDatabase::scrollToCurrentRow()
{
    const QModelIndex current = m_table->currentIndex();
    if (!current.isValid())
        return;
    // Right after a reload the view has not laid out the new rows yet and would scroll by the
    // old ones.
    m_table->doItemsLayout();
    m_table->scrollTo(current, QAbstractItemView::PositionAtCenter);
}

void PageDatabase::manageSelection()
{
    if (m_listTabs && m_listTabs->currentWidget() != m_table) {
        m_preview->showRecords(m_sessionView->currentCycles());
        return;
    }
    const QStringList paths = selectedRecordPaths();
    QList<CorvidaExperiment *> records;
    QList<CorvidaExperiment *> readable;
    QString problem;
    for (const QString &path : paths) {
        const int row = m_model->rowOf(path);
        CorvidaExperiment *r = m_model->record(row);
        if (!r)
            continue;
        records << r;
        const RecordDatabase::Damage damage = m_database->damage(row);
        if (damage != RecordDatabase::Damage::None && damage != RecordDatabase::Damage::Properties)
            problem = m_database->damageText(row);
        else
            readable << r;
    }
    // A recording that cannot be read has nothing to draw; say so for one, leave it out of an
    // overlay of several.
    if (records.size() == 1)
        m_preview->showRecords(records, problem);
    else
        m_preview->showRecords(readable.isEmpty() ? records.mid(0, 1) : readable, problem);
}

void PageDatabase::onSelectionChanged()
{
    if (m_restoringSelection)
        return;
    manageSelection();
    // The record looked at last is the one to come back to, after a reload or at the next
    // start. Several selected are no single record: a reload then keeps them as they are.
    if (m_settings) {
        const QStringList paths = selectedRecordPaths();
        m_settings->setLastExperimentPath(paths.size() == 1 ? paths.first() : QString());
    }
}

void PageDatabase::importRecords()
{
    if (m_database->recordsFolder().isEmpty())
        return;
    const QString folder = m_settings ? m_settings->getLastImportFolder() : QString();
    const QStringList files =
        askImportFiles(RecordDatabase::importDialogTitle(), folder, RecordDatabase::importFilter());
    if (files.isEmpty())
        return;
    m_restoringSelection = true;
    RecordDatabase::ImportResult result;
    {
        WorkProgress progress(this, tr("Importing records"));
        result = m_model->importRecords(files, progress.callback());
    }
    m_restoringSelection = false;
    // The new records are what the user wants to see next.
    selectRecords(result.imported);
    manageSelection();
    scrollToCurrentRow();
    if (!result.notes.isEmpty())
        warn(tr("Import warning"), result.notesText());
}

void PageDatabase::removeExperiments(const QStringList &paths)
{
    if (paths.isEmpty() ||
        !ask(RecordDatabase::removeTitle(), RecordDatabase::removeQuestion(int(paths.size()))))
        return;
    QString error;
    const bool removed = m_model->removeRecords(paths, &error);
    manageSelection();
    if (!removed)
        warn(RecordDatabase::removeTitle(), error);
}

void PageDatabase::recoverUnfinished(const QString &partPath)
{
    QString recovered;
    QString error;
    m_restoringSelection = true;
    const bool ok = m_model->recoverUnfinished(partPath, &recovered, &error);
    m_restoringSelection = false;
    if (!ok) {
        warn(tr("Recover recording"), error);
        return;
    }
    selectRecords({recovered});
    manageSelection();
    scrollToCurrentRow();
}

void PageDatabase::recalcExperiment(CorvidaExperiment *exp)
{
    if (exp)
        recalculate({exp});
}

void PageDatabase::recalculateSelected()
{
    recalculate(shownRecords());
}

void PageDatabase::printReport(const QString &suggestedName)
{
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty() || !QDir(documents).exists())
        documents = QDir::homePath();
    const QString path = askReportPath(QDir(documents).filePath(suggestedName));
    if (path.isEmpty())
        return;
    QString error;
    const bool written = m_listTabs->currentWidget() == m_animalView
                             ? m_animalView->printReport(path, m_settings, &error)
                             : m_sessionView->printReport(path, &error);
    if (!written) {
        warn(tr("Print report"), error.isEmpty() ? RecordExport::errorText(path) : error);
        return;
    }
    openFile(path);
}

QString PageDatabase::askReportPath(const QString &suggestedPath)
{
    return QFileDialog::getSaveFileName(this, tr("Print report"), suggestedPath,
                                        tr("PDF files (*.pdf)"));
}

QList<CorvidaExperiment *> PageDatabase::shownRecords() const
{
    // The preview's buttons act on what it shows: with the sessions in front, a session's cycles.
    if (m_listTabs && m_listTabs->currentWidget() != m_table)
        return m_sessionView->currentCycles();
    return selectedRecords();
}

void PageDatabase::recalculate(const QList<CorvidaExperiment *> &records)
{
    if (records.isEmpty() ||
        !ask(RecordDatabase::recalculateTitle(), RecordDatabase::recalculateQuestion()))
        return;
    QStringList errors;
    {
        WorkProgress progress(this, tr("Recalculating records"));
        RecordDatabase::recalculate(records, &errors, progress.callback());
    }
    // The rows follow their records; the plots are drawn once, now.
    m_preview->updateGraphics();
    if (!errors.isEmpty())
        warn(RecordDatabase::recalculateTitle(), errors.join(QLatin1Char('\n')));
}

void PageDatabase::exportSelected()
{
    const QList<CorvidaExperiment *> records = shownRecords();
    if (records.isEmpty())
        return;
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty() || !QDir(documents).exists())
        documents = QDir::homePath();
    const QString folder = RecordExport::startFolder(m_settings, documents);
    QString filter = RecordExport::preselectedFilter(m_settings);
    QString path =
        askExportPath(tr("Export"), QDir(folder).filePath(RecordExport::suggestedFileName(records)),
                      RecordExport::filterString(), &filter);
    if (path.isEmpty())
        return;
    if (!RecordExport::filters().contains(filter))
        filter = RecordExport::preselectedFilter(m_settings);
    path = RecordExport::withSuffix(path, filter);
    RecordExport::storeChoice(m_settings, path, filter);

    QString error;
    RecordExport::Result result;
    {
        WorkProgress progress(this, tr("Exporting records"));
        // Records measured in sessions bring their sessions' results along.
        const SessionStatistics statistics(m_settings ? SessionStatistics::limitsFrom(*m_settings)
                                                      : SessionStatistics::Limits());
        result = RecordExport::write(records, path, filter, &error, progress.callback(),
                                     SessionCatalog::exportSheets(records, statistics));
    }
    if (result == RecordExport::Result::Failed) {
        warn(tr("Export"), error);
        return;
    }
    if (result != RecordExport::Result::Written)
        return;
    switch (RecordExport::afterExport(m_settings)) {
    case RecordExport::AfterExport::OpenFile:
        openFile(path);
        break;
    case RecordExport::AfterExport::ShowInFolder:
        showInFolder(path);
        break;
    case RecordExport::AfterExport::Nothing:
        break;
    }
}

void PageDatabase::openRecordsFolder()
{
    if (!m_database->recordsFolder().isEmpty())
        openFolder(m_database->recordsFolder());
}

void PageDatabase::showEvent(QShowEvent *event)
{
    CorvidaBasePage::showEvent(event);
    if (!m_splitterApplied && m_splitter->width() > 0) {
        applySplitterRatio();
        m_splitterApplied = true;
    }
    if (m_needsReload)
        reload();
}

bool PageDatabase::ask(const QString &title, const QString &text)
{
    return QMessageBox::question(this, title, text, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void PageDatabase::warn(const QString &title, const QString &text)
{
    QMessageBox::warning(this, title, text);
}

QStringList PageDatabase::askImportFiles(const QString &title, const QString &folder,
                                         const QString &filter)
{
    return QFileDialog::getOpenFileNames(this, title, folder, filter);
}

QString PageDatabase::askExportPath(const QString &title, const QString &suggestedPath,
                                    const QString &filters, QString *filter)
{
    return QFileDialog::getSaveFileName(this, title, suggestedPath, filters, filter);
}

void PageDatabase::showInFolder(const QString &path)
{
    FileBrowser::showInFolder(path);
}

void PageDatabase::openFolder(const QString &folder)
{
    FileBrowser::openFolder(folder);
}

void PageDatabase::openFile(const QString &path)
{
    FileBrowser::openFile(path);
}

void PageDatabase::fitColumns(bool listChanged)
{
    bool used = false;
    for (int row = 0; row < m_database->count() && !used; ++row) {
        const CorvidaExperiment *record = m_database->record(row);
        used = record && record->usesRefinedMethod();
    }
    m_table->setColumnHidden(RecordDatabase::MethodColumn, !used);
    const QHeaderView *header = m_table->horizontalHeader();
    const QAbstractItemView *view = m_table;
    const int comment = RecordDatabase::CommentColumn;
    // The comment's width follows the records listed, not the window, so a width the user
    // dragged it to lasts until the list changes.
    if (listChanged) {
        m_table->setColumnWidth(comment, std::max(header->sectionSizeHint(comment),
                                                  std::min(view->sizeHintForColumn(comment), 240)));
    }
    // As wide as the columns need, up to half the page; never under 500 pixels.
    int needed = m_table->frameWidth() * 2 + m_table->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < RecordDatabase::ColumnCount; ++c) {
        if (!m_table->isColumnHidden(c))
            needed += c == comment
                          ? m_table->columnWidth(c)
                          : std::max(header->sectionSizeHint(c), view->sizeHintForColumn(c));
    }
    m_table->setMinimumWidth(std::max(500, std::min(needed, width() / 2)));
}

void PageDatabase::resizeEvent(QResizeEvent *event)
{
    CorvidaBasePage::resizeEvent(event);
    fitColumns(false);
}

void PageDatabase::applySplitterRatio()
{
    const double stored = m_settings ? m_settings->getDatabaseSplitterRatio() : 0.2;
    const double ratio = stored > 0.0 && stored < 1.0 ? stored : 0.2;
    const QList<int> sizes = m_splitter->sizes();
    const int total = sizes.size() == 2 && sizes[0] + sizes[1] > 0 ? sizes[0] + sizes[1] : 10000;
    const int left = int(std::lround(ratio * total));
    m_splitter->setSizes({left, total - left});
}

void PageDatabase::storeSplitterRatio()
{
    const QList<int> sizes = m_splitter->sizes();
    if (!m_settings || sizes.size() != 2 || sizes[0] + sizes[1] <= 0)
        return;
    m_settings->setDatabaseSplitterRatio(double(sizes[0]) / (sizes[0] + sizes[1]));
}
