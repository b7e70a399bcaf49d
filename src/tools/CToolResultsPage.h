#pragma once

#include "shell/IOutputPage.h"

#include <QPlainTextEdit>

// The "Tool Results" page of the Output bar: what external tools print, appended as it
// comes and kept read-only.
class CToolResultsPage : public QPlainTextEdit, public IOutputPage
{
    Q_OBJECT
public:
    explicit CToolResultsPage(QWidget* parent = nullptr);

    QString Title() const override { return tr("Tool Results"); }
    QWidget* Widget() override { return this; }
    void Clear() override { clear(); }

public slots:
    void appendText(const QString& text);
};
