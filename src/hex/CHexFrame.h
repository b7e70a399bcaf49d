#pragma once

#include "framework/CChildFrame.h"
#include "hex/CHexFindDialog.h"

#include <QMessageBox>

class CHexDocument;
class CHexEditView;
class CHexValuesPanel;

// The MDI child of a binary document: the hex view with the values panel beside it. It
// answers the edit commands and keeps the status text (caret offset, selection, mode).
class CHexFrame : public CChildFrame
{
    Q_OBJECT
public:
    explicit CHexFrame(CHexDocument* document, QWidget* parent = nullptr);
    ~CHexFrame() override;

    CHexDocument* GetHexDocument() const;
    CHexEditView* View() const { return m_view; }
    CHexValuesPanel* ValuesPanel() const { return m_valuesPanel; }

    QString StatusText() const override;
    void OnInitialUpdate() override;
    bool OnCmdMsg(int id) override;
    void OnUpdateCmdUI(int id, CCmdUI& ui) const override;

    // Searches for `request` from the caret and selects the match. `forward` is the
    // direction of this search (Find Next, Find Previous, or the dialog's choice).
    // Says so and returns false when there is no match.
    bool Find(const CHexFindRequest& request, bool forward);
    CHexFindRequest LastFind() const { return m_lastFind; }

protected:
    // Seams for tests.
    virtual void ShowMessage(QMessageBox::Icon icon, const QString& text);
    virtual bool RunFindDialog(CHexFindRequest* request);
    virtual bool RunGotoDialog(qint64* offset);

private:
    void UpdateStatus();
    void FindNext(bool forward);

    CHexEditView* m_view;
    CHexValuesPanel* m_valuesPanel;
    CHexFindRequest m_lastFind;
    QString m_lastFindText;
};
