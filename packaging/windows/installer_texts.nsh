; What the installer says besides NSIS's own texts, by the words of docs/glossary.md.

!macro say name english chinese korean
    LangString ${name} ${LANG_ENGLISH} "${english}"
    LangString ${name} ${LANG_SIMPCHINESE} "${chinese}"
    LangString ${name} ${LANG_KOREAN} "${korean}"
!macroend
!define Say "!insertmacro say"

${Say} TextModeTitle "For whom" "安装范围" "설치 대상"
${Say} TextModeSubtitle "Choose who can use Tarn Hub on this computer." \
    "选择本机上谁可以使用 Tarn Hub." "이 컴퓨터에서 Tarn Hub를 사용할 사람을 선택하세요."
${Say} TextForMe "Only for &me" "仅为我安装(&M)" "나만 사용(&M)"
${Say} TextForMeMore "Needs no administrator. Upgrades install without a question." \
    "不需要管理员权限, 升级时无需确认权限." "관리자 권한이 필요 없으며 업그레이드할 때도 묻지 않습니다."
${Say} TextForAll "For &all users of this computer" "为本机所有用户安装(&A)" "이 컴퓨터의 모든 사용자(&A)"
${Say} TextForAllMore "Needs an administrator, now and for each upgrade." \
    "安装和每次升级都需要管理员权限." "설치와 업그레이드 때마다 관리자 권한이 필요합니다."

${Say} TextAnotherRuns "An installation or removal of Tarn Hub is already running." \
    "Tarn Hub 的安装或卸载程序已在运行." "Tarn Hub 설치 또는 제거가 이미 실행 중입니다."
${Say} TextOldSystem "Tarn Hub needs Windows 10 or later." "Tarn Hub 需要 Windows 10 或更高版本." \
    "Tarn Hub를 사용하려면 Windows 10 이상이 필요합니다."
${Say} TextNotAdministrator "Installing for all users needs an administrator's permission." \
    "为所有用户安装需要管理员许可." "모든 사용자용으로 설치하려면 관리자 권한이 필요합니다."
${Say} TextOlder "A newer version of Tarn Hub is installed. Replace it with version ${VERSION}?" \
    "已安装较新的版本. 是否替换为版本 ${VERSION}?" \
    "더 새로운 버전이 설치되어 있습니다. ${VERSION} 버전으로 바꾸시겠습니까?"
${Say} TextWrongFolder "Choose a folder of its own for Tarn Hub: one that is empty or does not exist yet, or the one in which it is installed." \
    "请为 Tarn Hub 选择单独的文件夹: 空文件夹, 尚不存在的文件夹, 或已安装本软件的文件夹." \
    "Tarn Hub 전용 폴더를 선택하세요. 비어 있거나 아직 없는 폴더, 또는 이미 설치된 폴더여야 합니다."
${Say} TextClose "Tarn Hub is running and has to be closed. Close it now?" \
    "Tarn Hub 正在运行, 需要先关闭. 是否现在关闭?" \
    "Tarn Hub가 실행 중이므로 종료해야 합니다. 지금 종료하시겠습니까?"
${Say} TextStillOpen "Tarn Hub is still open. It does not close while it upgrades boxes or waits for an answer. Close it, then try again." \
    "Tarn Hub 仍未关闭. 升级固件期间或等待回答时无法关闭. 请关闭后重试." \
    "Tarn Hub가 아직 열려 있습니다. 장치를 업그레이드하거나 응답을 기다리는 동안에는 종료되지 않습니다. 종료한 뒤 다시 시도하세요."
${Say} TextReplacing "Putting the new version into place" "正在替换为新版本" "새 버전으로 바꾸는 중"
${Say} TextNotReplaced "The files could not be put into place, because the disk is full or another program uses them. What was there before is unchanged." \
    "磁盘空间不足或文件被其他程序占用, 无法安装. 原有文件未改变." \
    "디스크 공간이 부족하거나 다른 프로그램이 파일을 사용하고 있어 설치하지 못했습니다. 기존 파일은 그대로입니다."
${Say} TextDamaged "The installation was broken off and is not complete. Run this installer again." \
    "安装中断且不完整. 请再次运行此安装程序." \
    "설치가 중단되어 완전하지 않습니다. 이 설치 프로그램을 다시 실행하세요."
${Say} TextNotRemoved "Tarn Hub could not be removed, because another program uses its files. Nothing was changed." \
    "文件被其他程序占用, 无法卸载. 未作任何更改." \
    "다른 프로그램이 파일을 사용하고 있어 제거하지 못했습니다. 변경된 것은 없습니다."
${Say} TextNoInstallation "Tarn Hub is not installed in this folder." "此文件夹中未安装 Tarn Hub." \
    "이 폴더에는 Tarn Hub가 설치되어 있지 않습니다."
${Say} TextRemoveTitle "Remove Tarn Hub" "卸载 Tarn Hub" "Tarn Hub 제거"
${Say} TextRemoveSubtitle "The program is removed from this computer." "将从本机卸载此软件." \
    "이 컴퓨터에서 프로그램을 제거합니다."
${Say} TextRemoveFrom "Tarn Hub is removed from this folder:" "将从以下文件夹卸载 Tarn Hub:" \
    "다음 폴더에서 Tarn Hub를 제거합니다."
${Say} TextData "&Delete my data as well" "同时删除我的数据(&D)" "내 데이터도 삭제(&D)"
${Say} TextAboutData "Logs, reports of upgrades, kept settings of boxes and downloaded packages. Recordings are not among them." \
    "日志, 升级报告, 保留的设备配置以及已下载的安装包和固件包. 不包括录像." \
    "로그, 업그레이드 보고서, 보관된 장치 설정, 다운로드한 패키지가 삭제됩니다. 녹화 파일은 포함되지 않습니다."
${Say} TextDataRemain "Some data could not be deleted, because another program uses them." \
    "部分数据被其他程序占用, 未能删除." \
    "다른 프로그램이 사용하고 있어 일부 데이터를 삭제하지 못했습니다."
