#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QHash>
#include <QPointer>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class QGridLayout;
class QLabel;
class QToolButton;
class VTSettings;

// The generic editor of a settings object: one row per visible setting (icon, label, the
// editor its type calls for, a button that restores the default), built entirely from the
// settings' descriptions. Limits, steps, enumeration keys with their icons, categories and
// read-only flags come from the hints; rows bound to another setting ("DebugMode:true") appear
// and disappear as that setting changes. Every edit goes straight into the settings object.
class PropertyListControl : public QWidget
{
    Q_OBJECT
public:
    // group: only settings of this category; empty for all of them.
    explicit PropertyListControl(VTSettings *settings, const QString &group = QString(),
                                 QWidget *parent = nullptr);

    // Only the named settings, in the given order (empty: all). Rebuilds.
    void setPropertyFilter(const QStringList &names);
    void setShowDefaultButtons(bool show);
    void setShowHeaders(bool show);
    void setShowLabels(bool show);

    VTSettings *settings() const { return m_settings; }
    QStringList propertyNames() const { return m_rowOrder; }
    // The editor widget of a setting's row, null when it has no row.
    QWidget *editor(const QString &name) const;
    // The button that restores the setting's default; null without one.
    QToolButton *resetButton(const QString &name) const;
    // Whether the row is meant to be shown (independent of this widget being on screen).
    bool isRowShown(const QString &name) const;

public slots:
    void rebuild();

signals:
    // A value was changed through this editor.
    void edited(QString name);

protected:
    void changeEvent(QEvent *event) override;

private:
    struct Row {
        QPointer<QLabel> icon;
        QPointer<QLabel> label;
        QPointer<QWidget> editor;
        QPointer<QToolButton> reset;
        QString iconPath;
        QString kind;
        QString category;
        bool shown = false;
    };

    QWidget *createEditor(const QVariantMap &caps);
    void showValue(const QString &name);
    void updateVisibility();
    void tintIcons();
    void commit(const QString &name, const QVariant &value, bool asText);
    QString enumText(const QString &key) const;

    VTSettings *m_settings;
    QString m_group;
    QStringList m_filter;
    bool m_showDefaultButtons = true;
    bool m_showHeaders = true;
    bool m_showLabels = true;
    QGridLayout *m_grid = nullptr;
    QWidget *m_body = nullptr;
    QHash<QString, Row> m_rows;
    QStringList m_rowOrder;
    QList<QPointer<QLabel>> m_headers;
    ConnectionHelper m_connections;
    ConnectionHelper m_rowConnections;
};
