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

    // The warnings' colour: amber, which reads on the panel's dark blue (light theme) and near
    // black (dark theme) at better than the 4.5:1 contrast of WCAG AA.
    static constexpr const char *kWarningColor = "#FFB74D";

    // The panel's rich text in the current language.
    static QString html();
    QLabel *textLabel() const { return m_text; }
    QWidget *closeButton() const { return m_close; }

signals:
    // The operator closed the panel; the page hides it and remembers that.
    void closeRequested();

protected:
    void changeEvent(QEvent *event) override;

private:
    QLabel *m_text;
    QWidget *m_close;
};
