; The installer of Tarn Hub, made by scripts/build-windows --installer. docs/windows.md says what it
; can be told, and what its exit codes mean.
;
; It unpacks the new version beside the present one and leaves it to a helper of ours, from
; tools/upgrade, to exchange them: all files or none.

; A program of 64 bits, as what it installs: one view of the registry, one system folder.
Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
CRCCheck on
; Who installs for himself needs no administrator's right; for all users it is asked for.
RequestExecutionLevel user
ManifestDPIAware true
ManifestSupportedOS Win10
XPStyle on
AllowSkipFiles off
SetOverwrite on

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include WinVer.nsh
!include WordFunc.nsh
!include nsDialogs.nsh

!define NAME "Tarn Hub"
!define PROGRAM "Tarn Hub.exe"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tarn Hub"

; Exit codes; those of the helper are the same.
!define STILL_RUNS 3
!define WRONG_FOLDER 4
!define NOT_REPLACED 5
!define NOT_ADMINISTRATOR 6
!define OLD_SYSTEM 7
!define NO_HELPER 8
!define DAMAGED 9
!define DATA_REMAIN 10
!define ANOTHER_RUNS 11

Name "${NAME}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
VIProductVersion "${VERSION}"
VIAddVersionKey /LANG=1033 ProductName "${NAME}"
VIAddVersionKey /LANG=1033 ProductVersion "${VERSION}"
VIAddVersionKey /LANG=1033 FileVersion "${VERSION}"
VIAddVersionKey /LANG=1033 FileDescription "${NAME} Setup"
VIAddVersionKey /LANG=1033 CompanyName "The Tarn Hub developers"
VIAddVersionKey /LANG=1033 LegalCopyright "MIT License"

Var Mode ; AllUsers, CurrentUser or Portable
Var IsChosen ; 1: the command line says for whom
Var GivenFolder ; by /D=
Var IsAdministrator
Var Lock ; held by the one installer that may run
Var DeletesData ; 1: the removal takes this user's data along
Var Answer ; exit code of the helper

!include "installer_mode.nsh"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${__FILEDIR__}\side.bmp"
!define MUI_ABORTWARNING
Page custom modePage modePageLeft
!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE folderPageLeft
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!insertmacro MUI_PAGE_FINISH
UninstPage custom un.dataPage un.dataPageLeft
!insertmacro MUI_UNPAGE_INSTFILES
; The first one is taken where the system speaks none of them.
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "SimpChinese"
!insertmacro MUI_LANGUAGE "Korean"
!include "installer_texts.nsh"

; ${Helper} ORDER: its exit code goes to $Answer.
!macro callHelper order
    ClearErrors
    SetDetailsPrint none
    ExecWait '"$PLUGINSDIR\helper.exe" ${order} "$INSTDIR"' $Answer
    SetDetailsPrint both
    ${If} ${Errors}
        StrCpy $Answer ${NO_HELPER}
    ${EndIf}
!macroend
!define Helper "!insertmacro callHelper"

; ${GiveUp} CODE TEXT: the text is not shown in silent mode.
!macro giveUp code text
    SetErrorLevel ${code}
    MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
    Quit
!macroend
!define GiveUp "!insertmacro giveUp"

; Both the installer and the uninstaller begin with this, and close the running program so.
!macro sharedFunctions un
Function ${un}begin
    InitPluginsDir
    File "/oname=$PLUGINSDIR\helper.exe" "${HELPER_FILE}"
    System::Call 'kernel32::CreateMutexW(p 0, i 0, w "TarnHubSetup") p .s ?e'
    Pop $0
    Pop $Lock
    ${If} $0 = 183 ; ERROR_ALREADY_EXISTS
        ${GiveUp} ${ANOTHER_RUNS} "$(TextAnotherRuns)"
    ${EndIf}
    UserInfo::GetAccountType
    Pop $0
    StrCpy $IsAdministrator 0
    ${If} $0 == "Admin"
        StrCpy $IsAdministrator 1
    ${EndIf}
FunctionEnd

