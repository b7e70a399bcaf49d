#include "CFakeShell.h"
#include "TestSupport.h"
#include "DefaultButtonCheck.h"
#include "TextDocuments.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "properties/CColourButton.h"
#include "properties/CPageFileFilter.h"
#include "properties/CPageGeneral.h"
#include "properties/CPageGeneralMore.h"
#include "properties/CPageSyntaxColour.h"
#include "properties/CPropertiesSheet.h"
#include "properties/CSampleWnd.h"
#include "properties/DesktopIntegration.h"
#include "properties/FileFilterStore.h"
#include "properties/PropertiesCommands.h"
#include "settings/CRegistryStore.h"
#include "syntax/CSyntaxParserList.h"
#include "DocumentCleanup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <QLabel>
#include <gtest/gtest.h>

#include <memory>

namespace {

using Sci = QsciScintillaBase;

// A page of another subsystem, known only through the interface.
class ForeignPage : public IPropertyPage
{
public:
    ForeignPage(QString title, QWidget* parent) : m_title(std::move(title)), m_widget(new QWidget(parent)) {}
    QString Title() const override { return m_title; }
    QWidget* Widget() override { return m_widget; }
    void Apply() override { ++applied; }
    void Reset() override {}
    bool IsModified() const override { return modified; }
    int applied = 0;
    bool modified = false;

private:
    QString m_title;
    QWidget* m_widget;
};

class PropertiesSheetTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        // The program's definitions, copied where the sheet may write them.
        m_syntax = TestSupport::MakeTempDir();
        const QString shipped = QStringLiteral(MORVANE_SOURCE_DIR "/data/syntax/");
        for (const char* name : {"C.config", "Python.config"})
            QFile::copy(shipped + QLatin1String(name), QDir(m_syntax).filePath(QLatin1String(name)));
        CRegistryStore().WriteProfileString(QStringLiteral("Settings"), QStringLiteral("ConfigPath"), m_syntax);
        m_parsers = std::make_unique<CSyntaxParserList>(m_syntax);
        ASSERT_TRUE(m_parsers->Load());

        m_template = TextDocuments::MakeTemplate(&m_options);
        InstallProperties(m_shell);
    }

    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    CScrivelFrame* NewCFrame()
    {
        CScrivelFrame* frame = TextDocuments::NewFrame(*m_template);
        frame->SetParserList(m_parsers.get());
        frame->ApplyParserForExtension(*m_parsers, QStringLiteral(".c"));
        m_shell.AddChildFrame(frame);
        return frame;
    }

    template <typename Page>
    static Page* Find(CPropertiesSheet& sheet)
    {
        for (int i = 0; i < sheet.PageCount(); ++i) {
            if (auto* page = dynamic_cast<Page*>(sheet.Page(i)))
                return page;
        }
        return nullptr;
    }

    static long Send(CScrivelFrame* frame, unsigned int message, unsigned long w = 0)
    {
        return frame->GetView()->GetEditor()->SendScintilla(message, w);
    }

    QString m_syntax;
    std::unique_ptr<CSyntaxParserList> m_parsers;
    OpenOptions m_options = OpenOptions::defaults();
    std::unique_ptr<CDocTemplate> m_template;
    CFakeShell m_shell;
};

TEST_F(PropertiesSheetTest, PagesAppearInAscendingOrderWhoeverRegisteredThem)
{
    m_shell.AddPropertyPage(40, [](QWidget* parent) { return new ForeignPage(QStringLiteral("Backup Manager"), parent); });
    m_shell.AddPropertyPage(5, [](QWidget* parent) { return new ForeignPage(QStringLiteral("First"), parent); });
    CPropertiesSheet sheet(m_shell.PropertyPages());
    EXPECT_EQ(sheet.windowTitle(), QStringLiteral("Document Properties"));
    QStringList titles;
    for (int i = 0; i < sheet.Tabs()->count(); ++i)
        titles << sheet.Tabs()->tabText(i);
    EXPECT_EQ(titles, (QStringList{QStringLiteral("First"), QStringLiteral("General"), QStringLiteral("File Filters"),
                                   QStringLiteral("Syntax Coloring"), QStringLiteral("Backup Manager"),
                                   QStringLiteral("General More")}));
}

