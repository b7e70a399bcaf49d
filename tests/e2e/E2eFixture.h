#pragma once

#include "framework/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMessageBox>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

// The whole program, started afresh in the isolated home for each test and driven the
// way a user drives it: files opened by path, keys typed into the focused widget,
// commands through the window's actions, results read back from the disk.
// Equal bytes, or where and how they first differ: a dump of megabytes helps nobody.
inline ::testing::AssertionResult SameBytes(const QByteArray& actual, const QByteArray& expected)
{
    if (actual == expected)
        return ::testing::AssertionSuccess();
    qsizetype at = 0;
    while (at < actual.size() && at < expected.size() && actual[at] == expected[at])
        ++at;
    const qsizetype from = std::max<qsizetype>(0, at - 8);
    return ::testing::AssertionFailure()
           << "sizes " << actual.size() << " and " << expected.size() << ", first difference at "
           << at << ": actual " << actual.mid(from, 24).toHex(' ').toStdString() << ", expected "
           << expected.mid(from, 24).toHex(' ').toStdString() << " (from offset " << from << ")";
}

class E2eFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App()->Shutdown();
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        // Any message box would stop the test: answer it and record what it said.
        m_answerer = std::make_unique<TestSupport::ModalAnswerer>();
    }
    void TearDown() override
    {
        App()->Shutdown();
        m_answerer.reset();
    }

    static CMorvaneApp* App() { return CMorvaneApp::Instance(); }
    static CMainFrame* Frame() { return CMorvaneApp::MainFrame(); }
    QStringList Messages() const { return m_answerer->Texts(); }

    QString Path(const QString& name) const { return QDir(m_dir).filePath(name); }
    QString MakeFile(const QString& name, const QByteArray& bytes) const
    {
        const QString path = Path(name);
        TestSupport::WriteFile(path, bytes);
        return path;
    }

    // Runs queued work, including deferred deletes and command updates.
    static void Settle()
    {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    // Opens `path` as the command line or a double click would, and returns the active
    // child, which must now show that file.
    static CChildFrame* OpenRouted(const QString& path)
    {
        CDocument* document = App()->OpenDocumentFile(path);
        Settle();
        if (!document || !Frame()->ActiveChild() || Frame()->ActiveChild()->GetDocument() != document)
            return nullptr;
        return Frame()->ActiveChild();
    }

    static CMFCScintilla* EditorOf(CChildFrame* child)
    {
        auto* text = qobject_cast<CScrivelFrame*>(child);
        return text && text->GetView() ? text->GetView()->GetEditor() : nullptr;
    }

    // Types `text` one character at a time, a surrogate pair as one key press, the way
    // an input method hands characters to the focused widget.
    static void Type(QWidget* widget, const QString& text)
    {
        for (int i = 0; i < text.size(); ++i) {
            QString unit(text.at(i));
            if (text.at(i).isHighSurrogate() && i + 1 < text.size())
                unit += text.at(++i);
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, unit);
            QApplication::sendEvent(widget, &press);
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, unit);
            QApplication::sendEvent(widget, &release);
        }
    }

    // Ctrl+S as the window offers it: the action must carry the key and do the save.
    static void PressSave()
    {
        QAction* save = Frame()->Action(Cmd::FileSave);
        ASSERT_NE(save, nullptr);
        ASSERT_EQ(save->shortcut(), QKeySequence(QKeySequence::Save));
        Frame()->UpdateCommandUI();
        ASSERT_TRUE(save->isEnabled());
        save->trigger();
        Settle();
    }

    // Closes the window as the user would and starts the program again.
    static void Restart(const QStringList& files = {})
    {
        Frame()->close();
        Settle();
        App()->Shutdown();
        ASSERT_TRUE(App()->InitInstance(files));
        Settle();
    }

    QString m_dir;
    std::unique_ptr<TestSupport::ModalAnswerer> m_answerer;
};
