#pragma once

#include <QString>

class CDocument;
class CWorkspace;

// Every document that loads a file, and every document saved, adds its file to the
// workspace: text files with their encoding, hex files marked binary when they look it.
namespace WorkspaceDocumentHook {

// Connects the document's load and save announcements to the workspace.
void Watch(CDocument* document, CWorkspace& workspace);

// What a loaded document adds: its type (1 binary, 0 text) and encoding code.
void LoadedArguments(const CDocument* document, const QString& path, int& type, int& encoding);

} // namespace WorkspaceDocumentHook
