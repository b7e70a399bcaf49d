#pragma once

class IShell;

// Print, Print Preview, Print Direct, Page Setup and Export as PDF for text documents.
void InstallPrinting(IShell& shell);
