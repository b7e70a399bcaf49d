#pragma once

#include "CPropertyPageBase.h"
#include "settings/ViewSettings.h"

class CColourButton;
class IShell;
class QCheckBox;
class QFontComboBox;
class QSpinBox;

// General: how every text view looks and behaves (wrap, marks, margins, tabs, font,
// bracket and caret-line colours).
class CPageGeneral : public CPropertyPageBase
{
    Q_OBJECT
public:
    CPageGeneral(IShell& shell, QWidget* parent);

    void Apply() override;
    void Reset() override;

    // What the controls hold now, over the shell's settings.
    ViewSettings Edited() const;

private:
    QCheckBox* AddCheck(const QString& text);
    void Show(const ViewSettings& settings);

    IShell& m_shell;
    QCheckBox* m_wordWrap;
    QCheckBox* m_whitespace;
    QCheckBox* m_lineEndings;
    QCheckBox* m_lineNumbers;
    QCheckBox* m_codeFolding;
    QCheckBox* m_blockSelect;
    QCheckBox* m_caretLine;
    QCheckBox* m_matchBracket;
    QCheckBox* m_tabGuides;
    QCheckBox* m_tabAsSpaces;
    QSpinBox* m_tabWidth;
    QFontComboBox* m_font;
    QSpinBox* m_fontSize;
    QCheckBox* m_bold;
    QCheckBox* m_italic;
    CColourButton* m_braceHighlight;
    CColourButton* m_braceBad;
    CColourButton* m_caretColour;
    QSpinBox* m_caretAlpha;
    bool m_showing = false;
    bool m_fontTouched = false;
};
