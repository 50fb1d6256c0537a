#pragma once

#include <QWidget>

class QLabel;

// The side panel of experiment tips on the Experiment page: how to prepare the animal, what a
// good measurement looks like, and what to try when it does not.
class SuggestionsWidget : public QWidget
{
    Q_OBJECT
public:
    explicit SuggestionsWidget(QWidget *parent = nullptr);

    // The panel's rich text in the current language.
    static QString html();
    QLabel *textLabel() const { return m_text; }

protected:
    void changeEvent(QEvent *event) override;

private:
    QLabel *m_text;
};
