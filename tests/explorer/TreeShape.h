#pragma once

#include "explorer/CTreeItemModel.h"

#include <QStringList>

// The tree as one line: "Root[child,Folder[grandchild]]".
inline QString Shape(const CTreeNode* first)
{
    QStringList parts;
    for (const CTreeNode* n = first; n; n = n->NextSibling()) {
        QString part = n->text;
        if (n->FirstChild())
            part += QLatin1Char('[') + Shape(n->FirstChild()) + QLatin1Char(']');
        parts << part;
    }
    return parts.join(QLatin1Char(','));
}
