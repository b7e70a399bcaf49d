#include "SyntaxXml.h"

#include <QFile>
#include <QFileInfo>

namespace SyntaxXml {

bool ReadBytes(const QString& path, QByteArray& bytes)
{
    // A pipe in the folder would hold start-up until someone wrote to it.
    if (!QFileInfo(path).isFile())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    if (file.size() > MaxFileSize)
        return false;
    // What the file says it holds, then whatever it grew by: asking for the largest size
    // at once would make every small file cost a 16 MB buffer.
    bytes = file.read(file.size());
    while (bytes.size() <= MaxFileSize) {
        const QByteArray more = file.read(64 * 1024);
        if (more.isEmpty())
            break;
        bytes += more;
    }
    return bytes.size() <= MaxFileSize && file.error() == QFileDevice::NoError;
}

bool Parse(const QByteArray& bytes, pugi::xml_document& document)
{
    // parse_default leaves out parse_doctype and knows only the five predefined
    // entities: nothing outside the buffer is ever consulted.
    const pugi::xml_parse_result result = document.load_buffer(
        bytes.constData(), size_t(bytes.size()), pugi::parse_default, pugi::encoding_auto);
    return bool(result);
}

pugi::xml_node FindProperties(const pugi::xml_document& document)
{
    return document.find_node([](pugi::xml_node node) {
        return node.type() == pugi::node_element && std::string_view(node.name()) == "PROPERTIES";
    });
}

QString InnerText(pugi::xml_node node)
{
    // Walked without recursion, so that a hostile nesting depth can't exhaust the stack.
    QByteArray text;
    pugi::xml_node current = node.first_child();
    while (current && current != node) {
        if (current.type() == pugi::node_pcdata || current.type() == pugi::node_cdata)
            text += current.value();
        if (current.first_child()) {
            current = current.first_child();
            continue;
        }
        while (current != node && !current.next_sibling())
            current = current.parent();
        if (current != node)
            current = current.next_sibling();
    }
    return QString::fromUtf8(text);
}

} // namespace SyntaxXml
