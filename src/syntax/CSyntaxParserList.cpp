#include "CSyntaxParserList.h"

#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"

#include <QDir>

namespace {

QString StoredConfigPath()
{
    return CRegistryStore().GetProfileString(QStringLiteral("Settings"), QStringLiteral("ConfigPath"),
                                             QString());
}

} // namespace

CSyntaxParserList::CSyntaxParserList()
{
    const QString stored = StoredConfigPath();
    if (stored.isEmpty()) {
        m_folder = AppPaths::DefaultSyntaxFolder();
        m_fillFromShipped = true;
    } else {
        m_folder = stored;
    }
}

CSyntaxParserList::CSyntaxParserList(const QString& folder)
    : m_folder(folder)
{
}

QString CSyntaxParserList::ConfiguredFolder()
{
    const QString stored = StoredConfigPath();
    return stored.isEmpty() ? AppPaths::DefaultSyntaxFolder() : stored;
}

bool CSyntaxParserList::Load(const QString& folder)
{
    if (!folder.isNull() && folder != m_folder) {
        m_folder = folder;
        m_fillFromShipped = false;
    }
    m_parsers.clear();
    if (m_fillFromShipped)
        AppPaths::FillFromShipped(m_folder, QStringLiteral("syntax"));

    const QDir dir(m_folder);
    if (m_folder.isEmpty() || !dir.exists())
        return false;
    // File-name order, so that menus stay the same from one start to the next.
    const QStringList names = dir.entryList({QStringLiteral("*.config")}, QDir::Files,
                                            QDir::Name | QDir::IgnoreCase);
    for (const QString& name : names) {
        CSyntaxParser parser;
        if (CSyntaxParser::ReadFile(dir.filePath(name), parser) && parser.colourCount > 0)
            m_parsers.append(parser);
    }
    return !names.isEmpty();
}

CSyntaxParser CSyntaxParserList::GetParser(int index) const
{
    if (index < 0 || index >= m_parsers.size())
        return CSyntaxParser::StandBy();
    return m_parsers.at(index);
}

void CSyntaxParserList::SetParser(int index, const CSyntaxParser& parser)
{
    if (index < 0 || index >= m_parsers.size())
        return;
    m_parsers.replace(index, parser);
}

int CSyntaxParserList::FindByExtension(const QString& extension) const
{
    for (int i = 0; i < m_parsers.size(); ++i) {
        if (m_parsers.at(i).MatchesExtension(extension))
            return i;
    }
    return -1;
}

QStringList CSyntaxParserList::MenuNames() const
{
    QStringList names;
    names.reserve(m_parsers.size());
    for (const CSyntaxParser& parser : m_parsers)
        names.append(parser.menuName);
    return names;
}
