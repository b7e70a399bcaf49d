#include "framework/CDocTemplate.h"
#include "framework/OpenOptions.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/TextEncoding.h"
#include "TestSupport.h"
#include "TextDocuments.h"
#include "settings/CRegistryStore.h"
#include "DocumentCleanup.h"

#include <QDir>
#include <QMessageBox>
#include <QStringEncoder>
#include <gtest/gtest.h>
#include <memory>

namespace {

using namespace TextEncoding;

// Opens files the way the application does: probe first, then the text template.
class TextDocumentTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = TestSupport::MakeTempDir();
        m_template = TextDocuments::MakeTemplate(&m_options);
    }

    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    QString Path(const QString& name) const { return QDir(m_dir).filePath(name); }

    CScrivelDoc* Open(const QString& path, OpenOptions options = OpenOptions())
    {
        m_options = TextDocuments::Probed(path, options);
        return static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(path, false));
    }

    static QByteArray Text(CScrivelDoc* document) { return document->GetEditor()->GetText(); }

    QString m_dir;
    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
};

QByteArray Encode(const QString& text, QStringConverter::Encoding encoding, bool mark)
{
    QStringEncoder encoder(encoding, mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
    return encoder.encode(text);
}

struct FileCase
{
    const char* name;
    QByteArray bytes;
    int expectedEncoding;
};

QString MultiByteText(int lines)
{
    QString text;
    for (int i = 0; i < lines; ++i) {
        text += QString::fromUtf8("line %1: caf\xC3\xA9 \xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80").arg(i);
        text += (i % 3 == 0) ? QStringLiteral("\r\n") : (i % 3 == 1) ? QStringLiteral("\n") : QStringLiteral("\r");
    }
    return text;
}

class SaveUnchanged : public TextDocumentTest, public ::testing::WithParamInterface<FileCase>
{
};

TEST_P(SaveUnchanged, WritesTheSameBytesBack)
{
    const FileCase& c = GetParam();
    const QString path = Path(QStringLiteral("file.txt"));
    TestSupport::WriteFile(path, c.bytes);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->Encoding, c.expectedEncoding);
    EXPECT_FALSE(document->IsModified());
    ASSERT_TRUE(document->DoSave(path));
    EXPECT_EQ(TestSupport::ReadFile(path), c.bytes);
}

const QString kSmall = MultiByteText(5);
// About 1 MB of multi-byte text, well across the 256,000-byte reading window.
const QString kLarge = MultiByteText(36000);

QByteArray AnsiBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 3000; ++i)
        bytes += "caf\xE9 na\xEFve \xA9 line\r\n";
    return bytes;
}

