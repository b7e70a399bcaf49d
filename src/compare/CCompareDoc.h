#pragma once

#include "editor/AnsiCodePage.h"
#include "framework/CDocument.h"

#include <QPointer>

class CCompareView;

// The document of a compare tab: which two files, and how each is written back. The
// text itself lives in the view's two panes.
class CCompareDoc : public CDocument
{
    Q_OBJECT
public:
    struct Side
    {
        QString path;
        // What the header shows: the path, or a note such as "(unsaved text)".
        QString label;
        int encoding = 3;
        bool writeMark = false;
        // Never written back: a text that isn't a file, or a form we can't write whole.
        bool readOnly = false;
    };

    explicit CCompareDoc(QObject* parent = nullptr);

    // The code page "Ansi" sides are read and written in: the one the editor uses.
    static AnsiCodePage CodePage();

    Side& GetSide(int side) { return m_sides[side]; }
    const Side& GetSide(int side) const { return m_sides[side]; }
    void SwapSides();

    void SetView(CCompareView* view) { m_view = view; }
    CCompareView* GetView() const { return m_view; }

    // "LEFT <-> RIGHT" by file names.
    void UpdateTitle();
    void SetModifiedFlag(bool modified = true) override;
    // Writes every side that was edited; the path is not used.
    bool DoSave(const QString& path, bool replace = true) override;

private:
    Side m_sides[2];
    QPointer<CCompareView> m_view;
};
