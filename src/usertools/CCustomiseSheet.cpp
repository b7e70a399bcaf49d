#include "usertools/CCustomiseSheet.h"

#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"
#include "usertools/CShortcutsPage.h"
#include "usertools/CToolBarCustomiser.h"
#include "usertools/CToolsPage.h"
#include "usertools/CUserToolsManager.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace {
constexpr int IdRole = Qt::UserRole + 1;
}

CCustomiseSheet::CCustomiseSheet(IShell& shell, CToolBarCustomiser& toolBars, CUserToolsManager& tools,
                                 int page, QWidget* parent)
    : QDialog(parent)
    , m_shell(shell)
    , m_customiser(toolBars)
    , m_tabs(new QTabWidget(this))
{
    setWindowTitle(tr("Customise"));
    setObjectName(QStringLiteral("CustomiseSheet"));
    m_shortcuts = new CShortcutsPage(shell.Commands(), &tools, this);
    m_toolsPage = new CToolsPage(tools, this);
    m_tabs->addTab(MakeCreatePage(), tr("Toolbars"));
    m_tabs->addTab(MakeEditPage(), tr("Commands"));
    m_tabs->addTab(m_shortcuts, tr("Keyboard"));
    m_tabs->addTab(m_toolsPage, tr("Tools"));
    m_tabs->addTab(MakePresentationPage(), tr("Options"));
    m_tabs->setCurrentIndex(qBound(0, page, m_tabs->count() - 1));
    // Tools renamed or added show at once among the commands and keys.
    connect(&tools, &CUserToolsManager::toolsChanged, this, [this] {
        m_shortcuts->Refill();
        FillAvailable();
        FillButtons();
    });

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(buttons);
    resize(640, 520);
}

QWidget* CCustomiseSheet::MakeCreatePage()
{
    auto* page = new QWidget(this);
    m_toolBarList = new QListWidget(page);
    auto* create = new QPushButton(tr("&New..."), page);
    auto* rename = new QPushButton(tr("Rena&me..."), page);
    auto* remove = new QPushButton(tr("&Delete"), page);
    auto* reset = new QPushButton(tr("&Reset"), page);
    auto* resetAll = new QPushButton(tr("Reset &All"), page);
    auto* layout = new QGridLayout(page);
    layout->addWidget(new QLabel(tr("Toolbars:"), page), 0, 0);
    layout->addWidget(m_toolBarList, 1, 0, 6, 1);
    layout->addWidget(create, 1, 1);
    layout->addWidget(rename, 2, 1);
    layout->addWidget(remove, 3, 1);
    layout->addWidget(reset, 4, 1);
    layout->addWidget(resetAll, 5, 1);
    layout->setRowStretch(6, 1);

    connect(m_toolBarList, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (QToolBar* bar = m_shell.Menus().ToolBar(item->data(IdRole).toString()))
            bar->setVisible(item->checkState() == Qt::Checked);
    });
    auto updateButtons = [this, rename, remove] {
        const QListWidgetItem* item = m_toolBarList->currentItem();
        const bool user = item && m_customiser.IsUserToolBar(item->data(IdRole).toString());
        rename->setEnabled(user);
        remove->setEnabled(user);
    };
    connect(m_toolBarList, &QListWidget::currentRowChanged, this, updateButtons);
    connect(create, &QPushButton::clicked, this, [this] {
        bool ok = false;
        const QString title = QInputDialog::getText(this, tr("New Toolbar"), tr("Toolbar name:"), QLineEdit::Normal,
                                                    tr("Custom"), &ok);
        if (ok && !title.trimmed().isEmpty())
            ChooseToolBar(NewToolBar(title.trimmed()));
    });
    connect(rename, &QPushButton::clicked, this, [this] {
        const QListWidgetItem* item = m_toolBarList->currentItem();
        if (!item)
            return;
        bool ok = false;
        const QString title = QInputDialog::getText(this, tr("Rename Toolbar"), tr("Toolbar name:"),
                                                    QLineEdit::Normal, item->text(), &ok);
        if (ok) {
            m_customiser.RenameToolBar(item->data(IdRole).toString(), title);
            FillToolBarList();
        }
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        const QListWidgetItem* item = m_toolBarList->currentItem();
        if (!item)
            return;
        if (QMessageBox::question(this, tr("Customise"), tr("Delete the toolbar \"%1\"?").arg(item->text()))
            != QMessageBox::Yes)
            return;
        m_customiser.DeleteToolBar(item->data(IdRole).toString());
        FillToolBarList();
    });
    connect(reset, &QPushButton::clicked, this, [this] {
        if (const QListWidgetItem* item = m_toolBarList->currentItem()) {
            m_customiser.ResetToolBar(item->data(IdRole).toString());
            FillButtons();
        }
    });
    connect(resetAll, &QPushButton::clicked, this, [this] {
        if (QMessageBox::question(this, tr("Customise"),
                                  tr("Delete your own toolbars and give the others their standard buttons?"))
            != QMessageBox::Yes)
            return;
        m_customiser.ResetAll();
        FillToolBarList();
    });
    FillToolBarList();
    updateButtons();
    return page;
}

