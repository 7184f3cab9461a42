<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>DeployTaskWithCopyFile</name>
    <message>
        <source>failed, skin deploy dir is empty. </source>
        <translation>失败，皮肤部署目录为空。</translation>
    </message>
    <message>
        <source>src file is not exists. </source>
        <translation>源文件不存在。</translation>
    </message>
    <message>
        <source>can not create dir %1.</source>
        <translation>无法创建目录 %1。</translation>
    </message>
    <message>
        <source>copy %1 to %2 failed.</source>
        <translation>将 %1 复制到 %2 失败。</translation>
    </message>
</context>
<context>
    <name>DeployTaskWithUnzip</name>
    <message>
        <source>unknown error</source>
        <translation>未知错误</translation>
    </message>
    <message>
        <source>can not create dir  %1.</source>
        <translation>无法创建目录 %1。</translation>
    </message>
    <message>
        <source>can not create dir %1.</source>
        <translation>无法创建目录 %1。</translation>
    </message>
    <message>
        <source>unzip failed.</source>
        <translation>解压失败。</translation>
    </message>
    <message>
        <source>unzip file is not expected.</source>
        <translation>解压出的文件与预期不符。</translation>
    </message>
</context>
<context>
    <name>LaunchInstance</name>
    <message>
        <source>get a game session</source>
        <translation>正在获取游戏会话</translation>
    </message>
    <message>
        <source>the game session can not be kept for playing without a network</source>
        <translation>无法保存游戏会话，断网时将不能游戏</translation>
    </message>
    <message>
        <source>the service can not be reached, playing with the last session</source>
        <translation>无法连接服务，使用上次的会话进入游戏</translation>
    </message>
    <message>
        <source>user cancel</source>
        <translation>用户取消</translation>
    </message>
</context>
<context>
    <name>LaunchMcProcess</name>
    <message>
        <source>game client initialize...</source>
        <translation>游戏客户端正在初始化…</translation>
    </message>
</context>
<context>
    <name>MinecraftLaunchStep</name>
    <message>
        <source>user cancel</source>
        <translation>用户取消</translation>
    </message>
    <message>
        <source>unknown error</source>
        <translation>未知错误</translation>
    </message>
    <message>
        <source>download failed</source>
        <translation>下载失败</translation>
    </message>
    <message>
        <source>download stop</source>
        <translation>下载已停止</translation>
    </message>
    <message>
        <source>updating the java</source>
        <translation>正在更新 Java</translation>
    </message>
    <message>
        <source>updating the game client</source>
        <translation>正在更新游戏客户端</translation>
    </message>
    <message>
        <source>updating the other resource</source>
        <translation>正在更新其他资源</translation>
    </message>
    <message>
        <source>extracting file...</source>
        <translation>正在解压文件…</translation>
    </message>
    <message>
        <source>extracting files, please wait for a moment...</source>
        <translation>正在解压文件，请稍候…</translation>
    </message>
    <message>
        <source>deploy failed</source>
        <translation>部署失败</translation>
    </message>
    <message>
        <source>download speed:%1Kb/s&lt;br/&gt;</source>
        <translation>下载速度：%1Kb/s&lt;br/&gt;</translation>
    </message>
    <message>
        <source>download size:%2M&lt;br/&gt;</source>
        <translation>已下载：%2M&lt;br/&gt;</translation>
    </message>
    <message>
        <source>file total size:%3M&lt;br/&gt;</source>
        <translation>文件总大小：%3M&lt;br/&gt;</translation>
    </message>
    <message>
        <source>&lt;extern&gt;please be patient, you can play all server once updated&lt;/extern&gt;</source>
        <translation>&lt;extern&gt;请耐心等待，更新一次即可畅玩所有服务器&lt;/extern&gt;</translation>
    </message>
    <message>
        <source>left file number: %1&lt;br/&gt;</source>
        <translation>剩余文件数：%1&lt;br/&gt;</translation>
    </message>
    <message>
        <source>extracting files: %1%...</source>
        <translation>正在解压文件：%1%…</translation>
    </message>
