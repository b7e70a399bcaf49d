#include "CFileDialogEx.h"

#include "properties/FileFilterStore.h"

#include "TextEncoding.h"
#include "settings/CRegistryStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>

namespace {
const QString kSettings = QStringLiteral("Settings");
} // namespace

CFileDialogEx::CFileDialogEx(bool isOpen, const QString& fileName, QWidget* parent,
                             const QString& folder)
    : QFileDialog(parent)
    , m_isOpen(isOpen)
{
    // Our own widgets sit below the standard controls, which needs Qt's own dialog.
    setOption(QFileDialog::DontUseNativeDialog, true);
    setAcceptMode(isOpen ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    setFileMode(isOpen ? QFileDialog::ExistingFiles : QFileDialog::AnyFile);
    setWindowTitle(isOpen ? tr("Open") : tr("Save As"));
    if (!folder.isEmpty())
        setDirectory(folder);
    if (!fileName.isEmpty())
        selectFile(fileName);

    const QStringList filters = BuildFilters();
    setNameFilters(filters);
    m_filterIndex = CRegistryStore().GetProfileInt(kSettings, QStringLiteral("FilterIndex"), 0);
    if (m_filterIndex >= 0 && m_filterIndex < filters.size())
        selectNameFilter(filters.at(m_filterIndex));

    auto* grid = qobject_cast<QGridLayout*>(layout());
    const int row = grid ? grid->rowCount() : 0;
    m_encodingBox = new QComboBox(this);
    m_encodingBox->setObjectName(QStringLiteral("encoding"));
    if (isOpen) {
        m_viewAsBox = new QComboBox(this);
        m_viewAsBox->setObjectName(QStringLiteral("viewAs"));
        m_readOnlyBox = new QCheckBox(tr("Open as &read-only"), this);
        m_readOnlyBox->setObjectName(QStringLiteral("readOnly"));
    } else {
        m_lineEndingBox = new QComboBox(this);
        m_lineEndingBox->setObjectName(QStringLiteral("lineEnding"));
    }
    if (grid) {
        grid->addWidget(new QLabel(tr("&Encoding:"), this), row, 0);
        grid->addWidget(m_encodingBox, row, 1);
        if (isOpen) {
            grid->addWidget(new QLabel(tr("&View as:"), this), row + 1, 0);
            grid->addWidget(m_viewAsBox, row + 1, 1);
            grid->addWidget(m_readOnlyBox, row + 2, 1);
        } else {
            grid->addWidget(new QLabel(tr("&Line ends:"), this), row + 1, 0);
            grid->addWidget(m_lineEndingBox, row + 1, 1);
        }
    }

    connect(m_encodingBox, &QComboBox::currentIndexChanged, this, [this](int row) {
        if (row >= 0)
            m_encoding = row;
    });
    if (m_viewAsBox) {
        connect(m_viewAsBox, &QComboBox::currentIndexChanged, this, [this](int row) {
            if (row < 0)
                return;
            m_viewAs = row;
            // A binary view has no encoding to choose.
            m_encodingBox->setEnabled(row != 1);
        });
    }
    if (m_lineEndingBox) {
        connect(m_lineEndingBox, &QComboBox::currentIndexChanged, this, [this](int row) {
            if (row >= 0)
                m_lineEnding = row;
        });
    }
    connect(this, &QFileDialog::filterSelected, this, &CFileDialogEx::OnTypeChange);
}

bool CFileDialogEx::GetReadOnly() const
{
    return m_readOnlyBox && m_readOnlyBox->isChecked();
}

void CFileDialogEx::OnInitDialog()
{
    // Save As always starts at "Ansi", whatever the document was.
    if (!m_isOpen)
        m_encoding = TextEncoding::Ansi;

    const int encoding = m_encoding;
    m_encodingBox->clear();
    m_encodingBox->addItems({QStringLiteral("UTF-8"), QStringLiteral("Unicode"),
                             QStringLiteral("Unicode (Big Endian)"), QStringLiteral("Ansi")});
    if (m_isOpen)
        m_encodingBox->addItem(QStringLiteral("Auto"));
    m_encodingBox->setCurrentIndex(std::clamp(encoding, 0, m_encodingBox->count() - 1));

    if (m_viewAsBox) {
        const int viewAs = m_viewAs;
        m_viewAsBox->clear();
        m_viewAsBox->addItems({tr("Text"), tr("Hex Editor (Binary)"), tr("Auto")});
        m_viewAsBox->setCurrentIndex(std::clamp(viewAs, 0, 2));
    }
    if (m_lineEndingBox) {
        const int lineEnding = m_lineEnding;
        m_lineEndingBox->clear();
        m_lineEndingBox->addItems({tr("Windows (CRLF)"), tr("Macintosh (CR)"), tr("Unix (LF)")});
        m_lineEndingBox->setCurrentIndex(std::clamp(lineEnding, 0, 2));
    }
}

int CFileDialogEx::DoModal()
{
    OnInitDialog();
    return exec();
}

void CFileDialogEx::accept()
{
    const int index = int(nameFilters().indexOf(selectedNameFilter()));
    CRegistryStore().WriteProfileInt(kSettings, QStringLiteral("FilterIndex"), std::max(index, 0));
    QFileDialog::accept();
}

void CFileDialogEx::OnTypeChange(const QString& filter)
{
    const QString extension = ExtensionOfFilter(filter);
    CRegistryStore().WriteProfileString(kSettings, QStringLiteral("DefExt"), extension);
}

QString CFileDialogEx::ExtensionOfFilter(const QString& filter)
{
    const qsizetype dot = filter.lastIndexOf(QLatin1Char('.'));
    // A filter that names no extension ("All Files (*)") gives none.
    if (dot < 0)
        return QString();
    QString rest = filter.mid(dot);
    rest.remove(QLatin1Char(')'));
    rest.remove(QLatin1Char('('));
    rest.remove(QLatin1Char('.'));
    return rest;
}

QStringList CFileDialogEx::BuildFilters()
{
    // The File Filters page edits this list; the machine's filters come first.
    return FileFilterStore::DialogFilters(FileFilterStore::Load());
}
