#pragma once

#include <QList>

class QAbstractButton;
class QHBoxLayout;
class QLineEdit;
class QPushButton;
class QSpacerItem;

// Fits a unit panel's header row to the panel's width once the panel has chosen its button
// texts: icon-only buttons lose most of their padding, each pair of buttons that swap places
// keeps one width, and the rodent and comment editors move to a row of their own when the
// header has no room for their placeholders. So four units side by side on a small screen
// still show every button, the whole heart rate and "Comment" rather than "Com...".
class PanelHeaderFit
{
public:
    struct Parts {
        QHBoxLayout *row = nullptr;
        QHBoxLayout *editorRow = nullptr;
        QSpacerItem *saveGap = nullptr;
        QList<QPushButton *> pairs; // turn on, turn off, measure, abort
        QPushButton *save = nullptr;
        QAbstractButton *session = nullptr;
        QLineEdit *rodent = nullptr;
        QLineEdit *comment = nullptr;
    };

    explicit PanelHeaderFit(const Parts &parts);

    // `width` is the panel's, `margins` its layout's left and right margins together.
    void fit(int width, int margins, bool iconsOnly);
    bool editorsOnOwnRow() const { return m_editorsOwnRow; }

private:
    void setButtonsNarrow(bool narrow);
    void placeEditors(bool ownRow);
    static int placeholderWidth(const QLineEdit *editor);

    Parts m_parts;
    bool m_narrow = false;
    bool m_editorsOwnRow = false;
};
