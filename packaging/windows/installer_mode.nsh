; For whom the program is installed, and the page that asks.
;
; NSIS has MultiUser.nsh for this, but with that every administrator is asked for his right at the
; start, and an ordinary user who knows an administrator's password installs into that one's profile.

; Reads $Mode and $IsChosen: the command line decides, then what is installed already.
Function readMode
    StrCpy $IsChosen 1
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/AllUsers" $1
    ${IfNot} ${Errors}
        StrCpy $Mode "AllUsers"
        Return
    ${EndIf}
    ClearErrors
    ${GetOptions} $0 "/CurrentUser" $1
    ${IfNot} ${Errors}
        StrCpy $Mode "CurrentUser"
        Return
    ${EndIf}
    ClearErrors
    ${GetOptions} $0 "/Portable" $1
    ${IfNot} ${Errors}
        StrCpy $Mode "Portable"
        Return
    ${EndIf}
    StrCpy $IsChosen 0
    StrCpy $Mode "CurrentUser"
    ReadRegStr $0 HKCU "${KEY}" InstallLocation
    ReadRegStr $1 HKLM "${KEY}" InstallLocation
    ${If} $0 == ""
    ${AndIf} $1 != ""
        StrCpy $Mode "AllUsers"
    ${EndIf}
FunctionEnd

; Sets the folder: the one that was given, else where the program is, else the usual place.
Function applyMode
    ${If} $Mode == "AllUsers"
        SetShellVarContext all
        StrCpy $1 "$PROGRAMFILES64\${NAME}"
    ${Else}
        SetShellVarContext current
        StrCpy $1 "$LOCALAPPDATA\Programs\${NAME}"
    ${EndIf}
    StrCpy $0 ""
    ${If} $Mode != "Portable"
        ReadRegStr $0 SHCTX "${KEY}" InstallLocation
    ${EndIf}
    ${If} $GivenFolder != ""
        StrCpy $INSTDIR $GivenFolder
    ${ElseIf} $0 != ""
        StrCpy $INSTDIR $0
    ${Else}
        StrCpy $INSTDIR $1
    ${EndIf}
FunctionEnd

; Goes on as another process with an administrator's right, and comes back only when that was refused.
Function becomeAdministrator
    StrCpy $0 "/AllUsers"
    ${If} $GivenFolder != ""
        StrCpy $0 "$0 /D=$GivenFolder"
    ${EndIf}
    ; The other one would find this one running.
    System::Call 'kernel32::CloseHandle(p $Lock)'
    ClearErrors
    ExecShell "runas" "$EXEPATH" "$0"
    ${IfNot} ${Errors}
        Quit
    ${EndIf}
FunctionEnd

Var ModeForAll
Var ModeForMe

Function modePage
    ${If} $IsChosen = 1
        Abort
    ${EndIf}
    !insertmacro MUI_HEADER_TEXT "$(TextModeTitle)" "$(TextModeSubtitle)"
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateRadioButton} 10u 10u 95% 12u "$(TextForMe)"
    Pop $ModeForMe
    ${NSD_OnClick} $ModeForMe modeClicked
    ${NSD_CreateLabel} 22u 24u 90% 20u "$(TextForMeMore)"
    Pop $0
    ${NSD_CreateRadioButton} 10u 52u 95% 12u "$(TextForAll)"
    Pop $ModeForAll
    ${NSD_OnClick} $ModeForAll modeClicked
    ${NSD_CreateLabel} 22u 66u 90% 20u "$(TextForAllMore)"
    Pop $0
    ${If} $Mode == "AllUsers"
        ${NSD_Check} $ModeForAll
    ${Else}
        ${NSD_Check} $ModeForMe
    ${EndIf}
    Call showShield
    nsDialogs::Show
FunctionEnd

Function modeClicked
    Pop $0
    Call showShield
FunctionEnd

; The system's sign that a question for the administrator's right comes next.
Function showShield
    ${NSD_GetState} $ModeForAll $0
    GetDlgItem $1 $HWNDPARENT 1
    ${If} $0 = ${BST_CHECKED}
    ${AndIf} $IsAdministrator = 0
        SendMessage $1 0x160C 0 1 ; BCM_SETSHIELD
    ${Else}
        SendMessage $1 0x160C 0 0
    ${EndIf}
FunctionEnd

Function modePageLeft
    ${NSD_GetState} $ModeForAll $0
    ${If} $0 = ${BST_CHECKED}
        StrCpy $Mode "AllUsers"
        ${If} $IsAdministrator = 0
            Call becomeAdministrator
            MessageBox MB_OK|MB_ICONEXCLAMATION "$(TextNotAdministrator)"
            Abort
        ${EndIf}
    ${Else}
        StrCpy $Mode "CurrentUser"
    ${EndIf}
    GetDlgItem $1 $HWNDPARENT 1
    SendMessage $1 0x160C 0 0
    Call applyMode
FunctionEnd

; The uninstaller goes by how the folder that it lies in was registered.
Function un.readMode
    SetShellVarContext current
    ReadRegStr $0 HKLM "${KEY}" InstallLocation
    ReadRegStr $1 HKCU "${KEY}" InstallLocation
    ${If} $0 != $INSTDIR
    ${OrIf} $1 == $INSTDIR
        Return
    ${EndIf}
    SetShellVarContext all
    ${If} $IsAdministrator = 1
        Return
    ${EndIf}
    SetErrorLevel ${NOT_ADMINISTRATOR}
    ${IfNot} ${Silent}
        System::Call 'kernel32::CloseHandle(p $Lock)'
        ${GetParameters} $0
        ExecShell "runas" "$INSTDIR\Uninstall.exe" "$0"
    ${EndIf}
    Quit
FunctionEnd
