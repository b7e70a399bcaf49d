#pragma once

#include "framework/CChildFrame.h"
#include "syntax/CSyntaxParser.h"

class CScrivelDoc;
class CScrivelView;
class CSyntaxParserList;

// The MDI child of a text document. It keeps the index of the document's parser and a
// copy of that parser, and offers its view every command first.
class CScrivelFrame : public CChildFrame
{
    Q_OBJECT
public:
    explicit CScrivelFrame(CScrivelDoc* document, QWidget* parent = nullptr);
    ~CScrivelFrame() override;

    CScrivelView* GetView() const { return m_view; }
    CScrivelDoc* GetTextDocument() const;

    int GetParserIndex() const { return m_parserIndex; }
    // Stores an index chosen elsewhere; the parser itself is then read from the list.
    void SetParserIndex(int index);
    // Stores an index with the parser it names (no colours are applied).
    void SetParser(int index, const CSyntaxParser& parser);
    // Chooses parser `index` of the list when it exists: stores it and applies it to
    // the view. False when there is no such parser.
    bool SelectParser(int index);
    // Chooses the first parser of `parsers` that claims `extension` (with its dot; ".*"
    // for a new document), stores it and applies it; the list becomes the one View As
    // chooses from. Returns the index, or -1 (the control left as it is) when no parser
    // claims the extension.
    int ApplyParserForExtension(const CSyntaxParserList& parsers, const QString& extension);
    // The line comment of the frame's parser; empty when there is none.
    QString CommentToken() const;
    // Whether the frame's parser indents after an opening brace.
    bool IndentsAfterBrace() const;

    // The parser list the View As commands choose from; the editor's host sets the
    // program's list on every new frame.
    void SetParserList(const CSyntaxParserList* list) { m_parserList = list; }
    const CSyntaxParserList* ParserList() const;

    // A second frame on the same document, sharing its text, undo and bookmarks.
    CScrivelFrame* OpenNewWindow();

    QString StatusText() const override;
    void OnInitialUpdate() override;
    bool OnCmdMsg(int id) override;
    void OnUpdateCmdUI(int id, CCmdUI& ui) const override;

private:
    bool HasParser() const;
    CSyntaxParser CurrentParser() const;

    CScrivelView* m_view;
    int m_parserIndex = -1;
    bool m_hasParserCopy = false;
    CSyntaxParser m_parser;
    const CSyntaxParserList* m_parserList = nullptr;
};
