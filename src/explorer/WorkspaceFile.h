#pragma once

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

class CTreeItemModel;
struct CTreeNode;

// The ".spf" workspace file: an XML image of the project tree. The writer makes one line
// with no declaration and no indentation, every NODE with its five attributes in order;
// the reader accepts hand-made files too.
namespace WorkspaceFile {

// Deeper nesting than this is refused, so that the recursive walks stay within the stack.
constexpr int MaxDepth = 512;

// The document text for the tree: every top-level item with a record, and below it.
QByteArray Write(const CTreeItemModel& model);

// Parses `bytes` without fetching DTDs or external entities. False, with a reason, for a
// file that is not well-formed, has no ROOT element or nests too deep.
bool Parse(const QByteArray& bytes, pugi::xml_document& document, QString& error);

// What the reader builds with; the workspace supplies its own AddFolder and AddFile.
class IReadSink
{
public:
    virtual ~IReadSink() = default;
    virtual CTreeNode* AddFolder(CTreeNode* parent, const QString& name) = 0;
    virtual CTreeNode* AddFile(const QString& path, CTreeNode* parent, int type, int encoding) = 0;
};

// Walks the children of ROOT into the sink. Attributes a node lacks keep the values of
// the previous node at its level.
void Read(const pugi::xml_document& document, IReadSink& sink);

// A number attribute: optional minus sign and leading digits; anything else reads as 0.
int ParseNumber(const char* text);

} // namespace WorkspaceFile
