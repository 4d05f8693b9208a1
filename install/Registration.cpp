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
    if (value.pnNumber != nullptr)
        WriteRegDword(value.hRoot, value.pszKey, value.pszName, *value.pnNumber);
    else
        WriteRegString(value.hRoot, value.pszKey, value.pszName, value.strText);
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
