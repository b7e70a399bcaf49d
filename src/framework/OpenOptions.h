#pragma once

#include "editor/TextEncoding.h"

// The pending open request. Every open command fills it in full and then calls the
// application's common open routine; the document reads it while it opens.
struct OpenOptions
{
    enum Mode { Text = 0, Hex = 1, Detect = 2, Compare = 3 };

    int mode = Detect;
    int encoding = TextEncoding::Auto; // a TextEncoding code
    int bomLength = 0;  // bytes to skip at the start of the file
    bool readOnly = false;

    static OpenOptions defaults() { return {}; }
    bool operator==(const OpenOptions&) const = default;
};
