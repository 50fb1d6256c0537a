#include "ui/PanelHeaderFit.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpacerItem>
#include <algorithm>
#include <cmath>

namespace {
// Both buttons of a pair get the larger preferred width, so swapping one for the other does not
// shift the header.
void equalisePair(QPushButton *a, QPushButton *b)
{
    a->setMinimumWidth(0);
    b->setMinimumWidth(0);
    const int width = std::max(a->sizeHint().width(), b->sizeHint().width());
    a->setMinimumWidth(width);
    b->setMinimumWidth(width);
}
} // namespace

PanelHeaderFit::PanelHeaderFit(const Parts &parts)
    : m_parts(parts)
{
    m_narrow = true;
    setButtonsNarrow(false);
}

void PanelHeaderFit::fit(int width, int margins, bool iconsOnly)
{
    for (int i = 0; i + 1 < m_parts.pairs.size(); i += 2)
        equalisePair(m_parts.pairs[i], m_parts.pairs[i + 1]);
    setButtonsNarrow(iconsOnly);

    // Wide enough for the placeholder, as far as the rest of the header leaves room: the
    // buttons and the heart rate come first.
    QHBoxLayout *row = m_parts.row;
    int others = margins;
    for (int i = 0; i < row->count(); ++i) {
        QLayoutItem *item = row->itemAt(i);
        QWidget *widget = item->widget();
        if (widget == m_parts.rodent || widget == m_parts.comment || (widget && widget->isHidden()))
            continue;
        others += item->sizeHint().width() + row->spacing();
    }
    const int room = (width - others - row->spacing()) / 2;
    bool beside = true;
    for (QLineEdit *editor : {m_parts.rodent, m_parts.comment})
        beside = beside && room >= placeholderWidth(editor);
    placeEditors(!beside);
    // Limits rather than a fixed width: a panel's least width must not follow its present one,
    // or panels side by side could never even out again.
    const int share = std::max(60, std::min(int(std::floor(width * 0.16)), 220));
    for (QLineEdit *editor : {m_parts.rodent, m_parts.comment}) {
        const int least = placeholderWidth(editor);
        editor->setMinimumWidth(least);
        editor->setMaximumWidth(beside ? std::max(share, least) : QWIDGETSIZE_MAX);
    }
}

void PanelHeaderFit::setButtonsNarrow(bool narrow)
{
    if (narrow == m_narrow)
        return;
    m_narrow = narrow;
    const QString padding =
        narrow ? QStringLiteral("padding: 3px 2px;") : QStringLiteral("padding: 4px 6px;");
    for (QPushButton *b : std::as_const(m_parts.pairs))
        b->setStyleSheet(QStringLiteral("QPushButton { %1 }").arg(padding));
    // Save is green only while a finished measurement waits to be saved.
    m_parts.save->setStyleSheet(QStringLiteral("QPushButton { %1 } "
                                               "QPushButton[attention=\"true\"]:!disabled "
                                               "{ background: #3C0; color: white; }")
                                    .arg(padding));
    m_parts.session->setStyleSheet(QStringLiteral("QToolButton { %1 }").arg(padding));
    m_parts.row->setSpacing(narrow ? 2 : 4);
    m_parts.saveGap->changeSize(narrow ? 2 : 10, 0, QSizePolicy::Fixed, QSizePolicy::Minimum);
    m_parts.row->invalidate();
}

int PanelHeaderFit::placeholderWidth(const QLineEdit *editor)
{
    return editor->fontMetrics().horizontalAdvance(editor->placeholderText()) + 24;
}

void PanelHeaderFit::placeEditors(bool ownRow)
{
    if (ownRow == m_editorsOwnRow)
        return;
    m_editorsOwnRow = ownRow;
    QHBoxLayout *from = ownRow ? m_parts.row : m_parts.editorRow;
    QHBoxLayout *to = ownRow ? m_parts.editorRow : m_parts.row;
    for (QLineEdit *editor : {m_parts.rodent, m_parts.comment}) {
        from->removeWidget(editor);
        to->addWidget(editor, 100);
    }
}
