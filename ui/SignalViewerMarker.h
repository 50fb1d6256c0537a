#pragma once

#include <QColor>
#include <QStaticText>
#include <QString>

// A vertical time marker of a SignalViewer, such as the systolic point of a record.
class SignalViewerMarker
{
public:
    enum class Kind { Fixed, Movable };

    SignalViewerMarker() = default;
    SignalViewerMarker(const QString &tag, const QString &text, double time, Kind kind,
                       const QColor &color);

    QString tag() const { return m_tag; }
    QString text() const { return m_text; }
    void setText(const QString &text);
    double time() const { return m_time; }
    void setTime(double time) { m_time = time; }
    Kind kind() const { return m_kind; }
    bool isMovable() const { return m_kind == Kind::Movable; }
    QColor color() const { return m_color; }
    // Solid for a marker the operator can move, dashed for a fixed one, unless set otherwise.
    Qt::PenStyle lineStyle() const;
    void setLineStyle(Qt::PenStyle style) { m_lineStyle = style; }
    // The label laid out once, not at every paint.
    const QStaticText &layout() const { return m_layout; }

private:
    QString m_tag;
    QString m_text;
    double m_time = 0.0;
    Kind m_kind = Kind::Fixed;
    QColor m_color;
    Qt::PenStyle m_lineStyle = Qt::NoPen; // NoPen: the kind decides
    QStaticText m_layout;
};
