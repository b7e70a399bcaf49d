#include "usertools/CShortcutsPage.h"

#include "shell/CCommandRegistry.h"
#include "usertools/CUserToolsManager.h"

#include <QAction>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>

namespace {
enum Column { NameColumn, KeyColumn, DefaultColumn };
constexpr int IdRole = Qt::UserRole + 1;

QString KeyText(const QKeySequence& key)
{
    return key.toString(QKeySequence::NativeText);
}
} // namespace

CShortcutsPage::CShortcutsPage(CCommandRegistry& commands, CUserToolsManager* tools, QWidget* parent)
    : QWidget(parent)
    , m_commands(commands)
    , m_tools(tools)
    , m_search(new QLineEdit(this))
    , m_tree(new QTreeWidget(this))
    , m_keyEdit(new QKeySequenceEdit(this))
    , m_conflict(new QLabel(this))
    , m_defaultLabel(new QLabel(this))
    , m_assign(new QPushButton(tr("&Assign"), this))
    , m_remove(new QPushButton(tr("Re&move"), this))
    , m_reset(new QPushButton(tr("&Reset"), this))
{
    setObjectName(QStringLiteral("KeyboardShortcutsPage"));
    m_search->setPlaceholderText(tr("Search commands or keys"));
    m_search->setClearButtonEnabled(true);
    m_tree->setHeaderLabels({tr("Command"), tr("Shortcut"), tr("Default")});
    m_tree->setRootIsDecorated(true);
    m_tree->setUniformRowHeights(true);
    m_tree->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_conflict->setWordWrap(true);
    m_conflict->setStyleSheet(QStringLiteral("color: #b00000"));
    auto* resetAll = new QPushButton(tr("Reset A&ll"), this);

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_search, 0, 0, 1, 4);
    layout->addWidget(m_tree, 1, 0, 1, 4);
    layout->addWidget(new QLabel(tr("&Press new shortcut key:"), this), 2, 0);
    static_cast<QLabel*>(layout->itemAtPosition(2, 0)->widget())->setBuddy(m_keyEdit);
    layout->addWidget(m_keyEdit, 2, 1, 1, 2);
    layout->addWidget(m_assign, 2, 3);
    layout->addWidget(m_conflict, 3, 0, 1, 4);
    layout->addWidget(m_defaultLabel, 4, 0, 1, 2);
    layout->addWidget(m_remove, 4, 2);
    layout->addWidget(m_reset, 4, 3);
    layout->addWidget(resetAll, 5, 3);

    connect(m_search, &QLineEdit::textChanged, this, &CShortcutsPage::SetFilter);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &CShortcutsPage::UpdateDetails);
    connect(m_keyEdit, &QKeySequenceEdit::keySequenceChanged, this, &CShortcutsPage::UpdateConflict);
    connect(m_assign, &QPushButton::clicked, this, [this] { Assign(m_keyEdit->keySequence()); });
    connect(m_remove, &QPushButton::clicked, this, &CShortcutsPage::RemoveKey);
    connect(m_reset, &QPushButton::clicked, this, &CShortcutsPage::ResetSelected);
    connect(resetAll, &QPushButton::clicked, this, [this] {
        if (QMessageBox::question(this, tr("Keyboard Shortcuts"),
                                  tr("Give every command its default shortcut again?"))
            == QMessageBox::Yes)
            ResetAll();
    });
    Refill();
}

void CShortcutsPage::Refill()
{
    const int selected = SelectedCommand();
    m_tree->clear();
    QHash<QString, QTreeWidgetItem*> categories;
    for (const int id : m_commands.Ids()) {
        const CommandInfo* cmd = m_commands.Info(id);
        if (!cmd)
            continue;
        const QString category = cmd->category.isEmpty() ? tr("Other") : cmd->category;
        QTreeWidgetItem*& parent = categories[category];
        if (!parent) {
            parent = new QTreeWidgetItem(m_tree, {category});
            parent->setFlags(Qt::ItemIsEnabled);
            parent->setExpanded(true);
        }
        auto* item = new QTreeWidgetItem(parent, {m_commands.PlainText(id), KeyText(m_commands.Shortcut(id)),
                                                  KeyText(m_commands.DefaultShortcut(id))});
        item->setData(NameColumn, IdRole, id);
        QFont font = item->font(KeyColumn);
        font.setBold(m_commands.Shortcut(id) != m_commands.DefaultShortcut(id));
        item->setFont(KeyColumn, font);
    }
    m_tree->sortItems(NameColumn, Qt::AscendingOrder);
    SetFilter(m_search->text());
    if (selected)
        SelectCommand(selected);
    UpdateDetails();
}

