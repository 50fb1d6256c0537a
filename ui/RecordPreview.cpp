#include "ui/RecordPreview.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/GenericText.h"
#include "toolkit/widgets/StyleHelper.h"
#include "ui/ExperimentViewer.h"
#include "ui/MultiExperimentViewer.h"
#include "ui/SettingDropDownButton.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
QPushButton *actionButton(const QString &icon, const QString &text, QWidget *parent)
{
    auto *button =
        new QPushButton(StyleHelper::tintedIcon(icon, Qt::white, QSize(20, 20)), text, parent);
    button->setObjectName(QStringLiteral("accentButton"));
    button->setIconSize(QSize(20, 20));
    button->setCursor(Qt::PointingHandCursor);
    return button;
}
} // namespace

RecordPreview::RecordPreview(CorvidaSettings *settings, QWidget *parent)
    : QWidget(parent)
    , m_recalculateText(tr("Recalculate"))
    , m_exportText(tr("Export"))
    , m_stack(new QStackedWidget(this))
    , m_message(new QLabel(m_stack))
    , m_overlayNote(new QLabel(this))
    , m_single(new ExperimentViewer(settings, m_stack))
    , m_multi(new MultiExperimentViewer(m_stack))
{
    m_recalculate =
        actionButton(QStringLiteral(":/resources/images/calculate.svg"), m_recalculateText, this);
    m_recalculate->setToolTip(tr("Find the blood pressure of the selected records anew"));
    m_export = actionButton(QStringLiteral(":/icons/excel.svg"), m_exportText, this);
    m_export->setToolTip(tr("Export to spreadsheet"));
    connect(m_recalculate, &QPushButton::clicked, this, &RecordPreview::recalculateRequested);
    connect(m_export, &QPushButton::clicked, this, &RecordPreview::exportRequested);

    auto *horizontal =
        new SettingDropDownButton(QStringLiteral(":/icons/arrow-left-right.svg"),
                                  genericText(QT_TRANSLATE_NOOP("Generic", "Horizontal scale")),
                                  settings, QStringLiteral("VisualScale"), this);
    auto *vertical =
        new SettingDropDownButton(QStringLiteral(":/icons/arrow-up-down.svg"),
                                  genericText(QT_TRANSLATE_NOOP("Generic", "Vertical scale")),
                                  settings, QStringLiteral("PulseAxisLimit"), this);
    horizontal->setObjectName(QStringLiteral("horizontalScale"));
    vertical->setObjectName(QStringLiteral("verticalScale"));
    m_scales = {horizontal, vertical};

    // The bar never makes the page wider than the window: short of room, the scales give up
    // their texts (fitActions).
    m_actionBar = new QWidget(this);
    m_actionBar->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *actions = new QHBoxLayout(m_actionBar);
    actions->setContentsMargins(0, 0, 0, 0);
    actions->setSpacing(8);
    actions->addWidget(m_recalculate);
    actions->addWidget(m_export);
    actions->addStretch(100);
    actions->addWidget(horizontal);
    actions->addWidget(vertical);

    m_overlayNote->setObjectName(QStringLiteral("subtext"));
    m_overlayNote->setWordWrap(true);
    m_overlayNote->hide();

    m_message->setText(tr("No data"));
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setStyleSheet(QStringLiteral(
        "text-align: center; color: #CCC; font-size: 20px; background: transparent"));
    m_stack->addWidget(m_message);
    m_stack->addWidget(m_single);
    m_stack->addWidget(m_multi);

    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(8, 0, 0, 0);
    box->setSpacing(8);
    box->addWidget(m_actionBar);
    box->addWidget(m_overlayNote);
    box->addWidget(m_stack, 100);
    showRecords({});
}

void RecordPreview::showRecords(const QList<CorvidaExperiment *> &records, const QString &problem)
{
    m_overlayNote->hide();
    setActionsEnabled(!records.isEmpty());
    if (records.isEmpty()) {
        showMessage(tr("No data"));
        return;
    }
    if (records.size() == 1 && !problem.isEmpty()) {
        showMessage(problem);
        return;
    }
    if (records.size() == 1) {
        m_multi->setExperiments({});
        if (m_single->experiment() != records.first())
            m_single->setExperiment(records.first());
        m_stack->setCurrentWidget(m_single);
        return;
    }
    m_single->setExperiment(nullptr);
    const QList<CorvidaExperiment *> shown = records.mid(0, MaxOverlaid);
    if (shown != m_multi->experiments())
        m_multi->setExperiments(shown);
    if (records.size() > shown.size()) {
        m_overlayNote->setText(tr("The first %1 of %2 selected records are shown")
                                   .arg(shown.size())
                                   .arg(records.size()));
        m_overlayNote->show();
    }
    m_stack->setCurrentWidget(m_multi);
}

void RecordPreview::showMessage(const QString &text)
{
    m_single->setExperiment(nullptr);
    m_multi->setExperiments({});
    m_message->setText(text);
    m_stack->setCurrentWidget(m_message);
}

void RecordPreview::updateGraphics()
{
    if (m_stack->currentWidget() == m_single)
        m_single->updateGraphics();
    else if (m_stack->currentWidget() == m_multi)
        m_multi->updateGraphics();
}

void RecordPreview::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitActions();
}

void RecordPreview::fitActions()
{
    const QLayout *bar = m_actionBar->layout();
    const QMargins margins = layout()->contentsMargins();
    const int room = width() - margins.left() - margins.right() - bar->spacing() * 4;
    // Short of room, the scales give up their texts first, then Recalculate and Export keep
    // only their icons (and their tooltips), rather than show half a word.
    m_recalculate->setText(m_recalculateText);
    m_export->setText(m_exportText);
    const int buttons = m_recalculate->sizeHint().width() + m_export->sizeHint().width();
    int scales = 0;
    for (const SettingDropDownButton *scale : std::as_const(m_scales))
        scales += scale->widthWithText();
    const bool compact = room < buttons + scales;
    int compactScales = 0;
    for (SettingDropDownButton *scale : std::as_const(m_scales)) {
        scale->setCompact(compact);
        compactScales += scale->sizeHint().width();
    }
    if (room < buttons + compactScales) {
        m_recalculate->setText(QString());
        m_export->setText(QString());
    }
}

QWidget *RecordPreview::currentView() const
{
    return m_stack->currentWidget();
}

void RecordPreview::setActionsEnabled(bool enabled)
{
    m_recalculate->setEnabled(enabled);
    m_export->setEnabled(enabled);
}
