#include "CScrivelFrame.h"

#include "CScrivelDoc.h"
#include "CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/CViewAsManagerDialog.h"
#include "syntax/ViewAsMenu.h"

CScrivelFrame::CScrivelFrame(CScrivelDoc* document, QWidget* parent)
    : CChildFrame(document, parent)
    , m_view(new CScrivelView(document, this))
{
    setWidget(m_view);
    connect(m_view, &CScrivelView::positionChanged, this, &CChildFrame::statusTextChanged);
}

CScrivelFrame::~CScrivelFrame() = default;

CScrivelDoc* CScrivelFrame::GetTextDocument() const
{
    return static_cast<CScrivelDoc*>(GetDocument());
}

void CScrivelFrame::SetParserIndex(int index)
{
    m_parserIndex = index;
    m_hasParserCopy = false;
}

void CScrivelFrame::SetParser(int index, const CSyntaxParser& parser)
{
    m_parserIndex = index;
    m_parser = parser;
    m_hasParserCopy = true;
}

const CSyntaxParserList* CScrivelFrame::ParserList() const
{
    return m_parserList;
}

bool CScrivelFrame::HasParser() const
{
    if (m_hasParserCopy)
        return true;
    const CSyntaxParserList* list = ParserList();
    return list && m_parserIndex >= 0 && m_parserIndex < list->GetCount();
}

CSyntaxParser CScrivelFrame::CurrentParser() const
{
    if (m_hasParserCopy)
        return m_parser;
    return ParserList()->GetParser(m_parserIndex);
}

bool CScrivelFrame::SelectParser(int index)
{
    const CSyntaxParserList* list = ParserList();
    if (!list || index < 0 || index >= list->GetCount())
        return false;
    SetParser(index, list->GetParser(index));
    m_view->ApplyParser(m_parser);
    return true;
}

int CScrivelFrame::ApplyParserForExtension(const CSyntaxParserList& parsers, const QString& extension)
{
    m_parserList = &parsers;
    const int index = parsers.FindByExtension(extension);
    if (index >= 0) {
        SetParser(index, parsers.GetParser(index));
        m_view->ApplyParser(m_parser);
    }
    return index;
}

QString CScrivelFrame::CommentToken() const
{
    return HasParser() ? CurrentParser().lineComment : QString();
}

bool CScrivelFrame::IndentsAfterBrace() const
{
    return HasParser() && CurrentParser().autoNest;
}

CScrivelFrame* CScrivelFrame::OpenNewWindow()
{
    CDocument* document = GetDocument();
    CDocTemplate* docTemplate = document ? document->GetDocTemplate() : nullptr;
    if (!docTemplate)
        return nullptr;
    auto* frame = qobject_cast<CScrivelFrame*>(docTemplate->CreateNewFrame(document));
    if (!frame)
        return nullptr;
    // The new window colours the shared text the same way.
    frame->m_parserList = m_parserList;
    frame->m_parserIndex = m_parserIndex;
    frame->m_parser = m_parser;
    frame->m_hasParserCopy = m_hasParserCopy;
    frame->GetView()->ApplyViewSettings(m_view->Settings());
    if (HasParser())
        frame->GetView()->ApplyParser(CurrentParser());
    frame->show();
    return frame;
}

QString CScrivelFrame::StatusText() const
{
    return m_view->PositionText();
}

void CScrivelFrame::OnInitialUpdate()
{
    // Loading the text is no change of the user's.
    if (CDocument* document = GetDocument())
        document->SetModifiedFlag(false);
}

bool CScrivelFrame::OnCmdMsg(int id)
{
    if (m_view->OnCmdMsg(id))
        return true;
    if (id >= Cmd::ViewAsFirst && id <= Cmd::ViewAsLast) {
        // Choosing a parser by hand asks for colours, large file or not.
        GetTextDocument()->TurnColouringOn();
        SelectParser(ViewAsMenu::ParserIndexOfCommand(id));
        Q_EMIT statusTextChanged(StatusText());
        return true;
    }
    if (id == Cmd::ViewAsMore) {
        const CSyntaxParserList* list = ParserList();
        if (!list)
            return true;
        CViewAsManagerDialog dialog(*list, m_parserIndex, this);
        if (dialog.exec() == QDialog::Accepted) {
            GetTextDocument()->TurnColouringOn();
            SelectParser(dialog.SelectedIndex());
            Q_EMIT statusTextChanged(StatusText());
        }
        return true;
    }
    if (id == Cmd::WindowNew) {
        OpenNewWindow();
        return true;
    }
    return false;
}

void CScrivelFrame::OnUpdateCmdUI(int id, CCmdUI& ui) const
{
    m_view->OnUpdateCmdUI(id, ui);
    if (ui.handled)
        return;
    if (id >= Cmd::ViewAsFirst && id <= Cmd::ViewAsLast) {
        const CSyntaxParserList* list = ParserList();
        const int count = list ? list->GetCount() : 0;
        const int index = ViewAsMenu::ParserIndexOfCommand(id);
        ui.handled = true;
        ui.enabled = index < count;
        ui.checked = ViewAsMenu::ShowsCheck(index, count, m_parserIndex);
    } else if (id == Cmd::ViewAsMore || id == Cmd::WindowNew) {
        ui.handled = true;
        ui.enabled = id == Cmd::WindowNew || ParserList() != nullptr;
    }
}
