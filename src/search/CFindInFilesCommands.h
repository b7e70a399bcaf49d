#pragma once

#include "search/CFindResultsPage.h"

#include "editor/FileStamp.h"
#include "search/FindInFilesTypes.h"

#include <QHash>
#include <QObject>
#include <QPointer>

class CFindInFilesRunner;
class IShell;

// Find in Files: command 9000 with its dialog, the Find Results page it fills, and the
// way from a result back to its file, line and column.
class CFindInFilesCommands : public QObject
{
    Q_OBJECT
public:
    explicit CFindInFilesCommands(IShell& shell);

    CFindResultsPage* ResultsPage() const { return m_page; }
    CFindInFilesRunner* Runner() const { return m_runner; }

    void OnFindInFiles();

    // Replace in Files: the matches of `options` in a preview, then the replacement in
    // the files left checked, and a report on the Find Results page.
    void ReplaceInFiles(const FindInFilesOptions& options, const QString& replacement);
    // Every match of `options`, searched to the end while the caller waits.
    QList<FindInFilesMatch> CollectMatches(const FindInFilesOptions& options, QString* error = nullptr);
    // Replaces in each of `files`: an open document in its editor (one undo step), any
    // other file on disk unless it changed since `previewed`. Returns the report's rows.
    QList<FindInFilesMatch> ApplyReplacement(const FindInFilesOptions& options, const QString& replacement,
                                             const QStringList& files, const QHash<QString, FileStamp>& previewed);
    // Opens `path` (or brings it forward when it is open) and puts the caret on the
    // line (from 1) and column.
    void OpenLocation(const QString& path, int line, int column);

    static CFindInFilesCommands* Of(IShell& shell);

private:
    IShell& m_shell;
    QPointer<CFindResultsPage> m_page;
    CFindInFilesRunner* m_runner = nullptr;
};
