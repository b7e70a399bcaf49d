#include "TestSupport.h"

#include "editor/CFileDialogEx.h"
#include "editor/CGotoDialog.h"
#include "search/CFindDialog.h"
#include "search/CFindInFilesDialog.h"
#include "search/CReplaceDialog.h"
#include "search/CSearchCommands.h"

#include <QAbstractButton>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QMap>
#include <QWidget>

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

// The letter after a lone "&", lower case; a null character when there is none.
QChar Mnemonic(const QString& text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('&'))
            continue;
        if (text.at(i + 1) == QLatin1Char('&')) {
            ++i;
            continue;
        }
        return text.at(i + 1).toLower();
    }
    return {};
}

// Every mnemonic of a dialog's own controls is used once, and every label that shows
// one leads somewhere (a label without a buddy would print the ampersand).
QStringList MnemonicProblems(QWidget& dialog)
{
    QStringList problems;
    QMap<QChar, QString> seen;
    auto take = [&](const QString& text) {
        const QChar key = Mnemonic(text);
        if (key.isNull())
            return;
        if (seen.contains(key))
            problems << QStringLiteral("'%1' in \"%2\" and \"%3\"").arg(key).arg(seen.value(key), text);
        seen.insert(key, text);
    };
    for (QLabel* label : dialog.findChildren<QLabel*>()) {
        if (Mnemonic(label->text()).isNull())
            continue;
        if (!label->buddy())
            problems << QStringLiteral("\"%1\" shows its ampersand").arg(label->text());
        take(label->text());
    }
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        // The file dialog's own tool buttons carry no text.
        if (button->isVisibleTo(&dialog))
            take(button->text());
    }
    for (QGroupBox* group : dialog.findChildren<QGroupBox*>())
        take(group->title());
    return problems;
}

struct DialogCase
{
    const char* name;
    std::function<QDialog*(CSearchCommands*)> make;
};

class DialogMnemonics : public ::testing::TestWithParam<DialogCase>
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_window = std::make_unique<QWidget>();
        m_commands = new CSearchCommands(m_window.get(), [] { return nullptr; });
    }
    std::unique_ptr<QWidget> m_window;
    CSearchCommands* m_commands = nullptr;
};

TEST_P(DialogMnemonics, AreUniqueAndWork)
{
    std::unique_ptr<QDialog> dialog(GetParam().make(m_commands));
    ASSERT_NE(dialog, nullptr);
    if (auto* file = qobject_cast<CFileDialogEx*>(dialog.get()))
        file->OnInitDialog();
    dialog->show();
    EXPECT_EQ(MnemonicProblems(*dialog), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogMnemonics, ::testing::Values(
    DialogCase{"find", [](CSearchCommands* c) -> QDialog* { return new CFindDialog(c, QString()); }},
    DialogCase{"replace", [](CSearchCommands* c) -> QDialog* { return new CReplaceDialog(c, QString()); }},
    DialogCase{"find_in_files", [](CSearchCommands*) -> QDialog* { return new CFindInFilesDialog(QString(), QString()); }},
    DialogCase{"go_to", [](CSearchCommands*) -> QDialog* { return new CGotoDialog(nullptr, 100); }},
    DialogCase{"open", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(true, QString()); }},
    DialogCase{"save_as", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(false, QStringLiteral("a.txt")); }}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
