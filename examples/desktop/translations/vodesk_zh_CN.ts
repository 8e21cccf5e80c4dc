<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AccountPage</name>
    <message>
        <source>Sign &amp;out</source>
        <translation>退出登录(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Show a code</source>
        <translation>显示二维码(&amp;S)</translation>
    </message>
    <message>
        <source>S&amp;end an SMS</source>
        <translation>发送短信(&amp;E)</translation>
    </message>
    <message>
        <source>Sign &amp;in</source>
        <translation>登录(&amp;I)</translation>
    </message>
    <message>
        <source>Code to sign in with</source>
        <translation>登录二维码</translation>
    </message>
    <message>
        <source>With a code</source>
        <translation>扫码登录</translation>
    </message>
    <message>
        <source>By SMS</source>
        <translation>短信登录</translation>
    </message>
    <message>
        <source>&amp;Phone number</source>
        <translation>手机号(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Code of the SMS</source>
        <translation>短信验证码(&amp;C)</translation>
    </message>
    <message>
        <source>Signed in as %1 until %2</source>
        <translation>已登录：%1，有效期至 %2</translation>
    </message>
    <message>
        <source>Nobody is signed in. Short texts can be spoken all the same.</source>
        <translation>尚未登录。仍可朗读较短的文字。</translation>
    </message>
    <message>
        <source>The session could not be removed</source>
        <translation>无法删除登录会话</translation>
    </message>
    <message>
        <source>A code is asked for...</source>
        <translation>正在获取二维码...</translation>
    </message>
    <message>
        <source>Sign-in with a code</source>
        <translation>二维码登录</translation>
    </message>
    <message>
        <source>&amp;New code</source>
        <translation>新二维码(&amp;N)</translation>
    </message>
    <message>
        <source>To be confirmed within %1:%2</source>
        <translation>请在 %1:%2 内确认</translation>
    </message>
    <message>
        <source>A code to sign in with will be here</source>
        <translation>登录用的二维码将显示在这里</translation>
    </message>
    <message>
        <source>Sign-in by SMS</source>
        <translation>短信登录</translation>
    </message>
    <message>
        <source>The local service says: %1</source>
        <translation>本地服务消息：%1</translation>
    </message>
    <message>
        <source>The local service has no phone: &lt;a href=&quot;%1&quot;&gt;confirm on its page&lt;/a&gt;</source>
        <translation>本地服务没有手机：&lt;a href=&quot;%1&quot;&gt;在其页面上确认&lt;/a&gt;</translation>
    </message>
    <message>
        <source>no usable picture of the code came</source>
        <translation>没有得到可用的二维码图片</translation>
    </message>
    <message>
        <source>The code has expired</source>
        <translation>二维码已过期</translation>
    </message>
</context>
<context>
    <name>Catalogue</name>
    <message>
        <source>List of voices</source>
        <translation>声音列表</translation>
    </message>
    <message>
        <source>List of music</source>
        <translation>音乐列表</translation>
    </message>
    <message>
        <source>Recording of the catalogue</source>
        <translation>目录中的录音</translation>
    </message>
</context>
<context>
    <name>CodeSignInJob</name>
    <message>
        <source>&quot;%1&quot; cannot be written: %2</source>
        <translation>无法写入“%1”：%2</translation>
    </message>
    <message>
        <source>the service sent no usable address of the code&apos;s picture</source>
        <translation>服务没有返回可用的二维码图片地址</translation>
    </message>
    <message>
        <source>no usable picture of the code came or could be written</source>
        <translation>没有得到可用的二维码图片</translation>
    </message>
    <message>
        <source>the code has expired</source>
        <translation>二维码已过期</translation>
    </message>
</context>
<context>
    <name>FetchJob</name>
    <message>
        <source>the server answered %1 %2</source>
        <translation>服务器应答 %1 %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; could not be written</source>
        <translation>无法写入“%1”</translation>
    </message>
    <message>
        <source>the connection ended too early</source>
        <translation>连接过早结束</translation>
    </message>
    <message>
        <source>%1 bytes came of %2</source>
        <translation>%2 字节中只收到 %1 字节</translation>
    </message>
    <message>
        <source>&quot;%1&quot; could not be renamed to &quot;%2&quot;</source>
        <translation>无法将“%1”改名为“%2”</translation>
    </message>
    <message>
        <source>&quot;%1&quot; could not be downloaded: %2</source>
        <translation>无法下载“%1”：%2</translation>
    </message>
</context>
<context>
    <name>GalleryPage</name>
    <message>
        <source>&amp;Play the sample</source>
        <translation>试听(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Use for speaking</source>
        <translation>用于朗读(&amp;U)</translation>
    </message>
    <message>
        <source>P&amp;lay the track</source>
        <translation>播放曲目(&amp;L)</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>停止(&amp;T)</translation>
    </message>
    <message>
        <source>Voices</source>
        <translation>声音</translation>
    </message>
    <message>
        <source>Name, category or scene</source>
        <translation>名称、类别或场景</translation>
    </message>
    <message>
        <source>Search for voices</source>
        <translation>搜索声音</translation>
    </message>
    <message>
        <source>Category</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Background music</source>
        <translation>背景音乐</translation>
    </message>
    <message>
        <source>Background &amp;music</source>
        <translation>背景音乐(&amp;M)</translation>
    </message>
    <message>
        <source>All categories</source>
        <translation>所有类别</translation>
    </message>
    <message>
        <source>The catalogue is empty</source>
        <translation>目录为空</translation>
    </message>
    <message>
        <source>%1 of %2 voices</source>
        <translation>%1 / %2 个声音</translation>
    </message>
    <message>
        <source>The recording cannot be played</source>
        <translation>无法播放该录音</translation>
    </message>
    <message>
        <source>There is no audio device: nothing is heard</source>
        <translation>没有音频设备，听不到声音</translation>
    </message>
    <message>
        <source>Loa&amp;d again</source>
        <translation>重新加载(&amp;D)</translation>
    </message>
</context>
<context>
    <name>HostKit</name>
    <message>
        <source>the service refused</source>
        <translation>服务拒绝了请求</translation>
    </message>
    <message>
        <source>the service refused: %1</source>
        <translation>服务拒绝了请求：%1</translation>
    </message>
    <message>
        <source>the service refused with code %1</source>
        <translation>服务拒绝了请求，代码 %1</translation>
    </message>
    <message>
        <source>the service sent no usable answer</source>
        <translation>服务没有返回可用的应答</translation>
    </message>
</context>
<context>
    <name>InputFile</name>
    <message>
        <source>the address of a recording must begin with https://</source>
        <translation>录音地址必须以 https:// 开头</translation>
    </message>
    <message>
        <source>there is no file &quot;%1&quot;</source>
        <translation>没有文件“%1”</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a folder</source>
        <translation>“%1”是文件夹</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no ordinary file</source>
        <translation>“%1”不是普通文件</translation>
    </message>
    <message>
        <source>the file &quot;%1&quot; is empty</source>
        <translation>文件“%1”是空的</translation>
    </message>
    <message>
        <source>cannot read &quot;%1&quot;: %2</source>
        <translation>无法读取“%1”：%2</translation>
    </message>
</context>
<context>
    <name>Job</name>
    <message>
        <source>it took longer than %1 s</source>
        <translation>超过了 %1 秒</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>nothing was heard for %1 s</source>
        <translation>%1 秒内没有任何回应</translation>
    </message>
</context>
<context>
    <name>Level</name>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Speech desk</source>
        <translation>语音工作台</translation>
    </message>
    <message>
        <source>Speak</source>
        <translation>朗读</translation>
    </message>
    <message>
        <source>Recognise</source>
        <translation>识别</translation>
    </message>
    <message>
        <source>Voices and music</source>
        <translation>声音和音乐</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>账户</translation>
    </message>
    <message>
        <source>What happened</source>
        <translation>最近活动</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>页面</translation>
    </message>
    <message>
        <source>Question for updates</source>
        <translation>检查更新</translation>
    </message>
    <message>
        <source>The service cannot &amp;be reached. Look for it</source>
        <translation>无法连接服务，重新查找(&amp;B)</translation>
    </message>
</context>
<context>
    <name>Mixer</name>
    <message>
        <source>the music cannot be mixed with the voice</source>
        <translation>无法将音乐与语音混合</translation>
    </message>
</context>
<context>
    <name>NetworkReason</name>
    <message>
        <source>the authority of the server is not trusted, or it does not speak TLS</source>
        <translation>服务器的证书颁发机构不受信任，或服务器不支持 TLS</translation>
    </message>
    <message>
        <source>connection refused</source>
        <translation>连接被拒绝</translation>
    </message>
    <message>
        <source>the host was not found</source>
        <translation>找不到主机</translation>
    </message>
    <message>
        <source>the connection was closed</source>
        <translation>连接已关闭</translation>
    </message>
    <message>
        <source>it took too long</source>
        <translation>用时过长</translation>
    </message>
    <message>
        <source>the server wants a user and a password for a proxy</source>
        <translation>服务器要求代理的用户名和密码</translation>
    </message>
    <message>
        <source>cannot reach %1: %2</source>
        <translation>无法连接 %1：%2</translation>
    </message>
    <message>
        <source>no answer from %1: %2</source>
        <translation>%1 没有应答：%2</translation>
    </message>
    <message>
        <source>the server answered: %1</source>
        <translation>服务器应答：%1</translation>
    </message>
    <message>
        <source>the proxy wants a user and a password that it knows</source>
        <translation>代理要求有效的用户名和密码</translation>
    </message>
</context>
<context>
    <name>OutputFile</name>
    <message>
        <source>&quot;%1&quot; is a folder</source>
        <translation>“%1”是文件夹</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no ordinary file</source>
        <translation>“%1”不是普通文件</translation>
    </message>
    <message>
        <source>there is no folder &quot;%1&quot;</source>
        <translation>没有文件夹“%1”</translation>
    </message>
    <message>
        <source>&quot;%1&quot; may not be written</source>
        <translation>不允许写入“%1”</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a link and cannot be gone on with</source>
        <translation>“%1”是链接，无法接着写</translation>
    </message>
</context>
<context>
    <name>PlayerPanel</name>
    <message>
        <source>&amp;Play</source>
        <translation>播放(&amp;P)</translation>
    </message>
    <message>
        <source>L&amp;oop the selection</source>
        <translation>循环播放所选片段(&amp;O)</translation>
    </message>
    <message>
        <source>Drag over the waveform to select, or use the keys [ and ]</source>
        <translation>在波形上拖动以选择片段，或使用 [ 和 ] 键</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>暂停(&amp;P)</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>This recording cannot be shown or played</source>
        <translation>无法显示或播放该录音</translation>
    </message>
    <message>
        <source>There is no audio device: nothing is heard</source>
        <translation>没有音频设备，听不到声音</translation>
    </message>
</context>
<context>
    <name>PrivateFiles</name>
    <message>
        <source>cannot make the folder &quot;%1&quot;</source>
        <translation>无法创建文件夹“%1”</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no folder</source>
        <translation>“%1”不是文件夹</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a link</source>
        <translation>“%1”是链接</translation>
    </message>
    <message>
        <source>the folder &quot;%1&quot; belongs to somebody else</source>
        <translation>文件夹“%1”属于其他用户</translation>
    </message>
    <message>
        <source>the folder &quot;%1&quot; cannot be made private</source>
        <translation>无法将文件夹“%1”设为私有</translation>
    </message>
</context>
<context>
    <name>Proxies</name>
    <message>
        <source>%1 is no proxy: there are http://HOST:PORT, socks5://HOST:PORT and socks5h://HOST:PORT, with USER:PASSWORD@ before the host if need be</source>
        <translation>%1 不是代理：可用 http://HOST:PORT、socks5://HOST:PORT 和 socks5h://HOST:PORT，需要时在主机前加 USER:PASSWORD@</translation>
    </message>
    <message>
        <source>the value of %1</source>
        <translation>%1 的值</translation>
    </message>
    <message>
        <source>the value of --proxy</source>
        <translation>--proxy 的值</translation>
    </message>
</context>
<context>
    <name>RecognitionQueue</name>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>nobody spoke</source>
        <translation>没有人说话</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录音</translation>
    </message>
    <message>
        <source>Progress and result</source>
        <translation>进度和结果</translation>
    </message>
    <message>
        <source>asking the service</source>
        <translation>正在请求服务</translation>
    </message>
    <message>
        <source>Recognition</source>
        <translation>识别</translation>
    </message>
    <message>
        <source>uploading, %1 %</source>
        <translation>正在上传，%1 %</translation>
    </message>
    <message>
        <source>the service works on it, %1 s</source>
        <translation>服务正在处理，%1 秒</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>under way</source>
        <translation>进行中</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>it was not done when this window was opened</source>
        <translation>打开此窗口时它尚未完成</translation>
    </message>
</context>
<context>
    <name>RecognizeJob</name>
    <message>
        <source>the recording is too large (%1 MiB)</source>
        <translation>录音过大（上限 %1 MiB）</translation>
    </message>
    <message>
        <source>the recording is too long (%1 s)</source>
        <translation>录音过长（上限 %1 秒）</translation>
    </message>
    <message>
        <source>the recording is too long for one answer (%1 s)</source>
        <translation>录音过长，无法一次识别（上限 %1 秒）</translation>
    </message>
</context>
<context>
    <name>RecognizePage</name>
    <message>
        <source>&amp;Record</source>
        <translation>录音(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>取消(&amp;C)</translation>
    </message>
    <message>
        <source>Re&amp;try</source>
        <translation>重试(&amp;T)</translation>
    </message>
    <message>
        <source>Re&amp;move</source>
        <translation>移除(&amp;M)</translation>
    </message>
    <message>
        <source>Cop&amp;y the text</source>
        <translation>复制文字(&amp;Y)</translation>
    </message>
    <message>
        <source>&amp;Save the text...</source>
        <translation>保存文字(&amp;S)...</translation>
    </message>
    <message>
        <source>Recordings</source>
        <translation>录音</translation>
    </message>
    <message>
        <source>Recognised text</source>
        <translation>识别出的文字</translation>
    </message>
    <message>
        <source>The text of the recording that is chosen above</source>
        <translation>上方所选录音的文字</translation>
    </message>
    <message>
        <source>&amp;Add files...</source>
        <translation>添加文件(&amp;A)...</translation>
    </message>
    <message>
        <source>Level of the microphone</source>
        <translation>麦克风音量</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>WAV 文件 (*.wav)</translation>
    </message>
    <message>
        <source>&amp;End the recording</source>
        <translation>结束录音(&amp;E)</translation>
    </message>
    <message>
        <source>Save the text</source>
        <translation>保存文字</translation>
    </message>
    <message>
        <source>Texts (*.txt)</source>
        <translation>文本 (*.txt)</translation>
    </message>
    <message>
        <source>%1 could not be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>The result will not be here at the next start: %1</source>
        <translation>下次启动时将没有此结果：%1</translation>
    </message>
    <message>
        <source>WAV files can also be dropped on the window. Recordings are kept in %1</source>
        <translation>也可以把 WAV 文件拖放到窗口中。录音保存在 %1</translation>
    </message>
    <message>
        <source>The recording has ended: %1. What came before is kept.</source>
        <translation>录音已结束：%1。此前的内容已保存。</translation>
    </message>
    <message>
        <source>No microphone was found</source>
        <translation>未找到麦克风</translation>
    </message>
    <message>
        <source>Nothing can be recorded: %1</source>
        <translation>无法录音：%1</translation>
    </message>
</context>
<context>
    <name>Recorder</name>
    <message>
        <source>the microphone cannot be used</source>
        <translation>无法使用麦克风</translation>
    </message>
    <message>
        <source>the microphone is gone</source>
        <translation>麦克风已断开</translation>
    </message>
    <message>
        <source>the folder %1 cannot be made</source>
        <translation>无法创建文件夹 %1</translation>
    </message>
</context>
<context>
    <name>RequestLog</name>
    <message>
        <source>given up</source>
        <translation>已放弃</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>原因</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 毫秒</translation>
    </message>
    <message>
        <source>under way</source>
        <translation>进行中</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
</context>
<context>
    <name>RequestsPage</name>
    <message>
        <source>Last requests</source>
        <translation>最近的请求</translation>
    </message>
    <message>
        <source>&amp;Copy for a report</source>
        <translation>复制为报告(&amp;C)</translation>
    </message>
    <message>
        <source>Copies the list without texts, tokens and codes</source>
        <translation>复制列表，不含文字、令牌和验证码</translation>
    </message>
</context>
<context>
    <name>ServiceJob</name>
    <message>
        <source>the service refused or sent no usable answer</source>
        <translation>服务拒绝了请求，或没有返回可用的应答</translation>
    </message>
</context>
<context>
    <name>ServiceProcess</name>
    <message>
        <source>the local service has ended</source>
        <translation>本地服务已结束</translation>
    </message>
</context>
<context>
    <name>SessionFile</name>
    <message>
        <source>&quot;%1&quot; is a folder</source>
        <translation>“%1”是文件夹</translation>
    </message>
</context>
<context>
    <name>SpeakJob</name>
    <message>
        <source>there is nothing to say in the text</source>
        <translation>没有可朗读的文字</translation>
    </message>
    <message>
        <source>long texts are spoken for users only; sign in</source>
        <translation>登录后才能朗读长文本</translation>
    </message>
    <message>
        <source>the text is too long without signing in (%1 characters)</source>
        <translation>未登录时文字过长（上限 %1 个字符）</translation>
    </message>
    <message>
        <source>the text is too long (%1 characters)</source>
        <translation>文字过长（上限 %1 个字符）</translation>
    </message>
    <message>
        <source>the text is too long for one answer (%1 characters)</source>
        <translation>文字过长，无法一次朗读（上限 %1 个字符）</translation>
    </message>
    <message>
        <source>the service sent no usable audio</source>
        <translation>服务没有返回可用的音频</translation>
    </message>
    <message>
        <source>the audio could not be written: %1</source>
        <translation>无法写入音频：%1</translation>
    </message>
    <message>
        <source>the service sent no usable address of the audio</source>
        <translation>服务没有返回可用的音频地址</translation>
    </message>
    <message>
        <source>the audio could not be fetched or written</source>
        <translation>无法获取或写入音频</translation>
    </message>
</context>
<context>
    <name>SpeakPage</name>
    <message>
        <source>Play the sa&amp;mple</source>
        <translation>试听(&amp;M)</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>语速</translation>
    </message>
    <message>
        <source>Pitch</source>
        <translation>音调</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>音量</translation>
    </message>
    <message>
        <source>Level of the music</source>
        <translation>音乐音量</translation>
    </message>
    <message>
        <source>&amp;Speak</source>
        <translation>朗读(&amp;S)</translation>
    </message>
    <message>
        <source>Save &amp;as...</source>
        <translation>另存为(&amp;A)...</translation>
    </message>
    <message>
        <source>Text to speak</source>
        <translation>要朗读的文字</translation>
    </message>
    <message>
        <source>Write here what is to be spoken</source>
        <translation>在此输入要朗读的文字</translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation>Ctrl+回车</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Sp&amp;eed</source>
        <translation>语速(&amp;E)</translation>
    </message>
    <message>
        <source>Pit&amp;ch</source>
        <translation>音调(&amp;C)</translation>
    </message>
    <message>
        <source>Vo&amp;lume</source>
        <translation>音量(&amp;L)</translation>
    </message>
    <message>
        <source>Sample &amp;rate</source>
        <translation>采样率(&amp;R)</translation>
    </message>
    <message>
        <source>M&amp;usic</source>
        <translation>音乐(&amp;U)</translation>
    </message>
    <message>
        <source>Music le&amp;vel</source>
        <translation>音乐音量(&amp;V)</translation>
    </message>
    <message>
        <source>No music</source>
        <translation>无音乐</translation>
    </message>
    <message>
        <source>%1 of %2 characters</source>
        <translation>%1 / %2 个字符</translation>
    </message>
    <message>
        <source>%1 of %2 characters without signing in</source>
        <translation>%1 / %2 个字符（未登录）</translation>
    </message>
    <message>
        <source>Ca&amp;ncel</source>
        <translation>取消(&amp;N)</translation>
    </message>
    <message>
        <source>Speech</source>
        <translation>朗读</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>Save the audio</source>
        <translation>保存音频</translation>
    </message>
    <message>
        <source>WAV files (*.wav)</source>
        <translation>WAV 文件 (*.wav)</translation>
    </message>
    <message>
        <source>%1 could not be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>Vo&amp;ice</source>
        <translation>声音(&amp;I)</translation>
    </message>
    <message>
        <source>The text will not be here at the next start: %1. Copy it elsewhere, or close the window once more to give it up.</source>
        <translation>下次启动时将没有此文本：%1。请将其复制到别处，或再次关闭窗口以放弃。</translation>
    </message>
    <message>
        <source>The service has named no voice</source>
        <translation>服务没有提供任何声音</translation>
    </message>
</context>
<context>
    <name>StartPage</name>
    <message>
        <source>&amp;Start the local service and trust it</source>
        <translation>启动本地服务并信任它(&amp;S)</translation>
    </message>
    <message>
        <source>The speech service cannot be used</source>
        <translation>无法使用语音服务</translation>
    </message>
    <message>
        <source>It is expected at %1.</source>
        <translation>服务地址应为 %1。</translation>
    </message>
    <message>
        <source>Trust an &amp;authority...</source>
        <translation>信任证书颁发机构(&amp;A)...</translation>
    </message>
    <message>
        <source>&amp;Try again</source>
        <translation>重试(&amp;T)</translation>
    </message>
    <message>
        <source>This build has no local service</source>
        <translation>此版本不含本地服务</translation>
    </message>
    <message>
        <source>The local service is being started...</source>
        <translation>正在启动本地服务...</translation>
    </message>
    <message>
        <source>Authority to trust</source>
        <translation>要信任的证书颁发机构</translation>
    </message>
    <message>
        <source>Certificates (*.pem)</source>
        <translation>证书 (*.pem)</translation>
    </message>
    <message>
        <source>The local service does not run: %1</source>
        <translation>本地服务没有运行：%1</translation>
    </message>
</context>
<context>
    <name>TaskJob</name>
    <message>
        <source>the service could not carry out the task</source>
        <translation>服务未能完成任务</translation>
    </message>
</context>
<context>
    <name>TokenKeeper</name>
    <message>
        <source>sign in first</source>
        <translation>请先登录</translation>
    </message>
    <message>
        <source>the session cannot be read; sign in again</source>
        <translation>无法读取会话，请重新登录</translation>
    </message>
    <message>
        <source>the session has expired; sign in again</source>
        <translation>会话已过期，请重新登录</translation>
    </message>
    <message>
        <source>the service sent no usable session</source>
        <translation>服务没有返回可用的会话</translation>
    </message>
    <message>
        <source>the session could not be written: %1</source>
        <translation>无法写入会话：%1</translation>
    </message>
    <message>
        <source>the session could not be renewed in time</source>
        <translation>未能及时续期会话</translation>
    </message>
    <message>
        <source>the session could not be renewed; sign in again</source>
        <translation>无法续期会话，请重新登录</translation>
    </message>
</context>
<context>
    <name>Trust</name>
    <message>
        <source>cannot read &quot;%1&quot;: %2</source>
        <translation>无法读取“%1”：%2</translation>
    </message>
    <message>
        <source>there is no certificate in &quot;%1&quot;</source>
        <translation>“%1”中没有证书</translation>
    </message>
</context>
<context>
    <name>UpdateBanner</name>
    <message>
        <source>Version %1 is needed in place of %2: %3</source>
        <translation>需要版本 %1 代替 %2：%3</translation>
    </message>
    <message>
        <source>Version %1 is there, newer than %2: %3</source>
        <translation>有新版本 %1（当前为 %2）：%3</translation>
    </message>
    <message>
        <source>&amp;What is new</source>
        <translation>更新内容(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Hide</source>
        <translation>隐藏(&amp;H)</translation>
    </message>
</context>
<context>
    <name>Uploader</name>
    <message>
        <source>cannot read &quot;%1&quot;: %2</source>
        <translation>无法读取“%1”：%2</translation>
    </message>
    <message>
        <source>cannot read all of &quot;%1&quot;</source>
        <translation>无法完整读取“%1”</translation>
    </message>
    <message>
        <source>the service sent no usable address for the recording</source>
        <translation>服务没有返回可用的录音地址</translation>
    </message>
    <message>
        <source>the recording could not be sent</source>
        <translation>无法发送录音</translation>
    </message>
    <message>
        <source>the storage refused the recording or sent no usable answer</source>
        <translation>存储拒绝了录音，或没有返回可用的应答</translation>
    </message>
    <message>
        <source>the storage refused the recording: %1</source>
        <translation>存储拒绝了录音：%1</translation>
    </message>
    <message>
        <source>the recording could not be uploaded: %1</source>
        <translation>无法上传录音：%1</translation>
    </message>
</context>
<context>
    <name>VoiceModel</name>
    <message>
        <source>%1 - %2</source>
        <translation>%1 - %2</translation>
    </message>
</context>
<context>
    <name>Waveform</name>
    <message>
        <source>Waveform</source>
        <translation>波形</translation>
    </message>
    <message>
        <source>Arrow keys move the play head; [ and ] select, Escape gives the selection up</source>
        <translation>方向键移动播放位置；[ 和 ] 选择片段，Esc 取消选择</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Trust this authority as well.</source>
        <translation>同时信任此证书颁发机构。</translation>
    </message>
    <message>
        <source>FILE</source>
        <translation>文件</translation>
    </message>
</context>
</TS>
