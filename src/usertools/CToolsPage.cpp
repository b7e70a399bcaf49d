#include "usertools/CToolsPage.h"

#include "usertools/CUserToolsManager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

CToolsPage::CToolsPage(CUserToolsManager& manager, QWidget* parent)
    : QWidget(parent)
    , m_manager(manager)
    , m_list(new QListWidget(this))
    , m_name(new QLineEdit(this))
    , m_command(new QLineEdit(this))
    , m_arguments(new QLineEdit(this))
    , m_directory(new QLineEdit(this))
    , m_kind(new QComboBox(this))
    , m_save(new QCheckBox(tr("&Save document before running"), this))
    , m_shortcut(new QKeySequenceEdit(this))
    , m_add(new QPushButton(tr("&New"), this))
    , m_remove(new QPushButton(tr("&Delete"), this))
    , m_up(new QPushButton(tr("Move &Up"), this))
    , m_down(new QPushButton(tr("Move Do&wn"), this))
{
    setObjectName(QStringLiteral("ToolsPage"));
    m_kind->addItems({tr("Output to the Tool Results page"), tr("Output into a new document"), tr("Launch only")});

    auto* browseCommand = new QToolButton(this);
    browseCommand->setText(QStringLiteral("..."));
    auto* browseDirectory = new QToolButton(this);
    browseDirectory->setText(QStringLiteral("..."));
    // The variables, offered where they are typed.
    auto* variables = new QToolButton(this);
    variables->setText(QStringLiteral("$"));
    variables->setPopupMode(QToolButton::InstantPopup);
    auto* variableMenu = new QMenu(variables);
    for (const char* name : {"$FileName", "$FileDir", "$FileTitle", "$Line", "$Column", "$Selection", "$AppDir"}) {
        variableMenu->addAction(QString::fromLatin1(name), this, [this, name] {
            m_arguments->insert(QString::fromLatin1(name));
            Commit();
        });
    }
    variables->setMenu(variableMenu);

    auto withButton = [this](QWidget* field, QWidget* button) {
        auto* row = new QHBoxLayout;
        row->setContentsMargins(0, 0, 0, 0);
        row->addWidget(field);
        row->addWidget(button);
        return row;
    };
    auto* form = new QFormLayout;
    form->addRow(tr("&Title:"), m_name);
    // Rows of a field and its button need their label's buddy named by hand.
    auto label = [this](const QString& text, QWidget* buddy) {
        auto* made = new QLabel(text, this);
        made->setBuddy(buddy);
        return made;
    };
    form->addRow(label(tr("&Command:"), m_command), withButton(m_command, browseCommand));
    form->addRow(label(tr("&Arguments:"), m_arguments), withButton(m_arguments, variables));
    form->addRow(label(tr("&Initial directory:"), m_directory), withButton(m_directory, browseDirectory));
    form->addRow(tr("&Output:"), m_kind);
    form->addRow(QString(), m_save);
    form->addRow(tr("S&hortcut:"), m_shortcut);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {m_add, m_remove, m_up, m_down})
        buttons->addWidget(button);
    buttons->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(m_list, 1);
    top->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(form);

    connect(m_list, &QListWidget::currentRowChanged, this, &CToolsPage::ShowTool);
    connect(m_add, &QPushButton::clicked, this, &CToolsPage::AddTool);
    connect(m_remove, &QPushButton::clicked, this, &CToolsPage::RemoveTool);
    connect(m_up, &QPushButton::clicked, this, [this] { MoveTool(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { MoveTool(1); });
    for (QLineEdit* edit : {m_name, m_command, m_arguments, m_directory})
        connect(edit, &QLineEdit::editingFinished, this, &CToolsPage::Commit);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &CToolsPage::Commit);
    connect(m_save, &QCheckBox::toggled, this, &CToolsPage::Commit);
    connect(m_shortcut, &QKeySequenceEdit::editingFinished, this, &CToolsPage::Commit);
    connect(browseCommand, &QToolButton::clicked, this, [this] {
        const QString file = QFileDialog::getOpenFileName(this, tr("Command"), m_command->text());
        if (!file.isEmpty()) {
            m_command->setText(file);
            Commit();
        }
    });
    connect(browseDirectory, &QToolButton::clicked, this, [this] {
        const QString folder = QFileDialog::getExistingDirectory(this, tr("Initial Directory"), m_directory->text());
        if (!folder.isEmpty()) {
            m_directory->setText(folder);
            Commit();
        }
    });
    Refill(0);
}

