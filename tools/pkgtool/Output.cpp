#include "tools/pkgtool/Output.h"

#include <io.h>
#include <string>
#include <afx.h>

std::string ToUtf8(const CString& strText)
{
    const int cb = WideCharToMultiByte(CP_UTF8, 0, strText, strText.GetLength(), nullptr, 0, nullptr, nullptr);
    std::string strBytes(cb, 0);
    WideCharToMultiByte(CP_UTF8, 0, strText, strText.GetLength(), &strBytes[0], cb, nullptr, nullptr);
    return strBytes;
}

CString FromUtf8(const std::string& strBytes)
{
    const int cb = static_cast<int>(strBytes.size());
    const int cch = MultiByteToWideChar(CP_UTF8, 0, strBytes.data(), cb, nullptr, 0);
    CString strText;
    MultiByteToWideChar(CP_UTF8, 0, strBytes.data(), cb, strText.GetBufferSetLength(cch), cch);
    strText.ReleaseBuffer(cch);
    return strText;
}

// The runtime's wide output would end at the first character that the C locale lacks.
void PrintLine(FILE* pStream, const wchar_t* pszText)
{
    const HANDLE hStream = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(pStream)));
    DWORD dwMode;
    DWORD cchWritten;
    const CString strLine = CString(pszText) + L"\n";
    if (GetConsoleMode(hStream, &dwMode) &&
        WriteConsoleW(hStream, strLine, static_cast<DWORD>(strLine.GetLength()), &cchWritten, nullptr))
        return;
    const std::string strBytes = ToUtf8(strLine);
    fwrite(strBytes.data(), 1, strBytes.size(), pStream);
}

void ShowProgress(size_t nDone, size_t nAll)
{
    const HANDLE hError = GetStdHandle(STD_ERROR_HANDLE);
    DWORD dwMode;
    DWORD cchWritten;
    if ((nDone % 64 != 0 && nDone != nAll) || !GetConsoleMode(hError, &dwMode))
        return;
    CString strLine;
    const std::wstring strText = std::to_wstring(nDone) + L" of " + std::to_wstring(nAll);
    strLine.Format(L"\r%-30s\r", nDone < nAll ? strText.c_str() : L"");
    WriteConsoleW(hError, strLine, static_cast<DWORD>(strLine.GetLength()), &cchWritten, nullptr);
}
