// The ".spf" file: the writer's exact shape and the reader's rules for hand-made files,
// each read through a real file into a workspace.
#include "explorer/CWorkspace.h"
#include "explorer/WorkspaceFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

class Prompts : public IWorkspacePrompts
{
public:
    QStringList messages;
    bool AskSaveBeforeClose() override { return false; }
    QString AskSavePath() override { return {}; }
    bool ConfirmDeleteFolder() override { return true; }
    void ShowInformation(const QString& text) override { messages << text; }
    void ShowError(const QString& text) override { messages << text; }
};

// Text, and for files the record's type and encoding: "a.c(0,3)".
QString Shape(const CTreeNode* first)
{
    QStringList parts;
    for (const CTreeNode* n = first; n; n = n->NextSibling()) {
        QString part = n->text;
        if (!n->IsFolder())
            part += QStringLiteral("(%1,%2)").arg(n->data.type).arg(n->data.encoding);
        if (n->FirstChild())
            part += QLatin1Char('[') + Shape(n->FirstChild()) + QLatin1Char(']');
        parts << part;
    }
    return parts.join(QLatin1Char(','));
}

QString ReadShape(const QByteArray& text, QStringList* messages = nullptr)
{
    const QString path = TestSupport::MakeTempDir() + QStringLiteral("/w.spf");
    TestSupport::WriteFile(path, text);
    Prompts prompts;
    CWorkspace ws;
    ws.SetPrompts(&prompts);
    ws.NewWorkspace();
    const bool opened = ws.OpenWorkspace(path);
    if (messages)
        *messages = prompts.messages;
    return opened ? Shape(ws.Model().Root()) : QStringLiteral("refused");
}

TEST(WorkspaceFileWriter, WritesOneLineWithFiveAttributesInOrder)
{
    CWorkspace ws;
    ws.NewWorkspace();
    CTreeNode* src = ws.AddFolder(ws.Root(), QStringLiteral("src"));
    ws.AddFile(QStringLiteral("/w/a.c"), src, 0, 3);
    ws.AddFile(QStringLiteral("/w/\"q\"<&>.bin"), ws.Root(), 1, 4);
    ws.AddFolder(ws.Root(), QStringLiteral("empty"));
    ws.SetModified(false);
    EXPECT_EQ(WorkspaceFile::Write(ws.Model()),
              "<ROOT><NODE label=\"Project\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\">"
              "<NODE label=\"src\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\">"
              "<NODE label=\"a.c\" pathname=\"/w/a.c\" encoding=\"3\" type=\"0\" folder=\"0\"/></NODE>"
              "<NODE label=\"&quot;q&quot;&lt;&amp;>.bin\" pathname=\"/w/&quot;q&quot;&lt;&amp;>.bin\" encoding=\"4\" "
              "type=\"1\" folder=\"0\"/>"
              "<NODE label=\"empty\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\"/></NODE></ROOT>");
}

TEST(WorkspaceFileWriter, LeavesOutItemsWithoutARecordAndTheirSubtree)
{
    CWorkspace ws;
    ws.NewWorkspace();
    CTreeNode* bare = ws.Model().Insert(ws.Root(), CTreeItemModel::Last, QStringLiteral("bare"), 0, 0,
                                        TreeItemData::Folder(QStringLiteral("bare")), false);
    ws.Model().Insert(bare, CTreeItemModel::Last, QStringLiteral("under.c"), 3, 3,
                      TreeItemData::File(QStringLiteral("under.c"), QStringLiteral("/w/under.c"), 0, 4));
    ws.SetModified(false);
    EXPECT_EQ(WorkspaceFile::Write(ws.Model()),
              R"(<ROOT><NODE label="Project" pathname="" encoding="4" type="0" folder="1"/></ROOT>)");
}

QByteArray Utf16WithMark(const char* text)
{
    const QString s = QString::fromLatin1(text);
    return QByteArray("\xFF\xFE", 2) + QByteArray(reinterpret_cast<const char*>(s.utf16()), s.size() * 2);
}

struct ReadCase
{
    const char* name;
    QByteArray file;
    const char* shape;
};

using WorkspaceFileReader = ::testing::TestWithParam<ReadCase>;

TEST_P(WorkspaceFileReader, BuildsTheTree)
{
    EXPECT_EQ(ReadShape(GetParam().file), QString::fromUtf8(GetParam().shape));
}

#define P_OPEN "<ROOT><NODE label=\"P\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\">"
#define P_CLOSE "</NODE></ROOT>"

