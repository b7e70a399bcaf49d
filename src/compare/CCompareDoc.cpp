#include "compare/CCompareDoc.h"

#include "compare/CCompareView.h"

#include "settings/CRegistryStore.h"

#include <QFileInfo>

CCompareDoc::CCompareDoc(QObject* parent)
    : CDocument(parent)
{
}

void CCompareDoc::SwapSides()
{
    std::swap(m_sides[0], m_sides[1]);
    UpdateTitle();
}

void CCompareDoc::UpdateTitle()
{
    auto name = [](const Side& side) {
        const QString file = QFileInfo(side.path).fileName();
        return file.isEmpty() ? side.label : file;
    };
    QString title = name(m_sides[0]) + QStringLiteral(" <-> ") + name(m_sides[1]);
    if (m_bModified)
        title += QLatin1Char('*');
    SetTitle(title);
}

void CCompareDoc::SetModifiedFlag(bool modified)
{
    const bool changed = modified != m_bModified;
    m_bModified = modified;
    if (changed) {
        UpdateTitle();
        Q_EMIT modifiedChanged(modified);
    }
}

bool CCompareDoc::DoSave(const QString& path, bool replace)
{
    Q_UNUSED(path);
    Q_UNUSED(replace);
    return m_view && m_view->SaveModifiedSides();
}

AnsiCodePage CCompareDoc::CodePage()
{
    return AnsiCodePage(CRegistryStore().GetProfileString(QStringLiteral("EditSettings"),
                                                          QStringLiteral("AnsiCodePage"),
                                                          QString::fromLatin1(AnsiCodePage::DefaultName)));
}
