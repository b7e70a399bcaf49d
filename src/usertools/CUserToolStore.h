#pragma once

#include "usertools/UserTool.h"

// Reads and writes the tool list in the settings section "Tools": a "Count" value and one
// numbered group per tool ("Tools\1", "Tools\2", ...), so that a hand edit or a newer
// version adding a value never shifts the others.
namespace CUserToolStore {

QList<UserTool> Load();
// Replaces every stored tool; at most UserTools::MaxTools are kept.
bool Save(const QList<UserTool>& tools);

} // namespace CUserToolStore
