// Long lists whose records find no file, so that the list alone is timed.
#include <afx.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/PlainWork.h"
#include "bench/Stopwatch.h"
#include "foundation/InstallLog.h"
#include "install/PackageList.h"
#include "uninstall/LogReplay.h"

void MeasureLines(const std::wstring& strFolder, int nLines, int nPairs)
{
    const std::wstring strList = strFolder + kFileListPath;
    const std::wstring strTarget = strFolder + L"\\target";
    CreateDirectoryW(strFolder.c_str(), nullptr);
    CreateDirectoryW(strTarget.c_str(), nullptr);
    WriteIdleList(strList, nLines);
    g_nInstallKind = KIND_ALL_USERS;
    g_strSourceDir = strFolder.c_str();
    g_strInstDir = strTarget.c_str();
    for (int i = 0; i < nPairs; ++i)
    {
        const PAIR walk = TimePair(
            i, [&] { ProcessPackageList(strList.c_str()); }, [&] { PlainWalk(strList, strFolder, { kFileCopy }); });
        const PAIR replay = TimePair(
            i, [&] { RemoveLoggedFiles(strList.c_str(), strTarget.c_str()); },
            [&] {
                PlainWalk(strList, strTarget, { kFileCopy, kFileOverwrite, kFileCopyPortable, kFileDel });
            });
        Report("lines-install", nLines, walk.dProgram, walk.dPlain);
        Report("lines-removal", nLines, replay.dProgram, replay.dPlain);
    }
    DeleteFileW(strList.c_str());
    RemoveDirectoryW(strTarget.c_str());
}
