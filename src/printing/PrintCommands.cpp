#include "PrintCommands.h"

#include "CPrintJob.h"
#include "PdfExport.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocument.h"
#include "framework/CommandIds.h"
#include "framework/IStatusSink.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QScopeGuard>

namespace {

// The printer of this run: page setup changes it, every print starts from it.
class CPrintCommands : public QObject
{
public:
    explicit CPrintCommands(IShell& shell) : QObject(shell.Window()), m_shell(shell) {}

    CScrivelFrame* TextFrame() const { return qobject_cast<CScrivelFrame*>(m_shell.ActiveChild()); }

    QPrinter& Printer()
    {
        if (!m_printer) {
            m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
            // The page margins are ours (page setup); the printer adds none.
            m_printer->setPageMargins(QMarginsF(0, 0, 0, 0));
        }
        return *m_printer;
    }

    PrintOptions Options()
    {
        const MainFrameSettings& settings = m_shell.Settings();
        PrintOptions options;
        options.header = settings.PrintHeader != 0;
        options.footer = settings.PrintFooter != 0;
        options.lineNumbers = settings.PrintLineNumbers != 0;
        options.metric = settings.Metric != 0;
        options.margins = {settings.PrintMargins[0], settings.PrintMargins[1],
                           settings.PrintMargins[2], settings.PrintMargins[3]};
        options.fontFace = settings.view.FontStyle;
        options.fontSize = settings.view.FontSize;
        // An export uses the paper chosen in the page setup, once there is one.
        if (m_printer)
            options.paper = m_printer->pageLayout().pageSize();
        return options;
    }

    static QString HeaderName(const CScrivelFrame* frame)
    {
        const CDocument* document = frame->GetDocument();
        return document ? PrintLayout::HeaderName(document->GetPathName(), document->PlainTitle()) : QString();
    }

    // A progress window that shows after half a second and can cancel the run; the
    // status bar follows too.
    CPrintJob::Progress MakeProgress(QProgressDialog& dialog)
    {
        dialog.setWindowModality(Qt::WindowModal);
        dialog.setMinimumDuration(500);
        dialog.setAutoClose(false);
        dialog.setAutoReset(false);
        auto timer = std::make_shared<QElapsedTimer>();
        timer->start();
        return [this, &dialog, timer](int phase, qint64 done, qint64 total) {
            // Repaints cost more than a page; a few a second keep the window alive.
            if (timer->elapsed() < 50 && done != 0)
                return !dialog.wasCanceled();
            timer->restart();
            const int scaled = total > 0 ? int(done * 1000 / total) : 0;
            dialog.setLabelText(phase == 0 ? tr("Laying out pages...") : tr("Printing..."));
            dialog.setMaximum(1000);
            dialog.setValue(scaled);
            m_shell.Progress().SetProgress(scaled);
            QCoreApplication::processEvents();
            return !dialog.wasCanceled();
        };
    }

    bool Run(QPrinter& printer, CScrivelFrame* frame, bool selectionOnly)
    {
        // The progress window lets events through; a preview that asks to be painted
        // again meanwhile (a zoom) waits for this run instead of starting a second one.
        if (m_running)
            return false;
        m_running = true;
        const auto done = qScopeGuard([this] { m_running = false; });
        CMFCScintilla* editor = frame->GetView()->GetEditor();
        CPrintJob job(*editor, Options(), HeaderName(frame));
        if (selectionOnly && editor->HasSelection())
            job.SetRange(editor->GetSelectionStart(), editor->GetSelectionEnd());
        QProgressDialog dialog(tr("Laying out pages..."), tr("Cancel"), 0, 1000, m_shell.Window());
        m_shell.Progress().StartProgress(1000);
        const bool ok = job.Print(printer, MakeProgress(dialog));
        m_shell.Progress().StopProgress();
        return ok;
    }

    void OnFilePrint(bool direct)
    {
        CScrivelFrame* frame = TextFrame();
        if (!frame)
            return;
        QPrinter& printer = Printer();
        const bool hasSelection = frame->GetView()->GetEditor()->HasSelection();
        printer.setPrintRange(QPrinter::AllPages);
        if (!direct) {
            QPrintDialog dialog(&printer, m_shell.Window());
            dialog.setOption(QAbstractPrintDialog::PrintSelection, hasSelection);
            dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
            if (hasSelection)
                printer.setPrintRange(QPrinter::Selection);
            if (dialog.exec() != QDialog::Accepted)
                return;
        }
        Run(printer, frame, printer.printRange() == QPrinter::Selection);
    }

    void OnPrintPreview()
    {
        CScrivelFrame* frame = TextFrame();
        if (!frame)
            return;
        QPrinter& printer = Printer();
        printer.setPrintRange(QPrinter::AllPages);
        QPrintPreviewDialog preview(&printer, m_shell.Window());
        preview.setWindowTitle(tr("Print Preview"));
        QPointer<CScrivelFrame> guarded(frame);
        connect(&preview, &QPrintPreviewDialog::paintRequested, &preview, [this, guarded](QPrinter* target) {
            if (guarded)
                Run(*target, guarded, false);
        });
        preview.resize(m_shell.Window()->size() * 0.9);
        preview.exec();
    }