TEST_F(PropertiesSheetTest, CommandOpensTheSheetFromTheToolsMenu)
{
    ASSERT_TRUE(m_shell.Commands().Contains(Cmd::DocumentProperties));
    EXPECT_EQ(m_shell.Commands().PlainText(Cmd::DocumentProperties), QStringLiteral("Document Properties..."));
    bool inTools = false;
    for (QAction* action : m_shell.Menus().Menu(QString::fromLatin1(MenuId::Tools))->actions())
        inTools = inTools || action == m_shell.Commands().Action(Cmd::DocumentProperties);
    EXPECT_TRUE(inTools);
}

TEST_F(PropertiesSheetTest, CancelLeavesSettingsFilesAndViewsAsTheyWere)
{
    CScrivelFrame* frame = NewCFrame();
    const MainFrameSettings before = m_shell.Settings();
    const QByteArray configBefore = TestSupport::ReadFile(QDir(m_syntax).filePath(QStringLiteral("C.config")));
    const QList<FileFilterStore::Filter> filtersBefore = FileFilterStore::Load();
    const long wrapBefore = Send(frame, Sci::SCI_GETWRAPMODE);
    {
        CPropertiesSheet sheet(m_shell.PropertyPages());
        auto* general = Find<CPageGeneral>(sheet);
        general->findChild<QSpinBox*>(QStringLiteral("TabWidth"))->setValue(8);
        general->findChildren<QCheckBox*>().front()->toggle();
        auto* filters = Find<CPageFileFilter>(sheet);
        filters->LabelEdit()->setText(QStringLiteral("Zig"));
        filters->ExtensionEdit()->setText(QStringLiteral("*.zig"));
        ASSERT_TRUE(filters->OnAdd());
        auto* syntax = Find<CPageSyntaxColour>(sheet);
        syntax->Styles()->setCurrentRow(1);
        syntax->ForeButton()->SetColour(QColor(0x12, 0x34, 0x56));
        auto* more = Find<CPageGeneralMore>(sheet);
        more->PrintHeader()->toggle();
        more->Integration()->setChecked(true);
        EXPECT_TRUE(sheet.ApplyButton()->isEnabled());
        sheet.reject();
    }
    EXPECT_EQ(m_shell.Settings().view, before.view);
    EXPECT_EQ(m_shell.Settings().PrintHeader, before.PrintHeader);
    EXPECT_EQ(TestSupport::ReadFile(QDir(m_syntax).filePath(QStringLiteral("C.config"))), configBefore);
    EXPECT_EQ(FileFilterStore::Load(), filtersBefore);
    EXPECT_EQ(Send(frame, Sci::SCI_GETWRAPMODE), wrapBefore);
    EXPECT_FALSE(DesktopIntegration::IsInstalled());
}

TEST_F(PropertiesSheetTest, OkAppliesGeneralSettingsToEveryOpenView)
{
    CScrivelFrame* first = NewCFrame();
    CScrivelFrame* second = NewCFrame();
    ASSERT_EQ(m_shell.Settings().view.WordWrap, 0);
    CPropertiesSheet sheet(m_shell.PropertyPages());
    auto* general = Find<CPageGeneral>(sheet);
    EXPECT_FALSE(sheet.ApplyButton()->isEnabled());
    for (QCheckBox* box : general->findChildren<QCheckBox*>()) {
        if (box->text() == QStringLiteral("&Word wrap") || box->text() == QStringLiteral("Line &numbers"))
            box->setChecked(true);
    }
    general->findChild<QSpinBox*>(QStringLiteral("TabWidth"))->setValue(7);
    general->findChild<CColourButton*>(QStringLiteral("CaretLineColour"))->SetColour(QColor(0x10, 0x20, 0x30));
    EXPECT_TRUE(sheet.ApplyButton()->isEnabled());
    sheet.accept();

    const ViewSettings& settings = m_shell.Settings().view;
    EXPECT_EQ(settings.WordWrap, 1);
    EXPECT_EQ(settings.LineNumbers, 1);
    EXPECT_EQ(settings.TabWidth, 7);
    EXPECT_EQ(settings.CaretLineColour, 0x302010u);
    EXPECT_EQ(settings.FontStyle, ViewSettings().FontStyle) << "an untouched font stays as it was";
    for (CScrivelFrame* frame : {first, second}) {
        EXPECT_NE(Send(frame, Sci::SCI_GETWRAPMODE), 0);
        EXPECT_EQ(Send(frame, Sci::SCI_GETTABWIDTH), 7);
        EXPECT_GT(Send(frame, Sci::SCI_GETMARGINWIDTHN, 1), 0);
    }
}

