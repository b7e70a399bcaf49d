#include "WorkspaceFile.h"

#include "CTreeItemModel.h"

#include <sstream>
#include <utility>
#include <vector>

namespace WorkspaceFile {

namespace {

void WriteLevel(const CTreeNode* first, pugi::xml_node into)
{
    for (const CTreeNode* item = first; item; item = item->NextSibling()) {
        if (!item->hasData)
            continue; // nothing ties it to a file: it and its subtree are left out
        const TreeItemData& record = item->data;
        pugi::xml_node node = into.append_child("NODE");
        node.append_attribute("label") = record.label.toUtf8().constData();
        node.append_attribute("pathname") = record.pathname.toUtf8().constData();
        node.append_attribute("encoding") = QByteArray::number(record.encoding).constData();
        node.append_attribute("type") = QByteArray::number(record.type).constData();
        node.append_attribute("folder") = QByteArray::number(record.folder).constData();
        if (item->FirstChild())
            WriteLevel(item->FirstChild(), node);
    }
}

int Depth(const pugi::xml_node root)
{
    // Iterative, so that a hostile file cannot exhaust the stack here either.
    int deepest = 0;
    std::vector<std::pair<pugi::xml_node, int>> pending{{root, 0}};
    while (!pending.empty()) {
        auto [node, depth] = pending.back();
        pending.pop_back();
        deepest = std::max(deepest, depth);
        if (deepest > MaxDepth)
            break;
        for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
            if (child.type() == pugi::node_element)
                pending.emplace_back(child, depth + 1);
    }
    return deepest;
}

pugi::xml_node FirstElement(pugi::xml_node node)
{
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element)
            return child;
    return {};
}

void ReadLevel(IReadSink& sink, CTreeNode* parent, pugi::xml_node first)
{
    // Set once per level: a node without an attribute repeats its previous sibling's.
    QString label;
    QString pathname;
    int encoding = 4;
    int type = 2;
    int folder = 1;
    for (pugi::xml_node node = first; node; node = node.next_sibling()) {
        if (node.type() != pugi::node_element)
            continue;
        if (const pugi::xml_attribute a = node.attribute("label"))
            label = QString::fromUtf8(a.value());
        if (const pugi::xml_attribute a = node.attribute("pathname"))
            pathname = QString::fromUtf8(a.value());
        if (const pugi::xml_attribute a = node.attribute("encoding"))
            encoding = ParseNumber(a.value());
        if (const pugi::xml_attribute a = node.attribute("type"))
            type = ParseNumber(a.value());
        if (const pugi::xml_attribute a = node.attribute("folder"))
            folder = ParseNumber(a.value());

        if (folder == 1 && !label.isEmpty()) {
            CTreeNode* added = sink.AddFolder(parent, label);
            if (const pugi::xml_node child = FirstElement(node))
                ReadLevel(sink, added, child);
        } else if (!pathname.isEmpty()) {
            sink.AddFile(pathname, parent, type, encoding);
        }
    }
}

} // namespace

QByteArray Write(const CTreeItemModel& model)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("ROOT");
    WriteLevel(model.Root(), root);
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    const std::string text = out.str();
    return QByteArray(text.data(), qsizetype(text.size()));
}

bool Parse(const QByteArray& bytes, pugi::xml_document& document, QString& error)
{
    // The default options leave out the DOCTYPE and know only the predefined entities.
    const pugi::xml_parse_result result = document.load_buffer(
        bytes.constData(), size_t(bytes.size()), pugi::parse_default, pugi::encoding_auto);
    if (!result) {
        error = QStringLiteral("%1 at offset %2").arg(QString::fromUtf8(result.description())).arg(result.offset);
        return false;
    }
    const pugi::xml_node root = document.child("ROOT");
    if (!root) {
        error = QStringLiteral("the file holds no ROOT element");
        return false;
    }
    if (Depth(root) > MaxDepth) {
        error = QStringLiteral("folders are nested more than %1 levels deep").arg(MaxDepth);
        return false;
    }
    return true;
}

void Read(const pugi::xml_document& document, IReadSink& sink)
{
    if (const pugi::xml_node first = FirstElement(document.child("ROOT")))
        ReadLevel(sink, nullptr, first);
}

int ParseNumber(const char* text)
{
    if (!text)
        return 0;
    bool negative = false;
    if (*text == '-') {
        negative = true;
        ++text;
    }
    long long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + (*text - '0');
        if (value > 0x7fffffffLL)
            return 0; // out of range: not a number we wrote
    }
    return int(negative ? -value : value);
}

} // namespace WorkspaceFile
