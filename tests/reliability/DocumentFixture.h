#pragma once

#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/TextFileDetector.h"
#include "framework/CDocTemplate.h"
#include "framework/OpenOptions.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>

#include <gtest/gtest.h>

#include <memory>

// Text documents opened the way the application opens them, with every message box
// answered and recorded.
class DocumentFixture : public ::testing::Test
{
protected:
    static constexpr const char* SaveFailed = "Failed to create a new file when saving the current document";

    void SetUp() override
    {
        m_dir = TestSupport::MakeTempDir();
        m_template = std::make_unique<CDocTemplate>(
            QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
            [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
        m_template->SetOpenOptions(&m_options);
        m_answerer = std::make_unique<TestSupport::ModalAnswerer>();
    }

    void TearDown() override { CloseAll(); }

    void CloseAll()
    {
        for (CDocument* document : m_template->GetDocuments()) {
            document->SetModifiedFlag(false);
            const auto frames = document->GetFrames();
            for (CChildFrame* frame : frames)
                delete frame;
            // Leaves the template's list; the template deletes it later.
            document->OnCloseDocument();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QString Path(const QString& name) const { return QDir(m_dir).filePath(name); }

    CScrivelDoc* Open(const QString& path)
    {
        m_options = OpenOptions();
        TextFileDetector probe;
        if (probe.Examine(path)) {
            m_options.encoding = probe.Encoding();
            m_options.bomLength = probe.BomLength();
        }
        return static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(path, false));
    }

    // Replaces the whole text, as typing would, leaving the document modified.
    static void Retype(CScrivelDoc* document, const QByteArray& text)
    {
        CMFCScintilla* editor = document->GetEditor();
        editor->SelectAll();
        editor->SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, "");
        editor->AddText(text.constData(), long(text.size()));
        document->SetModifiedFlag(true);
    }

    const QStringList& Messages() const { return m_answerer->Texts(); }

    QString m_dir;
    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
    std::unique_ptr<TestSupport::ModalAnswerer> m_answerer;
};
