#include "CHexValuesPanel.h"

#include "ByteInterpreter.h"
#include "CPieceTable.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

CHexValuesPanel::CHexValuesPanel(QWidget* parent)
    : QWidget(parent)
    , m_table(new QTableWidget(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    m_table->setColumnCount(3);
    m_table->setHorizontalHeaderLabels({tr("Type"), tr("Little endian"), tr("Big endian")});
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->setWordWrap(false);
    const auto rows = ByteInterpreter::Inspect(nullptr, 0);
    m_table->setRowCount(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r) {
        m_table->setItem(r, 0, new QTableWidgetItem(rows[r].type));
        m_table->setItem(r, 1, new QTableWidgetItem);
        m_table->setItem(r, 2, new QTableWidgetItem);
    }
    FitValueColumns();
}

void CHexValuesPanel::FitValueColumns()
{
    // The longest reading there is: a negative double with all seventeen digits and a
    // three-digit exponent (whole integers are shorter), read both ways round.
    const uchar widest[8] = {0x80, 0x10, 0, 0, 0, 0, 0, 0x01};
    const auto rows = ByteInterpreter::Inspect(widest, 8);
    for (int r = 0; r < rows.size() && r < m_table->rowCount(); ++r) {
        m_table->item(r, 1)->setText(rows[r].littleEndian);
        m_table->item(r, 2)->setText(rows[r].bigEndian);
    }
    m_table->resizeColumnsToContents();
    const int width = std::max(m_table->columnWidth(1), m_table->columnWidth(2));
    // Both columns that wide, once: a value is never cut short and the columns don't jump
    // as the caret moves. A narrow panel scrolls sideways instead.
    for (int column : {1, 2}) {
        m_table->horizontalHeader()->setSectionResizeMode(column, QHeaderView::Interactive);
        m_table->setColumnWidth(column, width);
        for (int r = 0; r < m_table->rowCount(); ++r)
            m_table->item(r, column)->setText(QString());
    }
    m_table->horizontalHeader()->setStretchLastSection(true);
}

void CHexValuesPanel::ShowAt(const CPieceTable& bytes, qint64 offset)
{
    uchar data[8] = {};
    int available = int(std::clamp<qint64>(bytes.Size() - offset, 0, 8));
    if (available > 0 && !bytes.Read(offset, available, data))
        available = 0;
    const auto rows = ByteInterpreter::Inspect(data, available);
    const QString none = QStringLiteral("-");
    for (int r = 0; r < rows.size() && r < m_table->rowCount(); ++r) {
        m_table->item(r, 1)->setText(rows[r].littleEndian.isEmpty() ? none : rows[r].littleEndian);
        m_table->item(r, 2)->setText(rows[r].bigEndian.isEmpty() ? none : rows[r].bigEndian);
    }
}

QString CHexValuesPanel::ValueText(const QString& type, bool littleEndian) const
{
    for (int r = 0; r < m_table->rowCount(); ++r) {
        if (m_table->item(r, 0)->text() == type)
            return m_table->item(r, littleEndian ? 1 : 2)->text();
    }
    return QString();
}
