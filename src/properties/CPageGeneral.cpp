#include "CPageGeneral.h"

#include "CColourButton.h"
#include "ViewRefresh.h"
#include "settings/MainFrameSettings.h"
#include "shell/IShell.h"

#include <QCheckBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

CPageGeneral::CPageGeneral(IShell& shell, QWidget* parent)
    : CPropertyPageBase(tr("General"), QStringLiteral("properties.html#general"), parent), m_shell(shell)
{
    setObjectName(QStringLiteral("PageGeneral"));
    auto* layout = new QVBoxLayout(this);

    auto* view = new QGroupBox(tr("View"), this);
    auto* grid = new QGridLayout(view);
    m_wordWrap = AddCheck(tr("&Word wrap"));
    m_whitespace = AddCheck(tr("White &space"));
    m_lineEndings = AddCheck(tr("Line &endings"));
    m_lineNumbers = AddCheck(tr("Line &numbers"));
    m_codeFolding = AddCheck(tr("Code &folding"));
    m_blockSelect = AddCheck(tr("&Block select"));
    m_caretLine = AddCheck(tr("Highlight &caret line"));
    m_matchBracket = AddCheck(tr("&Match brackets"));
    const QList<QCheckBox*> checks{m_wordWrap, m_whitespace, m_lineEndings, m_lineNumbers,
                                   m_codeFolding, m_blockSelect, m_caretLine, m_matchBracket};
    for (int i = 0; i < checks.size(); ++i)
        grid->addWidget(checks[i], i / 2, i % 2);
    layout->addWidget(view);

    auto* tabs = new QGroupBox(tr("Tabs"), this);
    auto* tabRow = new QHBoxLayout(tabs);
    m_tabAsSpaces = AddCheck(tr("Insert s&paces for tabs"));
    m_tabGuides = AddCheck(tr("Indentation &guides"));
    m_tabWidth = new QSpinBox(tabs);
    m_tabWidth->setRange(1, 16);
    m_tabWidth->setObjectName(QStringLiteral("TabWidth"));
    connect(m_tabWidth, &QSpinBox::valueChanged, this, [this] { if (!m_showing) SetModified(); });
    tabRow->addWidget(m_tabAsSpaces);
    tabRow->addWidget(m_tabGuides);
    tabRow->addStretch();
    auto* tabWidthLabel = new QLabel(tr("&Tab width:"), tabs);
    tabWidthLabel->setBuddy(m_tabWidth);
    tabRow->addWidget(tabWidthLabel);
    tabRow->addWidget(m_tabWidth);
    layout->addWidget(tabs);

    auto* font = new QGroupBox(tr("Font"), this);
    auto* fontRow = new QHBoxLayout(font);
    m_font = new QFontComboBox(font);
    m_font->setObjectName(QStringLiteral("FontFace"));
    m_fontSize = new QSpinBox(font);
    m_fontSize->setRange(4, 72);
    m_fontSize->setObjectName(QStringLiteral("FontSize"));
    m_bold = AddCheck(tr("B&old"));
    m_italic = AddCheck(tr("&Italic"));
    connect(m_font, &QFontComboBox::currentFontChanged, this, [this] {
        if (!m_showing) {
            m_fontTouched = true;
            SetModified();
        }
    });
    connect(m_fontSize, &QSpinBox::valueChanged, this, [this] { if (!m_showing) SetModified(); });
    fontRow->addWidget(m_font, 1);
    fontRow->addWidget(m_fontSize);
    fontRow->addWidget(m_bold);
    fontRow->addWidget(m_italic);
    layout->addWidget(font);

    auto* colours = new QGroupBox(tr("Colours"), this);
    auto* form = new QFormLayout(colours);
    m_braceHighlight = new CColourButton(colours);
    m_braceBad = new CColourButton(colours);
    m_caretColour = new CColourButton(colours);
    m_caretAlpha = new QSpinBox(colours);
    m_caretAlpha->setRange(0, 255);
    m_braceHighlight->setObjectName(QStringLiteral("BraceHighlight"));
    m_braceBad->setObjectName(QStringLiteral("BraceBadColour"));
    m_caretColour->setObjectName(QStringLiteral("CaretLineColour"));
    m_caretAlpha->setObjectName(QStringLiteral("CaretLineTransparency"));
    for (CColourButton* button : {m_braceHighlight, m_braceBad, m_caretColour})
        connect(button, &CColourButton::colourChanged, this, [this] { if (!m_showing) SetModified(); });
    connect(m_caretAlpha, &QSpinBox::valueChanged, this, [this] { if (!m_showing) SetModified(); });
    form->addRow(tr("Matched bracket:"), m_braceHighlight);
    form->addRow(tr("Unmatched bracket:"), m_braceBad);
    form->addRow(tr("Caret line:"), m_caretColour);
    form->addRow(tr("Caret line opacity (0-255):"), m_caretAlpha);
    layout->addWidget(colours);
    layout->addStretch();

    Reset();
}

