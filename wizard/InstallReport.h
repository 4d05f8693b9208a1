// What the wizard's last page tells when the install is over.
#pragma once

#include <afxwin.h>

// Puts the report's texts and controls on the page of the install.
void FillReport(const CWnd& page);
