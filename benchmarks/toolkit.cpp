#include "benchmarks/eventloopcontender.h"
#include "http/httpclient.h"
#include "http/httprequest.h"

#include <QFile>
#include <QJsonObject>
#include <QObject>
#include <QVariantMap>

namespace {

/// Slot texts, as the service client has them.
class Toolkit : public QObject, public EventLoopContender
{
    Q_OBJECT

public Q_SLOTS:
    void onBody(QByteArray body) { answered(body.size()); }
    void onFile(QString name) { answered(QFile(name).size()); }
    void onFailure(QByteArray text) { fail(text); }

protected:
    void send(const Work &work) override
    {
        HttpRequest request(work.postedBytes == 0 ? HttpMethod::Get : HttpMethod::Post, &m_client);
        request.url(QString::fromLatin1(work.address)).onError(this, SLOT(onFailure(QByteArray)));
        if (work.postedBytes != 0)
            request.headers(m_headers).rawBody(posted(work));
        if (work.kind == Kind::File)
            receiveFile(&request);
        else
            request.onFinished(this, SLOT(onBody(QByteArray)));
        request.send();
    }

private:
    void receiveFile(HttpRequest *request)
    {
        const QString name = QString::fromLatin1(downloadedFile);
        request->download(name).onDownloadFileFinished(this, SLOT(onFile(QString)));
    }

    const QVariantMap m_headers{{QStringLiteral("Content-Type"), QByteArray("application/json")}};
    HttpClient m_client;
};

} // namespace

std::unique_ptr<Contender> makeToolkit() { return std::make_unique<Toolkit>(); }

#include "toolkit.moc"
