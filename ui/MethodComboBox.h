#pragma once

#include <QComboBox>

// The choice between the two ways of placing the SBP and DBP markers: "Documented" (the
// long-standing way) and "Refined" (the line through the rising pulse envelope). It holds the
// way as a record names it: an empty text for the documented way, "refined" for the other.
class MethodComboBox : public QComboBox
{
    Q_OBJECT
public:
    explicit MethodComboBox(QWidget *parent = nullptr);

    QString method() const;
    // Shows the way without announcing it as the operator's choice.
    void setMethod(const QString &method);

signals:
    // The operator picked a way (also when it is the one shown).
    void methodChosen(const QString &method);

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
};
