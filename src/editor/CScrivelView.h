#pragma once

#include <QPointer>
#include <QWidget>

class CMFCScintilla;
class CScrivelDoc;
struct ViewSettings;

// The view of a text document: one control filling the widget, turning the control's
// notifications into document and status changes.
class CScrivelView : public QWidget
{
    Q_OBJECT
public:
    explicit CScrivelView(CScrivelDoc* document, QWidget* parent = nullptr);
    ~CScrivelView() override;

    CScrivelDoc* GetDocument() const { return m_document; }
    CMFCScintilla* GetEditor() const { return m_editor; }

    // Applies the display settings: wrap, line ends, white space, caret line, line
    // numbers, folding, block selection, then the font.
    void ApplyViewSettings(const ViewSettings& settings);
    // "Ln %2d Col %2d" for the caret, the line from 1 and the column from 0.
    QString PositionText() const;

Q_SIGNALS:
    void positionChanged(const QString& text);

private:
    void OnUpdateUi();
    void OnModified(int position, int type, const char* text, int length, int linesAdded,
                    int line, int foldNow, int foldPrev);

    QPointer<CScrivelDoc> m_document;
    CMFCScintilla* m_editor;
};