QWidget* CCustomiseSheet::MakeEditPage()
{
    auto* page = new QWidget(this);
    m_toolBarChoice = new QComboBox(page);
    m_commandSearch = new QLineEdit(page);
    m_commandSearch->setPlaceholderText(tr("Search commands"));
    m_commandSearch->setClearButtonEnabled(true);
    m_available = new QListWidget(page);
    m_buttons = new QListWidget(page);
    auto* add = new QPushButton(tr("&Add >"), page);
    auto* remove = new QPushButton(tr("< &Remove"), page);
    auto* separator = new QPushButton(tr("&Separator"), page);
    auto* up = new QPushButton(tr("Move &Up"), page);
    auto* down = new QPushButton(tr("Move &Down"), page);
    auto* reset = new QPushButton(tr("R&eset"), page);

    auto* middle = new QVBoxLayout;
    middle->addStretch();
    for (QPushButton* button : {add, remove, separator, up, down, reset})
        middle->addWidget(button);
    middle->addStretch();
    auto* layout = new QGridLayout(page);
    layout->addWidget(new QLabel(tr("&Toolbar:"), page), 0, 0);
    static_cast<QLabel*>(layout->itemAtPosition(0, 0)->widget())->setBuddy(m_toolBarChoice);
    layout->addWidget(m_toolBarChoice, 0, 1, 1, 2);
    layout->addWidget(m_commandSearch, 1, 0);
    layout->addWidget(new QLabel(tr("Buttons:"), page), 1, 2);
    layout->addWidget(m_available, 2, 0);
    layout->addLayout(middle, 2, 1);
    layout->addWidget(m_buttons, 2, 2);

    connect(m_toolBarChoice, &QComboBox::currentIndexChanged, this, &CCustomiseSheet::FillButtons);
    connect(m_commandSearch, &QLineEdit::textChanged, this, &CCustomiseSheet::FillAvailable);
    connect(add, &QPushButton::clicked, this, &CCustomiseSheet::AddSelectedCommand);
    connect(m_available, &QListWidget::itemDoubleClicked, this, &CCustomiseSheet::AddSelectedCommand);
    connect(remove, &QPushButton::clicked, this, &CCustomiseSheet::RemoveSelectedButton);
    connect(separator, &QPushButton::clicked, this, &CCustomiseSheet::AddSeparator);
    connect(up, &QPushButton::clicked, this, [this] { MoveSelectedButton(-1); });
    connect(down, &QPushButton::clicked, this, [this] { MoveSelectedButton(1); });
    connect(reset, &QPushButton::clicked, this, [this] {
        m_customiser.ResetToolBar(CurrentToolBar());
        FillButtons();
    });
    FillAvailable();
    FillToolBarList(); // the toolbar choice, made after the first page was filled
    return page;
}

QWidget* CCustomiseSheet::MakePresentationPage()
{
    auto* page = new QWidget(this);
    m_largeIcons = new QCheckBox(tr("&Large icons"), page);
    m_toolTips = new QCheckBox(tr("Show &ToolTips on toolbars"), page);
    m_keysInToolTips = new QCheckBox(tr("Show shortcut &keys in ToolTips"), page);
    m_largeIcons->setChecked(m_customiser.LargeIcons());
    m_toolTips->setChecked(m_customiser.ShowToolTips());
    m_keysInToolTips->setChecked(m_customiser.ShowKeysInToolTips());
    m_keysInToolTips->setEnabled(m_toolTips->isChecked());
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(m_largeIcons);
    layout->addWidget(m_toolTips);
    layout->addWidget(m_keysInToolTips);
    layout->addStretch();
    connect(m_largeIcons, &QCheckBox::toggled, this, [this](bool on) { m_customiser.SetLargeIcons(on); });
    connect(m_toolTips, &QCheckBox::toggled, this, [this](bool on) {
        m_customiser.SetShowToolTips(on);
        m_keysInToolTips->setEnabled(on);
    });
    connect(m_keysInToolTips, &QCheckBox::toggled, this, [this](bool on) { m_customiser.SetShowKeysInToolTips(on); });
    return page;
}

