#include "HexTemplate.h"

#include "CHexDocument.h"
#include "CHexFrame.h"
#include "framework/CDocTemplate.h"

CDocTemplate* CreateHexTemplate(QObject* parent)
{
    return new CDocTemplate(
        QStringLiteral("Hex"),
        [] { return new CHexDocument; },
        [](CDocument* document) -> CChildFrame* {
            auto* hex = qobject_cast<CHexDocument*>(document);
            return hex ? new CHexFrame(hex) : nullptr;
        },
        parent);
}
