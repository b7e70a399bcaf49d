#pragma once

#include "syntax/CSyntaxParserList.h"

#include <QList>
#include <QObject>

class IShell;
class QAction;

// The syntax definitions of the running program and the View As menu made of them.
// The View As commands are carried out by the text frames, which know their parser.
class CSyntaxCommands : public QObject
{
    Q_OBJECT
public:
    explicit CSyntaxCommands(IShell& shell);

    CSyntaxParserList& Parsers() { return m_parsers; }
    const QList<QAction*>& MenuActions() const { return m_actions; }

    // The object InstallSyntax made for this shell, or null.
    static CSyntaxCommands* Of(IShell& shell);

private:
    IShell& m_shell;
    CSyntaxParserList m_parsers;
    QList<QAction*> m_actions;
};

// Reads the definitions and fills the View As menu; the list lives as long as the window.
CSyntaxParserList& InstallSyntax(IShell& shell);
