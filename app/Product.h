// Names of the product, its maker, its files, keys and web pages: build-time constants of the whole program.
#pragma once

// The parts that longer names are made of.
#define COMPANY_NAME L"Tandrel"
#define PRODUCT_NAME L"Lumacap 8"
#define PRODUCT_EXE L"Lumacap8.exe"
#define FILE_LIST_NAME L"LumUnInst.log"
#define SECOND_LIST_NAME L"install.log"
#define PRODUCT_KEY L"SOFTWARE\\" COMPANY_NAME L"\\" PRODUCT_NAME
#define APP_PATHS_LIST_KEY L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths"
#define UNINSTALL_LIST_KEY L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"

const wchar_t kCompanyName[] = COMPANY_NAME;
const wchar_t kPublisherName[] = L"Tandrel Technology LLC";
const wchar_t kProductName[] = PRODUCT_NAME; // also the folder, the default group and the link; as string 1
const wchar_t kProductExe[] = PRODUCT_EXE;
const wchar_t kFileListName[] = FILE_LIST_NAME;
const wchar_t kSecondListName[] = SECOND_LIST_NAME;
const wchar_t kThumbnailDll[] = L"ThumbLcp64.dll";
const wchar_t kLinkExtension[] = L".lnk";

// To be put behind a folder without a backslash at its end
const wchar_t kProductExePath[] = L"\\" PRODUCT_EXE;
const wchar_t kFileListPath[] = L"\\" FILE_LIST_NAME;
const wchar_t kSecondListPath[] = L"\\" SECOND_LIST_NAME;
const wchar_t kUninstallerPath[] = L"\\LumUnInst.exe";

// What the registration writes and the removal takes away goes by the same names.
const wchar_t kProductKey[] = PRODUCT_KEY;
const wchar_t kCapabilitiesKey[] = PRODUCT_KEY L"\\Capabilities";
const wchar_t kFileAssociationsKey[] = PRODUCT_KEY L"\\Capabilities\\FileAssociations";
const wchar_t kRegisteredApplicationsKey[] = L"SOFTWARE\\RegisteredApplications";
const wchar_t kAppPathsListKey[] = APP_PATHS_LIST_KEY;
const wchar_t kAppPathsKey[] = APP_PATHS_LIST_KEY L"\\" PRODUCT_EXE;
const wchar_t kUninstallListKey[] = UNINSTALL_LIST_KEY;
const wchar_t kUninstallKey[] = UNINSTALL_LIST_KEY L"\\" PRODUCT_NAME;
const wchar_t kProductClass[] = L"Lumacap.8";
const wchar_t kProductApplication[] = L"Applications\\" PRODUCT_EXE;

// The name under which all processes of the product, this program among them, share their list of instances.
const wchar_t kInstanceListName[] = L"Tandrel.Lumacap-DX.v4";

const wchar_t kHomePageAddress[] = L"http://www.lumacap.example/";
const wchar_t kWelcomePageAddress[] = L"http://www.lumacap.example/lcdx/InstScript.asp";
