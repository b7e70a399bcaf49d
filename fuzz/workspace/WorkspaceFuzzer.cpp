// Workspace files as a user may have them: any bytes, any shape of XML. Opening must end
// with a tree or with a refusal that leaves the workspace as it was. A tree that opened
// writes out a file that reads back with every file it held. With one top-level folder
// it reads back to the same tree, so a second write gives the same bytes as the first.
// Several top-level folders (only a hand-made file makes them) are read with the later
// ones going under the folder last filled, so there the tree settles one trip later.
#include "FuzzInput.h"
#include "FuzzTempFile.h"

#include "explorer/CWorkspace.h"
#include "explorer/WorkspaceFile.h"

#include <cstdio>
#include <set>

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

void CollectPaths(const CTreeNode* node, std::set<QString>& paths)
{
    for (; node; node = node->NextSibling()) {
        const QString path = CWorkspace::GetItemPath(node);
        if (!path.isEmpty())
            paths.insert(path);
        CollectPaths(node->FirstChild(), paths);
    }
}

// Writes the workspace, opens what was written and gives the new workspace's bytes.
QByteArray RoundTrip(const FuzzTempFile& file, const QByteArray& written, std::set<QString>& paths)
{
    file.Write(written.toStdString());
    QuietPrompts prompts;
    CWorkspace again;
    again.SetPrompts(&prompts);
    FUZZ_CHECK(again.OpenWorkspace(file.Path()));
    FUZZ_CHECK(prompts.errors == 0);
    CollectPaths(again.Root(), paths);
    return WorkspaceFile::Write(again.Model());
}

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
    std::set<QString> firstPaths;
    CollectPaths(workspace.Root(), firstPaths);
    const QByteArray first = WorkspaceFile::Write(workspace.Model());

    std::set<QString> secondPaths;
    const QByteArray second = RoundTrip(file, first, secondPaths);
    FUZZ_CHECK(secondPaths == firstPaths);
    const bool oneTop = !workspace.Root() || !workspace.Root()->NextSibling();
    if (oneTop) {
        if (second != first)
            std::fprintf(stderr, "first write:\n%s\nsecond write:\n%s\n", first.constData(), second.constData());
        FUZZ_CHECK(second == first);
        return 0;
    }
    std::set<QString> thirdPaths;
    const QByteArray third = RoundTrip(file, second, thirdPaths);
    FUZZ_CHECK(thirdPaths == firstPaths);
    FUZZ_CHECK(third == second);
    return 0;
}
