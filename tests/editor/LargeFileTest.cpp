#include "editor/AnsiCodePage.h"
#include "editor/CMFCScintilla.h"
#include "editor/EncodingReader.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/CTextSearch.h"
#include "editor/LargeFileMode.h"
#include "editor/LongLinePieces.h"
#include "editor/TextEncoding.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "framework/IStatusSink.h"
#include "framework/OpenOptions.h"
#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"
#include "syntax/CSyntaxParserList.h"
#include "TestSupport.h"
#include "DocumentCleanup.h"

#include <QCoreApplication>
#include <QDir>
#include <QKeyEvent>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <memory>

namespace {

const CSyntaxParserList& Parsers()
{
    static CSyntaxParserList list = [] {
        CSyntaxParserList loaded(QDir(AppPaths::ShippedDataFolder()).filePath(QStringLiteral("syntax")));
        loaded.Load();
        return loaded;
    }();
    return list;
}

// The status bar's progress, with its Cancel pressed once the load has passed `cancelAt`,
// or Esc pressed as soon as the progress shows.
class FakeProgress : public IProgressSink
{
public:
    void StartProgress(qint64 range) override
    {
        range_ = range;
        if (escapeOnStart)
            QCoreApplication::postEvent(&keyTarget, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    }
    void SetProgress(qint64 done) override { steps.append(done); }
    void StopProgress() override { stopped = true; }
    void OfferCancel() override { offered = true; }
    bool CancelRequested() const override { return cancelAt >= 0 && !steps.isEmpty() && steps.last() >= cancelAt; }

    qint64 range_ = 0;
    qint64 cancelAt = -1;
    bool escapeOnStart = false;
    QObject keyTarget;
    QList<qint64> steps;
    bool offered = false;
    bool stopped = false;
};

class LargeFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        m_template = std::make_unique<CDocTemplate>(
            QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
            [](CDocument* d) {
                auto* frame = new CScrivelFrame(static_cast<CScrivelDoc*>(d));
                frame->SetParserList(&Parsers());
                return frame;
            });
        m_template->SetOpenOptions(&m_options);
        m_template->SetProgressSink(&m_progress);
    }
    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    static void SetEdit(const char* name, qint64 value)
    {
        CRegistryStore().WriteProfileString(QStringLiteral("EditSettings"), QString::fromLatin1(name),
                                            QString::number(value));
    }
    QString Write(const QString& name, const QByteArray& bytes)
    {
        const QString path = QDir(m_dir).filePath(name);
        TestSupport::WriteFile(path, bytes);
        return path;
    }
    CScrivelDoc* Open(const QString& path, int encoding = TextEncoding::Utf8, int bomLength = 0)
    {
        m_options = OpenOptions();
        m_options.encoding = encoding;
        m_options.bomLength = bomLength;
        return static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(path, false));
    }
    static CScrivelFrame* Frame(CScrivelDoc* document)
    {
        return static_cast<CScrivelFrame*>(document->GetFrames().first());
    }
    static long DocumentOptions(CScrivelDoc* document)
    {
        return document->GetEditor()->SendScintilla(QsciScintillaBase::SCI_GETDOCUMENTOPTIONS);
    }

    QString m_dir;
    OpenOptions m_options;
    FakeProgress m_progress;
    std::unique_ptr<CDocTemplate> m_template;
};

QByteArray CppLines(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i)
        text += "int value" + QByteArray::number(i) + " = " + QByteArray::number(i) + "; // note\n";
    return text;
}

