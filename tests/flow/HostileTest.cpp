// Lists and command lines that nobody would write, out of a number: nothing crashes, hangs, changes what lies outside
// of the package and the target, writes past a block of the heap or keeps one. A write past an array on the stack is
// seen only if it crashes. The environment's LUMACAP_HOSTILE_FIRST and LUMACAP_HOSTILE_LISTS choose other numbers and
// more.
#include <unordered_map>

#include "app/RunState.h"
#include "install/EarlierInstallation.h"
#include "install/PackageList.h"
#include "tests/support/Calls.h"
#include "tests/support/Dice.h"
#include "tests/support/World.h"
#include "uninstall/LogReplay.h"

namespace
{

// --- What nobody would write

const TEXTS kPrefixes =
    Split(L"File Copy: @File Copy x64: @File Copy ind: @File Copy prt: @File Overwrite: @File Del: @"
          L"Make Dir: @Made Dir: @Shell Link: @file copy: @File Copy:@ File Copy: @Made Dir@"
          L"Make Dir:\t@File Copy: File Del: ",
          L'@');
// `~` stands for the folder that the lists are let loose in; most of the others stay in it too.
const TEXTS kParts = Split(L"a.txt@b.txt@c.dll@sub\\d.txt@sub@sub/d.txt@*@*.*@?.txt@sub\\*@*\\a.txt@@ @.@..@a.txt.@nul@"
                           L"a:b@<@\"a.txt\"@%s%n@\\@\\\\@\\a.txt@sub\\\\d.txt@~@~\\@~\\to@~\\to\\a.txt@"
                           L"~\\from\\*@~\\group\\x.lnk@\u00E4\u00F6.txt@..\\x.txt@..\\..\\..\\windows\\win.ini@"
                           L"../../x@C:\\x.txt@C:\\*@\\windows\\*.ini@\\\\?\\C:\\windows\\win.ini@Z:\\tmp@C:@"
                           L"\\\\.\\pipe\\x@\\\\server\\share\\a.txt",
                           L'@');
const TEXTS kJoints = Split(L" > @>@ | @ |@ > > @\\@  @\t", L'@');
const TEXTS kEnds = Split(L"\n@\n@\n@\r\n@@\r@\n\n@\x1A\n@ \t\n", L'@');
const TEXTS kArguments =
    Split(L"-s@-v@-sconf@-runafter@-autostart@-nodeskico@-allusers@-instdir@-instport@-install@-sfxname=@"
          L"-sfxname=A\\b@C:\\T@C:\\T U\\\"@-delself@-inst@@\"@-@-SCONF@\\@-sfxname=\\@%s%n",
          L'@');

std::string Value(CDice& dice)
{
    if (dice.OneIn(40))
        return std::string(1 + dice.Below(1500), dice.OneIn(2) ? 'x' : '\\');
    std::string strValue = dice.OneOf(kParts);
    while (dice.OneIn(3))
        strValue += dice.OneOf(kJoints) + dice.OneOf(kParts);
    return strValue;
}

std::string Line(CDice& dice)
{
    if (!dice.OneIn(15))
        return dice.OneOf(kPrefixes) + Value(dice);
    std::string strGarbage;
    for (unsigned int n = dice.Below(dice.OneIn(20) ? 3000 : 60); n > 0; n--)
        strGarbage += static_cast<char>(dice.Below(256));
    return strGarbage;
}

std::string HostileList(unsigned int nSeed)
{
    CDice dice(nSeed);
    std::string strList;
    for (unsigned int n = dice.Below(6); n > 0; n--)
        strList += Line(dice) + dice.OneOf(kEnds);
    return strList;
}

TEXTS HostileArguments(unsigned int nSeed)
{
    CDice dice(nSeed);
    TEXTS arguments = { L"C:\\corner\\c\\setup.exe", L"-install" };
    for (unsigned int n = dice.Below(8); n > 0; n--)
        if (dice.OneIn(20))
            arguments.emplace_back(dice.Below(2000), static_cast<wchar_t>(1 + dice.Below(0xFFFE)));
        else
            arguments.push_back(Wide(dice.OneOf(kArguments)));
    return arguments;
}

// --- The guard of the heap: a pattern behind each block.

const std::string kTail(16, '\xA5');
std::unordered_map<char*, size_t> s_blocks; // not those from before, or a handler's
int s_nLive;
int s_nDamaged;

char* Allocate(size_t cb)
{
    char* const pBlock = static_cast<char*>(malloc(cb + kTail.size()));
    memset(pBlock + cb, kTail[0], kTail.size());
    s_blocks[pBlock] = cb;
    s_nLive++;
    return pBlock;
}

void Free(char* pBlock)
{
    const auto block = s_blocks.find(pBlock);
    if (block != s_blocks.end())
    {
        s_nDamaged += memcmp(pBlock + block->second, kTail.data(), kTail.size()) != 0;
        memset(pBlock, 0xDD, block->second);
        s_blocks.erase(block);
        s_nLive--;
    }
    free(pBlock);
}

// For the rest of the process, since blocks outlive tests. Handlers mustn't free what was allocated outside of them.
// What runs here calls neither calloc nor realloc.
void GuardHeap()
{
    static CCalls s_guard({
        { "malloc", [](CALL& call) { return reinterpret_cast<INT_PTR>(Allocate(call.args[0])); } },
        { "free", [](CALL& call) { return Free(reinterpret_cast<char*>(call.args[0])), 0; } },
    });
}

// --- The fence: what changes a file or folder is done only where that lies in the corner's folder `c`.

bool IsInside(const wchar_t* pszPath)
{
    static wchar_t s_szFull[4096];
    return GetFullPathNameW(pszPath, 4096, s_szFull, nullptr) < 4096 &&
           _wcsnicmp(s_szFull, L"C:\\corner\\c\\", 12) == 0;
}

class Hostile : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        GuardHeap();
        for (const auto& [pszName, nPaths] :
             { std::pair("CopyFileW", 2), std::pair("MoveFileW", 2), std::pair("DeleteFileW", 1),
               std::pair("RemoveDirectoryW", 1), std::pair("CreateDirectoryW", 1), std::pair("SetFileAttributesW", 1) })
            m_fence.On(pszName,
                       [this, nPaths = nPaths](CALL& call)
                       {
                           const bool bInside = IsInside(call.Text(0)) && (nPaths == 1 || IsInside(call.Text(1)));
                           (bInside ? m_nAllowed : m_nRefused)++;
                           return bInside || !m_bUp ? call.Pass() : 0;
                       });
        m_fence.On("MoveFileExW", [this](CALL&) { return m_nLeftToBoot++, TRUE; });
        m_fence.On("LoadLibraryW", [](CALL&) { return 0; });
    }

    void PutFiles() const
    {
        RemoveTree(At(L"c"));
        Make(L"c\\from\\a.txt|c\\from\\b.txt|c\\from\\c.dll|c\\from\\sub\\d.txt|c\\to\\a.txt");
    }

    // The earlier installation's group, the install and the removal, all by that list.
    void Walk(const std::string& strList, int nKind)
    {
        const std::wstring strPath = At(L"earlier\\LumUnInst.log");
        WriteBytes(strPath, Bytes(Replaced(Wide(strList), L"~", At(L"c"))));
        ResetProgramState();
        SetCurrentDirectoryW(At(L"c").c_str());
        g_nInstallKind = nKind;
        m_bUp = true;
        g_strInstDir = At(L"earlier").c_str();
        TakeOverGroup();
        m_nGroups += !g_strGroup.IsEmpty();
        g_strSourceDir = At(L"c\\from").c_str();
        g_strInstDir = At(L"c\\to").c_str();
        ProcessPackageList(strPath.c_str());
        RemoveLoggedLinks(strPath.c_str());
        RemoveLoggedFiles(strPath.c_str(), g_strInstDir);
        m_bUp = false;
        SetCurrentDirectoryW(m_strFolder.c_str());
        ResetProgramState();
    }

    static unsigned int Setting(const wchar_t* pszName, unsigned int nDefault)
    {
        const wchar_t* pszValue = _wgetenv(pszName);
        return pszValue != nullptr ? wcstoul(pszValue, nullptr, 10) : nDefault;
    }

    const unsigned int m_nFirst = Setting(L"LUMACAP_HOSTILE_FIRST", 1);
    const unsigned int m_nLists = Setting(L"LUMACAP_HOSTILE_LISTS", 20000);
    CCalls m_fence;
    bool m_bUp = false;
    unsigned int m_nAllowed = 0, m_nRefused = 0, m_nLeftToBoot = 0, m_nGroups = 0;
};

