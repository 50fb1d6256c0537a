#include "settings/VisibleBoundRule.h"

namespace {
bool isPropertyName(const QString &name)
{
    if (name.isEmpty() || name[0].isDigit())
        return false;
    for (const QChar c : name)
        if (!c.isLetterOrNumber() && c != QLatin1Char('_'))
            return false;
    return true;
}
} // namespace

VisibleBoundRule VisibleBoundRule::parse(const QString &text, bool *ok)
{
    VisibleBoundRule rule;
    const QString t = text.trimmed();
    if (t.isEmpty()) {
        if (ok)
            *ok = true;
        return rule;
    }
    // Split at the first colon only: the value may be a scoped key such as
    // "CorvidaViewMode::View_Tabs".
    const int colon = t.indexOf(QLatin1Char(':'));
    const QString name = colon < 0 ? QString() : t.left(colon).trimmed();
    if (!isPropertyName(name)) {
        if (ok)
            *ok = false;
        return rule;
    }
    rule.m_property = name;
    rule.m_value = t.mid(colon + 1).trimmed();
    if (ok)
        *ok = true;
    return rule;
}

QString VisibleBoundRule::toText() const
{
    return isValid() ? m_property + QLatin1Char(':') + m_value : QString();
}
