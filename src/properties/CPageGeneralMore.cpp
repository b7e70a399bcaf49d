#include "CPageGeneralMore.h"

#include "DesktopIntegration.h"
#include "shell/CShellEvents.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"
#include "shell/IShell.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>

CPageGeneralMore::CPageGeneralMore(IShell& shell, QWidget* parent)
    : CPropertyPageBase(tr("General More"), QStringLiteral("properties.html#more"), parent), m_shell(shell)
{
    setObjectName(QStringLiteral("PageGeneralMore"));
    auto* layout = new QVBoxLayout(this);

    auto* editing = new QGroupBox(tr("Editing"), this);
    auto* editingLayout = new QVBoxLayout(editing);
    m_resetUndo = AddCheck(tr("Empty the &undo history after saving"), "ResetUndoOnSave");
    m_largeIcons = AddCheck(tr("&Large toolbar icons"), "LargeTBIcons");
    m_reuseWindows = AddCheck(tr("A tool's output &reuses its window"), "ReuseWindows");
    m_restoreSession = AddCheck(tr("Reopen the files of the last &session at start"), "RestoreSession");
    editingLayout->addWidget(m_resetUndo);
    editingLayout->addWidget(m_largeIcons);
    editingLayout->addWidget(m_reuseWindows);
    editingLayout->addWidget(m_restoreSession);
    layout->addWidget(editing);

    auto* printing = new QGroupBox(tr("Printing"), this);
    auto* printingLayout = new QVBoxLayout(printing);
    m_printHeader = AddCheck(tr("Print a &header with the file name"), "PrintHeader");
    m_printFooter = AddCheck(tr("Print a &footer with the page number"), "PrintFooter");
    m_printLineNumbers = AddCheck(tr("Print line &numbers"), "PrintLineNumbers");
    printingLayout->addWidget(m_printHeader);
    printingLayout->addWidget(m_printFooter);
    printingLayout->addWidget(m_printLineNumbers);
    layout->addWidget(printing);

    auto* desktop = new QGroupBox(tr("Desktop"), this);
    auto* desktopLayout = new QVBoxLayout(desktop);
    m_integration = AddCheck(tr("&Offer Morvane in \"Open With\" for text files"), "ShellIntegration");
    auto* where = new QLabel(tr("Adds a desktop entry for you alone: %1")
                                 .arg(DesktopIntegration::EntryPath()), desktop);
    where->setWordWrap(true);
    where->setEnabled(false);
    desktopLayout->addWidget(m_integration);
    desktopLayout->addWidget(where);
    layout->addWidget(desktop);
    layout->addStretch();
    Reset();
}

QCheckBox* CPageGeneralMore::AddCheck(const QString& text, const char* name)
{
    auto* box = new QCheckBox(text, this);
    box->setObjectName(QString::fromLatin1(name));
    connect(box, &QCheckBox::toggled, this, [this] { if (!m_showing) SetModified(); });
    return box;
}

void CPageGeneralMore::Apply()
{
    MainFrameSettings& settings = m_shell.Settings();
    settings.ResetUndoOnSave = m_resetUndo->isChecked();
    settings.view.LargeTBIcons = m_largeIcons->isChecked();
    settings.ReuseWindows = m_reuseWindows->isChecked();
    settings.PrintHeader = m_printHeader->isChecked();
    settings.PrintFooter = m_printFooter->isChecked();
    settings.PrintLineNumbers = m_printLineNumbers->isChecked();
    // Read by the session keeper at exit and at start; it has no place in the frame's set.
    CRegistryStore().WriteProfileInt(QStringLiteral("EditSettings"), QStringLiteral("RestoreSession"),
                                     m_restoreSession->isChecked() ? 1 : 0);
    if (m_integration->isChecked() != DesktopIntegration::IsInstalled()) {
        QString error;
        const bool ok = m_integration->isChecked()
                            ? DesktopIntegration::Install(QCoreApplication::applicationFilePath(), &error)
                            : DesktopIntegration::Remove(&error);
        if (!ok) {
            QMessageBox::warning(this, tr("General More"), error);
            m_showing = true;
            m_integration->setChecked(DesktopIntegration::IsInstalled());
            m_showing = false;
        }
    }
    Q_EMIT m_shell.Events().viewSettingsChanged();
    m_shell.RequestCommandUpdate();
    SetModified(false);
}

void CPageGeneralMore::Reset()
{
    const MainFrameSettings& settings = m_shell.Settings();
    m_showing = true;
    m_resetUndo->setChecked(settings.ResetUndoOnSave);
    m_largeIcons->setChecked(settings.view.LargeTBIcons);
    m_reuseWindows->setChecked(settings.ReuseWindows);
    m_printHeader->setChecked(settings.PrintHeader);
    m_printFooter->setChecked(settings.PrintFooter);
    m_printLineNumbers->setChecked(settings.PrintLineNumbers);
    m_integration->setChecked(DesktopIntegration::IsInstalled());
    m_restoreSession->setChecked(
        CRegistryStore().GetProfileInt(QStringLiteral("EditSettings"), QStringLiteral("RestoreSession"), 0) != 0);
    m_showing = false;
    SetModified(false);
}
