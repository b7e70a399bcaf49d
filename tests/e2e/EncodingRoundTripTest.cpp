#include "E2eFixture.h"

#include "editor/TextEncoding.h"

#include <QStringEncoder>

namespace {

// How a test file is written: the bytes are made here with Qt's own encoders, apart
// from the editor's codecs, so that a fault in those shows as a difference.
enum class Form { Utf8, Utf8Mark, Utf16LE, Utf16BE, Utf32LE, Utf32BE, Latin1 };

QByteArray Mark(Form form)
{
    switch (form) {
    case Form::Utf8Mark: return QByteArray("\xEF\xBB\xBF", 3);
    case Form::Utf16LE: return QByteArray("\xFF\xFE", 2);
    case Form::Utf16BE: return QByteArray("\xFE\xFF", 2);
    case Form::Utf32LE: return QByteArray("\xFF\xFE\x00\x00", 4);
    case Form::Utf32BE: return QByteArray("\x00\x00\xFE\xFF", 4);
    default: return QByteArray();
    }
}

QByteArray Encode(Form form, const QString& text)
{
    auto encode = [&text](QStringConverter::Encoding encoding) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::Stateless);
        QByteArray bytes = encoder.encode(text);
        EXPECT_FALSE(encoder.hasError());
        return bytes;
    };
    QByteArray body;
    switch (form) {
    case Form::Utf8:
    case Form::Utf8Mark: body = encode(QStringConverter::Utf8); break;
    case Form::Utf16LE: body = encode(QStringConverter::Utf16LE); break;
    case Form::Utf16BE: body = encode(QStringConverter::Utf16BE); break;
    case Form::Utf32LE: body = encode(QStringConverter::Utf32LE); break;
    case Form::Utf32BE: body = encode(QStringConverter::Utf32BE); break;
    case Form::Latin1: body = encode(QStringConverter::Latin1); break;
    }
    return Mark(form) + body;
}

// The raw bytes the control holds.
QByteArray ControlBytes(CMFCScintilla* editor)
{
    const long length = editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    QByteArray bytes(int(length) + 1, '\0');
    editor->SendScintilla(QsciScintillaBase::SCI_GETTEXT, static_cast<unsigned long>(length + 1),
                          bytes.data());
    bytes.chop(1);
    return bytes;
}

struct TypingCase
{
    const char* name;
    Form form;
    int code;          // the encoding the document must report after the open
    QString text;      // the file's text, without a line end after the last line
    QString eol;       // the file's line ends; Enter must add the same
    QString atStart;   // typed after Ctrl+Home
    QString atEnd;     // typed after Ctrl+End and Enter
};

const QString kUnicodeText = QStringLiteral("Grüße aus Köln\u00A0— 世界 \U0001F600 ok%1second line ñ€%1"
                                            "\u05E9\u05DC\u05D5\u05DD last");
// Typed text stays in the basic plane: the control takes one character per key press;
// characters beyond it come from files (above) and are kept through the save.
const QString kTypedUnicode = QStringLiteral("Hi äß€ 中 ");
const QString kTypedEnd = QStringLiteral("Ω end");

QString Lines(const QString& text, const QString& eol)
{
    return text.arg(eol);
}

const TypingCase kTypingCases[] = {
    {"Utf8WithoutMarkLf", Form::Utf8, TextEncoding::Utf8, kUnicodeText, QStringLiteral("\n"),
     kTypedUnicode, kTypedEnd},
    {"Utf8WithMarkCrLf", Form::Utf8Mark, TextEncoding::Utf8, kUnicodeText, QStringLiteral("\r\n"),
     kTypedUnicode, kTypedEnd},
    {"Utf16LECrLf", Form::Utf16LE, TextEncoding::Utf16LE, kUnicodeText, QStringLiteral("\r\n"),
     kTypedUnicode, kTypedEnd},
    {"Utf16BELf", Form::Utf16BE, TextEncoding::Utf16BE, kUnicodeText, QStringLiteral("\n"),
     kTypedUnicode, kTypedEnd},
    {"Utf32LELf", Form::Utf32LE, TextEncoding::Utf32LE, kUnicodeText, QStringLiteral("\n"),
     kTypedUnicode, kTypedEnd},
    {"Utf32BECrLf", Form::Utf32BE, TextEncoding::Utf32BE, kUnicodeText, QStringLiteral("\r\n"),
     kTypedUnicode, kTypedEnd},
    // Bytes above 0x7F that are no UTF-8: kept as they are, around what is typed.
    {"AnsiCrLf", Form::Latin1, TextEncoding::Ansi,
     QStringLiteral("Caf\u00E9 cr\u00E8me%1br\u00FBl\u00E9e \u00A3 5 \u00FF\u00FE%1\u00C0 la fin"),
     QStringLiteral("\r\n"), QStringLiteral("AB "), QStringLiteral("yz")},
    {"AnsiLf", Form::Latin1, TextEncoding::Ansi,
     QStringLiteral("\u00E9t\u00E9%1\u00AB\u00BB"), QStringLiteral("\n"), QStringLiteral("["),
     QStringLiteral("]")},
};

