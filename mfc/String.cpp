// The framework's strings, for both character types. All changes of text go through one operation, Splice, which
// copes with text that is part of the string itself.
#include <afx.h>

#include <ctype.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

namespace
{
int TextLength(const wchar_t* psz)
{
    return psz ? static_cast<int>(wcslen(psz)) : 0;
}

int TextLength(const char* psz)
{
    return psz ? static_cast<int>(strlen(psz)) : 0;
}

// The C runtime under one name for both character types.
const wchar_t* FindText(const wchar_t* psz, const wchar_t* pszSub)
{
    return wcsstr(psz, pszSub);
}

const char* FindText(const char* psz, const char* pszSub)
{
    return strstr(psz, pszSub);
}

const wchar_t* FindChar(const wchar_t* psz, wchar_t ch)
{
    return wcschr(psz, ch);
}

const char* FindChar(const char* psz, char ch)
{
    return strchr(psz, ch);
}

const wchar_t* FindLastChar(const wchar_t* psz, wchar_t ch)
{
    return wcsrchr(psz, ch);
}

const char* FindLastChar(const char* psz, char ch)
{
    return strrchr(psz, ch);
}

size_t SpanOutside(const wchar_t* psz, const wchar_t* pszSet)
{
    return wcscspn(psz, pszSet);
}

size_t SpanOutside(const char* psz, const char* pszSet)
{
    return strcspn(psz, pszSet);
}

bool IsSpace(wchar_t ch)
{
    return iswspace(ch) != 0;
}

bool IsSpace(char ch)
{
    return isspace(static_cast<unsigned char>(ch)) != 0;
}

void LowerText(wchar_t* psz)
{
    _wcslwr(psz);
}

void LowerText(char* psz)
{
    _strlwr(psz);
}

void UpperText(wchar_t* psz)
{
    _wcsupr(psz);
}

void UpperText(char* psz)
{
    _strupr(psz);
}

int CompareText(const wchar_t* psz1, const wchar_t* psz2)
{
    return wcscmp(psz1, psz2);
}

int CompareText(const char* psz1, const char* psz2)
{
    return strcmp(psz1, psz2);
}

int CompareTextNoCase(const wchar_t* psz1, const wchar_t* psz2)
{
    return _wcsicmp(psz1, psz2);
}

int CompareTextNoCase(const char* psz1, const char* psz2)
{
    return _stricmp(psz1, psz2);
}

// The C runtime's own formatting functions, in which %s is text of the format's own type.
int FormattedLength(const wchar_t* pszFormat, va_list args)
{
    return _vscwprintf(pszFormat, args);
}

int FormattedLength(const char* pszFormat, va_list args)
{
    return _vscprintf(pszFormat, args);
}

void WriteFormatted(wchar_t* pszBuffer, int nLength, const wchar_t* pszFormat, va_list args)
{
    _vsnwprintf(pszBuffer, nLength, pszFormat, args);
}

void WriteFormatted(char* pszBuffer, int nLength, const char* pszFormat, va_list args)
{
    _vsnprintf(pszBuffer, nLength, pszFormat, args);
}

void CopyText(CStringW& str, const wchar_t* pchText, int nLength)
{
    str = CStringW(pchText, nLength);
}

void CopyText(CStringA& str, const wchar_t* pchText, int nLength)
{
    const int nNarrow = WideCharToMultiByte(CP_ACP, 0, pchText, nLength, nullptr, 0, nullptr, nullptr);
    WideCharToMultiByte(CP_ACP, 0, pchText, nLength, str.GetBufferSetLength(nNarrow), nNarrow, nullptr, nullptr);
}

// What a trim takes away: white space, one character or a set.
template <typename T>
struct TrimTest
{
    T chTarget;
    const T* pszTargets;

    bool operator()(T ch) const
    {
        if (pszTargets)
            return ch != 0 && FindChar(pszTargets, ch) != nullptr;
        return chTarget ? ch == chTarget : IsSpace(ch);
    }
};

template <typename T>
int CountLeft(const CStringT<T>& str, const TrimTest<T>& test)
{
    int n = 0;
    while (n < str.GetLength() && test(str.GetString()[n]))
        ++n;
    return n;
}

template <typename T>
int CountRight(const CStringT<T>& str, const TrimTest<T>& test)
{
    int n = 0;
    while (n < str.GetLength() && test(str.GetString()[str.GetLength() - 1 - n]))
        ++n;
    return n;
}
} // namespace

