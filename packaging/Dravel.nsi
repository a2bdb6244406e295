; The installer. make.sh defines VERSION (four numbers), ICON, STAGE (the folder tree as it is to lie in the terminal's
; folder), DLL_SIZE and OUT. Exit codes: 0 done, 2 a file cannot be written, 3 no such folder; with 2 and 3 the library is the
; one from before.
Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
RequestExecutionLevel highest
ManifestDPIAware true

!include MUI2.nsh
!include LogicLib.nsh

Name "Dravel"
BrandingText "Dravel ${VERSION}"
OutFile "${OUT}"
!define HOME "PLUGINDLLS\Dravel"
!define SETTINGS "Software\Dravel"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Dravel"
!define REPLACE_AND_FLUSH 9  ; MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH

VIProductVersion "${VERSION}"
VIAddVersionKey ProductName "Dravel"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileDescription "Setup of Dravel"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "Copyright (C) 2026 Dravel"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_DIRECTORYPAGE_TEXT_TOP "Choose the folder of the VELTS terminal, the one that its program lies in. End the terminal before you go on."
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "Folder of the terminal"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; Refuse TEXT CODE: says why, also to whoever reads the output of a silent run, and ends.
!macro Refuse text code
  StrCpy $1 "${text}"
  System::Call 'kernel32::GetStdHandle(i -11) p .r2'
  StrCpy $3 "$1$\r$\n"
  StrLen $4 $3
  System::Call 'kernel32::WriteFile(p r2, m r3, i r4, *i .r5, p 0)'
  MessageBox MB_OK|MB_ICONSTOP $1 /SD IDOK
  SetErrorLevel ${code}
  Quit
!macroend

; ForWhom: for all users where the user may write for all, else for the user alone.
!macro ForWhom
  SetRegView 64
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 == "Admin"
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
!macroend

; RefuseWhenLoaded FOLDER: a library that is loaded lets nobody write to it.
!macro RefuseWhenLoaded folder
  ${If} ${FileExists} "${folder}\Dravel64R.dll"
    ClearErrors
    FileOpen $0 "${folder}\Dravel64R.dll" a
    ${If} ${Errors}
      !insertmacro Refuse "${folder}\Dravel64R.dll is in use or write-protected. End the terminal, then try again. Nothing has been changed." 2
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

; IfNoFolder ... ${EndIf}. An empty folder would stand for the root of the drive.
!macro IfNoFolder
  ${If} $INSTDIR == ""
  ${OrIfNot} ${FileExists} "$INSTDIR\*.*"
!macroend

Function .onInit
  !insertmacro ForWhom
  ${If} $INSTDIR == ""  ; no /D=
    ReadRegStr $INSTDIR SHCTX "${SETTINGS}" "TerminalFolder"
  ${EndIf}
  ${If} ${Silent}
    !insertmacro IfNoFolder
      !insertmacro Refuse "There is no such folder: '$INSTDIR'. Give the terminal's folder as /D=. Nothing has been changed." 3
    ${EndIf}
  ${EndIf}
FunctionEnd

Function .onVerifyInstDir
  !insertmacro IfNoFolder
    Abort
  ${EndIf}
FunctionEnd

Section
  !define TARGET "$INSTDIR\${HOME}"
  !insertmacro RefuseWhenLoaded "${TARGET}"

  ; The library is written beside the old one and measured; when everything else is there, too, it is put in its place in one
  ; step. A disk that fills up ends the section with 2 at the file that it has no room for.
  SetOverwrite try
  SetOutPath "${TARGET}"
  ClearErrors
  File "/oname=Dravel64R.dll.new" "${STAGE}/PLUGINDLLS/Dravel/Dravel64R.dll"
  FileOpen $0 "${TARGET}\Dravel64R.dll.new" r
  FileSeek $0 0 END $1
  FileClose $0
  ${If} ${Errors}
  ${OrIf} $1 <> ${DLL_SIZE}
    Delete "${TARGET}\Dravel64R.dll.new"
    !insertmacro Refuse "${TARGET}\Dravel64R.dll cannot be written. See that the disk has room, then try again. Nothing has been changed." 2
  ${EndIf}

  ClearErrors
  File /r /x Dravel64R.dll "${STAGE}/PLUGINDLLS/Dravel/*.*"
  WriteUninstaller "${TARGET}\Uninstall-Dravel.exe"
  ${If} ${Errors}
    Delete "${TARGET}\Dravel64R.dll.new"
    !insertmacro Refuse "Not all files in ${TARGET} can be written. See that none of them is open or write-protected, then try again. Dravel64R.dll is the one from before." 2
  ${EndIf}

  System::Call 'kernel32::MoveFileEx(t "${TARGET}\Dravel64R.dll.new", t "${TARGET}\Dravel64R.dll", i ${REPLACE_AND_FLUSH}) i .r2'
  ${If} $2 = 0
    Delete "${TARGET}\Dravel64R.dll.new"
    !insertmacro Refuse "${TARGET}\Dravel64R.dll cannot be replaced. End the terminal, then try again. Dravel64R.dll is the one from before." 2
  ${EndIf}
  WriteRegStr SHCTX "${SETTINGS}" "TerminalFolder" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "Dravel"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayIcon" "${TARGET}\Dravel64R.dll"
  WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "Dravel"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "${TARGET}"
  WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"${TARGET}\Uninstall-Dravel.exe"'
  WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"${TARGET}\Uninstall-Dravel.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
SectionEnd

; A section that was ended: the disk is full.
Function .onInstFailed
  Delete "${TARGET}\Dravel64R.dll.new"
FunctionEnd

Function un.onInit
  !insertmacro ForWhom
FunctionEnd

; What the plug-in keeps (the folder Dravel here) stays; so only folders that are empty are removed.
Section Uninstall
  !insertmacro RefuseWhenLoaded "$INSTDIR"
  Delete "$INSTDIR\Dravel64R.dll"
  Delete "$INSTDIR\Readme.txt"
  Delete "$INSTDIR\Licences.txt"
  RMDir /r "$INSTDIR\Manual"
  Delete "$INSTDIR\Uninstall-Dravel.exe"
  RMDir "$INSTDIR"
  DeleteRegKey SHCTX "${UNINSTALL}"
  DeleteRegKey SHCTX "${SETTINGS}"
SectionEnd
