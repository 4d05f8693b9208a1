// The built setup as a user meets it: a process of its own, its windows driven from outside by clicks and by the keys
// of the desktop; then what it left on the machine. Controls go by their ids.
#include "tests/support/Windows.h"

#include <algorithm>
#include <optional>

#include "tests/support/World.h"

namespace
{

class WizardUser : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        PutPackage();
        SetEnvironmentVariableW(L"LUMACAP_REPORT", At(L"report").c_str());
        SetCurrentDirectoryW(At(L"package").c_str());
        SetKeyText(HKEY_CLASSES_ROOT, L"http\\shell\\open\\command", L"", L"cmd.exe /c echo \"%1\">" + At(L"web"));
    }

    void Start(const std::wstring& strSwitches = L"")
    {
        m_run.emplace(L"\"" + At(L"package\\setup.exe") + L"\" " + strSwitches);
        m_run->Start();
    }
    void Meet() { m_wizard.emplace(0, L"Lumacap Setup"); }
    void Next(int nControl) const
    {
        m_wizard->Click(IDOK);
        ASSERT_TRUE(WaitUntil([&] { return m_wizard->IsVisible(nControl); })) << nControl;
    }

    // The links, the kind that is registered and the starts that the product has told of, once nothing runs any more.
    std::wstring Outcome()
    {
        EXPECT_TRUE(m_run->WaitForFamily());
        EXPECT_EQ(m_run->ExitCode(), 0u);
        TEXTS lines = Split(IsThere(At(L"report")) ? Wide(ReadBytes(At(L"report"))) : L"", L'\n');
        for (const std::wstring& strPath : ListTree(m_strFolder))
            if (strPath.find(L".lnk") != std::wstring::npos)
                lines.push_back(strPath);
        lines.push_back(KeyText(kMachine, kProduct, L"AllUsers"));
        std::sort(lines.begin(), lines.end());
        return Replaced(Join(lines), At(L"Program Files\\Lumacap 8"), L"~");
    }

    // The codes of keys, & and ( for up and down; with % before it one is pressed together with Alt.
    void Press(const std::string& strKeys) const
    {
        for (const char chKey : strKeys)
        {
            keybd_event(chKey == '%' ? VK_MENU : chKey, 0, 0, 0);
            if (chKey == '%')
                continue;
            keybd_event(chKey, 0, KEYEVENTF_KEYUP, 0);
            keybd_event(VK_MENU, 0, KEYEVENTF_KEYUP, 0);
        }
    }

    std::optional<CProcessRun> m_run;
    std::optional<CWindowDriver> m_wizard;
};

} // namespace

TEST_F(WizardUser, KeysAloneMakeEveryChoice)
{
    // The control that has the focus after the keys, and after each Tab from there on; none has it in a box.
    const struct
    {
        std::string strKeys;
        std::vector<int> ring;
    } kSteps[] = {
        { "", { 1, 2, 1 } },
        { "%N", { 1, 2, 1000, 3, 1 } },
        { "\t\t", { 1000 } },
        { "\x1B", { 0 } },
        { "\r", { 1000 } }, // No
        { "\r", { 1, 2, 1002, 1005, 3, 1 } },
        { "\t\t(", { 1003 } },
        { "&&", { 1001 } },
        { "%R", { 0 } },
        { "\x1B", { 1005 } },
        { "\t\t\t\t\t", { 1005 } },
        { "\r", { 0 } },
        { "\x1B", { 1005 } },
        { "%N", { 1, 2, 1000, 1008, 1009, 3, 1 } },
        { "\t\tXY\r", { 0 } },
        { "\rZ 1\t \t ", { 1009 } },
        { "\r", { 1, 2, 3, 1 } },
        { "\r\t", { 1012, 1, 1012 } },
    };
    Start();
    Meet();
    SetForegroundWindow(m_wizard->Window());
    EXPECT_TRUE(WaitUntil([&] { return GetForegroundWindow() == m_wizard->Window(); }));
    for (const auto& step : kSteps)
    {
        Press(step.strKeys);
        for (const int& nId : step.ring)
        {
            Press(&nId != step.ring.data() ? "\t" : "");
            ASSERT_TRUE(WaitUntil([&] { return m_wizard->FocusId() == nId; })) << step.strKeys << nId;
        }
        EXPECT_EQ(IsWindowEnabled(m_wizard->Window()), step.ring[0] != 0) << step.strKeys;
        EXPECT_EQ(step.strKeys == "\t\t" ? Send(m_wizard->Control(1000), EM_GETSEL, 0, 0) : 0, 0);
    }
    Press(" %F");
    ASSERT_TRUE(WaitUntil([&] { return m_run->FamilyIds().size() == 1 && m_run->WaitForEnd(0); }));
    PostMessageW(CWindowDriver(m_run->FamilyIds()[0], L"Lumacap 8").Window(), WM_CLOSE, 0, 0);
    EXPECT_EQ(Outcome(),
              L"|\"~\\Lumacap8.exe\"\t~\r|\"~\\Lumacap8.exe\" -regonly\t~\r|A|user\\Programs\\Startup\\Lumacap "
              L"8.lnk|user\\Programs\\xyz 1\\Lumacap 8 Help.lnk|user\\Programs\\xyz 1\\Lumacap 8.lnk");
    EXPECT_EQ(ReadBytes(At(L"web")), "\"http://www.lumacap.example/lcdx/InstScript.asp?src=setup&Lang=EN\"\r\n");
}

