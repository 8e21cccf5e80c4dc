#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

namespace {

QStringList calls;  ///< Who was called by which signal, in order.
QString sentSignal; ///< The signal that is being emitted.

void called(const char *form) { calls.append(QString::fromLatin1(form) + " <- "_s + sentSignal); }

/// Has a slot and a signal for every form.
class Receiver : public QObject
{
    Q_OBJECT

public:
    Receiver()
    {
        connect(this, &Receiver::noneSent, [] { called("none"); });
        connect(this, &Receiver::bytesSent, [] { called("bytes"); });
        connect(this, &Receiver::textSent, [] { called("text"); });
        connect(this, &Receiver::mapSent, [] { called("map"); });
        connect(this, &Receiver::replySent, [] { called("reply"); });
        connect(this, &Receiver::numbersSent, [] { called("numbers"); });
        connect(this, &Receiver::codeSent, [] { called("code"); });
        connect(this, &Receiver::pskSent, [] { called("psk"); });
        connect(this, &Receiver::urlSent, [] { called("url"); });
        connect(this, &Receiver::errorsSent, [] { called("errors"); });
        connect(this, &Receiver::authenticatorSent, [] { called("authenticator"); });
        connect(this, &Receiver::pairsSent, [] { called("pairs"); });
        connect(this, &Receiver::headersSent, [] { called("headers"); });
    }

public Q_SLOTS:
    void none() { called("none"); }
    void bytes(QByteArray) { called("bytes"); }
    void text(QString) { called("text"); }
    void map(QVariantMap) { called("map"); }
    void reply(QNetworkReply *) { called("reply"); }
    void numbers(qint64, qint64) { called("numbers"); }
    void code(QNetworkReply::NetworkError) { called("code"); }
    void psk(QSslPreSharedKeyAuthenticator *) { called("psk"); }
    void url(QUrl) { called("url"); }
    void errors(QList<QSslError>) { called("errors"); }
    void authenticator(QAuthenticator *) { called("authenticator"); }
    void pairs(QList<QNetworkReply::RawHeaderPair>) { called("pairs"); }
    void headers(QMap<QString, QString>) { called("headers"); }

    void constBytes(const QByteArray &) { called("constBytes"); }
    void oneNumber(qint64) { called("oneNumber"); }
    void maybe(int = 0) { called("maybe"); }
    void bytesAndMore(QByteArray, int) { called("bytesAndMore"); }
    void other() { called("other"); }

Q_SIGNALS:
    void noneSent();
    void bytesSent(QByteArray);
    void textSent(QString);
    void mapSent(QVariantMap);
    void replySent(QNetworkReply *);
    void numbersSent(qint64, qint64);
    void codeSent(QNetworkReply::NetworkError);
    void pskSent(QSslPreSharedKeyAuthenticator *);
    void urlSent(QUrl);
    void errorsSent(QList<QSslError>);
    void authenticatorSent(QAuthenticator *);
    void pairsSent(QList<QNetworkReply::RawHeaderPair>);
    void headersSent(QMap<QString, QString>);

public:
    Q_INVOKABLE void invokable() { called("invokable"); }

private Q_SLOTS:
    void hidden() { called("hidden"); }
};

template <typename... Arguments>
QVariant function(const char *form)
{
    return QVariant::fromValue(
        std::function<void(Arguments...)>([form](Arguments...) { called(form); }));
}

struct Form
{
    const char *name;
    QString arguments; ///< As the signature of a signal has them.
    QString functionKey;
    QVariant function;
};

const QVector<Form> &forms()
{
    static const QVector<Form> all{
        {"none", QString(), "std::function<void (void)>"_s, function<>("none")},
        {"bytes", "QByteArray"_s, "std::function<void (QByteArray)>"_s,
         function<QByteArray>("bytes")},
        {"text", "QString"_s, "std::function<void (QString)>"_s, function<QString>("text")},
        {"map", "QVariantMap"_s, "std::function<void (QVariantMap)>"_s,
         function<QVariantMap>("map")},
        {"reply", "QNetworkReply*"_s, "std::function<void (QNetworkReply*)>"_s,
         function<QNetworkReply *>("reply")},
        {"numbers", "qint64,qint64"_s, "std::function<void (qint64, qint64)>"_s,
         function<qint64, qint64>("numbers")},
        {"code", "QNetworkReply::NetworkError"_s,
         "std::function<void (QNetworkReply::NetworkError)>"_s,
         function<QNetworkReply::NetworkError>("code")},
        {"psk", "QSslPreSharedKeyAuthenticator*"_s,
         "std::function<void (QSslPreSharedKeyAuthenticator*)>"_s,
         function<QSslPreSharedKeyAuthenticator *>("psk")},
        {"url", "QUrl"_s, "std::function<void (QUrl)>"_s, function<QUrl>("url")},
        {"errors", "QList<QSslError>"_s, "std::function<void (QList<QSslError>)>"_s,
         function<QList<QSslError>>("errors")},
        {"authenticator", "QAuthenticator*"_s, "std::function<void (QAuthenticator*)>"_s,
         function<QAuthenticator *>("authenticator")},
        {"pairs", "QList<QNetworkReply::RawHeaderPair>"_s,
         "std::function<void (QList<QNetworkReply::RawHeaderPair>)>"_s,
         function<QList<QNetworkReply::RawHeaderPair>>("pairs")},
        {"headers", "QMap<QString,QString>"_s, "std::function<void (QMap<QString, QString>)>"_s,
         function<QMap<QString, QString>>("headers")},
    };
    return all;
}

struct Emission
{
    QString signal;
    int kind; ///< -1: of no kind.
    std::function<void(HttpResponse &)> emitSignal;

