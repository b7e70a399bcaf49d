#include "codelibrary/TemplateName.h"

namespace TemplateName {

bool IsRefused(QChar c)
{
    // The double quote is allowed: only these can never stand in a name.
    static const QString refused = QStringLiteral("\\/:*?<>|");
    return refused.contains(c);
}

Edit Apply(const QString& stored, const QString& edited)
{
    if (edited.isEmpty())
        return {QString(), false};
    if (IsRefused(edited.back()))
        return {stored, true};
    return {edited, false};
}

} // namespace TemplateName
