#pragma once

#include "CSyntaxParser.h"

#include <QList>
#include <QString>
#include <QStringList>

// Every definition file of one folder, in file-name order. The index of a parser is its
// number in the View As menu; it is valid until the next Load.
class CSyntaxParserList
{
public:
    // The folder is Settings/ConfigPath, or the default syntax folder when that is
    // empty. The default folder is filled with the shipped definitions on the first
    // Load that finds it empty. The list starts empty.
    CSyntaxParserList();
    // An explicit folder, never filled from the shipped definitions.
    explicit CSyntaxParserList(const QString& folder);

    // Empties the list and reads every "*.config" file of the folder; a null `folder`
    // keeps the current one. Files that can't be read, aren't well-formed or define no
    // colour are skipped without a word. True when at least one "*.config" file was found.
    bool Load(const QString& folder = QString());

    int GetCount() const { return int(m_parsers.size()); }

    // A copy of parser `index`; the stand-by record (CSyntaxParser::StandBy) for any index
    // that isn't in the list, so that a frame holding a number from before a reload
    // still gets something to apply.
    CSyntaxParser GetParser(int index) const;

    // Replaces parser `index`; ignored when out of range.
    void SetParser(int index, const CSyntaxParser& parser);

    // The first parser whose extension list holds `extension` (with its dot, any case),
    // or -1. New documents ask with ".*".
    int FindByExtension(const QString& extension) const;

    QStringList MenuNames() const;
    QString GetFolder() const { return m_folder; }

    // Settings/ConfigPath, or the default syntax folder when that is empty.
    static QString ConfiguredFolder();

private:
    QList<CSyntaxParser> m_parsers;
    QString m_folder;
    bool m_fillFromShipped = false;
};
