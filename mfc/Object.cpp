// Run-time class information.
#include <afx.h>

const CRuntimeClass CObject::classCObject = { "CObject", sizeof(CObject), nullptr };

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return RUNTIME_CLASS(CObject);
}
