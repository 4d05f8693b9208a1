// The framework's application object and message maps. Only what the program uses; one thread.
#pragma once

#include <afx.h>
#include <afxres.h>
#include <afxcoll.h>

class CCmdTarget;
class CWinApp;
class CWnd;

#define afx_msg

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

// Who would handle a command, for callers that ask without running it.
struct AFX_CMDHANDLERINFO
{
    CCmdTarget* pTarget;
    AFX_PMSG pmf;
};

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
    // Runs the handler of a command or notification and gives TRUE, or FALSE if no map has one. With pHandlerInfo the
    // handler is only reported.
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
    virtual int ExitInstance();
    // Without a main window the quit message is posted first, so that Run ends at once.
    virtual int Run();
    virtual int DoMessageBox(LPCTSTR lpszPrompt, UINT nType, UINT nIDPrompt);

    // Opens the help file that carries the executable's name, if there is one.
    afx_msg void OnHelp();

    HINSTANCE m_hInstance;
    LPTSTR m_lpCmdLine;
    int m_nCmdShow;
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

// Shows a box over the main or active window, with the application's name as caption. A style of OK, OK and Cancel, or
// Yes and No that names no icon gets the exclamation mark. Gives the button's id, 0 on failure.
int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
// The same with a text of the string table.
int AFXAPI AfxMessageBox(UINT nIDPrompt, UINT nType = MB_OK, UINT nIDHelp = static_cast<UINT>(-1));

// Fills in the application object's handles and names. Called by AfxWinMain, or by a program with a main of its own.
BOOL AFXAPI AfxWinInit(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
// The whole run of an application, from AfxWinInit on; gives the exit code.
int AFXAPI AfxWinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