    QString arguments() const
    {
        return signal.mid(signal.indexOf(QLatin1Char('(')) + 1).chopped(1);
    }
};

/// Every signal of a response with the kind whose callbacks it serves.
const QVector<Emission> &emissions()
{
    using R = HttpResponse;
    static const QVector<Emission> all{
        {"replyChanged(QNetworkReply*)"_s, -1, [](R &r) { Q_EMIT r.replyChanged(nullptr); }},
        {"finished(QNetworkReply*)"_s, 0,
         [](R &r) { Q_EMIT r.finished(static_cast<QNetworkReply *>(nullptr)); }},
        {"finished()"_s, 0, [](R &r) { Q_EMIT r.finished(); }},
        {"finished(QByteArray)"_s, 0, [](R &r) { Q_EMIT r.finished(QByteArray()); }},
        {"finished(QVariantMap)"_s, 0, [](R &r) { Q_EMIT r.finished(QVariantMap()); }},
        {"finished(QString)"_s, 0, [](R &r) { Q_EMIT r.finished(QString()); }},
        {"downloadProgress(qint64,qint64)"_s, 2, [](R &r) { Q_EMIT r.downloadProgress(1, 2); }},
        {"uploadProgress(qint64,qint64)"_s, 3, [](R &r) { Q_EMIT r.uploadProgress(1, 2); }},
        {"error(QByteArray)"_s, 1, [](R &r) { Q_EMIT r.error(QByteArray()); }},
        {"error()"_s, 1, [](R &r) { Q_EMIT r.error(); }},
        {"error(QNetworkReply::NetworkError)"_s, 1,
         [](R &r) { Q_EMIT r.error(QNetworkReply::TimeoutError); }},
        {"error(QNetworkReply*)"_s, 1,
         [](R &r) { Q_EMIT r.error(static_cast<QNetworkReply *>(nullptr)); }},
        {"timeout()"_s, 4, [](R &r) { Q_EMIT r.timeout(); }},
        {"timeout(QNetworkReply*)"_s, 4, [](R &r) { Q_EMIT r.timeout(nullptr); }},
        {"readyRead(QNetworkReply*)"_s, 5, [](R &r) { Q_EMIT r.readyRead(nullptr); }},
        {"downloadFileNameChanged(QString)"_s, 20,
         [](R &r) { Q_EMIT r.downloadFileNameChanged(QString()); }},
        {"downloadFileFinished()"_s, 6, [](R &r) { Q_EMIT r.downloadFileFinished(); }},
        {"downloadFileFinished(QString)"_s, 6,
         [](R &r) { Q_EMIT r.downloadFileFinished(QString()); }},
        {"downloadFileError()"_s, 7, [](R &r) { Q_EMIT r.downloadFileError(); }},
        {"downloadFileError(QString)"_s, 7, [](R &r) { Q_EMIT r.downloadFileError(QString()); }},
        {"encrypted()"_s, 8, [](R &r) { Q_EMIT r.encrypted(); }},
        {"metaDataChanged()"_s, 9, [](R &r) { Q_EMIT r.metaDataChanged(); }},
        {"preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator*)"_s, 10,
         [](R &r) { Q_EMIT r.preSharedKeyAuthenticationRequired(nullptr); }},
        {"redirectAllowed()"_s, 11, [](R &r) { Q_EMIT r.redirectAllowed(); }},
        {"redirected(QUrl)"_s, 12, [](R &r) { Q_EMIT r.redirected(QUrl()); }},
        {"sslErrors(QList<QSslError>)"_s, 13, [](R &r) { Q_EMIT r.sslErrors({}); }},
        {"retried()"_s, 14, [](R &r) { Q_EMIT r.retried(); }},
        {"repeated()"_s, 15, [](R &r) { Q_EMIT r.repeated(); }},
        {"authenticationRequired(QAuthenticator*)"_s, 16,
         [](R &r) { Q_EMIT r.authenticationRequired(nullptr); }},
        {"authenticationRequireFailed()"_s, 17,
         [](R &r) { Q_EMIT r.authenticationRequireFailed(); }},
        {"authenticationRequireFailed(QNetworkReply*)"_s, 17,
         [](R &r) { Q_EMIT r.authenticationRequireFailed(nullptr); }},
        {"head(QList<QNetworkReply::RawHeaderPair>)"_s, 18,
         [](R &r) { Q_EMIT r.head(QList<QNetworkReply::RawHeaderPair>()); }},
        {"head(QMap<QString,QString>)"_s, 18,
         [](R &r) { Q_EMIT r.head(QMap<QString, QString>()); }},
        {"downloadFileProgress(qint64,qint64)"_s, 19,
         [](R &r) { Q_EMIT r.downloadFileProgress(1, 2); }},
    };
    return all;
}

enum class How { Slot, Signal, Function };

QString keyOf(const Form &form, How how)
{
    const QString name = QString::fromLatin1(form.name);
    switch (how) {
    case How::Slot:
        return "1"_s + name + "("_s + form.arguments + ")"_s;
    case How::Signal:
        return "2"_s + name + "Sent("_s + form.arguments + ")"_s;
    case How::Function:
        break;
    }
    return form.functionKey;
}

/// A function takes exactly the arguments of its signal, a member may leave some out.
bool fits(const Form &form, const Emission &emission, How how)
{
    const QString arguments = emission.arguments();
    return how == How::Function ? form.arguments == arguments
                                : form.arguments == arguments || form.arguments.isEmpty();
}

QVariant objectTarget(QObject *object) { return QVariant::fromValue(object); }

} // namespace

