#include "CFileDialogEx.h"

#include "properties/FileFilterStore.h"

#include "TextEncoding.h"
#include "settings/CRegistryStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QList>

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
    // Without a folder of its own (no document, or one never saved) the dialog goes back
    // to where the user last was, not to where the program was started.
    const QString start = folder.isEmpty() ? LastFolder() : folder;
    if (!start.isEmpty())
        setDirectory(start);
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
        // Each label leads to its box, so its mnemonic works and shows as one.
        auto addRow = [this, grid](const QString& text, QWidget* box, int at) {
            auto* label = new QLabel(text, this);
            label->setBuddy(box);
            grid->addWidget(label, at, 0);
            grid->addWidget(box, at, 1);
        };
        addRow(tr("&Encoding:"), m_encodingBox, row);
        if (isOpen) {
            addRow(tr("&View as:"), m_viewAsBox, row + 1);
            grid->addWidget(m_readOnlyBox, row + 2, 1);
        } else {
            addRow(tr("&Line ends:"), m_lineEndingBox, row + 1);
        }
    }

    connect(m_encodingBox, &QComboBox::currentIndexChanged, this, [this](int row) {
        if (row >= 0)
            m_encoding = m_encodingBox->itemData(row).toInt();
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
    int encoding = m_encoding;
    if (!m_isOpen) {
        // Save As keeps the document's own encoding unless the user picks another. A
        // document that has none yet holds UTF-8; forms we only read are offered as UTF-8.
        if (encoding == TextEncoding::Auto || TextEncoding::IsReadOnlyForm(encoding))
            encoding = TextEncoding::Utf8;
    }
    m_encodingBox->clear();
    QList<int> codes{TextEncoding::Utf8, TextEncoding::Utf16LE, TextEncoding::Utf16BE, TextEncoding::Ansi};
    if (m_isOpen)
        codes << TextEncoding::Auto;
    else if (encoding == TextEncoding::Utf32LE || encoding == TextEncoding::Utf32BE)
        codes << encoding;
    for (int code : codes)
        m_encodingBox->addItem(TextEncoding::DisplayName(code), code);
    const int row = m_encodingBox->findData(encoding);
    m_encodingBox->setCurrentIndex(row >= 0 ? row : 0);
    m_encoding = m_encodingBox->currentData().toInt();

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

QString CFileDialogEx::LastFolder()
{
    const QString folder = CRegistryStore().GetProfileString(kSettings, QStringLiteral("LastFolder"));
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

QString CFileDialogEx::FolderOf(const QString& documentPath)
{
    if (documentPath.isEmpty())
        return QString();
    const QFileInfo info(documentPath);
    return info.isAbsolute() && info.dir().exists() ? info.absolutePath() : QString();
}

void CFileDialogEx::accept()
{
    const int index = int(nameFilters().indexOf(selectedNameFilter()));
    CRegistryStore().WriteProfileInt(kSettings, QStringLiteral("FilterIndex"), std::max(index, 0));
    QFileDialog::accept();
    if (result() == QDialog::Accepted) {
        const QStringList chosen = selectedFiles();
        if (!chosen.isEmpty())
            CRegistryStore().WriteProfileString(kSettings, QStringLiteral("LastFolder"),
                                                QFileInfo(chosen.first()).absolutePath());
    }
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
