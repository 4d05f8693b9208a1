// Members of the framework's strings: the search in a text, its parts, and their replacement. Included by String.cpp,
// the one place where the code of both character types is made.
#pragma once

#include "mfc/StringRuntime.h"

// What a trim takes away: the characters of a set or, without one, white space.
template <typename T>
static bool IsTrimmed(T ch, const T* pszTargets)
{
    return pszTargets ? ch != 0 && FindChar(pszTargets, ch) != nullptr : IsSpace(ch);
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
CStringT<T>& CStringT<T>::Trim(PCXSTR pszTargets)
{
    return TrimRight(pszTargets).TrimLeft(pszTargets);
}

template <typename T>
CStringT<T>& CStringT<T>::TrimLeft()
{
    return TrimLeft(nullptr);
}

template <typename T>
CStringT<T>& CStringT<T>::TrimLeft(PCXSTR pszTargets)
{
    int nCount = 0;
    while (nCount < m_nLength && IsTrimmed(m_pszData[nCount], pszTargets))
        ++nCount;
    Delete(0, nCount);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::TrimRight()
{
    return TrimRight(nullptr);
}

template <typename T>
CStringT<T>& CStringT<T>::TrimRight(PCXSTR pszTargets)
{
    int nLength = m_nLength;
    while (nLength > 0 && IsTrimmed(m_pszData[nLength - 1], pszTargets))
        --nLength;
    Delete(nLength, m_nLength - nLength);
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
