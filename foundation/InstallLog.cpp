// The line-oriented list that says what an installation consists of.
#include "foundation/InstallLog.h"

#include <wchar.h>

const wchar_t kFileCopy[] = L"File Copy: ";
const wchar_t kFileCopyX64[] = L"File Copy x64: ";
const wchar_t kFileCopyIfAbsent[] = L"File Copy ind: ";
const wchar_t kFileCopyPortable[] = L"File Copy prt: ";
const wchar_t kFileOverwrite[] = L"File Overwrite: ";
const wchar_t kFileDel[] = L"File Del: ";
const wchar_t kMakeDir[] = L"Make Dir: ";
const wchar_t kMadeDir[] = L"Made Dir: ";
const wchar_t kShellLink[] = L"Shell Link: ";

CInstallLogReader::CInstallLogReader(const wchar_t* pszPath) : m_file(_wfopen(pszPath, L"r"))
{
    m_szLine[0] = 0;
}

bool CInstallLogReader::ReadLine()
{
    if (!IsOpen() || fgetws(m_szLine, kLogLineCapacity, m_file) == nullptr)
        return false;
    m_szLine[kLogLineCapacity - 1] = 0;

    // The first character stays, whatever it is: a line of blanks keeps one and is no record.
    for (wchar_t* pEnd = m_szLine + wcslen(m_szLine); pEnd > m_szLine + 1 && pEnd[-1] <= L' '; --pEnd)
        pEnd[-1] = 0;
    return true;
}

void CInstallLogReader::Rewind()
{
    if (IsOpen())
        rewind(m_file);
}

const wchar_t* FindRecordValue(const wchar_t* pszLine, const wchar_t* pszPrefix)
{
    const size_t cchPrefix = wcslen(pszPrefix);
    return wcsncmp(pszLine, pszPrefix, cchPrefix) == 0 ? pszLine + cchPrefix : nullptr;
}

bool SplitFileValue(const wchar_t* pszValue, CString& strSource, CString& strTarget)
{
    const CString strValue(pszValue);
    const int nArrow = strValue.Find(L'>');
    if (nArrow < 0)
    {
        strSource = strValue;
        strTarget.Empty();
        return false;
    }

    strSource = strValue.Left(nArrow);
    strSource.TrimRight();
    strTarget = strValue.Mid(nArrow + 1);
    strTarget.TrimLeft();
    return true;
}

CString GetNameToRemove(const wchar_t* pszLine, const wchar_t* pszPrefix)
{
    CString strLine(pszLine);
    const int nTail = strLine.Find(L" | ");
    if (nTail >= 0)
        strLine = strLine.Left(nTail);

    CString strSource;
    CString strTarget;
    return SplitFileValue(strLine.Mid(static_cast<int>(wcslen(pszPrefix))), strSource, strTarget) ? strTarget
                                                                                                  : strSource;
}

void AppendLogLine(const wchar_t* pszPath, const wchar_t* pszText)
{
    CStreamOwner file(_wfopen(pszPath, L"a"));
    // The bounded family is the C runtime's own on every toolchain, with %s wide.
    if (file.IsOpen())
        fwprintf_s(file, L"%s\n", pszText);
}
