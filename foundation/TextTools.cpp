// Quadratic where that is simplest: texts and lists are short.
#include "foundation/TextTools.h"

#include <string.h>
#include <wchar.h>

static constexpr wchar_t kByteOrderMark = 0xFEFF;
static constexpr wchar_t kSwappedByteOrderMark = 0xFFFE;

// A byte with its top bit set is text, although char is signed.
static bool IsBlank(char ch)
{
    return static_cast<unsigned char>(ch) <= 32;
}
static bool IsBlank(wchar_t ch)
{
    return ch <= 32;
}

// Overwrites every blank at the end but never the first character. A text of one blank is left to the trim of the
// start.
template <typename Char>
static void TrimEnd(Char* pszText, size_t cch)
{
    for (; cch > 1 && IsBlank(pszText[cch - 1]); --cch)
        pszText[cch - 1] = 0;
}

template <typename Char>
static const Char* SkipBlanks(const Char* pszText)
{
    while (*pszText != 0 && IsBlank(*pszText))
        ++pszText;
    return pszText;
}

// Whole passes, each from the first pair to the last. Returns whether anything was exchanged.
static bool SortPass(CStringArray& aStrings)
{
    bool bExchanged = false;
    for (INT_PTR i = 0; i + 1 < aStrings.GetSize(); ++i)
    {
        if (aStrings[i].CompareNoCase(aStrings[i + 1]) <= 0)
            continue;
        const CString strGreater = aStrings[i];
        aStrings[i] = aStrings[i + 1];
        aStrings[i + 1] = strGreater;
        bExchanged = true;
    }
    return bExchanged;
}

int RemoveSubstringNoCase(CString& strText, const wchar_t* pszCut)
{
    CString strLowerText = strText;
    CString strLowerCut = pszCut;
    strLowerText.MakeLower();
    strLowerCut.MakeLower();
    const int nAt = strLowerText.Find(strLowerCut, 0);
    const int cchBefore = strText.GetLength();
    return nAt >= 0 && strText.Delete(nAt, strLowerCut.GetLength()) < cchBefore;
}

int RemoveSubstringInPlace(wchar_t* pszText, const wchar_t* pszCut)
{
    CString strText = pszText;
    if (!RemoveSubstringNoCase(strText, pszCut))
        return 0;
    wmemcpy(pszText, strText, strText.GetLength() + 1);
    return 1;
}

void SortStringsNoCase(CStringArray& aStrings)
{
    while (SortPass(aStrings))
    {
    }
}

char* TrimBothA(char* pszText)
{
    if (pszText == nullptr)
        return pszText;
    TrimEnd(pszText, strlen(pszText));
    const char* pszStart = SkipBlanks(pszText);
    memmove(pszText, pszStart, strlen(pszStart) + 1);
    return pszText;
}

wchar_t* TrimBothW(wchar_t* pszText)
{
    if (pszText == nullptr)
        return pszText;
    TrimEnd(pszText, wcslen(pszText));
    const bool bMarked = *pszText == kByteOrderMark || *pszText == kSwappedByteOrderMark;
    const wchar_t* pszStart = SkipBlanks(bMarked ? pszText + 1 : pszText);
    wmemmove(pszText, pszStart, wcslen(pszStart) + 1);
    return pszText;
}