Q_DECLARE_METATYPE(std::function<void(QVariant)>)

/// Which entries of a callback table attach to which signals.
class TestHttpCallbackBinder : public QObject
{
    Q_OBJECT

    Receiver m_receiver;

    /// Sends a request with the one entry and emits every signal of its response.
    QStringList callsOf(int kind, const QString &key, const QVariant &target, int level = 3)
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.bind(CallbackKind(kind), key, target).logLevel(level);
        return callsOf(request);
    }

    QStringList callsOf(HttpRequest request)
    {
        calls.clear();
        ControlledClient client;
        request.fields.client = &client;
        HttpResponse *response = request.send();
        for (const Emission &emission : emissions()) {
            sentSignal = emission.signal;
            emission.emitSignal(*response);
        }
        return calls;
    }

private Q_SLOTS:
    void everySortOfTargetAttachesToTheSignalsItFits_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("how");
        for (int kind = 0; kind <= 20; ++kind) {
            QTest::addRow("kind %d, slot", kind) << kind << int(How::Slot);
            QTest::addRow("kind %d, signal", kind) << kind << int(How::Signal);
            QTest::addRow("kind %d, function", kind) << kind << int(How::Function);
        }
    }
    void everySortOfTargetAttachesToTheSignalsItFits()
    {
        QFETCH(int, kind);
        QFETCH(int, how);
        for (const Form &form : forms()) {
            QStringList expected;
            for (const Emission &emission : emissions()) {
                if (emission.kind == kind && fits(form, emission, How(how)))
                    expected.append(QString::fromLatin1(form.name) + " <- "_s + emission.signal);
            }
            const QString key = keyOf(form, How(how));
            QStringList warnings;
            if (expected.isEmpty())
                warnings.append("%1 method[%2] is invalid"_s.arg(
                    QString::number(kind), how == int(How::Function) ? key : key.mid(1)));
            LogCapture log;
            const QVariant target =
                how == int(How::Function) ? form.function : objectTarget(&m_receiver);
            QCOMPARE(callsOf(kind, key, target), expected);
            QCOMPARE(log.texts(QtWarningMsg), warnings);
            QCOMPARE(log.lines().size(), warnings.size());
        }
    }

    void aSlotWithoutArgumentsUnderFinishedAttachesToAllFiveForms()
    {
        QCOMPARE(callsOf(0, "1none()"_s, objectTarget(&m_receiver)),
                 (QStringList{"none <- finished(QNetworkReply*)"_s, "none <- finished()"_s,
                              "none <- finished(QByteArray)"_s, "none <- finished(QVariantMap)"_s,
                              "none <- finished(QString)"_s}));
    }

    void aKeyIsReadAsAStringConnectionReadsIt_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QStringList>("expected"); // the calls
        QTest::addColumn<QString>("named");        // in the warning, when nothing attaches
        const auto good = [](const char *name, int kind, const QString &key, const QString &call) {
            QTest::newRow(name) << kind << key << QStringList{call} << QString();
        };
        const auto bad = [](const char *name, int kind, const QString &key, const QString &named) {
            QTest::newRow(name) << kind << key << QStringList() << named;
        };
        good("blanks", 0, "1 bytes ( QByteArray ) "_s, "bytes <- finished(QByteArray)"_s);
        good("blanks between arguments", 3, "1numbers( qint64 , qint64 )"_s,
             "numbers <- uploadProgress(qint64,qint64)"_s);
        good("const reference", 0, "1bytes(const QByteArray &)"_s,
             "bytes <- finished(QByteArray)"_s);
        good("declared as a const reference", 0, "1constBytes(QByteArray)"_s,
             "constBytes <- finished(QByteArray)"_s);
        good("template blanks", 18, "1headers(QMap< QString, QString >)"_s,
             "headers <- head(QMap<QString,QString>)"_s);
        good("fewer arguments", 3, "1oneNumber(qint64)"_s,
             "oneNumber <- uploadProgress(qint64,qint64)"_s);
        good("default argument left out", 15, "1maybe()"_s, "maybe <- repeated()"_s);
        good("private slot", 15, "1hidden()"_s, "hidden <- repeated()"_s);
        good("another character with the bits of a slot", 15, "anone()"_s, "none <- repeated()"_s);
        bad("qlonglong", 3, "1numbers(qlonglong,qlonglong)"_s, "numbers(qlonglong,qlonglong)"_s);
        bad("code of a method", 15, "0none()"_s, "none()"_s);
        bad("code of a method, invokable", 15, "0invokable()"_s, "invokable()"_s);
        good("invokable as a slot", 15, "1invokable()"_s, "invokable <- repeated()"_s);
        bad("no code", 15, "3none()"_s, "3none()"_s);
        bad("no code but a letter with the bits of none", 15, "sone()"_s, "sone()"_s);
        bad("code of a slot for a signal", 15, "1noneSent()"_s, "noneSent()"_s);
        bad("code of a signal for a slot", 15, "2none()"_s, "none()"_s);
        bad("empty", 15, QString(), QString());
        bad("code alone", 15, "1"_s, QString());
        bad("no brackets", 15, "1none"_s, "none"_s);
        bad("opening bracket only", 15, "1none("_s, "none("_s);
        bad("closing bracket only", 15, "1none)"_s, "none)"_s);
        bad("brackets only", 15, "1()"_s, "()"_s);
        bad("unknown member", 15, "1nobody()"_s, "nobody()"_s);
        bad("another case", 15, "1None()"_s, "None()"_s);
        bad("not Latin", 15, "1keiner\u8A9E()"_s, "keiner\u8A9E()"_s);
        bad("more arguments", 0, "1bytesAndMore(QByteArray,int)"_s,
            "bytesAndMore(QByteArray,int)"_s);
        bad("percent signs", 15, "1%1%2()"_s, "%1%2()"_s);
        bad("function name with other blanks", 0, "std::function<void(QByteArray)>"_s,
            "std::function<void(QByteArray)>"_s);
        bad("function name with an object", 0, "std::function<void (QByteArray)>"_s,
            "std::function<void (QByteArray)>"_s);
    }
    void aKeyIsReadAsAStringConnectionReadsIt()
    {
        QFETCH(int, kind);
        QFETCH(QString, key);
        QFETCH(QStringList, expected);
        QFETCH(QString, named);
        LogCapture log;
        QCOMPARE(callsOf(kind, key, objectTarget(&m_receiver)), expected);
        QStringList warnings;
        if (expected.isEmpty())
            warnings.append("%1 method[%2] is invalid"_s.arg(QString::number(kind), named));
        QCOMPARE(log.texts(QtWarningMsg), warnings);
        QCOMPARE(log.lines().size(), warnings.size());
    }

    void aTargetThatIsNoneIsReported_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("target");
        QTest::addColumn<QString>("warning");
        const QString slot = "15 method[none()] is invalid"_s;
        QTest::newRow("no variant") << "1none()"_s << QVariant() << slot;
        QTest::newRow("null object") << "1none()"_s << objectTarget(nullptr) << slot;
        QTest::newRow("text") << "1none()"_s << QVariant("text"_s) << slot;
        QTest::newRow("number") << "1none()"_s << QVariant(4711) << slot;
        QTest::newRow("function under a slot's key")
            << "1none()"_s << forms().first().function << slot;
        const QString function = "15 method[std::function<void (void)>] is invalid"_s;
        QTest::newRow("function: no variant")
            << forms().first().functionKey << QVariant() << function;
        QTest::newRow("function: object")
            << forms().first().functionKey << objectTarget(&m_receiver) << function;
        QTest::newRow("function: another type")
            << forms().first().functionKey << forms().at(1).function << function;
        QTest::newRow("function: empty")
            << forms().first().functionKey << QVariant::fromValue(std::function<void()>())
            << function;
    }
    void aTargetThatIsNoneIsReported()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, target);
        QFETCH(QString, warning);
        LogCapture log;
        QCOMPARE(callsOf(15, key, target), QStringList());
        QCOMPARE(log.texts(QtWarningMsg), QStringList{warning});
        QCOMPARE(log.lines().size(), 1);
    }

    void anyPointerToAnObjectIsAReceiver()
    {
        QCOMPARE(callsOf(15, "1none()"_s, QVariant::fromValue(&m_receiver)),
                 QStringList{"none <- repeated()"_s});
    }

    void aFunctionOfAnotherTypeIsConvertedWhenTheMetaTypeSystemCan()
    {
        using Any = std::function<void(QVariant)>;
        using Text = std::function<void(QString)>;
        QVERIFY((QMetaType::registerConverter<Any, Text>(
            [](const Any &any) { return Text([any](const QString &text) { any(text); }); })));
        const Any any = [](const QVariant &) { called("any"); };
        QCOMPARE(callsOf(20, "std::function<void (QString)>"_s, QVariant::fromValue(any)),
                 QStringList{"any <- downloadFileNameChanged(QString)"_s});
    }

    void aKindOutsideTheListIsReportedWithItsEntries_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("reported");
        for (const int kind : {-1, 21, 4711}) {
            for (const int level : {2, 3, 5}) {
                QTest::addRow("kind %d, level %d", kind, level) << kind << level << (level >= 3);
            }
        }
    }
    void aKindOutsideTheListIsReportedWithItsEntries()
    {
        QFETCH(int, kind);
        QFETCH(int, level);
        QFETCH(bool, reported);
        LogCapture log;
        QCOMPARE(callsOf(kind, "1none()"_s, objectTarget(&m_receiver), level), QStringList());
        const QString number = QString::number(kind);
        QCOMPARE(log.texts(QtWarningMsg),
                 reported ? (QStringList{number + " unsupported"_s,
                                         number + " method[none()] is invalid"_s})
                          : QStringList());
    }

    void aBadEntryIsReportedFromLevelThreeOn_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("warnings");
        QTest::newRow("-1") << -1 << 0;
        QTest::newRow("0") << 0 << 0;
        QTest::newRow("2") << 2 << 0;
        QTest::newRow("3") << 3 << 1;
        QTest::newRow("4") << 4 << 1;
    }
    void aBadEntryIsReportedFromLevelThreeOn()
    {
        QFETCH(int, level);
        QFETCH(int, warnings);
        LogCapture log;
        callsOf(0, "1nobody()"_s, objectTarget(&m_receiver), level);
        QCOMPARE(log.texts(QtWarningMsg).size(), warnings);
    }

    void badEntriesAreReportedInTheOrderOfTheirKinds()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        for (const CallbackKind kind :
             {CallbackKind::Head, CallbackKind::Finished, CallbackKind::Timeout}) {
            request.bind(kind, "1second()"_s, objectTarget(&m_receiver))
                .bind(kind, "1first()"_s, objectTarget(&m_receiver));
        }
        LogCapture log;
        QCOMPARE(callsOf(request), QStringList());
        QCOMPARE(
            log.texts(QtWarningMsg),
            (QStringList{"0 method[second()] is invalid"_s, "0 method[first()] is invalid"_s,
                         "4 method[second()] is invalid"_s, "4 method[first()] is invalid"_s,
                         "18 method[second()] is invalid"_s, "18 method[first()] is invalid"_s}));
    }

    void aBadEntryDoesNotKeepTheOthersFromAttaching()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.bind(CallbackKind(-1), "1none()"_s, objectTarget(&m_receiver))
            .bind(CallbackKind::Retried, "1nobody()"_s, objectTarget(&m_receiver))
            .bind(CallbackKind::Retried, "1none()"_s, objectTarget(&m_receiver))
            .logLevel(2);
        QCOMPARE(callsOf(request), QStringList{"none <- retried()"_s});
    }

    void entriesOfOneKindAreCalledInTheOrderOfTheirBinding()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        const QVariant target = objectTarget(&m_receiver);
        request.bind(CallbackKind::Repeated, "1other()"_s, target)
            .bind(CallbackKind::Repeated, forms().first().functionKey, forms().first().function)
            .bind(CallbackKind::Repeated, "1maybe()"_s, target)
            .bind(CallbackKind::Repeated, "1other()"_s, target);
        QCOMPARE(callsOf(request), (QStringList{"other <- repeated()"_s, "none <- repeated()"_s,
                                                "maybe <- repeated()"_s, "other <- repeated()"_s}));
    }

    void callbacksBoundAfterSendDoNotAttach()
    {
        calls.clear();
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response = request.send();
        request.bind(CallbackKind::Repeated, "1none()"_s, objectTarget(&m_receiver));
        Q_EMIT response->repeated();
        QCOMPARE(calls, QStringList());
    }

    void manyBadKeysDoNotSpoilAGoodOne()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.logLevel(0);
        for (int i = 0; i < 3000; ++i)
            request.bind(CallbackKind::Repeated, "1nobody%1()"_s.arg(i), objectTarget(&m_receiver));
        request.bind(CallbackKind::Repeated, "1none()"_s, objectTarget(&m_receiver));
        QCOMPARE(callsOf(request), QStringList{"none <- repeated()"_s});
        QCOMPARE(callsOf(request), QStringList{"none <- repeated()"_s});
    }
};

QTEST_GUILESS_MAIN(TestHttpCallbackBinder)
#include "tst_httpcallbackbinder.moc"
