// Export to PDF with each file system call failing in turn: an earlier export at the
// same name stays as it was, or is replaced by the whole document.
#include "FaultSweep.h"

#include "printing/PdfExport.h"

#include "TestSupport.h"

#include <Qsci/qsciscintillabase.h>

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

// An export with what differs from one run to the next (its date, its id) blanked out.
QByteArray Stable(const QByteArray& pdf)
{
    static const QRegularExpression varying(QStringLiteral("\\(D:[0-9+\\-Z']*\\)|<[0-9a-fA-F]{32}>"));
    return QString::fromLatin1(pdf).replace(varying, QStringLiteral("~")).toLatin1();
}

TEST(PdfExportFaults, AnEarlierExportStaysOrIsReplacedWhole)
{
    QsciScintillaBase editor;
    editor.SendScintilla(QsciScintillaBase::SCI_SETTEXT, Lines(800, "line ").constData());

    const auto exportTo = [&](const QString& path, QString* error) {
        return PdfExport::Write(editor, PrintOptions(), QStringLiteral("listing"), path, {}, error);
    };
    const QString scratch = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("clean.pdf"));
    ASSERT_TRUE(exportTo(scratch, nullptr));
    const QByteArray earlier = "%PDF-1.4 an earlier export\n%%EOF\n";
    SweepWriter writer = FileWriter(TestSupport::MakeTempDir(), QStringLiteral("listing.pdf"), earlier,
                                    Stable(TestSupport::ReadFile(scratch)));
    QString error;
    const auto putBack = writer.prepare;
    writer.prepare = [&] {
        putBack();
        error.clear();
    };
    writer.save = [&] { return exportTo(writer.target, &error); };
    writer.observe = [&] {
        const QByteArray now = TestSupport::ReadFile(writer.target);
        return now == earlier ? now : Stable(now);
    };
    writer.check = [&](bool ok) -> std::string {
        return !ok && error.isEmpty() ? "a failed export gave no reason" : std::string();
    };
    ExpectSweep("PDF export", Sweep(writer));
}

} // namespace
