#pragma once

#include "framework/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/CEditorCommands.h"
#include "TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <gtest/gtest.h>

// Runs the whole program afresh in the isolated home for each test.
class MainFrameFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App()->Shutdown();
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
    }
    void TearDown() override { App()->Shutdown(); }

    static CMorvaneApp* App() { return CMorvaneApp::Instance(); }
    static CMainFrame* Frame() { return CMorvaneApp::MainFrame(); }

    // Starts with no document at all.
    static void StartEmpty()
    {
        ASSERT_TRUE(App()->InitInstance({}));
        Frame()->MdiArea()->closeAllSubWindows();
        Settle();
    }
    // Runs queued work, closes included, and deletes what was closed.
    static void Settle()
    {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    QString MakeFile(const QString& name, const QByteArray& bytes) const
    {
        const QString path = QDir(m_dir).filePath(name);
        TestSupport::WriteFile(path, bytes);
        return path;
    }
    // Opens a file as text, or as hex, and returns its frame.
    CScrivelFrame* OpenText(const char* name, const QByteArray& bytes = "text\n")
    {
        App()->GetOpenOptions() = OpenOptions::defaults();
        App()->GetOpenOptions().mode = OpenOptions::Text;
        if (!App()->RouteOpenFile(MakeFile(QString::fromLatin1(name), bytes)))
            return nullptr;
        return qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
    }
    CChildFrame* OpenHex(const char* name)
    {
        const QString path = MakeFile(QString::fromLatin1(name), QByteArray("\x00\x01\x02", 3));
        return App()->OpenAsHex(path) ? Frame()->ActiveChild() : nullptr;
    }
    static CMFCScintilla* Editor(CScrivelFrame* frame) { return frame->GetView()->GetEditor(); }
    static long Sci(CScrivelFrame* frame, unsigned int message, unsigned long wParam = 0)
    {
        return Editor(frame)->SendScintilla(message, wParam);
    }

    // Runs a command as the menus do, and lets queued work finish.
    static void Run(int id)
    {
        Frame()->OnCommand(id);
        Settle();
        Frame()->UpdateCommandUI();
    }
    static bool Enabled(int id) { return Updated(id) && Frame()->Action(id)->isEnabled(); }
    static bool Checked(int id) { return Updated(id) && Frame()->Action(id)->isChecked(); }
    static bool Updated(int id)
    {
        Frame()->UpdateCommandUI();
        return Frame()->Action(id) != nullptr;
    }

    QString m_dir;
};