TEST_F(PropertiesSheetTest, ApplyAppliesOnlyChangedPagesAndDisablesItself)
{
    auto* foreign = new ForeignPage(QStringLiteral("Backup Manager"), nullptr);
    m_shell.AddPropertyPage(40, [foreign](QWidget* parent) { foreign->Widget()->setParent(parent); return foreign; });
    CPropertiesSheet sheet(m_shell.PropertyPages());
    sheet.ApplyAll();
    EXPECT_EQ(foreign->applied, 0);
    foreign->modified = true;
    sheet.ApplyAll();
    EXPECT_EQ(foreign->applied, 1);
    auto* more = Find<CPageGeneralMore>(sheet);
    more->ResetUndo()->toggle();
    more->PrintFooter()->toggle();
    EXPECT_TRUE(more->IsModified());
    foreign->modified = false;
    QTest::qWait(350); // the sheet asks pages of other subsystems now and then
    EXPECT_TRUE(sheet.ApplyButton()->isEnabled());
    sheet.ApplyButton()->click();
    EXPECT_FALSE(more->IsModified());
    EXPECT_FALSE(sheet.ApplyButton()->isEnabled());
    EXPECT_EQ(m_shell.Settings().ResetUndoOnSave, 0);
    EXPECT_EQ(m_shell.Settings().PrintFooter, 1);
}

TEST_F(PropertiesSheetTest, FileFiltersAreAddedDeletedAndWrittenOnApply)
{
    FileFilterStore::Save({{QStringLiteral("C Files"), QStringLiteral("*.c")}});
    CPageFileFilter page(nullptr);
    ASSERT_EQ(page.List()->topLevelItemCount(), 1);

    // Both fields are needed.
    page.LabelEdit()->setText(QStringLiteral("Only a label"));
    EXPECT_FALSE(page.OnAdd());
    EXPECT_EQ(page.Filters().size(), 1);

    page.LabelEdit()->setText(QStringLiteral("Ada"));
    page.ExtensionEdit()->setText(QStringLiteral("*.adb;*.ads"));
    ASSERT_TRUE(page.OnAdd());
    page.LabelEdit()->setText(QStringLiteral("C Sources"));
    page.ExtensionEdit()->setText(QStringLiteral("*.c"));
    ASSERT_TRUE(page.OnAdd()); // a listed pattern takes the new label
    EXPECT_EQ(FileFilterStore::FilterString(page.Filters()),
              QStringLiteral("Ada (*.adb;*.ads)|*.adb;*.ads|C Sources (*.c)|*.c|All Files (*.*)|*.*||"));
    EXPECT_EQ(page.List()->topLevelItem(0)->text(0), QStringLiteral("Ada"));
    EXPECT_EQ(page.List()->topLevelItem(0)->text(1), QStringLiteral("*.adb;*.ads"));

    {
        page.List()->clearSelection();
        TestSupport::ModalAnswerer answerer;
        EXPECT_FALSE(page.OnDelete());
        EXPECT_EQ(answerer.Texts(), QStringList{CPageFileFilter::SelectFirstText()});
    }
    page.List()->topLevelItem(1)->setSelected(true);
    ASSERT_TRUE(page.OnDelete());
    EXPECT_EQ(FileFilterStore::Load().size(), 1) << "nothing is written before Apply";
    page.Apply();
    EXPECT_EQ(FileFilterStore::Load(), (QList<FileFilterStore::Filter>{{QStringLiteral("Ada"), QStringLiteral("*.adb;*.ads")}}));
}

