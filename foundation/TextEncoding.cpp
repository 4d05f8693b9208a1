// The alphabets are fixed, letter by letter: whoever decodes the texts counts on them.
#include "foundation/TextEncoding.h"

#include <ctype.h>
#include <stdarg.h>
#include <wchar.h>

#include "foundation/BoundedText.h"
#include "foundation/Owners.h"

static constexpr size_t kUnboundedCapacity = 0x7FFFFFFF;

namespace
{
struct Encoder
{
    const wchar_t* pszAlphabet; // passed through unchanged, looked up in upper case
    wchar_t chReplaced;         // the one character outside the alphabet with a text of its own
    const wchar_t* pszReplacement;
};

struct MessageSource
{
    int nFirst;
    int nLast;
    const wchar_t* pszFile;
};
} // namespace

// Two hyphens in each, a space in the second only, an ampersand in the first only: all of it is meant to be there.
static constexpr Encoder kPostEncoder = { L"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789$-_@.&+-!'*\"(),;/#?:", L' ', L"+" };
static constexpr Encoder kQueryEncoder = { L" ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789$-_@.+-!'*\"(),;/#?:", L'&',
                                           L"(AND)" };

static constexpr MessageSource kMessageSources[] = {
    { 2100, 2999, L"netmsg.dll" },
    { 12000, 12190, L"wininet.dll" },
};

static CString Encode(const wchar_t* pszText, const Encoder& encoder)
{
    CString strResult;
    for (; *pszText != 0; ++pszText)
    {
        if (wcschr(encoder.pszAlphabet, static_cast<wchar_t>(toupper(*pszText))) != nullptr)
            strResult += *pszText;
        else if (*pszText == encoder.chReplaced)
            strResult += encoder.pszReplacement;
        else
        {
            wchar_t szEscape[8];
            FormatBounded(szEscape, L"%%%02X", *pszText);
            strResult += szEscape;
        }
    }
    return strResult;
}

// Null for a code without a source of its own, and where the source is missing: the system's table alone must do then.
static HMODULE LoadMessageSource(int nError)
{
    for (const MessageSource& source : kMessageSources)
    {
        if (nError >= source.nFirst && nError <= source.nLast)
            return LoadLibraryExW(source.pszFile, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    }
    return nullptr;
}

int FormatUnbounded(wchar_t* pszBuffer, const wchar_t* pszFormat, ...)
{
    va_list arguments;
    va_start(arguments, pszFormat);
    const int nWritten = FormatBoundedList(pszBuffer, kUnboundedCapacity, pszFormat, arguments);
    va_end(arguments);
    return nWritten;
}

CString AnsiToString(const char* pszText)
{
    const UINT nCodePage = GetACP();
    const int cch = MultiByteToWideChar(nCodePage, MB_PRECOMPOSED, pszText, -1, nullptr, 0);
    CString strResult;
    // The count holds the terminator already, and one more zero is kept behind it: both count in the stored length.
    wchar_t* pszResult = strResult.GetBufferSetLength(cch + 1);
    MultiByteToWideChar(nCodePage, MB_PRECOMPOSED, pszText, -1, pszResult, cch);
    pszResult[cch] = 0;
    return strResult;
}

CStringA StringToAnsi(const wchar_t* pszText)
{
    const UINT nCodePage = GetACP();
    const int cb = WideCharToMultiByte(nCodePage, WC_COMPOSITECHECK, pszText, -1, nullptr, 0, nullptr, nullptr);
    CStringA strResult;
    // One zero more than the terminator, as in the other direction.
    char* pszResult = strResult.GetBufferSetLength(cb + 1);
    WideCharToMultiByte(nCodePage, WC_COMPOSITECHECK, pszText, -1, pszResult, cb, nullptr, nullptr);
    pszResult[cb] = 0;
    return strResult;
}

CString EncodeForPost(const wchar_t* pszText)
{
    return Encode(pszText, kPostEncoder);
}

CString EncodeForQuery(const wchar_t* pszText)
{
    return Encode(pszText, kQueryEncoder);
}

CString GetErrorText(int nError)
{
    DWORD dwFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    const CLibraryOwner source(LoadMessageSource(nError));
    if (source.IsOpen())
        dwFlags |= FORMAT_MESSAGE_FROM_HMODULE;

    CString strText;
    wchar_t* pszText = nullptr;
    if (FormatMessageW(dwFlags, source, static_cast<DWORD>(nError), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                       reinterpret_cast<wchar_t*>(&pszText), 0, nullptr) != 0)
    {
        strText = pszText;
        LocalFree(pszText);
    }
    return strText;
}
