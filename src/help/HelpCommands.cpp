#include "HelpCommands.h"

#include "CHelpWindow.h"
#include "HelpLocator.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>

namespace {

// Opens the one help window on demand, and answers F1 wherever it is pressed: in a
// modal dialog the main window's shortcuts don't reach, so an application filter does.
class CHelpCommands : public QObject
{
public:
    explicit CHelpCommands(IShell& shell) : QObject(shell.Window()), m_shell(shell)
    {
        qApp->installEventFilter(this);
    }

    CHelpWindow* Window()
    {
        if (!m_window) {
            m_window = new CHelpWindow(HelpLocator::UserCollection(), m_shell.Window());
            m_window->setAttribute(Qt::WA_DeleteOnClose, false);
            m_shell.AddModelessWindow(m_window);
        }
        return m_window;
    }

    void Show(CHelpWindow::Tab tab, const QString& page = QString())
    {
        CHelpWindow* window = Window();
        QWidget* modal = QApplication::activeModalWidget();
        AttachTo(modal && modal != window ? modal : m_shell.Window());
        m_open = true;
        window->ShowTab(tab);
        // Shown first: a hidden browser has no layout to scroll to an anchor in.
        window->show();
        window->raise();
        window->activateWindow();
        if (!page.isEmpty())
            window->ShowPage(page);
    }

    void ShowContext()
    {
        QWidget* window = QApplication::activeModalWidget();
        if (!window)
            window = QApplication::activeWindow();
        if (window == m_window)
            return;
        Show(CHelpWindow::Contents, HelpLocator::PageFor(window, QApplication::focusWidget()));
    }

    static void About(QWidget* parent)
    {
        QMessageBox::about(parent, QObject::tr("About Morvane"),
                           QObject::tr("<h3>Morvane %1</h3><p>A programmer's text editor.</p>"
                                       "<p>Built with Qt %2 and QScintilla.</p>")
                               .arg(QCoreApplication::applicationVersion(), QString::fromLatin1(qVersion())));
    }

    // A modal dialog blocks every window but its own: help opened from it becomes the
    // dialog's window, in front of it and taking input, and goes back to the main window
    // when the dialog closes, staying open if it was.
    void AttachTo(QWidget* owner)
    {
        if (!m_window || m_window->parentWidget() == owner)
            return;
        const bool visible = m_window->isVisible();
        const QRect geometry = m_window->geometry();
        m_window->setParent(owner, m_window->windowFlags() | Qt::Window);
        m_owner = owner != m_shell.Window() ? owner : nullptr;
        if (visible) {
            // Placed again once shown: the window manager places a new window itself.
            m_window->show();
            m_window->setGeometry(geometry);
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_owner && m_owner && m_window
            && (event->type() == QEvent::Hide || event->type() == QEvent::DeferredDelete)) {
            AttachTo(m_shell.Window());
            if (m_open && !m_window->isVisible())
                m_window->show();
            return false;
        }
        if (watched == m_window && event->type() == QEvent::Close)
            m_open = false;
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1
            && static_cast<QKeyEvent*>(event)->modifiers() == Qt::NoModifier && watched->isWidgetType()) {
            ShowContext();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    IShell& m_shell;
    QPointer<CHelpWindow> m_window;
    QPointer<QWidget> m_owner; // the modal dialog help is lent to, if any
    bool m_open = false;
};

} // namespace

void InstallHelp(IShell& shell)
{
    auto* help = new CHelpCommands(shell);
    const QString category = QCoreApplication::translate("Help", "Help");
    auto add = [&](int id, const char* text, const char* icon, std::function<void()> run, bool inMenu,
                   const char* group = MenuGroup::HelpContents) {
        if (shell.Commands().Contains(id))
            return;
        CommandInfo cmd;
        cmd.id = id;
        cmd.text = QCoreApplication::translate("Help", text);
        cmd.category = category;
        cmd.iconName = QString::fromLatin1(icon);
        cmd.run = std::move(run);
        shell.Commands().Register(cmd);
        if (inMenu)
            shell.Menus().AddCommand(MenuId::Help, QString::fromLatin1(group), id);
    };
    add(Cmd::HelpContents, "&Contents", "help-contents", [help] { help->Show(CHelpWindow::Contents, QStringLiteral("index.html")); }, true);
    add(Cmd::HelpTopics, "&Help Topics", "help-contents", [help] { help->Show(CHelpWindow::Contents, QStringLiteral("index.html")); }, true);
    add(Cmd::HelpIndex, "&Index", "help-contents", [help] { help->Show(CHelpWindow::Index); }, true);
    add(Cmd::HelpSearch, "&Search", "system-search", [help] { help->Show(CHelpWindow::Search); }, true);
    add(Cmd::HelpContext, "Help for This &Window\tF1", "help-contextual", [help] { help->ShowContext(); }, true);
    add(Cmd::AppAbout, "&About Morvane...", "help-about", [&shell] { CHelpCommands::About(shell.Window()); }, true,
        MenuGroup::HelpAbout);
}
