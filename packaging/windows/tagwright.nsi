; The installer for Windows: makensis -DFOLDER=... -DVERSION="2.1 rev-2" -DNUMBER=2.1.2 -DOUTPUT=... tagwright.nsi
; FOLDER is what "cmake --install --component folder" wrote. Silently: setup.exe /S [/ALLUSERS | /CURRENTUSER] [/D=folder].
;
; For all users it goes to Program Files and is registered for the machine, where the program looks for its folder. Without an
; administrator's rights, or with /CURRENTUSER, it goes to the user's own programs, and a file beside the program,
; in-place.txt, says that its folder is the one. Exit codes: 0, 1 cancelled by the user, 2 refused or failed.

Unicode true
Target amd64-unicode
ManifestDPIAware true
SetCompressor /SOLID lzma
RequestExecutionLevel highest

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh

Name "Tagwright"
OutFile "${OUTPUT}"
BrandingText "Tagwright ${VERSION}"
InstallDir ""

VIProductVersion "${NUMBER}.0"
VIAddVersionKey /LANG=1033 "ProductName" "Tagwright"
VIAddVersionKey /LANG=1033 "CompanyName" "Kestrelbay"
VIAddVersionKey /LANG=1033 "FileDescription" "Installs Tagwright, which compares DICOM files"
VIAddVersionKey /LANG=1033 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=1033 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=1033 "LegalCopyright" "MIT licence"

!define APP_PATHS "Software\Microsoft\Windows\CurrentVersion\App Paths\Tagwright.exe"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tagwright"
!define OPEN_WITH "Software\Classes\Applications\Tagwright.exe"

!define MUI_ICON "..\..\Icons\tagwright.ico"
!define MUI_UNICON "..\..\Icons\tagwright.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\Tagwright.exe"
!insertmacro MUI_PAGE_LICENSE "${FOLDER}\licence.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var AllUsers ; 1 or 0.

; --- for whom --------------------------------------------------------------

!macro For_All_Users
  StrCpy $AllUsers 1
  SetShellVarContext all
!macroend

!macro For_Current_User
  StrCpy $AllUsers 0
  SetShellVarContext current
!macroend

; A key of this installation stands for the machine or for the user, as SHCTX says; always in the 64-bit view, where the
; program looks.
Function .onInit
  SetRegView 64
  UserInfo::GetAccountType
  Pop $0
  ${GetParameters} $1
  ClearErrors
  ${GetOptions} $1 "/CURRENTUSER" $2
  ${IfNot} ${Errors}
    StrCpy $0 "User"
  ${EndIf}
  ClearErrors
  ${GetOptions} $1 "/ALLUSERS" $2
  ${IfNot} ${Errors}
  ${AndIf} $0 != "Admin"
    MessageBox MB_OK|MB_ICONSTOP "Installing for all users takes an administrator's rights." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}

  ${If} $0 == "Admin"
    !insertmacro For_All_Users
    StrCpy $3 "$PROGRAMFILES64\Kestrelbay\Tagwright"
  ${Else}
    !insertmacro For_Current_User
    StrCpy $3 "$LOCALAPPDATA\Programs\Tagwright"
  ${EndIf}

  ; An older version is replaced where it stands, unless a folder was given.
  ${If} $INSTDIR == ""
    ReadRegStr $INSTDIR SHCTX "${UNINSTALL}" "InstallLocation"
    ${If} $INSTDIR == ""
      StrCpy $INSTDIR $3
    ${EndIf}
  ${EndIf}
FunctionEnd

; A program that runs can't be replaced: its file can't be written. Asks for it to be closed; silently this ends with 2.
!macro Wait_For_End UN
Function ${UN}Wait_For_End
  ${For} $8 1 2
    StrCpy $9 "Tagwright.exe"
    ${If} $8 == 2
      StrCpy $9 "Tagwright-open.exe"
    ${EndIf}
    again:
    ${If} ${FileExists} "$INSTDIR\$9"
      ClearErrors
      FileOpen $7 "$INSTDIR\$9" a
      ${If} ${Errors}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Tagwright is running, or $INSTDIR can't be written to. \
          Close it, then try again." /SD IDCANCEL IDRETRY again
        SetErrorLevel 2
        Quit
      ${EndIf}
      FileClose $7
    ${EndIf}
  ${Next}
FunctionEnd
!macroend
!insertmacro Wait_For_End ""
!insertmacro Wait_For_End "un."

; --- installing ------------------------------------------------------------