</context>
<context>
    <name>OrMCAuthenticateTask</name>
    <message>
        <source>your account maybe login elsewhere</source>
        <translation>您的账号可能已在别处登录</translation>
    </message>
    <message>
        <source>product version needs to updated.</source>
        <translation>需要更新启动器版本。</translation>
    </message>
    <message>
        <source>can not connect to game server.</source>
        <translation>无法连接游戏服务器。</translation>
    </message>
    <message>
        <source>unknown authenticate error</source>
        <translation>未知的验证错误</translation>
    </message>
</context>
<context>
    <name>ReadyForGameClientLaunch</name>
    <message>
        <source>or mc auth game instance information object is null</source>
        <translation>游戏实例的验证信息对象为空</translation>
    </message>
    <message>
        <source>rivet user profile have not been set</source>
        <translation>尚未设置用户资料</translation>
    </message>
    <message>
        <source>launch game client</source>
        <translation>启动游戏客户端</translation>
    </message>
    <message>
        <source>game instance temp object is null</source>
        <translation>游戏实例对象已不存在</translation>
    </message>
    <message>
        <source>rivet settings  have not been set</source>
        <translation>尚未设置启动器配置</translation>
    </message>
    <message>
        <source>need login</source>
        <translation>需要登录</translation>
    </message>
    <message>
        <source>trying to start the game</source>
        <translation>正在尝试启动游戏</translation>
    </message>
    <message>
        <source>game client initialize...</source>
        <translation>游戏客户端正在初始化…</translation>
    </message>
    <message>
        <source>The process failed to start.</source>
        <translation>游戏进程启动失败。</translation>
    </message>
    <message>
        <source>Game crashed.</source>
        <translation>游戏崩溃。</translation>
    </message>
    <message>
        <source>The process failed to start with unknown error.</source>
        <translation>游戏进程启动失败，原因未知。</translation>
    </message>
    <message>
        <source>The process failed to start with other error.</source>
        <translation>游戏进程启动失败，发生其他错误。</translation>
    </message>
    <message>
        <source>minecraft start failed, because some files are tampered, please restart minecraft.</source>
        <translation>游戏启动失败：部分文件被篡改，请重新启动游戏。</translation>
    </message>
</context>
<context>
    <name>ReadyForJava</name>
    <message>
        <source>check java runtime environment</source>
        <translation>检查 Java 运行环境</translation>
    </message>
    <message>
        <source>checking java runtime environment, please wait for a moment...</source>
        <translation>正在检查 Java 运行环境，请稍候…</translation>
    </message>
    <message>
        <source>can not get resource list.</source>
        <translation>无法获取资源列表。</translation>
    </message>
</context>
<context>
    <name>ReadyForMinecraftFiles</name>
    <message>
        <source>check the game client</source>
        <translation>检查游戏客户端</translation>
    </message>
    <message>
        <source>checking the game client, please wait for a moment...</source>
        <translation>正在检查游戏客户端，请稍候…</translation>
    </message>
    <message>
        <source>game client list have not be updated.</source>
        <translation>游戏客户端列表尚未更新。</translation>
    </message>
    <message>
        <source>game client JSON object is empty, not expected error.</source>
        <translation>游戏客户端的 JSON 对象为空，意外错误。</translation>
    </message>
    <message>
        <source>server instance id is zero, not expected error.</source>
        <translation>服务器实例编号为零，意外错误。</translation>
    </message>
    <message>
        <source>type not &quot;Game&quot;, not expected error.</source>
        <translation>类型不是“Game”，意外错误。</translation>
    </message>
</context>
<context>
    <name>ReadyForOtherRes</name>
    <message>
        <source>check other resource</source>
        <translation>检查其他资源</translation>
    </message>
    <message>
        <source>checking the other resource, please wait for a moment...</source>
        <translation>正在检查其他资源，请稍候…</translation>
    </message>
    <message>
        <source>repair deploy folder failed</source>
        <translation>修复部署目录失败</translation>
    </message>
