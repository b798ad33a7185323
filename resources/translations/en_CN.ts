<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="zh_CN">
  <context>
    <name>AudioLevels</name>
    <message>
      <source>控制 %1 失败,请重试!</source>
      <translation>Could not set %1. Please try again.</translation>
    </message>
  </context>
  <context>
    <name>BatchStart</name>
    <message>
      <source>请您在设备列表中选择要升级固件的设备!</source>
      <translation>Please select the boxes to upgrade in the box list.</translation>
    </message>
    <message>
      <source>请您拖拽一个固件包文件到此处!</source>
      <translation>Please drag one firmware package here.</translation>
    </message>
    <message>
      <source>请您拖拽一个有效的固件升级包到此处</source>
      <translation>Please drag a valid firmware package here.</translation>
    </message>
    <message numerus="yes">
      <source>即将对您选择的%n个KORA进行升级固件操作,是否确认?</source>
      <translation>
        <numerusform>The firmware of the selected box will be upgraded. Continue?</numerusform>
        <numerusform>The firmware of %n selected boxes will be upgraded. Continue?</numerusform>
      </translation>
    </message>
  </context>
  <context>
    <name>BatchUpgrade</name>
    <message>
      <source>升级中,升级期间请不要关闭电源或者操作KORA.共[%1]个,成功[%2]个,未知[%3]个</source>
      <translation>Upgrading. Please do not switch off or operate the boxes. Total [%1], succeeded [%2], result unknown [%3]</translation>
    </message>
    <message>
      <source>正在计算固件校验值</source>
      <translation>Computing the checksum of the package</translation>
    </message>
    <message>
      <source>全部升级完成,KORA即将重启完成固件升级.成功[%1]个</source>
      <translation>All boxes are upgraded and will restart to finish. Succeeded [%1]</translation>
    </message>
    <message>
      <source>部分升级完成,KORA即将重启完成固件升级.成功[%1]个,未知[%2]个</source>
      <translation>Some boxes are upgraded and will restart to finish. Succeeded [%1], result unknown [%2]</translation>
    </message>
    <message>
      <source>选择固件</source>
      <translation>Choose firmware</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>固件包文件 (%1)</source>
      <translation>Firmware packages (%1)</translation>
    </message>
    <message>
      <source>正在等待此前的操作完成</source>
      <translation>Waiting for earlier commands to finish</translation>
    </message>
    <message>
      <source>此前的操作未完成，未升级</source>
      <translation>Earlier commands have not finished, not upgraded</translation>
    </message>
    <message>
      <source>设备已不在列表中，未升级</source>
      <translation>The box is no longer in the list, not upgraded</translation>
    </message>
    <message>
      <source>计算校验值</source>
      <translation>Computing checksum</translation>
    </message>
  </context>
  <context>
    <name>BoxGuard</name>
    <message>
      <source>设备可能仍在更新固件</source>
      <translation>The box may still be updating its firmware</translation>
    </message>
    <message>
      <source>未确认此地址上是哪台设备</source>
      <translation>It was not confirmed which box is at this address</translation>
    </message>
    <message>
      <source>不能确定设置属于哪台设备</source>
      <translation>It is not certain whose settings these are</translation>
    </message>
    <message>
      <source>设置尚未写入磁盘</source>
      <translation>The settings are not on disk yet</translation>
    </message>
    <message>
      <source>写入的不是此设备的设置</source>
      <translation>What was to be written is not a setting of this box</translation>
    </message>
    <message>
      <source>设备已经收到过更新固件的命令</source>
      <translation>The box has already been told to update</translation>
    </message>
    <message>
      <source>更新固件的命令尚未写入磁盘</source>
      <translation>The update command is not on disk yet</translation>
    </message>
  </context>
  <context>
    <name>BoxUpgrade</name>
    <message>
      <source>开始上传固件(%1)</source>
      <translation>Starting firmware upload (%1)</translation>
    </message>
    <message>
      <source>上传固件 成功</source>
      <translation>Firmware uploaded</translation>
    </message>
    <message>
      <source>上传固件 失败 原因 : </source>
      <translation>Firmware upload failed, reason: </translation>
    </message>
    <message>
      <source>重新开始上传固件(%1)</source>
      <translation>Restarting firmware upload (%1)</translation>
    </message>
    <message>
      <source>开始更新固件</source>
      <translation>Starting firmware update</translation>
    </message>
    <message>
      <source>更新固件 未知</source>
      <translation>Firmware update: result unknown</translation>
    </message>
    <message>
      <source>更新固件 成功</source>
      <translation>Firmware updated</translation>
    </message>
    <message>
      <source>设备没有回应，未升级</source>
      <translation>The box did not answer and was not upgraded</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，无法保留设置，未升级</source>
      <translation>Two boxes on the network have the same MAC address: settings cannot be kept, not upgraded</translation>
    </message>
    <message>
      <source>此地址上现在是另一台设备（%1），未升级</source>
      <translation>Another box (%1) is at this address now, not upgraded</translation>
    </message>
    <message>
      <source>此MAC地址的另一台设备正在升级，未升级</source>
      <translation>Another box with this MAC address is being upgraded, this one was not</translation>
    </message>
    <message>
      <source>设备正在升级固件或恢复设置，未再次升级</source>
      <translation>The box is being upgraded or its settings are being restored, it was not upgraded again</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，未升级</source>
      <translation>Two boxes on the network have the same MAC address, not upgraded</translation>
    </message>
    <message>
      <source>设备没有MAC地址，无法保留设置，未升级</source>
      <translation>The box has no MAC address: its settings cannot be kept, not upgraded</translation>
    </message>
    <message>
      <source>正在读取设置</source>
      <translation>Reading the settings</translation>
    </message>
    <message>
      <source>设置未能完整读取，未升级</source>
      <translation>The settings could not be read completely, not upgraded</translation>
    </message>
    <message>
      <source>升级记录无法写入磁盘，未升级</source>
      <translation>The upgrade record cannot be written to disk, not upgraded</translation>
    </message>
    <message>
      <source>恢复设置后重启，未再回应</source>
      <translation>Restarted after its settings were restored and did not answer again</translation>
    </message>
    <message>
      <source>设置写回后程序曾中断，设备可能尚未重启</source>
      <translation>The program ended after the settings were written back: the box may not have restarted</translation>
    </message>
    <message>
      <source>设置已写回，但不能确定设备已重启</source>
      <translation>The settings were written back, but it is not certain that the box restarted</translation>
    </message>
    <message>
      <source>内部检查未通过（%1），已停止对此设备的操作</source>
      <translation>An internal check failed (%1): nothing more is sent to this box</translation>
    </message>
    <message>
      <source>此地址上的设备现在才告知MAC地址（%1），未升级，请重试</source>
      <translation>The box at this address has only now reported its MAC address (%1), not upgraded. Please try again.</translation>
    </message>
  </context>
  <context>
    <name>Closing</name>
    <message>
      <source>正在向KORA发送命令，完成后将自动关闭。</source>
      <translation>A command is being sent to the box. The program closes when this is done.</translation>
    </message>
  </context>
  <context>
    <name>ConfigurationArea</name>
    <message>
      <source>配置区域:</source>
      <translation>Settings:</translation>
    </message>
    <message>
      <source>NDI流名称 :</source>
      <translation>NDI stream name:</translation>
    </message>
    <message>
      <source>NDI HX编码质量 :</source>
      <translation>NDI HX quality:</translation>
    </message>
    <message>
      <source>很高</source>
      <translation>Very high</translation>
    </message>
    <message>
      <source>高</source>
      <translation>High</translation>
    </message>
    <message>
      <source>中</source>
      <translation>Medium</translation>
    </message>
    <message>
      <source>低</source>
      <translation>Low</translation>
    </message>
    <message>
      <source>很低</source>
      <translation>Very low</translation>
    </message>
    <message>
      <source>画质级别 :</source>
      <translation>Profile:</translation>
    </message>
    <message>
      <source>码率控制 :</source>
      <translation>Rate control:</translation>
    </message>
    <message>
      <source>Gop长度 (0~200) :</source>
      <translation>GOP length (0–200 frames):</translation>
    </message>
    <message>
      <source>比特率 (0~120) Mbps :</source>
      <translation>Bit rate (0–120 Mbps):</translation>
    </message>
    <message>
      <source>DHCP :</source>
      <translation>DHCP:</translation>
    </message>
    <message>
      <source>静态IP地址 :</source>
      <translation>Static IP address:</translation>
    </message>
    <message>
      <source>静态子网掩码 :</source>
      <translation>Static subnet mask:</translation>
    </message>
    <message>
      <source>NTP服务器地址 :</source>
      <translation>NTP server:</translation>
    </message>
    <message>
      <source>Color颜色模式</source>
      <translation>Color mode:</translation>
    </message>
    <message>
      <source>保存</source>
      <translation>Save</translation>
    </message>
    <message>
      <source>Ctrl+S</source>
      <translation>Ctrl+S</translation>
    </message>
    <message>
      <source>DHCP已打开，关闭后才使用此设置</source>
      <translation>Not used while DHCP is on</translation>
    </message>
  </context>
  <context>
    <name>ConfigurationSave</name>
    <message>
      <source>请输入正确的IP地址和子网掩码</source>
      <translation>Enter a valid IP address and subnet mask.</translation>
    </message>
    <message>
      <source>设置参数部分失败,请检查KORA网络状态后重试.</source>
      <translation>Some settings could not be saved. Check the network connection of the box, then try again.</translation>
    </message>
    <message>
      <source>设置成功,正在重启KORA软件.</source>
      <translation>Settings saved. The software of the box is restarting.</translation>
    </message>
    <message>
      <source>设置成功,正在重启KORA设备.</source>
      <translation>Settings saved. The box is restarting.</translation>
    </message>
    <message>
      <source>设置参数成功.</source>
      <translation>Settings saved.</translation>
    </message>
    <message numerus="yes">
      <source>%n 项参数未从设备读到，没有保存。</source>
      <translation>
        <numerusform>%n setting was not read from the box and has not been saved.</numerusform>
        <numerusform>%n settings were not read from the box and have not been saved.</numerusform>
      </translation>
    </message>
    <message>
      <source>尚未读到设备的参数，没有可保存的内容。</source>
      <translation>No settings of the box have been read: there is nothing to save.</translation>
    </message>
    <message>
      <source>未读到设备的静态IP地址和子网掩码，不能关闭DHCP。</source>
      <translation>DHCP cannot be switched off: the static IP address and subnet mask of the box are unknown.</translation>
    </message>
    <message>
      <source>设置已写入，但不能确定KORA已重启，重启后才会生效。</source>
      <translation>The settings are written, but it is not certain that the box has restarted. They take effect after a restart.</translation>
    </message>
  </context>
  <context>
    <name>ControlArea</name>
    <message>
      <source>控制区域:</source>
      <translation>Control:</translation>
    </message>
    <message>
      <source>HX 编码类型 :</source>
      <translation>HX codec:</translation>
    </message>
    <message>
      <source>SDI音量 (0~32)</source>
      <translation>SDI volume (0–32)</translation>
    </message>
    <message>
      <source>嵌入音量 (0~32)</source>
      <translation>Line-in volume (0–32)</translation>
    </message>
    <message>
      <source>嵌入音量延时(0~341)ms</source>
      <translation>Line-in delay (0–341 ms)</translation>
    </message>
    <message>
      <source>解码控制</source>
      <translation>Decoding</translation>
    </message>
    <message>
      <source>直播服务控制</source>
      <translation>Streaming</translation>
    </message>
    <message>
      <source>录制</source>
      <translation>Record</translation>
    </message>
  </context>
  <context>
    <name>CrashNotice</name>
    <message>
      <source>软件上次异常退出。</source>
      <translation>The program crashed last time.</translation>
    </message>
    <message>
      <source>查看崩溃记录</source>
      <translation>Open crash dump folder</translation>
    </message>
    <message>
      <source>关闭</source>
      <translation>Close</translation>
    </message>
  </context>
  <context>
    <name>DecodeControl</name>
    <message>
      <source>开启解码成功</source>
      <translation>Decoding started.</translation>
    </message>
    <message>
      <source>关闭解码成功</source>
      <translation>Decoding stopped.</translation>
    </message>
    <message>
      <source>开启解码成功%1</source>
      <translation>Decoding started: %1</translation>
    </message>
    <message>
      <source>开启解码失败%1,请重试!</source>
      <translation>Could not start decoding %1. Please try again.</translation>
    </message>
    <message>
      <source>关闭解码失败,请重试!</source>
      <translation>Could not stop decoding. Please try again.</translation>
    </message>
    <message>
      <source>尚未读到设备的编码状态，请稍后重试。</source>
      <translation>The encoder mode of the box has not been read yet. Please try again later.</translation>
    </message>
  </context>
  <context>
    <name>DeviceAbsence</name>
    <message>
      <source>无应答</source>
      <translation>No answer</translation>
    </message>
    <message>
      <source>拒绝连接</source>
      <translation>Refuses connections</translation>
    </message>
    <message>
      <source>可以连接，但没有完整应答</source>
      <translation>Open, but no complete reply</translation>
    </message>
    <message>
      <source>应答错误：HTTP %1</source>
      <translation>Replies with error HTTP %1</translation>
    </message>
    <message>
      <source>应答无法识别</source>
      <translation>Reply is not understood</translation>
    </message>
    <message>
      <source>有应答</source>
      <translation>Answers</translation>
    </message>
    <message>
      <source>没有网络连接</source>
      <translation>No network connection</translation>
    </message>
    <message>
      <source>网线或无线未连接（%1）</source>
      <translation>No cable or Wi-Fi (%1)</translation>
    </message>
    <message>
      <source>网段与设备不同（%1）</source>
      <translation>Other subnet (%1)</translation>
    </message>
    <message>
      <source>%1：%2</source>
      <translation>%1: %2</translation>
    </message>
    <message>
      <source>这台电脑</source>
      <translation>This computer</translation>
    </message>
    <message>
      <source>Ping</source>
      <translation>Ping</translation>
    </message>
    <message>
      <source>自%1起无应答</source>
      <translation>No answer since %1</translation>
    </message>
    <message>
      <source>端口%1</source>
      <translation>Port %1</translation>
    </message>
    <message>
      <source>事件通道%1</source>
      <translation>Event feed %1</translation>
    </message>
    <message>
      <source>自%1起中断</source>
      <translation>Lost since %1</translation>
    </message>
    <message>
      <source>设备离线，自%1起无应答</source>
      <translation>Offline: no answer since %1</translation>
    </message>
  </context>
  <context>
    <name>DeviceArea</name>
    <message>
      <source>设备列表:</source>
      <translation>Boxes:</translation>
    </message>
    <message>
      <source>固件升级</source>
      <translation>Upgrade firmware</translation>
    </message>
    <message>
      <source>计算固件MD5</source>
      <translation>Firmware MD5</translation>
    </message>
    <message>
      <source>全部折叠</source>
      <translation>Collapse all</translation>
    </message>
    <message>
      <source>全部展开</source>
      <translation>Expand all</translation>
    </message>
    <message>
      <source>刷新设备列表</source>
      <translation>Refresh the box list</translation>
    </message>
    <message>
      <source>语言</source>
      <translation>Language</translation>
    </message>
    <message>
      <source>设备列表</source>
      <translation>Box list</translation>
    </message>
    <message>
      <source>本机IP地址:</source>
      <translation>This computer:</translation>
    </message>
    <message>
      <source>升级报告</source>
      <translation>Upgrade report</translation>
    </message>
    <message>
      <source>查找设备</source>
      <translation>Find a box</translation>
    </message>
    <message>
      <source>地址，名称，MAC，版本或状态</source>
      <translation>Address, name, MAC, version or state</translation>
    </message>
  </context>
  <context>
    <name>DeviceFilter</name>
    <message>
      <source>在线</source>
      <translation>Online</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>Offline</translation>
    </message>
    <message>
      <source>可升级</source>
      <translation>Upgrade available</translation>
    </message>
    <message>
      <source>升级中</source>
      <translation>Upgrading</translation>
    </message>
  </context>
  <context>
    <name>DeviceHint</name>
    <message>
      <source>正在搜索设备…</source>
      <translation>Searching for boxes…</translation>
    </message>
    <message>
      <source>没有网络连接</source>
      <translation>No network connection</translation>
    </message>
    <message>
      <source>这台电脑没有可以搜索的网络。请检查网线和网卡设置。</source>
      <translation>This computer has no network to search. Please check its cable and network settings.</translation>
    </message>
    <message>
      <source>没有符合条件的设备</source>
      <translation>No box matches</translation>
    </message>
    <message>
      <source>按Esc显示全部设备。</source>
      <translation>Press Esc in the search field to show all boxes.</translation>
    </message>
    <message numerus="yes">
      <source>已搜索%n秒，还没有找到设备。请检查：</source>
      <translation>
        <numerusform>No box found after %n second. Please check:</numerusform>
        <numerusform>No box found after %n seconds. Please check:</numerusform>
      </translation>
    </message>
    <message>
      <source>设备已通电，网线已接好。</source>
      <translation>The boxes are on and their cables are plugged in.</translation>
    </message>
    <message>
      <source>这台电脑与设备在同一网段。</source>
      <translation>This computer is on the same subnet.</translation>
    </message>
    <message>
      <source>防火墙没有阻止ping和端口8081。</source>
      <translation>The firewall lets ping and port 8081 through.</translation>
    </message>
  </context>
  <context>
    <name>DeviceInfo</name>
    <message>
      <source>设备名称</source>
      <translation>Box name</translation>
    </message>
    <message>
      <source>固件版本</source>
      <translation>Firmware version</translation>
    </message>
    <message>
      <source>硬件版本</source>
      <translation>Hardware version</translation>
    </message>
    <message>
      <source>NDI SDK版本</source>
      <translation>NDI SDK version</translation>
    </message>
    <message>
      <source>剩余磁盘空间</source>
      <translation>Free disk space</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC address</translation>
    </message>
  </context>
  <context>
    <name>DeviceMenu</name>
    <message>
      <source>复制名称</source>
      <translation>Copy name</translation>
    </message>
    <message>
      <source>在浏览器中打开</source>
      <translation>Open in browser</translation>
    </message>
    <message>
      <source>导出设备清单…</source>
      <translation>Export box list…</translation>
    </message>
    <message>
      <source>导出设备清单</source>
      <translation>Export box list</translation>
    </message>
    <message>
      <source>名称</source>
      <translation>Name</translation>
    </message>
    <message>
      <source>地址</source>
      <translation>Address</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC address</translation>
    </message>
    <message>
      <source>类型</source>
      <translation>Type</translation>
    </message>
    <message>
      <source>固件版本</source>
      <translation>Firmware version</translation>
    </message>
    <message>
      <source>状态</source>
      <translation>State</translation>
    </message>
    <message>
      <source>最后在线</source>
      <translation>Last seen</translation>
    </message>
    <message>
      <source>在线</source>
      <translation>Online</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>Offline</translation>
    </message>
    <message>
      <source>表格 (%1)</source>
      <translation>Spreadsheets (%1)</translation>
    </message>
    <message>
      <source>设备清单已保存到%1</source>
      <translation>Box list saved as %1.</translation>
    </message>
    <message>
      <source>无法保存设备清单：%1</source>
      <translation>The box list could not be saved (%1).</translation>
    </message>
  </context>
  <context>
    <name>DeviceSelection</name>
    <message>
      <source>确认要重启KORA设备吗? </source>
      <translation>Restart this box? Address: </translation>
    </message>
    <message>
      <source>KORA %1 未重启，请检查KORA网络状态后重试。</source>
      <translation>KORA %1 was not restarted. Check its network connection, then try again.</translation>
    </message>
  </context>
  <context>
    <name>DownloadLine</name>
    <message>
      <source>关闭</source>
      <translation>Close</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>已保存</source>
      <translation>Saved</translation>
    </message>
    <message>
      <source>已取消</source>
      <translation>Canceled</translation>
    </message>
    <message>
      <source>下载失败（%1）</source>
      <translation>Download failed (%1)</translation>
    </message>
    <message>
      <source>下载失败</source>
      <translation>Download failed</translation>
    </message>
  </context>
  <context>
    <name>DownloadRow</name>
    <message>
      <source>取消下载</source>
      <translation>Cancel the download</translation>
    </message>
    <message>
      <source>继续下载</source>
      <translation>Resume the download</translation>
    </message>
    <message>
      <source>未下载完</source>
      <translation>Unfinished</translation>
    </message>
    <message>
      <source>等待下载</source>
      <translation>Waiting</translation>
    </message>
    <message>
      <source>正在重新连接</source>
      <translation>Reconnecting</translation>
    </message>
  </context>
  <context>
    <name>EncoderControl</name>
    <message>
      <source>控制 HB 失败,请重试!</source>
      <translation>Could not switch NDI HB. Please try again.</translation>
    </message>
    <message>
      <source>控制 HX2 失败,请重试!</source>
      <translation>Could not switch NDI HX2. Please try again.</translation>
    </message>
    <message>
      <source>控制 HX3 失败,请重试!</source>
      <translation>Could not switch NDI HX3. Please try again.</translation>
    </message>
    <message>
      <source>控制 H264 失败,请重试!</source>
      <translation>Could not switch the HX codec. Please try again.</translation>
    </message>
  </context>
  <context>
    <name>EventPane</name>
    <message>
      <source>尝试重新连接 </source>
      <translation>Reconnecting to </translation>
    </message>
  </context>
  <context>
    <name>FFmpegWidget</name>
    <message>
      <source>播放本地文件</source>
      <translation>Play a local file</translation>
    </message>
    <message>
      <source>网络拉流地址</source>
      <translation>Network stream address</translation>
    </message>
    <message>
      <source>选择视频文件</source>
      <translation>Choose a video file</translation>
    </message>
    <message>
      <source>视频文件 (%1)</source>
      <translation>Video files (%1)</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>请输入拉流的网络地址.</source>
      <translation>Enter the network address to pull the stream from.</translation>
    </message>
    <message>
      <source>保存当前画面</source>
      <translation>Save this picture</translation>
    </message>
    <message>
      <source>显示播放信息</source>
      <translation>Show playback information</translation>
    </message>
    <message>
      <source>停止播放</source>
      <translation>Stop playing</translation>
    </message>
    <message>
      <source>已保存 %1</source>
      <translation>Saved %1</translation>
    </message>
    <message>
      <source>无法保存画面：%1</source>
      <translation>The picture cannot be saved: %1</translation>
    </message>
  </context>
  <context>
    <name>FieldMark</name>
    <message>
      <source>已修改，尚未保存</source>
      <translation>Changed, not saved yet</translation>
    </message>
    <message>
      <source>设备没有此参数</source>
      <translation>The box has no such setting</translation>
    </message>
    <message>
      <source>尚未从设备读到，不能修改，也不会保存</source>
      <translation>Not read from the box yet: it cannot be changed and will not be saved</translation>
    </message>
    <message>
      <source>未知</source>
      <translation>Unknown</translation>
    </message>
  </context>
  <context>
    <name>FiguresView</name>
    <message>
      <source>编码</source>
      <translation>Codec</translation>
    </message>
    <message>
      <source>画面尺寸</source>
      <translation>Resolution</translation>
    </message>
    <message>
      <source>帧率</source>
      <translation>Frame rate</translation>
    </message>
    <message>
      <source>码率</source>
      <translation>Bit rate</translation>
    </message>
    <message>
      <source>延迟</source>
      <translation>Latency</translation>
    </message>
    <message>
      <source>丢弃的画面</source>
      <translation>Dropped frames</translation>
    </message>
    <message>
      <source>解码方式</source>
      <translation>Decoder</translation>
    </message>
    <message>
      <source>重新连接</source>
      <translation>Reconnections</translation>
    </message>
    <message>
      <source>声音</source>
      <translation>Audio</translation>
    </message>
    <message>
      <source>无声音</source>
      <translation>None</translation>
    </message>
    <message>
      <source>%1 个声道</source>
      <translation>Channels: %1</translation>
    </message>
    <message>
      <source>软件，%1 个线程</source>
      <translation>Software, threads: %1</translation>
    </message>
  </context>
  <context>
    <name>Hub</name>
    <message>
      <source>请您在设备列表中选择要操作的设备!</source>
      <translation>Please select a box in the box list first.</translation>
    </message>
    <message>
      <source>KORA %1 正在升级固件或恢复设置，请等待完成后再操作。</source>
      <translation>The firmware of KORA %1 is being upgraded or its settings are being restored. Please wait until this is done.</translation>
    </message>
  </context>
  <context>
    <name>IPAddress</name>
    <message>
      <source>%1，第%2段，共4段</source>
      <translation>%1, part %2 of 4</translation>
    </message>
  </context>
  <context>
    <name>InfoArea</name>
    <message>
      <source>设备信息:</source>
      <translation>Information:</translation>
    </message>
    <message>
      <source>设备信息</source>
      <translation>Box information</translation>
    </message>
  </context>
  <context>
    <name>InfoHint</name>
    <message>
      <source>选择一个设备，这里显示它的信息</source>
      <translation>Select a box to see its information here</translation>
    </message>
    <message>
      <source>正在读取…</source>
      <translation>Reading…</translation>
    </message>
  </context>
  <context>
    <name>Inputui</name>
    <message>
      <source>请输入</source>
      <translation>Please enter</translation>
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
      <translation>Download</translation>
    </message>
    <message>
      <source>删除</source>
      <translation>Delete</translation>
    </message>
    <message>
      <source>%1，正在播放</source>
      <translation>%1, playing</translation>
    </message>
    <message>
      <source>视频</source>
      <translation>Video</translation>
    </message>
  </context>
  <context>
    <name>LiveControl</name>
    <message>
      <source>关闭直播服务成功</source>
      <translation>Streaming stopped.</translation>
    </message>
    <message>
      <source>开启直播服务成功</source>
      <translation>Streaming started.</translation>
    </message>
    <message>
      <source>开启直播服务失败</source>
      <translation>Streaming could not be started. Check the address and the network, then try again.</translation>
    </message>
    <message>
      <source>关闭直播服务失败</source>
      <translation>Streaming could not be stopped. Check the network, then try again.</translation>
    </message>
    <message>
      <source>设备没有回应，直播服务可能没有开启。</source>
      <translation>The box did not answer; streaming may not have started.</translation>
    </message>
    <message>
      <source>设备没有回应，直播服务可能没有关闭。</source>
      <translation>The box did not answer; streaming may not have stopped.</translation>
    </message>
    <message>
      <source>开启直播服务成功%1</source>
      <translation>Streaming started. Pull address: %1</translation>
    </message>
  </context>
  <context>
    <name>Md5Tool</name>
    <message>
      <source>文件打开失败! </source>
      <translation>The file cannot be opened.</translation>
    </message>
  </context>
  <context>
    <name>MonitorArea</name>
    <message>
      <source>监控区域:</source>
      <translation>Monitor:</translation>
    </message>
    <message>
      <source>切换画面和流信息</source>
      <translation>Switch between picture and stream information</translation>
    </message>
    <message>
      <source>收起或展开右侧面板</source>
      <translation>Fold or unfold the right-hand panels</translation>
    </message>
    <message>
      <source>全屏</source>
      <translation>Full screen</translation>
    </message>
    <message>
      <source>退出全屏</source>
      <translation>Exit full screen</translation>
    </message>
    <message>
      <source>上一个</source>
      <translation>Previous</translation>
    </message>
    <message>
      <source>播放</source>
      <translation>Play or stop</translation>
    </message>
    <message>
      <source>下一个</source>
      <translation>Next</translation>
    </message>
    <message>
      <source>流信息</source>
      <translation>Stream</translation>
    </message>
    <message>
      <source>媒体信息</source>
      <translation>Media</translation>
    </message>
    <message>
      <source>画面</source>
      <translation>Picture</translation>
    </message>
  </context>
  <context>
    <name>Orders</name>
    <message>
      <source>此地址上现在是另一台设备。</source>
      <translation>Another box is at this address now.</translation>
    </message>
    <message>
      <source>此地址上的设备现在才告知MAC地址，请确认后重试。</source>
      <translation>The box at this address has only now reported its MAC address. Please check it, then try again.</translation>
    </message>
  </context>
  <context>
    <name>PageBar</name>
    <message>
      <source>此网页想访问另一台主机：%1</source>
      <translation>The page wants to reach another host: %1</translation>
    </message>
    <message>
      <source>此网页多次要求登录，不再询问。</source>
      <translation>The page has asked you to sign in too many times; further requests are ignored.</translation>
    </message>
    <message>
      <source>此网页打开了太多对话框，不再显示。</source>
      <translation>The page opened too many dialogs; no more are shown.</translation>
    </message>
    <message>
      <source>此网页没有响应。</source>
      <translation>The page does not respond.</translation>
    </message>
    <message>
      <source>允许</source>
      <translation>Allow</translation>
    </message>
    <message>
      <source>关闭网页</source>
      <translation>Close page</translation>
    </message>
    <message>
      <source>重新加载</source>
      <translation>Reload</translation>
    </message>
    <message>
      <source>不允许</source>
      <translation>Do not allow</translation>
    </message>
    <message>
      <source>等待</source>
      <translation>Wait</translation>
    </message>
    <message>
      <source>关闭</source>
      <translation>Close</translation>
    </message>
  </context>
  <context>
    <name>PageDialog</name>
    <message>
      <source>未知来源</source>
      <translation>Unknown source</translation>
    </message>
    <message>
      <source>选择发送给 %1 的文件</source>
      <translation>Choose the file to send to %1</translation>
    </message>
    <message>
      <source>%1 要求登录</source>
      <translation>%1 requires you to sign in</translation>
    </message>
    <message>
      <source>%1 的网页显示</source>
      <translation>%1 says</translation>
    </message>
    <message>
      <source>不再显示此网页的对话框</source>
      <translation>Show no more dialogs of this page</translation>
    </message>
    <message>
      <source>用户名</source>
      <translation>User name</translation>
    </message>
    <message>
      <source>密码</source>
      <translation>Password</translation>
    </message>
    <message>
      <source>确定</source>
      <translation>OK</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
  </context>
  <context>
    <name>PageNotice</name>
    <message>
      <source>重试</source>
      <translation>Try again</translation>
    </message>
    <message>
      <source>在浏览器中打开</source>
      <translation>Open in browser</translation>
    </message>
    <message>
      <source>正在打开设备的网页…</source>
      <translation>Opening the box’s web page…</translation>
    </message>
    <message>
      <source>无法打开设备的网页。</source>
      <translation>The box’s web page cannot be opened.</translation>
    </message>
    <message>
      <source>设备没有返回可显示的网页。</source>
      <translation>The box returned no page that can be shown.</translation>
    </message>
    <message>
      <source>网页意外终止，正在重新加载…</source>
      <translation>The page ended unexpectedly and is being loaded again…</translation>
    </message>
    <message>
      <source>此设备通过自己的网页管理。</source>
      <translation>This box is managed through its own web page.</translation>
    </message>
    <message>
      <source>请检查设备的电源和网络连接。</source>
      <translation>Check the box’s power and network connection.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它没有安装。</source>
      <translation>The built-in browser is not available: it is not installed.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它的安全沙箱不允许以 root 身份运行。</source>
      <translation>The built-in browser is not available: its sandbox does not run as root.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：系统没有为它提供安全沙箱。</source>
      <translation>The built-in browser is not available: the system offers it no sandbox.</translation>
    </message>
    <message>
      <source>内置浏览器不可用：它的程序文件不完整。</source>
      <translation>The built-in browser is not available: its program files are incomplete.</translation>
    </message>
    <message>
      <source>网页已关闭。</source>
      <translation>The page is closed.</translation>
    </message>
    <message>
      <source>它占用了过多内存。</source>
      <translation>It used too much memory.</translation>
    </message>
  </context>
  <context>
    <name>ParameterPanel</name>
    <message>
      <source>正在读取…</source>
      <translation>Reading…</translation>
    </message>
    <message>
      <source>%1 项未读到</source>
      <translation>Settings not read: %1</translation>
    </message>
    <message>
      <source>%1 项设备没有</source>
      <translation>Not on this box: %1</translation>
    </message>
    <message>
      <source>%1 项未保存</source>
      <translation>Not saved: %1</translation>
    </message>
    <message>
      <source>尚未读到设备的参数</source>
      <translation>Settings of the box not read yet</translation>
    </message>
  </context>
  <context>
    <name>PictureState</name>
    <message>
      <source>没有播放内容</source>
      <translation>Nothing is playing</translation>
    </message>
    <message>
      <source>正在打开…</source>
      <translation>Opening…</translation>
    </message>
    <message>
      <source>无信号，自 %1 起没有新画面</source>
      <translation>No signal: no new picture since %1</translation>
    </message>
    <message>
      <source>播放结束</source>
      <translation>Playback ended</translation>
    </message>
    <message>
      <source>无法播放</source>
      <translation>Cannot be played</translation>
    </message>
    <message>
      <source>已停止播放</source>
      <translation>Stopped</translation>
    </message>
    <message>
      <source>右键单击可播放本地文件或网络地址</source>
      <translation>Right-click to play a local file or a network address</translation>
    </message>
    <message>
      <source>右键单击可停止重试</source>
      <translation>Right-click to stop trying</translation>
    </message>
    <message>
      <source>第 %1 次重新连接</source>
      <translation>Reconnecting, try %1</translation>
    </message>
  </context>
  <context>
    <name>RecordControl</name>
    <message>
      <source>开启录制失败，请重试。</source>
      <translation>Recording could not be started. Please try again.</translation>
    </message>
    <message>
      <source>停止录制失败,请重试.</source>
      <translation>Recording could not be stopped. Please try again.</translation>
    </message>
    <message>
      <source>录制完成,是否现在查看 [%1]</source>
      <translation>Recording finished. View it now? [%1]</translation>
    </message>
  </context>
  <context>
    <name>RecordingDownload</name>
    <message>
      <source>无法写入文件</source>
      <translation>the file cannot be written</translation>
    </message>
    <message>
      <source>无法启动下载程序</source>
      <translation>the download program cannot be started</translation>
    </message>
    <message>
      <source>设备上没有此文件</source>
      <translation>the box has no such file</translation>
    </message>
    <message>
      <source>设备回应错误 %1</source>
      <translation>the box answered with error %1</translation>
    </message>
    <message>
      <source>无法连接设备</source>
      <translation>the box cannot be reached</translation>
    </message>
    <message>
      <source>传输中断，文件不完整</source>
      <translation>the transfer broke off, the file is incomplete</translation>
    </message>
    <message>
      <source>下载程序异常结束</source>
      <translation>the download program ended unexpectedly</translation>
    </message>
    <message>
      <source>设备停止发送数据</source>
      <translation>the box stopped sending data</translation>
    </message>
    <message>
      <source>设备上的文件已改变</source>
      <translation>the file on the box has changed</translation>
    </message>
    <message>
      <source>此地址上现在是另一台设备</source>
      <translation>another box has this address now</translation>
    </message>
    <message>
      <source>下载程序异常结束（%1）</source>
      <translation>the download program ended unexpectedly (%1)</translation>
    </message>
  </context>
  <context>
    <name>RecordingDownloads</name>
    <message>
      <source>请您选择保存的位置</source>
      <translation>Choose where to save</translation>
    </message>
    <message>
      <source>选择目录</source>
      <translation>Choose folder</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>文件[%1]下载失败：%2</source>
      <translation>Downloading file [%1] failed: %2</translation>
    </message>
    <message>
      <source>下载完成,是否前往文件所在文件夹?</source>
      <translation>Download finished. Open its folder?</translation>
    </message>
    <message>
      <source>前往</source>
      <translation>Open folder</translation>
    </message>
    <message>
      <source>否</source>
      <translation>No</translation>
    </message>
    <message>
      <source>已下载的部分会保留，可以继续下载。</source>
      <translation>What has arrived is kept; the download can be resumed.</translation>
    </message>
    <message>
      <source>还有%1个录制文件没有下载完。
