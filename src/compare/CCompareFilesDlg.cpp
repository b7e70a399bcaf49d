#include "compare/CCompareFilesDlg.h"

#include "search/CHistoryComboBox.h"
#include "settings/CRegistryStore.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

CCompareFilesDlg::CCompareFilesDlg(QWidget* parent)
    : QDialog(parent)
    , m_defaultExtension(CRegistryStore().GetProfileString(QStringLiteral("Settings"), QStringLiteral("DefExt"),
                                                          QStringLiteral("txt")))
{
    setWindowTitle(tr("Compare Files"));
    auto* grid = new QGridLayout(this);
    const QString sections[2] = {QStringLiteral("Compare\\Left Files"), QStringLiteral("Compare\\Right Files")};
    const QString labels[2] = {tr("&Left file:"), tr("&Right file:")};
    CHistoryComboBox* boxes[2];
    for (int side = 0; side < 2; ++side) {
        auto* box = new CHistoryComboBox(this);
        box->setHistorySection(sections[side]);
        box->loadHistory();
        box->setMinimumContentsLength(48);
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        auto* label = new QLabel(labels[side], this);
        label->setBuddy(box);
        auto* browse = new QPushButton(tr("Browse..."), this);
        connect(browse, &QPushButton::clicked, this, [this, box] { Browse(box); });
        grid->addWidget(label, side * 2, 0, 1, 2);
        grid->addWidget(box, side * 2 + 1, 0);
        grid->addWidget(browse, side * 2 + 1, 1);
        boxes[side] = box;
    }
    m_left = boxes[0];
    m_right = boxes[1];
    m_left->setObjectName(QStringLiteral("leftPath"));
    m_right->setObjectName(QStringLiteral("rightPath"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Compare"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, 4, 0, 1, 2);
}

QString CCompareFilesDlg::LeftPath() const
{
    return m_left->currentText().trimmed();
}

QString CCompareFilesDlg::RightPath() const
{
    return m_right->currentText().trimmed();
}

void CCompareFilesDlg::SetPaths(const QString& left, const QString& right)
{
    m_left->setEditText(left);
    m_right->setEditText(right);
}

void CCompareFilesDlg::Browse(CHistoryComboBox* box)
{
    QFileDialog dialog(this, tr("Open"), QFileInfo(box->currentText()).absolutePath());
    dialog.setFileMode(QFileDialog::ExistingFile);
    // The kind of file the user last chose in an open or save dialog comes first.
    QStringList filters{tr("All Files (*)")};
    if (!m_defaultExtension.isEmpty()) {
        filters.prepend(tr("*.%1 Files (*.%1)").arg(m_defaultExtension));
        dialog.setDefaultSuffix(m_defaultExtension);
    }
    dialog.setNameFilters(filters);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        box->setEditText(QDir::toNativeSeparators(dialog.selectedFiles().first()));
}

void CCompareFilesDlg::accept()
{
    for (CHistoryComboBox* box : {m_left, m_right}) {
        const QString path = box->currentText().trimmed();
        if (path.isEmpty() || !QFileInfo(path).isFile()) {
            QMessageBox::warning(this, windowTitle(),
                                 path.isEmpty() ? tr("Please choose two files to compare.")
                                                : tr("Cannot open \"%1\": %2").arg(path, tr("No such file")));
            box->setFocus();
            return;
        }
    }
    m_left->addToHistory(LeftPath());
    m_right->addToHistory(RightPath());
    m_left->waitForSaved();
    m_right->waitForSaved();
    QDialog::accept();
}
