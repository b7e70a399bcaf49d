#include "WorkspaceDocumentHook.h"

#include "CWorkspace.h"
#include "editor/CScrivelDoc.h"
#include "editor/TextFileDetector.h"
#include "framework/CDocument.h"
#include "hex/CHexDocument.h"

#include <QPointer>

namespace WorkspaceDocumentHook {

void LoadedArguments(const CDocument* document, const QString& path, int& type, int& encoding)
{
    type = 0;
    encoding = 4;
    if (const auto* text = qobject_cast<const CScrivelDoc*>(document)) {
        encoding = text->Encoding;
    } else if (qobject_cast<const CHexDocument*>(document)) {
        // A hex file is recorded as binary when its start looks binary, or when it
        // cannot be read to tell.
        TextFileDetector detector;
        type = !detector.Examine(path) || detector.IsBinary() ? 1 : 0;
    }
}

void Watch(CDocument* document, CWorkspace& workspace)
{
    if (!document)
        return;
    QPointer<CWorkspace> target(&workspace);
    QObject::connect(document, &CDocument::loaded, &workspace, [document, target](const QString& path) {
        if (!target || path.isEmpty())
            return;
        int type = 0;
        int encoding = 4;
        LoadedArguments(document, path, type, encoding);
        target->AddFile(path, nullptr, type, encoding);
    });
    QObject::connect(document, &CDocument::saved, &workspace, [target](const QString& path) {
        if (target && !path.isEmpty())
            target->AddFile(path, nullptr, 0, 4);
    });
}

} // namespace WorkspaceDocumentHook
