#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"

#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <memory>

namespace {

/// Looks like whatever meta-object it is given, as an object of a run-time class does.
class Shape : public QObject
{
public:
    QStringList calls;
    static QMetaObject current;

    const QMetaObject *metaObject() const override { return &current; }
    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        id = QObject::qt_metacall(call, id, arguments);
        if (id >= 0 && call == QMetaObject::InvokeMetaMethod) {
            calls.append(
                QString::fromLatin1(current.method(current.methodOffset() + id).methodSignature()));
            return -1;
        }
        return id;
    }
};

} // namespace

class FirstShape : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void before() {}
    void take(QByteArray) {}
};

class SecondShape : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void take(QByteArray) {}
    void onlyHere() {}
};

QMetaObject Shape::current = FirstShape::staticMetaObject;

/// Notes the thread on which it is called and the values that arrive.
class ThreadReceiver : public QObject
{
    Q_OBJECT

public:
    QString body;
    QThread *thread = nullptr;

public Q_SLOTS:
    void take(QByteArray bytes)
    {
        body = QString::fromLatin1(bytes);
        thread = QThread::currentThread();
        Q_EMIT taken();
    }

Q_SIGNALS:
    void taken();
};

/// How attached callbacks are called: on which thread, with which values, and for how long.
class TestHttpCallbackTargets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSlotOnTheClientsThreadIsCalledAtOnce()
    {
        ControlledClient client;
        ThreadReceiver receiver;
        HttpRequest(HttpMethod::Get, &client)
            .bind(CallbackKind::Finished, "1take(QByteArray)"_s,
                  QVariant::fromValue<QObject *>(&receiver))
            .send();
        client.replies.first()->receive("body");
        client.replies.first()->succeed();
        QCOMPARE(receiver.body, "body"_s);
        QCOMPARE(receiver.thread, QThread::currentThread());
    }

    void aSlotOnAnotherThreadIsCalledThere()
    {
        QThread thread;
        thread.start();
        {
            ControlledClient client;
            auto *receiver = new ThreadReceiver;
            receiver->moveToThread(&thread);
            connect(&thread, &QThread::finished, receiver, &QObject::deleteLater);
            QSemaphore taken;
            connect(receiver, &ThreadReceiver::taken, receiver, [&taken] { taken.release(); });
            HttpRequest(HttpMethod::Get, &client)
                .bind(CallbackKind::Finished, "1take(QByteArray)"_s,
                      QVariant::fromValue<QObject *>(receiver))
                .send();
            client.replies.first()->receive("body");
            client.replies.first()->succeed();
            QVERIFY(taken.tryAcquire(1, patienceMs));
            QCOMPARE(receiver->body, "body"_s);
            QCOMPARE(receiver->thread, &thread);
        }
        thread.quit();
        QVERIFY(thread.wait(patienceMs));
    }

    void aSlotOnAnotherThreadGetsEveryKindOfValue()
    {
        // A value of a type unknown to the meta-type system would be refused with a warning.
        QThread thread;
        thread.start();
        ControlledClient client;
        auto *receiver = new HttpResponse(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        receiver->moveToThread(&thread);
        connect(&thread, &QThread::finished, receiver, &QObject::deleteLater);
        QSemaphore arrived;
        const QList<QNetworkReply::RawHeaderPair> sent{{"a", "1"}};
        QList<QNetworkReply::RawHeaderPair> got;
        connect(
            receiver, QOverload<QList<QNetworkReply::RawHeaderPair>>::of(&HttpResponse::head),
            receiver,
            [&](const QList<QNetworkReply::RawHeaderPair> &pairs) {
                got = pairs;
                arrived.release();
            },
            Qt::DirectConnection);
        HttpRequest(HttpMethod::Get, &client)
            .bind(CallbackKind::Head, "2head(QList<QNetworkReply::RawHeaderPair>)"_s,
                  QVariant::fromValue<QObject *>(receiver))
            .send();
        client.replies.first()->setHeader("a", "1");
        client.replies.first()->succeed();
        QVERIFY(arrived.tryAcquire(1, patienceMs));
        QCOMPARE(got, sent);
        thread.quit();
        QVERIFY(thread.wait(patienceMs));
    }

    void aFunctionIsCalledInsideTheEmission()
    {
        ControlledClient client;
        QByteArray got;
        QThread *thread = nullptr;
        HttpRequest(HttpMethod::Get, &client)
            .bind(CallbackKind::Finished, "std::function<void (QByteArray)>"_s,
                  QVariant::fromValue(std::function<void(QByteArray)>([&](QByteArray body) {
                      got = body;
                      thread = QThread::currentThread();
                  })))
            .send();
        client.replies.first()->receive("body");
        client.replies.first()->succeed();
        QCOMPARE(got, "body"_b);
        QCOMPARE(thread, QThread::currentThread());
    }

    void aFunctionIsGoneWithItsResponse()
    {
        ControlledClient client;
        const auto shared = std::make_shared<int>();
        {
            HttpRequest(HttpMethod::Get, &client).onFinished([shared] { Q_UNUSED(shared) }).send();
        }
        QVERIFY(shared.use_count() > 1);
        delete client.replies.first();
        QCOMPARE(shared.use_count(), 1L);
    }

    void aSlotOfAReceiverThatIsGoneIsNotCalled()
    {
        ControlledClient client;
        auto receiver = std::make_unique<ThreadReceiver>();
        int other = 0;
        HttpRequest(HttpMethod::Get, &client)
            .bind(CallbackKind::Finished, "1take(QByteArray)"_s,
                  QVariant::fromValue<QObject *>(receiver.get()))
            .onFinished([&other] { ++other; })
            .send();
        receiver.reset();
        client.replies.first()->succeed();
        QCOMPARE(other, 1);
    }

    void aMemberIsFoundAnewWhenAnotherClassStandsInThePlaceOfItsClass()
    {
        Shape::current = FirstShape::staticMetaObject;
        QCOMPARE(callsOfShape("1take(QByteArray)"_s), QStringList{"take(QByteArray)"_s});
        Shape::current = SecondShape::staticMetaObject; // has it at another place
        QCOMPARE(callsOfShape("1take(QByteArray)"_s), QStringList{"take(QByteArray)"_s});
        Shape::current = QObject::staticMetaObject; // does not have it
        QCOMPARE(callsOfShape("1take(QByteArray)"_s), QStringList());
    }

    void aMemberThatWasMissingIsFoundWhenAnotherClassStandsInThePlaceOfItsClass()
    {
        Shape::current = FirstShape::staticMetaObject;
        QCOMPARE(callsOfShape("1onlyHere()"_s), QStringList());
        Shape::current = SecondShape::staticMetaObject;
        QCOMPARE(callsOfShape("1onlyHere()"_s), QStringList{"onlyHere()"_s});
    }

private:
    QStringList callsOfShape(const QString &key)
    {
        ControlledClient client;
        Shape shape;
        const CallbackKind kind =
            key.contains("QByteArray"_s) ? CallbackKind::Finished : CallbackKind::Repeated;
        HttpRequest(HttpMethod::Get, &client)
            .bind(kind, key, QVariant::fromValue<QObject *>(&shape))
            .logLevel(0)
            .send();
        client.replies.first()->succeed();
        return shape.calls;
    }
};

QTEST_GUILESS_MAIN(TestHttpCallbackTargets)
#include "tst_httpcallbacktargets.moc"
