// Whatever inserts or deletes text goes through Splice, which copes with text that is part of the string itself.
#include "mfc/StringParts.h"

static void CopyText(CStringW& str, const wchar_t* pchText, int nLength)
{
    str = CStringW(pchText, nLength);
}

static void CopyText(CStringA& str, const wchar_t* pchText, int nLength)
{
    const int nNarrow = WideCharToMultiByte(CP_ACP, 0, pchText, nLength, nullptr, 0, nullptr, nullptr);
    WideCharToMultiByte(CP_ACP, 0, pchText, nLength, str.GetBufferSetLength(nNarrow), nNarrow, nullptr, nullptr);
}

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
    Splice(m_nLength, 0, strSrc.m_pszData, strSrc.m_nLength);
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(PCXSTR pszSrc)
{
    Splice(m_nLength, 0, pszSrc, TextLength(pszSrc));
    return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(XCHAR ch)
{
    Splice(m_nLength, 0, &ch, 1);
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
void CStringT<T>::Format(PCXSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    const int nLength = FormattedLength(pszFormat, args);
    va_end(args);
    if (nLength < 0)
        AfxThrowInvalidArgException();

    CStringT strResult;
    va_start(args, pszFormat);
    WriteFormatted(strResult.GetBufferSetLength(nLength), nLength, pszFormat, args);
    va_end(args);
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