void CCustomiseSheet::FillToolBarList()
{
    const QString chosen = CurrentToolBar();
    const QSignalBlocker blockList(m_toolBarList);
    m_toolBarList->clear();
    if (m_toolBarChoice)
        m_toolBarChoice->blockSignals(true);
    if (m_toolBarChoice)
        m_toolBarChoice->clear();
    for (const QString& id : m_shell.Menus().ToolBarIds()) {
        const QToolBar* bar = m_shell.Menus().ToolBar(id);
        if (!bar)
            continue;
        auto* item = new QListWidgetItem(bar->windowTitle(), m_toolBarList);
        item->setData(IdRole, id);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(bar->isHidden() ? Qt::Unchecked : Qt::Checked);
        if (m_toolBarChoice)
            m_toolBarChoice->addItem(bar->windowTitle(), id);
    }
    if (m_toolBarChoice) {
        const int index = m_toolBarChoice->findData(chosen);
        m_toolBarChoice->setCurrentIndex(index >= 0 ? index : 0);
        m_toolBarChoice->blockSignals(false);
        FillButtons();
    }
}

QString CCustomiseSheet::CurrentToolBar() const
{
    return m_toolBarChoice ? m_toolBarChoice->currentData().toString() : QString();
}

void CCustomiseSheet::ChooseToolBar(const QString& toolBarId)
{
    if (!m_toolBarChoice)
        return;
    const int index = m_toolBarChoice->findData(toolBarId);
    if (index >= 0)
        m_toolBarChoice->setCurrentIndex(index);
}

QString CCustomiseSheet::NewToolBar(const QString& title)
{
    const QString id = m_customiser.CreateToolBar(title);
    FillToolBarList();
    ChooseToolBar(id);
    return id;
}

void CCustomiseSheet::FillAvailable()
{
    if (!m_available)
        return;
    const QString needle = m_commandSearch->text().trimmed();
    CCommandRegistry& commands = m_shell.Commands();
    m_available->clear();
    for (const int id : commands.Ids()) {
        const CommandInfo* cmd = commands.Info(id);
        const QString name = commands.PlainText(id);
        const QString text = cmd && !cmd->category.isEmpty() ? cmd->category + QStringLiteral(": ") + name : name;
        if (!needle.isEmpty() && !text.contains(needle, Qt::CaseInsensitive))
            continue;
        auto* item = new QListWidgetItem(text, m_available);
        if (QAction* action = commands.Action(id))
            item->setIcon(action->icon());
        item->setData(IdRole, id);
    }
    m_available->sortItems();
}

void CCustomiseSheet::FillButtons()
{
    if (!m_buttons)
        return;
    m_buttons->clear();
    CCommandRegistry& commands = m_shell.Commands();
    for (const int id : m_shell.Menus().ToolBarCommands(CurrentToolBar())) {
        auto* item = new QListWidgetItem(id == 0 ? tr("--- separator ---") : commands.PlainText(id), m_buttons);
        if (QAction* action = id ? commands.Action(id) : nullptr)
            item->setIcon(action->icon());
        item->setData(IdRole, id);
    }
}

void CCustomiseSheet::StoreButtons()
{
    QList<int> ids;
    for (int row = 0; row < m_buttons->count(); ++row)
        ids << m_buttons->item(row)->data(IdRole).toInt();
    m_customiser.SetCommands(CurrentToolBar(), ids);
}

void CCustomiseSheet::AddSelectedCommand()
{
    const QListWidgetItem* chosen = m_available->currentItem();
    const QString toolBar = CurrentToolBar();
    if (!chosen || toolBar.isEmpty())
        return;
    const int id = chosen->data(IdRole).toInt();
    QList<int> ids = m_shell.Menus().ToolBarCommands(toolBar);
    if (ids.contains(id))
        return; // one button per command and toolbar
    const int row = m_buttons->currentRow();
    ids.insert(row >= 0 ? row + 1 : ids.size(), id);
    m_customiser.SetCommands(toolBar, ids);
    FillButtons();
    m_buttons->setCurrentRow(int(ids.indexOf(id)));
}

void CCustomiseSheet::AddSeparator()
{
    const int row = m_buttons->currentRow();
    auto* item = new QListWidgetItem(tr("--- separator ---"));
    item->setData(IdRole, 0);
    m_buttons->insertItem(row >= 0 ? row + 1 : m_buttons->count(), item);
    StoreButtons();
    FillButtons();
}

void CCustomiseSheet::RemoveSelectedButton()
{
    const int row = m_buttons->currentRow();
    if (row < 0)
        return;
    delete m_buttons->takeItem(row);
    StoreButtons();
    FillButtons();
    m_buttons->setCurrentRow(qMin(row, m_buttons->count() - 1));
}

void CCustomiseSheet::MoveSelectedButton(int step)
{
    const int row = m_buttons->currentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= m_buttons->count())
        return;
    QListWidgetItem* item = m_buttons->takeItem(row);
    m_buttons->insertItem(target, item);
    StoreButtons();
    FillButtons();
    m_buttons->setCurrentRow(target);
}
