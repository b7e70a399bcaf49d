// Positions past 2^31: a file of a little over 2 GB, mostly a hole on disk, opened,
// searched, navigated and saved. Labelled "huge": ./test.sh runs it only when asked.
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/CTextSearch.h"
#include "editor/LargeFileMode.h"
#include "editor/TextEncoding.h"
#include "framework/CDocTemplate.h"
#include "framework/OpenOptions.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <climits>
#include <gtest/gtest.h>
#include <memory>

namespace {

constexpr qint64 kSize = (1LL << 31) + (64LL << 20);
constexpr qint64 kLineEvery = 1 << 20;
const QByteArray kTail = "the needle at the end\n";

// Zeros with a line end every megabyte and a last line of text: sparse on disk.
QString MakeSparseText(const QString& dir)
{
    const QString path = QDir(dir).filePath(QStringLiteral("huge.log"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(file.resize(kSize - kTail.size()));
    for (qint64 at = kLineEvery - 1; at < kSize - kTail.size(); at += kLineEvery) {
        file.seek(at);
        file.write("\n", 1);
    }
    // The text's own line starts right after a line end.
    file.seek(kSize - kTail.size() - 1);
    file.write("\n" + kTail);
    return path;
}

bool SameFiles(const QString& a, const QString& b)
{
    QFile one(a), two(b);
    if (!one.open(QIODevice::ReadOnly) || !two.open(QIODevice::ReadOnly) || one.size() != two.size())
        return false;
    constexpr qint64 step = 64 << 20;
    while (!one.atEnd()) {
        if (one.read(step) != two.read(step))
            return false;
    }
    return true;
}

TEST(HugeFile, PositionsPast31BitsSurviveOpenFindGoToBookmarksAndSave)
{
    const QString dir = TestSupport::MakeTempDir();
    const QString path = MakeSparseText(dir);
    OpenOptions options;
    options.encoding = TextEncoding::Utf8;
    CDocTemplate docTemplate(
        QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
        [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
    docTemplate.SetOpenOptions(&options);
    auto* document = static_cast<CScrivelDoc*>(docTemplate.OpenDocumentFile(path, false));
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    EXPECT_TRUE(editor->SendScintilla(QsciScintillaBase::SCI_GETDOCUMENTOPTIONS) & LargeFileMode::TextLarge);
    ASSERT_EQ(editor->GetLength(), kSize);
    // The last line is the empty one behind the text's line end.
    const long textLine = editor->GetLineCount() - 2;
    EXPECT_EQ(textLine, kSize / kLineEvery);
    EXPECT_EQ(editor->PositionFromLine(textLine), kSize - kTail.size());

    // Find from the top lands past 2 GB, on the right line and column.
    editor->GotoPos(0);
    const long found = CTextSearch(editor).FindText(QStringLiteral("needle"), false, false);
    EXPECT_EQ(found, kSize - kTail.size() + 4);
    EXPECT_GT(found, long(INT_MAX));
    EXPECT_EQ(editor->LineFromPosition(found), textLine);
    EXPECT_TRUE(static_cast<CScrivelFrame*>(document->GetFrames().first())
                    ->StatusText()
                    .startsWith(QString::asprintf("Ln %2ld Col %2ld", textLine + 1, 10L)));

    // Go to line and bookmarks address the last line by its 64-bit position.
    editor->GotoPos(0);
    document->GoToLineColumn(textLine + 1, 0);
    EXPECT_EQ(editor->GetCurrentPos(), kSize - kTail.size());
    editor->ToggleBookmark(textLine);
    editor->GotoPos(0);
    EXPECT_TRUE(editor->NextBookmark(true, false));
    EXPECT_EQ(editor->GetCurrentPos(), kSize - kTail.size());

    // An edit at the end is saved, and every other byte comes back as it was.
    editor->GotoPos(editor->GetLength());
    editor->AddText("more\n", 5);
    const QString saved = QDir(dir).filePath(QStringLiteral("saved.log"));
    ASSERT_TRUE(document->DoSave(saved));
    {
        QFile expected(path);
        ASSERT_TRUE(expected.open(QIODevice::Append));
        expected.write("more\n");
    }
    EXPECT_TRUE(SameFiles(path, saved));

    document->SetModifiedFlag(false);
    const auto frames = document->GetFrames();
    for (CChildFrame* frame : frames)
        delete frame;
    delete document;
    QFile::remove(path);
    QFile::remove(saved);
}

} // namespace
