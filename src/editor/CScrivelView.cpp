#include "CScrivelView.h"

#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "app/ViewSettings.h"

#include <QVBoxLayout>

CScrivelView::CScrivelView(CScrivelDoc* document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_editor(new CMFCScintilla(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_editor);
    setFocusProxy(m_editor);

    m_editor->Setup();
    if (m_document)
        m_document->AttachView(m_editor);

    CMainFrame* frame = CMorvaneApp::MainFrame();
    ApplyViewSettings(frame ? frame->Settings().view : ViewSettings());

    connect(m_editor, &QsciScintillaBase::SCN_SAVEPOINTREACHED, this, [this] {
        if (m_document)
            m_document->SetModifiedFlag(false);
    });
    connect(m_editor, &QsciScintillaBase::SCN_SAVEPOINTLEFT, this, [this] {
        if (m_document)
            m_document->SetModifiedFlag(true);
    });
    connect(m_editor, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int) { OnUpdateUi(); });
    connect(m_editor, &QsciScintillaBase::SCN_MODIFIED, this, &CScrivelView::OnModified);
}

CScrivelView::~CScrivelView()
{
    if (m_document)
        m_document->DetachView(m_editor);
}

void CScrivelView::ApplyViewSettings(const ViewSettings& settings)
{
    m_editor->SetWordWrap(settings.WordWrap != 0);
    m_editor->SetViewEOL(settings.LineEndings != 0);
    m_editor->SetViewWS(settings.Whitespace == 1 ? CMFCScintilla::SCWS_VISIBLEALWAYS : CMFCScintilla::SCWS_INVISIBLE);
    m_editor->SetCaretLine(settings.CaretLine != 0, settings.CaretLineColour,
                           settings.CaretLineTransparency);
    m_editor->SetLineNumberMargin(settings.LineNumbers != 0);
    m_editor->SetBlockSelect(settings.BlockSelect != 0);
    m_editor->SetUseTabs(settings.TabAsSpaces == 0);
    m_editor->SetIndentationGuides(settings.TabGuides ? CMFCScintilla::SC_IV_LOOKBOTH : CMFCScintilla::SC_IV_NONE);
    m_editor->SetTabWidth(settings.TabWidth);
    m_editor->SetFont(settings.FontStyle, settings.FontSize, settings.FontBold != 0,
                      settings.FontItalic != 0);
    if (settings.LineNumbers)
        m_editor->SetLineNumberMargin(true);
}

QString CScrivelView::PositionText() const
{
    const long line = m_editor->GetCurrentLine() + 1;
    const long column = m_editor->GetColumn();
    return QString::asprintf("Ln %2ld Col %2ld", line, column);
}

void CScrivelView::OnUpdateUi()
{
    Q_EMIT positionChanged(PositionText());
}

void CScrivelView::OnModified(int position, int type, const char* text, int length,
                              int linesAdded, int line, int foldNow, int foldPrev)
{
    Q_UNUSED(position);
    Q_UNUSED(text);
    Q_UNUSED(length);
    Q_UNUSED(line);
    Q_UNUSED(foldNow);
    Q_UNUSED(foldPrev);
    Q_UNUSED(type);
    if (linesAdded != 0) {
        CMainFrame* frame = CMorvaneApp::MainFrame();
        if (frame && frame->Settings().view.LineNumbers)
            m_editor->SetLineNumberMargin(true);
    }
}