</context>
<context>
    <name>ReadyForSelectLine</name>
    <message>
        <source>select the line</source>
        <translation>选择线路</translation>
    </message>
    <message>
        <source>selecting the line, please wait for a moment...</source>
        <translation>正在选择线路，请稍候…</translation>
    </message>
</context>
<context>
    <name>RepairDnsTask</name>
    <message>
        <source>Start repair dns</source>
        <translation>开始修复 DNS</translation>
    </message>
    <message>
        <source>repair dns to </source>
        <translation>正在将 DNS 修复为 </translation>
    </message>
</context>
<context>
    <name>RepairFileDeployTask</name>
    <message>
        <source>repair game files configured</source>
        <translation>修复游戏文件配置</translation>
    </message>
    <message>
        <source>repair game files configured...</source>
        <translation>正在修复游戏文件配置…</translation>
    </message>
    <message>
        <source>To repair the game files configured failure</source>
        <translation>修复游戏文件配置失败</translation>
    </message>
</context>
<context>
    <name>RepairJavaEnvTask</name>
    <message>
        <source>Start repair java evn configured</source>
        <translation>开始修复 Java 环境配置</translation>
    </message>
    <message>
        <source>repair java evn configured...</source>
        <translation>正在修复 Java 环境配置…</translation>
    </message>
    <message>
        <source>repair java env configured failed</source>
        <translation>修复 Java 环境配置失败</translation>
    </message>
    <message>
        <source>Java evn repair Failed, check is there some related process is running?</source>
        <translation>Java 环境修复失败，请检查是否有相关进程正在运行？</translation>
    </message>
</context>
<context>
    <name>RepairOptimizeSysMemoryTask</name>
    <message>
        <source>Start optimize system memory</source>
        <translation>开始优化系统内存</translation>
    </message>
    <message>
        <source>optimize system memory...</source>
        <translation>正在优化系统内存…</translation>
    </message>
</context>
<context>
    <name>RepairPowerfulTask</name>
    <message>
        <source>Start powerful repair</source>
        <translation>开始强力修复</translation>
    </message>
    <message>
        <source>powerful repair...</source>
        <translation>正在强力修复…</translation>
    </message>
    <message>
        <source>It can not be removed: %1</source>
        <translation>无法删除：%1</translation>
    </message>
    <message>
        <source>Remove res files Failed, check the game is running?</source>
        <translation>删除资源文件失败，请检查游戏是否正在运行？</translation>
    </message>
    <message>
        <source>Remove deploy files Failed, check the related file is opening?</source>
        <translation>删除部署文件失败，请检查相关文件是否被打开？</translation>
    </message>
    <message>
        <source>powerful repair failed</source>
        <translation>强力修复失败</translation>
    </message>
</context>
<context>
    <name>ResObj</name>
    <message>
        <source>deploy out folder prefix is empty.</source>
        <translation>部署输出目录的前缀为空。</translation>
    </message>
</context>
<context>
    <name>ResUpdateTask</name>
    <message>
        <source>Operation canceled</source>
        <translation>操作已取消</translation>
    </message>
</context>
<context>
    <name>RivetLoginHost</name>
    <message>
        <source>network error</source>
        <translation>网络错误</translation>
    </message>
    <message>
        <source>internal error</source>
        <translation>内部错误</translation>
    </message>
    <message>
        <source>invalid user name or password</source>
        <translation>用户名或密码错误</translation>
    </message>
</context>
<context>
    <name>RivetUserRegister</name>
    <message>
        <source>username should not empty</source>
        <translation>用户名不能为空</translation>
    </message>
    <message>
        <source>password should not empty</source>
        <translation>密码不能为空</translation>
    </message>
    <message>
        <source>verify code should not empty</source>
        <translation>验证码不能为空</translation>
    </message>
    <message>
        <source>network error</source>
        <translation>网络错误</translation>
    </message>
    <message>
        <source>internal error</source>
        <translation>内部错误</translation>
    </message>
