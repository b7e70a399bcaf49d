// Workspace files as a user may have them: any bytes, any shape of XML. Opening must end
// with a tree or with a refusal that leaves the workspace as it was. A tree that opened
// writes out a file that reads back to the same tree, so a second write must give the
// same bytes as the first.
#include "FuzzInput.h"
#include "FuzzTempFile.h"

#include "explorer/CWorkspace.h"
#include "explorer/WorkspaceFile.h"

namespace {

class QuietPrompts : public IWorkspacePrompts
{
public:
    bool AskSaveBeforeClose() override { return false; }
    QString AskSavePath() override { return {}; }
    bool ConfirmDeleteFolder() override { return false; }
    void ShowInformation(const QString&) override {}
    void ShowError(const QString&) override { ++errors; }
    int errors = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzTempFile file("fuzz.spf");
    file.Write(std::string(reinterpret_cast<const char*>(data), size));
    QuietPrompts prompts;
    CWorkspace workspace;
    workspace.SetPrompts(&prompts);
    if (!workspace.OpenWorkspace(file.Path())) {
        FUZZ_CHECK(prompts.errors == 1);
        FUZZ_CHECK(!workspace.IsWorkspaceOpen());
        return 0;
    }
    FUZZ_CHECK(prompts.errors == 0);
    const QByteArray first = WorkspaceFile::Write(workspace.Model());
    file.Write(first.toStdString());
    CWorkspace again;
    again.SetPrompts(&prompts);
    FUZZ_CHECK(again.OpenWorkspace(file.Path()));
    FUZZ_CHECK(WorkspaceFile::Write(again.Model()) == first);
    return 0;
}