// Which documents lose colouring, by size against the threshold and by their longest line.
TEST_F(LargeFileTest, ColouringOffBySizeAndLineLength)
{
    const struct {
        const char* name;
        qint64 thresholdMb;
        qint64 longLine;
        QByteArray text;
        CScrivelDoc::PlainReason reason;
        bool stylesKept;
    } cases[] = {
        {"small.cpp", 1, 0, CppLines(100), CScrivelDoc::PlainReason::None, true},
        {"large.cpp", 1, 0, CppLines(40000), CScrivelDoc::PlainReason::LargeFile, false},
        {"never.cpp", 0, 0, CppLines(40000), CScrivelDoc::PlainReason::None, true},
        {"long.cpp", 64, 5000, "int x;\n" + QByteArray(5001, 'a') + "\n", CScrivelDoc::PlainReason::LongLine, true},
        {"justshort.cpp", 64, 5000, QByteArray(5000, 'a') + "\r\n" + QByteArray(5000, 'b'), CScrivelDoc::PlainReason::None, true},
    };
    for (const auto& c : cases) {
        SetEdit("LargeFileSize", c.thresholdMb);
        SetEdit("LongLineLength", c.longLine > 0 ? c.longLine : LargeFileMode::DefaultLongLineLength);
        CScrivelDoc* document = Open(Write(QString::fromLatin1(c.name), c.text));
        ASSERT_NE(document, nullptr) << c.name;
        CMFCScintilla* editor = document->GetEditor();
        EXPECT_EQ(editor->GetText(), c.text) << c.name;
        EXPECT_EQ(document->ColouringOffReason(), c.reason) << c.name;
        EXPECT_EQ((DocumentOptions(document) & LargeFileMode::StylesNone) == 0, c.stylesKept) << c.name;
        const bool plain = c.reason != CScrivelDoc::PlainReason::None;
        // The C++ parser was chosen either way; only its lexer is dropped.
        EXPECT_GE(Frame(document)->GetParserIndex(), 0) << c.name;
        // A long line is styled in plain-looking pieces by the view instead of a lexer.
        const int plainLexer = c.reason == CScrivelDoc::PlainReason::LongLine ? QsciScintillaBase::SCLEX_CONTAINER
                                                                               : QsciScintillaBase::SCLEX_NULL;
        EXPECT_EQ(editor->GetLexer() == plainLexer, plain) << c.name;
        EXPECT_EQ(Frame(document)->StatusText().contains(QStringLiteral("no colouring")), plain) << c.name;
    }
}

// View As brings colouring back, moving the text into storage with styles, and keeps the
// modified text and its state.
TEST_F(LargeFileTest, ViewAsTurnsColouringBackOn)
{
    SetEdit("LargeFileSize", 1);
    const QByteArray text = CppLines(40000);
    CScrivelDoc* document = Open(Write(QStringLiteral("big.cpp"), text));
    ASSERT_NE(document, nullptr);
    ASSERT_TRUE(document->ColouringOff());
    CMFCScintilla* editor = document->GetEditor();
    editor->GotoPos(editor->GetLength());
    editor->AddText("// end\n", 7);
    document->SetModifiedFlag(true);

    const int index = Frame(document)->GetParserIndex();
    ASSERT_TRUE(Frame(document)->OnCmdMsg(Cmd::ViewAsFirst + index));
    editor = document->GetEditor();
    EXPECT_FALSE(document->ColouringOff());
    EXPECT_EQ(DocumentOptions(document) & LargeFileMode::StylesNone, 0);
    EXPECT_NE(editor->GetLexer(), QsciScintillaBase::SCLEX_NULL);
    EXPECT_EQ(editor->GetText(), text + "// end\n");
    EXPECT_EQ(editor->GetCurrentPos(), editor->GetLength());
    EXPECT_TRUE(document->IsModified());
    EXPECT_FALSE(Frame(document)->StatusText().contains(QStringLiteral("no colouring")));
    // The coloured text really is styled now.
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, 200L);
    EXPECT_NE(editor->GetStyleAt(0), editor->GetStyleAt(4));
}

