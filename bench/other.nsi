; An installer of the same files, made with a general tool: the files as they are, no pages, and a removal by one sweep.
; Takes the package's folder as PACKAGE and its own path as PROGRAM.
Target amd64-unicode
SetCompress off
RequestExecutionLevel admin
SilentInstall silent
SilentUnInstall silent
Name "Lumacap 8"
OutFile "${PROGRAM}"

Section
    SetOutPath $INSTDIR
    File /r "${PACKAGE}/*.*"
    WriteUninstaller $INSTDIR\remove.exe
SectionEnd

Section Uninstall
    RMDir /r $INSTDIR
SectionEnd
