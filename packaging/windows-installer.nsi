; The installer for Windows: the files of the package, for all users of a machine, with what removes them again.
; Made by scripts/windows/package, which gives STAGE (the folder of the package), LISTS (the folder with the generated
; lists of files), VERSION, ICON, OUTPUT and CONTROL_ID (the class of the control).
;
; Silent: KorvelAuditViewer-VERSION-win64-setup.exe /S [/D=FOLDER]; removed by uninstall.exe /S. Exit codes: 0 done,
; 1 cancelled, 2 refused or failed; what exists stays as it was when an installation is refused.
Unicode true
Target amd64-unicode
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel admin
SetCompressor /SOLID lzma
SetDateSave on
CRCCheck force

!include MUI2.nsh
!include FileFunc.nsh
!include x64.nsh

!define NAME "Korvel Audit Viewer"
!define PROGRAM "KorvelAuditViewer.exe"
!define CONTROL "KorvelAuditViewerOCX.ocx"
!define REMOVAL "Software\Microsoft\Windows\CurrentVersion\Uninstall\KorvelAuditViewer"
!define SETTINGS "SOFTWARE\Molvane\AuditViewer"
!define QUERY_TYPE "KorvelAuditViewer.Query"

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
InstallDir "$PROGRAMFILES64\Korvel Audit Viewer"
InstallDirRegKey HKLM "${REMOVAL}" "InstallLocation"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "FileDescription" "${NAME}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "See licences\KorvelAuditViewer.txt"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${STAGE}/licences/KorvelAuditViewer.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "French"
!insertmacro MUI_LANGUAGE "Spanish"
!insertmacro MUI_LANGUAGE "Italian"

LangString inUse ${LANG_ENGLISH} "$R1 is in use. Close the viewer and programs that show it, and begin again."
LangString inUse ${LANG_GERMAN} "$R1 wird benutzt. Schließen Sie den Viewer und Programme, die ihn zeigen, und beginnen Sie noch einmal."
LangString inUse ${LANG_FRENCH} "$R1 est en cours d'utilisation. Fermez la visionneuse et les programmes qui l'affichent, puis recommencez."
LangString inUse ${LANG_SPANISH} "$R1 está en uso. Cierre el visor y los programas que lo muestran, y vuelva a empezar."
LangString inUse ${LANG_ITALIAN} "$R1 è in uso. Chiudere il visualizzatore e i programmi che lo mostrano, e ricominciare."
LangString only64 ${LANG_ENGLISH} "This program needs 64-bit Windows."
LangString only64 ${LANG_GERMAN} "Dieses Programm benötigt ein 64-Bit-Windows."
LangString only64 ${LANG_FRENCH} "Ce programme nécessite Windows 64 bits."
LangString only64 ${LANG_SPANISH} "Este programa necesita Windows de 64 bits."
LangString only64 ${LANG_ITALIAN} "Questo programma richiede Windows a 64 bit."
LangString notRemoved ${LANG_ENGLISH} "The earlier version in $R0 could not be removed."
LangString notRemoved ${LANG_GERMAN} "Die frühere Version in $R0 konnte nicht entfernt werden."
LangString notRemoved ${LANG_FRENCH} "La version précédente dans $R0 n'a pas pu être supprimée."
LangString notRemoved ${LANG_SPANISH} "No se pudo quitar la versión anterior de $R0."
LangString notRemoved ${LANG_ITALIAN} "La versione precedente in $R0 non è stata rimossa."
LangString queryFile ${LANG_ENGLISH} "Audit trail query"
LangString queryFile ${LANG_GERMAN} "Audit-Trail-Abfrage"
LangString queryFile ${LANG_FRENCH} "Requête de piste d'audit"
LangString queryFile ${LANG_SPANISH} "Consulta de pista de auditoría"
LangString queryFile ${LANG_ITALIAN} "Query di audit trail"

!macro refuse TEXT
  MessageBox MB_ICONSTOP "${TEXT}" /SD IDOK
  SetErrorLevel 2
  Quit
!macroend

; The file of a running program, and a library that a program has loaded, cannot be opened for writing.
!macro refuseInUse FILE
  ${If} ${FileExists} "${FILE}"
    StrCpy $R1 "${FILE}"
    ClearErrors
    FileOpen $0 "$R1" a
    ${If} ${Errors}
      !insertmacro refuse "$(inUse)"
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

; The toolkit's library stays in a program that has closed its last control.
!macro refuseWhileInUse FOLDER
  !insertmacro refuseInUse "${FOLDER}\${PROGRAM}"
  !insertmacro refuseInUse "${FOLDER}\korvel-audit.exe"
  !insertmacro refuseInUse "${FOLDER}\${CONTROL}"
  !insertmacro refuseInUse "${FOLDER}\Qt6Core.dll"
!macroend

