// A corner's folder lies right below the drive, so that long relative paths fit below it.
#include "tests/support/Corner.h"

#include <windows.h>
#include <shlobj.h>

#include "tests/support/PendingList.h"

CCorner::CCorner()
{
    static int s_nCorners = 0;
    do
        m_strFolder = L"C:\\corner" + std::to_wstring(++s_nCorners);
    while (IsThere(m_strFolder));
    MakeFolder(m_strFolder);
}

CCorner::~CCorner()
{
    RemoveTree(m_strFolder);
}

void MachineCorner::SetUp()
{
    wchar_t szFolder[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, szFolder);
    m_strStartFolder = szFolder;
    ResetProgramState();
    ClearPending();
}

void MachineCorner::TearDown()
{
    SetCurrentDirectoryW(m_strStartFolder.c_str());
    ResetProgramState();
    ClearPending();
}

static void RemoveLinks()
{
    for (const int nFolder : { CSIDL_COMMON_PROGRAMS, CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_COMMON_STARTUP,
                               CSIDL_PROGRAMS, CSIDL_DESKTOPDIRECTORY, CSIDL_STARTUP })
    {
        wchar_t szFolder[MAX_PATH];
        if (FAILED(SHGetFolderPathW(nullptr, nFolder, nullptr, SHGFP_TYPE_CURRENT, szFolder)))
            continue;
        for (const wchar_t* pszName : { L"\\Lumacap 8", L"\\Lumacap 8.lnk", L"\\Lumacap 8 Help.lnk" })
            RemoveTree(szFolder + std::wstring(pszName));
    }
}

// The copies of the uninstaller, which wait there for the boot.
static void RemoveTemporaryCopies()
{
    wchar_t szFolder[MAX_PATH];
    GetTempPathW(MAX_PATH, szFolder);
    for (const std::wstring& strName : ListTree(szFolder))
        if (strName.compare(0, 3, L"uni") == 0)
            RemoveTree(szFolder + strName);
}

void ProductCorner::SetUp()
{
    MachineCorner::SetUp();
    m_pRegistry = std::make_unique<CRegistryCorner>();
    m_pRegistry->ClearProduct();
}

void ProductCorner::TearDown()
{
    RemoveTree(m_strProduct);
    RemoveLinks();
    RemoveTemporaryCopies();
    m_pRegistry.reset();
    MachineCorner::TearDown();
}
