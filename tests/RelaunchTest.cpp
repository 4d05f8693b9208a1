// The two stages of a removal as the processes that they are: the question, the hand-over, what each stage leaves.
#include <gtest/gtest.h>
#include <winternl.h>

#include "foundation/Owners.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/Machine.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"

namespace
{

const wchar_t kQuestion[] = L"Lumacap Setup: This will completely uninstall Lumacap 8.\nDo you want to continue?";
const wchar_t kClosingMessage[] =
    L"Lumacap 8: Lumacap 8 has been completely uninstalled from this computer.\n\nIf some Lumacap "
    L"files could not be deleted at this time, they will be removed upon the reboot of "
    L"this computer.";

// Read out of the process's own memory.
std::wstring CommandLineOf(DWORD nProcessId)
{
    const auto pfnQuery = reinterpret_cast<decltype(&NtQueryInformationProcess)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    const CHandleOwner process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, nProcessId));
    PROCESS_BASIC_INFORMATION basic = {};
    PEB peb = {};
    RTL_USER_PROCESS_PARAMETERS parameters = {};
    wchar_t szText[1024] = L"";
    pfnQuery(process, ProcessBasicInformation, &basic, sizeof(basic), nullptr);
    ReadProcessMemory(process, basic.PebBaseAddress, &peb, sizeof(peb), nullptr);
    ReadProcessMemory(process, peb.ProcessParameters, &parameters, sizeof(parameters), nullptr);
    ReadProcessMemory(process, parameters.CommandLine.Buffer, szText, parameters.CommandLine.Length, nullptr);
    return szText;
}

class Relaunch : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.ClearProduct();
        MakeFolder(At(L"temp"));
        MakeProduct(L"product");
    }

    // A product of nothing but its uninstaller.
    void MakeProduct(const std::wstring& strFolder)
    {
        m_strProduct = At(strFolder);
        CopyOneFile(BuildFolder() + L"\\setup.exe", Uninstaller());
    }
    std::wstring Uninstaller() const { return m_strProduct + L"\\LumUnInst.exe"; }

    // The first stage, with a temporary folder of its own.
    std::unique_ptr<CProcessRun> Start(const std::wstring& strArguments, const std::wstring& strTemp = L"temp") const
    {
        auto pRun = std::make_unique<CProcessRun>(L"\"" + Uninstaller() + L"\" " + strArguments);
        pRun->AddEnvironment(L"TMP", At(strTemp));
        pRun->SetFolder(m_strProduct);
        pRun->Start();
        return pRun;
    }

    // A second stage started by hand.
    std::wstring SecondStage(const std::wstring& strArguments) const
    {
        CopyOneFile(BuildFolder() + L"\\setup.exe", At(L"stage.exe"));
        return At(L"stage.exe") + L" " + strArguments;
    }

    CRegistryCorner m_registry;
    std::wstring m_strProduct;
};

TEST_F(Relaunch, SecondStageIsGivenTheUninstallerAndTheSilence)
{
    const struct
    {
        const wchar_t* pszTemp;
        const wchar_t* pszProduct;
        const wchar_t* pszArguments;
        bool bSilent;
    } cases[] = {
        { L"temp", L"product", L"-delself", true },
        { L"temp with blanks", L"product", L"-sconf -v", true },
        { L"temp", L"product with blanks", L"-v", false },
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(testing::PrintToString(row.pszTemp) + testing::PrintToString(row.pszProduct));
        MakeFolder(At(row.pszTemp));
        MakeProduct(row.pszProduct);
        const auto pRun = Start(row.pszArguments, row.pszTemp);
        if (!row.bSilent)
            ExpectBox(pRun->Id(), IDYES);

        // On a busy machine the second stage may be gone by the next line: it is asked while it is found.
        std::wstring strCommandLine;
        ASSERT_TRUE(WaitUntil(
            [&strCommandLine]
            {
                const auto ids = ProcessesNamed(L"uni*.tmp");
                if (ids.size() == 1)
                    strCommandLine = CommandLineOf(ids[0]);
                return !strCommandLine.empty();
            }));
        const std::wstring strCopy = At(row.pszTemp) + L"\\" + TreeText(At(row.pszTemp));
        EXPECT_EQ(ReadBytes(strCopy), ReadBytes(BuildFolder() + L"\\setup.exe"));
        const auto quote = [](const std::wstring& strPath)
        { return strPath.find(L' ') == std::wstring::npos ? strPath : L"\"" + strPath + L"\""; };
        EXPECT_EQ(strCommandLine, quote(strCopy) + L" -delself " + quote(Uninstaller()) + (row.bSilent ? L" -s" : L""));

        ASSERT_TRUE(pRun->WaitForFamily()) << "the second stage stays, perhaps with a message";
        EXPECT_FALSE(IsThere(m_strProduct)) << "the current folder of the first stage";
        ASSERT_FALSE(PendingEntries().empty());
        EXPECT_EQ(PendingEntries()[0], (PENDING{ strCopy, L"" })) << "the copy's end is arranged before all else";
        RestartMachine();
        EXPECT_FALSE(IsThere(strCopy));
    }
}

// "-delself" makes a second stage only in lower case, in the first place and with a path behind it.
TEST_F(Relaunch, ProductStaysAfterANoAndWithoutATemporaryFolder)
{
    EXPECT_TRUE(Start(L"", L"missing")->WaitForFamily()) << "nothing is said";
    const wchar_t* const kAsking[] = { L"-v", L"-s -V", L"-DELSELF C:\\x\\y.exe -v", L"-s -delself C:\\x\\y.exe -v" };
    std::vector<std::unique_ptr<CProcessRun>> runs; // all at a time
    for (const wchar_t* pszArguments : kAsking)
        runs.push_back(Start(pszArguments));
    for (size_t i = 0; i < runs.size(); i++)
    {
        SCOPED_TRACE(testing::PrintToString(kAsking[i]));
        const BOX box = ExpectBox(runs[i]->Id(), IDNO);
        EXPECT_EQ(box.strCaption + L": " + box.strText, kQuestion);
        EXPECT_EQ(box.buttons, (std::vector<int>{ IDYES, IDNO }));
        EXPECT_EQ(box.nDefault, IDNO);
        ASSERT_TRUE(runs[i]->WaitForFamily());
    }
    EXPECT_EQ(TreeText(Folder()), L"product\\ product\\LumUnInst.exe temp\\");
    EXPECT_TRUE(PendingEntries().empty());
}

TEST_F(Relaunch, ClosingMessageComesOnlyFromASecondStageThatIsToldToSpeak)
{
    CProcessRun run(SecondStage(L"-delself " + Uninstaller() + L" -v"));
    run.Start();
    const BOX box = ExpectBox(run.Id(), IDOK);
    EXPECT_EQ(box.strCaption + L": " + box.strText, kClosingMessage);
    EXPECT_EQ(box.buttons, (std::vector<int>{ IDOK }));
    EXPECT_TRUE(run.WaitForFamily());
    EXPECT_EQ(run.ExitCode(), 0u);
}

} // namespace
