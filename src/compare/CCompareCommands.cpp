#include "compare/CCompareCommands.h"

#include "compare/ByteCompare.h"
#include "compare/CCompareDoc.h"
#include "compare/CCompareFilesDlg.h"
#include "compare/CCompareFrame.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "compare/CompareSource.h"
#include "editor/CScrivelDoc.h"
#include "editor/TextEncoding.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>

namespace {

const QString kSection = QStringLiteral("Compare");

// The text control of a text document's frame; null for other frames.
QsciScintillaBase* TextControl(CChildFrame* frame)
{
    if (!frame || qobject_cast<CCompareFrame*>(frame) || !frame->GetDocument())
        return nullptr;
    if (frame->GetDocument()->inherits("CHexDocument"))
        return nullptr;
    return frame->findChild<QsciScintillaBase*>();
}

} // namespace

CCompareCommands::CCompareCommands(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
{
    setObjectName(QStringLiteral("CompareCommands"));
    LoadSettings();
    Register();
    connect(&shell.Events(), &CShellEvents::saveSettings, this, &CCompareCommands::SaveSettings);
    // The question about a file changed on disk offers this compare before reloading.
    connect(&shell.Events(), &CShellEvents::documentCreated, this, [this](CDocument* document) {
        auto* text = qobject_cast<CScrivelDoc*>(document);
        if (!text)
            return;
        connect(text, &CScrivelDoc::compareWithDiskRequested, this, [this, text] {
            const auto frames = text->GetFrames();
            if (!frames.isEmpty())
                CompareWithSaved(frames.first());
        });
    });
}

CCompareCommands::~CCompareCommands() = default;

CCompareCommands* CCompareCommands::Find(IShell& shell)
{
    return shell.Window() ? shell.Window()->findChild<CCompareCommands*>(QString(), Qt::FindDirectChildrenOnly)
                          : nullptr;
}

void CCompareCommands::LoadSettings()
{
    CRegistryStore store;
    m_options.ignoreWhitespace = store.GetProfileInt(kSection, QStringLiteral("IgnoreWhitespace"), 0) != 0;
    m_options.ignoreCase = store.GetProfileInt(kSection, QStringLiteral("IgnoreCase"), 0) != 0;
}

void CCompareCommands::SaveSettings() const
{
    CRegistryStore store;
    store.WriteProfileInt(kSection, QStringLiteral("IgnoreWhitespace"), m_options.ignoreWhitespace ? 1 : 0);
    store.WriteProfileInt(kSection, QStringLiteral("IgnoreCase"), m_options.ignoreCase ? 1 : 0);
}

void CCompareCommands::SetOptions(const DiffOptions& options)
{
    m_options = options;
    for (CChildFrame* frame : m_shell.ChildFrames()) {
        if (auto* compare = qobject_cast<CCompareFrame*>(frame))
            compare->View()->SetOptions(options);
    }
}

void CCompareCommands::Register()
{
    CCommandRegistry& commands = m_shell.Commands();
    CMenuPlaces& menus = m_shell.Menus();
    const QString file = QStringLiteral("File");
    const QString view = QStringLiteral("View");

    CommandInfo cmd;
    cmd.id = Cmd::CompareFiles;
    cmd.text = tr("Compare &Files...");
    cmd.category = file;
    cmd.iconName = QStringLiteral("view-split-left-right");
    cmd.run = [this] { ShowCompareFilesDialog(); };
    commands.Register(cmd);

    cmd = {};
    cmd.id = Cmd::CompareWithSaved;
    cmd.text = tr("Co&mpare with Saved");
    cmd.category = file;
    cmd.run = [this] { CompareWithSaved(); };
    cmd.update = [this](CCmdUI& ui) {
        CChildFrame* frame = m_shell.ActiveChild();
        ui.enabled = TextControl(frame) && QFileInfo(frame->GetDocument()->GetPathName()).isFile();
    };
    commands.Register(cmd);
    menus.AddCommand(MenuId::File, MenuGroup::FileVersions, Cmd::CompareFiles);
    menus.AddCommand(MenuId::File, MenuGroup::FileVersions, Cmd::CompareWithSaved);

    // Answered by the active compare tab.
    const struct
    {
        int id;
        QString text;
        QKeySequence key;
        QString icon;
    } routed[] = {
        {Cmd::CompareNextDifference, tr("Next &Difference"), QKeySequence(Qt::Key_F8), QStringLiteral("go-down")},
        {Cmd::ComparePreviousDifference, tr("Pre&vious Difference"), QKeySequence(Qt::SHIFT | Qt::Key_F8),
         QStringLiteral("go-up")},
        {Cmd::CompareCopyToLeft, tr("Copy to &Left"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Left),
         QStringLiteral("go-previous")},
        {Cmd::CompareCopyToRight, tr("Cop&y to Right"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Right),
         QStringLiteral("go-next")},
        {Cmd::CompareSwapSides, tr("Swa&p Sides"), {}, {}},
        {Cmd::CompareRecompare, tr("&Recompare"), {}, QStringLiteral("view-refresh")},
    };
    for (const auto& r : routed) {
        cmd = {};
        cmd.id = r.id;
        cmd.text = r.text;
        cmd.category = view;
        cmd.shortcut = r.key;
        cmd.iconName = r.icon;
        commands.Register(cmd);
        menus.AddCommand(MenuId::View, MenuGroup::ViewCompare, r.id);
    }

    const struct
    {
        int id;
        QString text;
        bool DiffOptions::*member;
    } toggles[] = {
        {Cmd::CompareIgnoreWhitespace, tr("Ignore Whitespace Changes"), &DiffOptions::ignoreWhitespace},
        {Cmd::CompareIgnoreCase, tr("Ignore Case"), &DiffOptions::ignoreCase},
    };
    for (const auto& t : toggles) {
        cmd = {};
        cmd.id = t.id;
        cmd.text = t.text;
        cmd.category = view;
        cmd.checkable = true;
        const auto member = t.member;
        cmd.run = [this, member] {
            DiffOptions options = m_options;
            options.*member = !(options.*member);
            SetOptions(options);
        };
        cmd.update = [this, member](CCmdUI& ui) {
            ui.handled = true;
            ui.checked = m_options.*member;
        };
        commands.Register(cmd);
        menus.AddCommand(MenuId::View, MenuGroup::ViewCompare, t.id);
    }
}

void CCompareCommands::ShowCompareFilesDialog()
{
    CCompareFilesDlg dialog(m_shell.Window());
    if (dialog.exec() == QDialog::Accepted)
        CompareFiles(dialog.LeftPath(), dialog.RightPath());
}

CCompareFrame* CCompareCommands::CompareFiles(const QString& leftPath, const QString& rightPath)
{
    const QString paths[2] = {QFileInfo(leftPath).absoluteFilePath(), QFileInfo(rightPath).absoluteFilePath()};
    CompareSource sources[2];
    const AnsiCodePage codePage = CCompareDoc::CodePage();
    for (int side = 0; side < 2; ++side) {
        sources[side] = CompareSource::Read(paths[side], &codePage);
        if (!sources[side].ok()) {
            QMessageBox::warning(m_shell.Window(), QApplication::applicationDisplayName(),
                                 tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(paths[side]), sources[side].error));
            return nullptr;
        }
    }
    if (sources[0].binary || sources[1].binary) {
        sources[0] = {};
        sources[1] = {};
        CompareBinary(paths[0], paths[1]);
        return nullptr;
    }
    return Open(sources[0], sources[1], QString(), QString(), false);
}