template <typename T>
T CStringT<T>::s_chEmpty = 0;

template <typename T>
CStringT<T>::CStringT() : m_pszData(&s_chEmpty), m_nLength(0), m_nCapacity(0)
{
}

template <typename T>
CStringT<T>::CStringT(const CStringT& strSrc) : CStringT(strSrc.m_pszData, strSrc.m_nLength)
{
}

template <typename T>
CStringT<T>::CStringT(CStringT&& strSrc) noexcept : CStringT()
{
    Swap(strSrc);
}

template <typename T>
CStringT<T>::CStringT(PCXSTR pszSrc) : CStringT(pszSrc, TextLength(pszSrc))
{
}

template <typename T>
CStringT<T>::CStringT(PCXSTR pchSrc, int nLength) : CStringT()
{
    Splice(0, 0, pchSrc, nLength);
}

template <typename T>
CStringT<T>::CStringT(XCHAR ch, int nLength) : CStringT()
{
    PXSTR pch = GetBufferSetLength(nLength);
    for (int i = 0; i < nLength; ++i)
        pch[i] = ch;
}

template <typename T>
CStringT<T>::~CStringT()
{
    if (m_nCapacity > 0)
        delete[] m_pszData;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(const CStringT& strSrc)
{
    if (this != &strSrc)
        Splice(0, m_nLength, strSrc.m_pszData, strSrc.m_nLength);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(CStringT&& strSrc) noexcept
{
    Swap(strSrc);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(PCXSTR pszSrc)
{
    Splice(0, m_nLength, pszSrc, TextLength(pszSrc));
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(const CStringT& strSrc)
{
    Append(strSrc.m_pszData, strSrc.m_nLength);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(PCXSTR pszSrc)
{
    Append(pszSrc);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(XCHAR ch)
{
    Append(&ch, 1);
    return *this;
}

template <typename T>
void CStringT<T>::Empty()
{
    CStringT strEmpty;
    Swap(strEmpty);
}

template <typename T>
T CStringT<T>::GetAt(int iChar) const
{
    if (iChar < 0 || iChar > m_nLength)
        AfxThrowInvalidArgException();
    return m_pszData[iChar];
}

template <typename T>
void CStringT<T>::SetAt(int iChar, XCHAR ch)
{
    if (iChar < 0 || iChar >= m_nLength)
        AfxThrowInvalidArgException();
    m_pszData[iChar] = ch;
}

template <typename T>
void CStringT<T>::Append(PCXSTR pszSrc)
{
    Append(pszSrc, TextLength(pszSrc));
}

template <typename T>
void CStringT<T>::Append(PCXSTR pszSrc, int nLength)
{
    Splice(m_nLength, 0, pszSrc, nLength);
}

template <typename T>
int CStringT<T>::Find(XCHAR ch, int iStart) const
{
    if (iStart < 0 || iStart >= m_nLength)
        return -1;
    PCXSTR pszFound = FindChar(m_pszData + iStart, ch);
    return pszFound ? static_cast<int>(pszFound - m_pszData) : -1;
}

template <typename T>
int CStringT<T>::Find(PCXSTR pszSub, int iStart) const
{
    if (!pszSub || iStart < 0 || iStart > m_nLength)
        return -1;
    // The C runtimes differ on an empty text.
    if (!*pszSub)
        return iStart;
    PCXSTR pszFound = FindText(m_pszData + iStart, pszSub);
    return pszFound ? static_cast<int>(pszFound - m_pszData) : -1;
}

template <typename T>
int CStringT<T>::ReverseFind(XCHAR ch) const
{
    PCXSTR pszFound = FindLastChar(m_pszData, ch);
    return pszFound ? static_cast<int>(pszFound - m_pszData) : -1;
}

template <typename T>
int CStringT<T>::FindOneOf(PCXSTR pszCharSet) const
{
    const size_t iFound = SpanOutside(m_pszData, pszCharSet);
    return m_pszData[iFound] ? static_cast<int>(iFound) : -1;
}

template <typename T>
CStringT<T> CStringT<T>::Left(int nCount) const
{
    return Mid(0, nCount);
}

template <typename T>
CStringT<T> CStringT<T>::Right(int nCount) const
{
    if (nCount <= 0)
        return CStringT();
    return nCount >= m_nLength ? *this : Mid(m_nLength - nCount, nCount);
}

template <typename T>
CStringT<T> CStringT<T>::Mid(int iFirst) const
{
    return Mid(iFirst, m_nLength);
}

template <typename T>
CStringT<T> CStringT<T>::Mid(int iFirst, int nCount) const
{
    if (iFirst < 0)
        iFirst = 0;
    if (iFirst >= m_nLength || nCount <= 0)
        return CStringT();
    return CStringT(m_pszData + iFirst, nCount < m_nLength - iFirst ? nCount : m_nLength - iFirst);
}

template <typename T>
CStringT<T>& CStringT<T>::MakeLower()
{
    LowerText(GetBuffer());
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::MakeUpper()
{
    UpperText(GetBuffer());
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::Trim()
{
    return TrimRight().TrimLeft();
}

template <typename T>
CStringT<T>& CStringT<T>::Trim(XCHAR chTarget)
{
    return TrimRight(chTarget).TrimLeft(chTarget);
}

template <typename T>
CStringT<T>& CStringT<T>::Trim(PCXSTR pszTargets)
{
    return TrimRight(pszTargets).TrimLeft(pszTargets);
}

template <typename T>
CStringT<T>& CStringT<T>::TrimLeft()
{
    Delete(0, CountLeft(*this, TrimTest<T>{ 0, nullptr }));
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimLeft(XCHAR chTarget)
{
    Delete(0, CountLeft(*this, TrimTest<T>{ chTarget, nullptr }));
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimLeft(PCXSTR pszTargets)
{
    Delete(0, CountLeft(*this, TrimTest<T>{ 0, pszTargets }));
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimRight()
{
    const int nCount = CountRight(*this, TrimTest<T>{ 0, nullptr });
    Delete(m_nLength - nCount, nCount);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimRight(XCHAR chTarget)
{
    const int nCount = CountRight(*this, TrimTest<T>{ chTarget, nullptr });
    Delete(m_nLength - nCount, nCount);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimRight(PCXSTR pszTargets)
{
    const int nCount = CountRight(*this, TrimTest<T>{ 0, pszTargets });
    Delete(m_nLength - nCount, nCount);
    return *this;
}

template <typename T>
int CStringT<T>::Delete(int iIndex, int nCount)
{
    if (iIndex < 0)
        iIndex = 0;
    if (iIndex < m_nLength && nCount > 0)
        Splice(iIndex, nCount < m_nLength - iIndex ? nCount : m_nLength - iIndex, nullptr, 0);
    return m_nLength;
}

template <typename T>
int CStringT<T>::Replace(XCHAR chOld, XCHAR chNew)
{
    if (chOld == chNew)
        return 0;
    int nCount = 0;
    for (int i = 0; i < m_nLength; ++i)
    {
        if (m_pszData[i] == chOld)
        {
            m_pszData[i] = chNew;
            ++nCount;
        }
    }
    return nCount;
}

template <typename T>
int CStringT<T>::Replace(PCXSTR pszOld, PCXSTR pszNew)
{
    const int nOld = TextLength(pszOld);
    const CStringT strNew(pszNew);
    if (nOld == 0)
        return 0;

    const CStringT strOld(pszOld);
    int nCount = 0;
    for (int i = Find(strOld); i >= 0; i = Find(strOld, i + strNew.m_nLength))
    {
        Splice(i, nOld, strNew.m_pszData, strNew.m_nLength);
        ++nCount;
    }
    return nCount;
}

template <typename T>
int CStringT<T>::Compare(PCXSTR psz) const
{
    return CompareText(m_pszData, psz ? psz : &s_chEmpty);
}

template <typename T>
int CStringT<T>::CompareNoCase(PCXSTR psz) const
{
    return CompareTextNoCase(m_pszData, psz ? psz : &s_chEmpty);
}

template <typename T>
void CStringT<T>::Format(PCXSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

template <typename T>
void CStringT<T>::FormatV(PCXSTR pszFormat, va_list args)
{
    va_list measured;
    va_copy(measured, args);
    const int nLength = FormattedLength(pszFormat, measured);
    va_end(measured);
    if (nLength < 0)
        AfxThrowInvalidArgException();

    CStringT strResult;
    WriteFormatted(strResult.GetBufferSetLength(nLength), nLength, pszFormat, args);
    Swap(strResult);
}

template <typename T>
T* CStringT<T>::GetBuffer()
{
    return GetBuffer(m_nLength);
}

template <typename T>
T* CStringT<T>::GetBuffer(int nMinBufferLength)
{
    Reserve(nMinBufferLength > 0 ? nMinBufferLength : 1);
    return m_pszData;
}

template <typename T>
T* CStringT<T>::GetBufferSetLength(int nLength)
{
    PXSTR pszBuffer = GetBuffer(nLength);
    ReleaseBuffer(nLength);
    return pszBuffer;
}

template <typename T>
void CStringT<T>::ReleaseBuffer(int nNewLength)
{
    if (nNewLength == -1)
        nNewLength = TextLength(m_pszData);
    if (nNewLength < 0 || nNewLength > m_nCapacity)
        AfxThrowInvalidArgException();
    m_nLength = nNewLength;
    if (m_nCapacity > 0)
        m_pszData[nNewLength] = 0;
}

template <typename T>
BOOL CStringT<T>::LoadString(UINT nID)
{
    // With a capacity of 0 the call gives a pointer to the text in the resource, which has no terminator.
    const wchar_t* pchText = nullptr;
    const int nLength = ::LoadStringW(AfxGetResourceHandle(), nID, reinterpret_cast<wchar_t*>(&pchText), 0);
    if (nLength <= 0)
        return FALSE;
    CopyText(*this, pchText, nLength);
    return TRUE;
}

template <typename T>
CStringT<T> CStringT<T>::Join(CStringT strFirst, const CStringT& strSecond)
{
    strFirst += strSecond;
    return strFirst;
}

template <typename T>
void CStringT<T>::Splice(int iIndex, int nRemove, PCXSTR pchInsert, int nInsert)
{
    const int nTail = m_nLength - iIndex - nRemove;
    const int nLength = iIndex + nInsert + nTail;
    if (nLength == 0 && m_nCapacity == 0)
        return;

    const bool bOwnText = nInsert > 0 && pchInsert >= m_pszData && pchInsert <= m_pszData + m_nLength;
    CStringT strNew;
    if (bOwnText || nLength > m_nCapacity)
    {
        const int nRoomy = m_nCapacity + m_nCapacity / 2;
        strNew.Reserve(nLength > nRoomy ? nLength : nRoomy);
        memcpy(strNew.m_pszData, m_pszData, iIndex * sizeof(XCHAR));
    }
    PXSTR pszTarget = strNew.m_nCapacity > 0 ? strNew.m_pszData : m_pszData;
    memmove(pszTarget + iIndex + nInsert, m_pszData + iIndex + nRemove, nTail * sizeof(XCHAR));
    if (nInsert > 0)
        memcpy(pszTarget + iIndex, pchInsert, nInsert * sizeof(XCHAR));
    pszTarget[nLength] = 0;
    if (strNew.m_nCapacity > 0)
        Swap(strNew);
    m_nLength = nLength;
}

template <typename T>
void CStringT<T>::Reserve(int nCapacity)
{
    if (nCapacity <= m_nCapacity)
        return;
    PXSTR pszNew = new XCHAR[nCapacity + 1];
    memcpy(pszNew, m_pszData, (m_nLength + 1) * sizeof(XCHAR));
    if (m_nCapacity > 0)
        delete[] m_pszData;
    m_pszData = pszNew;
    m_nCapacity = nCapacity;
}

template <typename T>
void CStringT<T>::Swap(CStringT& strOther)
{
    const PXSTR pszData = m_pszData;
    const int nLength = m_nLength;
    const int nCapacity = m_nCapacity;
    m_pszData = strOther.m_pszData;
    m_nLength = strOther.m_nLength;
    m_nCapacity = strOther.m_nCapacity;
    strOther.m_pszData = pszData;
    strOther.m_nLength = nLength;
    strOther.m_nCapacity = nCapacity;
}

template class CStringT<wchar_t>;
template class CStringT<char>;
