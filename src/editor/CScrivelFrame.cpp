#include "CScrivelFrame.h"

#include "CScrivelDoc.h"
#include "CScrivelView.h"

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

QString CScrivelFrame::StatusText() const
{
    return m_view->PositionText();
}
