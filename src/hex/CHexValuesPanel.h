#pragma once

#include <QWidget>

class QTableWidget;
class CPieceTable;

// The values the bytes under the caret stand for: signed and unsigned integers of 8 to
// 64 bits and floating-point numbers, little- and big-endian side by side.
class CHexValuesPanel : public QWidget
{
    Q_OBJECT
public:
    explicit CHexValuesPanel(QWidget* parent = nullptr);

    // Shows the bytes from `offset` on (at most eight are read).
    void ShowAt(const CPieceTable& bytes, qint64 offset);
    // The shown text of a row ("UInt16") in one byte order, for tests.
    QString ValueText(const QString& type, bool littleEndian) const;

private:
    void FitValueColumns();

    QTableWidget* m_table;
};