// A very long line is cut into pieces of two styles that look like plain text, and what
// is typed, pasted or brought back by undo is cut the same way, however the text around
// it moved. The text itself never changes.
TEST_F(LargeFileTest, LongLineIsStyledInPlainLookingPieces)
{
    SetEdit("LongLineLength", 1000);
    QByteArray text;
    for (int i = 0; text.size() < 200000; ++i)
        text += "{\"id\":" + QByteArray::number(i) + ",\"name\":\"caf\xC3\xA9\"},";
    CScrivelDoc* document = Open(Write(QStringLiteral("line.json"), text + "\nshort\n"));
    ASSERT_NE(document, nullptr);
    ASSERT_EQ(document->ColouringOffReason(), CScrivelDoc::PlainReason::LongLine);
    CMFCScintilla* editor = document->GetEditor();
    const auto pieceAt = [editor](long position) {
        return LongLinePieces::IsPieceStyle(editor->GetStyleAt(position));
    };
    const auto allPieces = [&](long from, long to) {
        for (long i = from; i < to; ++i) {
            if (!pieceAt(i))
                return i;
        }
        return -1L;
    };
    EXPECT_EQ(allPieces(0, editor->GetLength()), -1);
    EXPECT_NE(editor->GetStyleAt(0), editor->GetStyleAt(2));

    // The two piece styles look like the plain style, fonts and colours set since included.
    Frame(document)->GetView()->SetFont(QStringLiteral("Serif"), 17, true, false);
    Frame(document)->GetView()->GetEditor()->viewport()->grab();
    for (const unsigned int message : {QsciScintillaBase::SCI_STYLEGETFORE, QsciScintillaBase::SCI_STYLEGETBACK,
                                       QsciScintillaBase::SCI_STYLEGETSIZEFRACTIONAL, QsciScintillaBase::SCI_STYLEGETWEIGHT}) {
        const long plain = editor->SendScintilla(message, 0UL);
        EXPECT_EQ(editor->SendScintilla(message, static_cast<unsigned long>(LongLinePieces::StyleA)), plain) << message;
        EXPECT_EQ(editor->SendScintilla(message, static_cast<unsigned long>(LongLinePieces::StyleB)), plain) << message;
    }

    // Typed and pasted text in the middle and at the end of the line.
    const QByteArray typed = "xyz \xE4\xB8\xAD";
    editor->GotoPos(100000);
    editor->AddText(typed.constData(), typed.size());
    editor->GotoPos(editor->GetLineEndPosition(0));
    editor->AddText("tail", 4);
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    EXPECT_EQ(allPieces(0, editor->GetLength()), -1);
    // Undo brings a deletion back unstyled; colouring cuts it into pieces again.
    editor->SetSel(500, 90000);
    editor->SendScintilla(QsciScintillaBase::SCI_CLEAR);
    editor->Undo();
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    EXPECT_EQ(allPieces(0, editor->GetLength()), -1);

    // Replace All changes the text with the control's notices held back.
    CTextSearch search(editor);
    search.SetSearchFlags(true, false, false);
    EXPECT_GT(search.ReplaceAll(QStringLiteral("name"), QStringLiteral("N\u00E4me"), false, false), 1000);
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    EXPECT_EQ(allPieces(0, editor->GetLength()), -1);

    QByteArray expected = text;
    expected.insert(100000, typed);
    expected.replace("name", "N\xC3\xA4me");
    expected += "tail\nshort\n";
    EXPECT_EQ(editor->GetText(), expected);

    // View As hands the text back to a lexer, which styles it afresh.
    const int json = Frame(document)->GetParserIndex();
    ASSERT_GE(json, 0);
    ASSERT_TRUE(Frame(document)->OnCmdMsg(Cmd::ViewAsFirst + json));
    editor = document->GetEditor();
    EXPECT_NE(editor->GetLexer(), QsciScintillaBase::SCLEX_CONTAINER);
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, 5000L);
    EXPECT_EQ(allPieces(0, 5000), 0);
}

// Braces of a long line match by characters alone: the pieces alternate two styles, and a
// matcher that compares styles counts only every other brace. The column of a position far
// along the line is the control's, and a caret move does not count the line again.
TEST_F(LargeFileTest, LongLineMatchesBracesAndCountsColumnsAcrossPieces)
{
    SetEdit("LongLineLength", 1000);
    QByteArray text = "[";
    for (int i = 0; text.size() < 300000; ++i)
        text += "{\"a\":[" + QByteArray::number(i) + ",{\"b\":\"\t\xC3\xA9\"}]},";
    text += "{}]";
    CScrivelDoc* document = Open(Write(QStringLiteral("braces.json"), text + "\n"));
    ASSERT_NE(document, nullptr);
    ASSERT_EQ(document->ColouringOffReason(), CScrivelDoc::PlainReason::LongLine);
    CMFCScintilla* editor = document->GetEditor();
    // The partner by a plain count, from both ends of the line.
    const std::string plain = text.toStdString();
    const std::string opens = "[{", closes = "]}";
    for (const long brace : {0L, long(plain.size()) - 1, 1L, 6L}) {
        const char c = plain[size_t(brace)];
        const bool forward = opens.find(c) != std::string::npos;
        const char partner = forward ? closes[opens.find(c)] : opens[closes.find(c)];
        int depth = 0;
        long expected = -1;
        for (long i = brace; i >= 0 && i < long(plain.size()) && expected < 0; i += forward ? 1 : -1) {
            if (plain[size_t(i)] == c)
                ++depth;
            else if (plain[size_t(i)] == partner && --depth == 0)
                expected = i;
        }
        ASSERT_GE(expected, 0) << brace;
        editor->GotoPos(brace + 1);
        const CMFCScintilla::BraceMatch match = editor->FindMatchingBrace(false);
        EXPECT_EQ(match.brace, brace);
        EXPECT_EQ(match.partner, expected) << brace;
    }
    for (const long position : {long(text.size()) - 2, 250001L, 70000L, long(text.size())})
        EXPECT_EQ(editor->GetColumn(position),
                  editor->SendScintilla(QsciScintillaBase::SCI_GETCOLUMN, static_cast<unsigned long>(position)));
}

