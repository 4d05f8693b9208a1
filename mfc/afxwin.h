// The framework's application object, message maps, windows and dialogs. Only what the program uses; one thread.
#pragma once

#include <afx.h>
#include <afxres.h>
#include <afxcoll.h>
#include <atltypes.h>

class CCmdTarget;
class CDataExchange;
class CWinApp;
class CWnd;

typedef void (CCmdTarget::*AFX_PMSG)();

enum AfxSig
{
    AfxSig_end = 0,
    AfxSigCmd_v
};

struct AFX_MSGMAP_ENTRY
{
    UINT nMessage;
    UINT nCode;
    UINT nID;
    UINT nLastID;
    UINT_PTR nSig;
    AFX_PMSG pfn;
};

struct AFX_MSGMAP
{
    const AFX_MSGMAP*(PASCAL* pfnGetBaseMap)();
    const AFX_MSGMAP_ENTRY* lpEntries;
};

struct AFX_CMDHANDLERINFO; // for callers that ask for a handler without running it: none here

// Ends in protected access, as in the framework.
#define DECLARE_MESSAGE_MAP()                                                                                          \
protected:                                                                                                             \
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();                                                               \
    virtual const AFX_MSGMAP* GetMessageMap() const;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                                         \
    const AFX_MSGMAP* theClass::GetMessageMap() const                                                                  \
    {                                                                                                                  \
        return GetThisMessageMap();                                                                                    \
    }                                                                                                                  \
    const AFX_MSGMAP* PASCAL theClass::GetThisMessageMap()                                                             \
    {                                                                                                                  \
        typedef baseClass TheBaseClass;                                                                                \
        static const AFX_MSGMAP_ENTRY entries[] = {

#define END_MESSAGE_MAP()                                                                                              \
    {                                                                                                                  \
        0, 0, 0, 0, AfxSig_end, nullptr                                                                                \
    }                                                                                                                  \
    }                                                                                                                  \
    ;                                                                                                                  \
    static const AFX_MSGMAP messageMap = { &TheBaseClass::GetThisMessageMap, entries };                                \
    return &messageMap;                                                                                                \
    }

// The code of menu commands, and of a button's click.
#define CN_COMMAND 0

#define ON_CONTROL(wNotifyCode, id, memberFxn)                                                                         \
    { WM_COMMAND,  static_cast<WORD>(wNotifyCode),  static_cast<WORD>(id), static_cast<WORD>(id),                      \
      AfxSigCmd_v, static_cast<AFX_PMSG>(memberFxn) },

#define ON_COMMAND(id, memberFxn) ON_CONTROL(CN_COMMAND, id, memberFxn)
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)

// Whatever takes commands by way of a message map.
class CCmdTarget : public CObject
{
    DECLARE_DYNAMIC(CCmdTarget)

public:
    // Runs the handler of a command or notification and gives TRUE, or FALSE if no map has one. pHandlerInfo is null.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    CCmdTarget() {}
    DECLARE_MESSAGE_MAP()
};

class CWinThread : public CCmdTarget
{
    DECLARE_DYNAMIC(CWinThread)

public:
    CWinThread();

    virtual BOOL InitInstance();
    // Pumps messages until WM_QUIT and gives the result of ExitInstance.
    virtual int Run();
    // The process's exit code: the quit message's, or 0.
    virtual int ExitInstance();
    // m_pMainWnd or, without one, the thread's active window. Null without either.
    virtual CWnd* GetMainWnd();

    // Cleared by the framework, which then also posts WM_QUIT, when this window is destroyed.
    CWnd* m_pMainWnd;

private:
    int m_nQuitCode;
};

// The application: one object, made before the framework starts. It frees its names with free().
class CWinApp : public CWinThread
{
    DECLARE_DYNAMIC(CWinApp)

public:
    explicit CWinApp(LPCTSTR lpszAppName = NULL);
    virtual ~CWinApp();

    virtual BOOL InitInstance();
    // Without a main window the quit message is posted first, so that Run ends at once.
    virtual int Run();

    // Opens the help file that carries the executable's name, if there is one.
    void OnHelp();

    // Caption of message boxes. Null until the start, which takes the text of AFX_IDS_APP_TITLE or m_pszExeName.
    LPCTSTR m_pszAppName;
    // Name of the executable without folder and extension.
    LPCTSTR m_pszExeName;
    LPCTSTR m_pszHelpFilePath;
    DWORD m_dwRestartManagerSupportFlags;
};

class AFX_MODULE_STATE
{
public:
    CWinApp* m_pCurrentWinApp;
    HINSTANCE m_hCurrentInstanceHandle;
    HINSTANCE m_hCurrentResourceHandle;
};

AFX_MODULE_STATE* AFXAPI AfxGetModuleState();
CWinApp* AFXAPI AfxGetApp();
CWnd* AFXAPI AfxGetMainWnd();

