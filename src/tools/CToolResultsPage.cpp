#include "CToolResultsPage.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <QTextCursor>

CToolResultsPage::CToolResultsPage(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("ToolResultsPage"));
    setReadOnly(true);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(QPlainTextEdit::NoWrap);
}

void CToolResultsPage::appendText(const QString& text)
{
    // Append at the end whatever the user selected, and follow the output.
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(text);
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}