</context>
<context>
    <name>TipsHelper</name>
    <message>
        <source>quickly into room will match the gaming room</source>
        <translation>“快速进入”会匹配正在游戏的房间</translation>
    </message>
    <message>
        <source>Now temporarily don&apos;t support upload MOD map, friends please be patient</source>
        <translation>暂不支持上传带 MOD 的地图，请耐心等待</translation>
    </message>
    <message>
        <source>after homeowners create the game, then the other players can to start the game</source>
        <translation>房主创建游戏之后，其他玩家才能开始游戏</translation>
    </message>
    <message>
        <source>the room is too much, try the intelligent filter</source>
        <translation>房间太多？试试智能筛选</translation>
    </message>
    <message>
        <source>the firewall will stop you and other people online</source>
        <translation>防火墙会阻止您与他人联机</translation>
    </message>
    <message>
        <source>you should register player name in every mc version</source>
        <translation>每个游戏版本都需要注册角色名</translation>
    </message>
    <message>
        <source>can&apos;t find a buddy&apos;s room? try to search the network line on the left side of the room</source>
        <translation>找不到好友的房间？试试搜索房间左侧的网络线路</translation>
    </message>
    <message>
        <source>the higher the VIP level, the more front of the room</source>
        <translation>VIP 等级越高，房间排名越靠前</translation>
    </message>
</context>
<context>
    <name>host</name>
    <message>
        <source>Password: </source>
        <translation>密码：</translation>
    </message>
    <message>
        <source>a password is needed: at the terminal, or by --password-stdin</source>
        <translation>需要密码：请在终端输入，或使用 --password-stdin</translation>
    </message>
    <message>
        <source>logged in as %1, account %2</source>
        <translation>已登录：%1，账号 %2</translation>
    </message>
    <message>
        <source>nobody is logged in</source>
        <translation>没有用户登录</translation>
    </message>
    <message>
        <source>what lets %1 play offline can not be removed</source>
        <translation>无法删除 %1 的离线游戏数据</translation>
    </message>
    <message>
        <source>%1 is logged out</source>
        <translation>%1 已退出登录</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>user</source>
        <translation>用户</translation>
    </message>
    <message>
        <source>last login</source>
        <translation>上次登录</translation>
    </message>
    <message>
        <source>current</source>
        <translation>当前</translation>
    </message>
    <message>
        <source>the service refuses the account</source>
        <translation>服务拒绝了该账号</translation>
    </message>
    <message>
        <source>%1 is registered</source>
        <translation>%1 注册成功</translation>
    </message>
    <message>
        <source>log in and stay logged in</source>
        <translation>登录并保持登录状态</translation>
    </message>
    <message>
        <source>forget a user, with all that lets him play offline</source>
        <translation>忘记一个用户，并删除其离线游戏数据</translation>
    </message>
    <message>
        <source>who has logged in on this machine</source>
        <translation>在本机登录过的用户</translation>
    </message>
    <message>
        <source>make an account; CODE is the verification code</source>
        <translation>注册账号；CODE 是验证码</translation>
    </message>
    <message>
        <source>the game clients that the service offers</source>
        <translation>服务提供的游戏客户端</translation>
    </message>
    <message>
        <source>the Java runtimes that the service offers</source>
        <translation>服务提供的 Java 运行环境</translation>
    </message>
    <message>
        <source>the instances of the user who is logged in</source>
        <translation>当前用户的游戏实例</translation>
    </message>
    <message>
        <source>the resources of an instance; add and remove are the user&apos;s own, ignore switches a default off</source>
        <translation>实例的资源；add 和 remove 管理用户自己的资源，ignore 关闭一个默认资源</translation>
    </message>
    <message>
        <source>the public servers, with their players</source>
        <translation>公共服务器及其在线人数</translation>
    </message>
    <message>
        <source>ask game servers for their players, the quickest first</source>
        <translation>查询游戏服务器的在线人数，最快的排在最前</translation>
    </message>
    <message>
        <source>the resources of a map, as for an instance</source>
        <translation>地图的资源，用法与实例相同</translation>
    </message>
    <message>
        <source>the text without the words that the installation hides</source>
        <translation>去掉屏蔽词之后的文字</translation>
    </message>
    <message>
        <source>a hint</source>
        <translation>一条提示</translation>
    </message>
    <message>
        <source>make everything ready, start the game and stay until it ends</source>
        <translation>准备好一切，启动游戏，直到游戏结束</translation>
    </message>
    <message>
        <source>what the store sells, and the user&apos;s money and props; FORM is one of the ways in which a prop is sold</source>
        <translation>商店出售的道具，以及用户的余额和道具；FORM 是道具的一种出售方式</translation>
    </message>
    <message>
        <source>what each VIP level gives</source>
        <translation>各 VIP 等级的福利</translation>
    </message>
    <message>
        <source>show or change what the launcher remembers</source>
        <translation>查看或修改启动器的设置</translation>
    </message>
    <message>
        <source>the version of the program</source>
        <translation>程序的版本</translation>
    </message>
    <message>
        <source>the game data can not lie in %1</source>
        <translation>游戏数据不能放在 %1</translation>
    </message>
    <message>
        <source>key</source>
        <translation>键</translation>
    </message>
    <message>
        <source>value</source>
        <translation>值</translation>
    </message>
    <message>
        <source>nobody is logged in: rivet login USER</source>
        <translation>没有用户登录：请先运行 rivet login USER</translation>
    </message>
    <message>
        <source>there is no instance %1</source>
        <translation>没有实例 %1</translation>
    </message>
    <message>
        <source>the game runs</source>
        <translation>游戏正在运行</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>the game has ended</source>
        <translation>游戏已结束</translation>
    </message>
    <message>
        <source>the list can not be had</source>
        <translation>无法获取列表</translation>
    </message>
    <message>
        <source>id</source>
        <translation>编号</translation>
    </message>
    <message>
        <source>name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>ver</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>description</source>
        <translation>说明</translation>
    </message>
    <message>
        <source>rivet - a launcher for Minecraft on the command line