QCheckBox* CPageGeneral::AddCheck(const QString& text)
{
    auto* box = new QCheckBox(text, this);
    connect(box, &QCheckBox::toggled, this, [this] { if (!m_showing) SetModified(); });
    return box;
}

void CPageGeneral::Show(const ViewSettings& settings)
{
    m_showing = true;
    m_wordWrap->setChecked(settings.WordWrap);
    m_whitespace->setChecked(settings.Whitespace);
    m_lineEndings->setChecked(settings.LineEndings);
    m_lineNumbers->setChecked(settings.LineNumbers);
    m_codeFolding->setChecked(settings.CodeFolding);
    m_blockSelect->setChecked(settings.BlockSelect);
    m_caretLine->setChecked(settings.CaretLine);
    m_matchBracket->setChecked(settings.MatchBracket);
    m_tabAsSpaces->setChecked(settings.TabAsSpaces);
    m_tabGuides->setChecked(settings.TabGuides);
    m_tabWidth->setValue(settings.TabWidth);
    m_font->setCurrentFont(QFont(settings.FontStyle));
    m_fontSize->setValue(settings.FontSize);
    m_bold->setChecked(settings.FontBold);
    m_italic->setChecked(settings.FontItalic);
    m_braceHighlight->SetColour(ColourFromRef(settings.BraceHighlight));
    m_braceBad->SetColour(ColourFromRef(settings.BraceBadColour));
    m_caretColour->SetColour(ColourFromRef(settings.CaretLineColour));
    m_caretAlpha->setValue(settings.CaretLineTransparency);
    m_fontTouched = false;
    m_showing = false;
}

ViewSettings CPageGeneral::Edited() const
{
    ViewSettings settings = m_shell.Settings().view;
    settings.WordWrap = m_wordWrap->isChecked();
    settings.Whitespace = m_whitespace->isChecked();
    settings.LineEndings = m_lineEndings->isChecked();
    settings.LineNumbers = m_lineNumbers->isChecked();
    settings.CodeFolding = m_codeFolding->isChecked();
    settings.BlockSelect = m_blockSelect->isChecked();
    settings.CaretLine = m_caretLine->isChecked();
    settings.MatchBracket = m_matchBracket->isChecked();
    settings.TabAsSpaces = m_tabAsSpaces->isChecked();
    settings.TabGuides = m_tabGuides->isChecked();
    settings.TabWidth = m_tabWidth->value();
    // A face is kept to the 31 characters the settings allow.
    // The combo shows a stand-in for a face this desktop lacks; only a choice changes it.
    if (m_fontTouched)
        settings.FontStyle = m_font->currentFont().family().left(ViewSettings::MaxFontStyleLength);
    settings.FontSize = m_fontSize->value();
    settings.FontBold = m_bold->isChecked();
    settings.FontItalic = m_italic->isChecked();
    settings.BraceHighlight = RefFromColour(m_braceHighlight->Colour());
    settings.BraceBadColour = RefFromColour(m_braceBad->Colour());
    settings.CaretLineColour = RefFromColour(m_caretColour->Colour());
    settings.CaretLineTransparency = m_caretAlpha->value();
    return settings;
}

void CPageGeneral::Apply()
{
    m_shell.Settings().view = Edited();
    ViewRefresh::ApplySettings(m_shell);
    SetModified(false);
}

void CPageGeneral::Reset()
{
    Show(m_shell.Settings().view);
    SetModified(false);
}
