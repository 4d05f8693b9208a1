// An upgrade that is ended in its midst and run once more: it leaves what an undisturbed one leaves, but for three
// things that nothing tells the second run of. What the ended one leaves to the boot are the list's folders in their
// order, as far as it came; that part of the boot list is looked at and taken away ahead of the second run.
#include "tests/support/InterruptionCorner.h"
#include "tests/support/PendingList.h"

namespace
{

class InterruptedUpgrade : public InterruptionCorner
{
protected:
    // An older product that starts with the system, and what the newer list takes away.
    void InstallOlder() const
    {
        m_package.SetProductVersion(L"8.19.9.0");
        Run(Setup() + L" -autostart");
        CopyOneFile(PackageFolder() + L"\\Lumacap8.exe", m_package.At(L"Lumacap8.exe"));
        WriteBytes(m_strTarget + L"\\Lumacap7.chm", "");
        WriteBytes(m_strTarget + L"\\Lang\\Dutch.lng", "");
    }

    // The upgrade tries whether it can write in the Startup folder. Nobody looks for the file of an earlier try.
    void RemoveProbe() const
    {
        const std::wstring strStartup = OfAll(L"Programs\\Startup");
        for (const std::wstring& strName : ListTree(strStartup))
            if (strName.compare(0, 3, L"h5t") == 0)
                RemoveTree(strStartup + L"\\" + strName);
    }

    // The folders that hold something can't go before the boot.
    void ExpectPendingOfEnded() const
    {
        const std::wstring strPending = PendingText(Folder());
        const std::wstring strAll = m_strRepeatPending + L" ";
        EXPECT_TRUE(strPending.empty() || strAll.compare(0, strPending.size() + 1, strPending + L" ") == 0)
            << Bytes(strPending);
        ClearPending();
    }

    // An empty folder of the list goes and is made anew. One that is away already is asked for at the boot.
    void ExpectPending(bool bFolderWasAway) const
    {
        const std::wstring strFolder = L"-Program Files\\Lumacap 8\\Presets ";
        std::wstring strPending = PendingText(Folder());
        const size_t nFolder = strPending.find(strFolder);
        EXPECT_EQ(nFolder != std::wstring::npos, bFolderWasAway);
        if (nFolder != std::wstring::npos)
            strPending.erase(nFolder, strFolder.size());
        EXPECT_EQ(strPending, m_strRepeatPending);
        ClearPending();
    }

    void Remove() const
    {
        Run(SecondStage());
        ExpectRemoved();
    }
};

TEST_F(InterruptedUpgrade, IsMadeUpForByTheNextButForWhatItAloneKnew)
{
    InstallOlder();
    Run(Setup());
    const std::vector<std::wstring> upgraded = TakePicture();
    ExpectPending(false);
    Remove();
    InterruptBeforeChanges(Setup(),
                           [&](const std::function<void()>& interrupt)
                           {
                               InstallOlder();
                               interrupt();
                               RemoveProbe();
                               ExpectPendingOfEnded();
                               // The choice of the start with the system is kept in its link alone.
                               const bool bStarted = IsThere(OfAll(L"Programs\\Startup\\Lumacap 8.lnk"));
                               const bool bFolderWasAway = !IsThere(m_strTarget + L"\\Presets");
                               Run(Setup());
                               ExpectPicture(bStarted ? upgraded : m_installed);
                               ExpectPending(bFolderWasAway);
                               Remove();
                           });
}

} // namespace