class TypingAndSaving : public E2eFixture, public ::testing::WithParamInterface<TypingCase>
{
};

TEST_P(TypingAndSaving, TypedAtBothEndsAndSavedWithCtrlSKeepsEveryOtherByte)
{
    const TypingCase& c = GetParam();
    ASSERT_TRUE(App()->InitInstance({}));
    const QString original = Lines(c.text, c.eol);
    const QString path = MakeFile(QStringLiteral("typed.txt"), Encode(c.form, original));

    CChildFrame* child = OpenRouted(path);
    ASSERT_NE(child, nullptr);
    auto* document = qobject_cast<CScrivelDoc*>(child->GetDocument());
    ASSERT_NE(document, nullptr) << "a text file must open as text";
    EXPECT_EQ(document->Encoding, c.code);
    EXPECT_FALSE(document->ReadOnly);
    CMFCScintilla* editor = EditorOf(child);
    ASSERT_NE(editor, nullptr);
    editor->setFocus();

    QTest::keyClick(editor, Qt::Key_Home, Qt::ControlModifier);
    Type(editor, c.atStart);
    QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_Return);
    Type(editor, c.atEnd);
    EXPECT_TRUE(document->IsModified());

    PressSave();
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
    EXPECT_FALSE(document->IsModified());
    const QByteArray expected = Encode(c.form, c.atStart + original + c.eol + c.atEnd);
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), expected));
}

INSTANTIATE_TEST_SUITE_P(EveryEncoding, TypingAndSaving, ::testing::ValuesIn(kTypingCases),
                         [](const auto& info) { return std::string(info.param.name); });

struct SaveAsCase
{
    const char* name;
    Form from;
    Form to;
    int toCode;
};

const SaveAsCase kSaveAsCases[] = {
    {"Utf8ToUtf16LE", Form::Utf8, Form::Utf16LE, TextEncoding::Utf16LE},
    {"Utf8ToUtf16BE", Form::Utf8, Form::Utf16BE, TextEncoding::Utf16BE},
    // A UTF-8 file chosen as UTF-8 in Save As gets the mark.
    {"Utf16BEToUtf8", Form::Utf16BE, Form::Utf8Mark, TextEncoding::Utf8},
    {"Utf32LEToUtf16LE", Form::Utf32LE, Form::Utf16LE, TextEncoding::Utf16LE},
    {"Utf16LEToUtf8", Form::Utf16LE, Form::Utf8Mark, TextEncoding::Utf8},
};

class SavingAs : public E2eFixture, public ::testing::WithParamInterface<SaveAsCase>
{
};

TEST_P(SavingAs, WritesTheChosenEncodingKeepsTheOldFileAndLaterSavesFollowIt)
{
    const SaveAsCase& c = GetParam();
    ASSERT_TRUE(App()->InitInstance({}));
    const QString text = Lines(kUnicodeText, QStringLiteral("\n"));
    const QByteArray before = Encode(c.from, text);
    const QString source = MakeFile(QStringLiteral("source.txt"), before);
    const QString target = Path(QStringLiteral("target.txt"));

    CChildFrame* child = OpenRouted(source);
    ASSERT_NE(child, nullptr);
    auto* document = qobject_cast<CScrivelDoc*>(child->GetDocument());
    ASSERT_NE(document, nullptr);
    ASSERT_TRUE(document->SaveAs(target, c.toCode, document->LineEnding));
    Settle();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(target), Encode(c.to, text)));
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(source), before)) << "Save As leaves the old file alone";
    EXPECT_EQ(document->GetPathName(), target);

    // Typing and Ctrl+S now write the new file in the new encoding.
    CMFCScintilla* editor = EditorOf(child);
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
    Type(editor, QStringLiteral("ü"));
    PressSave();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(target), Encode(c.to, text + QStringLiteral("ü"))));
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(source), before));

    // Opened again by a fresh program, the file shows the same text.
    Restart({target});
    CChildFrame* again = Frame()->ActiveChild();
    ASSERT_NE(again, nullptr);
    ASSERT_EQ(again->GetDocument()->GetPathName(), target);
    ASSERT_NE(EditorOf(again), nullptr);
    EXPECT_EQ(QString::fromUtf8(ControlBytes(EditorOf(again))), text + QStringLiteral("ü"));
    EXPECT_EQ(qobject_cast<CScrivelDoc*>(again->GetDocument())->Encoding, c.toCode);
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Conversions, SavingAs, ::testing::ValuesIn(kSaveAsCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
