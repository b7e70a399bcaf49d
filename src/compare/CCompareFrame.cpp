#include "compare/CCompareFrame.h"

#include "compare/CCompareDoc.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "framework/CommandIds.h"

CCompareFrame::CCompareFrame(CCompareDoc* document, CCompareView* view, QWidget* parent)
    : CChildFrame(document, parent)
    , m_view(view)
{
    setWidget(view);
    setWindowTitle(document->GetTitle());
    connect(view, &CCompareView::statusTextChanged, this, &CChildFrame::statusTextChanged);
}

QString CCompareFrame::StatusText() const
{
    return m_view->StatusText();
}

bool CCompareFrame::OnCmdMsg(int id)
{
    switch (id) {
    case Cmd::FileSave:
        if (GetDocument())
            GetDocument()->DoFileSave();
        return true;
    case Cmd::CompareNextDifference:
        m_view->NextDifference();
        return true;
    case Cmd::ComparePreviousDifference:
        m_view->PreviousDifference();
        return true;
    case Cmd::CompareCopyToLeft:
        m_view->CopyTo(0);
        return true;
    case Cmd::CompareCopyToRight:
        m_view->CopyTo(1);
        return true;
    case Cmd::CompareSwapSides:
        m_view->SwapSides();
        return true;
    case Cmd::CompareRecompare:
        m_view->Recompare();
        return true;
    default:
        return false;
    }
}

void CCompareFrame::OnUpdateCmdUI(int id, CCmdUI& ui) const
{
    switch (id) {
    case Cmd::FileSave:
        ui.handled = true;
        ui.enabled = GetDocument() && GetDocument()->IsModified();
        break;
    case Cmd::CompareNextDifference:
        ui.handled = true;
        ui.enabled = m_view->HasNextDifference();
        break;
    case Cmd::ComparePreviousDifference:
        ui.handled = true;
        ui.enabled = m_view->HasPreviousDifference();
        break;
    case Cmd::CompareCopyToLeft:
        ui.handled = true;
        ui.enabled = m_view->CanCopyTo(0);
        break;
    case Cmd::CompareCopyToRight:
        ui.handled = true;
        ui.enabled = m_view->CanCopyTo(1);
        break;
    case Cmd::CompareSwapSides:
    case Cmd::CompareRecompare:
        ui.handled = true;
        ui.enabled = true;
        break;
    default:
        break;
    }
}