void CShortcutsPage::SetFilter(const QString& text)
{
    const QString needle = text.trimmed();
    for (int c = 0; c < m_tree->topLevelItemCount(); ++c) {
        QTreeWidgetItem* category = m_tree->topLevelItem(c);
        bool any = false;
        for (int i = 0; i < category->childCount(); ++i) {
            QTreeWidgetItem* item = category->child(i);
            const bool match = needle.isEmpty() || item->text(NameColumn).contains(needle, Qt::CaseInsensitive)
                               || item->text(KeyColumn).contains(needle, Qt::CaseInsensitive)
                               || category->text(NameColumn).contains(needle, Qt::CaseInsensitive);
            item->setHidden(!match);
            any = any || match;
        }
        category->setHidden(!any);
    }
}

bool CShortcutsPage::SelectCommand(int id)
{
    for (int c = 0; c < m_tree->topLevelItemCount(); ++c) {
        QTreeWidgetItem* category = m_tree->topLevelItem(c);
        for (int i = 0; i < category->childCount(); ++i) {
            QTreeWidgetItem* item = category->child(i);
            if (item->data(NameColumn, IdRole).toInt() == id && !item->isHidden()) {
                m_tree->setCurrentItem(item);
                return true;
            }
        }
    }
    return false;
}

int CShortcutsPage::SelectedCommand() const
{
    const QTreeWidgetItem* item = m_tree->currentItem();
    return item ? item->data(NameColumn, IdRole).toInt() : 0;
}

QString CShortcutsPage::ConflictText() const
{
    return m_conflict->text();
}

void CShortcutsPage::UpdateDetails()
{
    const int id = SelectedCommand();
    m_assign->setEnabled(id != 0);
    m_remove->setEnabled(id != 0 && !m_commands.Shortcut(id).isEmpty());
    m_reset->setEnabled(id != 0 && m_commands.Shortcut(id) != m_commands.DefaultShortcut(id));
    m_defaultLabel->setText(id ? tr("Default: %1").arg(m_commands.DefaultShortcut(id).isEmpty()
                                                          ? tr("none")
                                                          : KeyText(m_commands.DefaultShortcut(id)))
                               : QString());
    UpdateConflict();
}

void CShortcutsPage::UpdateConflict()
{
    const QKeySequence key = m_keyEdit->keySequence();
    const int owner = m_commands.CommandForShortcut(key);
    if (key.isEmpty() || owner == 0 || owner == SelectedCommand())
        m_conflict->clear();
    else
        m_conflict->setText(tr("%1 is already assigned to \"%2\".").arg(KeyText(key), m_commands.PlainText(owner)));
}

void CShortcutsPage::SetKey(int id, const QKeySequence& key)
{
    // A tool's key is part of its definition, stored with it and kept when tools move.
    if (m_tools && id >= UserTools::FirstCommand && id <= UserTools::LastCommand) {
        const int index = id - UserTools::FirstCommand;
        QList<UserTool> tools = m_tools->Tools();
        if (index < tools.size()) {
            tools[index].shortcut = key.toString(QKeySequence::PortableText);
            m_tools->SetTools(tools);
            return;
        }
    }
    m_commands.SetShortcut(id, key);
}

bool CShortcutsPage::Assign(const QKeySequence& key, bool confirm)
{
    const int id = SelectedCommand();
    if (!id || key.isEmpty())
        return false;
    const int owner = m_commands.CommandForShortcut(key);
    if (owner && owner != id) {
        if (confirm
            && QMessageBox::question(this, tr("Keyboard Shortcuts"),
                                     tr("%1 is already assigned to \"%2\". Assign it to \"%3\" instead?")
                                         .arg(KeyText(key), m_commands.PlainText(owner), m_commands.PlainText(id)))
                   != QMessageBox::Yes)
            return false;
        SetKey(owner, QKeySequence());
    }
    SetKey(id, key);
    m_keyEdit->clear();
    Refill();
    SelectCommand(id);
    return true;
}

void CShortcutsPage::RemoveKey()
{
    if (const int id = SelectedCommand()) {
        SetKey(id, QKeySequence());
        Refill();
    }
}

void CShortcutsPage::ResetSelected()
{
    if (const int id = SelectedCommand()) {
        if (id >= UserTools::FirstCommand && id <= UserTools::LastCommand)
            return; // a tool's own key is its default
        const QKeySequence key = m_commands.DefaultShortcut(id);
        if (const int owner = m_commands.CommandForShortcut(key); owner && owner != id)
            SetKey(owner, QKeySequence());
        m_commands.ResetShortcut(id);
        Refill();
    }
}

void CShortcutsPage::ResetAll()
{
    for (const int id : m_commands.Ids())
        m_commands.ResetShortcut(id);
    Refill();
}
