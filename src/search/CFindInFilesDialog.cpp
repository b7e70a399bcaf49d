#include "CFindInFilesDialog.h"

#include "properties/FileFilterStore.h"

#include "CHistoryComboBox.h"
#include "SearchQuery.h"
#include "settings/CRegistryStore.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const QString FindReplace = QStringLiteral("FindReplace");
const QString Settings = QStringLiteral("Settings");
const QString DefFInFExt = QStringLiteral("DefFInFExt");
constexpr int FreeText = -2;
} // namespace

CFindInFilesDialog::CFindInFilesDialog(const QString& initialText, const QString& initialFolder,
                                       QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Find in Files"));

    m_find = new CHistoryComboBox;
    m_find->setHistorySection(QStringLiteral("SearchHistory"));
    m_types = new CHistoryComboBox;
    m_types->setHistorySection(QStringLiteral("FindInFilesTypes"));
    m_folder = new CHistoryComboBox;
    m_folder->setHistorySection(QStringLiteral("FindInFilesFolders"));
    m_browse = new QPushButton(tr("&Browse..."));

    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(m_folder, 1);
    folderRow->addWidget(m_browse);

    auto* form = new QFormLayout;
    form->addRow(tr("Fi&nd what:"), m_find);
    m_replace = new CHistoryComboBox;
    m_replace->setHistorySection(QStringLiteral("ReplaceHistory"));
    form->addRow(tr("Re&place with:"), m_replace);
    form->addRow(tr("File &types:"), m_types);
    // A label for a row of widgets has no buddy of its own: lead it to the box.
    auto* folderLabel = new QLabel(tr("F&older:"));
    folderLabel->setBuddy(m_folder);
    form->addRow(folderLabel, folderRow);

    m_subFolders = new QCheckBox(tr("Include &subfolders"));
    m_matchCase = new QCheckBox(tr("Match &case"));
    m_matchWord = new QCheckBox(tr("Match &whole word"));
    m_regExp = new QCheckBox(tr("Use regular e&xpressions"));

    // Made inside the dialog, so that the default set below is the dialog's own.
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* findButton = buttons->addButton(tr("&Find"), QDialogButtonBox::AcceptRole);
    QPushButton* replaceButton = buttons->addButton(tr("&Replace..."), QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    findButton->setDefault(true);
    connect(replaceButton, &QPushButton::clicked, this, [this] {
        m_replaceChosen = true;
        accept();
        if (result() != Accepted)
            m_replaceChosen = false;
    });

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_subFolders);
    layout->addWidget(m_matchCase);
    layout->addWidget(m_matchWord);
    layout->addWidget(m_regExp);
    layout->addStretch(1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CFindInFilesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CFindInFilesDialog::reject);
    connect(m_browse, &QPushButton::clicked, this, &CFindInFilesDialog::browse);

    // Find what: the word handed in, else the last search.
    m_find->loadHistory();
    m_replace->loadHistory();
    if (m_replace->count() > 0)
        m_replace->setCurrentIndex(0);
    else
        m_replace->setEditText(QString());
    if (!initialText.isEmpty())
        m_find->setEditText(initialText);
    else if (m_find->count() > 0)
        m_find->setCurrentIndex(0);
    else
        m_find->setEditText(QString());

    // File types: the filters of the open dialog, then the patterns typed before.
    loadFilters();
    m_types->loadHistory();
    const int chosen = CRegistryStore().GetProfileInt(Settings, DefFInFExt, FreeText);
    if (chosen >= 0 && chosen < m_types->fixedCount())
        m_types->setCurrentIndex(chosen);
    else if (m_types->count() > m_types->fixedCount())
        m_types->setCurrentIndex(m_types->fixedCount());
    else
        m_types->setEditText(QStringLiteral("*.*"));

    // Folder: the active document's, else the last one searched, else home.
    m_folder->loadHistory();
    if (!initialFolder.isEmpty())
        m_folder->setEditText(QDir::toNativeSeparators(initialFolder));
    else if (m_folder->count() > 0)
        m_folder->setCurrentIndex(0);
    else
        m_folder->setEditText(QDir::toNativeSeparators(QDir::homePath()));

    loadOptions();
    m_find->setFocus();
    m_find->lineEdit()->selectAll();
}

void CFindInFilesDialog::loadFilters()
{
    // The same list the open and save dialogs offer: the machine's filters and the user's.
    for (const FileFilterStore::Filter& filter : FileFilterStore::Load()) {
        if (filter.extension.isEmpty())
            continue;
        const QString text = filter.label.isEmpty() ? filter.extension
                                                    : QStringLiteral("%1 (%2)").arg(filter.label, filter.extension);
        m_types->addFixedItem(text, filter.extension);
    }
}