; Sets $0 to 1 when the configuration has been edited: it isn't what was installed, of which a copy stands beside it.
Function Configuration_Is_Edited
  StrCpy $0 0
  ${IfNot} ${FileExists} "$INSTDIR\Tagwright.ini"
    Return
  ${EndIf}
  StrCpy $0 1
  ClearErrors
  FileOpen $1 "$INSTDIR\Tagwright.ini" r
  FileOpen $2 "$INSTDIR\Tagwright.default.ini" r
  ${IfNot} ${Errors}
    next:
    StrCpy $3 ""
    StrCpy $4 ""
    FileReadByte $1 $3
    FileReadByte $2 $4
    ${If} "$3" == "$4"
      StrCmp "$3" "" same next
      same:
      StrCpy $0 0
    ${EndIf}
  ${EndIf}
  FileClose $1
  FileClose $2
FunctionEnd

Section
  SetRegView 64
  Call Wait_For_End
  Call Configuration_Is_Edited

  ; Nothing stale stays: tables and icons that this version doesn't have. Folders of somebody else's are left alone.
  ${If} ${FileExists} "$INSTDIR\Tagwright.exe"
    RMDir /r "$INSTDIR\DICOM Tables"
    RMDir /r "$INSTDIR\Icons"
  ${EndIf}
  SetOutPath "$INSTDIR"
  SetOverwrite on
  ClearErrors
  File /r /x Tagwright.ini "${FOLDER}\*"
  File "/oname=Tagwright.default.ini" "${FOLDER}\Tagwright.ini"
  ${If} $0 == 0
    File "${FOLDER}\Tagwright.ini"
  ${EndIf}
  Delete "$INSTDIR\in-place.txt"
  ${If} $AllUsers == 0
    File "in-place.txt"
  ${EndIf}
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONSTOP "Not all files could be written to $INSTDIR." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}

  WriteRegStr SHCTX "${APP_PATHS}" "" "$INSTDIR\Tagwright.exe"
  WriteRegStr SHCTX "${APP_PATHS}" "Path" "$INSTDIR"

  WriteRegStr SHCTX "${OPEN_WITH}" "FriendlyAppName" "Tagwright"
  WriteRegStr SHCTX "${OPEN_WITH}\DefaultIcon" "" "$INSTDIR\Tagwright.exe,0"
  WriteRegStr SHCTX "${OPEN_WITH}\SupportedTypes" ".dcm" ""
  WriteRegStr SHCTX "${OPEN_WITH}\shell\open\command" "" '"$INSTDIR\Tagwright-open.exe" "%1"'
  WriteRegNone SHCTX "Software\Classes\.dcm\OpenWithList\Tagwright.exe" ""

  CreateShortcut "$SMPROGRAMS\Tagwright.lnk" "$INSTDIR\Tagwright.exe"

  WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "Tagwright ${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayIcon" "$INSTDIR\Tagwright.exe,0"
  WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "Kestrelbay"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UNINSTALL}" "EstimatedSize" $0
  System::Call "shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)"
SectionEnd

; --- uninstalling ----------------------------------------------------------

; One that goes by its own folder is the user's.
Function un.onInit
  SetRegView 64
  ${If} ${FileExists} "$INSTDIR\in-place.txt"
    !insertmacro For_Current_User
  ${Else}
    !insertmacro For_All_Users
  ${EndIf}
FunctionEnd

Section Uninstall
  SetRegView 64
  Call un.Wait_For_End

  RMDir /r "$INSTDIR\DICOM Tables"
  RMDir /r "$INSTDIR\Icons"
  Delete "$INSTDIR\Tagwright.exe"
  Delete "$INSTDIR\Tagwright-open.exe"
  Delete "$INSTDIR\Tagwright.ini"
  Delete "$INSTDIR\Tagwright.default.ini"
  Delete "$INSTDIR\licence.txt"
  Delete "$INSTDIR\readme.txt"
  Delete "$INSTDIR\in-place.txt"
  Delete "$INSTDIR\Uninstall.exe"
  ; What somebody else put there stays, and the folder with it.
  RMDir "$INSTDIR"
  ${If} $AllUsers == 1
    RMDir "$PROGRAMFILES64\Kestrelbay"
  ${EndIf}

  Delete "$SMPROGRAMS\Tagwright.lnk"
  DeleteRegKey SHCTX "${APP_PATHS}"
  DeleteRegKey SHCTX "${OPEN_WITH}"
  DeleteRegKey SHCTX "Software\Classes\.dcm\OpenWithList\Tagwright.exe"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.dcm\OpenWithList"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.dcm"
  DeleteRegKey SHCTX "${UNINSTALL}"
  System::Call "shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)"

  ; The user's tables and configuration have the user's work in them.
  SetShellVarContext current
  ${If} ${FileExists} "$APPDATA\Kestrelbay\*"
    MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Delete your own tables and settings in \
      $APPDATA\Kestrelbay, too?" /SD IDNO IDNO keep
    RMDir /r "$APPDATA\Kestrelbay"
    keep:
  ${EndIf}
SectionEnd
