// Shell links, made by the program and read back by the shell's own object, and their records in the log.
#include "install/ShellLinks.h"

#include "app/RunState.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/LinkFile.h"

// The shell's object stores the show state in the file and doesn't read it back everywhere.
const size_t kShowStateOffset = 0x3C;

class ShellLinks : public MachineCorner
{
protected:
    static HRESULT Create(const std::wstring& strTarget, const std::wstring& strPath)
    {
        return CreateShellLink(strTarget.c_str(), strPath.c_str(), L"", SW_SHOWNORMAL, nullptr, nullptr);
    }
};

TEST_F(ShellLinks, LinkHoldsWhatItIsGiven)
{
    const struct
    {
        const wchar_t* pszTarget;
        int nShow;
        const wchar_t* pszArguments;
        const wchar_t* pszFolder;
    } kCases[] = { { L"\"C:\\App Files\\a.exe\"", SW_SHOWMAXIMIZED, L"-x \"y z\"", L"C:\\Pictures" },
                   { L"C:\\App Files\\a.exe\"", SW_SHOWMINNOACTIVE, L"", nullptr },
                   { L"\"C:\\App Files\\a.exe", SW_SHOWNORMAL, nullptr, L"C:\\" } };
    const CBoxRecorder boxes;
    for (const auto& row : kCases)
    {
        CreateShellLink(row.pszTarget, At(L"a.lnk").c_str(), L"A text", row.nShow, row.pszArguments, row.pszFolder);
        LINK link;
        ASSERT_TRUE(ReadLink(At(L"a.lnk"), link));
        EXPECT_EQ(link.strTarget, L"C:\\App Files\\a.exe");
        EXPECT_EQ(link.strDescription, L"A text");
        EXPECT_EQ(ReadBytes(At(L"a.lnk"))[kShowStateOffset], row.nShow);
        EXPECT_EQ(link.strArguments, row.pszArguments != nullptr ? row.pszArguments : L"");
        EXPECT_EQ(link.strFolder + link.strIcon, row.pszFolder != nullptr ? row.pszFolder : L"");
    }
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST_F(ShellLinks, OnlyASavedLinkIsRecorded)
{
    g_strInstDir = Folder().c_str();
    EXPECT_LT(Create(L"C:\\a.exe", At(L"missing\\a.lnk")), 0);
    {
        CCallHook create("ole32.dll", "CoCreateInstance", &CoCreateInstance);
        create.FailAll(0, E_OUTOFMEMORY);
        EXPECT_EQ(Create(L"C:\\a.exe", At(L"a.lnk")), E_OUTOFMEMORY);
    }
    EXPECT_GE(Create(L"C:\\a.exe", At(L"a.lnk")), 0);
    EXPECT_EQ(ReadBytes(At(L"LumUnInst.log")), "Shell Link: " + Bytes(At(L"a.lnk")) + "\r\n");
}

TEST_F(ShellLinks, TextThatDoesNotFitEndsTheProcess)
{
    const auto isRangeViolation = [](int nCode) { return static_cast<DWORD>(nCode) == 0xC0000409; };
    const std::wstring strFolder = At(std::wstring(200, L'f') + L"\\");
    MakeFolder(strFolder);
    const auto create = [&](size_t nTarget, size_t nPath)
    { Create(std::wstring(nTarget, L't'), strFolder + std::wstring(nPath - strFolder.size(), L'l')); };
    create(511, 259);
    EXPECT_EQ(ListTree(strFolder).size(), 1u);
    EXPECT_EXIT(create(20, 260), isRangeViolation, "");
    EXPECT_EXIT(create(512, 250), isRangeViolation, "");
}
