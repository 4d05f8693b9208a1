// A removal whose second stage is ended in its midst, and what makes up for it: the second stage once more, or, for a
// user, the uninstaller as long as it stands, and then a new install and its removal.
#include "tests/support/InterruptionCorner.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

namespace
{

class InterruptedRemoval : public InterruptionCorner
{
protected:
    // As the system's list of programs starts it; the copy that it makes of itself doesn't count.
    void Uninstall() const
    {
        CProcessRun run(L"\"" + m_strTarget + L"\\LumUnInst.exe\"");
        run.AddEnvironment(L"TMP", At(L"temp"));
        ASSERT_TRUE(run.Start() && run.WaitForFamily());
        ASSERT_FALSE(PendingEntries().empty());
        for (const std::wstring& strName : ListTree(At(L"temp")))
            if (strName != L"uni1.tmp")
                RemoveTree(At(L"temp\\") + strName);
    }
};

TEST_F(InterruptedRemoval, IsMadeUpForByASecondRunOfItsStageWhateverTheChangeThatItCameTo)
{
    InterruptBeforeChanges(SecondStage(),
                           [&](const std::function<void()>& interrupt)
                           {
                               Run(Setup());
                               interrupt();
                               Run(SecondStage());
                               ExpectRemoved();
                           });
}

// Only its pause comes before the time. The uninstaller's file is the first to go: from then on nobody but an install
// knows of what is left. Some of these go to the current user alone, since the kind of the earlier one is forgotten
// sooner than its folder.
TEST_F(InterruptedRemoval, IsMadeUpForByTheUninstallerOrByANewInstallWhateverTheTime)
{
    InterruptAfterTimes(SecondStage(), 1000,
                        [&](const std::function<void()>& interrupt)
                        {
                            Run(Setup());
                            interrupt();
                            if (IsThere(m_strTarget + L"\\LumUnInst.exe"))
                                Uninstall();
                            else
                            {
                                Run(Setup());
                                Run(SecondStage());
                            }
                            ExpectRemoved();
                        });
}

} // namespace
