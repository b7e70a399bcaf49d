#pragma once

#include "editor/CScrivelDoc.h"
#include "settings/ViewSettings.h"

#include <QList>
#include <QPointer>
#include <QWidget>

class CEditorCommands;
class CMFCScintilla;
class LongLineStyler;
class CScrivelFrame;
class CSyntaxParser;
class QMenu;
struct CCmdUI;

// The view of a text document: one control filling the widget. It carries out the
// editing commands and turns the control's notifications into document, status and
// navigation changes.
class CScrivelView : public QWidget
{
    Q_OBJECT
public:
    explicit CScrivelView(CScrivelDoc* document, QWidget* parent = nullptr);
    ~CScrivelView() override;

    CScrivelDoc* GetDocument() const { return m_document; }
    CMFCScintilla* GetEditor() const { return m_editor; }
    // The frame around this view; null while the view stands alone.
    CScrivelFrame* GetFrame() const;

    // The editor's part of the program, which the view shares with every other view:
    // the live settings, the navigation history, the commands. A view without a host
    // (in a test) works by its own copy of the settings.
    void SetHost(CEditorCommands* host);
    CEditorCommands* Host() const;

    // Takes a copy of the display settings and applies them: wrap, line ends, white
    // space, caret line, line numbers, folding, block selection, brace matching, tabs,
    // then the font.
    void ApplyViewSettings(const ViewSettings& settings);
    // The settings the view works by: the host's where there is one, else the copy
    // taken by ApplyViewSettings.
    const ViewSettings& Settings() const;
    // The editor settings the frame changes on every view at once.
    void ApplyEditorSettings(bool useTabs, bool tabGuides, int tabWidth, quint32 caretColour,
                             int caretAlpha);
    // The font; the line-number margin follows when it is shown.
    void SetFont(const QString& face, int size, bool bold, bool italic);
    // Folding off first unfolds every line folded by a margin click.
    void SetFolding(bool on);
    // Puts a parser's colours on the control with this view's settings.
    void ApplyParser(const CSyntaxParser& parser);

    // "Ln %2d Col %2d" for the caret, the line from 1 and the column from 0.
    QString PositionText() const;
    // The text a search starts with (see CMFCScintilla::GetSearchSeed).
    QString GetSearchSeed();
    void SetSearchFlags(bool matchCase, bool wholeWord, bool regexp);
    // Moves the caret to a position and scrolls it into view.
    void GotoPosition(long position);
    // Whether the last update saw a selection.
    bool HasSelection() const { return m_hasSelection; }
    // Header lines folded by a margin click, in the order they were folded.
    const QList<long>& FoldedLines() const { return m_foldedLines; }

    // Commands (ids in CommandIds.h): true when carried out here.
    bool OnCmdMsg(int id);
    void OnUpdateCmdUI(int id, CCmdUI& ui) const;

    // The context menu, built of the shared actions where there is a host; the caller
    // owns it.
    QMenu* CreateContextMenu();

    // Shows (or with `force` shows and hides by `visibleLevels`) the lines below a
    // header down to its last child; `line` ends on the line after the block.
    void ExpandRange(long& line, bool doExpand, bool force, int visibleLevels, int level = -1);

    // Notification handlers, public so that they can be driven directly.
    void OnCharAdded(int ch);
    void OnUpdateUi();
    void OnModified(int position, int type, const char* text, int length, int linesAdded,
                    int line, int foldNow, int foldPrev);
    void OnMarginClick(int position, int modifiers, int margin);

Q_SIGNALS:
    void positionChanged(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Very long lines, left uncoloured, are styled in short look-alike pieces instead.
    void UpdateLongLineStyling();
    void OnFoldChanged(long line, int levelNow, int levelPrev);
    void ShowIfParentOpen(long line);
    void RecordNavigation(long from, long to);
    void ShowContextMenu(const QPoint& globalPos);
    void RouteCommand(int id);
    void ConvertWholeDocument(const QString& find, const QString& replace, int flags);
    QByteArray CommentToken() const;
    bool IndentsAfterBrace() const;

    void RequestCommandUpdate();

    QPointer<CScrivelDoc> m_document;
    QPointer<CEditorCommands> m_host;
    CMFCScintilla* m_editor;
    LongLineStyler* m_longLines;
    ViewSettings m_settings;
    QList<long> m_foldedLines;
    bool m_hasSelection = false;
    bool m_braceLit = false;
    long m_lastCaret = 0;
};