// A large document's changes reach listeners (the view, recovery) once the event loop
// comes round: one insert notice with the lines added, never one per keystroke inside
// the control's own handling.
TEST_F(LargeFileTest, LargeDocumentAnnouncesChangesOncePerTurn)
{
    SetEdit("LargeFileSize", 1);
    CScrivelDoc* document = Open(Write(QStringLiteral("big.cpp"), CppLines(40000)));
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    ASSERT_TRUE(editor->DeferredChangeNotices());
    QSignalSpy spy(editor, &QsciScintillaBase::SCN_MODIFIED);
    const auto inserts = [&spy] {
        QList<int> lines;
        for (const QList<QVariant>& notice : spy) {
            if (notice.at(1).toInt() & QsciScintillaBase::SC_MOD_INSERTTEXT)
                lines.append(notice.at(4).toInt());
        }
        return lines;
    };
    editor->GotoPos(editor->GetLength());
    editor->AddText("a\nb\n", 4);
    editor->AddText("c", 1);
    EXPECT_TRUE(inserts().isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(inserts(), QList<int>{2});
    EXPECT_TRUE(document->IsModified());
    ASSERT_TRUE(document->DoSave(document->GetPathName()));
    QCoreApplication::processEvents();
    EXPECT_FALSE(document->IsModified());
    EXPECT_FALSE(document->GetTitle().endsWith(QLatin1Char('*')));

    // A small document keeps the control's own notices.
    SetEdit("LargeFileSize", 64);
    EXPECT_FALSE(Open(Write(QStringLiteral("small.cpp"), CppLines(10)))->GetEditor()->DeferredChangeNotices());
}

// A load in steps gives the same text as the file, UTF-16 split across steps included,
// and reports its progress; Cancel leaves no document behind.
TEST_F(LargeFileTest, LoadInStepsAndCancel)
{
    QByteArray utf8;
    for (int i = 0; utf8.size() < 20 * 1024 * 1024; ++i)
        utf8 += "line " + QByteArray::number(i) + " \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 text\n";
    const QString utf8Path = Write(QStringLiteral("steps.txt"), utf8);
    CScrivelDoc* document = Open(utf8Path);
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(m_progress.offered);
    EXPECT_TRUE(m_progress.stopped);
    ASSERT_FALSE(m_progress.steps.isEmpty());
    EXPECT_EQ(m_progress.steps.last(), utf8.size());
    EXPECT_EQ(document->GetEditor()->GetText(), utf8);
    EXPECT_FALSE(document->IsModified());
    EXPECT_FALSE(document->GetEditor()->CanUndo());

    const QString utf16 = QString::fromUtf8(utf8);
    QByteArray le(reinterpret_cast<const char*>(utf16.utf16()), utf16.size() * 2);
    document = Open(Write(QStringLiteral("steps16.txt"), "\xFF\xFE" + le), TextEncoding::Utf16LE, 2);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetEditor()->GetText(), utf8);

    // Cancel is only looked at between steps, a few dozen milliseconds apart: a cancel
    // at a given byte would depend on how fast the machine decodes.
    const struct { const char* how; qint64 cancelAt; bool escape; } cancels[] = {
        {"the progress's Cancel", 0, false},
        {"Esc", -1, true},
    };
    for (const auto& c : cancels) {
        SCOPED_TRACE(c.how);
        const int before = int(m_template->GetDocuments().size());
        m_progress.cancelAt = c.cancelAt;
        m_progress.escapeOnStart = c.escape;
        m_progress.steps.clear();
        m_progress.stopped = false;
        EXPECT_EQ(Open(utf8Path), nullptr);
        EXPECT_TRUE(m_progress.stopped);
        EXPECT_EQ(m_template->GetDocuments().size(), before);
    }
    // A later load is not cancelled by what went before.
    m_progress.cancelAt = -1;
    m_progress.escapeOnStart = false;
    document = Open(utf8Path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetEditor()->GetLength(), utf8.size());
}

