#include "toolkit/widgets/PropertyListControl.h"

#include "settings/AbstractMetaDescription.h"
#include "settings/VTSettings.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>
#include <limits>

namespace {
enum Column { IconColumn = 0, LabelColumn, EditorColumn, ResetColumn };
const char *kResetIcon = ":/icons/restore.svg";

void setButtonColor(QPushButton *button, const QColor &color)
{
    button->setText(color.name(QColor::HexArgb).toUpper());
    button->setStyleSheet(QStringLiteral("QPushButton { background: %1; color: %2; }")
                              .arg(color.name(), color.lightness() > 128 ? QStringLiteral("#000")
                                                                         : QStringLiteral("#FFF")));
}
} // namespace

PropertyListControl::PropertyListControl(VTSettings *settings, const QString &group,
                                         QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_group(group)
{
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    if (m_settings)
        m_connections << connect(m_settings, &AbstractSettings::propertyChanged, this,
                                 [this](const QString &) { updateVisibility(); });
    m_connections << connect(StyleHelper::instance(), &StyleHelper::themeChanged, this,
                             [this] { tintIcons(); });
    rebuild();
}

void PropertyListControl::setPropertyFilter(const QStringList &names)
{
    m_filter = names;
    rebuild();
}

void PropertyListControl::setShowDefaultButtons(bool show)
{
    m_showDefaultButtons = show;
    rebuild();
}

void PropertyListControl::setShowHeaders(bool show)
{
    m_showHeaders = show;
    rebuild();
}

void PropertyListControl::setShowLabels(bool show)
{
    m_showLabels = show;
    rebuild();
}

QWidget *PropertyListControl::editor(const QString &name) const
{
    return m_rows.value(name).editor;
}

QToolButton *PropertyListControl::resetButton(const QString &name) const
{
    return m_rows.value(name).reset;
}

bool PropertyListControl::isRowShown(const QString &name) const
{
    return m_rows.value(name).shown;
}

QString PropertyListControl::enumText(const QString &key) const
{
    // Key names are identifiers ("Pressure_200_50"); the translation files give the words the
    // user reads, in every language including English. An empty key is the choice of nothing.
    if (key.isEmpty())
        return QCoreApplication::translate("Generic", "None");
    const QByteArray context = m_settings->getClassName().toLatin1();
    return QCoreApplication::translate(context.constData(), key.toUtf8().constData());
}

void PropertyListControl::rebuild()
{
    m_rowConnections.clear();
    m_rows.clear();
    m_rowOrder.clear();
    m_headers.clear();
    // The old rows may be the sender of the change that led here, so they go later.
    if (m_body) {
        m_body->hide();
        layout()->removeWidget(m_body);
        m_body->deleteLater();
    }
    m_body = new QWidget(this);
    layout()->addWidget(m_body);
    m_grid = new QGridLayout(m_body);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(10);
    m_grid->setVerticalSpacing(8);
    m_grid->setColumnStretch(EditorColumn, 1);
    if (!m_settings)
        return;

    const QStringList names = m_filter.isEmpty() ? m_settings->getPropertiesNames() : m_filter;
    // Settings keep their declaration order inside a category; categories come in the order
    // of their first setting.
    QStringList categories;
    QHash<QString, QList<QVariantMap>> byCategory;
    for (const QString &name : names) {
        const QVariantMap caps = m_settings->getPropertyCapabilities(name);
        if (caps.isEmpty() || caps.value(QStringLiteral("notVisible")).toBool())
            continue;
        const QString category = caps.value(QStringLiteral("category")).toString();
        if (!m_group.isEmpty() && category != m_group)
            continue;
        if (!categories.contains(category))
            categories.append(category);
        byCategory[category].append(caps);
    }
    const bool headers = m_showHeaders && (categories.size() > 1 || !categories.value(0).isEmpty());

    int gridRow = 0;
    for (const QString &category : std::as_const(categories)) {
        if (headers) {
            const QString title =
                category.isEmpty()
                    ? QCoreApplication::translate("Generic", "General")
                    : QCoreApplication::translate(m_settings->getClassName().toLatin1().constData(),
                                                  category.toUtf8().constData());
            auto *header = new QLabel(title, m_body);
            header->setObjectName(QStringLiteral("propertyHeader"));
            header->setProperty("category", category);
            m_grid->addWidget(header, gridRow++, 0, 1, 4);
            m_headers.append(header);
        }
        for (const QVariantMap &caps : byCategory.value(category)) {
            const QString name = caps.value(QStringLiteral("name")).toString();
            Row row;
            row.kind = caps.value(QStringLiteral("editor")).toString();
            row.iconPath = caps.value(QStringLiteral("icon")).toString();
            row.category = category;
            row.icon = new QLabel(m_body);
            row.icon->setFixedSize(24, 24);
            m_grid->addWidget(row.icon, gridRow, IconColumn);
            if (m_showLabels) {
                row.label =
                    new QLabel(caps.value(QStringLiteral("displayName")).toString(), m_body);
                row.label->setToolTip(caps.value(QStringLiteral("description")).toString());
                m_grid->addWidget(row.label, gridRow, LabelColumn);
            }
            row.editor = createEditor(caps);
            row.editor->setObjectName(name);
            const int minWidth = caps.value(QStringLiteral("minWidth")).toInt();
            const int maxWidth = caps.value(QStringLiteral("maxWidth")).toInt();
            if (minWidth > 0)
                row.editor->setMinimumWidth(minWidth);
            if (maxWidth > 0)
                row.editor->setMaximumWidth(maxWidth);
            const bool readOnly = caps.value(QStringLiteral("readOnly")).toBool() ||
                                  !caps.value(QStringLiteral("editable")).toBool();
            row.editor->setEnabled(!readOnly);
            m_grid->addWidget(row.editor, gridRow, EditorColumn);
            // A setting without a default of its own (NoDefault) has nothing to go back to.
            if (m_showDefaultButtons && caps.value(QStringLiteral("hasDefault")).toBool() &&
                !caps.value(QStringLiteral("noDefault")).toBool() && !readOnly) {
                row.reset = new QToolButton(m_body);
                row.reset->setObjectName(QStringLiteral("resetButton"));
                row.reset->setToolTip(QCoreApplication::translate("Generic", "Restore default"));
                row.reset->setCursor(Qt::PointingHandCursor);
                m_grid->addWidget(row.reset, gridRow, ResetColumn);
                m_rowConnections << connect(row.reset, &QToolButton::clicked, this, [this, name] {
                    if (m_settings->resetValue(name))
                        emit edited(name);
                });
            }
            m_rows.insert(name, row);
            m_rowOrder.append(name);
            if (AbstractMetaDescription *d = m_settings->getPropertyByName(name))
                m_rowConnections << connect(d, &AbstractMetaDescription::valueChanged, this,
                                            [this, name] { showValue(name); });
            showValue(name);
            ++gridRow;
        }
    }
    m_grid->setRowStretch(gridRow, 1);
    tintIcons();
    updateVisibility();
}

QWidget *PropertyListControl::createEditor(const QVariantMap &caps)
{
    const QString name = caps.value(QStringLiteral("name")).toString();
    const QString kind = caps.value(QStringLiteral("editor")).toString();
    if (kind == QLatin1String("bool")) {
        auto *box = new QCheckBox(m_body);
        m_rowConnections << connect(box, &QCheckBox::toggled, this,
                                    [this, name](bool on) { commit(name, on, false); });
        return box;
    }
    if (kind == QLatin1String("int")) {
        auto *spin = new QSpinBox(m_body);
        spin->setRange(
            caps.value(QStringLiteral("minimum"), std::numeric_limits<int>::min()).toInt(),
            caps.value(QStringLiteral("maximum"), std::numeric_limits<int>::max()).toInt());
        spin->setSingleStep(qMax(1, caps.value(QStringLiteral("step"), 1).toInt()));
        spin->setPrefix(caps.value(QStringLiteral("prefix")).toString());
        spin->setSuffix(caps.value(QStringLiteral("suffix")).toString());
        m_rowConnections << connect(spin, qOverload<int>(&QSpinBox::valueChanged), this,
                                    [this, name](int v) { commit(name, v, false); });
        return spin;
    }
    if (kind == QLatin1String("double")) {
        auto *spin = new QDoubleSpinBox(m_body);
        const int precision = caps.value(QStringLiteral("precision")).toInt();
        spin->setDecimals(precision >= 0 ? precision : 3);
        spin->setRange(caps.value(QStringLiteral("minimum"), -1e12).toDouble(),
                       caps.value(QStringLiteral("maximum"), 1e12).toDouble());
        if (caps.contains(QStringLiteral("step")))
            spin->setSingleStep(caps.value(QStringLiteral("step")).toDouble());
        spin->setPrefix(caps.value(QStringLiteral("prefix")).toString());
        spin->setSuffix(caps.value(QStringLiteral("suffix")).toString());
        m_rowConnections << connect(spin, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
                                    [this, name](double v) { commit(name, v, false); });
        return spin;
    }
    if (kind == QLatin1String("enum")) {
        auto *combo = new QComboBox(m_body);
        const QColor iconColor = StyleHelper::instance()->color(QStringLiteral("v-text"), Qt::gray);
        for (const QVariant &entry : caps.value(QStringLiteral("enumKeys")).toList()) {
            const QVariantMap key = entry.toMap();
            const QString keyName = key.value(QStringLiteral("key")).toString();
            const QString icon = key.value(QStringLiteral("icon")).toString();
            if (icon.isEmpty())
                combo->addItem(enumText(keyName), keyName);
            else
                combo->addItem(StyleHelper::tintedIcon(icon, iconColor, QSize(20, 20)),
                               enumText(keyName), keyName);
        }
        combo->setProperty("iconPaths", caps.value(QStringLiteral("enumKeys")));
        m_rowConnections << connect(
            combo, qOverload<int>(&QComboBox::activated), this,
            [this, name, combo](int index) { commit(name, combo->itemData(index), true); });
        return combo;
    }
    if (kind == QLatin1String("color")) {
        auto *button = new QPushButton(m_body);
        m_rowConnections << connect(button, &QPushButton::clicked, this, [this, name, button] {
            const QColor current(m_settings->getTextValue(name));
            const QColor chosen =
                QColorDialog::getColor(current, button, QString(), QColorDialog::ShowAlphaChannel);
            if (chosen.isValid())
                commit(name, chosen, false);
        });
        return button;
    }
    if (kind == QLatin1String("dateTime")) {
        auto *edit = new QDateTimeEdit(m_body);
        edit->setCalendarPopup(true);
        m_rowConnections << connect(edit, &QDateTimeEdit::editingFinished, this,
                                    [this, name, edit] { commit(name, edit->dateTime(), false); });
        return edit;
    }
    // Text, and every type without an editor of its own, is edited in its file form.
    auto *line = new QLineEdit(m_body);
    line->setPlaceholderText(caps.value(QStringLiteral("placeholder")).toString());
    m_rowConnections << connect(line, &QLineEdit::editingFinished, this,
                                [this, name, line] { commit(name, line->text(), true); });
    return line;
}

void PropertyListControl::commit(const QString &name, const QVariant &value, bool asText)
{
    const QString before = m_settings->getTextValue(name);
    const bool ok = asText ? m_settings->setTextValue(name, value.toString())
                           : m_settings->setValue(name, value);
    // A refused value puts the editor back to what the settings hold.
    if (!ok)
        showValue(name);
    else if (m_settings->getTextValue(name) != before)
        emit edited(name);
}

void PropertyListControl::showValue(const QString &name)
{
    const Row row = m_rows.value(name);
    if (!row.editor)
        return;
    const QVariant value = m_settings->getValue(name);
    const QString text = m_settings->getTextValue(name);
    const QSignalBlocker block(row.editor);
    if (auto *box = qobject_cast<QCheckBox *>(row.editor))
        box->setChecked(value.toBool());
    else if (auto *spin = qobject_cast<QSpinBox *>(row.editor))
        spin->setValue(value.toInt());
    else if (auto *dspin = qobject_cast<QDoubleSpinBox *>(row.editor))
        dspin->setValue(value.toDouble());
    else if (auto *combo = qobject_cast<QComboBox *>(row.editor))
        combo->setCurrentIndex(combo->findData(text));
    else if (auto *dt = qobject_cast<QDateTimeEdit *>(row.editor))
        dt->setDateTime(value.toDateTime());
    else if (auto *button = qobject_cast<QPushButton *>(row.editor))
        setButtonColor(button, QColor(text));
    else if (auto *line = qobject_cast<QLineEdit *>(row.editor))
        line->setText(text);
    if (row.reset) {
        const QVariantMap caps = m_settings->getPropertyCapabilities(name);
        row.reset->setEnabled(caps.value(QStringLiteral("default")).toString() != text);
    }
}

void PropertyListControl::updateVisibility()
{
    QHash<QString, bool> categoryShown;
    for (auto it = m_rows.begin(); it != m_rows.end(); ++it) {
        const bool shown = m_settings->isPropertyVisible(it.key());
        it->shown = shown;
        for (QWidget *w : {static_cast<QWidget *>(it->icon), static_cast<QWidget *>(it->label),
                           it->editor.data(), static_cast<QWidget *>(it->reset)})
            if (w)
                w->setVisible(shown);
        const QString category = m_settings->getPropertyCapabilities(it.key())
                                     .value(QStringLiteral("category"))
                                     .toString();
        categoryShown[category] = categoryShown.value(category) || shown;
    }
    for (const auto &header : std::as_const(m_headers))
        if (header)
            header->setVisible(categoryShown.value(header->property("category").toString()));
}

void PropertyListControl::tintIcons()
{
    const QColor color = StyleHelper::instance()->color(QStringLiteral("v-text"), Qt::gray);
    for (const Row &row : std::as_const(m_rows)) {
        if (row.icon && !row.iconPath.isEmpty())
            StyleHelper::SetLabelIcon(row.icon, row.iconPath, color, QSize(24, 24));
        if (row.reset)
            row.reset->setIcon(StyleHelper::tintedIcon(QLatin1String(kResetIcon), color));
        if (auto *combo = qobject_cast<QComboBox *>(row.editor.data())) {
            const QVariantList keys = combo->property("iconPaths").toList();
            for (int i = 0; i < keys.size() && i < combo->count(); ++i) {
                const QString icon = keys[i].toMap().value(QStringLiteral("icon")).toString();
                if (!icon.isEmpty())
                    combo->setItemIcon(i, StyleHelper::tintedIcon(icon, color, QSize(20, 20)));
            }
        }
    }
}

void PropertyListControl::changeEvent(QEvent *event)
{
    // Labels and enumeration texts are translated when built; a new language rebuilds them.
    if (event->type() == QEvent::LanguageChange)
        rebuild();
    QWidget::changeEvent(event);
}
