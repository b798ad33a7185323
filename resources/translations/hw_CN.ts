<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR" sourcelanguage="zh_CN">
  <context>
    <name>AudioLevels</name>
    <message>
      <source>控制 %1 失败,请重试!</source>
      <translation>설정하지 못했습니다: %1. 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>BatchStart</name>
    <message>
      <source>请您在设备列表中选择要升级固件的设备!</source>
      <translation>장치 목록에서 업그레이드할 장치를 선택하세요.</translation>
    </message>
    <message>
      <source>请您拖拽一个固件包文件到此处!</source>
      <translation>펌웨어 패키지 파일 하나를 여기로 끌어 놓으세요.</translation>
    </message>
    <message>
      <source>请您拖拽一个有效的固件升级包到此处</source>
      <translation>올바른 펌웨어 패키지를 여기로 끌어 놓으세요.</translation>
    </message>
    <message numerus="yes">
      <source>即将对您选择的%n个KORA进行升级固件操作,是否确认?</source>
      <translation>
        <numerusform>선택한 KORA %n대의 펌웨어를 업그레이드합니다. 계속할까요?</numerusform>
      </translation>
    </message>
  </context>
  <context>
    <name>BatchUpgrade</name>
    <message>
      <source>升级中,升级期间请不要关闭电源或者操作KORA.共[%1]个,成功[%2]个,未知[%3]个</source>
      <translation>업그레이드 중입니다. KORA의 전원을 끄거나 조작하지 마세요. 전체 [%1]대, 성공 [%2]대, 확인 안 됨 [%3]대</translation>
    </message>
    <message>
      <source>正在计算固件校验值</source>
      <translation>패키지 체크섬을 계산하는 중</translation>
    </message>
    <message>
      <source>全部升级完成,KORA即将重启完成固件升级.成功[%1]个</source>
      <translation>모두 업그레이드했습니다. KORA가 다시 시작하여 펌웨어 업그레이드를 마칩니다. 성공 [%1]대</translation>
    </message>
    <message>
      <source>部分升级完成,KORA即将重启完成固件升级.成功[%1]个,未知[%2]个</source>
      <translation>일부만 업그레이드했습니다. KORA가 다시 시작하여 펌웨어 업그레이드를 마칩니다. 성공 [%1]대, 확인 안 됨 [%2]대</translation>
    </message>
    <message>
      <source>选择固件</source>
      <translation>펌웨어 선택</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>固件包文件 (%1)</source>
      <translation>펌웨어 패키지 (%1)</translation>
    </message>
    <message>
      <source>正在等待此前的操作完成</source>
      <translation>이전 작업이 끝나기를 기다리는 중</translation>
    </message>
    <message>
      <source>此前的操作未完成，未升级</source>
      <translation>이전 작업이 끝나지 않아 업그레이드하지 않음</translation>
    </message>
    <message>
      <source>设备已不在列表中，未升级</source>
      <translation>장치가 더 이상 목록에 없어 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>计算校验值</source>
      <translation>체크섬 계산 중</translation>
    </message>
  </context>
  <context>
    <name>BoxGuard</name>
    <message>
      <source>设备可能仍在更新固件</source>
      <translation>장치가 아직 펌웨어를 업데이트 중일 수 있습니다</translation>
    </message>
    <message>
      <source>未确认此地址上是哪台设备</source>
      <translation>이 주소에 어떤 장치가 있는지 확인되지 않았습니다</translation>
    </message>
    <message>
      <source>不能确定设置属于哪台设备</source>
      <translation>설정이 어느 장치의 것인지 확실하지 않습니다</translation>
    </message>
    <message>
      <source>设置尚未写入磁盘</source>
      <translation>설정이 아직 디스크에 저장되지 않았습니다</translation>
    </message>
    <message>
      <source>写入的不是此设备的设置</source>
      <translation>쓰려는 값이 이 장치의 설정이 아닙니다</translation>
    </message>
    <message>
      <source>设备已经收到过更新固件的命令</source>
      <translation>장치에 이미 업데이트 명령을 보냈습니다</translation>
    </message>
    <message>
      <source>更新固件的命令尚未写入磁盘</source>
      <translation>업데이트 명령이 아직 디스크에 기록되지 않았습니다</translation>
    </message>
  </context>
  <context>
    <name>BoxUpgrade</name>
    <message>
      <source>开始上传固件(%1)</source>
      <translation>펌웨어 업로드 시작(%1)</translation>
    </message>
    <message>
      <source>上传固件 成功</source>
      <translation>펌웨어 업로드 성공</translation>
    </message>
    <message>
      <source>上传固件 失败 原因 : </source>
      <translation>펌웨어 업로드 실패, 원인: </translation>
    </message>
    <message>
      <source>重新开始上传固件(%1)</source>
      <translation>펌웨어 업로드 다시 시작(%1)</translation>
    </message>
    <message>
      <source>开始更新固件</source>
      <translation>펌웨어 업데이트 시작</translation>
    </message>
    <message>
      <source>更新固件 未知</source>
      <translation>펌웨어 업데이트 결과 알 수 없음</translation>
    </message>
    <message>
      <source>更新固件 成功</source>
      <translation>펌웨어 업데이트 성공</translation>
    </message>
    <message>
      <source>设备没有回应，未升级</source>
      <translation>장치가 응답하지 않아 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，无法保留设置，未升级</source>
      <translation>네트워크에 MAC 주소가 같은 장치가 두 대 있어 설정을 보존할 수 없으므로 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>此地址上现在是另一台设备（%1），未升级</source>
      <translation>이 주소에 이제 다른 장치(%1)가 있어 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>此MAC地址的另一台设备正在升级，未升级</source>
      <translation>이 MAC 주소의 다른 장치를 업그레이드하는 중이므로 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>设备正在升级固件或恢复设置，未再次升级</source>
      <translation>장치가 업그레이드 중이거나 설정을 복원하는 중이므로 다시 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，未升级</source>
      <translation>네트워크에 MAC 주소가 같은 장치가 두 대 있어 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>设备没有MAC地址，无法保留设置，未升级</source>
      <translation>장치에 MAC 주소가 없어 설정을 보존할 수 없으므로 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>正在读取设置</source>
      <translation>설정을 읽는 중</translation>
    </message>
    <message>
      <source>设置未能完整读取，未升级</source>
      <translation>설정을 모두 읽지 못하여 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>升级记录无法写入磁盘，未升级</source>
      <translation>업그레이드 기록을 디스크에 쓸 수 없어 업그레이드하지 않았습니다</translation>
    </message>
    <message>
      <source>恢复设置后重启，未再回应</source>
      <translation>설정 복원 후 다시 시작했으나 더 이상 응답하지 않습니다</translation>
    </message>
    <message>
      <source>设置写回后程序曾中断，设备可能尚未重启</source>
      <translation>설정을 다시 쓴 후 프로그램이 종료되어 장치가 다시 시작되지 않았을 수 있습니다</translation>
    </message>
    <message>
      <source>设置已写回，但不能确定设备已重启</source>
      <translation>설정을 다시 썼으나 장치가 다시 시작되었는지 확실하지 않습니다</translation>
    </message>
    <message>
      <source>内部检查未通过（%1），已停止对此设备的操作</source>
      <translation>내부 검사 실패(%1): 이 장치에 더 이상 아무것도 보내지 않습니다</translation>
    </message>
    <message>
      <source>此地址上的设备现在才告知MAC地址（%1），未升级，请重试</source>
      <translation>이 주소의 장치가 이제야 MAC 주소(%1)를 알려 왔습니다. 업그레이드하지 않았으니 다시 시도하세요</translation>
    </message>
  </context>
  <context>
    <name>Closing</name>
    <message>
      <source>正在向KORA发送命令，完成后将自动关闭。</source>
      <translation>KORA에 명령을 보내는 중입니다. 완료되면 프로그램이 자동으로 닫힙니다.</translation>
    </message>
  </context>
  <context>
    <name>ConfigurationArea</name>
    <message>
      <source>配置区域:</source>
      <translation>설정:</translation>
    </message>
    <message>
      <source>NDI流名称 :</source>
      <translation>NDI 스트림 이름:</translation>
    </message>
    <message>
      <source>NDI HX编码质量 :</source>
      <translation>NDI HX 인코딩 품질:</translation>
    </message>
    <message>
      <source>很高</source>
      <translation>매우 높음</translation>
    </message>
    <message>
      <source>高</source>
      <translation>높음</translation>
    </message>
    <message>
      <source>中</source>
      <translation>보통</translation>
    </message>
    <message>
      <source>低</source>
      <translation>낮음</translation>
    </message>
    <message>
      <source>很低</source>
      <translation>매우 낮음</translation>
    </message>
    <message>
      <source>画质级别 :</source>
      <translation>프로파일:</translation>
    </message>
    <message>
      <source>码率控制 :</source>
      <translation>비트레이트 제어:</translation>
    </message>
    <message>
      <source>Gop长度 (0~200) :</source>
      <translation>GOP 길이 (0~200):</translation>
    </message>
    <message>
      <source>比特率 (0~120) Mbps :</source>
      <translation>비트레이트 (0~120 Mbps):</translation>
    </message>
    <message>
      <source>DHCP :</source>
      <translation>DHCP:</translation>
    </message>
    <message>
      <source>静态IP地址 :</source>
      <translation>고정 IP 주소:</translation>
    </message>
    <message>
      <source>静态子网掩码 :</source>
      <translation>고정 서브넷 마스크:</translation>
    </message>
    <message>
      <source>NTP服务器地址 :</source>
      <translation>NTP 서버 주소:</translation>
    </message>
    <message>
      <source>Color颜色模式</source>
      <translation>색상 모드:</translation>
    </message>
    <message>
      <source>保存</source>
      <translation>저장</translation>
    </message>
    <message>
      <source>Ctrl+S</source>
      <translation>Ctrl+S</translation>
    </message>
    <message>
      <source>DHCP已打开，关闭后才使用此设置</source>
      <translation>DHCP가 켜져 있는 동안에는 사용되지 않음</translation>
    </message>
  </context>
  <context>
    <name>ConfigurationSave</name>
    <message>
      <source>请输入正确的IP地址和子网掩码</source>
      <translation>올바른 IP 주소와 서브넷 마스크를 입력하세요.</translation>
    </message>
    <message>
      <source>设置参数部分失败,请检查KORA网络状态后重试.</source>
      <translation>일부 설정을 적용하지 못했습니다. KORA 네트워크 상태를 확인한 후 다시 시도하세요.</translation>
    </message>
    <message>
      <source>设置成功,正在重启KORA软件.</source>
      <translation>설정을 저장했습니다. KORA 소프트웨어를 다시 시작하는 중입니다.</translation>
    </message>
    <message>
      <source>设置成功,正在重启KORA设备.</source>
      <translation>설정을 저장했습니다. KORA 장치를 다시 시작하는 중입니다.</translation>
    </message>
    <message>
      <source>设置参数成功.</source>
      <translation>설정을 저장했습니다.</translation>
    </message>
    <message numerus="yes">
      <source>%n 项参数未从设备读到，没有保存。</source>
      <translation>
        <numerusform>설정 %n개는 장치에서 읽지 못하여 저장하지 않았습니다.</numerusform>
      </translation>
    </message>
    <message>
      <source>尚未读到设备的参数，没有可保存的内容。</source>
      <translation>장치의 설정을 아직 읽지 못하여 저장할 내용이 없습니다.</translation>
    </message>
    <message>
      <source>未读到设备的静态IP地址和子网掩码，不能关闭DHCP。</source>
      <translation>장치의 고정 IP 주소와 서브넷 마스크를 읽지 못하여 DHCP를 끌 수 없습니다.</translation>
    </message>
    <message>
      <source>设置已写入，但不能确定KORA已重启，重启后才会生效。</source>
      <translation>설정을 기록했지만 KORA가 다시 시작되었는지 확실하지 않습니다. 다시 시작해야 적용됩니다.</translation>
    </message>
  </context>
  <context>
    <name>ControlArea</name>
    <message>
      <source>控制区域:</source>
      <translation>제어:</translation>
    </message>
    <message>
      <source>HX 编码类型 :</source>
      <translation>HX 코덱:</translation>
    </message>
    <message>
      <source>SDI音量 (0~32)</source>
      <translation>SDI 음량 (0~32)</translation>
    </message>
    <message>
      <source>嵌入音量 (0~32)</source>
      <translation>라인 입력 음량 (0~32)</translation>
    </message>
    <message>
      <source>嵌入音量延时(0~341)ms</source>
      <translation>라인 입력 지연 (0~341 ms)</translation>
    </message>
    <message>
      <source>解码控制</source>
      <translation>디코딩 제어</translation>
    </message>
    <message>
      <source>直播服务控制</source>
      <translation>라이브 송출</translation>
    </message>
    <message>
      <source>录制</source>
      <translation>녹화</translation>
    </message>
  </context>
  <context>
    <name>CrashNotice</name>
    <message>
      <source>软件上次异常退出。</source>
      <translation>프로그램이 지난번에 비정상 종료되었습니다.</translation>
    </message>
    <message>
      <source>查看崩溃记录</source>
      <translation>크래시 덤프 폴더 열기</translation>
    </message>
    <message>
      <source>关闭</source>
      <translation>닫기</translation>
    </message>
  </context>
  <context>
    <name>DecodeControl</name>
    <message>
      <source>开启解码成功</source>
      <translation>디코딩을 시작했습니다.</translation>
    </message>
    <message>
      <source>关闭解码成功</source>
      <translation>디코딩을 중지했습니다.</translation>
    </message>
    <message>
      <source>开启解码成功%1</source>
      <translation>디코딩을 시작했습니다: %1</translation>
    </message>
    <message>
      <source>开启解码失败%1,请重试!</source>
      <translation>%1 디코딩을 시작하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>关闭解码失败,请重试!</source>
      <translation>디코딩을 중지하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>尚未读到设备的编码状态，请稍后重试。</source>
      <translation>장치의 인코딩 상태를 아직 읽지 못했습니다. 잠시 후 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>DeviceAbsence</name>
    <message>
      <source>无应答</source>
      <translation>응답 없음</translation>
    </message>
    <message>
      <source>拒绝连接</source>
      <translation>연결 거부</translation>
    </message>
    <message>
      <source>可以连接，但没有完整应答</source>
      <translation>연결되지만 완전한 응답 없음</translation>
    </message>
    <message>
      <source>应答错误：HTTP %1</source>
      <translation>HTTP %1 오류로 응답</translation>
    </message>
    <message>
      <source>应答无法识别</source>
      <translation>인식할 수 없는 응답</translation>
    </message>
    <message>
      <source>有应答</source>
      <translation>응답함</translation>
    </message>
    <message>
      <source>没有网络连接</source>
      <translation>네트워크 연결 없음</translation>
    </message>
    <message>
      <source>网线或无线未连接（%1）</source>
      <translation>케이블·Wi-Fi 연결 안 됨 (%1)</translation>
    </message>
    <message>
      <source>网段与设备不同（%1）</source>
      <translation>다른 서브넷 (%1)</translation>
    </message>
    <message>
      <source>%1：%2</source>
      <translation>%1: %2</translation>
    </message>
    <message>
      <source>这台电脑</source>
      <translation>이 컴퓨터</translation>
    </message>
    <message>
      <source>Ping</source>
      <translation>Ping</translation>
    </message>
    <message>
      <source>自%1起无应答</source>
      <translation>%1부터 응답 없음</translation>
    </message>
    <message>
      <source>端口%1</source>
      <translation>포트 %1</translation>
    </message>
    <message>
      <source>事件通道%1</source>
      <translation>이벤트 피드 %1</translation>
    </message>
    <message>
      <source>自%1起中断</source>
      <translation>%1부터 끊김</translation>
    </message>
    <message>
      <source>设备离线，自%1起无应答</source>
      <translation>오프라인: %1부터 응답 없음</translation>
    </message>
  </context>
  <context>
    <name>DeviceArea</name>
    <message>
      <source>设备列表:</source>
      <translation>장치 목록:</translation>
    </message>
    <message>
      <source>固件升级</source>
      <translation>펌웨어 업그레이드</translation>
    </message>
    <message>
      <source>计算固件MD5</source>
      <translation>펌웨어 MD5 계산</translation>
    </message>
    <message>
      <source>全部折叠</source>
      <translation>모두 접기</translation>
    </message>
    <message>
      <source>全部展开</source>
      <translation>모두 펼치기</translation>
    </message>
    <message>
      <source>刷新设备列表</source>
      <translation>장치 목록 새로 고침</translation>
    </message>
    <message>
      <source>语言</source>
      <translation>언어</translation>
    </message>
    <message>
      <source>设备列表</source>
      <translation>장치 목록</translation>
    </message>
    <message>
      <source>本机IP地址:</source>
      <translation>이 컴퓨터:</translation>
    </message>
    <message>
      <source>升级报告</source>
      <translation>업그레이드 보고서</translation>
    </message>
    <message>
      <source>查找设备</source>
      <translation>장치 찾기</translation>
    </message>
    <message>
      <source>地址，名称，MAC，版本或状态</source>
      <translation>주소, 이름, MAC, 버전 또는 상태</translation>
    </message>
  </context>
  <context>
    <name>DeviceFilter</name>
    <message>
      <source>在线</source>
      <translation>온라인</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>오프라인</translation>
    </message>
    <message>
      <source>可升级</source>
      <translation>업그레이드 가능</translation>
    </message>
    <message>
      <source>升级中</source>
      <translation>업그레이드 중</translation>
    </message>
  </context>
  <context>
    <name>DeviceHint</name>
    <message>
      <source>正在搜索设备…</source>
      <translation>장치를 찾는 중…</translation>
    </message>
    <message>
      <source>没有网络连接</source>
      <translation>네트워크에 연결되어 있지 않음</translation>
    </message>
    <message>
      <source>这台电脑没有可以搜索的网络。请检查网线和网卡设置。</source>
      <translation>이 컴퓨터에 검색할 네트워크가 없습니다. 케이블과 네트워크 설정을 확인하세요.</translation>
    </message>
    <message>
      <source>没有符合条件的设备</source>
      <translation>조건에 맞는 장치 없음</translation>
    </message>
    <message>
      <source>按Esc显示全部设备。</source>
      <translation>검색란에서 Esc를 누르면 모든 장치가 표시됩니다.</translation>
    </message>
    <message numerus="yes">
      <source>已搜索%n秒，还没有找到设备。请检查：</source>
      <translation>
        <numerusform>%n초 동안 찾은 장치가 없습니다. 다음을 확인하세요.</numerusform>
      </translation>
    </message>
    <message>
      <source>设备已通电，网线已接好。</source>
      <translation>장치 전원이 켜져 있고 케이블이 연결되어 있는지</translation>
    </message>
    <message>
      <source>这台电脑与设备在同一网段。</source>
      <translation>이 컴퓨터가 같은 서브넷에 있는지</translation>
    </message>
    <message>
      <source>防火墙没有阻止ping和端口8081。</source>
      <translation>방화벽이 ping과 포트 8081을 막지 않는지</translation>
    </message>
  </context>
  <context>
    <name>DeviceInfo</name>
    <message>
      <source>设备名称</source>
      <translation>장치 이름</translation>
    </message>
    <message>
      <source>固件版本</source>
      <translation>펌웨어 버전</translation>
    </message>
    <message>
      <source>硬件版本</source>
      <translation>하드웨어 버전</translation>
    </message>
    <message>
      <source>NDI SDK版本</source>
      <translation>NDI SDK 버전</translation>
    </message>
    <message>
      <source>剩余磁盘空间</source>
      <translation>남은 디스크 공간</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC 주소</translation>
    </message>
  </context>
  <context>
    <name>DeviceMenu</name>
    <message>
      <source>复制名称</source>
      <translation>이름 복사</translation>
    </message>
    <message>
      <source>在浏览器中打开</source>
      <translation>브라우저에서 열기</translation>
    </message>
    <message>
      <source>导出设备清单…</source>
      <translation>장치 목록 내보내기…</translation>
    </message>
    <message>
      <source>导出设备清单</source>
      <translation>장치 목록 내보내기</translation>
    </message>
    <message>
      <source>名称</source>
      <translation>이름</translation>
    </message>
    <message>
      <source>地址</source>
      <translation>주소</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC 주소</translation>
    </message>
    <message>
      <source>类型</source>
      <translation>유형</translation>
    </message>
    <message>
      <source>固件版本</source>
      <translation>펌웨어 버전</translation>
    </message>
    <message>
      <source>状态</source>
      <translation>상태</translation>
    </message>
    <message>
      <source>最后在线</source>
      <translation>마지막 응답</translation>
    </message>
    <message>
      <source>在线</source>
      <translation>온라인</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>오프라인</translation>
    </message>
    <message>
      <source>表格 (%1)</source>
      <translation>스프레드시트 (%1)</translation>
    </message>
    <message>
      <source>设备清单已保存到%1</source>
      <translation>장치 목록을 저장했습니다. (%1)</translation>
    </message>
    <message>
      <source>无法保存设备清单：%1</source>
      <translation>장치 목록을 저장할 수 없습니다. (%1)</translation>
    </message>
  </context>
  <context>
    <name>DeviceSelection</name>
    <message>
      <source>确认要重启KORA设备吗? </source>
      <translation>이 KORA 장치를 다시 시작할까요? 주소: </translation>
    </message>
    <message>
      <source>KORA %1 未重启，请检查KORA网络状态后重试。</source>
      <translation>KORA %1: 다시 시작하지 못했습니다. KORA 네트워크 상태를 확인한 후 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>DownloadLine</name>
    <message>
      <source>关闭</source>
      <translation>닫기</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>已保存</source>
      <translation>저장됨</translation>
    </message>
    <message>
      <source>已取消</source>
      <translation>취소됨</translation>
    </message>
    <message>
      <source>下载失败（%1）</source>
      <translation>다운로드 실패 (%1)</translation>
    </message>
    <message>
      <source>下载失败</source>
      <translation>다운로드 실패</translation>
    </message>
  </context>
  <context>
    <name>DownloadRow</name>
    <message>
      <source>取消下载</source>
      <translation>다운로드 취소</translation>
    </message>
    <message>
      <source>继续下载</source>
      <translation>다운로드 이어받기</translation>
    </message>
    <message>
      <source>未下载完</source>
      <translation>미완료</translation>
    </message>
    <message>
      <source>等待下载</source>
      <translation>대기 중</translation>
    </message>
    <message>
      <source>正在重新连接</source>
      <translation>다시 연결하는 중</translation>
    </message>
  </context>
  <context>
    <name>EncoderControl</name>
    <message>
      <source>控制 HB 失败,请重试!</source>
      <translation>NDI HB를 전환하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>控制 HX2 失败,请重试!</source>
      <translation>NDI HX2를 전환하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>控制 HX3 失败,请重试!</source>
      <translation>NDI HX3을 전환하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>控制 H264 失败,请重试!</source>
      <translation>HX 코덱을 전환하지 못했습니다. 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>EventPane</name>
    <message>
      <source>尝试重新连接 </source>
      <translation>다시 연결하는 중: </translation>
    </message>
  </context>
  <context>
    <name>FFmpegWidget</name>
    <message>
      <source>播放本地文件</source>
      <translation>로컬 파일 재생</translation>
    </message>
    <message>
      <source>网络拉流地址</source>
      <translation>네트워크 스트림 주소</translation>
    </message>
    <message>
      <source>选择视频文件</source>
      <translation>비디오 파일 선택</translation>
    </message>
    <message>
      <source>视频文件 (%1)</source>
      <translation>비디오 파일 (%1)</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>请输入拉流的网络地址.</source>
      <translation>스트림을 가져올 네트워크 주소를 입력하세요.</translation>
    </message>
    <message>
      <source>保存当前画面</source>
      <translation>현재 화면 저장</translation>
    </message>
    <message>
      <source>显示播放信息</source>
      <translation>재생 정보 표시</translation>
    </message>
    <message>
      <source>停止播放</source>
      <translation>재생 중지</translation>
    </message>
    <message>
      <source>已保存 %1</source>
      <translation>%1 저장됨</translation>
    </message>
    <message>
      <source>无法保存画面：%1</source>
      <translation>화면을 저장할 수 없습니다: %1</translation>
    </message>
  </context>
  <context>
    <name>FieldMark</name>
    <message>
      <source>已修改，尚未保存</source>
      <translation>변경됨, 아직 저장되지 않음</translation>
    </message>
    <message>
      <source>设备没有此参数</source>
      <translation>장치에 없는 설정</translation>
    </message>
    <message>
      <source>尚未从设备读到，不能修改，也不会保存</source>
      <translation>아직 장치에서 읽지 못해 변경할 수 없으며 저장되지 않습니다</translation>
    </message>
    <message>
      <source>未知</source>
      <translation>알 수 없음</translation>
    </message>
  </context>
  <context>
    <name>FiguresView</name>
    <message>
      <source>编码</source>
      <translation>코덱</translation>
    </message>
    <message>
      <source>画面尺寸</source>
      <translation>해상도</translation>
    </message>
    <message>
      <source>帧率</source>
      <translation>프레임 레이트</translation>
    </message>
    <message>
      <source>码率</source>
      <translation>비트레이트</translation>
    </message>
    <message>
      <source>延迟</source>
      <translation>지연</translation>
    </message>
    <message>
      <source>丢弃的画面</source>
      <translation>누락된 프레임</translation>
    </message>
    <message>
      <source>解码方式</source>
      <translation>디코더</translation>
    </message>
    <message>
      <source>重新连接</source>
      <translation>재연결</translation>
    </message>
    <message>
      <source>声音</source>
      <translation>오디오</translation>
    </message>
    <message>
      <source>无声音</source>
      <translation>없음</translation>
    </message>
    <message>
      <source>%1 个声道</source>
      <translation>채널 %1개</translation>
    </message>
    <message>
      <source>软件，%1 个线程</source>
      <translation>소프트웨어, 스레드 %1개</translation>
    </message>
  </context>
  <context>
    <name>Hub</name>
    <message>
      <source>请您在设备列表中选择要操作的设备!</source>
      <translation>먼저 장치 목록에서 장치를 선택하세요.</translation>
    </message>
    <message>
      <source>KORA %1 正在升级固件或恢复设置，请等待完成后再操作。</source>
      <translation>KORA %1의 펌웨어를 업그레이드하거나 설정을 복원하는 중입니다. 완료된 후 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>IPAddress</name>
    <message>
      <source>%1，第%2段，共4段</source>
      <translation>%1, 4칸 중 %2번째</translation>
    </message>
  </context>
  <context>
    <name>InfoArea</name>
    <message>
      <source>设备信息:</source>
      <translation>장치 정보:</translation>
    </message>
    <message>
      <source>设备信息</source>
      <translation>장치 정보</translation>
    </message>
  </context>
  <context>
    <name>InfoHint</name>
    <message>
      <source>选择一个设备，这里显示它的信息</source>
      <translation>장치를 선택하면 여기에 정보가 표시됩니다</translation>
    </message>
    <message>
      <source>正在读取…</source>
      <translation>읽는 중…</translation>
    </message>
  </context>
  <context>
    <name>Inputui</name>
    <message>
      <source>请输入</source>
      <translation>입력하세요</translation>
    </message>
    <message>
      <source>0/50</source>
      <translation>0/50</translation>
    </message>
    <message>
      <source>0/500</source>
      <translation>0/500</translation>
    </message>
  </context>
  <context>
    <name>ListWidget</name>
    <message>
      <source>下载</source>
      <translation>다운로드</translation>
    </message>
    <message>
      <source>删除</source>
      <translation>삭제</translation>
    </message>
    <message>
      <source>%1，正在播放</source>
      <translation>%1, 재생 중</translation>
    </message>
    <message>
      <source>视频</source>
      <translation>동영상</translation>
    </message>
  </context>
  <context>
    <name>LiveControl</name>
    <message>
      <source>关闭直播服务成功</source>
      <translation>송출을 중지했습니다.</translation>
    </message>
    <message>
      <source>开启直播服务成功</source>
      <translation>송출을 시작했습니다.</translation>
    </message>
    <message>
      <source>开启直播服务失败</source>
      <translation>라이브 송출을 시작하지 못했습니다. 주소와 네트워크를 확인한 후 다시 시도하세요.</translation>
    </message>
    <message>
      <source>关闭直播服务失败</source>
      <translation>라이브 송출을 중지하지 못했습니다. 네트워크를 확인한 후 다시 시도하세요.</translation>
    </message>
    <message>
      <source>设备没有回应，直播服务可能没有开启。</source>
      <translation>장치가 응답하지 않습니다. 송출이 시작되지 않았을 수 있습니다.</translation>
    </message>
    <message>
      <source>设备没有回应，直播服务可能没有关闭。</source>
      <translation>장치가 응답하지 않습니다. 송출이 중지되지 않았을 수 있습니다.</translation>
    </message>
    <message>
      <source>开启直播服务成功%1</source>
      <translation>송출을 시작했습니다. 수신 주소: %1</translation>
    </message>
  </context>
  <context>
    <name>Md5Tool</name>
    <message>
      <source>文件打开失败! </source>
      <translation>파일을 열 수 없습니다.</translation>
    </message>
  </context>
  <context>
    <name>MonitorArea</name>
    <message>
      <source>监控区域:</source>
      <translation>모니터:</translation>
    </message>
    <message>
      <source>切换画面和流信息</source>
      <translation>화면과 스트림 정보 사이를 전환</translation>
    </message>
    <message>
      <source>收起或展开右侧面板</source>
      <translation>오른쪽 패널 접기/펼치기</translation>
    </message>
    <message>
      <source>全屏</source>
      <translation>전체 화면</translation>
    </message>
    <message>
      <source>退出全屏</source>
      <translation>전체 화면 종료</translation>
    </message>
    <message>
      <source>上一个</source>
      <translation>이전</translation>
    </message>
    <message>
      <source>播放</source>
      <translation>재생 또는 중지</translation>
    </message>
    <message>
      <source>下一个</source>
      <translation>다음</translation>
    </message>
    <message>
      <source>流信息</source>
      <translation>스트림</translation>
    </message>
    <message>
      <source>媒体信息</source>
      <translation>미디어</translation>
    </message>
    <message>
      <source>画面</source>
      <translation>화면</translation>
    </message>
  </context>
  <context>
    <name>Orders</name>
    <message>
      <source>此地址上现在是另一台设备。</source>
      <translation>이 주소에는 이제 다른 장치가 있습니다.</translation>
    </message>
    <message>
      <source>此地址上的设备现在才告知MAC地址，请确认后重试。</source>
      <translation>이 주소의 장치가 이제야 MAC 주소를 알려 왔습니다. 확인한 후 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>PageBar</name>
    <message>
      <source>此网页想访问另一台主机：%1</source>
      <translation>이 페이지가 다른 호스트에 접속하려고 합니다: %1</translation>
    </message>
    <message>
      <source>此网页多次要求登录，不再询问。</source>
      <translation>이 페이지가 로그인을 여러 번 요청하여 더 이상 묻지 않습니다.</translation>
    </message>
    <message>
      <source>此网页打开了太多对话框，不再显示。</source>
      <translation>이 페이지가 대화 상자를 너무 많이 열어 더 이상 표시하지 않습니다.</translation>
    </message>
    <message>
      <source>此网页没有响应。</source>
      <translation>이 페이지가 응답하지 않습니다.</translation>
    </message>
    <message>
      <source>允许</source>
      <translation>허용</translation>
    </message>
    <message>
      <source>关闭网页</source>
      <translation>페이지 닫기</translation>
    </message>
    <message>
      <source>重新加载</source>
      <translation>새로 고침</translation>
    </message>
    <message>
      <source>不允许</source>
      <translation>허용 안 함</translation>
    </message>
    <message>
      <source>等待</source>
      <translation>대기</translation>
    </message>
    <message>
      <source>关闭</source>
      <translation>닫기</translation>
    </message>
  </context>
  <context>
    <name>PageDialog</name>
    <message>
      <source>未知来源</source>
      <translation>알 수 없는 출처</translation>
    </message>
    <message>
      <source>选择发送给 %1 的文件</source>
      <translation>보낼 파일 선택 (받는 곳: %1)</translation>
    </message>
    <message>
      <source>%1 要求登录</source>
      <translation>%1에서 로그인을 요청합니다</translation>
    </message>
    <message>
      <source>%1 的网页显示</source>
      <translation>%1 페이지의 메시지</translation>
    </message>
    <message>
      <source>不再显示此网页的对话框</source>
      <translation>이 페이지의 대화 상자를 더 이상 표시하지 않음</translation>
    </message>
    <message>
      <source>用户名</source>
      <translation>사용자 이름</translation>
    </message>
    <message>
      <source>密码</source>
      <translation>암호</translation>
    </message>
    <message>
      <source>确定</source>
      <translation>확인</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
  </context>
  <context>
    <name>PageNotice</name>
    <message>
      <source>重试</source>
      <translation>다시 시도</translation>
    </message>
    <message>
      <source>在浏览器中打开</source>
      <translation>브라우저에서 열기</translation>
    </message>
    <message>
      <source>正在打开设备的网页…</source>
      <translation>장치의 웹 페이지를 여는 중…</translation>
    </message>
    <message>
      <source>无法打开设备的网页。</source>
      <translation>장치의 웹 페이지를 열 수 없습니다.</translation>
    </message>
    <message>
      <source>设备没有返回可显示的网页。</source>
      <translation>장치가 표시할 수 있는 페이지를 보내지 않았습니다.</translation>
    </message>
    <message>
      <source>网页意外终止，正在重新加载…</source>
      <translation>페이지가 예기치 않게 종료되어 다시 불러오는 중…</translation>
    </message>
    <message>
      <source>此设备通过自己的网页管理。</source>
      <translation>이 장치는 자체 웹 페이지로 관리합니다.</translation>
    </message>
    <message>
      <source>请检查设备的电源和网络连接。</source>
      <translation>장치의 전원과 네트워크 연결을 확인하세요.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它没有安装。</source>
      <translation>내장 브라우저를 사용할 수 없습니다. 설치되어 있지 않습니다.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它的安全沙箱不允许以 root 身份运行。</source>
      <translation>내장 브라우저를 사용할 수 없습니다. 보안 샌드박스는 root로 실행되지 않습니다.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：系统没有为它提供安全沙箱。</source>
      <translation>내장 브라우저를 사용할 수 없습니다. 시스템이 보안 샌드박스를 제공하지 않습니다.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它的程序文件不完整。</source>
      <translation>내장 브라우저를 사용할 수 없습니다. 프로그램 파일이 완전하지 않습니다.</translation>
    </message>
    <message>
      <source>网页已关闭。</source>
      <translation>페이지를 닫았습니다.</translation>
    </message>
    <message>
      <source>它占用了过多内存。</source>
      <translation>메모리를 너무 많이 사용했습니다.</translation>
    </message>
  </context>
  <context>
    <name>ParameterPanel</name>
    <message>
      <source>正在读取…</source>
      <translation>읽는 중…</translation>
    </message>
    <message>
      <source>%1 项未读到</source>
      <translation>설정 %1개를 읽지 못함</translation>
    </message>
    <message>
      <source>%1 项设备没有</source>
      <translation>%1개 장치에 없음</translation>
    </message>
    <message>
      <source>%1 项未保存</source>
      <translation>%1개 저장 안 됨</translation>
    </message>
    <message>
      <source>尚未读到设备的参数</source>
      <translation>장치의 설정을 아직 읽지 못함</translation>
    </message>
  </context>
  <context>
    <name>PictureState</name>
    <message>
      <source>没有播放内容</source>
      <translation>재생 중인 내용이 없습니다</translation>
    </message>
    <message>
      <source>正在打开…</source>
      <translation>여는 중…</translation>
    </message>
    <message>
      <source>无信号，自 %1 起没有新画面</source>
      <translation>신호 없음: %1 이후 새 화면이 없습니다</translation>
    </message>
    <message>
      <source>播放结束</source>
      <translation>재생이 끝났습니다</translation>
    </message>
    <message>
      <source>无法播放</source>
      <translation>재생할 수 없습니다</translation>
    </message>
    <message>
      <source>已停止播放</source>
      <translation>재생이 중지되었습니다</translation>
    </message>
    <message>
      <source>右键单击可播放本地文件或网络地址</source>
      <translation>마우스 오른쪽 버튼을 클릭하여 로컬 파일이나 네트워크 주소를 재생하세요</translation>
    </message>
    <message>
      <source>右键单击可停止重试</source>
      <translation>마우스 오른쪽 버튼을 클릭하면 다시 시도하지 않습니다</translation>
    </message>
    <message>
      <source>第 %1 次重新连接</source>
      <translation>다시 연결 중, %1번째 시도</translation>
    </message>
  </context>
  <context>
    <name>RecordControl</name>
    <message>
      <source>开启录制失败，请重试。</source>
      <translation>녹화를 시작하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>停止录制失败,请重试.</source>
      <translation>녹화를 중지하지 못했습니다. 다시 시도하세요.</translation>
    </message>
    <message>
      <source>录制完成,是否现在查看 [%1]</source>
      <translation>녹화가 완료되었습니다. 지금 볼까요? [%1]</translation>
    </message>
  </context>
  <context>
    <name>RecordingDownload</name>
    <message>
      <source>无法写入文件</source>
      <translation>파일을 쓸 수 없습니다</translation>
    </message>
    <message>
      <source>无法启动下载程序</source>
      <translation>다운로드 프로그램을 시작할 수 없습니다</translation>
    </message>
    <message>
      <source>设备上没有此文件</source>
      <translation>장치에 해당 파일이 없습니다</translation>
    </message>
    <message>
      <source>设备回应错误 %1</source>
      <translation>장치가 오류로 응답했습니다: %1</translation>
    </message>
    <message>
      <source>无法连接设备</source>
      <translation>장치에 연결할 수 없습니다</translation>
    </message>
    <message>
      <source>传输中断，文件不完整</source>
      <translation>전송이 중단되어 파일이 불완전합니다</translation>
    </message>
    <message>
      <source>下载程序异常结束</source>
      <translation>다운로드 프로그램이 비정상 종료되었습니다</translation>
    </message>
    <message>
      <source>设备停止发送数据</source>
      <translation>장치가 데이터 전송을 멈췄습니다</translation>
    </message>
    <message>
      <source>设备上的文件已改变</source>
      <translation>장치의 파일이 변경되었습니다</translation>
    </message>
    <message>
      <source>此地址上现在是另一台设备</source>
      <translation>이 주소에는 지금 다른 장치가 있습니다</translation>
    </message>
    <message>
      <source>下载程序异常结束（%1）</source>
      <translation>다운로드 프로그램이 비정상 종료되었습니다 (%1)</translation>
    </message>
  </context>
  <context>
    <name>RecordingDownloads</name>
    <message>
      <source>请您选择保存的位置</source>
      <translation>저장할 위치를 선택하세요</translation>
    </message>
    <message>
      <source>选择目录</source>
      <translation>폴더 선택</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>文件[%1]下载失败：%2</source>
      <translation>파일 [%1] 다운로드 실패: %2</translation>
    </message>
    <message>
      <source>下载完成,是否前往文件所在文件夹?</source>
      <translation>다운로드가 완료되었습니다. 폴더를 열까요?</translation>
    </message>
    <message>
      <source>前往</source>
      <translation>폴더 열기</translation>
    </message>
    <message>
      <source>否</source>
      <translation>아니요</translation>
    </message>
    <message>
      <source>已下载的部分会保留，可以继续下载。</source>
      <translation>받은 부분은 보관되며 다운로드를 이어받을 수 있습니다.</translation>
    </message>
    <message>
      <source>还有%1个录制文件没有下载完。