// A window as an object. The object that a window was attached to is found by its handle for as long as the window
// lives; any other window gets a temporary object, good until the window is gone.
class CWnd : public CCmdTarget
{
    DECLARE_DYNAMIC(CWnd)

public:
    static const CWnd wndTop;

    CWnd();
    // Destroys an attached window.
    virtual ~CWnd();

    HWND GetSafeHwnd() const { return m_hWnd; }
    // Null only for a null handle.
    static CWnd* PASCAL FromHandle(HWND hWnd);
    static CWnd* PASCAL FromHandlePermanent(HWND hWnd);
    // The window that a box or dialog belongs to: the last popup of the main window; null without a main window.
    static CWnd* PASCAL GetSafeOwner();

    // Attaches the window and passes its messages through WindowProc.
    BOOL SubclassWindow(HWND hWnd);
    // Destroys the window, not the object. False without a window; a class may refuse in the same way.
    virtual BOOL DestroyWindow();

    CWnd* GetDlgItem(int nID) const;
    CWnd* GetParent() const;
    int GetDlgItemText(int nID, CString& rString) const;
    void SetDlgItemText(int nID, LPCTSTR lpszString);

    void GetWindowText(CString& rString) const;
    int GetWindowTextLength() const;
    void SetWindowText(LPCTSTR lpszString);
    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowEnabled() const;
    BOOL ShowWindow(int nCmdShow);
    CWnd* SetFocus();
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    void GetWindowRect(LPRECT lpRect) const;
    void ScreenToClient(LPRECT lpRect) const;
    void UpdateWindow();
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    // Moves data between controls and members through DoDataExchange: to the members if bSaveAndValidate. False if a
    // control is missing.
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);

    HWND m_hWnd;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // TRUE if the command was handled.
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    void OnNcDestroy();
    DECLARE_MESSAGE_MAP()

private:
    BOOL Attach(HWND hWndNew);
    HWND Detach();
    HWND UnsubclassWindow();
    static LRESULT CALLBACK Dispatch(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    static CWnd* FindIn(CWnd* pList, HWND hWnd);
    static void DropTemporary();

    static CWnd* s_pAttached;
    static CWnd* s_pTemporary;
    CWnd* m_pNext;
    WNDPROC m_pfnSuper;
};

class CButton : public CWnd
{
    DECLARE_DYNAMIC(CButton)
};

class CStatic : public CWnd
{
    DECLARE_DYNAMIC(CStatic)
};

class CEdit : public CWnd
{
    DECLARE_DYNAMIC(CEdit)
};

// A dialog, modal by DoModal or modeless by Create. The keyboard is the platform's: a page that is a child dialog with
// DS_CONTROL takes part in its modal frame's navigation.
class CDialog : public CWnd
{
    DECLARE_DYNAMIC(CDialog)

public:
    CDialog();
    explicit CDialog(UINT nIDTemplate);
    virtual ~CDialog();

    // True if the window came to be. Without a parent it belongs to the main window.
    BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = NULL);
    // Gives what EndDialog was given; -1 if the dialog can't be shown.
    virtual INT_PTR DoModal();
    void EndDialog(int nResult);

    // Fills the controls by UpdateData(FALSE), and ends the dialog with -1 if that fails. FALSE from an override says
    // that it has set the focus itself.
    virtual BOOL OnInitDialog();
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    // Saves the controls by UpdateData(TRUE) and ends the dialog with IDOK, unless that fails.
    virtual void OnOK();
    // Ends the dialog with IDCANCEL.
    virtual void OnCancel();
    DECLARE_MESSAGE_MAP()

private:
    static INT_PTR CALLBACK Initialize(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

    UINT m_nIDTemplate;
};

// One run of UpdateData, for DoDataExchange and the functions below.
class CDataExchange
{
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate);

    BOOL m_bSaveAndValidate;
    CWnd* m_pDlgWnd;
};

// Each ends in an exception, which UpdateData catches, if the control is missing.
// Subclasses the control at the first run.
void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
void AFXAPI DDX_Check(CDataExchange* pDX, int nIDC, int& value);
// nIDC is the first radio button of its group; the value is the index of the one that is set, -1 for none.
void AFXAPI DDX_Radio(CDataExchange* pDX, int nIDC, int& value);
void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, CString& value);

// Shows a box over the main or active window, with the application's name as caption. A style of OK, OK and Cancel, or
// Yes and No that names no icon gets the exclamation mark. Gives the button's id, 0 on failure.
int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType = MB_OK);
// The same with a text of the string table.
int AFXAPI AfxMessageBox(UINT nIDPrompt, UINT nType = MB_OK);

// Fills in the application object's handles and names. Called by AfxWinMain, or by a program with a main of its own.
BOOL AFXAPI AfxWinInit(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
// The whole run of an application, from AfxWinInit on; gives the exit code.
int AFXAPI AfxWinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
