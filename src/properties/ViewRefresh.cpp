#include "ViewRefresh.h"

#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "settings/MainFrameSettings.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "syntax/CSyntaxCommands.h"
#include "syntax/CSyntaxParserList.h"

namespace ViewRefresh {

void ApplySettings(IShell& shell)
{
    const ViewSettings settings = shell.Settings().view;
    for (CChildFrame* child : shell.ChildFrames()) {
        auto* frame = qobject_cast<CScrivelFrame*>(child);
        if (!frame)
            continue;
        frame->GetView()->ApplyViewSettings(settings);
        // The parser carries the brace colours and the tab settings with it.
        if (frame->GetParserIndex() >= 0)
            frame->SelectParser(frame->GetParserIndex());
    }
    Q_EMIT shell.Events().viewSettingsChanged();
    shell.RequestCommandUpdate();
}

void ApplyParsers(IShell& shell, const CSyntaxParserList& parsers)
{
    for (CChildFrame* child : shell.ChildFrames()) {
        auto* frame = qobject_cast<CScrivelFrame*>(child);
        if (!frame)
            continue;
        const int index = frame->GetParserIndex();
        if (index < 0 || index >= parsers.GetCount())
            continue;
        const CSyntaxParser parser = parsers.GetParser(index);
        frame->SetParser(index, parser);
        frame->GetView()->ApplyParser(parser);
    }
    // The program's own list, which View As and new documents choose from.
    if (CSyntaxCommands* syntax = CSyntaxCommands::Of(shell))
        syntax->Parsers().Load();
    Q_EMIT shell.Events().syntaxDefinitionsChanged();
}

} // namespace ViewRefresh