void CFindInFilesDialog::loadOptions()
{
    CRegistryStore store;
    m_subFolders->setChecked(store.GetProfileInt(FindReplace, QStringLiteral("SubFolders"), 0) != 0);
    m_matchCase->setChecked(store.GetProfileInt(FindReplace, QStringLiteral("MatchCase"), 0) != 0);
    m_matchWord->setChecked(store.GetProfileInt(FindReplace, QStringLiteral("MatchWord"), 0) != 0);
    m_regExp->setChecked(store.GetProfileInt(FindReplace, QStringLiteral("RegExp"), 0) != 0);
}

void CFindInFilesDialog::saveOptions() const
{
    CRegistryStore store;
    store.WriteProfileInt(FindReplace, QStringLiteral("SubFolders"), m_subFolders->isChecked() ? 1 : 0);
    store.WriteProfileInt(FindReplace, QStringLiteral("MatchCase"), m_matchCase->isChecked() ? 1 : 0);
    store.WriteProfileInt(FindReplace, QStringLiteral("MatchWord"), m_matchWord->isChecked() ? 1 : 0);
    store.WriteProfileInt(FindReplace, QStringLiteral("RegExp"), m_regExp->isChecked() ? 1 : 0);
}

QString CFindInFilesDialog::patterns() const
{
    const int index = m_types->currentIndex();
    if (index >= 0 && index < m_types->fixedCount() && m_types->currentText() == m_types->itemText(index))
        return m_types->itemData(index).toString();
    return m_types->currentText().trimmed();
}

FindInFilesOptions CFindInFilesDialog::options() const
{
    FindInFilesOptions options;
    options.text = m_find->currentText();
    options.patterns = patterns();
    options.folder = QDir::fromNativeSeparators(m_folder->currentText().trimmed());
    options.subFolders = m_subFolders->isChecked();
    options.matchCase = m_matchCase->isChecked();
    options.matchWord = m_matchWord->isChecked();
    options.regExp = m_regExp->isChecked();
    // "Ansi" files are searched in the code page the editor opens them in.
    options.ansiCodePage = CRegistryStore().GetProfileString(
        QStringLiteral("EditSettings"), QStringLiteral("AnsiCodePage"), options.ansiCodePage);
    return options;
}

void CFindInFilesDialog::browse()
{
    const QString start = QDir::fromNativeSeparators(m_folder->currentText().trimmed());
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Find in Files"), start);
    if (!chosen.isEmpty())
        m_folder->setEditText(QDir::toNativeSeparators(chosen));
}

bool CFindInFilesDialog::check()
{
    const FindInFilesOptions current = options();
    if (current.text.isEmpty()) {
        QMessageBox::warning(this, windowTitle(), tr("Please provide a search value"));
        m_find->setFocus();
        return false;
    }
    if (current.folder.isEmpty() || !QFileInfo(current.folder).isDir()) {
        QMessageBox::warning(this, windowTitle(),
                             tr("The folder \"%1\" does not exist.").arg(m_folder->currentText().trimmed()));
        m_folder->setFocus();
        return false;
    }
    const SearchQuery query(current.text, current.matchCase, current.matchWord, current.regExp);
    if (!query.IsValid()) {
        QMessageBox::warning(this, windowTitle(), query.ErrorString());
        m_find->setFocus();
        return false;
    }
    return true;
}

void CFindInFilesDialog::accept()
{
    if (!check())
        return;
    const QString patternText = m_types->currentText().trimmed();
    const int index = m_types->currentIndex();
    const bool filterChosen = index >= 0 && index < m_types->fixedCount()
        && m_types->currentText() == m_types->itemText(index);
    m_find->addToHistory(m_find->currentText());
    if (m_replaceChosen)
        m_replace->addToHistory(m_replace->currentText());
    m_folder->addToHistory(m_folder->currentText().trimmed());
    if (!filterChosen)
        m_types->addToHistory(patternText);
    CRegistryStore().WriteProfileInt(Settings, DefFInFExt, filterChosen ? index : FreeText);
    QDialog::accept();
}

void CFindInFilesDialog::done(int result)
{
    // The options follow the boxes, whichever way the dialog closes.
    saveOptions();
    QDialog::done(result);
}

QString CFindInFilesDialog::replacement() const
{
    return m_replace->currentText();
}
