#pragma once

#include "app/CChildFrame.h"

class CScrivelDoc;
class CScrivelView;

// The MDI child of a text document. It keeps the index of the document's parser.
class CScrivelFrame : public CChildFrame
{
    Q_OBJECT
public:
    explicit CScrivelFrame(CScrivelDoc* document, QWidget* parent = nullptr);
    ~CScrivelFrame() override;

    CScrivelView* GetView() const { return m_view; }
    CScrivelDoc* GetTextDocument() const;

    int GetParserIndex() const { return m_parserIndex; }
    void SetParserIndex(int index) { m_parserIndex = index; }

    QString StatusText() const override;

private:
    CScrivelView* m_view;
    int m_parserIndex = -1;
};
