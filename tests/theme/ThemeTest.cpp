#include "MainFrameFixture.h"
#include "compare/CCompareCommands.h"
#include "compare/CCompareFrame.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "framework/ThemeColours.h"
#include "settings/AppPaths.h"
#include "theme/CThemeManager.h"
#include "theme/ThemePalette.h"

#include <QFile>
#include <QScopeGuard>

namespace {

using Scintilla = QsciScintillaBase;

constexpr int KeywordStyle = 5; // the C++ lexer's
constexpr quint32 ShippedKeyword = 0xFF0000; // "#0000FF" in the C++ definition
constexpr quint32 UserKeyword = 0xC00080;    // "#8000C0", the user's edit

double Lightness(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF)).lightnessF();
}

class ThemeTest : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        m_palette = QApplication::palette();
        MainFrameFixture::SetUp();
    }
    void TearDown() override
    {
        MainFrameFixture::TearDown();
        QApplication::setPalette(m_palette);
    }
    static quint32 Style(CScrivelFrame* frame, bool fore, int style)
    {
        return quint32(Sci(frame, fore ? Scintilla::SCI_STYLEGETFORE : Scintilla::SCI_STYLEGETBACK, style));
    }
    CThemeManager* Manager() const { return CThemeManager::Of(*Frame()); }

    QPalette m_palette;
};

// A choice from the menu recolours the window and the views already open, the menu shows
// it, and the next start comes back to it; the user's own colour edit in a definition is
// shown exactly in the light theme again, and no theme rewrites the definition.
TEST_F(ThemeTest, ChoiceRecoloursOpenViewsAndIsRememberedAcrossAStart)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText("a.cpp", "int main() { return 0; }\n");
    ASSERT_TRUE(frame);
    Run(Cmd::ViewThemeDark);
    EXPECT_TRUE(ThemePalette::IsDark(QApplication::palette()));
    EXPECT_TRUE(Checked(Cmd::ViewThemeDark));
    EXPECT_FALSE(Checked(Cmd::ViewThemeLight));
    EXPECT_FALSE(Checked(Cmd::ViewThemeDesktop));
    EXPECT_LT(Lightness(Style(frame, false, 0)), 0.2);
    EXPECT_LT(Lightness(Style(frame, false, KeywordStyle)), 0.2);
    EXPECT_GE(ThemeColours::Contrast(Style(frame, true, KeywordStyle), Style(frame, false, KeywordStyle)),
              ThemeColours::MinContrast);
    EXPECT_LT(Lightness(quint32(Sci(frame, Scintilla::SCI_GETCARETLINEBACK))), 0.4);

    // The user's edit, as the colour page writes it into their copy of the definition.
    QFile definition(QDir(AppPaths::DefaultSyntaxFolder()).filePath(QStringLiteral("C++.config")));
    ASSERT_TRUE(definition.open(QIODevice::ReadOnly));
    QByteArray bytes = definition.readAll();
    definition.close();
    // The folder outlives this test: the other tests expect the shipped colours.
    const auto restore = qScopeGuard([path = definition.fileName(), original = bytes] {
        TestSupport::WriteFile(path, original);
    });
    const QByteArray shipped = R"(STYLE="5" HEXFORE="#0000FF")", edited = R"(STYLE="5" HEXFORE="#8000C0")";
    ASSERT_TRUE(bytes.contains(shipped));
    bytes.replace(shipped, edited);
    TestSupport::WriteFile(definition.fileName(), bytes);

    ASSERT_TRUE(Frame()->close());
    App()->Shutdown();
    ASSERT_TRUE(App()->InitInstance({}));
    Settle();
    EXPECT_TRUE(Checked(Cmd::ViewThemeDark));
    CScrivelFrame* again = OpenText("b.cpp", "int x;\n");
    ASSERT_TRUE(again);
    EXPECT_LT(Lightness(Style(again, false, 0)), 0.2);

    EXPECT_NE(Style(again, true, KeywordStyle), UserKeyword);

    Run(Cmd::ViewThemeLight);
    EXPECT_FALSE(ThemePalette::IsDark(QApplication::palette()));
    EXPECT_EQ(Style(again, false, 0), 0xFFFFFFu);
    EXPECT_EQ(Style(again, true, KeywordStyle), UserKeyword);
    ASSERT_TRUE(definition.open(QIODevice::ReadOnly));
    EXPECT_EQ(definition.readAll(), bytes);
}

// Following the desktop: a dark desktop palette gives the dark theme, and a desktop that
// turns light while the program runs takes the open views along.
TEST_F(ThemeTest, FollowingTheDesktopTracksItsPalette)
{
    QApplication::setPalette(ThemePalette::Dark());
    StartEmpty();
    ASSERT_EQ(Manager()->GetMode(), CThemeManager::Desktop);
    EXPECT_TRUE(Manager()->IsDark());
    CScrivelFrame* frame = OpenText("a.cpp", "int y;\n");
    ASSERT_TRUE(frame);
    EXPECT_LT(Lightness(Style(frame, false, 0)), 0.2);

    QApplication::setPalette(ThemePalette::Light());
    Settle();
    EXPECT_FALSE(Manager()->IsDark());
    EXPECT_EQ(Style(frame, false, 0), 0xFFFFFFu);
    EXPECT_EQ(Style(frame, true, KeywordStyle), ShippedKeyword);

    // An explicit choice no longer follows the desktop.
    Run(Cmd::ViewThemeDark);
    QApplication::setPalette(ThemePalette::Light());
    Settle();
    EXPECT_TRUE(Manager()->IsDark());
    EXPECT_LT(Lightness(Style(frame, false, 0)), 0.2);
}

// The compare view's panes and difference marks change with the theme.
TEST_F(ThemeTest, CompareViewTakesTheTheme)
{
    StartEmpty();
    const QString left = MakeFile(QStringLiteral("l.cpp"), "int a;\nint b;\n");
    const QString right = MakeFile(QStringLiteral("r.cpp"), "int a;\nint c;\n");
    CCompareFrame* compare = OpenCompare(*Frame(), left, right);
    ASSERT_TRUE(compare);
    CComparePane* pane = compare->View()->Pane(0);
    Run(Cmd::ViewThemeDark);
    EXPECT_LT(Lightness(quint32(pane->SendScintilla(Scintilla::SCI_STYLEGETBACK, 0UL))), 0.2);
    EXPECT_LT(Lightness(quint32(pane->SendScintilla(Scintilla::SCI_STYLEGETBACK, KeywordStyle))), 0.2);
    Run(Cmd::ViewThemeLight);
    EXPECT_EQ(quint32(pane->SendScintilla(Scintilla::SCI_STYLEGETBACK, 0UL)), 0xFFFFFFu);
    EXPECT_EQ(quint32(pane->SendScintilla(Scintilla::SCI_STYLEGETFORE, KeywordStyle)), ShippedKeyword);
}

} // namespace
