// A corner's folder lies right below the drive, so that long relative paths fit below it.
#include "tests/support/Corner.h"

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
