#pragma once

#include "CPropertyPageBase.h"

class IShell;
class QCheckBox;

// General More: undo after saving, reopening the last session's files, toolbar image size, printing, tool output, and
// whether the desktop offers Morvane for text files.
class CPageGeneralMore : public CPropertyPageBase
{
    Q_OBJECT
public:
    CPageGeneralMore(IShell& shell, QWidget* parent);

    void Apply() override;
    void Reset() override;

    QCheckBox* ResetUndo() const { return m_resetUndo; }
    QCheckBox* LargeIcons() const { return m_largeIcons; }
    QCheckBox* PrintHeader() const { return m_printHeader; }
    QCheckBox* PrintFooter() const { return m_printFooter; }
    QCheckBox* PrintLineNumbers() const { return m_printLineNumbers; }
    QCheckBox* ReuseWindows() const { return m_reuseWindows; }
    QCheckBox* Integration() const { return m_integration; }
    QCheckBox* RestoreSession() const { return m_restoreSession; }

private:
    QCheckBox* AddCheck(const QString& text, const char* name);

    IShell& m_shell;
    QCheckBox* m_resetUndo;
    QCheckBox* m_largeIcons;
    QCheckBox* m_printHeader;
    QCheckBox* m_printFooter;
    QCheckBox* m_printLineNumbers;
    QCheckBox* m_reuseWindows;
    QCheckBox* m_integration;
    QCheckBox* m_restoreSession;
    bool m_showing = false;
};
