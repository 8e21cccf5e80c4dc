// Fuzzes how a download reads its address and the headers that announce it. The first line of the
// input is the address, each further line a header.

#include "fakereply.h"
#include "http/httpclient.h"
#include "http/httpdownloader.h"
#include "http/httpresponse.h"
#include "input.h"
#include "qthost.h"

#include <QDir>
#include <QFile>
#include <QUrl>

#include <memory>

namespace {

constexpr int kept = 10; // bytes of the file "a.bin", which is there before the download

// Works in a folder of its own, so that a name from a server meets no other file than "a.bin".
bool prepare(const QtHost &host)
{
    host.folder().write("a.bin", std::string(kept, 'x'));
    return QDir::setCurrent(QString::fromStdString(host.folder().path().string()));
}

bool isWeb(const QUrl &address)
{
    return address.scheme() == QLatin1String("http") || address.scheme() == QLatin1String("https");
}

/// The request as it is sent once @p reply, of the probe, has announced the resource.
HttpRequestFields announced(const QUrl &address, FakeReply *reply)
{
    static HttpClient client;
    HttpRequest request(HttpMethod::Get, &client);
    request.fields.networkRequest.setUrl(address);
    const std::unique_ptr<HttpResponse> response(
        HttpDownloader::start(request.download(QString())));
    auto *downloader = response->findChild<HttpDownloader *>();
    QMap<QString, QString> map;
    for (const auto &header : reply->rawHeaderPairs())
        map.insert(QString::fromUtf8(header.first), QString::fromUtf8(header.second));
    require(
        QMetaObject::invokeMethod(downloader, "onHead",
                                  QArgument<QMap<QString, QString>>("QMap<QString,QString>", map))
            && QMetaObject::invokeMethod(downloader, "onReadyRead",
                                         QArgument<QNetworkReply *>("QNetworkReply*", reply)),
        "the slots are there");
    return response->request().fields;
}

bool mentionsDisposition(const FakeReply &reply)
{
    for (const auto &header : reply.rawHeaderPairs()) {
        if (QString::fromUtf8(header.first)
                .contains(QLatin1String("Content-Disposition"), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    static const bool isPrepared = prepare(host);
    require(isPrepared, "the folder is there");
    Input input(data, size);
    const QUrl address(QString::fromStdString(input.line()), QUrl::TolerantMode);
    if (!isWeb(address))
        return 0;
    FakeReply reply;
    reply.readHeaders(&input);

    const HttpRequestFields fields = announced(address, &reply);
    QtHost::settle();
    const QString &name = fields.downloadFilePath;
    require(!name.isEmpty() || address.host().isEmpty(), "a download has a name");
    if (mentionsDisposition(reply))
        require(name == address.fileName(QUrl::FullyDecoded) || name == address.host()
                    || name.simplified().remove(QLatin1Char(' ')) == name,
                "a name that the server gives has no blanks");
    else
        require(!name.contains(QLatin1Char('/')), "a name from an address has no folder");
    const QByteArray range = fields.networkRequest.rawHeader("Range");
    const bool continues =
        fields.supportsResume && fields.downloadedBytes < fields.totalBytes && QFile::exists(name);
    require(range
                == (continues ? "bytes=" + QByteArray::number(fields.downloadedBytes) + '-'
                              : QByteArray()),
            "just a file that is shorter than announced is continued");
    return 0;
}
