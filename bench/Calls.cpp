// What the platform's calls cost that an engine needs beside the copying and deleting itself. It tells how much of
// a ratio is the platform's own.
#include <afx.h>

#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/PlainWork.h"
#include "bench/Stopwatch.h"

static void FindOne(const std::wstring& strPath)
{
    WIN32_FIND_DATAW found;
    FindClose(FindFirstFileW(strPath.c_str(), &found));
}

template <typename Call>
static double CallTime(const std::wstring& strFolder, int nFiles, Call call)
{
    return TimeOf(
               [&]
               {
                   for (int i = 0; i < nFiles; ++i)
                       call(strFolder + L"\\" + FileName(i));
               }) /
           nFiles;
}

void MeasureCalls(const std::wstring& strFolder, int nFiles)
{
    const std::wstring strPackage = strFolder + L"\\package";
    const std::wstring strTarget = strFolder + L"\\target1";
    static constexpr int kRounds = 7;
    MakePackageFiles(strPackage, nFiles);
    for (int i = 0; i < kRounds; ++i)
    {
        const double dCopy = TimeOf([&] { PlainCopy(strPackage, strTarget, 0, nFiles); }) / nFiles;
        const auto find = [](const std::wstring& str) { FindOne(str); };
        const auto attributes = [](const std::wstring& str) { return GetFileAttributesW(str.c_str()); };
        const auto missing = [](const std::wstring& str) { return GetFileAttributesW((str + L"x").c_str()); };
        const auto write = [](const std::wstring& str) { SetFileAttributesW(str.c_str(), FILE_ATTRIBUTE_ARCHIVE); };
        const double dFind = CallTime(strTarget, nFiles, find);
        const double dAttributes = CallTime(strTarget, nFiles, attributes);
        const double dMissing = CallTime(strTarget, nFiles, missing);
        const double dWrite = CallTime(strTarget, nFiles, write);
        const double dDelete = TimeOf([&] { PlainRemove(strTarget, 0, nFiles); }) / nFiles;
        Report("call-copy", nFiles, dCopy, dCopy);
        Report("call-delete", nFiles, dDelete, dDelete);
        Report("call-find", nFiles, dFind, dCopy);
        Report("call-find-to-delete", nFiles, dFind, dDelete);
        Report("call-attributes", nFiles, dAttributes, dCopy);
        Report("call-attributes-of-missing", nFiles, dMissing, dCopy);
        Report("call-write-attributes", nFiles, dWrite, dDelete);
    }
    PlainRemove(strPackage, 0, nFiles);
}
