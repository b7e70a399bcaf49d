#pragma once

#include <QMdiSubWindow>
#include <QPointer>

#include "framework/CDocument.h"

// The state a command shows in menus and toolbars, filled by its update handler.
struct CCmdUI
{
    bool handled = false; // some handler spoke for the command
    bool enabled = true;
    bool checked = false;
};

// An MDI child showing one view of a document. Closing the last frame of a document
// asks about unsaved changes and then closes the document.
class CChildFrame : public QMdiSubWindow
{
    Q_OBJECT
public:
    explicit CChildFrame(CDocument* document, QWidget* parent = nullptr);
    ~CChildFrame() override;

    CDocument* GetDocument() const { return m_pDocument; }

    // Text for the status bar's position pane while this frame is active.
    virtual QString StatusText() const { return {}; }
    // Called once the frame is on screen and the document is loaded.
    virtual void OnInitialUpdate() {}

    // Command routing: the main frame offers every command (ids in CommandIds.h) to
    // the active child first. Return true when the command was carried out here.
    virtual bool OnCmdMsg(int id) { Q_UNUSED(id); return false; }
    // Sets `ui.handled` and the state when this frame has a say on the command.
    virtual void OnUpdateCmdUI(int id, CCmdUI& ui) const { Q_UNUSED(id); Q_UNUSED(ui); }

Q_SIGNALS:
    void statusTextChanged(const QString& text);
    void activated(CChildFrame* frame);

protected:
    void closeEvent(QCloseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QPointer<CDocument> m_pDocument;
};