; Never ends a program by force: it may be in the middle of bringing new firmware to boxes.
Function ${un}closeProgram
    ${Helper} /runs
    ${If} $Answer <> ${STILL_RUNS}
        Return
    ${EndIf}
    MessageBox MB_OKCANCEL|MB_ICONINFORMATION "$(TextClose)" /SD IDOK IDOK +3
    SetErrorLevel ${STILL_RUNS}
    Call ${un}leave
    ask:
    ${Helper} /close
    ${If} $Answer = 0
        Return
    ${EndIf}
    SetErrorLevel ${STILL_RUNS}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(TextStillOpen)" /SD IDCANCEL IDRETRY ask
    Call ${un}leave
FunctionEnd
!macroend
!insertmacro sharedFunctions ""
!insertmacro sharedFunctions "un."

; --- the installer -------------------------------------------------------------------------------

; NSIS leaves a /D= out that it takes for no folder, and would install to the usual place then.
Function readGivenFolder
    StrCpy $GivenFolder $INSTDIR
    System::Call 'kernel32::GetCommandLineW() w .r0'
    ClearErrors
    ${WordFind} "$0" " /D=" "E+1}" $1
    ${IfNot} ${Errors}
    ${AndIf} $INSTDIR == ""
        ${GiveUp} ${WRONG_FOLDER} "$(TextWrongFolder)"
    ${EndIf}
FunctionEnd

Function .onInit
    Call begin
    Call readGivenFolder
    ${IfNot} ${AtLeastWin10}
        ${GiveUp} ${OLD_SYSTEM} "$(TextOldSystem)"
    ${EndIf}
    Call readMode
    ${If} $Mode == "AllUsers"
    ${AndIf} $IsAdministrator = 0
        ${If} ${Silent}
            SetErrorLevel ${NOT_ADMINISTRATOR}
            Quit
        ${EndIf}
        ${If} $IsChosen = 1
            Call becomeAdministrator
            ${GiveUp} ${NOT_ADMINISTRATOR} "$(TextNotAdministrator)"
        ${EndIf}
    ${EndIf}
    Call applyMode
    ${If} ${Silent}
        Call checkFolder
        ${If} $Answer <> 0
            SetErrorLevel ${WRONG_FOLDER}
            Quit
        ${EndIf}
    ${Else}
        Call askBeforeOlder
    ${EndIf}
FunctionEnd

Function askBeforeOlder
    ReadRegStr $0 SHCTX "${KEY}" DisplayVersion
    ${If} $0 != ""
        ${VersionCompare} "$0" "${VERSION}" $1
        ${If} $1 = 1
            MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(TextOlder)" IDYES +2
            Quit
        ${EndIf}
    ${EndIf}
FunctionEnd

Function checkFolder
    ${Helper} /check
FunctionEnd

Function folderPageLeft
    Call checkFolder
    ${If} $Answer <> 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "$(TextWrongFolder)"
        Abort
    ${EndIf}
FunctionEnd

Section "-program"
    ; The folder may have changed since it was looked at.
    ${Helper} /clean
    ${If} $Answer <> 0
        ${GiveUp} ${WRONG_FOLDER} "$(TextWrongFolder)"
    ${EndIf}
    ; What fails here, such as a disk without room, breaks off before anything has changed.
    !include "${FILES}"
    ${If} $Mode != "Portable"
        ClearErrors
        WriteUninstaller "$INSTDIR\new.tmp\Uninstall.exe"
        ${If} ${Errors}
            StrCpy $0 "Uninstall.exe"
            Call notReplaced
        ${EndIf}
    ${EndIf}
    ; A folder that a program stands in cannot be removed.
    SetOutPath "$PLUGINSDIR"
    Call closeProgram
    DetailPrint "$(TextReplacing)"
    ${Helper} /replace
    ${If} $Answer = ${DAMAGED}
        ${GiveUp} ${DAMAGED} "$(TextDamaged)"
    ${ElseIf} $Answer <> 0
        Call notReplaced
    ${EndIf}
    ${If} $Mode != "Portable"
        Call register
    ${EndIf}
SectionEnd

