// SPDX-License-Identifier: MIT
#include "texts.h"

#include <windows.h>

namespace
{

struct Words {
    const wchar_t* english;
    const wchar_t* chinese;
    const wchar_t* korean;
};

Words words(Text which)
{
    switch (which) {
    case Text::None:
        break;
    case Text::Installing:
        return {L"Installing the new version of Tarn Hub. It starts by itself afterwards.",
                L"正在安装新版本的 Tarn Hub, 完成后将自动启动.",
                L"Tarn Hub의 새 버전을 설치하고 있습니다. 설치가 끝나면 자동으로 시작됩니다."};
    case Text::NotAsked:
        return {L"Tarn Hub starts this program itself when it installs a new version. There is "
                L"nothing to do here.",
                L"此程序由 Tarn Hub 在安装新版本时自动启动, 无需手动运行.",
                L"이 프로그램은 Tarn Hub가 새 버전을 설치할 때 직접 시작합니다. 따로 실행할 필요가 "
                L"없습니다."};
    case Text::StillRuns:
        return {
            L"The new version was not installed, because Tarn Hub is still running. Close it in "
            L"all sessions of this computer, then start it again and agree to the upgrade.",
            L"Tarn Hub 仍在运行, 未安装新版本. 请在本机的所有会话中关闭软件, "
            L"重新启动后再次确认升级.",
            L"Tarn Hub가 아직 실행 중이어서 새 버전을 설치하지 못했습니다. 이 컴퓨터의 모든 "
            L"세션에서 종료한 뒤 다시 시작하고 업그레이드를 확인하세요."};
    case Text::NotOurs:
        return {
            L"The new version was not installed: the installer is not where Tarn Hub puts its "
            L"downloads, or cannot be read. Restart Tarn Hub to download it again.",
            L"未安装新版本: 安装文件不在 Tarn Hub 的下载文件夹中, 或无法读取. "
            L"请重新启动软件以再次下载.",
            L"새 버전을 설치하지 못했습니다. 설치 파일이 Tarn Hub의 다운로드 폴더에 없거나 읽을 "
            L"수 없습니다. Tarn Hub를 다시 시작하여 다시 다운로드하세요."};
    case Text::NotStarted:
        return {L"The new version was not installed: its installer could not be started. The "
                L"previous version is unchanged.",
                L"未安装新版本: 无法启动安装程序. 原版本未改变.",
                L"새 버전을 설치하지 못했습니다. 설치 프로그램을 시작할 수 없습니다. 이전 버전은 "
                L"그대로입니다."};
    case Text::Declined:
        return {
            L"The new version was not installed, because the permission for it was refused. The "
            L"previous version is unchanged.",
            L"未获得管理员许可, 未安装新版本. 原版本未改变.",
            L"관리자 권한이 거부되어 새 버전을 설치하지 못했습니다. 이전 버전은 그대로입니다."};
    case Text::StillInstalls:
        return {L"The installation of the new version takes unusually long. When it has finished, "
                L"start Tarn Hub yourself.",
                L"新版本的安装时间过长. 安装完成后请自行启动 Tarn Hub.",
                L"새 버전 설치가 너무 오래 걸립니다. 설치가 끝나면 Tarn Hub를 직접 시작하세요."};
    case Text::Unchanged:
        return {L"The new version could not be installed. The previous version is unchanged. Make "
                L"room on the disk and close programs that use files of Tarn Hub, then try again.",
                L"新版本安装失败, 原版本未改变. 请检查磁盘空间, 关闭占用 Tarn Hub 文件的程序, "
                L"然后重试.",
                L"새 버전을 설치하지 못했습니다. 이전 버전은 그대로입니다. 디스크 공간을 확보하고 "
                L"Tarn Hub의 파일을 사용하는 프로그램을 종료한 뒤 다시 시도하세요."};
    case Text::Damaged:
        return {L"The installation was broken off and is not complete. Run the installer yourself:",
                L"安装中断且不完整. 请手动运行安装程序:",
                L"설치가 중단되어 완전하지 않습니다. 설치 프로그램을 직접 실행하세요:"};
    case Text::NoProgram:
        return {L"Tarn Hub could not be started. Please install it again.",
                L"无法启动 Tarn Hub. 请重新安装本软件.",
                L"Tarn Hub를 시작할 수 없습니다. 다시 설치하세요."};
    }
    return {L"", L"", L""};
}

} // namespace

const wchar_t* text(Text which)
{
    const Words all = words(which);
    switch (PRIMARYLANGID(GetUserDefaultUILanguage())) {
    case LANG_CHINESE:
        return all.chinese;
    case LANG_KOREAN:
        return all.korean;
    default:
        return all.english;
    }
}