// Edge cases of the pure rules behind the mode.
TEST(LargeFileModeRules, ThresholdsOptionsAndLines)
{
    EXPECT_EQ(LargeFileMode::ThresholdBytes(0), 0);
    EXPECT_EQ(LargeFileMode::ThresholdBytes(-3), 0);
    EXPECT_EQ(LargeFileMode::ThresholdBytes(64), 64LL << 20);
    EXPECT_GT(LargeFileMode::ThresholdBytes(LLONG_MAX / 2), 0); // no overflow to a small figure
    EXPECT_FALSE(LargeFileMode::IsLarge(1LL << 40, 0));
    EXPECT_FALSE(LargeFileMode::IsLarge(64LL << 20, 64LL << 20));
    EXPECT_TRUE(LargeFileMode::IsLarge((64LL << 20) + 1, 64LL << 20));

    EXPECT_EQ(LargeFileMode::DocumentOptions(1000, true), 0);
    EXPECT_EQ(LargeFileMode::DocumentOptions(1000, false), LargeFileMode::StylesNone);
    EXPECT_EQ(LargeFileMode::DocumentOptions(3LL << 30, false), LargeFileMode::StylesNone | LargeFileMode::TextLarge);
    // Just under 2 GB still needs room to grow.
    EXPECT_EQ(LargeFileMode::DocumentOptions(INT_MAX - 1000, true), LargeFileMode::TextLarge);
    EXPECT_GE(LargeFileMode::MaxTextBytes(1000, TextEncoding::Utf16LE), 1500);
    EXPECT_GE(LargeFileMode::MaxTextBytes(1000, TextEncoding::Ansi), 3000);
    // Storage: a little room for small text, a sixth more for large, never over 64 MB more.
    EXPECT_EQ(LargeFileMode::StorageFor(0), 1000);
    EXPECT_EQ(LargeFileMode::StorageFor(8LL << 20), (8LL << 20) + 1000);
    EXPECT_EQ(LargeFileMode::StorageFor(60LL << 20), (70LL << 20));
    EXPECT_EQ(LargeFileMode::StorageFor(3LL << 30), (3LL << 30) + (64LL << 20));

    const struct { QByteArray text; qint64 limit; bool longer; } lines[] = {
        {QByteArray(10, 'a'), 10, false},
        {QByteArray(11, 'a'), 10, true},
        {"abc\n" + QByteArray(10, 'a') + "\r\nabc", 10, false},
        {"abc\r" + QByteArray(11, 'a'), 10, true},
        {QByteArray(5, 'a') + "\r\n" + QByteArray(5, 'a'), 9, false},
        {QByteArray(100, 'a'), 0, false},
    };
    for (const auto& l : lines)
        EXPECT_EQ(LargeFileMode::HasLineLongerThan(l.text.constData(), l.text.size(), l.limit), l.longer)
            << l.text.left(20).constData() << " limit " << l.limit;
}

// An "Ansi" file's exact size as UTF-8 decides whether the control needs its large
// storage: it must be what the reader makes of the file, to the byte.
TEST(AnsiFileSize, IsWhatTheReaderMakesOfTheFile)
{
    const QString dir = TestSupport::MakeTempDir();
    const AnsiCodePage windows1252;
    const AnsiCodePage cyrillic(QStringLiteral("windows-1251"));
    const struct
    {
        const char* name;
        QByteArray bytes;
        const AnsiCodePage* codePage;
    } cases[] = {
        {"empty", QByteArray(), &windows1252},
        {"ascii", QByteArray("plain text\r\n").repeated(100), &windows1252},
        {"latin", QByteArray("caf\xE9 na\xEFve\n").repeated(50), &windows1252},
        // The euro sign takes three bytes; an undefined byte stands for its own number.
        {"euro_and_undefined", QByteArray(70, 'x') + "\x80\x81\x9D" + QByteArray(70, 'y'), &windows1252},
        {"every_byte", [] { QByteArray all; for (int i = 0; i < 256; ++i) all += char(i); return all.repeated(3); }(),
         &windows1252},
        {"cyrillic", QByteArray("\xCF\xF0\xE8\xE2\xE5\xF2 \x88\n").repeated(40), &cyrillic},
    };
    for (const auto& c : cases) {
        const QString path = QDir(dir).filePath(QString::fromLatin1(c.name));
        TestSupport::WriteFile(path, c.bytes);
        EncodingReader reader(TextEncoding::Ansi, 0, c.codePage);
        const qint64 decoded = qint64(reader.Feed(c.bytes.constData(), std::size_t(c.bytes.size())).size())
            + qint64(reader.Finish().size());
        EXPECT_EQ(LargeFileMode::Utf8SizeOfAnsiFile(path, *c.codePage), decoded) << c.name;
    }
    EXPECT_EQ(LargeFileMode::Utf8SizeOfAnsiFile(QDir(dir).filePath(QStringLiteral("missing")), windows1252), -1);
}

} // namespace
