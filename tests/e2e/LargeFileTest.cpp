#include "E2eFixture.h"

#include <QStringEncoder>

namespace {

// About `megabytes` MB of varied lines: ASCII, two-, three- and four-byte characters,
// tabs and long lines, so that no block boundary of the reader falls on easy ground.
QByteArray LargeUtf8(int megabytes)
{
    const QByteArray pieces[] = {
        "int value_", "\tKöln ", "€uro ", "\xF0\x9F\x98\x80", " 世界 ", "x = 42;", "ñ",
    };
    QByteArray bytes;
    bytes.reserve(megabytes * (1 << 20) + 4096);
    int line = 0;
    while (bytes.size() < megabytes * (1 << 20)) {
        bytes += QByteArray::number(line);
        for (int i = 0; i < 3 + line % 40; ++i)
            bytes += pieces[(line + i) % std::size(pieces)];
        bytes += (line % 1000 == 999) ? QByteArray(5000, 'w') : QByteArray();
        bytes += "\r\n";
        ++line;
    }
    return bytes;
}

TEST_F(E2eFixture, TwentyMegabyteUtf8FileIsSavedBackByteForByte)
{
    const QByteArray original = LargeUtf8(20);
    const QString path = MakeFile(QStringLiteral("large.txt"), original);
    ASSERT_TRUE(App()->InitInstance({}));
    CChildFrame* child = OpenRouted(path);
    ASSERT_NE(child, nullptr);
    ASSERT_NE(qobject_cast<CScrivelDoc*>(child->GetDocument()), nullptr) << "large text stays text";
    CMFCScintilla* editor = EditorOf(child);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH), long(original.size()));

    QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("!"));
    PressSave();
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), original + '!'));
}

TEST_F(E2eFixture, TenMegabyteUtf16FileIsSavedBackByteForByte)
{
    const QString text = QString::fromUtf8(LargeUtf8(5));
    QStringEncoder encoder(QStringConverter::Utf16LE);
    const QByteArray original = QByteArray("\xFF\xFE", 2) + QByteArray(encoder.encode(text));
    const QString path = MakeFile(QStringLiteral("large16.txt"), original);
    ASSERT_TRUE(App()->InitInstance({}));
    CChildFrame* child = OpenRouted(path);
    ASSERT_NE(child, nullptr);
    CMFCScintilla* editor = EditorOf(child);
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("A"));
    PressSave();
    const QByteArray expected = QByteArray("\xFF\xFE" "A\0", 4) + original.mid(2);
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), expected));
}

} // namespace
