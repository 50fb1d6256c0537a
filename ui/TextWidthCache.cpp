#include "ui/TextWidthCache.h"

qreal TextWidthCache::width(const QFont &font, const QString &text)
{
    if (!(font == m_font) || m_widths.isEmpty()) {
        m_font = font;
        m_metrics = QFontMetricsF(font);
        m_widths.clear();
    }
    const auto known = m_widths.constFind(text);
    if (known != m_widths.constEnd())
        return known.value();
    if (m_widths.size() >= kMaxTexts)
        m_widths.clear();
    const qreal w = m_metrics.horizontalAdvance(text);
    m_widths.insert(text, w);
    return w;
}
