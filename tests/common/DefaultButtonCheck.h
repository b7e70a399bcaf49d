#pragma once

#include <QStringList>

class QDialog;

namespace TestSupport {

// Shows `dialog`, types Enter where its focus starts and returns the texts of the push
// buttons that pressed. The buttons' own work is cut off first, so a browse button
// that wrongly takes Enter shows up here instead of opening a file chooser.
QStringList ButtonsPressedByEnter(QDialog& dialog);

} // namespace TestSupport
