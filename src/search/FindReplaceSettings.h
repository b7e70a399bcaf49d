#pragma once

class QWidget;
class QString;

// The options the Find and Replace dialogs share in the section FindReplace. Each is read
// when a dialog opens and written by its Close button only.
struct FindReplaceSettings
{
    bool matchCase = false;
    bool matchWord = false;
    bool regExp = false;
    bool searchUp = false;
    bool wrapAround = false;
    bool selection = false;

    static FindReplaceSettings Load();
    // The Find dialog's five values: MatchCase, MatchWord, RegExp, SearchUp, WrapAround.
    void SaveFind() const;
    // The Replace dialog's four values: MatchCase, MatchWord, RegExp, Selection.
    void SaveReplace() const;
};

// A dialog's size and place, kept as a base64 geometry under the value "Placement" of the
// section `name`. A missing or unreadable value leaves the dialog where Qt puts it.
namespace DialogPlacement {
void Restore(QWidget* dialog, const QString& name);
void Save(const QWidget* dialog, const QString& name);
} // namespace DialogPlacement
