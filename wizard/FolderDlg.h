// The page of the install kind and the target folder. The folder of the run state changes at once, in Browse; the kind
// only when the page is left.
#pragma once

#include <afxwin.h>

extern bool g_bPortableChosen; // a portable folder was chosen by Browse during this visit of the page

class CFolderDlg : public CDialog
{
public:
    CFolderDlg();
    virtual ~CFolderDlg() {}
    virtual BOOL DestroyWindow() override;

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;

private:
    void OnBrowse();
    void OnKindChanged();
    void UpdateTexts();
    void TakeFolder(CString strFolder);

    CString m_strHint;
    CStatic m_path;
    int m_nKind; // the chosen radio button, by its place in the group: an InstallKind, or -1
};