Function register
    ; The link's program starts in the folder that is set here.
    SetOutPath "$INSTDIR"
    CreateShortCut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    SetOutPath "$PLUGINSDIR"
    WriteRegStr SHCTX "${KEY}" DisplayName "${NAME}"
    WriteRegStr SHCTX "${KEY}" DisplayVersion "${VERSION}"
    WriteRegStr SHCTX "${KEY}" Publisher "The Tarn Hub developers"
    WriteRegStr SHCTX "${KEY}" URLInfoAbout "https://tarn-hub.example/"
    WriteRegStr SHCTX "${KEY}" DisplayIcon "$INSTDIR\${PROGRAM}"
    WriteRegStr SHCTX "${KEY}" InstallLocation "$INSTDIR"
    WriteRegStr SHCTX "${KEY}" UninstallString '"$INSTDIR\Uninstall.exe"'
    WriteRegStr SHCTX "${KEY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD SHCTX "${KEY}" EstimatedSize ${KIBIBYTES}
    WriteRegDWORD SHCTX "${KEY}" NoModify 1
    WriteRegDWORD SHCTX "${KEY}" NoRepair 1
FunctionEnd

Function notReplaced
    SetErrorLevel ${NOT_REPLACED}
    MessageBox MB_OK|MB_ICONSTOP "$(TextNotReplaced)" /SD IDOK
    Call leave
FunctionEnd

; Gives up after the error level has been set.
Function leave
    Call tidy
    Quit
FunctionEnd

; Unpacking broke off.
Function .onInstFailed
    SetErrorLevel ${NOT_REPLACED}
    Call tidy
FunctionEnd

Function tidy
    SetOutPath "$PLUGINSDIR"
    ${Helper} /clean
    ; Only when it is empty.
    RMDir "$INSTDIR"
FunctionEnd

Function startProgram
    ${If} $Mode == "AllUsers"
        ; As the user of the desktop, not as the administrator who has installed it.
        Exec '"$WINDIR\explorer.exe" "$INSTDIR\${PROGRAM}"'
    ${Else}
        SetOutPath "$INSTDIR"
        Exec '"$INSTDIR\${PROGRAM}"'
    ${EndIf}
FunctionEnd

; --- the uninstaller -----------------------------------------------------------------------------

Section "-un.program"
    Call un.closeProgram
    ClearErrors
    Delete "$INSTDIR\${PROGRAM}"
    ${If} ${Errors}
        ${GiveUp} ${NOT_REPLACED} "$(TextNotRemoved)"
    ${EndIf}
    Delete "$SMPROGRAMS\${NAME}.lnk"
    ${Helper} /clean
    !include "${REMOVAL}"
    Delete "$INSTDIR\installed.txt"
    Delete "$INSTDIR\Uninstall.exe"
    ; Only when it is empty: what others put there stays.
    RMDir "$INSTDIR"
    DeleteRegKey SHCTX "${KEY}"
SectionEnd

Section "-un.data"
    ${If} $DeletesData = 0
        Return
    ${EndIf}
    ${Helper} /delete-data
    ${If} $Answer <> 0
        SetErrorLevel ${DATA_REMAIN}
        MessageBox MB_OK|MB_ICONEXCLAMATION "$(TextDataRemain)" /SD IDOK
    ${EndIf}
SectionEnd

Var DataBox

Function un.dataPage
    !insertmacro MUI_HEADER_TEXT "$(TextRemoveTitle)" "$(TextRemoveSubtitle)"
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 10u 10u 95% 24u "$(TextRemoveFrom)$\n$INSTDIR"
    Pop $0
    ${NSD_CreateCheckBox} 10u 48u 95% 12u "$(TextData)"
    Pop $DataBox
    ${NSD_SetState} $DataBox $DeletesData
    ${NSD_CreateLabel} 22u 62u 90% 24u "$(TextAboutData)"
    Pop $0
    GetDlgItem $0 $HWNDPARENT 1
    SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^UninstallBtn)"
    nsDialogs::Show
FunctionEnd

Function un.dataPageLeft
    ${NSD_GetState} $DataBox $DeletesData
FunctionEnd

Function un.onInit
    Call un.begin
    ${Helper} /installed
    ${If} $Answer <> 0
        ${GiveUp} ${WRONG_FOLDER} "$(TextNoInstallation)"
    ${EndIf}
    Call un.readMode
    StrCpy $DeletesData 0
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/DELETEDATA" $1
    ${IfNot} ${Errors}
        StrCpy $DeletesData 1
    ${EndIf}
FunctionEnd

Function un.leave
    Quit
FunctionEnd
