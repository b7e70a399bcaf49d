#pragma once

#include "framework/CChildFrame.h"

class CCompareDoc;
class CCompareView;

// The tab of a compare: the view, and the commands it answers while it is active.
class CCompareFrame : public CChildFrame
{
    Q_OBJECT
public:
    CCompareFrame(CCompareDoc* document, CCompareView* view, QWidget* parent = nullptr);

    CCompareView* View() const { return m_view; }
    QString StatusText() const override;
    bool OnCmdMsg(int id) override;
    void OnUpdateCmdUI(int id, CCmdUI& ui) const override;

private:
    CCompareView* m_view;
};
