// A silent install that is ended in its midst, the same install once more, and the removal: each leaves what it leaves
// where nothing was disturbed.
#include "app/Product.h"
#include "tests/support/InterruptionCorner.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

namespace
{

class InterruptedInstall : public InterruptionCorner
{
protected:
    void InstallAgain(const std::function<void()>& install) const
    {
        // Once its folder is known, an install counts as a repeated one. That asks the boot for the folders of the
        // list, which hold files and so stay.
        const bool bRepeat = ValueExists(HKEY_LOCAL_MACHINE, kProductKey, L"Path");
        install();
        ExpectPicture(m_installed);
        EXPECT_EQ(PendingText(Folder()), bRepeat ? m_strRepeatPending : L"");
        ClearPending();
        Run(SecondStage());
        ExpectRemoved();
    }
};

TEST_F(InterruptedInstall, IsMadeUpForByTheNextWhateverTheChangeThatItCameTo)
{
    InterruptBeforeChanges(Setup(),
                           [&](const std::function<void()>& interrupt)
                           {
                               interrupt();
                               InstallAgain([&] { Run(Setup()); });
                           });
}

TEST_F(InterruptedInstall, IsMadeUpForByTheNextWhateverTheTime)
{
    InterruptAfterTimes(Setup(), 0,
                        [&](const std::function<void()>& interrupt)
                        {
                            interrupt();
                            InstallAgain([&] { EXPECT_EQ(RunToEnd(Setup()), 0u); });
                        });
}

// Such is what an install leaves that is ended while it asks whether the machine has the library.
TEST_F(InterruptedInstall, PackageFileThatWasHiddenMeanwhileIsFoundByTheNext)
{
    const std::wstring strLibrary = m_package.At(L"lcxshare.dll");
    ASSERT_TRUE(MoveFileW(strLibrary.c_str(), (strLibrary + L".toinst").c_str()));
    InstallAgain([&] { EXPECT_EQ(RunToEnd(Setup()), 0u); });
}

} // namespace
