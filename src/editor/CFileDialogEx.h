#pragma once

#include "TextEncoding.h"

#include <QFileDialog>
#include <QStringList>

class QCheckBox;
class QComboBox;

// The open and save dialog: the standard file dialog with the encoding box, and on
// open the view-as box and a read-only check, on save the line-end box.
class CFileDialogEx : public QFileDialog
{
    Q_OBJECT
public:
    CFileDialogEx(bool isOpen, const QString& fileName, QWidget* parent = nullptr,
                  const QString& folder = QString());

    void SetEncoding(int encoding) { m_encoding = encoding; }
    void SetLineEnding(int lineEnding) { m_lineEnding = lineEnding; }
    int GetEncoding() const { return m_encoding; }
    int GetLineEnding() const { return m_lineEnding; }
    int GetViewAs() const { return m_viewAs; }
    bool GetReadOnly() const;
    QStringList GetPathNames() const { return selectedFiles(); }

    // Fills the boxes with the stored values and runs the dialog.
    int DoModal();

    QComboBox* EncodingBox() const { return m_encodingBox; }
    QComboBox* ViewAsBox() const { return m_viewAsBox; }
    QComboBox* LineEndingBox() const { return m_lineEndingBox; }

    // The folder the last accepted dialog was in; empty when none or it is gone.
    static QString LastFolder();
    // The folder of a document's file, for starting a dialog there; empty for a
    // document never saved.
    static QString FolderOf(const QString& documentPath);

    // "Label (*.a *.b)" entries from the machine's file filter list, or our own list.
    static QStringList BuildFilters();
    // The extension a filter's text names: "Text Files (*.txt)" gives "txt".
    static QString ExtensionOfFilter(const QString& filter);

    void OnInitDialog();

protected:
    void accept() override;

private:
    void OnTypeChange(const QString& filter);

    bool m_isOpen;
    int m_filterIndex = 0;
    int m_lineEnding = 0;
    int m_encoding = TextEncoding::Auto;
    int m_viewAs = 2;
    QComboBox* m_encodingBox = nullptr;
    QComboBox* m_viewAsBox = nullptr;
    QComboBox* m_lineEndingBox = nullptr;
    QCheckBox* m_readOnlyBox = nullptr;
};