TEST_F(WizardUser, UntickedRestartAndCancelStartNothing)
{
    const wchar_t* const pszLeft =
        L"|\"~\\Lumacap8.exe\" -regonly\t~\r|B|all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Lumacap 8\\Lumacap 8 "
        L"Help.lnk|all\\Programs\\Lumacap 8\\Lumacap 8.lnk";
    Make(L"Program Files\\Lumacap 8\\capff.json", "");
    const auto hold = HoldFile(At(L"Program Files\\Lumacap 8\\capff.json"));
    Start(L"-sconf -runafter");
    Meet();
    EXPECT_EQ(m_wizard->Text(1012), L"Restart the computer when I click \"Finish\"");
    m_wizard->Click(1012);
    m_wizard->Click(IDOK);
    EXPECT_EQ(Outcome(), pszLeft);

    CopyOneFile(ProductOfVersion(L"8.19.9.0"), At(L"package\\Lumacap8.exe"));
    Start(L"-runafter");
    EXPECT_EQ(AnswerBox(m_run->Id(), IDYES).substr(0, 40), L"Lumacap 8: Lumacap v. 8.20.01.00 is alre");
    Meet();
    EXPECT_EQ(m_wizard->Text(1003).substr(0, 22), L"Lumacap ver. 8.19.09 \n");
    m_wizard->Click(IDCANCEL);
    EXPECT_EQ(AnswerBox(m_run->Id(), IDYES), L"Lumacap 8: Do you really want to cancel Lumacap setup? [&No &Yes ]");
    EXPECT_EQ(Outcome(), pszLeft);
    EXPECT_FALSE(IsThere(At(L"web")));
}

TEST_F(WizardUser, ClicksPutAPortableProductWhereTheDialogSays)
{
    // The dialog doesn't find a folder whose times have changed since its first look: the target stands already.
    Make(L"Program Files\\Lumacap 8\\a.txt|Program Files\\Stick\\a.txt");
    const std::wstring strPlace = At(L"Program Files\\Stick\\New Folder");
    Start();
    Meet();
    Next(1000);
    EXPECT_EQ(m_wizard->Text(1000).substr(0, 27), L"\xFEFFLUMACAP 8 LICENSE AGREEMEN");
    Next(1005);
    m_wizard->Click(1003);
    for (const int nButton : { IDCANCEL, IDOK })
    {
        // The dialog takes a folder that was looked into since for another one: all are looked into before.
        ListTree(m_strFolder);
        m_wizard->Click(1005);
        const CWindowDriver browser(m_run->Id(), L"Browse for Folder");
        EXPECT_TRUE(browser.AwaitText(0x3745, L"Lumacap 8"));
        browser.Press(VK_DOWN);
        EXPECT_TRUE(browser.AwaitText(0x3745, L"Stick"));
        if (nButton == IDOK)
        {
            browser.Click(0x3746);
            EXPECT_TRUE(browser.AwaitText(0x3745, L"New Folder"));
            browser.Press(VK_RETURN); // takes the name
        }
        browser.Click(nButton);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindow(browser.Window()); }));
    }
    EXPECT_TRUE(m_wizard->AwaitText(1013, strPlace + L"\\Lumacap 8"));
    EXPECT_FALSE(IsThere(strPlace));
    Next(1011);
    m_wizard->Click(IDOK);
    EXPECT_TRUE(
        m_wizard->AwaitText(1009, L"To run portable Lumacap, double-click 'StartLC8' icon located at:\n" + strPlace));
    m_wizard->Click(IDOK);
    EXPECT_EQ(Outcome(), L"(absent)");
    EXPECT_TRUE(IsThere(strPlace + L"\\StartLC8.exe"));
}

TEST_F(WizardUser, OneFileGoesTheSameWayAndIsGoneWithItsEnd)
{
    CopyOneFile(BuildFolder() + L"\\dist\\Lumacap8Setup.exe", At(L"package\\setup.exe"));
    Make(L"package\\Lumacap8.ini", "");
    RemoveTree(At(L"package\\agreement.txt"));
    Start();
    Meet();
    m_wizard->Click(IDCANCEL);
    AnswerBox(0, IDYES);
    EXPECT_EQ(Outcome(), L"(absent)");

    Start();
    Meet();
    DWORD nSetup = 0;
    GetWindowThreadProcessId(m_wizard->Window(), &nSetup);
    TerminateProcess(CHandleOwner(OpenProcess(PROCESS_TERMINATE, FALSE, nSetup)), 7);
    m_run->WaitForEnd();
    EXPECT_EQ(m_run->ExitCode(), 7u);

    Start(L"-v");
    Meet();
    Next(1000);
    EXPECT_EQ(m_wizard->Text(1000).substr(1, 9), L"LUMACAP 8"); // the agreement, behind its mark
    for (const int nControl : { 1005, 1008, 1011, 1012 })
        Next(nControl);
    m_wizard->Click(IDOK);
    EXPECT_NE(Outcome(), L"(absent)");
    EXPECT_TRUE(IsThere(At(L"Program Files\\Lumacap 8\\Lumacap8.ini")));

    Make(L"package\\mine\\Lumacap8.ini", "mine");
    Start(L"-sfxname=mine\\any -sconf");
    Meet();
    m_wizard->Click(IDOK);
    EXPECT_NE(Outcome(), L"(absent)");
    EXPECT_EQ(ReadBytes(At(L"Program Files\\Lumacap 8\\Lumacap8.ini")), "mine");
    m_run.reset();
    EXPECT_EQ(Tree(L"temp"), L"");
}
