// The C runtime under one name for both character types of strings.
#pragma once

#include <afx.h>

#include <ctype.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

inline int TextLength(const wchar_t* psz)
{
    return psz ? static_cast<int>(wcslen(psz)) : 0;
}

inline int TextLength(const char* psz)
{
    return psz ? static_cast<int>(strlen(psz)) : 0;
}

inline const wchar_t* FindText(const wchar_t* psz, const wchar_t* pszSub)
{
    return wcsstr(psz, pszSub);
}

inline const char* FindText(const char* psz, const char* pszSub)
{
    return strstr(psz, pszSub);
}

inline const wchar_t* FindChar(const wchar_t* psz, wchar_t ch)
{
    return wcschr(psz, ch);
}

inline const char* FindChar(const char* psz, char ch)
{
    return strchr(psz, ch);
}

inline const wchar_t* FindLastChar(const wchar_t* psz, wchar_t ch)
{
    return wcsrchr(psz, ch);
}

inline const char* FindLastChar(const char* psz, char ch)
{
    return strrchr(psz, ch);
}

inline size_t SpanOutside(const wchar_t* psz, const wchar_t* pszSet)
{
    return wcscspn(psz, pszSet);
}

inline size_t SpanOutside(const char* psz, const char* pszSet)
{
    return strcspn(psz, pszSet);
}

inline bool IsSpace(wchar_t ch)
{
    return iswspace(ch) != 0;
}

inline bool IsSpace(char ch)
{
    return isspace(static_cast<unsigned char>(ch)) != 0;
}

inline void LowerText(wchar_t* psz)
{
    _wcslwr(psz);
}

inline void LowerText(char* psz)
{
    _strlwr(psz);
}

inline void UpperText(wchar_t* psz)
{
    _wcsupr(psz);
}

inline void UpperText(char* psz)
{
    _strupr(psz);
}

inline int CompareText(const wchar_t* psz1, const wchar_t* psz2)
{
    return wcscmp(psz1, psz2);
}

inline int CompareText(const char* psz1, const char* psz2)
{
    return strcmp(psz1, psz2);
}

inline int CompareTextNoCase(const wchar_t* psz1, const wchar_t* psz2)
{
    return _wcsicmp(psz1, psz2);
}

inline int CompareTextNoCase(const char* psz1, const char* psz2)
{
    return _stricmp(psz1, psz2);
}

// The C runtime's own formatting functions, in which %s is text of the format's own type.
inline int FormattedLength(const wchar_t* pszFormat, va_list args)
{
    return _vscwprintf(pszFormat, args);
}

inline int FormattedLength(const char* pszFormat, va_list args)
{
    return _vscprintf(pszFormat, args);
}

inline void WriteFormatted(wchar_t* pszBuffer, int nLength, const wchar_t* pszFormat, va_list args)
{
    _vsnwprintf(pszBuffer, nLength, pszFormat, args);
}

inline void WriteFormatted(char* pszBuffer, int nLength, const char* pszFormat, va_list args)
{
    _vsnprintf(pszBuffer, nLength, pszFormat, args);
}