// All 256 values, the five windows-1252 leaves undefined among them, twice over.
QByteArray EveryByteValue()
{
    QByteArray bytes;
    for (int round = 0; round < 2; ++round) {
        for (int b = 1; b < 256; ++b)
            bytes += char(b);
        bytes += "\r\n";
    }
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(Encodings, SaveUnchanged, ::testing::Values(
    FileCase{"utf8_mark", Encode(kSmall, QStringConverter::Utf8, true), Utf8},
    FileCase{"utf8_plain", Encode(kSmall, QStringConverter::Utf8, false), Utf8},
    FileCase{"utf16le_mark", Encode(kSmall, QStringConverter::Utf16LE, true), Utf16LE},
    FileCase{"utf16be_mark", Encode(kSmall, QStringConverter::Utf16BE, true), Utf16BE},
    FileCase{"utf16le_plain", Encode(QStringLiteral("no mark here\r\n"), QStringConverter::Utf16LE, false), Utf16LE},
    FileCase{"utf32le_mark", Encode(kSmall, QStringConverter::Utf32LE, true), Utf32LE},
    FileCase{"utf32be_mark", Encode(kSmall, QStringConverter::Utf32BE, true), Utf32BE},
    FileCase{"ansi_latin1", AnsiBytes(), Ansi},
    FileCase{"ansi_every_byte", EveryByteValue(), Ansi},
    FileCase{"empty", QByteArray(), Ansi},
    FileCase{"one_byte", QByteArray("\xE9"), Ansi},
    FileCase{"large_utf8", Encode(kLarge, QStringConverter::Utf8, false), Utf8},
    FileCase{"large_utf16le", Encode(kLarge, QStringConverter::Utf16LE, true), Utf16LE},
    FileCase{"large_utf16be", Encode(kLarge, QStringConverter::Utf16BE, true), Utf16BE}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(TextDocumentTest, LargeMultiByteTextArrivesWhole)
{
    const QString path = Path(QStringLiteral("large.txt"));
    const QByteArray bytes = Encode(kLarge, QStringConverter::Utf8, false);
    ASSERT_GT(bytes.size(), 1000000);
    TestSupport::WriteFile(path, bytes);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(Text(document), bytes);
    CMFCScintilla* editor = document->GetEditor();
    EXPECT_FALSE(editor->CanUndo()) << "loading is not an undo step";
    EXPECT_EQ(editor->GetCurrentPos(), 0);
}

TEST_F(TextDocumentTest, TypedTextIsSavedInTheFilesEncoding)
{
    const QString path = Path(QStringLiteral("typed.txt"));
    TestSupport::WriteFile(path, Encode(QStringLiteral("world\n"), QStringConverter::Utf16BE, true));
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    editor->GotoPos(0);
    editor->AddText("hello \xF0\x9F\x98\x80 ");
    EXPECT_TRUE(document->IsModified());
    EXPECT_TRUE(document->GetTitle().endsWith(QLatin1Char('*')));
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(document->GetTitle(), QStringLiteral("typed.txt"));
    EXPECT_EQ(TestSupport::ReadFile(path),
              Encode(QString::fromUtf8("hello \xF0\x9F\x98\x80 world\n"), QStringConverter::Utf16BE, true));
    EXPECT_FALSE(editor->CanUndo()) << "the undo history is emptied by a save";
}

TEST_F(TextDocumentTest, UndoingBackToTheSavePointClearsTheModifiedMark)
{
    const QString path = Path(QStringLiteral("undo.txt"));
    TestSupport::WriteFile(path, "abc");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    document->GetEditor()->AddText("x");
    ASSERT_TRUE(document->IsModified());
    document->GetEditor()->Undo();
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(document->GetTitle(), QStringLiteral("undo.txt"));
}

TEST_F(TextDocumentTest, SaveAsChangesEncodingNameAndLineEnds)
{
    const QString path = Path(QStringLiteral("plain.txt"));
    TestSupport::WriteFile(path, "one\ntwo\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    const QString other = Path(QStringLiteral("wide.md"));
    ASSERT_TRUE(document->SaveAs(other, Utf16LE, CMFCScintilla::SC_EOL_CRLF));
    EXPECT_EQ(document->GetPathName(), other);
    EXPECT_EQ(TestSupport::ReadFile(other), Encode(QStringLiteral("one\r\ntwo\r\n"), QStringConverter::Utf16LE, true));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("one\ntwo\n")) << "the old file is untouched";
    // New lines follow the chosen line end too.
    document->GetEditor()->GotoPos(document->GetEditor()->GetLength());
    document->GetEditor()->SendScintilla(QsciScintillaBase::SCI_NEWLINE);
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(other), Encode(QStringLiteral("one\r\ntwo\r\n\r\n"), QStringConverter::Utf16LE, true));
}

TEST_F(TextDocumentTest, Utf8WithoutMarkKeepsItThroughSaveAsAndGainsOneOnAChange)
{
    const QString path = Path(QStringLiteral("script.sh"));
    const QByteArray bytes = "#!/bin/sh\necho \xC3\xA9t\xC3\xA9 \xE2\x82\xAC\n";
    TestSupport::WriteFile(path, bytes);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    ASSERT_EQ(document->Encoding, Utf8);
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), bytes);
    ASSERT_TRUE(document->SaveAs(path, Utf8, CMFCScintilla::SC_EOL_LF));
    EXPECT_EQ(TestSupport::ReadFile(path), bytes) << "the same encoding is no reason for a mark";
    ASSERT_TRUE(document->SaveAs(path, Utf16BE, CMFCScintilla::SC_EOL_LF));
    ASSERT_TRUE(document->SaveAs(path, Utf8, CMFCScintilla::SC_EOL_LF));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("\xEF\xBB\xBF") + bytes);
}

