#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <thread>

using HeadMap = QMap<QString, QString>;
using Numbers = QVariantList;

/// What a response hears of its reply: only what somebody wants to hear from it, and all of that,
/// whenever they connect.
class TestHttpListeners : public QObject
{
    Q_OBJECT

    ControlledClient m_client;

    HttpRequest request() { return HttpRequest(HttpMethod::Get, &m_client).url("http://h/"_s); }

    ControlledReply *reply() const { return m_client.replies.last(); }

    /// The signals of @p reply, each as often as it has receivers.
    static QStringList receiversOf(const ControlledReply *reply)
    {
        QStringList names;
        const QMetaObject &meta = QNetworkReply::staticMetaObject;
        for (int i = QObject::staticMetaObject.methodCount(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            if (method.methodType() != QMetaMethod::Signal)
                continue;
            for (int n = reply->receivers('2' + method.methodSignature()); n > 0; --n)
                names << QString::fromLatin1(method.name());
        }
        return names;
    }

    /// What the last reply has beyond those that the access manager gives every reply.
    QStringList heard()
    {
        QStringList names = receiversOf(reply());
        m_client.get(QNetworkRequest(QUrl("http://h/"_s)));
        const QStringList ofTheManager = receiversOf(m_client.replies.takeLast());
        for (const QString &name : ofTheManager)
            names.removeOne(name);
        names.sort();
        return names;
    }

    static QStringList needed(const QStringList &more = {})
    {
        QStringList names = more + QStringList({"errorOccurred"_s, "finished"_s, "readyRead"_s});
        names.sort();
        return names;
    }

private Q_SLOTS:
    void cleanup()
    {
        for (const auto &reply : m_client.replies)
            delete reply;
        m_client.replies.clear();
    }

    void anExchangeHearsNothingThatNobodyWants()
    {
        request().onFinished([] {}).onError([] {}).onRepeated([] {}).onHead([](HeadMap) {}).send();
        QCOMPARE(heard(), needed());
    }

    void anExchangeHearsWhatItNeedsItself_data()
    {
        QTest::addColumn<bool>("isDownload");
        QTest::addColumn<qint64>("bound");
        QTest::addColumn<QStringList>("names");
        const QStringList redirects{"redirectAllowed"_s, "redirected"_s};
        QTest::newRow("bound") << false << qint64(1000) << redirects;
        QTest::newRow("download") << true << qint64(-1)
                                  << redirects
                                         + QStringList(
                                             {"metaDataChanged"_s, "readyRead"_s, "readyRead"_s});
    }
    void anExchangeHearsWhatItNeedsItself()
    {
        QFETCH(bool, isDownload);
        QFETCH(qint64, bound);
        QFETCH(QStringList, names);
        HttpRequest sent = request();
        sent.readBufferSize(bound);
        sent.fields.isDownload = isDownload;
        sent.fields.reply = m_client.get(QNetworkRequest(QUrl("http://h/"_s)));
        new HttpResponse(sent, sent.fields.reply); // the reply's child
        QCOMPARE(heard(), needed(names));
    }

    void whatIsBoundOrConnectedIsHeard_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QString>("name");
        const auto row = [](CallbackKind kind, const char *signal, const QString &name) {
            QTest::newRow(qPrintable(name)) << int(kind) << QByteArray(signal) << name;
        };
        using K = CallbackKind;
        row(K::DownloadFileProgress, "downloadFileProgress(qint64,qint64)", "downloadProgress"_s);
        row(K::UploadProgress, "uploadProgress(qint64,qint64)", "uploadProgress"_s);
        row(K::ReadyRead, "readyRead(QNetworkReply*)", "readyRead"_s);
        row(K::Encrypted, "encrypted()", "encrypted"_s);
        row(K::MetaDataChanged, "metaDataChanged()", "metaDataChanged"_s);
        row(K::Redirected, "redirected(QUrl)", "redirected"_s);
        row(K::RedirectAllowed, "redirectAllowed()", "redirectAllowed"_s);
        row(K::SslErrors, "sslErrors(QList<QSslError>)", "sslErrors"_s);
        row(K::PreSharedKeyAuthenticationRequired,
            "preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator*)",
            "preSharedKeyAuthenticationRequired"_s);
    }
    void whatIsBoundOrConnectedIsHeard()
    {
        QFETCH(int, kind);
        QFETCH(QByteArray, signal);
        QFETCH(QString, name);
        QObject receiver;
        request()
            .bind(CallbackKind(kind), "1deleteLater()"_s, QVariant::fromValue(&receiver))
            .send();
        QCOMPARE(heard(), needed({name}));

        const HttpResponse *late = request().send();
        QVERIFY(connect(late, '2' + signal, &receiver, SLOT(deleteLater())));
        QVERIFY(connect(late, '2' + signal, &receiver, SLOT(deleteLater())));
        QCOMPARE(heard(), needed({name})); // once, for two receivers
    }

    void aReceiverThatConnectsLateHearsWhatFollows()
    {
        HttpResponse *response = request().send();
        Q_EMIT reply()->downloadProgress(1, 9);
        QSignalSpy progress(response, &HttpResponse::downloadFileProgress);
        Q_EMIT reply()->downloadProgress(5, 9);
        QCOMPARE(progress, QList<Numbers>({Numbers{qint64(5), qint64(9)}}));
    }

    void aReceiverThatConnectsOnAnotherThreadHearsWhatFollows()
    {
        const HttpResponse *response = request().send();
        QList<Numbers> progress;
        std::thread([&] {
            connect(response, &HttpResponse::downloadFileProgress, response,
                    [&](qint64 received, qint64 total) {
                        progress << Numbers{received, total};
                    });
        }).join();
        QCoreApplication::sendPostedEvents(); // to the client's thread, before those of the reply
        Q_EMIT reply()->downloadProgress(5, 9);
        QCOMPARE(progress, QList<Numbers>({Numbers{qint64(5), qint64(9)}}));
    }

    void aReceiverOfTheHeadThatConnectsAfterTheFirstDataHearsNothing()
    {
        const HttpResponse *response = request().send();
        reply()->setHeader("X", "1");
        reply()->receive("some");
        QSignalSpy heads(response, QOverload<HeadMap>::of(&HttpResponse::head));
        reply()->receive("more");
        reply()->succeed();
        QCOMPARE(heads.size(), 0);
    }

    void aReceiverOfTheHeadThatConnectsBeforeTheFirstDataHearsIt()
    {
        const HttpResponse *response = request().send();
        reply()->setHeader("X", "1");
        QSignalSpy heads(response, QOverload<HeadMap>::of(&HttpResponse::head));
        reply()->receive("some");
        QCOMPARE(heads.size(), 1);
        QCOMPARE(heads.first().first().value<HeadMap>(), HeadMap({{"X"_s, "1"_s}}));
    }
};

QTEST_GUILESS_MAIN(TestHttpListeners)
#include "tst_httplisteners.moc"
