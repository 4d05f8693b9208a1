#include "wizard/AgreementDlg.h"

#include <stdio.h>

#include "app/Product.h"
#include "foundation/Owners.h"
#include "res/resource.h"

BEGIN_MESSAGE_MAP(CAgreementDlg, CDialog)
END_MESSAGE_MAP()

static constexpr int kPageMargin = 4; // pixels from the frame's corner

LRESULT CReadingBox::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    const LRESULT nResult = CEdit::WindowProc(message, wParam, lParam);
    return message == WM_GETDLGCODE ? nResult & ~(DLGC_WANTALLKEYS | DLGC_HASSETSEL) : nResult;
}

void CAgreementDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_AGREEMENT_TEXT, m_box);
}

// The file is UTF-16 in the machine's byte order; a byte-order mark stays in the text. It is looked for in the current
// folder. Without the file the text is empty.
static CString ReadAgreement()
{
    CString strText;
    const CStreamOwner file(_wfopen(kAgreementFile, L"rb"));
    if (!file.IsOpen())
        return strText;

    fseek(file, 0, SEEK_END);
    const int cch = static_cast<int>(ftell(file) / sizeof(wchar_t));
    fseek(file, 0, SEEK_SET);
    wchar_t* pszText = strText.GetBuffer(cch + 1);
    const size_t cchRead = fread(pszText, sizeof(wchar_t), cch, file);
    pszText[cchRead] = 0;
    strText.ReleaseBuffer(static_cast<int>(cchRead));
    return strText;
}

BOOL CAgreementDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_strText = ReadAgreement();
    m_box.SetWindowText(m_strText);
    UpdateData(FALSE);
    m_box.SendMessage(EM_SETSEL, static_cast<WPARAM>(-1), 0);
    m_box.SendMessage(EM_SCROLLCARET, 0, 0);
    SetWindowPos(&wndTop, kPageMargin, kPageMargin, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    UpdateData(FALSE);
    return FALSE;
}