TEST_F(TextDocumentTest, AnsiFileShowsItsLettersAndConvertsToValidUtf8)
{
    const QString path = Path(QStringLiteral("latin.txt"));
    TestSupport::WriteFile(path, "Caf\xE9 \x80\r\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    ASSERT_EQ(document->Encoding, Ansi);
    EXPECT_EQ(Text(document), QByteArray("Caf\xC3\xA9 \xE2\x82\xAC\r\n"));
    const QString other = Path(QStringLiteral("utf8.txt"));
    ASSERT_TRUE(document->SaveAs(other, Utf8, CMFCScintilla::SC_EOL_CRLF));
    EXPECT_EQ(TestSupport::ReadFile(other), QByteArray("\xEF\xBB\xBF" "Caf\xC3\xA9 \xE2\x82\xAC\r\n"));
}

TEST_F(TextDocumentTest, AnsiReadsInTheConfiguredCodePage)
{
    CRegistryStore().WriteProfileString(QStringLiteral("EditSettings"), QStringLiteral("AnsiCodePage"),
                                         QStringLiteral("windows-1251"));
    const QString path = Path(QStringLiteral("cyrillic.txt"));
    TestSupport::WriteFile(path, "\xCF\xF0\xE8\xE2\xE5\xF2\n");
    CScrivelDoc* document = Open(path);
    CRegistryStore().WriteProfileString(QStringLiteral("EditSettings"), QStringLiteral("AnsiCodePage"), QString());
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(QString::fromUtf8(Text(document)), QString::fromUtf8("\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82\n"));
}

struct UnholdableCase
{
    const char* name;
    int answer;
    bool saved;
    const char* expectedFile;
    int expectedEncoding;
};

class UnholdableText : public TextDocumentTest, public ::testing::WithParamInterface<UnholdableCase>
{
};

TEST_P(UnholdableText, SaveAsksForUtf8AndNeverWritesAStandIn)
{
    const UnholdableCase& c = GetParam();
    const QString path = Path(QStringLiteral("latin.txt"));
    TestSupport::WriteFile(path, "caf\xE9\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    document->GetEditor()->GotoPos(0);
    document->GetEditor()->AddText("\xE4\xB8\xAD ");
    TestSupport::ModalAnswerer answerer(c.answer);
    EXPECT_EQ(document->DoFileSave(), c.saved);
    ASSERT_EQ(answerer.Texts().size(), 1);
    EXPECT_TRUE(answerer.Texts().first().contains(QStringLiteral("UTF-8"))) << answerer.Texts().first().toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray(c.expectedFile));
    EXPECT_EQ(document->Encoding, c.expectedEncoding);
    EXPECT_EQ(document->IsModified(), !c.saved);
}

INSTANTIATE_TEST_SUITE_P(Answers, UnholdableText, ::testing::Values(
    UnholdableCase{"yes_saves_utf8", QMessageBox::Yes, true, "\xEF\xBB\xBF\xE4\xB8\xAD caf\xC3\xA9\n", Utf8},
    UnholdableCase{"no_keeps_the_file", QMessageBox::No, false, "caf\xE9\n", Ansi}),
    [](const auto& info) { return std::string(info.param.name); });

// A key near the start puts the control's gap there. The save reads the text either side
// of it: closing the gap would copy everything behind it, in a large document a pause of
// its own, paid again at the next key.
struct GapSaveCase
{
    const char* name;
    QByteArray file;      // the file as it was
    QByteArray expected;  // after "x" is typed after its first character
};

class SaveAroundTheGap : public TextDocumentTest, public ::testing::WithParamInterface<GapSaveCase>
{
};

TEST_P(SaveAroundTheGap, WritesTheWholeTextAndLeavesTheGapWhereTheKeyWas)
{
    const GapSaveCase& c = GetParam();
    const QString path = Path(QStringLiteral("gap.txt"));
    TestSupport::WriteFile(path, c.file);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    editor->GotoPos(editor->PositionAfter(0));
    editor->AddText("x");
    const long gap = static_cast<long>(editor->SendScintilla(QsciScintillaBase::SCI_GETGAPPOSITION));
    ASSERT_LT(gap, editor->GetLength());
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), c.expected);
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETGAPPOSITION), gap);
}

INSTANTIATE_TEST_SUITE_P(Encodings, SaveAroundTheGap, ::testing::Values(
    GapSaveCase{"Utf8WithMark", "\xEF\xBB\xBF\xC3\xA9t\xC3\xA9\n\xE4\xB8\xAD\n",
                "\xEF\xBB\xBF\xC3\xA9xt\xC3\xA9\n\xE4\xB8\xAD\n"},
    GapSaveCase{"Utf16LE", QByteArray("\xFF\xFE" "a\0b\0\xE9\0\n\0", 10),
                QByteArray("\xFF\xFE" "a\0x\0b\0\xE9\0\n\0", 12)},
    GapSaveCase{"Ansi", "caf\xE9\nna\xEFve\n", "cxaf\xE9\nna\xEFve\n"}),
    [](const auto& info) { return std::string(info.param.name); });

