#pragma once

#include "CPropertyPageBase.h"
#include "syntax/CSyntaxParserList.h"

class CColourButton;
class CSampleWnd;
class IShell;
class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;

// Syntax Coloring: each language's style colours, edited on a copy of the definitions
// and written back to the changed languages' files when the sheet applies them.
class CPageSyntaxColour : public CPropertyPageBase
{
    Q_OBJECT
public:
    // `folder` empty: the program's definition folder.
    CPageSyntaxColour(IShell& shell, QWidget* parent, const QString& folder = QString());

    void Apply() override;
    void Reset() override;

    const CSyntaxParserList& Parsers() const { return m_parsers; }
    QComboBox* Languages() const { return m_languages; }
    QListWidget* Styles() const { return m_styles; }
    CColourButton* ForeButton() const { return m_fore; }
    CColourButton* BackButton() const { return m_back; }
    QCheckBox* EolFilled() const { return m_eolFilled; }
    CSampleWnd* Sample() const { return m_sample; }
    // Languages whose files the last Apply could not write.
    QStringList FailedLanguages() const { return m_failed; }

private:
    void ShowLanguage(int index);
    void ShowStyle(int row);
    void StoreStyle();
    void EnableControls(bool on);

    IShell& m_shell;
    QString m_folder;
    CSyntaxParserList m_parsers;
    QComboBox* m_languages;
    QListWidget* m_styles;
    CColourButton* m_fore;
    CColourButton* m_back;
    QCheckBox* m_eolFilled;
    CSampleWnd* m_sample;
    QList<QWidget*> m_controls; // with their labels, disabled when there is no language
    QStringList m_failed;
    bool m_showing = false;
};
