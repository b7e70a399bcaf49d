#pragma once

#include "FindInFilesTypes.h"

#include <QDialog>
#include <QStringList>

class QTreeWidget;

// The matches Replace in Files is about to change, file by file, each file with a check
// box; Replace goes ahead with the files still checked.
class CReplacePreviewDialog : public QDialog
{
    Q_OBJECT
public:
    CReplacePreviewDialog(const QString& find, const QString& replacement,
                          const QList<FindInFilesMatch>& matches, QWidget* parent = nullptr);

    // The files checked, in the order listed.
    QStringList chosenFiles() const;
    QTreeWidget* tree() const { return m_tree; }

private:
    QTreeWidget* m_tree;
};