TEST_F(PropertiesSheetTest, SyntaxColoursAreWrittenBackByteForByteAndRecolourTheViews)
{
    CScrivelFrame* frame = NewCFrame();
    const QString cPath = QDir(m_syntax).filePath(QStringLiteral("C.config"));
    const QString pyPath = QDir(m_syntax).filePath(QStringLiteral("Python.config"));
    const QByteArray cBefore = TestSupport::ReadFile(cPath);
    const QByteArray pyBefore = TestSupport::ReadFile(pyPath);

    CPageSyntaxColour page(m_shell, nullptr);
    ASSERT_EQ(page.Languages()->count(), 2);
    page.Languages()->setCurrentIndex(m_parsers->FindByExtension(QStringLiteral(".c")));
    page.Styles()->setCurrentRow(1);
    const CSyntaxParser original = page.Parsers().GetParser(page.Languages()->currentIndex());
    const int style = original.colours[1].style;
    EXPECT_FALSE(page.IsModified());
    page.ForeButton()->SetColour(QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(page.Sample()->Fore(), QColor(0x12, 0x34, 0x56));
    EXPECT_TRUE(page.IsModified());
    EXPECT_TRUE(page.Parsers().GetParser(page.Languages()->currentIndex()).modified);
    page.Apply();

    // Only the one value changed; the other language's file is untouched.
    QByteArray expected = cBefore;
    const QByteArray oldLine = "STYLE=\"" + QByteArray::number(style) + "\" HEXFORE=\"#008000\"";
    ASSERT_EQ(expected.count(oldLine), 1);
    expected.replace(oldLine, "STYLE=\"" + QByteArray::number(style) + "\" HEXFORE=\"#123456\"");
    EXPECT_EQ(TestSupport::ReadFile(cPath), expected);
    EXPECT_EQ(TestSupport::ReadFile(pyPath), pyBefore);
    EXPECT_FALSE(page.IsModified());
    EXPECT_FALSE(page.Parsers().GetParser(page.Languages()->currentIndex()).modified);
    EXPECT_EQ(Send(frame, Sci::SCI_STYLEGETFORE, static_cast<unsigned long>(style)), 0x563412);
}

TEST_F(PropertiesSheetTest, WithoutDefinitionsTheColourControlsAreDisabled)
{
    CPageSyntaxColour page(m_shell, nullptr, TestSupport::MakeTempDir());
    EXPECT_EQ(page.Languages()->count(), 0);
    for (QWidget* widget : std::initializer_list<QWidget*>{page.Languages(), page.Styles(), page.ForeButton(),
                                                           page.BackButton(), page.EolFilled(), page.Sample()})
        EXPECT_FALSE(widget->isEnabled()) << widget->objectName().toStdString();
    for (QLabel* label : page.findChildren<QLabel*>())
        EXPECT_FALSE(label->isEnabled()) << label->text().toStdString();
    page.Apply(); // nothing to write, nothing to fail
    EXPECT_FALSE(page.IsModified());
}

TEST_F(PropertiesSheetTest, TheSessionSwitchIsKeptWhereTheSessionKeeperReadsIt)
{
    const auto stored = [] {
        return CRegistryStore().GetProfileInt(QStringLiteral("EditSettings"), QStringLiteral("RestoreSession"), -1);
    };
    CPageGeneralMore page(m_shell, nullptr);
    EXPECT_FALSE(page.RestoreSession()->isChecked()) << "off unless the user turns it on";
    page.RestoreSession()->setChecked(true);
    EXPECT_TRUE(page.IsModified());
    EXPECT_EQ(stored(), -1) << "nothing is written before Apply";
    page.Apply();
    EXPECT_EQ(stored(), 1);
    CPageGeneralMore again(m_shell, nullptr);
    EXPECT_TRUE(again.RestoreSession()->isChecked());
    again.RestoreSession()->setChecked(false);
    again.Apply();
    EXPECT_EQ(stored(), 0);
}

TEST_F(PropertiesSheetTest, TheIntegrationSwitchInstallsAndRemovesTheDesktopEntry)
{
    DesktopIntegration::Remove();
    CPageGeneralMore page(m_shell, nullptr);
    EXPECT_FALSE(page.Integration()->isChecked());
    page.Integration()->setChecked(true);
    page.Apply();
    EXPECT_TRUE(DesktopIntegration::IsInstalled());
    CPageGeneralMore again(m_shell, nullptr);
    EXPECT_TRUE(again.Integration()->isChecked());
    again.Integration()->setChecked(false);
    again.Apply();
    EXPECT_FALSE(DesktopIntegration::IsInstalled());
}

} // namespace

namespace {

// Enter where the sheet opens is OK, whatever buttons its pages bring.
TEST_F(PropertiesSheetTest, EnterPressesOk)
{
    CPropertiesSheet sheet(m_shell.PropertyPages());
    EXPECT_EQ(TestSupport::ButtonsPressedByEnter(sheet), QStringList{QStringLiteral("OK")});
}

} // namespace
