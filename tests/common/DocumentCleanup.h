#pragma once

#include "framework/CChildFrame.h"
#include "framework/CDocTemplate.h"
#include "framework/CDocument.h"

namespace DocumentCleanup {

// Takes down every document a test left open, without the questions a close would ask.
inline void DeleteAll(CDocTemplate& docTemplate)
{
    for (CDocument* document : docTemplate.GetDocuments()) {
        document->SetModifiedFlag(false);
        const auto frames = document->GetFrames(); // a copy: each delete shortens the list
        for (CChildFrame* frame : frames)
            delete frame;
        delete document;
    }
}

} // namespace DocumentCleanup
