; The one file that people download: unpacks the package into a folder of its own below the temporary one, has the setup
; do its work from there, takes all of that away again and ends with the setup's exit code. It ends with 2 if it comes
; to nothing by itself. Its only window is the word about that, which /S forbids: /S is the one argument that it reads.
; Takes the package's folder as PACKAGE, that of the plug-in as PLUGINS and its own path as PROGRAM. The path of a file
; that takes the version is VERSION_FILE.
Target amd64-unicode
SetCompressor /SOLID lzma
SetCompressorDictSize 64
!include LogicLib.nsh
!addplugindir "${PLUGINS}"

; As the setup has them. The style is the packer's own need: with it the system takes the library of the controls from its
; own folder, and not from beside the download.
Name "Lumacap Setup"
Caption "Lumacap Setup"
Icon ../../res/download.ico
XPStyle on
RequestExecutionLevel admin
ManifestDPIAware true
ManifestSupportedOS WinVista Win7
!getdllversion "${PACKAGE}/Lumacap8.exe" part
!define VERSION ${part1}.${part2}.${part3}.${part4}
!appendfile "${VERSION_FILE}" "${VERSION}"
!pragma warning disable 9100 ; no LegalCopyright
VIFileVersion ${VERSION}
VIProductVersion ${VERSION}
VIAddVersionKey CompanyName "Tandrel Technology LLC"
VIAddVersionKey FileDescription "Lumacap Setup"
VIAddVersionKey FileVersion ${VERSION}
VIAddVersionKey InternalName Lumacap8Setup
VIAddVersionKey OriginalFilename Lumacap8Setup.exe
VIAddVersionKey ProductName "Lumacap 8"
VIAddVersionKey ProductVersion ${VERSION}

OutFile "${PROGRAM}"
CRCCheck force
; A file that can't be unpacked ends the run.
AllowSkipFiles off

Var quiet

; Silent only from here on, so that a damaged download is told before.
Function .onInit
    ${If} ${Silent}
        StrCpy $quiet yes
    ${EndIf}
    SetSilent silent
FunctionEnd

; The plug-in knows how the arguments and the user's working folder are handed on, and why so. When the setup has ended, no
; process but a browser that the wizard opened stays in the unpacked package, which goes.
Section
    GetFullPathName $1 .
    InitPluginsDir
    StrCpy $2 $PLUGINSDIR\package
    StrCpy $0 $2\setup.exe
    SetOutPath $2
    File /r "${PACKAGE}/*"
    SetOutPath $SYSDIR
    Launch::Run
    ${If} $0 == ""
        Abort
    ${EndIf}
    SetErrorLevel $0
    StrCpy $0 $2
    Launch::Remove
SectionEnd

Function .onInstFailed
    SetOutPath $SYSDIR
    ${If} $quiet == ""
        MessageBox MB_OK|MB_ICONSTOP "Lumacap Setup could not be unpacked. Please make sure that there is enough room in \
the temporary folder, then start it again.$\n$\n$TEMP"
    ${EndIf}
FunctionEnd
