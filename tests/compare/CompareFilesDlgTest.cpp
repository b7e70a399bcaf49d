#include "compare/CCompareFilesDlg.h"

#include "DefaultButtonCheck.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

// Enter after typing a path compares; it never opens the file chooser beside the box.
TEST(CompareFilesDlg, EnterInTheLeftBoxPressesCompare)
{
    TestSupport::ClearSettings();
    CCompareFilesDlg dialog;
    EXPECT_EQ(TestSupport::ButtonsPressedByEnter(dialog), QStringList{QStringLiteral("Compare")});
}

} // namespace
