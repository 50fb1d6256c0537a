#include "ui/SettingsFileNotice.h"

#include "settings/VTSettings.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace {
QString quoted(const QString &path)
{
    return QStringLiteral("\"") + QDir::toNativeSeparators(path) + QLatin1Char('"');
}
} // namespace

SettingsFileNotice::SettingsFileNotice(VTSettings *settings, QWidget *parent)
    : QFrame(parent)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("settingsFileNotice"));
    setStyleSheet(QStringLiteral("#settingsFileNotice { background: #FFE8B0; }"
                                 "#settingsFileNotice QLabel { color: #402000; }"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 6, 6);
    m_label = new QLabel(this);
    m_label->setWordWrap(true);
    m_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(m_label, 1);
    auto *close = new QToolButton(this);
    close->setObjectName(QStringLiteral("closeNotice"));
    close->setText(QStringLiteral("\u00d7"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Close"));
    row->addWidget(close, 0, Qt::AlignTop);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    hide();
    if (!m_settings)
        return;
    connect(m_settings, &VTSettings::saveFailed, this, &SettingsFileNotice::reportSaveFailure);
    reportReading();
}

QString SettingsFileNotice::text() const
{
    return m_label->text();
}

void SettingsFileNotice::reportReading()
{
    const QString path = m_settings->getFilepath();
    if (m_settings->fileState() == VTSettings::FileState::Unreadable) {
        // Saving is refused from now on, which is what this says; no second notice for it.
        m_saveFailureShown = true;
        showText(tr("The settings file %1 cannot be read, so Corvida started with its default "
                    "settings. To keep that file as it is, changes to the settings are not saved "
                    "in this session. Check who may read the file, then start Corvida again.")
                     .arg(quoted(path)));
        return;
    }
    // Saving now keeps the damaged file aside and writes what could be read, so the notice can
    // say where the old file went. A change made before the window was built may already have
    // done so.
    if (m_settings->fileState() == VTSettings::FileState::Damaged && !m_settings->save()) {
        m_saveFailureShown = true;
        showText(tr("The settings file %1 was damaged and cannot be replaced. The settings that "
                    "could be read are in use; changes are not saved in this session.")
                     .arg(quoted(path)));
        return;
    }
    if (!m_settings->keptCopy().isEmpty())
        showText(tr("The settings file was damaged. The settings that could be read are kept; "
                    "the others are back to their defaults. The damaged file was kept as %1.")
                     .arg(quoted(m_settings->keptCopy())));
}

void SettingsFileNotice::reportSaveFailure()
{
    if (m_saveFailureShown)
        return;
    m_saveFailureShown = true;
    showText(tr("Settings cannot be saved to %1. Changes made now are lost when Corvida closes. "
                "Check that the disk is not full and that the folder may be written to.")
                 .arg(quoted(m_settings ? m_settings->getFilepath() : QString())));
}

void SettingsFileNotice::showText(const QString &text)
{
    m_label->setText(text);
    show();
}
