#include "benchmarks/eventloopcontender.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace {

struct Options
{
    bool isGet = false;
    int readBufferSize = 0; ///< Bytes; 0: no bound.
    bool isHttp2 = false;
};

class Bare : public EventLoopContender
{
public:
    explicit Bare(const Options &options)
        : m_options(options)
    {
    }

protected:
    void send(const Work &work) override
    {
        QNetworkReply *reply = request(work);
        QObject::connect(reply, &QNetworkReply::errorOccurred, &m_manager,
                         [reply] { fail(reply->errorString().toLocal8Bit()); });
        if (work.kind == Kind::File)
            receiveFile(reply);
        else
            receiveBody(reply);
    }

private:
    QNetworkReply *request(const Work &work)
    {
        QUrl address(QString::fromLatin1(work.address));
        QNetworkRequest request;
        if (m_options.isHttp2) {
            address.setPort(address.port() + 1);
            request.setAttribute(QNetworkRequest::Http2AllowedAttribute, true);
        }
        request.setUrl(address);
        if (work.postedBytes == 0)
            return m_options.isGet ? m_manager.get(request)
                                   : m_manager.sendCustomRequest(request, "GET", QByteArray());
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        return m_manager.post(request, posted(work));
    }

    void receiveBody(QNetworkReply *reply)
    {
        QObject::connect(reply, &QNetworkReply::finished, &m_manager, [this, reply] {
            const QByteArray body = reply->readAll();
            reply->deleteLater();
            answered(body.size());
        });
    }

    void receiveFile(QNetworkReply *reply)
    {
        auto *file = new QFile(QString::fromLatin1(downloadedFile), reply); // goes with the reply
        if (!file->open(QFile::WriteOnly))
            fail("cannot open the file");
        if (m_options.readBufferSize != 0)
            boundReadBuffer(reply);
        QObject::connect(reply, &QIODevice::readyRead, file,
                         [reply, file] { file->write(reply->readAll()); });
        QObject::connect(reply, &QNetworkReply::finished, file, [this, reply, file] {
            file->write(reply->readAll());
            file->close();
            reply->deleteLater();
            answered(file->size());
        });
    }

    // Qt forgets a bound when its network thread takes up the request, and takes none after the
    // first data; this event comes between the two.
    void boundReadBuffer(QNetworkReply *reply)
    {
        QMetaObject::invokeMethod(
            reply, [this, reply] { reply->setReadBufferSize(m_options.readBufferSize); },
            Qt::QueuedConnection);
    }

    const Options m_options;
    QNetworkAccessManager m_manager;
};

} // namespace

std::unique_ptr<Contender> makeBare() { return std::make_unique<Bare>(Options()); }

std::unique_ptr<Contender> makeBareGet() { return std::make_unique<Bare>(Options{true, 0, false}); }

std::unique_ptr<Contender> makeBounded64()
{
    return std::make_unique<Bare>(Options{false, 64 * 1024, false});
}

std::unique_ptr<Contender> makeBounded256()
{
    return std::make_unique<Bare>(Options{false, 256 * 1024, false});
}

std::unique_ptr<Contender> makeHttp2() { return std::make_unique<Bare>(Options{false, 0, true}); }
