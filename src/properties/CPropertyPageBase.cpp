#include "CPropertyPageBase.h"

#include <QColor>

CPropertyPageBase::CPropertyPageBase(const QString& title, const QString& helpPage, QWidget* parent)
    : QWidget(parent), m_title(title)
{
    setProperty("helpPage", helpPage);
}

void CPropertyPageBase::SetModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    Q_EMIT modifiedChanged(modified);
}

QColor ColourFromRef(quint32 colour)
{
    return QColor(int(colour & 0xFF), int((colour >> 8) & 0xFF), int((colour >> 16) & 0xFF));
}

quint32 RefFromColour(const QColor& colour)
{
    return quint32(colour.red()) | (quint32(colour.green()) << 8) | (quint32(colour.blue()) << 16);
}