已开始的下载会保留，下次启动软件后可以继续。
确认要关闭软件吗？</source>
      <translation>아직 다운로드가 끝나지 않은 녹화 파일: %1개.
시작된 것은 다음에 실행할 때 이어받을 수 있습니다.
프로그램을 닫을까요?</translation>
    </message>
    <message>
      <source>无法打开文件夹，文件保存在：%1</source>
      <translation>폴더를 열 수 없습니다. 저장 위치: %1</translation>
    </message>
  </context>
  <context>
    <name>Recordings</name>
    <message>
      <source>请您在存储区域中选择要播放的内容!</source>
      <translation>먼저 저장소에서 재생할 항목을 선택하세요.</translation>
    </message>
    <message>
      <source>已经是最后一个了</source>
      <translation>마지막 항목입니다.</translation>
    </message>
    <message>
      <source>已经第一个了</source>
      <translation>첫 번째 항목입니다.</translation>
    </message>
    <message>
      <source>播放地址%1异常!</source>
      <translation>재생할 수 없습니다: %1. 주소와 장치를 확인하세요.</translation>
    </message>
    <message>
      <source>确认要删除这些录制文件吗?</source>
      <translation>이 녹화 파일을 삭제할까요?</translation>
    </message>
    <message>
      <source>文件[%1]删除错误,请重试</source>
      <translation>파일을 삭제하지 못했습니다: [%1]. 다시 시도하세요.</translation>
    </message>
  </context>
  <context>
    <name>RowWords</name>
    <message>
      <source>升级成功</source>
      <translation>업그레이드 완료</translation>
    </message>
    <message>
      <source>升级未成功</source>
      <translation>업그레이드되지 않음</translation>
    </message>
    <message>
      <source>升级中</source>
      <translation>업그레이드 중</translation>
    </message>
  </context>
  <context>
    <name>StartUp</name>
    <message>
      <source>Tarn Hub 已在运行，但没有响应。请等待片刻，或结束该进程后再启动。</source>
      <translation>Tarn Hub가 이미 실행 중이지만 응답하지 않습니다. 잠시 기다리거나 해당 프로세스를 종료한 후 다시 시작하세요.</translation>
    </message>
  </context>
  <context>
    <name>StillPicture</name>
    <message>
      <source>前面的画面还没有写完</source>
      <translation>앞의 화면을 아직 저장하는 중입니다</translation>
    </message>
  </context>
  <context>
    <name>StorageArea</name>
    <message>
      <source>存储区域:</source>
      <translation>저장소:</translation>
    </message>
    <message>
      <source>存储区域</source>
      <translation>저장소</translation>
    </message>
  </context>
  <context>
    <name>StorageHint</name>
    <message>
      <source>正在读取录制文件…</source>
      <translation>녹화 파일을 읽는 중…</translation>
    </message>
    <message>
      <source>此设备上没有录制文件。</source>
      <translation>이 장치에는 녹화 파일이 없습니다.</translation>
    </message>
    <message>
      <source>无法读取录制文件。</source>
      <translation>녹화 파일을 읽지 못했습니다.</translation>
    </message>
  </context>
  <context>
    <name>ToolNotice</name>
    <message>
      <source>未找到 fping，无法发现设备。请安装 fping 或重新安装本软件。</source>
      <translation>fping을 찾을 수 없어 장치를 검색할 수 없습니다. fping을 설치하거나 이 프로그램을 다시 설치하세요.</translation>
    </message>
    <message>
      <source>未找到 %1，无法发现设备。请检查启动参数 --fping。</source>
      <translation>장치를 검색할 수 없습니다. 찾을 수 없는 프로그램: %1. 시작 옵션 --fping을 확인하세요.</translation>
    </message>
    <message>
      <source>未找到 curl，无法控制和升级设备。请安装 curl 或重新安装本软件。</source>
      <translation>curl을 찾을 수 없어 장치를 제어하거나 업그레이드할 수 없습니다. curl을 설치하거나 이 프로그램을 다시 설치하세요.</translation>
    </message>
  </context>
  <context>
    <name>TreeModel</name>
    <message>
      <source>重启设备</source>
      <translation>장치 다시 시작</translation>
    </message>
    <message>
      <source>重启软件</source>
      <translation>소프트웨어 다시 시작</translation>
    </message>
    <message>
      <source>发现新固件可升级</source>
      <translation>새 펌웨어로 업그레이드할 수 있음</translation>
    </message>
    <message>
      <source>在线</source>
      <translation>온라인</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>오프라인</translation>
    </message>
    <message>
      <source>%1/%2 在线</source>
      <translation>%2대 중 %1대 온라인</translation>
    </message>
    <message>
      <source>显示 %1/%2</source>
      <translation>%2대 중 %1대 표시</translation>
    </message>
  </context>
  <context>
    <name>TreeView</name>
    <message>
      <source>复制地址</source>
      <translation>주소 복사</translation>
    </message>
    <message>
      <source>复制</source>
      <translation>복사</translation>
    </message>
    <message>
      <source>重启设备</source>
      <translation>장치 다시 시작</translation>
    </message>
    <message>
      <source>升级到新固件</source>
      <translation>새 펌웨어로 업그레이드</translation>
    </message>
  </context>
  <context>
    <name>UpdatePrompt</name>
    <message>
      <source>发现新版本,是否立即升级?</source>
      <translation>새 버전을 찾았습니다. 지금 업그레이드할까요?</translation>
    </message>
    <message>
      <source>来自 %1</source>
      <translation>제공: %1</translation>
    </message>
    <message>
      <source>安装文件已被更改，未启动升级。请重新启动软件以再次下载。</source>
      <translation>설치 파일이 변경되어 업그레이드를 시작하지 않았습니다. Tarn Hub를 다시 시작하여 다시 다운로드하세요.</translation>
    </message>
    <message>
      <source>无法启动升级程序。请重新安装本软件。</source>
      <translation>업그레이드 프로그램을 시작할 수 없습니다. Tarn Hub를 다시 설치하세요.</translation>
    </message>
  </context>
  <context>
    <name>UpgradeFeatures</name>
    <message>
      <source>文件打开失败! </source>
      <translation>파일을 열 수 없습니다.</translation>
    </message>
    <message>
      <source>%1 恢复设置成功,KORA设备正在重启.</source>
      <translation>%1의 설정을 복원했습니다. KORA 장치를 다시 시작하는 중입니다.</translation>
    </message>
    <message>
      <source>%1 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.</source>
      <translation>%1의 설정을 복원하지 못했습니다. 다시 시도했지만 여전히 실패했습니다. KORA 장치를 확인하세요.</translation>
    </message>
    <message numerus="yes">
      <source>上次固件升级中断时，有%n个KORA的设置尚未恢复（保存于%1），是否在发现这些KORA时恢复？取消则放弃这些设置。</source>
      <translation>
        <numerusform>지난 업그레이드가 중단되었을 때 KORA %n대의 설정이 복원되지 않았습니다(%1에 저장됨). 이 장치를 찾으면 복원할까요? 취소하면 이 설정을 버립니다.</numerusform>
      </translation>
    </message>
    <message>
      <source>正在对KORA升级固件,请勿关闭软件.</source>
      <translation>KORA 펌웨어를 업그레이드하는 중입니다. 프로그램을 닫지 마세요.</translation>
    </message>
    <message numerus="yes">
      <source>上次固件升级被中断，当时有%n个KORA正在升级，请查看升级报告。</source>
      <translation>
        <numerusform>지난 업그레이드가 중단되었습니다. 당시 KORA %n대를 업그레이드하는 중이었습니다. 업그레이드 보고서를 확인하세요.</numerusform>
      </translation>
    </message>
    <message numerus="yes">
      <source>还有%n个KORA的设置等待恢复。如果现在关闭，下次启动时会询问是否恢复。是否关闭？</source>
      <translation>
        <numerusform>KORA %n대의 설정이 아직 복원을 기다리고 있습니다. 지금 닫으면 다음에 시작할 때 복원 여부를 묻습니다. 닫을까요?</numerusform>
      </translation>
    </message>
    <message>
      <source>%1 设置已写回但未能核对，KORA设备正在重启。</source>
      <translation>%1의 설정을 복원했지만 검증하지 못했습니다. KORA 장치를 다시 시작하는 중입니다.</translation>
    </message>
    <message>
      <source>上传 %1%</source>
      <translation>업로드 %1%</translation>
    </message>
    <message>
      <source>正在计算固件校验值</source>
      <translation>패키지 체크섬을 계산하는 중</translation>
    </message>
  </context>
  <context>
    <name>UpgradeReport</name>
    <message>
      <source>未保留</source>
      <translation>유지 안 함</translation>
    </message>
    <message>
      <source>未能完整读取，不恢复</source>
      <translation>완전히 읽지 못해 복원하지 않음</translation>
    </message>
    <message>
      <source>设备未回应，待恢复</source>
      <translation>응답 없음, 복원 대기</translation>
    </message>
    <message>
      <source>待恢复</source>
      <translation>복원 대기</translation>
    </message>
    <message>
      <source>已恢复</source>
      <translation>복원됨</translation>
    </message>
    <message>
      <source>已写回，未核对</source>
      <translation>복원됨(검증 안 됨)</translation>
    </message>
    <message numerus="yes">
      <source>%n项失败</source>
      <translation>
        <numerusform>설정 %n개 실패</numerusform>
      </translation>
    </message>
    <message>
      <source>已放弃恢复</source>
      <translation>복원 포기</translation>
    </message>
    <message>
      <source>升级后未再回应</source>
      <translation>업그레이드 후 응답 없음</translation>
    </message>
    <message>
      <source>版本没有变化</source>
      <translation>버전이 바뀌지 않음</translation>
    </message>
    <message>
      <source>MAC地址未知，无法证实</source>
      <translation>MAC 주소를 알 수 없어 확인할 수 없음</translation>
    </message>
    <message>
      <source>批次</source>
      <translation>작업 묶음</translation>
    </message>
    <message>
      <source>设备</source>
      <translation>장치</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC 주소</translation>
    </message>
    <message>
      <source>升级前版本</source>
      <translation>이전 버전</translation>
    </message>
    <message>
      <source>升级后版本</source>
      <translation>이후 버전</translation>
    </message>
    <message>
      <source>结果</source>
      <translation>결과</translation>
    </message>
    <message>
      <source>设置恢复</source>
      <translation>설정 복원</translation>
    </message>
    <message>
      <source>用时（秒）</source>
      <translation>소요 시간(초)</translation>
    </message>
    <message>
      <source>固件包</source>
      <translation>펌웨어 패키지</translation>
    </message>
    <message>
      <source>固件MD5</source>
      <translation>펌웨어 MD5</translation>
    </message>
    <message>
      <source>说明</source>
      <translation>설명</translation>
    </message>
    <message>
      <source>进行中</source>
      <translation>진행 중</translation>
    </message>
    <message>
      <source>已证实</source>
      <translation>확인됨</translation>
    </message>
    <message>
      <source>未证实</source>
      <translation>미확인</translation>
    </message>
    <message>
      <source>失败</source>
      <translation>실패</translation>
    </message>
    <message>
      <source>已中断</source>
      <translation>중단됨</translation>
    </message>
    <message>
      <source>此批次升级曾被中断</source>
      <translation>이 작업 묶음은 중단되었음</translation>
    </message>
    <message>
      <source>中断时尚未开始上传</source>
      <translation>업로드 시작 전에 중단됨</translation>
    </message>
    <message>
      <source>中断时正在上传</source>
      <translation>업로드 중에 중단됨</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，无法证实</source>
      <translation>네트워크에 MAC 주소가 같은 장치가 두 대 있어 확인할 수 없음</translation>
    </message>
    <message>
      <source>升级前版本未知，无法证实</source>
      <translation>업그레이드 전 버전을 알 수 없어 확인할 수 없음</translation>
    </message>
    <message>
      <source>版本退回到更旧的版本</source>
      <translation>더 오래된 버전으로 되돌아감</translation>
    </message>
    <message>
      <source>版本与固件包不符</source>
      <translation>버전이 펌웨어 패키지와 다름</translation>
    </message>
    <message>
      <source>未改动，无需恢复</source>
      <translation>변경되지 않음, 복원 불필요</translation>
    </message>
    <message>
      <source>由之后的升级恢复</source>
      <translation>이후 업그레이드에서 복원</translation>
    </message>
    <message>
      <source>MAC地址重复，未恢复</source>
      <translation>MAC 주소 중복, 복원되지 않음</translation>
    </message>
    <message>
      <source>已切换为DHCP</source>
      <translation>DHCP로 전환됨</translation>
    </message>
    <message>
      <source>内部检查已停止此升级：%1</source>
      <translation>내부 검사로 중지됨: %1</translation>
    </message>
    <message>
      <source>设备称没有这些设置：%1</source>
      <translation>장치에 없다고 응답한 설정: %1</translation>
    </message>
    <message>
      <source>保存的设置已超过%1天</source>
      <translation>보관된 설정이 %1일보다 오래되었습니다</translation>
    </message>
  </context>
  <context>
    <name>UpgradeReportDialog</name>
    <message>
      <source>升级报告</source>
      <translation>업그레이드 보고서</translation>
    </message>
    <message>
      <source>共[%1]个，已证实[%2]个，未证实[%3]个，失败[%4]个，已中断[%5]个，进行中[%6]个</source>
      <translation>전체 [%1]대: 확인됨 [%2]대, 미확인 [%3]대, 실패 [%4]대, 중단됨 [%5]대, 진행 중 [%6]대</translation>
    </message>
    <message>
      <source>报告文件：%1</source>
      <translation>보고서 파일: %1</translation>
    </message>
  </context>
  <context>
    <name>WebView</name>
    <message>
      <source>另存为</source>
      <translation>다른 이름으로 저장</translation>
    </message>
    <message>
      <source>后退</source>
      <translation>뒤로</translation>
    </message>
    <message>
      <source>前进</source>
      <translation>앞으로</translation>
    </message>
    <message>
      <source>重新加载</source>
      <translation>새로 고침</translation>
    </message>
    <message>
      <source>剪切</source>
      <translation>잘라내기</translation>
    </message>
    <message>
      <source>复制</source>
      <translation>복사</translation>
    </message>
    <message>
      <source>粘贴</source>
      <translation>붙여넣기</translation>
    </message>
  </context>
  <context>
    <name>messageBox</name>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>Esc</source>
      <translation>Esc</translation>
    </message>
    <message>
      <source>确定</source>
      <translation>확인</translation>
    </message>
    <message>
      <source>Return</source>
      <translation>Return</translation>
    </message>
    <message>
      <source>确定并保留配置</source>
      <translation>확인 및 설정 유지</translation>
    </message>
    <message>
      <source>消息</source>
      <translation>메시지</translation>
    </message>
  </context>
  <context>
    <name>setui</name>
    <message>
      <source>NDI源</source>
      <translation>NDI 소스</translation>
    </message>
    <message>
      <source>刷新</source>
      <translation>새로 고침</translation>
    </message>
    <message>
      <source>没有找到NDI源</source>
      <translation>NDI 소스를 찾을 수 없음</translation>
    </message>
    <message>
      <source>关闭解码</source>
      <translation>디코딩 중지</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>취소</translation>
    </message>
    <message>
      <source>开启解码</source>
      <translation>디코딩 시작</translation>
    </message>
    <message>
      <source>请输入地址 :</source>
      <translation>주소:</translation>
    </message>
    <message>
      <source>流 ID :</source>
      <translation>스트림 ID:</translation>
    </message>
    <message>
      <source>请输入端口 :</source>
      <translation>포트:</translation>
    </message>
    <message>
      <source>关闭直播</source>
      <translation>송출 중지</translation>
    </message>
    <message>
      <source>开启直播</source>
      <translation>송출 시작</translation>
    </message>
    <message>
      <source>解码控制</source>
      <translation>디코딩 제어</translation>
    </message>
    <message>
      <source>直播服务控制</source>
      <translation>라이브 송출</translation>
    </message>
    <message>
      <source>请选择您要解码的源</source>
      <translation>디코딩할 소스를 선택하세요.</translation>
    </message>
    <message>
      <source>请输入正确的url</source>
      <translation>주소 또는 스트림 ID를 입력하세요.</translation>
    </message>
    <message>
      <source>请输入正确的端口号</source>
      <translation>올바른 포트 번호를 입력하세요.</translation>
    </message>
    <message>
      <source>未能读到NDI源，请刷新重试</source>
      <translation>NDI 소스를 읽지 못했습니다. 새로 고침하여 다시 시도하세요.</translation>
    </message>
    <message>
      <source>例如 %1</source>
      <translation>예: %1</translation>
    </message>
  </context>
</TS>
