#include "foundation/InstallLog.h"

#include "foundation/TextEnds.h"

CInstallLogReader::CInstallLogReader(const wchar_t* pszPath) : m_file(_wfopen(pszPath, L"r"))
{
    m_szLine[0] = 0;
}

bool CInstallLogReader::ReadLine()
{
    if (!IsOpen() || fgetws(m_szLine, _countof(m_szLine), m_file) == nullptr)
        return false;
    m_szLine[_countof(m_szLine) - 1] = 0;

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
    return StartsWith(pszLine, pszPrefix) ? pszLine + wcslen(pszPrefix) : nullptr;
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
    // mingw-w64 puts functions of its own in the place of fwprintf and its like, in which %s means narrow text. The
    // bounded family is the C runtime's, where it means wide text.
    if (file.IsOpen())
        fwprintf_s(file, L"%s\n", pszText);
}