// The "Ansi" check for characters the code page lacks looks on both sides of the gap.
TEST_F(TextDocumentTest, UnholdableCharacterBehindTheGapIsFound)
{
    const QString path = Path(QStringLiteral("behind.txt"));
    TestSupport::WriteFile(path, "caf\xE9\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    editor->GotoPos(editor->GetLength());
    editor->AddText("\xE4\xB8\xAD");
    editor->GotoPos(0);
    editor->AddText("x");
    ASSERT_LT(editor->SendScintilla(QsciScintillaBase::SCI_GETGAPPOSITION), editor->GetLength() - 3);
    TestSupport::ModalAnswerer answerer(QMessageBox::No);
    EXPECT_FALSE(document->DoFileSave());
    ASSERT_EQ(answerer.Texts().size(), 1);
    EXPECT_TRUE(answerer.Texts().first().contains(QStringLiteral("UTF-8")))
        << "asked to save as UTF-8 instead, not told of a failed save: " << answerer.Texts().first().toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("caf\xE9\n"));
}

TEST_F(TextDocumentTest, SaveIntoAMissingFolderFailsAndKeepsTheDocumentModified)
{
    const QString path = Path(QStringLiteral("keep.txt"));
    TestSupport::WriteFile(path, "keep");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    document->GetEditor()->AddText("more ");
    TestSupport::ModalAnswerer answerer;
    EXPECT_FALSE(document->DoSave(Path(QStringLiteral("missing/dir/out.txt"))));
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(document->GetPathName(), path);
    ASSERT_EQ(answerer.Texts().size(), 1);
    EXPECT_EQ(answerer.Texts().first(), QStringLiteral("Failed to create a new file when saving the current document"));
}

TEST_F(TextDocumentTest, SaveToAFullDiskFailsAndKeepsTheDocumentModified)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no /dev/full on this system";
    const QString path = Path(QStringLiteral("full.txt"));
    TestSupport::WriteFile(path, "x");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    document->GetEditor()->AddText(QByteArray(300000, 'y').constData());
    TestSupport::ModalAnswerer answerer;
    EXPECT_FALSE(document->DoSave(QStringLiteral("/dev/full"), false));
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(answerer.Texts().size(), 1);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("x"));
}

TEST_F(TextDocumentTest, UnreadableFileOpensNoDocument)
{
    TestSupport::ModalAnswerer answerer;
    const QString path = Path(QStringLiteral("a-folder"));
    QDir().mkpath(path);
    EXPECT_EQ(Open(path), nullptr);
    EXPECT_TRUE(m_template->GetDocuments().isEmpty());
    ASSERT_EQ(answerer.Texts().size(), 1);
    EXPECT_TRUE(answerer.Texts().first().startsWith(QStringLiteral("Cannot open \"")));
}

TEST_F(TextDocumentTest, ReadOnlyOpenMarksTheTitleAndRefusesEdits)
{
    const QString path = Path(QStringLiteral("locked.txt"));
    TestSupport::WriteFile(path, "locked");
    OpenOptions options;
    options.readOnly = true;
    CScrivelDoc* document = Open(path, options);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetTitle(), QStringLiteral("locked.txt [Read Only]"));
    document->GetEditor()->AddText("x");
    EXPECT_EQ(Text(document), QByteArray("locked"));
    EXPECT_FALSE(document->IsModified());
}

TEST_F(TextDocumentTest, FormsWeDoNotWriteOpenReadOnly)
{
    const QString path = Path(QStringLiteral("scsu.txt"));
    TestSupport::WriteFile(path, QByteArray("\x0E\xFE\xFF\x00" "A", 5));
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->Encoding, Scsu);
    EXPECT_TRUE(document->ReadOnly);
    EXPECT_TRUE(document->NeedsSaveAs);
    EXPECT_TRUE(document->GetEditor()->GetReadOnly());
}

TEST_F(TextDocumentTest, NewDocumentHasANumberedUntitledName)
{
    auto* first = static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(QString(), false));
    auto* second = static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(QString(), false));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->GetTitle(), QStringLiteral("Untitled1"));
    EXPECT_EQ(second->GetTitle(), QStringLiteral("Untitled2"));
    EXPECT_EQ(first->Encoding, Auto);
    first->GetEditor()->AddText("abc");
    EXPECT_EQ(first->GetTitle(), QStringLiteral("Untitled1*"));
}

} // namespace
