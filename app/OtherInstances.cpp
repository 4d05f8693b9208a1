#include "app/OtherInstances.h"

#include <afxwin.h>
#include <stdlib.h>

#include "app/InstanceManager.h"
#include "app/StartBox.h"
#include "foundation/Owners.h"
#include "res/resource.h"

// WM_CLOSE with this word tells the product that the setup asks; what it makes of that is its own business.
static constexpr WPARAM kClosedBySetup = 1001;
static constexpr DWORD kCloseGraceMs = 10;

int CountOtherInstances()
{
    return static_cast<int>(g_InstanceManager.GetInstanceCount()) - 1;
}

// A scan of its own: it has no stop at "-v", and the first argument doesn't count.
static bool IsQuestionSwitchedOff()
{
    for (int i = 2; i < __argc; ++i)
    {
        if (_wcsicmp(__wargv[i], L"/s") == 0 || _wcsicmp(__wargv[i], L"-s") == 0)
            return true;
    }
    return false;
}

static CString GetClosingQuestion(int nOthers)
{
    if (nOthers == 1)
        return LoadStartText(IDS_CLOSE_ONE_INSTANCE);
    wchar_t szText[1025]; // the most that wsprintfW writes
    wsprintfW(szText, LoadStartText(IDS_CLOSE_INSTANCES), nOthers);
    return szText;
}

bool ConfirmClosingInstances(int nOthers)
{
    if (IsQuestionSwitchedOff())
        return true;
    if (ShowStartBox(GetClosingQuestion(nOthers), MB_YESNO | MB_ICONEXCLAMATION) == IDYES)
        return true;
    ShowStartBox(LoadStartText(IDS_SETUP_ABORTED), MB_ICONINFORMATION);
    return false;
}

static void CloseByForce(DWORD nProcessId)
{
    PostMessageW(COXInstanceManager::FindMainWindow(nProcessId), WM_CLOSE, kClosedBySetup, 0);
    Sleep(kCloseGraceMs);

    const CHandleOwner process(OpenProcess(PROCESS_TERMINATE, FALSE, nProcessId));
    if (process.IsOpen())
        TerminateProcess(process, 0);
}

void CloseOtherInstances(int nOthers)
{
    CDWordArray anIds;
    if (!g_InstanceManager.GetInstanceIds(anIds))
        return;

    // One entry fewer than the list holds: this process is usually the last one. If later ones stand behind it, the
    // last of them is spared.
    for (int i = 0; i < nOthers; ++i)
    {
        if (anIds[i] != GetCurrentProcessId())
            CloseByForce(anIds[i]);
    }
}
