#include "editor/CMFCScintilla.h"
#include "editor/CTextSearch.h"
#include "recovery/CTextSnapshot.h"

#include <gtest/gtest.h>

#include <Qsci/qsciscintillabase.h>
#include <QApplication>
#include <QElapsedTimer>
#include <functional>
#include <memory>

namespace {

using Sci = QsciScintillaBase;

QByteArray TextOf(CMFCScintilla& editor)
{
    const auto length = editor.SendScintilla(Sci::SCI_GETLENGTH);
    return QByteArray(reinterpret_cast<const char*>(editor.SendScintilla(Sci::SCI_GETCHARACTERPOINTER)), length);
}

void Fill(CMFCScintilla& editor, const QByteArray& text)
{
    editor.SendScintilla(Sci::SCI_CLEARALL);
    editor.SendScintilla(Sci::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()), text.constData());
}

void InsertAt(CMFCScintilla& editor, qsizetype at, const char* text)
{
    editor.SendScintilla(Sci::SCI_INSERTTEXT, static_cast<unsigned long>(at), text);
}

QByteArray Lines(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "line " + QByteArray::number(i) + " of the log, status ok\n";
    return text;
}

struct CopyRun
{
    bool delivered = false;
    bool editedWhileCopying = false;
    long gapWhenDelivered = -1;
    QByteArray copy;
    QByteArray textWhenDelivered;
};

// Copies the editor's text a slice at a time; once the copy has passed `editAfter` bytes,
// `edit` runs between two steps and is told how far the copy had got.
CopyRun Snapshot(CMFCScintilla& editor, qsizetype slice, qsizetype editAfter = 0,
             const std::function<void(CMFCScintilla&, qsizetype)>& edit = {})
{
    CopyRun run;
    CTextSnapshot snapshot(editor);
    snapshot.SetSliceBytes(slice);
    QObject::connect(&snapshot, &CTextSnapshot::finished, [&](const QByteArray& text) {
        run.delivered = true;
        run.copy = text;
        run.gapWhenDelivered = editor.SendScintilla(Sci::SCI_GETGAPPOSITION);
        run.textWhenDelivered = TextOf(editor);
    });
    snapshot.Start();
    bool edited = !edit;
    QElapsedTimer clock;
    clock.start();
    while (!run.delivered && clock.elapsed() < 10000) {
        if (!edited && snapshot.Copied() >= editAfter) {
            edited = true;
            run.editedWhileCopying = snapshot.IsRunning();
            edit(editor, snapshot.Copied());
        }
        QApplication::processEvents();
    }
    return run;
}

} // namespace

// The copy is exact whatever the slice, including slices that cut a character in two
// and a document whose gap sits in the middle.
struct PlainCase
{
    const char* name;
    QByteArray text;
    qsizetype slice;
};

class SnapshotOfText : public ::testing::TestWithParam<PlainCase>
{
};

TEST_P(SnapshotOfText, IsTheTextAndLeavesTheGapWhereItWas)
{
    CMFCScintilla editor;
    Fill(editor, GetParam().text);
    if (!GetParam().text.isEmpty())
        InsertAt(editor, GetParam().text.size() / 2, "typed");
    const auto gap = editor.SendScintilla(Sci::SCI_GETGAPPOSITION);
    const CopyRun run = Snapshot(editor, GetParam().slice);
    ASSERT_TRUE(run.delivered);
    EXPECT_EQ(run.copy, TextOf(editor));
    EXPECT_EQ(run.gapWhenDelivered, gap);
}

// Text read from UTF-16 (with characters outside the basic plane) as the control holds it.
const QByteArray WideText = [] {
    const char16_t units[] = u"Gr\u00fc\u00dfe \u65e5\u672c\u8a9e \U0001F600\U0001D11E line\r\n";
    QString text;
    for (int i = 0; i < 200; ++i)
        text += QString::fromUtf16(units);
    return text.toUtf8();
}();

INSTANTIATE_TEST_SUITE_P(
    Texts, SnapshotOfText,
    ::testing::Values(PlainCase{"Empty", QByteArray(), 7}, PlainCase{"OneSlice", Lines(10), 1 << 20},
                      PlainCase{"ByteSlices", Lines(40), 1}, PlainCase{"OddSlices", Lines(400), 7},
                      PlainCase{"WideBytewise", WideText, 1}, PlainCase{"WideOddSlices", WideText, 5}),
    [](const auto& info) { return std::string(info.param.name); });

// An edit between two steps never leaves a copy that mixes the text before it with the
// text after it.
struct EditCase
{
    const char* name;
    std::function<void(CMFCScintilla&, qsizetype copied)> edit;
};

class SnapshotWhileEditing : public ::testing::TestWithParam<EditCase>
{
};

TEST_P(SnapshotWhileEditing, DeliversTheTextOfOneMoment)
{
    CMFCScintilla editor;
    const QByteArray original = Lines(2000);
    Fill(editor, original);
    // An edit to undo later.
    InsertAt(editor, 40, "earlier ");
    const QByteArray before = TextOf(editor);
    const CopyRun run = Snapshot(editor, 97, original.size() / 2, GetParam().edit);
    ASSERT_TRUE(run.delivered);
    EXPECT_TRUE(run.editedWhileCopying);
    EXPECT_NE(run.textWhenDelivered, before) << "the edit changed nothing";
    EXPECT_EQ(run.copy, run.textWhenDelivered);
}