TEST_F(Hostile, ListsLeaveTheMachineItsFilesAndTheProcessItsMemory)
{
    MoveFolder(kMachine, L"Common Programs", At(L"c"));
    PutFiles();
    // What is allocated, or noted down by the system, once and for all.
    Walk("Shell Link: a", KIND_ALL_USERS);
    const TEXTS earlier = TakePicture();
    DWORD anHandles[2] = {};
    GetProcessHandleCount(GetCurrentProcess(), &anHandles[0]);
    for (unsigned int n = m_nFirst; n < m_nFirst + m_nLists; n++)
    {
        if (n % 100 == 0)
            PutFiles();
        if (n % 1000 == 0)
            printf("from number %u on\n", n), fflush(stdout); // for one that doesn't come back
        const int nLive = s_nLive;
        Walk(HostileList(n), n % 3 == 0 ? KIND_PORTABLE : KIND_ALL_USERS);
        ASSERT_EQ(s_nLive, nLive) << "blocks kept by number " << n;
        ASSERT_EQ(s_nDamaged, 0) << "blocks damaged by number " << n;
    }
    GetProcessHandleCount(GetCurrentProcess(), &anHandles[1]);
    EXPECT_EQ(anHandles[1], anHandles[0]);
    for (const std::wstring& strLine : Difference(earlier, TakePicture()))
        EXPECT_EQ(strLine.find(L" C:\\corner\\"), 1u) << Bytes(strLine);
    EXPECT_GT(m_nAllowed, m_nLists / 100);
    EXPECT_GT(m_nRefused, m_nLists / 100);
    EXPECT_GT(m_nLeftToBoot, m_nLists / 100);
    EXPECT_GT(m_nGroups, m_nLists / 2000);
}

