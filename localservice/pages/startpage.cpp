#include "localservice/pages/startpage.h"

namespace localservice {

namespace {

constexpr Text title{"Speech service of this computer", "本机语音服务"};

constexpr Text contents{
    R"(<p>This is <code>vo-localservice</code>. It speaks, recognises speech (US English) and signs users
in for the applications on this computer. Nothing of it can be reached from another one.</p>
<p>There is nothing to do here: for each sign-in that an application asks for, the service prints the address
of a page of its own.</p>
<h2>When the browser warns</h2>
<p>The certificate is from an authority that the service made for itself, in the file <code>%1</code>.
Let the browser trust it for websites:</p>
<p>Firefox: Settings, Privacy &amp; Security, View Certificates, Authorities, Import.</p>
<p>Chromium and Chrome, which have to be started again then (<code>certutil</code> is in Debian's
libnss3-tools):</p>
<pre>mkdir -p ~/.pki/nssdb
certutil -d sql:$HOME/.pki/nssdb -A -t C,, -n vo-localservice \
    -i "%1"</pre>
<p class="note">The authority's key was thrown away, so that nobody can sign anything else with it.</p>
)",
    R"(<p>这是 <code>vo-localservice</code>，为本机上的应用程序提供语音合成、语音识别（美式英语）和登录服务。其他计算机无法访问它。</p>
<p>您无需在此进行任何操作：应用程序每次请求登录时，本服务都会输出专用页面的地址。</p>
<h2>浏览器发出警告时</h2>
<p>本服务的证书由它自建的证书颁发机构签发，该机构的证书文件为 <code>%1</code>。请让浏览器信任它来标识网站：</p>
<p>Firefox：设置 → 隐私与安全 → 查看证书 → 证书颁发机构 → 导入。</p>
<p>Chromium 和 Chrome：运行以下命令，然后重新启动浏览器（<code>certutil</code> 在 Debian 的 libnss3-tools 中）：</p>
<pre>mkdir -p ~/.pki/nssdb
certutil -d sql:$HOME/.pki/nssdb -A -t C,, -n vo-localservice \
    -i "%1"</pre>
<p class="note">该证书颁发机构的私钥已被销毁，无人能用它签发其他证书。</p>
)"};

// Commands need more room than a question.
constexpr const char *style = R"(main{max-width:44rem}
)";

} // namespace

StartPage::StartPage(const std::string &authority)
    : m_authority(authority)
{
}

Page StartPage::show(Language language) const
{
    const QString authority = QString::fromStdString(m_authority).toHtmlEscaped();
    return makePage(language, {QString::fromUtf8(title.in(language)),
                               QString::fromUtf8(contents.in(language)).arg(authority), QString(),
                               QString::fromUtf8(style)});
}

} // namespace localservice
