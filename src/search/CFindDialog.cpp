#include "CFindDialog.h"

#include "CHistoryComboBox.h"
#include "CSearchCommands.h"
#include "FindReplaceSettings.h"
#include "SearchDialogText.h"

#include "framework/CommandIds.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {
const QString PlacementName = QStringLiteral("FindDialog");
}

CFindDialog::CFindDialog(CSearchCommands* commands, const QString& initialText, QWidget* parent)
    : QDialog(parent)
    , m_commands(commands)
    , m_initialText(initialText)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowTitle(tr("Find"));
    setSizeGripEnabled(true);
    BuildControls();
    DialogPlacement::Restore(this, PlacementName);

    // The box is filled with its change signals off, so nothing reacts to the loading.
    m_findCombo->blockSignals(true);
    m_findCombo->clear();
    LoadOptions();
    m_findCombo->setHistorySection(QStringLiteral("SearchHistory"));
    m_findCombo->loadHistory();
    if (!m_initialText.isEmpty())
        m_findCombo->setEditText(m_initialText);
    else if (m_findCombo->count() > 0)
        m_findCombo->setCurrentIndex(0);
    m_findCombo->blockSignals(false);
    m_findCombo->lineEdit()->selectAll();

    // The main window's keys for Replace and Find Next work here too.
    auto* replaceKey = new QShortcut(m_commands->CommandShortcut(Cmd::EditReplace), this);
    replaceKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(replaceKey, &QShortcut::activated, this,
            [this] { m_commands->ShowReplaceDialog(m_findCombo->currentText()); });
    auto* findNextKey = new QShortcut(m_commands->CommandShortcut(Cmd::EditFindNext), this);
    findNextKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(findNextKey, &QShortcut::activated, this, &CFindDialog::OnFindNext);
}

CFindDialog::~CFindDialog()
{
    DialogPlacement::Save(this, PlacementName);
}

