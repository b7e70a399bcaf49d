#include "SessionRestore.h"

#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "framework/CChildFrame.h"
#include "settings/CRegistryStore.h"
#include "shell/IShell.h"

#include <QFileInfo>
#include <algorithm>
#include <QStringList>

namespace {

const QString kSection = QStringLiteral("EditSettings");
const QString kEnabled = QStringLiteral("RestoreSession");
const QString kFiles = QStringLiteral("SessionFiles");

} // namespace

namespace SessionRestore {

bool Enabled()
{
    return CRegistryStore().GetProfileInt(kSection, kEnabled, 0) != 0;
}

void Save(IShell& shell)
{
    if (!Enabled())
        return;
    // One line per file: the caret position, a tab, the path (paths never hold a newline
    // we could keep anyway, and a tab cannot start one).
    QStringList lines;
    QList<CDocument*> seen;
    for (CChildFrame* frame : shell.ChildFrames()) {
        auto* document = qobject_cast<CScrivelDoc*>(frame ? frame->GetDocument() : nullptr);
        if (!document || seen.contains(document) || document->GetPathName().isEmpty())
            continue;
        seen.append(document);
        const CMFCScintilla* editor = document->GetEditor();
        const long caret = editor ? editor->GetCurrentPos() : 0;
        lines.append(QString::number(caret) + QLatin1Char('\t') + document->GetPathName());
    }
    CRegistryStore().WriteProfileString(kSection, kFiles, lines.join(QLatin1Char('\n')));
}

int Restore(IShell& shell)
{
    if (!Enabled())
        return 0;
    const QStringList lines =
        CRegistryStore().GetProfileString(kSection, kFiles, QString()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    int opened = 0;
    for (const QString& line : lines) {
        const qsizetype tab = line.indexOf(QLatin1Char('\t'));
        if (tab <= 0)
            continue;
        bool ok = false;
        const long caret = line.left(tab).toLong(&ok);
        const QString path = line.mid(tab + 1);
        if (!ok || !QFileInfo(path).isFile())
            continue;
        // A document already open (recovered, or named on the command line) keeps its state.
        if (shell.ActivateOpenDocument(path))
            continue;
        auto* document = qobject_cast<CScrivelDoc*>(shell.OpenPath(path));
        if (!document)
            continue;
        ++opened;
        if (CMFCScintilla* editor = document->GetEditor()) {
            editor->GotoPos(std::clamp(caret, 0L, editor->GetLength()));
            editor->ScrollCaret();
        }
    }
    return opened;
}

} // namespace SessionRestore
