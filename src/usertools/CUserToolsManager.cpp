#include "usertools/CUserToolsManager.h"

#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"
#include "usertools/CToolResultsModel.h"
#include "usertools/CToolOutputPage.h"
#include "usertools/CUserToolStore.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>
#include <QProcess>

#include <Qsci/qsciscintillabase.h>

CUserToolsManager::CUserToolsManager(IShell& shell, QObject* parent)
    : QObject(parent)
    , m_shell(shell)
    , m_page(new CToolOutputPage(this))
{
    m_page->SetOpenHandler([this](const OutputLink& link) { OpenLink(link); });

    m_shell.Commands().Register({.id = UserTools::StopCommand,
                                 .text = tr("&Stop Tool"),
                                 .category = tr("Tools"),
                                 .iconName = QStringLiteral("process-stop"),
                                 .toolTip = tr("Stop the running tool"),
                                 .run = [this] { Stop(); },
                                 .update = [this](CCmdUI& ui) { ui.enabled = IsRunning(); }});
    m_shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsRun, UserTools::StopCommand);
    if (QAction* stop = m_shell.Commands().Action(UserTools::StopCommand))
        m_page->AddContextAction(stop);

    connect(&m_runner, &CToolRunner::started, this, [this](const QString& commandLine) {
        if (!m_toDocument)
            m_page->Model()->AppendLine(QStringLiteral("> ") + commandLine, CToolResultsModel::Status);
    });
    connect(&m_runner, &CToolRunner::linesReady, this, [this](const QStringList& lines) {
        if (m_toDocument)
            WriteToDocument(lines);
        else
            m_page->Model()->AppendLines(lines);
    });
    connect(&m_runner, &CToolRunner::partialLine, this, [this](const QString& text) {
        if (!m_toDocument)
            m_page->Model()->SetPartialLine(text);
    });
    connect(&m_runner, &CToolRunner::message, this, [this](const QString& text) {
        if (m_toDocument)
            WriteToDocument({text});
        else
            m_page->Model()->AppendLine(text, CToolResultsModel::Status);
    });
    connect(&m_runner, &CToolRunner::summary, this, [this](const QString& text) {
        if (m_toDocument)
            m_shell.ShowStatusMessage(text, 5000);
        else
            m_page->Model()->AppendLine(text, CToolResultsModel::Status);
    });
    connect(&m_runner, &CToolRunner::finished, this, [this] {
        m_targetDocument = nullptr;
        m_toDocument = false;
        m_shell.RequestCommandUpdate();
        if (m_pendingTool >= 0)
            StartRun(std::exchange(m_pendingTool, -1));
    });

    m_tools = CUserToolStore::Load();
    RegisterToolCommands();
}

CUserToolsManager::~CUserToolsManager() = default;

void CUserToolsManager::SetTools(const QList<UserTool>& tools)
{
    m_tools = tools.mid(0, UserTools::MaxTools);
    if (m_pendingTool >= m_tools.size())
        m_pendingTool = -1;
    RegisterToolCommands();
    CUserToolStore::Save(m_tools);
    Q_EMIT toolsChanged();
}

void CUserToolsManager::RegisterToolCommands()
{
    CCommandRegistry& commands = m_shell.Commands();
    // Ids follow the list's order, so a new list means new commands; the keys the
    // user gave them live in the tools themselves.
    for (int i = 0; i < m_registeredCount; ++i)
        commands.Unregister(UserTools::FirstCommand + i);
    m_registeredCount = 0;
    for (int i = 0; i < m_tools.size(); ++i) {
        const UserTool& tool = m_tools.at(i);
        const int id = UserTools::FirstCommand + i;
        QString text = tool.name.isEmpty() ? QFileInfo(tool.command).fileName() : tool.name;
        // A menu text of the user's own: an ampersand is a character, not a mnemonic.
        text.replace(QLatin1Char('&'), QStringLiteral("&&"));
        commands.Register({.id = id,
                           .text = text,
                           .category = tr("External Tools"),
                           .shortcut = QKeySequence::fromString(tool.shortcut, QKeySequence::PortableText),
                           .toolTip = tool.command,
                           .run = [this, i] { Run(i); }});
        m_shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsUser, id);
        ++m_registeredCount;
    }
}

ToolContext CUserToolsManager::CurrentContext() const
{
    ToolContext context;
    context.appDir = QDir::currentPath();
    CDocument* active = m_shell.ActiveDocument();
    if (!active)
        return context;
    context.filePath = active->GetPathName();
    // Caret and selection come from a text document's editor; a hex view has neither.
    auto* document = qobject_cast<CScrivelDoc*>(active);
    if (CMFCScintilla* editor = document ? document->GetEditor() : nullptr) {
        const long position = editor->GetCurrentPos();
        context.line = int(editor->LineFromPosition(position)) + 1;
        context.column = int(editor->SendScintilla(QsciScintillaBase::SCI_GETCOLUMN, position)) + 1;
        context.selection = QString::fromUtf8(editor->GetSelText());
    }
    return context;
}