    void OnPageSetup()
    {
        QPrinter& printer = Printer();
        MainFrameSettings& settings = m_shell.Settings();
        const bool metric = settings.Metric != 0;
        const QPageLayout::Unit unit = metric ? QPageLayout::Millimeter : QPageLayout::Inch;
        const PrintLayout::Margins margins{settings.PrintMargins[0], settings.PrintMargins[1],
                                           settings.PrintMargins[2], settings.PrintMargins[3]};
        printer.setPageMargins(PrintLayout::ToUnits(margins, metric), unit);
        QPageSetupDialog dialog(&printer, m_shell.Window());
        if (dialog.exec() == QDialog::Accepted) {
            const PrintLayout::Margins chosen =
                PrintLayout::FromUnits(printer.pageLayout().margins(unit), metric);
            settings.PrintMargins[0] = chosen.left;
            settings.PrintMargins[1] = chosen.top;
            settings.PrintMargins[2] = chosen.right;
            settings.PrintMargins[3] = chosen.bottom;
        }
        printer.setPageMargins(QMarginsF(0, 0, 0, 0));
    }

    void OnExportPdf()
    {
        CScrivelFrame* frame = TextFrame();
        if (!frame)
            return;
        const CDocument* document = frame->GetDocument();
        QString suggestion = document ? document->GetPathName() : QString();
        suggestion = suggestion.isEmpty() ? (document ? document->PlainTitle() : QString()) + QStringLiteral(".pdf")
                                          : QFileInfo(suggestion).path() + QLatin1Char('/')
                                                + QFileInfo(suggestion).completeBaseName() + QStringLiteral(".pdf");
        QFileDialog chooser(m_shell.Window(), tr("Export as PDF"), suggestion, tr("PDF Files (*.pdf)"));
        chooser.setAcceptMode(QFileDialog::AcceptSave);
        chooser.setProperty("helpPage", QStringLiteral("printing.html#pdf"));
        if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
            return;
        const QString path = chooser.selectedFiles().constFirst();
        if (path.isEmpty())
            return;
        CMFCScintilla* editor = frame->GetView()->GetEditor();
        QProgressDialog dialog(tr("Laying out pages..."), tr("Cancel"), 0, 1000, m_shell.Window());
        m_shell.Progress().StartProgress(1000);
        QString error;
        const bool ok = PdfExport::Write(*editor, Options(), HeaderName(frame), path,
                                         MakeProgress(dialog), &error);
        m_shell.Progress().StopProgress();
        // Closing a progress dialog counts as cancelling it: ask first.
        const bool cancelled = dialog.wasCanceled();
        dialog.close();
        if (!ok && !cancelled)
            QMessageBox::warning(m_shell.Window(), tr("Export as PDF"),
                                 tr("Cannot write \"%1\": %2").arg(path, error));
        else if (ok)
            m_shell.ShowStatusMessage(tr("Exported \"%1\"").arg(QDir::toNativeSeparators(path)), 5000);
    }

private:
    IShell& m_shell;
    std::unique_ptr<QPrinter> m_printer;
    bool m_running = false;
};

} // namespace

void InstallPrinting(IShell& shell)
{
    auto* commands = new CPrintCommands(shell);
    const auto textOnly = [commands](CCmdUI& ui) { ui.handled = true; ui.enabled = commands->TextFrame() != nullptr; };
    const QString category = QCoreApplication::translate("Printing", "File");
    auto add = [&](int id, const char* text, const QKeySequence& key, const char* icon,
                   std::function<void()> run, bool needsText) {
        CommandInfo cmd;
        cmd.id = id;
        cmd.text = QCoreApplication::translate("Printing", text);
        cmd.category = category;
        cmd.shortcut = key;
        cmd.iconName = QString::fromLatin1(icon);
        cmd.run = std::move(run);
        if (needsText)
            cmd.update = textOnly;
        shell.Commands().Register(cmd);
        shell.Menus().AddCommand(MenuId::File, MenuGroup::FilePrint, id);
    };
    add(Cmd::FilePageSetup, "Page Set&up...", {}, "document-page-setup", [commands] { commands->OnPageSetup(); }, false);
    add(Cmd::FilePrintPreview, "P&rint Preview", {}, "document-print-preview", [commands] { commands->OnPrintPreview(); }, true);
    add(Cmd::FilePrint, "&Print...", QKeySequence::Print, "document-print", [commands] { commands->OnFilePrint(false); }, true);
    add(Cmd::FilePrintDirect, "Print &Direct", {}, "document-print", [commands] { commands->OnFilePrint(true); }, true);
    add(Cmd::FileExportPdf, "&Export as PDF...", {}, "application-pdf", [commands] { commands->OnExportPdf(); }, true);
    shell.Menus().AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Print, Cmd::FilePrint);
}
