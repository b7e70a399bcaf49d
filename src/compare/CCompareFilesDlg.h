#pragma once

#include <QDialog>

class CHistoryComboBox;

// "Compare Files": two paths, each typed, browsed for or taken from its history. The
// browse dialogs offer the default extension (Settings/DefExt) first.
class CCompareFilesDlg : public QDialog
{
    Q_OBJECT
public:
    explicit CCompareFilesDlg(QWidget* parent = nullptr);

    QString LeftPath() const;
    QString RightPath() const;
    void SetPaths(const QString& left, const QString& right);

    void accept() override;

private:
    void Browse(CHistoryComboBox* box);

    CHistoryComboBox* m_left;
    CHistoryComboBox* m_right;
    QString m_defaultExtension;
};
