// The application object: the one place that decides what a run does.
#pragma once

#include <afxwin.h>

class CSetupApp : public CWinApp
{
public:
    CSetupApp();

    // Decides the role and carries the run to its end. Returns 0, or 1 if the user turned an install down; both end in
    // exit code 0.
    virtual BOOL InitInstance() override;

protected:
    DECLARE_MESSAGE_MAP()
};

extern CSetupApp theApp; // the one application object