void CFindDialog::BuildControls()
{
    auto* findLabel = new QLabel(tr("Fi&nd what:"), this);
    m_findCombo = new CHistoryComboBox(this);
    m_findCombo->setObjectName(QStringLiteral("findCombo"));
    m_findCombo->setEditable(true);
    m_findCombo->setInsertPolicy(QComboBox::NoInsert);
    m_findCombo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_findCombo->setMinimumContentsLength(24);
    findLabel->setBuddy(m_findCombo);

    m_matchCaseBox = new QCheckBox(tr("Match &case"), this);
    m_matchCaseBox->setObjectName(QStringLiteral("matchCase"));
    m_matchWordBox = new QCheckBox(tr("Match &whole word"), this);
    m_matchWordBox->setObjectName(QStringLiteral("matchWord"));
    m_regExpBox = new QCheckBox(tr("Use regular e&xpressions"), this);
    m_regExpBox->setObjectName(QStringLiteral("regExp"));
    m_wrapAroundBox = new QCheckBox(tr("Wra&p around"), this);
    m_wrapAroundBox->setObjectName(QStringLiteral("wrapAround"));

    auto* direction = new QGroupBox(tr("Direction"), this);
    m_upButton = new QRadioButton(tr("&Up"), direction);
    m_upButton->setObjectName(QStringLiteral("searchUp"));
    m_downButton = new QRadioButton(tr("&Down"), direction);
    m_downButton->setObjectName(QStringLiteral("searchDown"));
    auto* directionLayout = new QHBoxLayout(direction);
    directionLayout->addWidget(m_upButton);
    directionLayout->addWidget(m_downButton);

    m_findNextButton = new QPushButton(tr("&Find Next"), this);
    m_findNextButton->setObjectName(QStringLiteral("findNext"));
    m_findNextButton->setDefault(true);
    m_markAllButton = new QPushButton(tr("&Mark All"), this);
    m_markAllButton->setObjectName(QStringLiteral("markAll"));
    m_closeButton = new QPushButton(tr("Close"), this);
    m_closeButton->setObjectName(QStringLiteral("close"));
    m_closeButton->setAutoDefault(false);
    m_markAllButton->setAutoDefault(false);

    auto* help = new QLabel(RegularExpressionHelpText(), this);
    help->setObjectName(QStringLiteral("regExpHelp"));
    help->setWordWrap(true);
    help->setEnabled(false);

    auto* options = new QVBoxLayout;
    options->addWidget(m_matchCaseBox);
    options->addWidget(m_matchWordBox);
    options->addWidget(m_regExpBox);
    options->addWidget(m_wrapAroundBox);
    auto* optionRow = new QHBoxLayout;
    optionRow->addLayout(options);
    optionRow->addWidget(direction, 0, Qt::AlignTop);
    optionRow->addStretch();

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_findNextButton);
    buttons->addWidget(m_markAllButton);
    buttons->addWidget(m_closeButton);
    buttons->addStretch();

    auto* grid = new QGridLayout(this);
    grid->addWidget(findLabel, 0, 0);
    grid->addWidget(m_findCombo, 0, 1);
    grid->addLayout(optionRow, 1, 0, 1, 2);
    grid->addWidget(help, 2, 0, 1, 2);
    grid->addLayout(buttons, 0, 2, 3, 1);
    grid->setColumnStretch(1, 1);

    connect(m_matchCaseBox, &QCheckBox::toggled, this, [this](bool on) { m_matchCase = on; });
    connect(m_matchWordBox, &QCheckBox::toggled, this, [this](bool on) { m_matchWord = on; });
    connect(m_regExpBox, &QCheckBox::toggled, this, [this](bool on) { m_regExp = on; });
    connect(m_wrapAroundBox, &QCheckBox::toggled, this, [this](bool on) { m_wrapAround = on; });
    // The direction is whatever the checked button says.
    connect(m_upButton, &QRadioButton::toggled, this, [this](bool on) { m_searchUp = on; });
    connect(m_findNextButton, &QPushButton::clicked, this, &CFindDialog::OnFindNext);
    connect(m_markAllButton, &QPushButton::clicked, this, &CFindDialog::OnMarkAll);
    connect(m_closeButton, &QPushButton::clicked, this, &CFindDialog::OnClose);
}

void CFindDialog::LoadOptions()
{
    const FindReplaceSettings settings = FindReplaceSettings::Load();
    m_matchCase = settings.matchCase;
    m_matchWord = settings.matchWord;
    m_regExp = settings.regExp;
    m_searchUp = settings.searchUp;
    m_wrapAround = settings.wrapAround;
    m_matchCaseBox->setChecked(m_matchCase);
    m_matchWordBox->setChecked(m_matchWord);
    m_regExpBox->setChecked(m_regExp);
    m_wrapAroundBox->setChecked(m_wrapAround);
    (m_searchUp ? m_upButton : m_downButton)->setChecked(true);
}

void CFindDialog::FocusFindBox()
{
    m_findCombo->setFocus();
    m_findCombo->lineEdit()->selectAll();
}

void CFindDialog::OnFindNext()
{
    const QString text = m_findCombo->currentText();
    if (text.isEmpty())
        return;
    m_findCombo->addToHistory(text);
    m_commands->FindInActiveView(text, m_matchCase, m_matchWord, m_regExp, m_searchUp,
                                 m_wrapAround);
}

void CFindDialog::OnMarkAll()
{
    const QString text = m_findCombo->currentText();
    if (text.isEmpty())
        return;
    m_commands->MarkAllInActiveView(text, m_matchCase, m_matchWord, m_regExp);
}

void CFindDialog::OnClose()
{
    FindReplaceSettings settings;
    settings.matchCase = m_matchCase;
    settings.matchWord = m_matchWord;
    settings.regExp = m_regExp;
    settings.searchUp = m_searchUp;
    settings.wrapAround = m_wrapAround;
    settings.SaveFind();
    reject();
}