int CToolsPage::CurrentRow() const
{
    return m_list->currentRow();
}

void CToolsPage::SetCurrentRow(int row)
{
    m_list->setCurrentRow(row);
}

void CToolsPage::Refill(int row)
{
    m_filling = true;
    m_list->clear();
    for (const UserTool& tool : m_manager.Tools())
        m_list->addItem(tool.name);
    m_filling = false;
    const int count = m_list->count();
    m_list->setCurrentRow(count == 0 ? -1 : qBound(0, row, count - 1));
    ShowTool(m_list->currentRow());
    m_add->setEnabled(count < UserTools::MaxTools);
}

void CToolsPage::ShowTool(int row)
{
    if (m_filling)
        return;
    m_filling = true;
    const QList<UserTool>& tools = m_manager.Tools();
    const bool valid = row >= 0 && row < tools.size();
    const UserTool tool = valid ? tools.at(row) : UserTool{};
    m_name->setText(tool.name);
    m_command->setText(tool.command);
    m_arguments->setText(tool.arguments);
    m_directory->setText(tool.initialDirectory);
    m_kind->setCurrentIndex(tool.kind);
    m_save->setChecked(tool.saveBeforeRun);
    m_shortcut->setKeySequence(QKeySequence::fromString(tool.shortcut, QKeySequence::PortableText));
    for (QWidget* field : std::initializer_list<QWidget*>{m_name, m_command, m_arguments, m_directory, m_kind,
                                                          m_save, m_shortcut, m_remove})
        field->setEnabled(valid);
    m_up->setEnabled(valid && row > 0);
    m_down->setEnabled(valid && row + 1 < tools.size());
    m_filling = false;
}

void CToolsPage::Commit()
{
    const int row = CurrentRow();
    QList<UserTool> tools = m_manager.Tools();
    if (m_filling || row < 0 || row >= tools.size())
        return;
    UserTool tool;
    tool.name = m_name->text().trimmed();
    tool.command = m_command->text().trimmed();
    tool.arguments = m_arguments->text();
    tool.initialDirectory = m_directory->text().trimmed();
    tool.kind = qMax(0, m_kind->currentIndex());
    tool.saveBeforeRun = m_save->isChecked();
    tool.shortcut = m_shortcut->keySequence().toString(QKeySequence::PortableText);
    if (tool == tools.at(row))
        return;
    tools[row] = tool;
    m_manager.SetTools(tools);
    m_filling = true;
    m_list->item(row)->setText(tool.name);
    m_filling = false;
}

void CToolsPage::AddTool()
{
    QList<UserTool> tools = m_manager.Tools();
    if (tools.size() >= UserTools::MaxTools)
        return;
    UserTool tool;
    tool.name = tr("New Tool");
    tools << tool;
    m_manager.SetTools(tools);
    Refill(int(tools.size()) - 1);
    m_name->setFocus();
    m_name->selectAll();
}

void CToolsPage::RemoveTool()
{
    QList<UserTool> tools = m_manager.Tools();
    const int row = CurrentRow();
    if (row < 0 || row >= tools.size())
        return;
    tools.removeAt(row);
    m_manager.SetTools(tools);
    Refill(row);
}

void CToolsPage::MoveTool(int step)
{
    QList<UserTool> tools = m_manager.Tools();
    const int row = CurrentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= tools.size())
        return;
    tools.swapItemsAt(row, target);
    m_manager.SetTools(tools);
    Refill(target);
}
