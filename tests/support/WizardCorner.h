// A corner with the wizard's frame in this process, without its modal loop: a step returns when its page stands.
// Message boxes, the folder browser, the web browser and the end of the frame are recorded and don't happen.
#pragma once

#include <afxwin.h>

#include <shlobj.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/RunState.h"
#include "res/resource.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "wizard/SetupDlg.h"

// Above the folder that the wizard takes for its default one; it doesn't exist.
const wchar_t kTargetName[] = L"target\\Lumacap 8";

class WizardCorner : public MachineCorner
{
protected:
    WizardCorner();
    void SetUp() override;    // a first install by the wizard, from a package of one file
    void TearDown() override; // the frame goes first

    void Open(int nPage = -1); // a new frame, on the page behind that number
    void OpenOn(char chPage);  // a new frame, moved forward to the page
    void Next() const { Command(IDOK); }
    void Back() const { Command(IDC_SETUP_BACK); }
    void Command(int nId) const;
    void Press(WPARAM nKey) const; // goes to the control with the focus, by way of the dialog's keyboard

    // I, A, F, G, R or D: introduction, agreement, folder, group, ready, done. A ? if not exactly one page is shown.
    char Page() const;
    HWND PageWindow() const;  // also one that isn't shown yet; null if there isn't exactly one
    HWND Item(int nId) const; // on the page or, where that has none, on the frame
    HWND Side() const { return GetDlgItem(m_pFrame->m_hWnd, IDC_SETUP_SIDE); } // shares its id with another control
    static std::wstring TextOf(HWND hWnd);
    std::wstring Text(int nId) const;
    std::wstring Title() const;
    static bool IsShown(HWND hWnd); // by its own style
    bool IsShown(int nId) const { return IsShown(Item(nId)); }
    bool IsTicked(int nId) const { return SendMessageW(Item(nId), BM_GETCHECK, 0, 0) == BST_CHECKED; }
    void Type(int nId, const std::wstring& strText) const { SetWindowTextW(Item(nId), strText.c_str()); }
    void Click(int nId) const { SendMessageW(Item(nId), BM_CLICK, 0, 0); }

    void AnswerBoxes(int nAnswer); // from here on; the record of boxes starts anew
    const std::vector<RECORDED_BOX>& Boxes() const { return m_boxes->Boxes(); }

    // Presses Browse; the user chooses that existing folder, or cancels if it is empty.
    void Browse(const std::wstring& strFolder);

    std::unique_ptr<CSetupDlg> m_pFrame;
    std::vector<INT_PTR> m_ends;                 // what the frame ended with
    std::vector<std::wstring> m_addresses;       // web pages that were opened
    std::function<void(BROWSEINFOW*)> m_browser; // called while the folder browser is open

private:
    std::wstring m_strChosen;
    std::optional<CBoxRecorder> m_boxes;
    CCallHook<decltype(&EndDialog)> m_end;
    CCallHook<decltype(&ShellExecuteW)> m_web;
    CCallHook<decltype(&SHBrowseForFolderW)> m_browse;
};
