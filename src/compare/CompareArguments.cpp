#include "compare/CompareArguments.h"

CompareArguments CompareArguments::Take(QStringList& arguments)
{
    CompareArguments found;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        if (a != QLatin1String("--compare") && a != QLatin1String("-d"))
            continue;
        if (i + 2 >= arguments.size())
            break;
        found.left = arguments[i + 1];
        found.right = arguments[i + 2];
        arguments.remove(i, 3);
        break;
    }
    return found;
}
