// Names of the product, its maker, its files, keys and web pages: build-time constants of the whole program.
#pragma once

const wchar_t kCompanyName[] = L"Tandrel";
const wchar_t kPublisherName[] = L"Tandrel Technology LLC";
const wchar_t kProductName[] = L"Lumacap 8"; // also the folder, the default group and the link; as string 1
const wchar_t kProductExe[] = L"Lumacap8.exe";
const wchar_t kProductExePath[] = L"\\Lumacap8.exe"; // these four: to be put behind a folder
const wchar_t kFileListPath[] = L"\\LumUnInst.log";
const wchar_t kSecondListPath[] = L"\\install.log";
const wchar_t kUninstallerPath[] = L"\\LumUnInst.exe";
const wchar_t kFileListName[] = L"LumUnInst.log";
const wchar_t kSecondListName[] = L"install.log";
const wchar_t kThumbnailDll[] = L"ThumbLcp64.dll";
const wchar_t kLinkExtension[] = L".lnk";

const wchar_t kProductKey[] = L"SOFTWARE\\Tandrel\\Lumacap 8";
const wchar_t kAppPathsKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Lumacap8.exe";
const wchar_t kUninstallKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8";

// The name under which all processes of the product, this program among them, share their list of instances.
const wchar_t kInstanceListName[] = L"Tandrel.Lumacap-DX.v4";

const wchar_t kHomePageAddress[] = L"http://www.lumacap.example/";
const wchar_t kWelcomePageAddress[] = L"http://www.lumacap.example/lcdx/InstScript.asp";