INSTANTIATE_TEST_SUITE_P(
    Rules, WorkspaceFileReader,
    ::testing::Values(
        ReadCase{"RootTextComesFromTheFileName", P_OPEN P_CLOSE, "Project [w]"},
        ReadCase{"NamelessNodeAfterAFileRepeatsItAndAddsNothing",
                 P_OPEN "<NODE label=\"a.c\" pathname=\"/w/a.c\" encoding=\"3\" type=\"0\" folder=\"0\"/><NODE/>" P_CLOSE,
                 "Project [w][a.c(0,3)]"},
        ReadCase{"NamelessFirstNodeIsSkipped", P_OPEN "<NODE/><NODE pathname=\"/w/b.c\" folder=\"0\"/>" P_CLOSE,
                 "Project [w][b.c(2,4)]"},
        ReadCase{"TypeAndEncodingCarryOverToTheNextSibling",
                 P_OPEN "<NODE pathname=\"/w/a.bin\" type=\"1\" encoding=\"2\" folder=\"0\"/><NODE pathname=\"/w/b.bin\"/>" P_CLOSE,
                 "Project [w][a.bin(1,2),b.bin(1,2)]"},
        ReadCase{"FolderFlagCarriesOverAndEachLevelStartsAfresh",
                 P_OPEN "<NODE label=\"src\" folder=\"1\"><NODE pathname=\"/w/x.c\"/></NODE><NODE label=\"lib\"/>" P_CLOSE,
                 "Project [w][src[x.c(2,4)],lib]"},
        ReadCase{"FirstFileInTheFileWins",
                 P_OPEN "<NODE pathname=\"/w/a.c\" encoding=\"1\" folder=\"0\"/><NODE label=\"f\" folder=\"1\">"
                        "<NODE pathname=\"/W/A.C\" encoding=\"2\" folder=\"0\"/></NODE>" P_CLOSE,
                 "Project [w][a.c(2,1),f]"},
        ReadCase{"FileLabelIsRebuiltFromThePath",
                 P_OPEN "<NODE label=\"shown\" pathname=\"/w/real.c\" folder=\"0\"/>" P_CLOSE, "Project [w][real.c(2,4)]"},
        ReadCase{"NumbersReadLikeStrToInt",
                 P_OPEN "<NODE pathname=\"/w/a\" encoding=\"12abc\" type=\"-1\" folder=\"yes\"/>"
                        "<NODE pathname=\"/w/b\" encoding=\"x\" folder=\"0\"/>" P_CLOSE,
                 "Project [w][a(-1,12),b(-1,0)]"},
        ReadCase{"FolderWithoutLabelFallsToTheFileTest",
                 P_OPEN "<NODE label=\"\" pathname=\"/w/p.c\" folder=\"1\"/>" P_CLOSE, "Project [w][p.c(2,4)]"},
        ReadCase{"ChildrenOfAFileAreIgnored",
                 P_OPEN "<NODE pathname=\"/w/a.c\" folder=\"0\"><NODE pathname=\"/w/inner.c\"/></NODE>" P_CLOSE,
                 "Project [w][a.c(2,4)]"},
        ReadCase{"IndentedFileReadsTheSame",
                 "<ROOT>\n  <NODE label=\"P\" folder=\"1\">\n    <NODE label=\"s\">\n      <NODE pathname=\"/w/x\" folder=\"0\"/>\n"
                 "    </NODE>\n  </NODE>\n</ROOT>\n",
                 "Project [w][s[x(2,4)]]"},
        ReadCase{"LaterTopLevelNodeLandsInTheFolderLastFilled",
                 "<ROOT><NODE label=\"P\" folder=\"1\"><NODE label=\"s\"><NODE pathname=\"/w/x\" folder=\"0\"/></NODE></NODE>"
                 "<NODE label=\"Q\" folder=\"1\"/></ROOT>",
                 "Project [w][s[x(2,4),Q]]"},
        ReadCase{"LaterTopLevelNodeStaysAtTopWhenNothingWasFilled",
                 "<ROOT><NODE label=\"P\" folder=\"1\"/><NODE label=\"Q\" folder=\"1\"/></ROOT>", "Project [w],Q"},
        ReadCase{"RootWithoutNodesOpensAnEmptyProject", "<ROOT/>", "Project [w]"},
        ReadCase{"FileDirectlyUnderRootGetsAProjectFolder",
                 "<ROOT><NODE pathname=\"/w/x\" folder=\"0\"/></ROOT>", "Project [w][x(2,4)]"},
        ReadCase{"EntitiesOfADoctypeAreNeverResolved",
                 "<!DOCTYPE ROOT [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>" P_OPEN
                 "<NODE pathname=\"/w/a&x;\" folder=\"0\"/>" P_CLOSE,
                 "Project [w][a&x;(2,4)]"},
        ReadCase{"Utf16FileWithMark", Utf16WithMark("<ROOT><NODE label=\"P\"/></ROOT>"), "Project [w]"}),
    [](const ::testing::TestParamInfo<ReadCase>& info) { return std::string(info.param.name); });

TEST(WorkspaceFileReader, RefusesMalformedAndOverDeepFiles)
{
    QByteArray deep = "<ROOT>";
    for (int i = 0; i <= WorkspaceFile::MaxDepth; ++i)
        deep += "<NODE label=\"d\" folder=\"1\">";
    for (int i = 0; i <= WorkspaceFile::MaxDepth; ++i)
        deep += "</NODE>";
    deep += "</ROOT>";
    const QByteArray cases[] = {"", "not xml at all", "<ROOT><NODE></ROOT>", "<ROOT>", deep,
                                QByteArray("\x00\x01\x02garbage", 10)};
    for (const QByteArray& text : cases) {
        QStringList messages;
        EXPECT_EQ(ReadShape(text, &messages), "refused") << text.left(40).toStdString();
        ASSERT_EQ(messages.size(), 1);
        EXPECT_TRUE(messages[0].startsWith("Cannot open workspace")) << messages[0].toStdString();
    }
}

TEST(WorkspaceFileReader, ParseNumberFollowsStrToInt)
{
    const struct
    {
        const char* text;
        int value;
    } cases[] = {{"0", 0}, {"1", 1}, {"42", 42}, {"-7", -7}, {"12abc", 12}, {"abc", 0},
                 {"", 0}, {" 5", 0}, {"+5", 0}, {"99999999999", 0}, {nullptr, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(WorkspaceFile::ParseNumber(c.text), c.value) << (c.text ? c.text : "null");
}

} // namespace
