// The framework's strings. Each owns its text on the heap; a copy is a copy. The length is stored apart from the
// terminator, so that a text can hold zeros. Narrow and wide aren't converted into each other, but for LoadString.
#pragma once

#include <stdarg.h>

template <typename BaseType>
class CStringT
{
public:
    typedef BaseType XCHAR;
    typedef BaseType* PXSTR;
    typedef const BaseType* PCXSTR;

    CStringT();
    CStringT(const CStringT& strSrc);
    CStringT(CStringT&& strSrc) noexcept;
    // A null text is an empty one.
    CStringT(PCXSTR pszSrc);
    CStringT(PCXSTR pchSrc, int nLength);
    explicit CStringT(XCHAR ch, int nLength = 1);
    ~CStringT();

    CStringT& operator=(const CStringT& strSrc);
    CStringT& operator=(CStringT&& strSrc) noexcept;
    CStringT& operator=(PCXSTR pszSrc);
    CStringT& operator+=(const CStringT& strSrc);
    CStringT& operator+=(PCXSTR pszSrc);
    CStringT& operator+=(XCHAR ch);

    operator PCXSTR() const { return m_pszData; }
    PCXSTR GetString() const { return m_pszData; }
    int GetLength() const { return m_nLength; }
    bool IsEmpty() const { return m_nLength == 0; }
    void Empty();

    // An index up to the length is allowed and gives the terminator; any other ends in AfxThrowInvalidArgException.
    XCHAR operator[](int iChar) const { return GetAt(iChar); }
    XCHAR GetAt(int iChar) const;

    // Each gives the index found, or -1. Texts with zeros are searched up to the first zero.
    int Find(XCHAR ch, int iStart = 0) const;
    int Find(PCXSTR pszSub, int iStart = 0) const;
    int ReverseFind(XCHAR ch) const;
    int FindOneOf(PCXSTR pszCharSet) const;

    // Counts and indexes out of range are cut to what there is.
    CStringT Left(int nCount) const;
    CStringT Right(int nCount) const;
    CStringT Mid(int iFirst) const;
    CStringT Mid(int iFirst, int nCount) const;

    CStringT& MakeLower();
    CStringT& MakeUpper();
    CStringT& Trim();
    CStringT& Trim(PCXSTR pszTargets);
    CStringT& TrimLeft();
    CStringT& TrimLeft(PCXSTR pszTargets);
    CStringT& TrimRight();
    CStringT& TrimRight(PCXSTR pszTargets);

    // Gives the new length. An index behind the end deletes nothing.
    int Delete(int iIndex, int nCount = 1);
    // Both give the number of replacements.
    int Replace(XCHAR chOld, XCHAR chNew);
    int Replace(PCXSTR pszOld, PCXSTR pszNew);

    int Compare(PCXSTR psz) const;
    int CompareNoCase(PCXSTR psz) const;

    // %s means text of the string's own character type. The string's own text is allowed among the arguments.
    void Format(PCXSTR pszFormat, ...);

    // A buffer with room for at least the length asked for, in characters, and a terminator. The string's length
    // holds from ReleaseBuffer on, which without a length looks for the terminator.
    PXSTR GetBuffer();
    PXSTR GetBuffer(int nMinBufferLength);
    PXSTR GetBufferSetLength(int nLength);
    void ReleaseBuffer(int nNewLength = -1);

    // False, and the string unchanged, if the id has no text.
    BOOL LoadString(UINT nID);

    friend CStringT operator+(const CStringT& str1, const CStringT& str2) { return Join(str1, str2); }
    friend CStringT operator+(const CStringT& str1, PCXSTR psz2) { return Join(str1, psz2); }
    friend CStringT operator+(PCXSTR psz1, const CStringT& str2) { return Join(psz1, str2); }
    friend CStringT operator+(const CStringT& str1, XCHAR ch2) { return Join(str1, CStringT(ch2)); }

    friend bool operator==(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) == 0; }
    friend bool operator==(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) == 0; }
    friend bool operator!=(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) != 0; }
    friend bool operator!=(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) != 0; }
    friend bool operator<(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) < 0; }

    // Deleted, since they would compile by way of the text's address.
    friend CStringT operator+(XCHAR ch1, const CStringT& str2) = delete;
    friend bool operator>(const CStringT& str1, const CStringT& str2) = delete;
    friend bool operator<=(const CStringT& str1, const CStringT& str2) = delete;
    friend bool operator>=(const CStringT& str1, const CStringT& str2) = delete;

private:
    static CStringT Join(CStringT strFirst, const CStringT& strSecond);
    void Splice(int iIndex, int nRemove, PCXSTR pchInsert, int nInsert);
    void Reserve(int nCapacity);
    void Swap(CStringT& strOther);

    static XCHAR s_chEmpty;
    // Points at s_chEmpty as long as the capacity is 0.
    PXSTR m_pszData;
    int m_nLength;
    int m_nCapacity;
};

extern template class CStringT<wchar_t>;
extern template class CStringT<char>;

typedef CStringT<wchar_t> CStringW;
typedef CStringT<char> CStringA;
typedef CStringW CString;
