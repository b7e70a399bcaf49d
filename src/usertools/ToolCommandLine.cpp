#include "usertools/ToolCommandLine.h"

#include <QFileInfo>

namespace {

struct Variable
{
    QLatin1StringView name; // without '$'
    QString (*value)(const ToolContext&);
};

QString FileDir(const ToolContext& c)
{
    return c.filePath.isEmpty() ? QString() : QFileInfo(c.filePath).absolutePath();
}

const Variable kVariables[] = {
    {QLatin1StringView("FileName"), [](const ToolContext& c) { return c.filePath; }},
    {QLatin1StringView("FileDir"), [](const ToolContext& c) { return FileDir(c); }},
    {QLatin1StringView("FileTitle"),
     [](const ToolContext& c) {
         return c.filePath.isEmpty() ? QString() : QFileInfo(c.filePath).completeBaseName();
     }},
    {QLatin1StringView("Line"),
     [](const ToolContext& c) { return c.line > 0 ? QString::number(c.line) : QString(); }},
    {QLatin1StringView("Column"),
     [](const ToolContext& c) { return c.column > 0 ? QString::number(c.column) : QString(); }},
    {QLatin1StringView("Selection"), [](const ToolContext& c) { return c.selection; }},
    {QLatin1StringView("AppDir"), [](const ToolContext& c) { return c.appDir; }},
};

// The variable named at text[at] (just after '$'), or null. The longest name wins.
const Variable* VariableAt(const QString& text, qsizetype at, qsizetype& length)
{
    const Variable* found = nullptr;
    length = 0;
    const QStringView rest = QStringView(text).mid(at);
    for (const Variable& variable : kVariables) {
        const qsizetype n = variable.name.size();
        if (n > length && rest.size() >= n
            && rest.first(n).compare(variable.name, Qt::CaseInsensitive) == 0) {
            found = &variable;
            length = n;
        }
    }
    return found;
}

} // namespace

QString ToolCommandLine::ExpandText(const QString& text, const ToolContext& context)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        qsizetype length = 0;
        if (text[i] == QLatin1Char('$')) {
            if (const Variable* variable = VariableAt(text, i + 1, length)) {
                out += variable->value(context);
                i += length;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

QStringList ToolCommandLine::SplitArguments(const QString& arguments, const ToolContext& context)
{
    QStringList words;
    QString word;
    bool inWord = false;   // something (even an empty quote) started a word
    bool keepEmpty = false; // the word had quotes or literal text, so it stays if empty
    enum { None, Single, Double } quote = None;

    auto endWord = [&] {
        if (inWord && (!word.isEmpty() || keepEmpty))
            words << word;
        word.clear();
        inWord = keepEmpty = false;
    };

    const qsizetype n = arguments.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = arguments[i];
        if (quote == Single) {
            if (c == QLatin1Char('\''))
                quote = None;
            else
                word += c;
            continue;
        }
        if (c == QLatin1Char('$')) {
            qsizetype length = 0;
            if (const Variable* variable = VariableAt(arguments, i + 1, length)) {
                word += variable->value(context);
                inWord = true;
                i += length;
                continue;
            }
        }
        if (quote == Double) {
            if (c == QLatin1Char('"')) {
                quote = None;
            } else if (c == QLatin1Char('\\') && i + 1 < n
                       && (arguments[i + 1] == QLatin1Char('"') || arguments[i + 1] == QLatin1Char('\\'))) {
                word += arguments[++i];
            } else {
                word += c;
            }
            continue;
        }
        if (c.isSpace()) {
            endWord();
            continue;
        }
        inWord = true;
        if (c == QLatin1Char('\'')) {
            quote = Single;
            keepEmpty = true;
        } else if (c == QLatin1Char('"')) {
            quote = Double;
            keepEmpty = true;
        } else if (c == QLatin1Char('\\') && i + 1 < n
                   && (arguments[i + 1] == QLatin1Char('"') || arguments[i + 1] == QLatin1Char('\'')
                       || arguments[i + 1].isSpace())) {
            word += arguments[++i];
            keepEmpty = true;
        } else {
            word += c;
            keepEmpty = true;
        }
    }
    // An unclosed quote runs to the end, as the user most likely meant.
    endWord();
    return words;
}

QString ToolCommandLine::Describe(const QString& program, const QStringList& arguments)
{
    auto quoted = [](const QString& word) {
        if (!word.isEmpty() && !word.contains(QLatin1Char(' ')) && !word.contains(QLatin1Char('"'))
            && !word.contains(QLatin1Char('\'')))
            return word;
        QString escaped = word;
        escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\")).replace(QLatin1Char('"'), QStringLiteral("\\\""));
        return QLatin1Char('"') + escaped + QLatin1Char('"');
    };
    QStringList parts{quoted(program)};
    for (const QString& argument : arguments)
        parts << quoted(argument);
    return parts.join(QLatin1Char(' '));
}
