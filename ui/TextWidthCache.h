#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QString>

// Widths of texts in one font, measured once: a live plot draws the same few labels 25 times a
// second, and measuring a text means shaping it again. A new font starts the cache over.
class TextWidthCache
{
public:
    qreal width(const QFont &font, const QString &text);

private:
    // Time labels count up through a long recording; past this many the cache starts over.
    static constexpr qsizetype kMaxTexts = 256;

    QFont m_font;
    QFontMetricsF m_metrics{QFont()};
    QHash<QString, qreal> m_widths;
};