void QuietReplace(CMFCScintilla& editor, qsizetype at, const char* text, int turns)
{
    const long mask = editor.SendScintilla(Sci::SCI_GETMODEVENTMASK);
    editor.SendScintilla(Sci::SCI_SETMODEVENTMASK, 0UL);
    editor.SendScintilla(Sci::SCI_SETTARGETRANGE, static_cast<unsigned long>(at), long(at + qstrlen(text)));
    editor.SendScintilla(Sci::SCI_REPLACETARGET, static_cast<unsigned long>(-1), text);
    for (int i = 0; i < turns; ++i)
        QApplication::processEvents();
    editor.SendScintilla(Sci::SCI_SETMODEVENTMASK, static_cast<unsigned long>(mask));
}

INSTANTIATE_TEST_SUITE_P(
    Edits, SnapshotWhileEditing,
    ::testing::Values(
        EditCase{"InsertBeforeTheCopiedPart", [](CMFCScintilla& e, qsizetype) { InsertAt(e, 100, "NEW"); }},
        EditCase{"InsertAfterTheCopiedPart",
                 [](CMFCScintilla& e, qsizetype) { InsertAt(e, e.SendScintilla(Sci::SCI_GETLENGTH) - 3, "NEW"); }},
        EditCase{"DeleteAcrossTheCopiedPart",
                 [](CMFCScintilla& e, qsizetype copied) {
                     e.SendScintilla(Sci::SCI_DELETERANGE, static_cast<unsigned long>(copied - 20), 40L);
                 }},
        EditCase{"SameLengthReplaceBeforeTheCopiedPart",
                 [](CMFCScintilla& e, qsizetype) {
                     e.SendScintilla(Sci::SCI_SETTARGETRANGE, 5UL, 9L);
                     e.SendScintilla(Sci::SCI_REPLACETARGET, 4UL, "LINE");
                 }},
        EditCase{"UndoOfAnEarlierEdit", [](CMFCScintilla& e, qsizetype) { e.Undo(); }},
        EditCase{"ReplaceAllOfTheSameLength",
                 [](CMFCScintilla& e, qsizetype) {
                     CTextSearch(&e).ReplaceAll(QStringLiteral("status ok"), QStringLiteral("STATUS OK"), false,
                                                false);
                 }},
        EditCase{"InsertWhileNoticesAreDeferred",
                 [](CMFCScintilla& e, qsizetype) {
                     e.SetDeferredChangeNotices(true);
                     InsertAt(e, 10, "NEW");
                 }},
        EditCase{"UnannouncedInsert",
                 [](CMFCScintilla& e, qsizetype) {
                     const long mask = e.SendScintilla(Sci::SCI_GETMODEVENTMASK);
                     e.SendScintilla(Sci::SCI_SETMODEVENTMASK, 0UL);
                     InsertAt(e, 10, "NEW");
                     e.SendScintilla(Sci::SCI_SETMODEVENTMASK, static_cast<unsigned long>(mask));
                 }},
        EditCase{"SameLengthChangeWhileNoticesAreOffForManyTurns",
                 [](CMFCScintilla& e, qsizetype) { QuietReplace(e, 5, "LINE", 50); }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SnapshotLifetime, CancelAndALostEditorDeliverNothing)
{
    auto editor = std::make_unique<CMFCScintilla>();
    Fill(*editor, Lines(500));
    CTextSnapshot snapshot(*editor);
    snapshot.SetSliceBytes(64);
    int delivered = 0;
    QObject::connect(&snapshot, &CTextSnapshot::finished, [&] { ++delivered; });

    snapshot.Start();
    QApplication::processEvents();
    snapshot.Cancel();
    for (int i = 0; i < 2000; ++i)
        QApplication::processEvents();
    EXPECT_EQ(delivered, 0);
    EXPECT_FALSE(snapshot.IsRunning());

    snapshot.Start();
    QApplication::processEvents();
    editor.reset();
    for (int i = 0; i < 10 && snapshot.IsRunning(); ++i)
        QApplication::processEvents();
    EXPECT_EQ(delivered, 0);
    EXPECT_FALSE(snapshot.IsRunning());
}

// Asking again while a copy is under way keeps its progress: the pauses in typing that
// ask for copies must not keep a large document's copy from ever finishing.
TEST(SnapshotLifetime, StartingAgainKeepsTheProgress)
{
    CMFCScintilla editor;
    Fill(editor, Lines(2000));
    CTextSnapshot snapshot(editor);
    snapshot.SetSliceBytes(64);
    snapshot.Start();
    for (int i = 0; i < 1000 && snapshot.Copied() < 4096; ++i)
        QApplication::processEvents();
    const qsizetype copied = snapshot.Copied();
    ASSERT_GE(copied, 4096);
    snapshot.Start();
    EXPECT_TRUE(snapshot.IsRunning());
    EXPECT_EQ(snapshot.Copied(), copied);
}
