// The framework's growing array. An index out of range ends in AfxThrowInvalidArgException.
#pragma once

#include <afx.h>

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject
{
public:
    CArray() : m_pData(nullptr), m_nSize(0), m_nMaxSize(0) {}
    virtual ~CArray() { delete[] m_pData; }

    INT_PTR GetSize() const { return m_nSize; }
    bool IsEmpty() const { return m_nSize == 0; }

    // Elements that come into being are zero or empty. nGrowBy is how many to make room for when the array has to
    // grow; without it the array decides.
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);

    const TYPE& GetAt(INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& GetAt(INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }
    const TYPE& operator[](INT_PTR nIndex) const { return m_pData[Checked(nIndex)]; }
    TYPE& operator[](INT_PTR nIndex) { return m_pData[Checked(nIndex)]; }
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { m_pData[Checked(nIndex)] = newElement; }
    // Null as long as the array is empty and never held anything.
    const TYPE* GetData() const { return m_pData; }
    TYPE* GetData() { return m_pData; }

    // Gives the index of the new element.
    INT_PTR Add(ARG_TYPE newElement);

private:
    INT_PTR Checked(INT_PTR nIndex) const
    {
        if (nIndex < 0 || nIndex >= m_nSize)
            AfxThrowInvalidArgException();
        return nIndex;
    }

    TYPE* m_pData;
    INT_PTR m_nSize;
    INT_PTR m_nMaxSize;
};

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetSize(INT_PTR nNewSize, INT_PTR nGrowBy)
{
    if (nNewSize < 0)
        AfxThrowInvalidArgException();
    if (nNewSize > m_nMaxSize)
    {
        const INT_PTR nRoom = m_nSize + (nGrowBy > 0 ? nGrowBy : m_nSize / 2);
        const INT_PTR nMaxSize = nNewSize > nRoom ? nNewSize : nRoom;
        TYPE* pNew = new TYPE[nMaxSize](); // where this throws, the array stays as it is
        for (INT_PTR i = 0; i < m_nSize; ++i)
            pNew[i] = static_cast<TYPE&&>(m_pData[i]);
        delete[] m_pData;
        m_pData = pNew;
        m_nMaxSize = nMaxSize;
    }
    for (INT_PTR i = nNewSize; i < m_nSize; ++i)
        m_pData[i] = TYPE();
    m_nSize = nNewSize;
}

template <class TYPE, class ARG_TYPE>
INT_PTR CArray<TYPE, ARG_TYPE>::Add(ARG_TYPE newElement)
{
    // A copy first: the element can be one of this array's own.
    TYPE copy(newElement);
    SetSize(m_nSize + 1);
    m_pData[m_nSize - 1] = static_cast<TYPE&&>(copy);
    return m_nSize - 1;
}