usage: rivet [OPTION...] COMMAND [ARGUMENT...]

</source>
        <translation>rivet - 命令行上的 Minecraft 启动器

用法：rivet [选项...] 命令 [参数...]

</translation>
    </message>
    <message>
        <source>
  --json           one JSON object a line in the place of text, in English
  --service URL    the web service; the variable RIVET_SERVICE_URL goes before it
  --language NAME  such as zh_CN or en, in the place of the system&apos;s language
  --verbose        the log of the core on the standard error output
  --help           this text

INSTANCE is the number or the name of an instance. TYPE is 1 mod, 2 save, 3 resource
pack, 7 other, 8 shader pack.

</source>
        <translation>
  --json           每行输出一个 JSON 对象代替文字，使用英文
  --service URL    服务地址；环境变量 RIVET_SERVICE_URL 优先
  --language NAME  如 zh_CN 或 en，代替系统的语言
  --verbose        在标准错误输出上显示核心的日志
  --help           本帮助

INSTANCE 是实例的编号或名称。TYPE：1 模组，2 存档，3 资源包，7 其他，8 光影包。

</translation>
    </message>
    <message>
        <source>exit code: 0 done; 1 failed; 2 wrong usage; 130 cancelled. A launch that fails, and
a game that does, give 10 and the number of the error: 10 unknown, 12 no list of
resources, 13 download failed, 14 download stopped, 15 deployment failed, 16 the
game did not start, 17 it crashed, 18 or 19 other trouble with its process, 23 its
mods were changed while it ran, 24 log in again.

Ctrl-C aborts what runs, or ends the game, in good order; a second one at once.
</source>
        <translation>退出码：0 完成；1 失败；2 用法错误；130 取消。启动失败或游戏出错时，为 10 加错误编号：
10 未知错误，12 没有资源列表，13 下载失败，14 下载停止，15 部署失败，16 游戏未能启动，
17 游戏崩溃，18 或 19 游戏进程的其他问题，23 运行时模组被改动，24 需要重新登录。

