#include "framework/CChildFrame.h"

#include "framework/CDocument.h"

#include <QCloseEvent>

CChildFrame::CChildFrame(CDocument* document, QWidget* parent)
    : QMdiSubWindow(parent)
    , m_pDocument(document)
{
    setAttribute(Qt::WA_DeleteOnClose);
    if (document) {
        document->AddFrame(this);
        setWindowTitle(document->GetTitle());
        connect(document, &CDocument::titleChanged, this, &QWidget::setWindowTitle);
    }
}

CChildFrame::~CChildFrame()
{
    if (m_pDocument)
        m_pDocument->RemoveFrame(this);
}

void CChildFrame::closeEvent(QCloseEvent* event)
{
    CDocument* document = m_pDocument;
    if (!document) {
        event->accept();
        return;
    }
    // Only the last view of a document asks about its changes.
    if (document->GetFrames().size() <= 1) {
        if (!document->SaveModified()) {
            event->ignore();
            return;
        }
        document->RemoveFrame(this);
        document->OnCloseDocument();
    } else {
        document->RemoveFrame(this);
    }
    event->accept();
}

void CChildFrame::focusInEvent(QFocusEvent* event)
{
    QMdiSubWindow::focusInEvent(event);
    Q_EMIT activated(this);
}
