// Saves of whole documents with each file system call failing in turn: the file stays
// as it was, the document stays modified and the user is told.
#include "DocumentFixture.h"
#include "FaultSweep.h"

#include "hex/CHexDocument.h"

#include <QFile>

namespace {

using DocumentSaveFaults = DocumentFixture;

TEST_F(DocumentSaveFaults, TextDocumentKeepsFileAndChangesAndSaysSo)
{
    SweepWriter writer = FileWriter(m_dir, QStringLiteral("story.txt"), Lines(3000, "old"), Lines(4000, "new"));
    const QString path = writer.target;
    const auto putBack = writer.prepare;
    CScrivelDoc* document = nullptr;
    qsizetype shown = 0;
    // A fresh document each time: one whose file was rewritten behind its back would
    // rightly ask before saving over it.
    writer.prepare = [&] {
        CloseAll();
        putBack();
        document = Open(path);
        ASSERT_NE(document, nullptr);
        Retype(document, writer.after);
        shown = Messages().size();
    };
    writer.save = [&] { return document->DoSave(path); };
    writer.check = [&](bool ok) -> std::string {
        if (document->IsModified() == ok)
            return ok ? "still modified after a save" : "not modified after a failed save";
        const QStringList added = Messages().mid(shown);
        if (ok && !added.isEmpty())
            return "a message after a good save: " + added.join(' ').toStdString();
        if (!ok && added != QStringList{QString::fromLatin1(SaveFailed)})
            return "the failure was not reported as it should be: " + added.join(" | ").toStdString();
        if (document->GetEditor()->GetText() != writer.after)
            return "the text in the editor changed";
        return {};
    };
    ExpectSweep("text document", Sweep(writer));
}

// The hex document with its messages recorded instead of shown.
class RecordingHexDocument : public CHexDocument
{
public:
    QStringList messages;

protected:
    void ShowMessage(QMessageBox::Icon, const QString& text) override { messages.append(text); }
};

TEST_F(DocumentSaveFaults, HexDocumentKeepsFileAndChangesAndSaysSo)
{
    const QByteArray before(150000, '\x01');
    SweepWriter writer = FileWriter(m_dir, QStringLiteral("blob.bin"), before,
                                    "MAGIC" + QByteArray(before).replace(70000, 3, "\xDE\xAD\xBE"));
    const QString path = writer.target;
    const auto putBack = writer.prepare;
    std::unique_ptr<RecordingHexDocument> document;
    writer.prepare = [&] {
        document.reset();
        putBack();
        document = std::make_unique<RecordingHexDocument>();
        ASSERT_TRUE(document->OnOpenDocument(path));
        document->SetPathName(path);
        ASSERT_TRUE(document->Overwrite(70000, "\xDE\xAD\xBE"));
        ASSERT_TRUE(document->Insert(0, "MAGIC"));
    };
    writer.save = [&] { return document->DoSave(path); };
    writer.check = [&](bool ok) -> std::string {
        if (document->IsModified() == ok)
            return ok ? "still modified after a save" : "not modified after a failed save";
        if (!ok && document->messages != QStringList{QString::fromLatin1(SaveFailed)})
            return "the failure was not reported as it should be: " + document->messages.join(" | ").toStdString();
        if (document->Bytes().Read(0, document->Bytes().Size()) != writer.after)
            return "the edits were lost";
        return {};
    };
    ExpectSweep("hex document", Sweep(writer));
    document.reset();
}

} // namespace