// An install that ends ahead of its work: a wizard's, because the same version is declined, which gives its memory
// back; the others for want of a list.
TEST_F(Hostile, CommandLinesAreReadToTheirEnd)
{
    CopyOneFile(ProductOfVersion(L"8.21.0.0"), At(L"c\\Lumacap8.exe"));
    SetKeyText(kMachine, kProduct, L"Path", At(L"c"));
    const CCalls calls({ { "ShellExecuteW", [](CALL&) { return 0; } },
                         { "MessageBoxW", [](CALL&) { return IDNO; } },
                         { "DialogBoxIndirectParamW", [](CALL&) { return -1; } } });
    unsigned int nReturned = 0;
    const auto run = [&]
    {
        const int nCode = theApp.InitInstance();
        nReturned++;
        return nCode;
    };
    for (unsigned int n = m_nFirst; n < m_nFirst + m_nLists / 4; n++)
    {
        const CArguments arguments(HostileArguments(n));
        const int nLive = s_nLive;
        const unsigned int nReturnedBefore = nReturned;
        ASSERT_EQ(RunToExit(run), 1) << n;
        ResetProgramState();
        if (nReturned > nReturnedBefore && nReturnedBefore > 0) // the first keeps what is allocated once and for all
        {
            ASSERT_EQ(s_nLive, nLive) << "blocks kept by number " << n;
        }
        ASSERT_EQ(s_nDamaged, 0) << "blocks damaged by number " << n;
    }
    EXPECT_GT(nReturned, m_nLists / 40);
}

TEST_F(Hostile, GuardOfTheHeapSeesAByteBehindABlockAndABlockKept)
{
    volatile size_t cb = 10;
    const int nLive = s_nLive;
    auto* pBytes = static_cast<volatile char*>(malloc(cb));
    EXPECT_EQ(s_nLive, nLive + 1);
    pBytes[cb] = 'x';
    free(const_cast<char*>(pBytes));
    EXPECT_EQ(s_nDamaged, 1);
    s_nDamaged = 0;

    // A text that is added to itself loses its block while it is read.
    CString str(L"0123456789");
    str += str;
    EXPECT_STREQ(str, L"01234567890123456789");
}

} // namespace