已开始的下载会保留，下次启动软件后可以继续。
确认要关闭软件吗？</source>
      <translation>Recordings not downloaded completely: %1.
Downloads that have begun are kept and can be resumed when the program is started again.
Close the program?</translation>
    </message>
    <message>
      <source>无法打开文件夹，文件保存在：%1</source>
      <translation>The folder could not be opened. The file is in: %1</translation>
    </message>
  </context>
  <context>
    <name>Recordings</name>
    <message>
      <source>请您在存储区域中选择要播放的内容!</source>
      <translation>Please select a recording under Storage first.</translation>
    </message>
    <message>
      <source>已经是最后一个了</source>
      <translation>This is the last recording.</translation>
    </message>
    <message>
      <source>已经第一个了</source>
      <translation>This is the first recording.</translation>
    </message>
    <message>
      <source>播放地址%1异常!</source>
      <translation>Cannot play %1. Check the address and the box.</translation>
    </message>
    <message>
      <source>确认要删除这些录制文件吗?</source>
      <translation>Delete these recordings?</translation>
    </message>
    <message>
      <source>文件[%1]删除错误,请重试</source>
      <translation>File [%1] could not be deleted. Please try again.</translation>
    </message>
  </context>
  <context>
    <name>RowWords</name>
    <message>
      <source>升级成功</source>
      <translation>Upgraded</translation>
    </message>
    <message>
      <source>升级未成功</source>
      <translation>Upgrade not successful</translation>
    </message>
    <message>
      <source>升级中</source>
      <translation>Upgrading</translation>
    </message>
  </context>
  <context>
    <name>StartUp</name>
    <message>
      <source>Tarn Hub 已在运行，但没有响应。请等待片刻，或结束该进程后再启动。</source>
      <translation>Tarn Hub is already running but does not respond. Wait a moment, or end that process, and start again.</translation>
    </message>
  </context>
  <context>
    <name>StillPicture</name>
    <message>
      <source>前面的画面还没有写完</source>
      <translation>The pictures before it are still being written</translation>
    </message>
  </context>
  <context>
    <name>StorageArea</name>
    <message>
      <source>存储区域:</source>
      <translation>Storage:</translation>
    </message>
    <message>
      <source>存储区域</source>
      <translation>Storage</translation>
    </message>
  </context>
  <context>
    <name>StorageHint</name>
    <message>
      <source>正在读取录制文件…</source>
      <translation>Reading recordings…</translation>
    </message>
    <message>
      <source>此设备上没有录制文件。</source>
      <translation>No recordings on this box.</translation>
    </message>
    <message>
      <source>无法读取录制文件。</source>
      <translation>The recordings could not be read.</translation>
    </message>
  </context>
  <context>
    <name>ToolNotice</name>
    <message>
      <source>未找到 fping，无法发现设备。请安装 fping 或重新安装本软件。</source>
      <translation>fping was not found: no boxes can be discovered. Install fping, or reinstall this program.</translation>
    </message>
    <message>
      <source>未找到 %1，无法发现设备。请检查启动参数 --fping。</source>
      <translation>%1 was not found: no boxes can be discovered. Check the option --fping.</translation>
    </message>
    <message>
      <source>未找到 curl，无法控制和升级设备。请安装 curl 或重新安装本软件。</source>
      <translation>curl was not found: boxes can be neither controlled nor upgraded. Install curl, or reinstall this program.</translation>
    </message>
  </context>
  <context>
    <name>TreeModel</name>
    <message>
      <source>重启设备</source>
      <translation>Restart box</translation>
    </message>
    <message>
      <source>重启软件</source>
      <translation>Restart software</translation>
    </message>
    <message>
      <source>发现新固件可升级</source>
      <translation>New firmware available</translation>
    </message>
    <message>
      <source>在线</source>
      <translation>Online</translation>
    </message>
    <message>
      <source>离线</source>
      <translation>Offline</translation>
    </message>
    <message>
      <source>%1/%2 在线</source>
      <translation>%1 of %2 online</translation>
    </message>
    <message>
      <source>显示 %1/%2</source>
      <translation>%1 of %2 shown</translation>
    </message>
  </context>
  <context>
    <name>TreeView</name>
    <message>
      <source>复制地址</source>
      <translation>Copy address</translation>
    </message>
    <message>
      <source>复制</source>
      <translation>Copy</translation>
    </message>
    <message>
      <source>重启设备</source>
      <translation>Restart box</translation>
    </message>
    <message>
      <source>升级到新固件</source>
      <translation>Upgrade to the new firmware</translation>
    </message>
  </context>
  <context>
    <name>UpdatePrompt</name>
    <message>
      <source>发现新版本,是否立即升级?</source>
      <translation>A new version is available. Upgrade now?</translation>
    </message>
    <message>
      <source>来自 %1</source>
      <translation>from %1</translation>
    </message>
    <message>
      <source>安装文件已被更改，未启动升级。请重新启动软件以再次下载。</source>
      <translation>The installer was changed; the upgrade was not started. Restart Tarn Hub to download it again.</translation>
    </message>
    <message>
      <source>无法启动升级程序。请重新安装本软件。</source>
      <translation>The upgrade program cannot be started. Reinstall Tarn Hub.</translation>
    </message>
  </context>
  <context>
    <name>UpgradeFeatures</name>
    <message>
      <source>文件打开失败! </source>
      <translation>The file cannot be opened.</translation>
    </message>
    <message>
      <source>%1 恢复设置成功,KORA设备正在重启.</source>
      <translation>The settings of %1 have been restored. The box is restarting.</translation>
    </message>
    <message>
      <source>%1 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.</source>
      <translation>The settings of %1 could not be restored, even after a second attempt. Please check the box.</translation>
    </message>
    <message numerus="yes">
      <source>上次固件升级中断时，有%n个KORA的设置尚未恢复（保存于%1），是否在发现这些KORA时恢复？取消则放弃这些设置。</source>
      <translation>
        <numerusform>When the last upgrade was interrupted, the settings of %n box had not been restored (saved %1). Restore them when this box is found? Cancel abandons these settings.</numerusform>
        <numerusform>When the last upgrade was interrupted, the settings of %n boxes had not been restored (saved %1). Restore them when these boxes are found? Cancel abandons these settings.</numerusform>
      </translation>
    </message>
    <message>
      <source>正在对KORA升级固件,请勿关闭软件.</source>
      <translation>Firmware is being upgraded. Please do not close the program.</translation>
    </message>
    <message numerus="yes">
      <source>上次固件升级被中断，当时有%n个KORA正在升级，请查看升级报告。</source>
      <translation>
        <numerusform>The last upgrade was interrupted while %n box was being upgraded. Please see the upgrade report.</numerusform>
        <numerusform>The last upgrade was interrupted while %n boxes were being upgraded. Please see the upgrade report.</numerusform>
      </translation>
    </message>
    <message numerus="yes">
      <source>还有%n个KORA的设置等待恢复。如果现在关闭，下次启动时会询问是否恢复。是否关闭？</source>
      <translation>
        <numerusform>The settings of %n box are still waiting to be restored. If you close now, you will be asked about them at the next start. Close?</numerusform>
        <numerusform>The settings of %n boxes are still waiting to be restored. If you close now, you will be asked about them at the next start. Close?</numerusform>
      </translation>
    </message>
    <message>
      <source>%1 设置已写回但未能核对，KORA设备正在重启。</source>
      <translation>The settings of %1 have been restored but could not be verified. The box is restarting.</translation>
    </message>
    <message>
      <source>上传 %1%</source>
      <translation>Upload %1%</translation>
    </message>
    <message>
      <source>正在计算固件校验值</source>
      <translation>Computing the checksum of the package</translation>
    </message>
  </context>
  <context>
    <name>UpgradeReport</name>
    <message>
      <source>未保留</source>
      <translation>Not kept</translation>
    </message>
    <message>
      <source>未能完整读取，不恢复</source>
      <translation>Not read completely, not restored</translation>
    </message>
    <message>
      <source>设备未回应，待恢复</source>
      <translation>No answer, to be restored</translation>
    </message>
    <message>
      <source>待恢复</source>
      <translation>To be restored</translation>
    </message>
    <message>
      <source>已恢复</source>
      <translation>Restored</translation>
    </message>
    <message>
      <source>已写回，未核对</source>
      <translation>Restored, not verified</translation>
    </message>
    <message numerus="yes">
      <source>%n项失败</source>
      <translation>
        <numerusform>%n setting failed</numerusform>
        <numerusform>%n settings failed</numerusform>
      </translation>
    </message>
    <message>
      <source>已放弃恢复</source>
      <translation>Restore abandoned</translation>
    </message>
    <message>
      <source>升级后未再回应</source>
      <translation>No answer since the upgrade</translation>
    </message>
    <message>
      <source>版本没有变化</source>
      <translation>The version has not changed</translation>
    </message>
    <message>
      <source>MAC地址未知，无法证实</source>
      <translation>MAC address unknown, cannot be verified</translation>
    </message>
    <message>
      <source>批次</source>
      <translation>Batch</translation>
    </message>
    <message>
      <source>设备</source>
      <translation>Box</translation>
    </message>
    <message>
      <source>MAC地址</source>
      <translation>MAC address</translation>
    </message>
    <message>
      <source>升级前版本</source>
      <translation>Version before</translation>
    </message>
    <message>
      <source>升级后版本</source>
      <translation>Version after</translation>
    </message>
    <message>
      <source>结果</source>
      <translation>Result</translation>
    </message>
    <message>
      <source>设置恢复</source>
      <translation>Settings</translation>
    </message>
    <message>
      <source>用时（秒）</source>
      <translation>Time (s)</translation>
    </message>
    <message>
      <source>固件包</source>
      <translation>Package</translation>
    </message>
    <message>
      <source>固件MD5</source>
      <translation>Package MD5</translation>
    </message>
    <message>
      <source>说明</source>
      <translation>Notes</translation>
    </message>
    <message>
      <source>进行中</source>
      <translation>Under way</translation>
    </message>
    <message>
      <source>已证实</source>
      <translation>Verified</translation>
    </message>
    <message>
      <source>未证实</source>
      <translation>Not verified</translation>
    </message>
    <message>
      <source>失败</source>
      <translation>Failed</translation>
    </message>
    <message>
      <source>已中断</source>
      <translation>Interrupted</translation>
    </message>
    <message>
      <source>此批次升级曾被中断</source>
      <translation>This batch was interrupted</translation>
    </message>
    <message>
      <source>中断时尚未开始上传</source>
      <translation>Interrupted before its upload began</translation>
    </message>
    <message>
      <source>中断时正在上传</source>
      <translation>Interrupted during its upload</translation>
    </message>
    <message>
      <source>网络中有两台设备的MAC地址相同，无法证实</source>
      <translation>Two boxes on the network have the same MAC address: cannot be verified</translation>
    </message>
    <message>
      <source>升级前版本未知，无法证实</source>
      <translation>The version before is not known: cannot be verified</translation>
    </message>
    <message>
      <source>版本退回到更旧的版本</source>
      <translation>The box fell back to an older version</translation>
    </message>
    <message>
      <source>版本与固件包不符</source>
      <translation>The version is not that of the package</translation>
    </message>
    <message>
      <source>未改动，无需恢复</source>
      <translation>Unchanged, nothing to restore</translation>
    </message>
    <message>
      <source>由之后的升级恢复</source>
      <translation>Restored by a later upgrade</translation>
    </message>
    <message>
      <source>MAC地址重复，未恢复</source>
      <translation>MAC address not unique, not restored</translation>
    </message>
    <message>
      <source>已切换为DHCP</source>
      <translation>Switched to DHCP</translation>
    </message>
    <message>
      <source>内部检查已停止此升级：%1</source>
      <translation>Stopped by an internal check: %1</translation>
    </message>
    <message>
      <source>设备称没有这些设置：%1</source>
      <translation>Settings that the box says it does not have: %1</translation>
    </message>
    <message>
      <source>保存的设置已超过%1天</source>
      <translation>The kept settings were older than %1 days</translation>
    </message>
  </context>
  <context>
    <name>UpgradeReportDialog</name>
    <message>
      <source>升级报告</source>
      <translation>Upgrade report</translation>
    </message>
    <message>
      <source>共[%1]个，已证实[%2]个，未证实[%3]个，失败[%4]个，已中断[%5]个，进行中[%6]个</source>
      <translation>Total [%1]: verified [%2], not verified [%3], failed [%4], interrupted [%5], under way [%6]</translation>
    </message>
    <message>
      <source>报告文件：%1</source>
      <translation>Report file: %1</translation>
    </message>
  </context>
  <context>
    <name>WebView</name>
    <message>
      <source>另存为</source>
      <translation>Save as</translation>
    </message>
    <message>
      <source>后退</source>
      <translation>Back</translation>
    </message>
    <message>
      <source>前进</source>
      <translation>Forward</translation>
    </message>
    <message>
      <source>重新加载</source>
      <translation>Reload</translation>
    </message>
    <message>
      <source>剪切</source>
      <translation>Cut</translation>
    </message>
    <message>
      <source>复制</source>
      <translation>Copy</translation>
    </message>
    <message>
      <source>粘贴</source>
      <translation>Paste</translation>
    </message>
  </context>
  <context>
    <name>messageBox</name>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>Esc</source>
      <translation>Esc</translation>
    </message>
    <message>
      <source>确定</source>
      <translation>OK</translation>
    </message>
    <message>
      <source>Return</source>
      <translation>Return</translation>
    </message>
    <message>
      <source>确定并保留配置</source>
      <translation>OK, keep settings</translation>
    </message>
    <message>
      <source>消息</source>
      <translation>Message</translation>
    </message>
  </context>
  <context>
    <name>setui</name>
    <message>
      <source>NDI源</source>
      <translation>NDI sources</translation>
    </message>
    <message>
      <source>刷新</source>
      <translation>Refresh</translation>
    </message>
    <message>
      <source>没有找到NDI源</source>
      <translation>No NDI sources found</translation>
    </message>
    <message>
      <source>关闭解码</source>
      <translation>Stop decoding</translation>
    </message>
    <message>
      <source>取消</source>
      <translation>Cancel</translation>
    </message>
    <message>
      <source>开启解码</source>
      <translation>Start decoding</translation>
    </message>
    <message>
      <source>请输入地址 :</source>
      <translation>Address:</translation>
    </message>
    <message>
      <source>流 ID :</source>
      <translation>Stream ID:</translation>
    </message>
    <message>
      <source>请输入端口 :</source>
      <translation>Port:</translation>
    </message>
    <message>
      <source>关闭直播</source>
      <translation>Stop streaming</translation>
    </message>
    <message>
      <source>开启直播</source>
      <translation>Start streaming</translation>
    </message>
    <message>
      <source>解码控制</source>
      <translation>Decoding</translation>
    </message>
    <message>
      <source>直播服务控制</source>
      <translation>Streaming</translation>
    </message>
    <message>
      <source>请选择您要解码的源</source>
      <translation>Choose the source to decode.</translation>
    </message>
    <message>
      <source>请输入正确的url</source>
      <translation>Enter the address or stream ID.</translation>
    </message>
    <message>
      <source>请输入正确的端口号</source>
      <translation>Enter a valid port number.</translation>
    </message>
    <message>
      <source>未能读到NDI源，请刷新重试</source>
      <translation>The NDI sources could not be read. Refresh to try again.</translation>
    </message>
    <message>
      <source>例如 %1</source>
      <translation>e.g. %1</translation>
    </message>
  </context>
</TS>
