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
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->setWordWrap(false);
    const auto rows = ByteInterpreter::Inspect(nullptr, 0);
    m_table->setRowCount(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r) {
        m_table->setItem(r, 0, new QTableWidgetItem(rows[r].type));
        m_table->setItem(r, 1, new QTableWidgetItem);
        m_table->setItem(r, 2, new QTableWidgetItem);
    }
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
