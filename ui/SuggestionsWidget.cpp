#include "ui/SuggestionsWidget.h"

#include "toolkit/widgets/StyleHelper.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStringList>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
QString picture(const QString &name, int width)
{
    return QStringLiteral("<img src=\":/resources/images/docs/%1\" width=\"%2\">")
        .arg(name)
        .arg(width);
}

QString warning(const QString &text)
{
    return QStringLiteral("<br><b style=\"color:") +
           QLatin1String(SuggestionsWidget::kWarningColor) + QStringLiteral("\">") +
           text.toHtmlEscaped() + QStringLiteral("</b>");
}

// A table of numbered items; each item is already HTML.
QString numbered(const QStringList &items)
{
    QString html = QStringLiteral("<table cellspacing=\"4\">");
    for (int i = 0; i < items.size(); ++i) {
        html += QStringLiteral("<tr><td valign=\"top\"><b>%1.</b></td><td>%2</td></tr>")
                    .arg(i + 1)
                    .arg(items[i]);
    }
    return html + QStringLiteral("</table>");
}

QString heading(const QString &text)
{
    return QStringLiteral("<h3>") + text.toHtmlEscaped() + QStringLiteral("</h3>");
}

QString plain(const QString &text)
{
    return text.toHtmlEscaped();
}
} // namespace

SuggestionsWidget::SuggestionsWidget(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("suggestions"));
    StyleHelper::instance()->paintBackground(this, QStringLiteral("--v-panel-bg"));
    setMinimumWidth(260);
    setMaximumWidth(340);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    auto *closeRow = new QHBoxLayout;
    closeRow->setContentsMargins(0, 2, 4, 0);
    closeRow->addStretch(1);
    auto *close = new QToolButton(this);
    close->setObjectName(QStringLiteral("closeSuggestions"));
    close->setText(QStringLiteral("\u00D7")); // ×, which every font has
    close->setAutoRaise(true);
    close->setCursor(Qt::PointingHandCursor);
    close->setStyleSheet(
        QStringLiteral("QToolButton { color: #F0F3F6; background: transparent; border: none; "
                       "padding: 0 6px; font-size: 18px; }"
                       "QToolButton:hover { background: rgba(255,255,255,40); }"));
    connect(close, &QToolButton::clicked, this, &SuggestionsWidget::closeRequested);
    m_close = close;
    closeRow->addWidget(close);
    box->addLayout(closeRow);
    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setStyleSheet(QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget "
                                         "{ background: transparent; }"));
    m_text = new QLabel(scroll);
    m_text->setObjectName(QStringLiteral("suggestionsText"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::RichText);
    m_text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_text->setContentsMargins(12, 8, 12, 12);
    // The panel is dark in both themes; its text is light.
    m_text->setStyleSheet(QStringLiteral("QLabel { color: #F0F3F6; }"));
    m_text->setText(html());
    m_close->setToolTip(tr("Hide the tips (the Suggestions button brings them back)"));
    scroll->setWidget(m_text);
    box->addWidget(scroll);
}

QString SuggestionsWidget::html()
{
    QString html;
    html += heading(tr("Before conducting an experiment:"));
    html += numbered({
        plain(tr("Heat the rodent properly for at least 10 minutes")) +
            warning(tr("Do not heat the rodent more than 20-30 minutes to avoid thermal shock.")) +
            warning(tr("Do not place rodent's tail on the heating platform.")) +
            QStringLiteral("<br>") + picture(QStringLiteral("valid-placement.png"), 150) +
            QStringLiteral("<br>") + picture(QStringLiteral("invalid-placement.png"), 150),
        plain(tr("Choose the corresponding cuff size")),
        plain(tr("Check the cuff's tidiness")),
        plain(tr("Choose the corresponding silicone insert for the sensor")),
        plain(tr("Firmly place the cuff and then the sensor onto rodent's tail")),
        plain(tr("'Turn on' the device (without measurement)")) +
            warning(tr("the PPG signal should be stable, otherwise heat the rodent or check "
                       "sensor's position.")) +
            warning(tr("Do not start the actual experiment, until the PPG signal is stable in "
                       "amplitude!")) +
            // Two by two, so that the narrowest panel shows all four whole.
            QStringLiteral("<br>") + picture(QStringLiteral("ppg-valid.png"), 64) +
            QLatin1Char(' ') + picture(QStringLiteral("ppg-invalid-1.png"), 64) +
            QStringLiteral("<br>") + picture(QStringLiteral("ppg-invalid-2.png"), 64) +
            QLatin1Char(' ') + picture(QStringLiteral("ppg-invalid-3.png"), 64),
        plain(tr("When the PPG signal is stable, press 'Measure'")),
    });
    html += heading(tr("During a common experiment:"));
    html += picture(QStringLiteral("valid-experiment.png"), 200);
    html += numbered({
        plain(tr("In the beggining the PPG should diminish to zero when rodent's tail is "
                 "constricted")),
        plain(tr("When the pressure lowers down - the PPG amplitude should begin to rise (this "
                 "is the systolic pressure point)")),
        plain(tr("After a while the PPG amplitude should go to a plateau (the inflection point "
                 "is the diastolic pressure)")),
    });
    html += heading(tr("If the experiment is not as described above - it is invalid. Try:"));
    html += numbered({
        plain(tr("Heating the rodent if the PPG amplitude is low")),
        plain(tr("Habitate the rodent to the procedure (in case of tail inflicted artifacts)")),
        plain(tr("Slightly move the cuff and sensor along the tail if the tail is not being "
                 "constricted (the bones could protect the tail's blood vessel)")),
    });
    return html;
}

void SuggestionsWidget::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_text->setText(html());
        m_close->setToolTip(tr("Hide the tips (the Suggestions button brings them back)"));
    }
}
