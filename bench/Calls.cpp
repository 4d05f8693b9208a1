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

static bool Exists(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Calls act with the path of each file below the folder that the patterns of the list's form meet.
template <typename Act>
static void ForEachMatch(const std::wstring& strFolder, int nFirst, int nLast, ListForm form, Act act)
{
    const int nStep = form == BY_MASKS ? kFilesInFolder : 1;
    for (int i = nFirst; i < nLast; i += nStep)
    {
        const std::wstring strPart = PartFolder(i / kFilesInFolder) + L"\\";
        std::wstring strPattern = strFolder + L"\\";
        strPattern += form == BY_MASKS ? strPart + L"*.bin" : FileName(i);
        WIN32_FIND_DATAW match;
        const HANDLE hFind = FindFirstFileW(strPattern.c_str(), &match);
        do
            act(strPart + match.cFileName);
        while (FindNextFileW(hFind, &match));
        FindClose(hFind);
    }
}

// What an install can't do without beside the copy: a search for each record, a look at the source and at the target.
static void NeededCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast, ListForm form)
{
    CreateDirectoryW(strTo.c_str(), nullptr);
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        CreateDirectoryW((strTo + L"\\" + PartFolder(i / kFilesInFolder)).c_str(), nullptr);
    ForEachMatch(strFrom, nFirst, nLast, form,
                 [&](const std::wstring& strName)
                 {
                     const std::wstring strTarget = strTo + L"\\" + strName;
                     if (Exists(strFrom + L"\\" + strName) && !Exists(strTarget))
                         CopyFileW((strFrom + L"\\" + strName).c_str(), strTarget.c_str(), FALSE);
                 });
}

// The same of a removal: a search for each record, and each file's attributes.
static void NeededRemove(const std::wstring& strFolder, int nFirst, int nLast, ListForm form)
{
    ForEachMatch(strFolder, nFirst, nLast, form,
                 [&](const std::wstring& strName)
                 {
                     if (Exists(strFolder + L"\\" + strName))
                         DeleteFileW((strFolder + L"\\" + strName).c_str());
                 });
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        RemoveDirectoryW((strFolder + L"\\" + PartFolder(i / kFilesInFolder)).c_str());
}

// The needed calls against the bare loop, in turns of 200 files as the engine itself is measured.
static void MeasureNeededCalls(const std::wstring& strFolder, int nFiles, int nRound, ListForm form)
{
    const int kFilesInTurn = 200;
    const std::string strForm = form == BY_MASKS ? "masks" : "records";
    const std::wstring strPackage = strFolder + L"\\package";
    const std::wstring strNeeded = strFolder + L"\\target1";
    const std::wstring strPlain = strFolder + L"\\target2";
    for (int i = 0; i < nFiles; i += kFilesInTurn)
    {
        const PAIR pair = TimePair(
            nRound + i / kFilesInTurn, [&] { NeededCopy(strPackage, strNeeded, i, i + kFilesInTurn, form); },
            [&] { PlainCopy(strPackage, strPlain, i, i + kFilesInTurn); });
        Report(("needed-install-" + strForm).c_str(), nFiles, pair.dProgram, pair.dPlain);
    }
    RequireThere(strNeeded + L"\\" + FileName(nFiles - 1));
    for (int i = 0; i < nFiles; i += kFilesInTurn)
    {
        const PAIR pair = TimePair(
            nRound + i / kFilesInTurn, [&] { NeededRemove(strNeeded, i, i + kFilesInTurn, form); },
            [&] { PlainRemove(strPlain, i, i + kFilesInTurn); });
        Report(("needed-removal-" + strForm).c_str(), nFiles, pair.dProgram, pair.dPlain);
    }
    RequireGone(strNeeded + L"\\" + FileName(nFiles - 1));
}

void MeasureCalls(const std::wstring& strFolder, int nFiles)
{
    const std::wstring strPackage = strFolder + L"\\package";
    const std::wstring strTarget = strFolder + L"\\target1";
    const int kRounds = 7;
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
        for (const ListForm form : { BY_MASKS, BY_RECORDS })
            MeasureNeededCalls(strFolder, nFiles, i, form);
    }
    PlainRemove(strPackage, 0, nFiles);
}