void CUserToolsManager::Run(int index)
{
    if (index < 0 || index >= m_tools.size())
        return;
    const UserTool& tool = m_tools.at(index);
    if (tool.kind != UserTool::Launch && m_runner.IsRunning()) {
        const auto answer = QMessageBox::question(
            m_shell.Window(), tr("Morvane"),
            tr("A tool is still running. Stop it and run \"%1\"?").arg(tool.name),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        if (answer != QMessageBox::Yes)
            return;
        m_pendingTool = index;
        m_runner.Stop();
        return;
    }
    StartRun(index);
}

void CUserToolsManager::StartRun(int index)
{
    if (index < 0 || index >= m_tools.size())
        return;
    const UserTool tool = m_tools.at(index);
    if (tool.saveBeforeRun) {
        CDocument* document = m_shell.ActiveDocument();
        if (document && (document->IsModified() || document->GetPathName().isEmpty())
            && !document->DoFileSave()) {
            m_shell.ShowStatusMessage(tr("\"%1\" was not run: the document was not saved").arg(tool.name), 5000);
            return;
        }
    }
    const ToolContext context = CurrentContext();
    const QString program = ToolCommandLine::ExpandText(tool.command, context).trimmed();
    const QStringList arguments = ToolCommandLine::SplitArguments(tool.arguments, context);
    QString directory = ToolCommandLine::ExpandText(tool.initialDirectory, context).trimmed();
    if (directory.isEmpty())
        directory = context.filePath.isEmpty() ? context.appDir : QFileInfo(context.filePath).absolutePath();

    switch (tool.kind) {
    case UserTool::Launch: {
        QProcess launcher;
        launcher.setProgram(program);
        launcher.setArguments(arguments);
        launcher.setWorkingDirectory(directory);
        if (!launcher.startDetached())
            QMessageBox::warning(m_shell.Window(), tr("Morvane"),
                                 tr("Cannot run \"%1\": %2").arg(program, launcher.errorString()));
        return;
    }
    case UserTool::NewDocument: {
        auto* document = qobject_cast<CScrivelDoc*>(m_shell.NewDocument(OpenOptions::Text));
        if (!document) {
            QMessageBox::warning(m_shell.Window(), tr("Morvane"),
                                 QStringLiteral("CMAINFRAME::ONTOOLSMANAGER::FAILED TO CREATE A NEW DOCUMENT"));
            return;
        }
        m_targetDocument = document;
        m_toDocument = true;
        // Closing the document ends the tool that writes into it.
        connect(document, &CDocument::closing, this, [this, document] {
            if (m_toDocument && m_targetDocument == document)
                m_runner.Stop();
        });
        break;
    }
    default:
        m_targetDocument = nullptr;
        m_toDocument = false;
        if (m_shell.Settings().ReuseWindows)
            m_page->Clear();
        else if (m_page->Model()->rowCount() > 0)
            m_page->Model()->AppendLine(QString(), CToolResultsModel::Status);
        m_page->Model()->SetBaseDirectory(directory);
        m_shell.ShowOutputPage(m_page);
        break;
    }
    m_runner.Start(program, arguments, directory);
    m_shell.RequestCommandUpdate();
}

void CUserToolsManager::Stop()
{
    m_pendingTool = -1;
    m_runner.Stop();
}

void CUserToolsManager::WriteToDocument(const QStringList& lines)
{
    CMFCScintilla* editor = m_targetDocument ? m_targetDocument->GetEditor() : nullptr;
    if (!editor)
        return;
    const QByteArray bytes = (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    editor->SendScintilla(QsciScintillaBase::SCI_APPENDTEXT, bytes.size(), bytes.constData());
}

void CUserToolsManager::OpenLink(const OutputLink& link)
{
    CDocument* opened = m_shell.OpenPath(link.path);
    // A file already open is brought forward rather than opened again.
    if (!opened && m_shell.ActivateOpenDocument(link.path))
        opened = m_shell.ActiveDocument();
    auto* document = qobject_cast<CScrivelDoc*>(opened);
    if (!document) {
        m_shell.ShowStatusMessage(tr("Cannot open \"%1\"").arg(link.path), 5000);
        return;
    }
    document->GoToLineColumn(link.line, qMax(0, link.column - 1));
}