void CCompareCommands::CompareBinary(const QString& left, const QString& right)
{
    const ByteCompare::Result result = ByteCompare::FirstDifference(left, right);
    if (!result.ok) {
        QMessageBox::warning(m_shell.Window(), QApplication::applicationDisplayName(),
                             tr("Cannot compare \"%1\" and \"%2\": %3")
                                 .arg(QDir::toNativeSeparators(left), QDir::toNativeSeparators(right), result.error));
        return;
    }
    if (result.offset < 0) {
        m_shell.ShowStatusMessage(tr("The files are identical."), 10000);
        return;
    }
    const QString text = tr("The binary files \"%1\" and \"%2\" differ, first at offset 0x%3 (%4).\n\n"
                            "Open both in the hex view?")
                             .arg(QFileInfo(left).fileName(), QFileInfo(right).fileName())
                             .arg(result.offset, 0, 16)
                             .arg(result.offset);
    const auto answer = QMessageBox::question(m_shell.Window(), QApplication::applicationDisplayName(), text,
                                              QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer != QMessageBox::Yes)
        return;
    OpenOptions hex;
    hex.mode = OpenOptions::Hex;
    m_shell.OpenPath(left, hex);
    m_shell.OpenPath(right, hex);
}

CCompareFrame* CCompareCommands::CompareWithSaved(CChildFrame* frame)
{
    if (!frame)
        frame = m_shell.ActiveChild();
    QsciScintillaBase* control = TextControl(frame);
    if (!control)
        return nullptr;
    const QString path = frame->GetDocument()->GetPathName();
    if (!QFileInfo(path).isFile())
        return nullptr;
    const AnsiCodePage codePage = CCompareDoc::CodePage();
    CompareSource saved = CompareSource::Read(path, &codePage);
    if (!saved.ok()) {
        QMessageBox::warning(m_shell.Window(), QApplication::applicationDisplayName(),
                             tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(path), saved.error));
        return nullptr;
    }
    CompareSource unsaved;
    unsaved.path = path;
    const long length = control->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    unsaved.text = QByteArray(reinterpret_cast<const char*>(control->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER)),
                              length);
    // The control holds every encoding as UTF-8, as the panes do.
    unsaved.encoding = saved.binary ? int(TextEncoding::Utf8) : saved.encoding;
    if (saved.binary)
        saved.text.clear();
    const QString name = QFileInfo(path).fileName();
    return Open(saved, unsaved, QString(), tr("%1 (unsaved text)").arg(name), true);
}

