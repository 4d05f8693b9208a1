// A package's list as the engine reads it. The engine's own reader gives the lines; the bytes tell where they stand.
#include "tools/pkgtool/CheckedList.h"

#include <afx.h>

#include "foundation/InstallLog.h"
#include "foundation/Owners.h"

static constexpr char kEndMark = 0x1A; // ends what the runtime reads of a text

std::string ReadBytes(const wchar_t* pszPath)
{
    std::string strBytes;
    const CStreamOwner file(_wfopen(pszPath, L"rb"));
    char szBlock[4096];
    while (file.IsOpen())
    {
        const size_t cb = fread(szBlock, 1, sizeof(szBlock), file);
        if (cb == 0)
            break;
        strBytes.append(szBlock, cb);
    }
    return strBytes;
}

static bool BeginsWithMark(const std::string& strBytes)
{
    for (const char* pszMark : { "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF" })
    {
        if (strBytes.compare(0, strlen(pszMark), pszMark) == 0)
            return true;
    }
    return false;
}

// One at the very end harms nothing.
static bool HasLoneReturns(const std::string& strBytes)
{
    return strBytes.find('\n') == std::string::npos && strBytes.find('\r') < strBytes.find_last_not_of('\r');
}

// A line of nLength characters, its line end included, is read in pieces of 511. The last of them may be the line end
// alone, which is nothing.
static void NoteLine(CheckedList& list, int nNumber, size_t nLength)
{
    const size_t nPiece = kLogLineCapacity - 1;
    for (size_t nRead = 0; nRead < nLength; nRead += nPiece)
        list.lines.push_back({ nNumber, nRead > 0, CString() });
}

static void NoteLines(CheckedList& list, const std::string& strBytes)
{
    int nNumber = 1;
    size_t nLength = 0;
    for (size_t i = 0; i < strBytes.size() && list.nEndMarkLine == 0; ++i)
    {
        if (strBytes[i] == kEndMark)
            list.nEndMarkLine = nNumber;
        else if (strBytes[i] != '\r' || strBytes.compare(i, 2, "\r\n") != 0)
            ++nLength;
        if (strBytes[i] != '\n')
            continue;
        NoteLine(list, nNumber++, nLength);
        nLength = 0;
    }
    NoteLine(list, nNumber, nLength);
}

CheckedList ReadCheckedList(const wchar_t* pszList)
{
    CheckedList list;
    CInstallLogReader reader(pszList);
    list.bReadable = reader.IsOpen();
    if (!list.bReadable)
        return list;

    const std::string strBytes = ReadBytes(pszList);
    list.bByteOrderMark = BeginsWithMark(strBytes);
    list.bZeroBytes = strBytes.find('\0') != std::string::npos;
    list.bLoneReturns = HasLoneReturns(strBytes);
    NoteLines(list, strBytes);
    for (ListLine& line : list.lines)
    {
        if (reader.ReadLine())
            line.strText = reader.Line();
    }
    return list;
}

// The reader gives each byte as a character.
CString DecodeUtf8(const CString& strText)
{
    std::string strBytes;
    bool bAscii = true;
    for (int i = 0; i < strText.GetLength(); ++i)
    {
        strBytes += static_cast<char>(strText[i]);
        bAscii = bAscii && strText[i] < 0x80;
    }
    const int cb = static_cast<int>(strBytes.size());
    const int cch = bAscii ? 0 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, strBytes.data(), cb, nullptr, 0);
    CString strDecoded;
    MultiByteToWideChar(CP_UTF8, 0, strBytes.data(), cb, strDecoded.GetBufferSetLength(cch), cch);
    strDecoded.ReleaseBuffer(cch);
    return strDecoded;
}
