#include "localservice/pages/page.h"

#include <QCryptographicHash>

namespace localservice {

namespace {

// Each pair of colours has a contrast of 7 to 1 or more; those of the system differ between
// browsers.
constexpr const char *commonStyle = R"(
:root{color-scheme:light dark}
*{box-sizing:border-box}
body{margin:0;padding:1.5rem;min-height:100vh;display:flex;align-items:center;justify-content:center;
background:#eef2f7;color:#16202c;font:1.125rem/1.5 system-ui,sans-serif;overflow-wrap:break-word}
main{width:100%;max-width:28rem;padding:2rem 1.5rem;border-radius:1rem;background:#fff;
box-shadow:0 .25rem 1.5rem #16202c26}
img{display:block;width:3.5rem;height:3.5rem;margin:0 0 1rem}
h1{margin:0 0 1rem;font-size:1.75rem;line-height:1.2}
h2{margin:1.5rem 0 .5rem;font-size:1.25rem;line-height:1.3}
p,pre{margin:0 0 1rem}
p:last-child{margin:0}
code,pre{font-size:.9375rem;overflow-wrap:anywhere}
pre{padding:.75rem;border-radius:.5rem;background:#eef2f7;white-space:pre-wrap}
.note{color:#3b4856}
form{margin:1.5rem 0}
button{width:100%;min-height:3.5rem;margin:0;padding:.75rem 1rem;border:.125rem solid #0b4fa8;
border-radius:.75rem;background:#0b4fa8;color:#fff;font:inherit;font-size:1.25rem;font-weight:600;
cursor:pointer}
button+button{margin-top:.75rem}
button:hover{background:#083d84}
button.other{background:none;color:#0b4fa8}
button.other:hover{background:#e3edfa}
button:focus-visible{outline:.2rem solid #0b4fa8;outline-offset:.2rem}
@media (prefers-color-scheme:dark){
body{background:#0e141b;color:#eef2f7}
main{background:#1a232e;box-shadow:none}
pre{background:#0e141b}
.note{color:#c3cedb}
button{border-color:#9cc7ff;background:#9cc7ff;color:#06203f}
button:hover{background:#c2ddff}
button.other{color:#9cc7ff}
button.other:hover{background:#253447}
button:focus-visible{outline-color:#9cc7ff}
}
)";

constexpr const char *layout = R"(<!DOCTYPE html>
<html lang="%1">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>%2</title>
<link rel="icon" type="image/svg+xml" href="%3">
%4<style>%5</style>
</head>
<body>
<main>
<img src="%3" alt="">
<h1>%2</h1>
%6</main>
</body>
</html>
)";

// Names an inline style in a content security policy.
std::string sourceOf(const QString &style)
{
    const QByteArray digest = QCryptographicHash::hash(style.toUtf8(), QCryptographicHash::Sha256);
    return "'sha256-" + digest.toBase64().toStdString() + "'";
}

} // namespace

Page makePage(Language language, const PageContents &contents, int status)
{
    const QString style = QString::fromUtf8(commonStyle) + contents.style;
    const QString html = QString::fromUtf8(layout).arg(
        language == Language::Chinese ? QStringLiteral("zh-CN") : QStringLiteral("en"),
        contents.title, QLatin1String(iconPath), contents.head, style, contents.html);
    return {status,
            html.toStdString(),
            {{"Content-Security-Policy", "default-src 'none'; img-src 'self'; style-src "
                                             + sourceOf(style)
                                             + "; form-action 'self'; base-uri 'none'; "
                                               "frame-ancestors 'none'"},
             {"Referrer-Policy", "no-referrer"},
             {"X-Content-Type-Options", "nosniff"}}};
}

// A speech bubble with a sound wave in it. Its blue stands out from light pages and from dark ones.
std::string icon()
{
    return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 64 64">
<path fill="#2a78dc" d="M16 4h32a12 12 0 0 1 12 12v22a12 12 0 0 1-12 12H32L18 61V50h-2A12 12 0 0 1 4 38V16A12 12 0 0 1 16 4z"/>
<path stroke="#fff" stroke-width="5" stroke-linecap="round" d="M16 24v6M24 18v18M32 13v28M40 18v18M48 24v6"/>
</svg>
)";
}

} // namespace localservice
