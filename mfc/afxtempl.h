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

    // Elements that come into being are zero or empty.
    void SetSize(INT_PTR nNewSize);

    TYPE& operator[](INT_PTR nIndex);
    // Null as long as the array is empty and never held anything.
    TYPE* GetData() { return m_pData; }

private:
    TYPE* m_pData;
    INT_PTR m_nSize;
    INT_PTR m_nMaxSize;
};

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetSize(INT_PTR nNewSize)
{
    if (nNewSize < 0)
        AfxThrowInvalidArgException();
    if (nNewSize > m_nMaxSize)
    {
        TYPE* pNew = new TYPE[nNewSize](); // where this throws, the array stays as it is
        for (INT_PTR i = 0; i < m_nSize; ++i)
            pNew[i] = static_cast<TYPE&&>(m_pData[i]);
        delete[] m_pData;
        m_pData = pNew;
        m_nMaxSize = nNewSize;
    }
    for (INT_PTR i = nNewSize; i < m_nSize; ++i)
        m_pData[i] = TYPE();
    m_nSize = nNewSize;
}

template <class TYPE, class ARG_TYPE>
TYPE& CArray<TYPE, ARG_TYPE>::operator[](INT_PTR nIndex)
{
    if (nIndex < 0 || nIndex >= m_nSize)
        AfxThrowInvalidArgException();
    return m_pData[nIndex];
}