Ctrl-C 有序地中止当前操作或结束游戏；再按一次立即退出。
</translation>
    </message>
    <message>
        <source>no address of a service: %1</source>
        <translation>不是服务地址：%1</translation>
    </message>
    <message>
        <source>see rivet --help</source>
        <translation>请参阅 rivet --help</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 分 %2 秒</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>%1, %2/s, %3 left</source>
        <translation>%1，%2/s，剩余 %3</translation>
    </message>
    <message>
        <source>ignored</source>
        <translation>已关闭</translation>
    </message>
    <message>
        <source>default</source>
        <translation>默认</translation>
    </message>
    <message>
        <source>own</source>
        <translation>自选</translation>
    </message>
    <message>
        <source>type</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>origin</source>
        <translation>来源</translation>
    </message>
    <message>
        <source>up to 150 ms</source>
        <translation>150 毫秒以内</translation>
    </message>
    <message>
        <source>up to 300 ms</source>
        <translation>300 毫秒以内</translation>
    </message>
    <message>
        <source>slow</source>
        <translation>慢</translation>
    </message>
    <message>
        <source>no answer</source>
        <translation>无应答</translation>
    </message>
    <message>
        <source>address</source>
        <translation>地址</translation>
    </message>
    <message>
        <source>players</source>
        <translation>人数</translation>
    </message>
    <message>
        <source>lag</source>
        <translation>延迟</translation>
    </message>
    <message>
        <source>the store can not be had</source>
        <translation>无法获取商店目录</translation>
    </message>
    <message>
        <source>the store can not be reached; this is how it was</source>
        <translation>无法连接商店；以下是上次的内容</translation>
    </message>
    <message>
        <source>the service can not be reached</source>
        <translation>无法连接服务</translation>
    </message>
    <message>
        <source>the money and props of the user can not be had</source>
        <translation>无法获取用户的余额和道具</translation>
    </message>
    <message>
        <source>no</source>
        <translation>否</translation>
    </message>
    <message>
        <source>money %1, VIP level %2, %3 days left</source>
        <translation>余额 %1，VIP 等级 %2，剩余 %3 天</translation>
    </message>
    <message>
        <source>money %1, no VIP</source>
        <translation>余额 %1，不是 VIP</translation>
    </message>
    <message>
        <source>form</source>
        <translation>方式</translation>
    </message>
    <message>
        <source>sold as</source>
        <translation>规格</translation>
    </message>
    <message>
        <source>price</source>
        <translation>价格</translation>
    </message>
    <message>
        <source>on sale</source>
        <translation>在售</translation>
    </message>
    <message>
        <source>count</source>
        <translation>数量</translation>
    </message>
    <message>
        <source>in use</source>
        <translation>使用中</translation>
    </message>
    <message>
        <source>ends</source>
        <translation>到期</translation>
    </message>
    <message>
        <source>expired</source>
        <translation>已过期</translation>
    </message>
    <message>
        <source>%1: you have %2, in use: %3</source>
        <translation>%1：拥有 %2，使用中：%3</translation>
    </message>
    <message>
        <source>the store does not sell that, or in several ways: see store list</source>
        <translation>商店不出售该道具，或有多种方式：请参阅 store list</translation>
    </message>
    <message>
        <source>the store does not sell %1 to you</source>
        <translation>商店拒绝向您出售 %1</translation>
    </message>
    <message>
        <source>the prop can not be used</source>
        <translation>该道具无法使用</translation>
    </message>
    <message>
        <source>the list can not be had; this is how it was</source>
        <translation>无法获取列表；以下是上次的内容</translation>
    </message>
    <message>
        <source>level</source>
        <translation>等级</translation>
    </message>
    <message>
        <source>discount</source>
        <translation>折扣</translation>
    </message>
    <message>
        <source>room</source>
        <translation>房间</translation>
    </message>
    <message>
        <source>welfare</source>
        <translation>福利</translation>
    </message>
    <message>
        <source>put things right: quick forgets the choice of resources and the Java, java only the latter, powerful wipes all but the downloads, dns sets a public name server, firewall lets the launcher through (--open: all, for as long as you want). Asks first, unless --yes</source>
        <translation>修复：quick 忘记资源选择并重置 Java，java 只重置 Java，powerful 清除下载以外的所有数据，dns 设置公共 DNS 服务器，firewall 允许启动器通过防火墙（--open：全部放行，直到您结束）。除非使用 --yes，否则会先询问</translation>
    </message>
    <message>
        <source>a repair is under way, try again after it</source>
        <translation>正在进行修复，请在修复结束后重试</translation>
    </message>
    <message>
        <source> [y/N] </source>
        <translation> [y/N] </translation>
    </message>
    <message>
        <source>there is no terminal to ask at: give --yes or --dry-run</source>
        <translation>没有可供确认的终端：请使用 --yes 或 --dry-run</translation>
    </message>
    <message>
        <source>what has begun goes on to its end</source>
        <translation>已开始的操作会继续到结束</translation>
    </message>
    <message>
        <source>the repair is done</source>
        <translation>修复完成</translation>
    </message>
    <message>
        <source>goes: %1</source>
        <translation>将删除：%1</translation>
    </message>
    <message>
        <source>no deployed Java goes</source>
        <translation>没有需要删除的 Java</translation>
    </message>
    <message>
        <source>goes back to the default: JavaPath, JavaParam</source>
        <translation>恢复默认：JavaPath、JavaParam</translation>
    </message>
    <message>
        <source>Repair Java?</source>
        <translation>修复 Java？</translation>
    </message>
    <message>
        <source>forgotten: the resources added to instances, the defaults ignored</source>
        <translation>将忘记：为实例添加的资源，以及关闭的默认资源</translation>
    </message>
    <message>
        <source>Repair?</source>
        <translation>修复？</translation>
    </message>
    <message>
        <source>goes: %1 files, %2, in %3</source>
        <translation>将删除：%1 个文件，%2，位于 %3</translation>
    </message>
    <message>
        <source>stays: %1 files, %2, in %3</source>
        <translation>保留：%1 个文件，%2，位于 %3</translation>
    </message>
    <message>
        <source>All games, saves and settings of all instances go. No game may be running, not even one whose launcher has gone. Wipe them?</source>
        <translation>所有实例的游戏、存档和设置都会被删除。不能有游戏正在运行，包括启动器已退出的游戏。确定清除？</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>the name server is %1</source>
        <translation>当前 DNS 服务器为 %1</translation>
    </message>
    <message>
        <source>it becomes %1 on</source>
        <translation>将在以下网络接口上改为 %1</translation>
    </message>
    <message>
        <source>Replace the name server?</source>
        <translation>更换 DNS 服务器？</translation>
    </message>
    <message>
        <source>it was %1, in case that is to come back</source>
        <translation>原来是 %1，可用于恢复</translation>
    </message>
    <message>
        <source>it did not change; that takes the rights of an administrator</source>
        <translation>没有改变；此操作需要管理员权限</translation>
    </message>
    <message>
        <source>exception</source>
        <translation>例外</translation>
    </message>
    <message>
        <source>program</source>
        <translation>程序</translation>
    </message>
    <message>
        <source>added</source>
        <translation>已添加</translation>
    </message>
    <message>
        <source>The firewall is off. Enter puts it back. </source>
        <translation>防火墙已关闭。按回车键恢复。</translation>
    </message>
    <message>
        <source>the firewall is as it was</source>
        <translation>防火墙已恢复原状</translation>
    </message>
    <message>
        <source>the firewall can not be switched off</source>
        <translation>无法关闭防火墙</translation>
    </message>
    <message>
        <source>Add these exceptions, and switch the firewall off for now?</source>
        <translation>添加这些例外，并暂时关闭防火墙？</translation>
    </message>
    <message>
        <source>Add these exceptions to the firewall?</source>
        <translation>将这些例外添加到防火墙？</translation>
    </message>
    <message>
        <source>not all were added; that takes the rights of an administrator</source>
        <translation>未能全部添加；此操作需要管理员权限</translation>
    </message>
    <message>
        <source>a launch or another repair is under way</source>
        <translation>正在启动游戏或进行另一个修复</translation>
    </message>
</context>
</TS>