; Whether the machine's control is the one in FOLDER: $R2 is its file then, or empty.
!macro findControl FOLDER
  StrCpy $R2 ""
  ReadRegStr $0 HKLM "Software\Classes\CLSID\${CONTROL_ID}\InprocServer32" ""
  ${If} $0 == "${FOLDER}\${CONTROL}"
    StrCpy $R2 $0
  ${EndIf}
!macroend

Function .onInit
  ${IfNot} ${RunningX64}
    !insertmacro refuse "$(only64)"
  ${EndIf}
  SetRegView 64
  SetShellVarContext all
FunctionEnd

Function un.onInit
  SetRegView 64
  SetShellVarContext all
FunctionEnd

Section
  !insertmacro refuseWhileInUse "$INSTDIR"
  !insertmacro findControl "$INSTDIR"
  ; An earlier version goes first, with the files that this one has not any more.
  ReadRegStr $R0 HKLM "${REMOVAL}" "InstallLocation"
  ${If} $R0 != ""
  ${AndIf} ${FileExists} "$R0\uninstall.exe"
    !insertmacro refuseWhileInUse "$R0"
    !insertmacro findControl "$R0"
    ExecWait '"$R0\uninstall.exe" /S _?=$R0' $1
    ${If} $1 != 0
      !insertmacro refuse "$(notRemoved)"
    ${EndIf}
    Delete "$R0\uninstall.exe"
    RMDir "$R0"
  ${EndIf}

  SetOutPath "$INSTDIR"
  ClearErrors
  File /r "${STAGE}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} ${Errors}
    SetErrorLevel 2
    Abort
  ${EndIf}
  ; A control that was registered from an earlier version.
  ${If} $R2 != ""
    ExecWait '"$SYSDIR\regsvr32.exe" /s "$INSTDIR\${CONTROL}"' $1
    ${If} $1 != 0
      SetErrorLevel 2
    ${EndIf}
  ${EndIf}
  CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"

  ; Where the viewer looks for its help; an ordinary user's viewer could not write it.
  ReadRegStr $0 HKLM "${SETTINGS}" "ViewerAppPath"
  ${If} $0 == ""
  ${OrIfNot} ${FileExists} "$0"
    WriteRegStr HKLM "${SETTINGS}" "ViewerAppPath" "$INSTDIR\${PROGRAM}"
  ${EndIf}

  WriteRegStr HKLM "Software\Classes\.vqf" "" "${QUERY_TYPE}"
  WriteRegStr HKLM "Software\Classes\${QUERY_TYPE}" "" "$(queryFile)"
  WriteRegStr HKLM "Software\Classes\${QUERY_TYPE}\DefaultIcon" "" "$INSTDIR\${PROGRAM},0"
  WriteRegStr HKLM "Software\Classes\${QUERY_TYPE}\shell\open\command" "" '"$INSTDIR\${PROGRAM}" "%1"'

  WriteRegStr HKLM "${REMOVAL}" "DisplayName" "${NAME}"
  WriteRegStr HKLM "${REMOVAL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${REMOVAL}" "DisplayIcon" "$INSTDIR\${PROGRAM}"
  WriteRegStr HKLM "${REMOVAL}" "Publisher" "Korvel"
  WriteRegStr HKLM "${REMOVAL}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${REMOVAL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${REMOVAL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${REMOVAL}" "NoModify" 1
  WriteRegDWORD HKLM "${REMOVAL}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  IntFmt $0 "0x%08X" $0
  WriteRegDWORD HKLM "${REMOVAL}" "EstimatedSize" "$0"
SectionEnd

Section "Uninstall"
  !insertmacro refuseWhileInUse "$INSTDIR"
  !insertmacro findControl "$INSTDIR"
  ${If} $R2 != ""
    ExecWait '"$SYSDIR\regsvr32.exe" /s /u "$R2"'
  ${EndIf}
  ; Nothing but what was installed: somebody may have put files of his own there.
  !include "${LISTS}/removed-files.nsh"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\${NAME}.lnk"

  ReadRegStr $0 HKLM "${SETTINGS}" "ViewerAppPath"
  ${If} $0 == "$INSTDIR\${PROGRAM}"
    DeleteRegValue HKLM "${SETTINGS}" "ViewerAppPath"
    ; Other settings are the site's.
    DeleteRegKey /ifempty HKLM "${SETTINGS}"
    DeleteRegKey /ifempty HKLM "SOFTWARE\Molvane"
  ${EndIf}
  ReadRegStr $0 HKLM "Software\Classes\.vqf" ""
  ${If} $0 == "${QUERY_TYPE}"
    DeleteRegValue HKLM "Software\Classes\.vqf" ""
    DeleteRegKey /ifempty HKLM "Software\Classes\.vqf"
  ${EndIf}
  DeleteRegKey HKLM "Software\Classes\${QUERY_TYPE}"
  DeleteRegKey HKLM "${REMOVAL}"
SectionEnd
