; The setup program: makensis -DVERSION=4.1.0 -DCONTENT=folder -DOUTPUT=setup.exe setup.nsi
;
; Installs what is in CONTENT, registers the component, and can be run again to update. /S asks
; nothing, /D=C:\folder at the end of the command line chooses the folder. Exit status 0, or 3 when
; the component can't be registered, and then nothing is left.

Unicode true
Target amd64-unicode
ManifestDPIAware true
RequestExecutionLevel admin
SetCompressor /SOLID lzma
SetDateSave off

!include MUI2.nsh
!include x64.nsh

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorvane"
; Of the application, which unregistering leaves: an administrator may have set permissions on it.
!define APPID "{EF053738-56A8-43FF-B347-2D3FC925A733}"

Name "Quorvane ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Quorvane"
InstallDirRegKey HKLM "${UNINSTALL}" "InstallLocation"
BrandingText "Quorvane ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Quorvane"
VIAddVersionKey CompanyName "Lindbrek"
VIAddVersionKey FileDescription "Setup of Quorvane"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "MIT license"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!insertmacro MUI_PAGE_LICENSE "${CONTENT}\LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!macro RemoveFiles
    !include "${FILES}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    SetShellVarContext all
    Delete "$SMPROGRAMS\Quorvane\*.lnk"
    RMDir "$SMPROGRAMS\Quorvane"
    SetRegView 64
    DeleteRegKey HKLM "${UNINSTALL}"
    DeleteRegKey HKLM "Software\Classes\AppID\${APPID}"
    DeleteRegKey HKLM "Software\Classes\AppID\Quorvane.DLL"
!macroend

Function .onInit
    SetRegView 64
    ${IfNot} ${RunningX64}
        MessageBox MB_OK|MB_ICONSTOP "Quorvane needs a 64-bit Windows." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd

Section "Quorvane"
    SetRegView 64
    SetShellVarContext all
    SetOutPath "$INSTDIR"
    File /r "${CONTENT}\*"
    WriteUninstaller "$INSTDIR\uninstall.exe"

    ExecWait '"$SYSDIR\regsvr32.exe" /s "$INSTDIR\Quorvane.dll"' $0
    ${If} $0 != 0
        !insertmacro RemoveFiles
        MessageBox MB_OK|MB_ICONSTOP "Quorvane.dll can't be registered (status $0)." /SD IDOK
        SetErrorLevel 3
        Quit
    ${EndIf}

    CreateDirectory "$SMPROGRAMS\Quorvane"
    CreateShortcut "$SMPROGRAMS\Quorvane\Manual.lnk" "$INSTDIR\docs\manual.html"
    CreateShortcut "$SMPROGRAMS\Quorvane\Examples.lnk" "$INSTDIR\examples"
    CreateShortcut "$SMPROGRAMS\Quorvane\Uninstall.lnk" "$INSTDIR\uninstall.exe"

    WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "Quorvane"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL}" "Publisher" "Lindbrek"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayIcon" "$INSTDIR\Quorvane.dll"
    WriteRegStr HKLM "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "Uninstall"
    ExecWait '"$SYSDIR\regsvr32.exe" /s /u "$INSTDIR\Quorvane.dll"' $0
    ${If} $0 != 0
        MessageBox MB_OK|MB_ICONSTOP "Quorvane.dll can't be unregistered (status $0)." /SD IDOK
        SetErrorLevel 3
        Quit
    ${EndIf}
    !insertmacro RemoveFiles
SectionEnd
