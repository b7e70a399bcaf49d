#include "E2eFixture.h"

#include "settings/CRegistryStore.h"

#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace {

QByteArray Log(qsizetype bytes)
{
    QByteArray text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "2026-11-22T21:10:00.123 INFO worker-" + QByteArray::number(i % 16) + " caf\xC3\xA9 request "
                + QByteArray::number(i) + " served\n";
    return text;
}

// What the window showed while a load ran, seen from the event loop the load keeps turning.
struct SeenDuringLoad
{
    bool windowVisible = false;
    bool progressVisible = false;
    QString tab;
};

} // namespace

// A log past the large-file size loads in steps in the real window: the status bar shows
// its progress with Cancel, and Cancel leaves no half-open document behind.
struct LoadCase
{
    const char* name;
    bool fromCommandLine;
};

class LargeFileLoad : public E2eFixture, public ::testing::WithParamInterface<LoadCase>
{
};

TEST_P(LargeFileLoad, ShowsProgressAndCancelLeavesNothingOpen)
{
    CRegistryStore().WriteProfileString(QStringLiteral("EditSettings"), QStringLiteral("LargeFileSize"),
                                        QStringLiteral("1"));
    const QByteArray log = Log(40 << 20);
    const QString path = MakeFile(QStringLiteral("service.log"), log);
    if (!GetParam().fromCommandLine) {
        ASSERT_TRUE(App()->InitInstance({}));
        Settle();
    }
    const int tabsBefore = Frame() ? int(Frame()->MdiArea()->subWindowList().size()) : 0;

    // Cancel is clicked as soon as the load offers it: a zero interval looks on every
    // turn of the event loop, the load's own turns included.
    SeenDuringLoad seen;
    bool clicked = false;
    QTimer watch;
    watch.setInterval(0);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        CMainFrame* frame = Frame();
        auto* cancel = frame ? frame->findChild<QPushButton*>(QStringLiteral("ProgressCancel")) : nullptr;
        if (clicked || !cancel || !cancel->isVisible())
            return;
        seen.windowVisible = frame->isVisible();
        auto* bar = frame->findChild<QProgressBar*>(QStringLiteral("ProgressPane"));
        seen.progressVisible = bar && bar->isVisible();
        if (QMdiSubWindow* active = frame->MdiArea()->currentSubWindow())
            seen.tab = active->windowTitle();
        clicked = true;
        QTest::mouseClick(cancel, Qt::LeftButton);
    });
    watch.start();
    if (GetParam().fromCommandLine)
        ASSERT_TRUE(App()->InitInstance({path}));
    else
        EXPECT_EQ(App()->OpenDocumentFile(path), nullptr);
    watch.stop();
    Settle();

    ASSERT_TRUE(clicked) << "the load never offered Cancel";
    EXPECT_TRUE(seen.windowVisible);
    EXPECT_TRUE(seen.progressVisible);
    EXPECT_TRUE(seen.tab.startsWith(QStringLiteral("service.log"))) << seen.tab.toStdString();
    // Nothing of the file stays: the command line falls back to a new document.
    const QList<QMdiSubWindow*> tabs = Frame()->MdiArea()->subWindowList();
    EXPECT_EQ(tabs.size(), GetParam().fromCommandLine ? 1 : tabsBefore);
    for (QMdiSubWindow* tab : tabs)
        EXPECT_FALSE(tab->windowTitle().contains(QStringLiteral("service.log")));
    EXPECT_FALSE(Frame()->windowTitle().contains(QStringLiteral("service.log")));
    EXPECT_FALSE(Frame()->findChild<QPushButton*>(QStringLiteral("ProgressCancel"))->isVisible());
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();

    // Left alone, the same file then opens whole.
    CMFCScintilla* editor = EditorOf(OpenRouted(path));
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(SameBytes(editor->GetText(), log));
}

INSTANTIATE_TEST_SUITE_P(Ways, LargeFileLoad,
                         ::testing::Values(LoadCase{"OpenedInTheWindow", false}, LoadCase{"FromTheCommandLine", true}),
                         [](const auto& info) { return std::string(info.param.name); });