CCompareFrame* CCompareCommands::Open(const CompareSource& left, const CompareSource& right,
                                      const QString& leftLabel, const QString& rightLabel, bool rightReadOnly)
{
    auto* document = new CCompareDoc();
    const CompareSource* sources[2] = {&left, &right};
    const QString labels[2] = {leftLabel, rightLabel};
    for (int side = 0; side < 2; ++side) {
        CCompareDoc::Side& s = document->GetSide(side);
        s.path = sources[side]->path;
        s.label = labels[side];
        s.encoding = sources[side]->encoding;
        s.writeMark = sources[side]->writeMark;
        const QFileInfo info(s.path);
        s.readOnly = sources[side]->lostBytes > 0 || TextEncoding::IsReadOnlyForm(s.encoding) ||
                     (info.exists() && !info.isWritable()) || (side == 1 && rightReadOnly);
    }
    document->UpdateTitle();
    // Announced like any document, so that the sides' saves keep their versions.
    Q_EMIT m_shell.Events().documentCreated(document);
    auto* view = new CCompareView(document, left, right, m_options,
                                  [this](QsciScintillaBase& pane, const QString& path) { Colour(pane, path); });
    auto* frame = new CCompareFrame(document, view);
    connect(frame, &QObject::destroyed, document, &QObject::deleteLater);
    m_shell.AddChildFrame(frame);
    if (left.text == right.text && left.encoding == right.encoding && left.bomLength == right.bomLength &&
        rightLabel.isEmpty())
        m_shell.ShowStatusMessage(tr("The files are identical."), 10000);
    return frame;
}

void CCompareCommands::Colour(QsciScintillaBase& pane, const QString& path)
{
    if (!m_parsers) {
        m_parsers = std::make_unique<CSyntaxParserList>();
        m_parsers->Load();
    }
    const QString suffix = QFileInfo(path).suffix();
    SyntaxApplier::ApplyForExtension(pane, *m_parsers, suffix.isEmpty() ? QStringLiteral(".*") : QLatin1Char('.') + suffix,
                                     m_shell.Settings().view);
    if (auto* comparePane = qobject_cast<CComparePane*>(&pane))
        comparePane->ApplyOwnStyles();
}

void InstallCompare(IShell& shell)
{
    if (!CCompareCommands::Find(shell))
        new CCompareCommands(shell);
}

CCompareFrame* OpenCompare(IShell& shell, const QString& left, const QString& right)
{
    InstallCompare(shell);
    return CCompareCommands::Find(shell)->CompareFiles(left, right);
}
