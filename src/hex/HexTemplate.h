#pragma once

class CDocTemplate;
class QObject;

// The document template of binary documents: CHexDocument shown in a CHexFrame, new
// documents titled "Hex1", "Hex2" ... The application sets its MDI area and open
// options.
CDocTemplate* CreateHexTemplate(QObject* parent);
