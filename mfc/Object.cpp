// Run-time class information.
#include <afx.h>

const CRuntimeClass CObject::classCObject = { "CObject", sizeof(CObject), nullptr };

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return RUNTIME_CLASS(CObject);
}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const
{
    const CRuntimeClass* pClass = this;
    while (pClass && pClass != pBaseClass)
        pClass = pClass->m_pBaseClass;
    return pClass != nullptr;
}
