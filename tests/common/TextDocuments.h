#pragma once

#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"
#include "framework/CDocTemplate.h"
#include "framework/OpenOptions.h"

#include <memory>

// Text documents made and opened as the program makes and opens them (tests that use this
// link the editor library).
namespace TextDocuments {

// The text document template; it reads `options` afresh at every open.
inline std::unique_ptr<CDocTemplate> MakeTemplate(OpenOptions* options)
{
    auto docTemplate = std::make_unique<CDocTemplate>(
        QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
        [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
    docTemplate->SetOpenOptions(options);
    return docTemplate;
}

// The frame of a new empty document, or null when none could be made.
inline CScrivelFrame* NewFrame(CDocTemplate& docTemplate)
{
    CDocument* document = docTemplate.OpenDocumentFile(QString(), false);
    return document ? qobject_cast<CScrivelFrame*>(document->GetFrames().first()) : nullptr;
}

// `options` with the encoding and mark the probe finds in `path`, unless an encoding was
// forced or the file cannot be read.
inline OpenOptions Probed(const QString& path, OpenOptions options = OpenOptions())
{
    TextFileDetector probe;
    if (probe.Examine(path) && options.encoding == TextEncoding::Auto) {
        options.encoding = probe.Encoding();
        options.bomLength = probe.BomLength();
    }
    return options;
}

} // namespace TextDocuments
