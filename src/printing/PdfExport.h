#pragma once

#include "CPrintJob.h"

#include <QString>

class QsciScintillaBase;

namespace PdfExport {

// Writes the pages of a print run to a PDF file on the options' paper. The file is
// written beside the target and renamed over it, so a cancelled or failed export leaves
// an existing file as it was. `error` says why not.
bool Write(QsciScintillaBase& editor, const PrintOptions& options, const QString& headerName,
           const QString& path, const CPrintJob::Progress& progress = {},
           QString* error = nullptr, long rangeStart = 0, long rangeEnd = -1);

} // namespace PdfExport
