// Names of the product, its maker, its files, keys and web pages: build-time constants of the whole program.
#pragma once

// The parts that longer names are made of.
#define COMPANY_NAME L"Tandrel"
#define PRODUCT_NAME L"Lumacap 8"
#define PRODUCT_EXE L"Lumacap8.exe"
#define FILE_LIST_NAME L"LumUnInst.log"
#define SECOND_LIST_NAME L"install.log"
#define UNINSTALLER_NAME L"LumUnInst.exe"
#define HELP_FILE_NAME L"Lumacap8Man.chm"
#define LINK_EXTENSION L".lnk"
#define PRODUCT_CLASS L"Lumacap.8"
#define PRODUCT_APPLICATION L"Applications\\" PRODUCT_EXE
#define PRODUCT_KEY L"SOFTWARE\\" COMPANY_NAME L"\\" PRODUCT_NAME
#define APP_PATHS_LIST_KEY L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths"
#define UNINSTALL_LIST_KEY L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"

inline constexpr wchar_t kCompanyName[] = COMPANY_NAME;
inline constexpr wchar_t kPublisherName[] = L"Tandrel Technology LLC";
inline constexpr wchar_t kProductWord[] = L"Lumacap"; // how the captions of the product's main windows begin
// Also the folder, the default group and the link; string 1 reads the same.
inline constexpr wchar_t kProductName[] = PRODUCT_NAME;
inline constexpr wchar_t kHelpLinkName[] = PRODUCT_NAME L" Help"; // string 101 reads the same
inline constexpr wchar_t kProductExe[] = PRODUCT_EXE;
inline constexpr wchar_t kFileListName[] = FILE_LIST_NAME;
inline constexpr wchar_t kSecondListName[] = SECOND_LIST_NAME;
inline constexpr wchar_t kUninstallerName[] = UNINSTALLER_NAME;
inline constexpr wchar_t kThumbnailDll[] = L"ThumbLcp64.dll";
inline constexpr wchar_t kHelpFile[] = HELP_FILE_NAME;
inline constexpr wchar_t kSettingsFile[] = L"Lumacap8.ini";
inline constexpr wchar_t kRegistrySettingsFile[] = L"Lumacap8.reg";
inline constexpr wchar_t kAgreementFile[] = L"agreement.txt";
inline constexpr wchar_t kX64Folder[] = L"x64";
inline constexpr wchar_t kX32Folder[] = L"x32";
inline constexpr wchar_t kLinkExtension[] = LINK_EXTENSION;

// To be put behind a folder without a backslash at its end
inline constexpr wchar_t kProductExePath[] = L"\\" PRODUCT_EXE;
inline constexpr wchar_t kFileListPath[] = L"\\" FILE_LIST_NAME;
inline constexpr wchar_t kSecondListPath[] = L"\\" SECOND_LIST_NAME;
inline constexpr wchar_t kUninstallerPath[] = L"\\" UNINSTALLER_NAME;
inline constexpr wchar_t kHelpFilePath[] = L"\\" HELP_FILE_NAME;
inline constexpr wchar_t kProductLinkPath[] = L"\\" PRODUCT_NAME LINK_EXTENSION;
inline constexpr wchar_t kHomePageFilePath[] = L"\\HomePage.url";
inline constexpr wchar_t kVersion5ExePath[] = L"\\Lumacap5.exe";
inline constexpr wchar_t kVersion6ExePath[] = L"\\Lumacap6.exe";

// What the registration writes and the removal takes away goes by the same names.
inline constexpr wchar_t kProductKey[] = PRODUCT_KEY;
inline constexpr wchar_t kCapabilitiesKey[] = PRODUCT_KEY L"\\Capabilities";
inline constexpr wchar_t kFileAssociationsKey[] = PRODUCT_KEY L"\\Capabilities\\FileAssociations";
inline constexpr wchar_t kRegisteredApplicationsKey[] = L"SOFTWARE\\RegisteredApplications";
inline constexpr wchar_t kAppPathsListKey[] = APP_PATHS_LIST_KEY;
inline constexpr wchar_t kAppPathsKey[] = APP_PATHS_LIST_KEY L"\\" PRODUCT_EXE;
inline constexpr wchar_t kUninstallListKey[] = UNINSTALL_LIST_KEY;
inline constexpr wchar_t kUninstallKey[] = UNINSTALL_LIST_KEY L"\\" PRODUCT_NAME;
inline constexpr wchar_t kProductClass[] = PRODUCT_CLASS;
inline constexpr wchar_t kDocumentClass[] = L"LC8.Document";
inline constexpr wchar_t kProductApplication[] = PRODUCT_APPLICATION;
inline constexpr wchar_t kClassOpenKey[] = PRODUCT_CLASS L"\\shell\\open\\command";
inline constexpr wchar_t kApplicationOpenKey[] = PRODUCT_APPLICATION L"\\shell\\open\\command";
inline constexpr wchar_t kMessagingHostsKey[] = L"SOFTWARE\\Mozilla\\NativeMessagingHosts";
inline constexpr wchar_t kMessagingHost[] = L"capff";
// Values of the product's key: its folder, and the kind of its install, which a later run tells by this letter
inline constexpr wchar_t kFolderValue[] = L"Path";
inline constexpr wchar_t kKindValue[] = L"AllUsers";
inline constexpr wchar_t kAllUsersLetter[] = L"B";
// The value in which the product keeps the association that stood before itself
inline constexpr wchar_t kSavedAssociation[] = L"LumacapOld";

// The name under which all processes of the product, this program among them, share their list of instances.
inline constexpr wchar_t kInstanceListName[] = L"Tandrel.Lumacap-DX.v4";

inline constexpr wchar_t kHomePageAddress[] = L"http://www.lumacap.example/";
inline constexpr wchar_t kWelcomePageAddress[] = L"http://www.lumacap.example/lcdx/InstScript.asp";
