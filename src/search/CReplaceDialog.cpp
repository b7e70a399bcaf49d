#include "CReplaceDialog.h"

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
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {
const QString PlacementName = QStringLiteral("ReplaceDialog");
}

CReplaceDialog::CReplaceDialog(CSearchCommands* commands, const QString& initialText,
                               QWidget* parent)
    : QDialog(parent)
    , m_commands(commands)
    , m_initialText(initialText)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowTitle(tr("Replace"));
    setSizeGripEnabled(true);
    BuildControls();
    DialogPlacement::Restore(this, PlacementName);

    m_findCombo->blockSignals(true);
    m_replaceCombo->blockSignals(true);
    m_findCombo->clear();
    m_replaceCombo->clear();
    LoadOptions();
    m_findCombo->setHistorySection(QStringLiteral("SearchHistory"));
    m_findCombo->loadHistory();
    m_replaceCombo->setHistorySection(QStringLiteral("ReplaceHistory"));
    m_replaceCombo->loadHistory();
    if (!m_initialText.isEmpty())
        m_findCombo->setEditText(m_initialText);
    else if (m_findCombo->count() > 0)
        m_findCombo->setCurrentIndex(0);
    if (m_replaceCombo->count() > 0)
        m_replaceCombo->setCurrentIndex(0);
    m_findCombo->blockSignals(false);
    m_replaceCombo->blockSignals(false);
    m_findCombo->lineEdit()->selectAll();
    UpdateScopeButtons();

    // The main window's keys for Find Next and Find work here too.
    auto* findNextKey = new QShortcut(m_commands->CommandShortcut(Cmd::EditFindNext), this);
    findNextKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(findNextKey, &QShortcut::activated, this, &CReplaceDialog::OnFindNext);
    auto* findKey = new QShortcut(m_commands->CommandShortcut(Cmd::EditFind), this);
    findKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(findKey, &QShortcut::activated, this,
            [this] { m_commands->ShowFindDialog(m_findCombo->currentText()); });
}

CReplaceDialog::~CReplaceDialog()
{
    DialogPlacement::Save(this, PlacementName);
}

void CReplaceDialog::BuildControls()
{
    auto makeCombo = [this](const QString& name) {
        auto* combo = new CHistoryComboBox(this);
        combo->setObjectName(name);
        combo->setEditable(true);
        combo->setInsertPolicy(QComboBox::NoInsert);
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        combo->setMinimumContentsLength(24);
        return combo;
    };
    auto* findLabel = new QLabel(tr("Fi&nd what:"), this);
    m_findCombo = makeCombo(QStringLiteral("findCombo"));
    findLabel->setBuddy(m_findCombo);
    auto* replaceLabel = new QLabel(tr("Re&place with:"), this);
    m_replaceCombo = makeCombo(QStringLiteral("replaceCombo"));
    replaceLabel->setBuddy(m_replaceCombo);

    m_matchCaseBox = new QCheckBox(tr("&Match case"), this);
    m_matchCaseBox->setObjectName(QStringLiteral("matchCase"));
    m_matchWordBox = new QCheckBox(tr("Match &whole words only"), this);
    m_matchWordBox->setObjectName(QStringLiteral("matchWord"));
    m_regExpBox = new QCheckBox(tr("Use Regular E&xpressions"), this);
    m_regExpBox->setObjectName(QStringLiteral("regExp"));

    auto* scope = new QGroupBox(tr("Scope"), this);
    m_selectionButton = new QRadioButton(tr("&Selected text"), scope);
    m_selectionButton->setObjectName(QStringLiteral("scopeSelection"));
    m_documentButton = new QRadioButton(tr("Active d&ocument"), scope);
    m_documentButton->setObjectName(QStringLiteral("scopeDocument"));
    auto* scopeLayout = new QVBoxLayout(scope);
    scopeLayout->addWidget(m_selectionButton);
    scopeLayout->addWidget(m_documentButton);

    m_findNextButton = new QPushButton(tr("&Find Next"), this);
    m_findNextButton->setObjectName(QStringLiteral("findNext"));
    m_findNextButton->setDefault(true);
    m_replaceButton = new QPushButton(tr("&Replace"), this);
    m_replaceButton->setObjectName(QStringLiteral("replace"));
    m_replaceAllButton = new QPushButton(tr("Replace &All"), this);
    m_replaceAllButton->setObjectName(QStringLiteral("replaceAll"));
    m_closeButton = new QPushButton(tr("&Close"), this);
    m_closeButton->setObjectName(QStringLiteral("close"));
    for (QPushButton* button : {m_replaceButton, m_replaceAllButton, m_closeButton})
        button->setAutoDefault(false);

    auto* help = new QLabel(RegularExpressionHelpText(), this);
    help->setObjectName(QStringLiteral("regExpHelp"));
    help->setWordWrap(true);
    help->setEnabled(false);

    auto* options = new QVBoxLayout;
    options->addWidget(m_matchCaseBox);
    options->addWidget(m_matchWordBox);
    options->addWidget(m_regExpBox);
    options->addStretch();
    auto* optionRow = new QHBoxLayout;
    optionRow->addLayout(options);
    optionRow->addWidget(scope, 0, Qt::AlignTop);
    optionRow->addStretch();

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_findNextButton);
    buttons->addWidget(m_replaceButton);
    buttons->addWidget(m_replaceAllButton);
    buttons->addWidget(m_closeButton);
    buttons->addStretch();

    auto* grid = new QGridLayout(this);
    grid->addWidget(findLabel, 0, 0);
    grid->addWidget(m_findCombo, 0, 1);
    grid->addWidget(replaceLabel, 1, 0);
    grid->addWidget(m_replaceCombo, 1, 1);
    grid->addLayout(optionRow, 2, 0, 1, 2);
    grid->addWidget(help, 3, 0, 1, 2);
    grid->addLayout(buttons, 0, 2, 4, 1);
    grid->setColumnStretch(1, 1);

    connect(m_matchCaseBox, &QCheckBox::toggled, this, [this](bool on) { m_matchCase = on; });
    connect(m_matchWordBox, &QCheckBox::toggled, this, [this](bool on) { m_matchWord = on; });
    connect(m_regExpBox, &QCheckBox::toggled, this, [this](bool on) { m_regExp = on; });
    // The scope is whatever the checked button says.
    connect(m_selectionButton, &QRadioButton::toggled, this, [this](bool on) {
        m_selectionScope = on;
        UpdateScopeButtons();
    });
    connect(m_findNextButton, &QPushButton::clicked, this, &CReplaceDialog::OnFindNext);
    connect(m_replaceButton, &QPushButton::clicked, this, &CReplaceDialog::OnReplace);
    connect(m_replaceAllButton, &QPushButton::clicked, this, &CReplaceDialog::OnReplaceAll);
    connect(m_closeButton, &QPushButton::clicked, this, &CReplaceDialog::OnClose);
}

