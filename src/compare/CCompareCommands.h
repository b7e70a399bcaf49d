#pragma once

#include "compare/DiffTypes.h"

#include <QObject>
#include <QPointer>
#include <memory>

class CChildFrame;
class CCompareFrame;
class CSyntaxParserList;
class IShell;
class QsciScintillaBase;
struct CompareSource;

// The compare subsystem in the main window: its commands, its options (settings
// section "Compare"), and opening a compare of two files or of a text and its file.
class CCompareCommands : public QObject
{
    Q_OBJECT
public:
    explicit CCompareCommands(IShell& shell);
    ~CCompareCommands() override;

    // The installed instance of a shell's window, if any.
    static CCompareCommands* Find(IShell& shell);

    // Opens a compare tab of two files. Binary files are compared as bytes and answered
    // by a message; files that can't be read are named in a message. Returns the new
    // frame, or null when no tab opened.
    CCompareFrame* CompareFiles(const QString& left, const QString& right);
    // A text document's unsaved text against its file on disk: the active one's unless
    // a frame is named.
    CCompareFrame* CompareWithSaved(CChildFrame* frame = nullptr);
    void ShowCompareFilesDialog();

    DiffOptions Options() const { return m_options; }
    void SetOptions(const DiffOptions& options);

private:
    void Register();
    void LoadSettings();
    void SaveSettings() const;
    CCompareFrame* Open(const CompareSource& left, const CompareSource& right, const QString& leftLabel,
                        const QString& rightLabel, bool rightReadOnly);
    void Colour(QsciScintillaBase& pane, const QString& path);
    void CompareBinary(const QString& left, const QString& right);

    IShell& m_shell;
    DiffOptions m_options;
    std::unique_ptr<CSyntaxParserList> m_parsers;
};

// Installs the compare commands into the shell.
void InstallCompare(IShell& shell);
// Opens a compare of two files through the installed subsystem (the command line's
// "--compare LEFT RIGHT" and the document history come here).
CCompareFrame* OpenCompare(IShell& shell, const QString& left, const QString& right);
