// What the benchmark measures. Each function writes its results to standard output, a line each, of fields parted by
// tabs: the name, the size, the program's figure and its plain counterpart's. Times are in microseconds.
#pragma once

#include <string>

// Install and removal by the engine in this process, against bare loops over the same files.
void MeasureFiles(const std::wstring& strFolder, int nFiles, int nPairs);

// The platform's calls one by one, in microseconds a call; the counterpart is CopyFileW or DeleteFileW.
void MeasureCalls(const std::wstring& strFolder, int nFiles);

// The walk of a list at install and its replay at removal, where no record finds a file.
void MeasureLines(const std::wstring& strFolder, int nLines, int nPairs);

// setup.exe and LumUnInst.exe as processes, with a package of that many files, against the plain program.
// strProduct is the folder of the sample package, strPrograms that of the plain program.
void MeasureProcesses(const std::wstring& strFolder, int nFiles, int nPairs, const std::wstring& strProduct,
                      const std::wstring& strPrograms);

// setup.exe and its uninstaller against another installer of the same files: the package is made first, of which
// that installer is then made as other.exe, in the folder itself, with its remove.exe. An install is timed from its
// start to its end, a removal from the first vanished file to the last.
void MakeInstallersPackage(const std::wstring& strFolder, int nFiles, const std::wstring& strProduct);
void MeasureInstallers(const std::wstring& strFolder, int nFiles, int nPairs);

// The one file that people download, as download.exe in the folder of the package above, against that package's
// setup.exe; then pkgtool's verification against a plain program that reads both copies of each file. strPrograms is
// the folder of the plain program, strPkgtool the tool's path.
void MeasureDownload(const std::wstring& strFolder, int nFiles, int nPairs, const std::wstring& strPrograms,
                     const std::wstring& strPkgtool);

// Peak working sets in bytes, against that of the empty program.
void MeasureMemory(const std::wstring& strFolder, const std::wstring& strProduct, const std::wstring& strPrograms);

// The peak working set of setup.exe that works through a list of that many lines; no counterpart.
void MeasureListMemory(const std::wstring& strFolder, const std::wstring& strProduct, int nLines);

// Writes one result.
void Report(const char* pszName, int nSize, double dProgram, double dPlain);
