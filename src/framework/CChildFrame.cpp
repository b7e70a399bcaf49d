#include "framework/CChildFrame.h"

#include "framework/CDocument.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>

CChildFrame::CChildFrame(CDocument* document, QWidget* parent)
    : QMdiSubWindow(parent)
    , m_pDocument(document)
{
    setAttribute(Qt::WA_DeleteOnClose);
    // The toolkit's window menu binds Ctrl+W and Ctrl+F4 in every sub-window; with two
    // documents open each key would be bound twice and do nothing. File > Close has them.
    if (QMenu* menu = systemMenu()) {
        for (QAction* action : menu->actions())
            action->setShortcuts({});
    }
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
        QMdiSubWindow::closeEvent(event);
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
    // The area hears of the close now, not when the frame is deleted: it drops the tab and
    // brings the neighbouring one forward, and the rest stay as they were.
    QMdiSubWindow::closeEvent(event);
}

void CChildFrame::focusInEvent(QFocusEvent* event)
{
    QMdiSubWindow::focusInEvent(event);
    Q_EMIT activated(this);
}
