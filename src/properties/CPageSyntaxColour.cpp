#include "CPageSyntaxColour.h"

#include "CColourButton.h"
#include "CSampleWnd.h"
#include "ViewRefresh.h"
#include "shell/IShell.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>

CPageSyntaxColour::CPageSyntaxColour(IShell& shell, QWidget* parent, const QString& folder)
    : CPropertyPageBase(tr("Syntax Coloring"), QStringLiteral("properties.html#syntax"), parent),
      m_shell(shell), m_folder(folder.isEmpty() ? CSyntaxParserList::ConfiguredFolder() : folder),
      m_parsers(m_folder), m_languages(new QComboBox(this)), m_styles(new QListWidget(this)),
      m_fore(new CColourButton(this)), m_back(new CColourButton(this)),
      m_eolFilled(new QCheckBox(tr("&Fill to the end of the line"), this)), m_sample(new CSampleWnd(this))
{
    setObjectName(QStringLiteral("PageSyntaxColour"));
    m_languages->setObjectName(QStringLiteral("SyntaxLanguage"));
    m_styles->setObjectName(QStringLiteral("SyntaxStyles"));
    m_fore->setObjectName(QStringLiteral("SyntaxFore"));
    m_back->setObjectName(QStringLiteral("SyntaxBack"));
    m_eolFilled->setObjectName(QStringLiteral("SyntaxEolFilled"));

    auto* languageLabel = new QLabel(tr("&Language:"), this);
    languageLabel->setBuddy(m_languages);
    auto* styleLabel = new QLabel(tr("&Styles:"), this);
    styleLabel->setBuddy(m_styles);
    auto* foreLabel = new QLabel(tr("F&oreground:"), this);
    foreLabel->setBuddy(m_fore);
    auto* backLabel = new QLabel(tr("&Background:"), this);
    backLabel->setBuddy(m_back);
    auto* sampleLabel = new QLabel(tr("Sample:"), this);

    auto* grid = new QGridLayout(this);
    grid->addWidget(languageLabel, 0, 0);
    grid->addWidget(m_languages, 0, 1, 1, 2);
    grid->addWidget(styleLabel, 1, 0, Qt::AlignTop);
    grid->addWidget(m_styles, 1, 1, 5, 1);
    grid->addWidget(foreLabel, 1, 2);
    grid->addWidget(m_fore, 2, 2);
    grid->addWidget(backLabel, 3, 2);
    grid->addWidget(m_back, 4, 2);
    grid->addWidget(m_eolFilled, 5, 2, Qt::AlignTop);
    grid->addWidget(sampleLabel, 6, 0);
    grid->addWidget(m_sample, 6, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(5, 1);
    m_controls = {languageLabel, m_languages, styleLabel, m_styles, foreLabel, m_fore,
                  backLabel, m_back, m_eolFilled, sampleLabel, m_sample};

    connect(m_languages, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!m_showing)
            ShowLanguage(index);
    });
    connect(m_styles, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!m_showing)
            ShowStyle(row);
    });
    connect(m_fore, &CColourButton::colourChanged, this, &CPageSyntaxColour::StoreStyle);
    connect(m_back, &CColourButton::colourChanged, this, &CPageSyntaxColour::StoreStyle);
    connect(m_eolFilled, &QCheckBox::toggled, this, &CPageSyntaxColour::StoreStyle);
    Reset();
}

void CPageSyntaxColour::EnableControls(bool on)
{
    for (QWidget* widget : std::as_const(m_controls))
        widget->setEnabled(on);
}

void CPageSyntaxColour::ShowLanguage(int index)
{
    m_showing = true;
    m_styles->clear();
    const CSyntaxParser parser = m_parsers.GetParser(index);
    if (index >= 0 && index < m_parsers.GetCount()) {
        for (int i = 0; i < parser.colourCount; ++i)
            m_styles->addItem(parser.colours[size_t(i)].name);
    }
    m_showing = false;
    m_styles->setCurrentRow(m_styles->count() > 0 ? 0 : -1);
    ShowStyle(m_styles->currentRow());
}

void CPageSyntaxColour::ShowStyle(int row)
{
    const CSyntaxParser parser = m_parsers.GetParser(m_languages->currentIndex());
    const SyntaxColour colour = row >= 0 && row < parser.colourCount ? parser.colours[size_t(row)] : SyntaxColour();
    m_showing = true;
    m_fore->SetColour(ColourFromRef(colour.fore));
    m_back->SetColour(ColourFromRef(colour.back));
    m_eolFilled->setChecked(colour.eolFilled);
    m_sample->SetColours(m_fore->Colour(), m_back->Colour());
    m_showing = false;
}

void CPageSyntaxColour::StoreStyle()
{
    m_sample->SetColours(m_fore->Colour(), m_back->Colour());
    if (m_showing)
        return;
    const int index = m_languages->currentIndex();
    const int row = m_styles->currentRow();
    CSyntaxParser parser = m_parsers.GetParser(index);
    if (index < 0 || index >= m_parsers.GetCount() || row < 0 || row >= parser.colourCount)
        return;
    SyntaxColour& colour = parser.colours[size_t(row)];
    const SyntaxColour before = colour;
    colour.fore = RefFromColour(m_fore->Colour());
    colour.back = RefFromColour(m_back->Colour());
    colour.eolFilled = m_eolFilled->isChecked();
    if (colour == before)
        return;
    parser.modified = true;
    m_parsers.SetParser(index, parser);
    SetModified();
}

void CPageSyntaxColour::Apply()
{
    m_failed.clear();
    bool written = false;
    for (int i = 0; i < m_parsers.GetCount(); ++i) {
        CSyntaxParser parser = m_parsers.GetParser(i);
        if (!parser.modified)
            continue;
        if (parser.SaveColours()) {
            written = true;
            parser.modified = false;
            m_parsers.SetParser(i, parser);
        } else {
            m_failed << parser.menuName;
        }
    }
    if (written)
        ViewRefresh::ApplyParsers(m_shell, m_parsers);
    if (!m_failed.isEmpty()) {
        QMessageBox::warning(this, tr("Syntax Coloring"),
                             tr("The colours of these languages could not be saved: %1")
                                 .arg(m_failed.join(QStringLiteral(", "))));
        return;
    }
    SetModified(false);
}

void CPageSyntaxColour::Reset()
{
    m_parsers.Load(m_folder);
    m_showing = true;
    m_languages->clear();
    m_languages->addItems(m_parsers.MenuNames());
    m_showing = false;
    EnableControls(m_parsers.GetCount() > 0);
    m_languages->setCurrentIndex(m_parsers.GetCount() > 0 ? 0 : -1);
    ShowLanguage(m_languages->currentIndex());
    SetModified(false);
}
