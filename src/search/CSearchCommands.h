#pragma once

#include "CFindDialog.h"
#include "CReplaceDialog.h"

#include <QComboBox>
#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>

class CHistoryComboBox;
class CMFCScintilla;
class IShell;
class QWidget;

// Find and replace for the main window: the commands Find..., Replace..., Find Next and
// Find Previous, the two modeless dialogs (at most one of them at a time), and the
// routines through which every search and replacement reaches the active text view.
class CSearchCommands : public QObject
{
    Q_OBJECT
public:
    // The control of the active text view, or null when no text view is active.
    using EditorProvider = std::function<CMFCScintilla*()>;

    // `window` parents the dialogs and the messages.
    CSearchCommands(QWidget* window, EditorProvider activeEditor);
    ~CSearchCommands() override;

    // Registers the four commands, puts the find box on the toolbar and returns the
    // object, a child of the window. Calling it again returns the same object.
    static CSearchCommands* Install(IShell& shell);
    // The object Install made for the shell, or null.
    static CSearchCommands* Of(IShell& shell);

    // Told of each dialog made, so that the window can destroy it first when it closes;
    // Install hands the dialogs to the shell.
    void SetModelessTracker(std::function<void(QWidget*)> tracker) { m_trackModeless = std::move(tracker); }

    // The toolbar's box Find Next and Find Previous search for.
    void SetFindBox(QComboBox* box) { m_findBox = box; }
    QComboBox* FindBox() const { return m_findBox; }

    void ShowFindDialog(const QString& text);
    void ShowReplaceDialog(const QString& text);
    CFindDialog* FindDialog() const { return m_findDialog; }
    CReplaceDialog* ReplaceDialog() const { return m_replaceDialog; }

    // The commands.
    void OnEditFind();
    void OnEditReplace();
    // Opens the find bar under the active text view.
    void OnIncrementalFind();
    // Find Next (`previous` false) and Find Previous from the toolbar find box: no options,
    // wrap only going down.
    void OnFindNextFromBox(bool previous);

    // The routines the dialogs hand their searches to.
    void FindInActiveView(const QString& text, bool matchCase, bool matchWord, bool regExp,
                          bool searchUp, bool wrapAround);
    void MarkAllInActiveView(const QString& text, bool matchCase, bool matchWord, bool regExp);
    long ReplaceInActiveView(const QString& find, const QString& replace, bool matchCase,
                             bool matchWord, bool regExp, bool selectionScope, bool replaceAll,
                             long lastFound);

    CMFCScintilla* ActiveEditor() const { return m_activeEditor ? m_activeEditor() : nullptr; }
    QString LastSearchText() const { return m_lastSearchText; }
    // The key of a main window command, so that a dialog can offer it too.
    QKeySequence CommandShortcut(int id) const;

private:
    void RegisterCommands();
    void CreateFindBox();
    void TrackDialog(QWidget* dialog);
    void RefreshFindBox();
    void Information(const QString& text) const;
    QWidget* MessageParent() const;

    QPointer<QWidget> m_window;
    EditorProvider m_activeEditor;
    IShell* m_shell = nullptr;
    std::function<void(QWidget*)> m_trackModeless;
    QPointer<QComboBox> m_findBox;
    QPointer<CFindDialog> m_findDialog;
    QPointer<CReplaceDialog> m_replaceDialog;
    // The view of the last replacement: another view makes the next Replace only find.
    QPointer<CMFCScintilla> m_replaceView;
    QString m_lastSearchText;
};
