#include "localservice/pages/startpage.h"

namespace localservice {

namespace {

constexpr Text title{"Speech service of this computer", "本机语音服务"};

constexpr Text contents{
    R"(<p>This is <code>vo-localservice</code>. It speaks, recognises speech (US English) and signs users
in for the applications on this computer. Nothing of it can be reached from another one.</p>
<p>There is nothing to do here: an application that wants to sign somebody in shows the address of a page
of its own.</p>
<h2>When the browser warns</h2>
<p>The certificate is from an authority that the service made for itself, in the file
<code>%1</code>. Import it as an authority for websites:</p>
<ul>
<li>Firefox: Settings, Privacy &amp; Security, View Certificates, Authorities, Import.</li>
<li>Chromium and Chrome: <code>certutil -d sql:$HOME/.pki/nssdb -A -t C,, -n vo-localservice -i
"%1"</code> (Debian has certutil in libnss3-tools), then start the browser again.</li>
</ul>
<p class="note">The authority's key was thrown away, so that nobody can sign anything else with it.</p>
)",
    R"(<p>这是 <code>vo-localservice</code>，为本机上的应用程序提供语音合成、语音识别（美式英语）和登录服务。
其他计算机无法访问它。</p>
<p>您无需在此进行任何操作：需要登录时，应用程序会给出专用页面的地址。</p>
<h2>浏览器发出警告时</h2>
<p>本服务的证书由它自建的证书颁发机构签发，证书文件为 <code>%1</code>。请将其导入为网站的证书颁发机构：</p>
<ul>
<li>Firefox：设置 → 隐私与安全 → 查看证书 → 证书颁发机构 → 导入。</li>
<li>Chromium 和 Chrome：运行 <code>certutil -d sql:$HOME/.pki/nssdb -A -t C,, -n vo-localservice -i
"%1"</code>（在 Debian 上由 libnss3-tools 提供），然后重新启动浏览器。</li>
</ul>
<p class="note">该证书颁发机构的私钥已被销毁，无人能用它签发其他证书。</p>
)"};

} // namespace

StartPage::StartPage(const std::string &authority)
    : m_authority(authority)
{
}

Page StartPage::show(Language language) const
{
    const QString authority = QString::fromStdString(m_authority).toHtmlEscaped();
    return makePage(language, {QString::fromUtf8(title.in(language)),
                               QString::fromUtf8(contents.in(language)).arg(authority)});
}

} // namespace localservice
