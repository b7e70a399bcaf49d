#pragma once

#include "FileProperties.h"

#include <QDialog>

class QCheckBox;
class QLabel;

// "File Properties" of one file: name, type, location, size and dates, with the
// read-only flag (the owner's write permission) to change. Hidden shows whether the name
// begins with a dot; renaming is no property change, so it is greyed.
class CFileInfoDialog : public QDialog
{
    Q_OBJECT
public:
    CFileInfoDialog(const QString& path, QWidget* parent = nullptr);

    QString FieldText(const QString& field) const;
    QCheckBox* ReadOnlyBox() const { return m_readOnly; }
    QCheckBox* HiddenBox() const { return m_hidden; }

    void accept() override;

private:
    QString m_path;
    FileProperties m_properties;
    QCheckBox* m_readOnly;
    QCheckBox* m_hidden;
};
