#pragma once

#include <QFrame>
#include <QPointer>

class QLabel;
class VTSettings;

// A strip under the window's top bar that tells the operator, once, when the settings file
// could not be read (the program then runs on defaults and leaves the file alone), was damaged
// (kept aside, the values that could be read stay) or cannot be saved. Without a problem it
// stays hidden.
class SettingsFileNotice : public QFrame
{
    Q_OBJECT
public:
    explicit SettingsFileNotice(VTSettings *settings, QWidget *parent = nullptr);

    QString text() const;

private:
    void reportReading();
    void reportSaveFailure();
    void showText(const QString &text);

    QPointer<VTSettings> m_settings;
    QLabel *m_label = nullptr;
    bool m_saveFailureShown = false;
};
