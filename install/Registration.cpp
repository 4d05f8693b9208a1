#include "install/Registration.h"

#include <afx.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"
#include "install/RegisteredValues.h"

static void Write(const RegisteredValue& value, LPARAM)
{
    if (const unsigned int* pnNumber = std::get_if<unsigned int>(&value.data))
        WriteRegDword(value.hRoot, value.pszKey, value.pszName, *pnNumber);
    else
        WriteRegString(value.hRoot, value.pszKey, value.pszName, *std::get_if<CString>(&value.data));
}

static void RegisterThumbnailHandler()
{
    if (IsNT6OrLater())
        RunAndWait(L"regsvr32.exe /s \"" + g_strInstDir + L"\\" + kThumbnailDll + L"\"", nullptr, 0);
}

void RegisterWithSystem()
{
    ForEachRegisteredValue(Write, 0);
    RegisterThumbnailHandler();
}
