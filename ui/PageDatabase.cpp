#include "ui/PageDatabase.h"

#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

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
} // namespace

PageDatabase::PageDatabase(QWidget *parent)
    : CorvidaBasePage(parent)
{
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(24, 20, 24, 20);
    box->setSpacing(12);
    auto *title = new QLabel(tr("Records"), this);
    title->setObjectName(QStringLiteral("pageTitle"));
    box->addWidget(title);
    auto *notice = new QLabel(tr("Viewing, recalculating, importing and exporting records are not "
                                 "available in this version yet. The recordings in the records "
                                 "folder are listed below."),
                              this);
    notice->setObjectName(QStringLiteral("notice"));
    notice->setWordWrap(true);
    box->addWidget(notice);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("recordList"));
    box->addWidget(m_list, 1);
    m_empty = new QLabel(tr("No data"), this);
    m_empty->setObjectName(QStringLiteral("subtext"));
    m_empty->setStyleSheet(QStringLiteral("font-size: 20px"));
    m_empty->setAlignment(Qt::AlignCenter);
    box->addWidget(m_empty, 1);

    QPushButton *reloadButton =
        headerButton(QStringLiteral(":/icons/refresh.svg"), tr("Reload records"), this);
    m_connections << connect(reloadButton, &QPushButton::clicked, this, &PageDatabase::reload);
    addHeaderWidget(reloadButton);
    QPushButton *folderButton =
        headerButton(QStringLiteral(":/icons/folder.svg"), tr("Open in explorer"), this);
    m_connections << connect(folderButton, &QPushButton::clicked, this,
                             &PageDatabase::openRecordsFolder);
    addHeaderWidget(folderButton);
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
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(Qt::UserRole).toString() : QString();
}

void PageDatabase::reload()
{
    m_needsReload = false;
    m_list->clear();
    CorvidaModel *model = CorvidaModel::instance();
    if (!model)
        return;
    const QString wanted = QFileInfo(model->settings()->getLastExperimentPath()).absoluteFilePath();
    const QFileInfoList files =
        QDir(model->recordsFolder())
            .entryInfoList({QStringLiteral("*.edf")}, QDir::Files, QDir::Time);
    const QLocale locale;
    for (const QFileInfo &file : files) {
        const QString text = QStringLiteral("%1    %2    %3")
                                 .arg(file.completeBaseName(),
                                      locale.toString(file.lastModified(), QLocale::ShortFormat),
                                      locale.formattedDataSize(file.size()));
        auto *item = new QListWidgetItem(text, m_list);
        item->setData(Qt::UserRole, file.absoluteFilePath());
        if (file.absoluteFilePath() == wanted)
            m_list->setCurrentItem(item);
    }
    m_list->setVisible(m_list->count() > 0);
    m_empty->setVisible(m_list->count() == 0);
}

void PageDatabase::scrollToCurrentRow()
{
    if (QListWidgetItem *item = m_list->currentItem())
        m_list->scrollToItem(item, QAbstractItemView::PositionAtCenter);
}

void PageDatabase::openRecordsFolder()
{
    if (CorvidaModel *model = CorvidaModel::instance())
        QDesktopServices::openUrl(QUrl::fromLocalFile(model->recordsFolder()));
}

void PageDatabase::showEvent(QShowEvent *event)
{
    if (m_needsReload)
        reload();
    CorvidaBasePage::showEvent(event);
}