void CReplaceDialog::LoadOptions()
{
    const FindReplaceSettings settings = FindReplaceSettings::Load();
    m_matchCase = settings.matchCase;
    m_matchWord = settings.matchWord;
    m_regExp = settings.regExp;
    m_selectionScope = settings.selection;
    m_matchCaseBox->setChecked(m_matchCase);
    m_matchWordBox->setChecked(m_matchWord);
    m_regExpBox->setChecked(m_regExp);
    (m_selectionScope ? m_selectionButton : m_documentButton)->setChecked(true);
}

void CReplaceDialog::UpdateScopeButtons()
{
    // Finding one match at a time has no meaning inside a selection scope.
    m_findNextButton->setEnabled(!m_selectionScope);
    m_replaceButton->setEnabled(!m_selectionScope);
}

void CReplaceDialog::FocusFindBox()
{
    m_findCombo->setFocus();
    m_findCombo->lineEdit()->selectAll();
}

bool CReplaceDialog::ReadTexts(QString& find, QString& replace)
{
    find = m_findCombo->currentText();
    replace = m_replaceCombo->currentText();
    if (find.isEmpty()) {
        QMessageBox::warning(this, tr("Morvane"), tr("Please provide a search value"));
        return false;
    }
    m_findCombo->addToHistory(find);
    m_replaceCombo->addToHistory(replace);
    return true;
}

void CReplaceDialog::OnFindNext()
{
    if (m_selectionScope)
        return;
    const QString text = m_findCombo->currentText();
    if (text.isEmpty())
        return;
    m_findCombo->addToHistory(text);
    m_commands->FindInActiveView(text, m_matchCase, m_matchWord, m_regExp, false, true);
}

void CReplaceDialog::OnReplace()
{
    if (m_selectionScope)
        return;
    QString find;
    QString replace;
    if (!ReadTexts(find, replace))
        return;
    m_lastFound = m_commands->ReplaceInActiveView(find, replace, m_matchCase, m_matchWord,
                                                  m_regExp, m_selectionScope, false, m_lastFound);
}

void CReplaceDialog::OnReplaceAll()
{
    QString find;
    QString replace;
    if (!ReadTexts(find, replace))
        return;
    m_commands->ReplaceInActiveView(find, replace, m_matchCase, m_matchWord, m_regExp,
                                    m_selectionScope, true, -1);
}

void CReplaceDialog::OnClose()
{
    FindReplaceSettings settings;
    settings.matchCase = m_matchCase;
    settings.matchWord = m_matchWord;
    settings.regExp = m_regExp;
    settings.selection = m_selectionScope;
    settings.SaveReplace();
    reject();
}
