#include "ui/SignalViewerMarker.h"

SignalViewerMarker::SignalViewerMarker(const QString &tag, const QString &text, double time,
                                       Kind kind, const QColor &color)
    : m_tag(tag)
    , m_time(time)
    , m_kind(kind)
    , m_color(color)
{
    setText(text);
}

void SignalViewerMarker::setText(const QString &text)
{
    m_text = text;
    m_layout.setText(text);
    m_layout.setTextFormat(Qt::PlainText);
    m_layout.setPerformanceHint(QStaticText::AggressiveCaching);
}

Qt::PenStyle SignalViewerMarker::lineStyle() const
{
    if (m_lineStyle != Qt::NoPen)
        return m_lineStyle;
    return isMovable() ? Qt::SolidLine : Qt::DashLine;
}
