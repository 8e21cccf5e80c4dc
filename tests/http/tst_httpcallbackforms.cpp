#include "http/httpcallbackforms.h"
#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

using Entries = HttpRequestFields::Callbacks;

/// Has a member and a slot for every form.
class Receiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void none() { calls.append("none"_s); }
    void bytes(QByteArray) { calls.append("bytes"_s); }
    void text(QString) { calls.append("text"_s); }
    void map(QVariantMap) { calls.append("map"_s); }
    void reply(QNetworkReply *) { calls.append("reply"_s); }
    void numbers(qint64, qint64) { calls.append("numbers"_s); }
    void code(QNetworkReply::NetworkError) { calls.append("code"_s); }
    void key(QSslPreSharedKeyAuthenticator *) { calls.append("key"_s); }
    void url(QUrl) { calls.append("url"_s); }
    void errors(QList<QSslError>) { calls.append("errors"_s); }
    void authenticator(QAuthenticator *) { calls.append("authenticator"_s); }
    void pairs(QList<QNetworkReply::RawHeaderPair>) { calls.append("pairs"_s); }
    void headers(QMap<QString, QString>) { calls.append("headers"_s); }

public:
    QStringList calls;
};

struct NoObject
{
    void text(QString) {}
};

constexpr Receiver *receiver = nullptr;
constexpr NoObject *noObject = nullptr;

/// Whether a typed convenience of @p Kind takes these arguments.
template <CallbackKind Kind, typename... Target>
constexpr bool fits(Target &&...)
{
    return HttpCallbackForms::Fits<Kind, Target...>::value;
}

using Kind = CallbackKind;
static_assert(fits<Kind::Finished>(receiver, &Receiver::text));
static_assert(!fits<Kind::Finished>([](int) {}), "a wrong parameter");
static_assert(!fits<Kind::Finished>([](QByteArray, int) {}), "too many parameters");
static_assert(!fits<Kind::Finished>([](auto) {}), "any parameter");
static_assert(!fits<Kind::Finished>(receiver, &Receiver::code), "a member of another form");
static_assert(!fits<Kind::Finished>(42), "not a callable");
static_assert(!fits<Kind::UploadProgress>([](QByteArray) {}), "a form of another family");
static_assert(!fits<Kind::Finished>(noObject, &NoObject::text), "the receiver is no object");
static_assert(!fits<Kind::Error>([](QString) {}), "an error with a QString");

} // namespace

/// The typed conveniences: what each puts into the table, and how long a member is called.
class TestHttpCallbackForms : public QObject
{
    Q_OBJECT

    Receiver m_receiver;

    /// Checks a convenience of @p kind with a callable and a member of the parameters given, and
    /// with the text of a slot.
    template <typename... Parameters, typename Convenience>
    void check(CallbackKind kind, Convenience convenience, void (Receiver::*member)(Parameters...),
               const char *slot, const char *functionKey)
    {
        int calls = 0;
        HttpRequest byCallable(HttpMethod::Get, nullptr);
        HttpRequest byMember(HttpMethod::Get, nullptr);
        HttpRequest bySlot(HttpMethod::Get, nullptr);
        convenience(byCallable, [&calls](Parameters...) { ++calls; });
        convenience(byMember, &m_receiver, member);
        convenience(bySlot, &m_receiver, slot);

        using Function = std::function<void(Parameters...)>;
        for (const HttpRequest *request : {&byCallable, &byMember}) {
            QCOMPARE(request->fields.callbacks.keys(), QList<int>{int(kind)});
            const Entries entries = request->fields.callbacks.first();
            QCOMPARE(entries.size(), 1);
            QCOMPARE(entries.first().first, QString::fromLatin1(functionKey));
            QCOMPARE(QByteArray(entries.first().second.typeName()), QByteArray(functionKey));
            entries.first().second.value<Function>()(Parameters()...);
        }
        QCOMPARE(calls, 1);
        const QString name = QString::fromLatin1(slot).mid(1).section(QLatin1Char('('), 0, 0);
        QCOMPARE(m_receiver.calls, QStringList{name});
        m_receiver.calls.clear();

        const QMap<int, Entries> expected{
            {int(kind),
             {{QString::fromLatin1(slot), QVariant::fromValue<QObject *>(&m_receiver)}}}};
        QCOMPARE(bySlot.fields.callbacks, expected);
        QCOMPARE(bySlot.fields.callbacks.first().first().second.userType(),
                 int(QMetaType::QObjectStar));
    }

    /// The forms of a family, as the handbook writes them.
    template <typename... Signatures>
    static QStringList formsOf(HttpCallbackFormList<Signatures...>)
    {
        QStringList forms;
        for (const char *name : {QMetaType::typeName(qMetaTypeId<std::function<Signatures>>())...})
            forms.append(QString::fromLatin1(name)
                             .section(QLatin1Char(' '), 1)
                             .chopped(1)
                             .replace("(void)"_s, "()"_s)
                             .replace("*"_s, " *"_s));
        return forms;
    }

    /// The second column of the line whose first one has @p operation.
    static QStringList formsListed(const QString &page, const char *operation)
    {
        const QRegularExpression line(
            "^\\| [^|]*`%1`[^|]* \\| `([^|]+)` \\|"_s.arg(QLatin1String(operation)),
            QRegularExpression::MultilineOption);
        return line.match(page).captured(1).split("`, `"_s);
    }

private Q_SLOTS:
    void init() { m_receiver.calls.clear(); }

#define CONVENIENCE(NAME)                                                                          \
    [](HttpRequest &request, auto &&...target) {                                                   \
        request.NAME(std::forward<decltype(target)>(target)...);                                   \
    }
// The plain texts of a slot carry a location when debugging, which is not part of the key.
#define CHECK(KIND, MEMBER, ARGUMENTS, FUNCTION)                                                   \
    check(CallbackKind::KIND, CONVENIENCE(on##KIND), &Receiver::MEMBER, "1" #MEMBER ARGUMENTS,     \
          "std::function<void " FUNCTION ">")

    void everyFamilyHasAConvenienceAndALineInTheHandbook()
    {
        QFile page(QStringLiteral(HANDBOOK_PAGE));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(page.readAll());
#define CHECK_FAMILY(KIND, ...)                                                                    \
    {                                                                                              \
        HttpRequest request(HttpMethod::Get, nullptr);                                             \
        request.on##KIND(&m_receiver, "1none()");                                                  \
        QCOMPARE(request.fields.callbacks.keys(), QList<int>{int(CallbackKind::KIND)});            \
        QCOMPARE(formsListed(text, "on" #KIND),                                                    \
                 formsOf(HttpCallbackFamily<CallbackKind::KIND>::Forms()));                        \
    }
        VOHTTP_CALLBACK_FAMILIES(CHECK_FAMILY)
#undef CHECK_FAMILY
    }

    void onFinishedTakesItsFiveForms()
    {
        CHECK(Finished, none, "()", "(void)");
        CHECK(Finished, bytes, "(QByteArray)", "(QByteArray)");
        CHECK(Finished, map, "(QVariantMap)", "(QVariantMap)");
        CHECK(Finished, reply, "(QNetworkReply*)", "(QNetworkReply*)");
        CHECK(Finished, text, "(QString)", "(QString)");
    }
    void onErrorTakesItsFourForms()
    {
        CHECK(Error, none, "()", "(void)");
        CHECK(Error, bytes, "(QByteArray)", "(QByteArray)");
        CHECK(Error, reply, "(QNetworkReply*)", "(QNetworkReply*)");
        CHECK(Error, code, "(QNetworkReply::NetworkError)", "(QNetworkReply::NetworkError)");
    }
    void theProgressConveniencesTakeTwoNumbers()
    {
        CHECK(DownloadProgress, numbers, "(qint64,qint64)", "(qint64, qint64)");
        CHECK(UploadProgress, numbers, "(qint64,qint64)", "(qint64, qint64)");
        CHECK(DownloadFileProgress, numbers, "(qint64,qint64)", "(qint64, qint64)");
    }
    void onTimeoutTakesTheReplyOrNothing()
    {
        CHECK(Timeout, reply, "(QNetworkReply*)", "(QNetworkReply*)");
        CHECK(Timeout, none, "()", "(void)");
    }
    void onReadyReadTakesTheReply()
    {
        CHECK(ReadyRead, reply, "(QNetworkReply*)", "(QNetworkReply*)");
    }
    void theDownloadFileConveniencesTakeNothingOrAText()
    {
        CHECK(DownloadFileFinished, none, "()", "(void)");
        CHECK(DownloadFileFinished, text, "(QString)", "(QString)");
        CHECK(DownloadFileError, none, "()", "(void)");
        CHECK(DownloadFileError, text, "(QString)", "(QString)");
        CHECK(DownloadFileNameChanged, text, "(QString)", "(QString)");
    }
    void theConveniencesForPlainEventsTakeNothing()
    {
        CHECK(Encrypted, none, "()", "(void)");
        CHECK(MetaDataChanged, none, "()", "(void)");
        CHECK(RedirectAllowed, none, "()", "(void)");
        CHECK(Retried, none, "()", "(void)");
        CHECK(Repeated, none, "()", "(void)");
    }
    void theConveniencesForSecurityAndRedirectsTakeWhatComesWithThem()
    {
        CHECK(PreSharedKeyAuthenticationRequired, key, "(QSslPreSharedKeyAuthenticator*)",
              "(QSslPreSharedKeyAuthenticator*)");
        CHECK(Redirected, url, "(QUrl)", "(QUrl)");
        CHECK(SslErrors, errors, "(QList<QSslError>)", "(QList<QSslError>)");
        CHECK(AuthenticationRequired, authenticator, "(QAuthenticator*)", "(QAuthenticator*)");
        CHECK(AuthenticationRequireFailed, none, "()", "(void)");
        CHECK(AuthenticationRequireFailed, reply, "(QNetworkReply*)", "(QNetworkReply*)");
    }
    void onHeadTakesThePairsOrTheMap()
    {
        CHECK(Head, pairs, "(QList<QNetworkReply::RawHeaderPair>)",
              "(QList<QNetworkReply::RawHeaderPair>)");
        CHECK(Head, headers, "(QMap<QString,QString>)", "(QMap<QString, QString>)");
    }

    void referencesAndConstInTheParametersMakeNoDifference()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.onFinished([](const QByteArray &) {})
            .onFinished([](const QString) {})
            .onFinished([](QVariantMap &&) {})
            .onFinished([](QNetworkReply *const) {});
        QStringList keys;
        for (const auto &entry : qAsConst(request.fields.callbacks).value(0))
            keys.append(entry.first);
        QCOMPARE(keys, (QStringList{"std::function<void (QByteArray)>"_s,
                                    "std::function<void (QString)>"_s,
                                    "std::function<void (QVariantMap)>"_s,
                                    "std::function<void (QNetworkReply*)>"_s}));
    }

    void everySortOfCallableIsTaken()
    {
        static int calls;
        calls = 0;
        struct Functor
        {
            void operator()(const QByteArray &) const { ++calls; }
        };
        struct Plain
        {
            static void function(QByteArray) { ++calls; }
            static void functionNoexcept(QByteArray) noexcept { ++calls; }
        };
        const std::function<void(QByteArray)> function = &Plain::function;
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.onFinished(Functor())
            .onFinished(&Plain::function)
            .onFinished(&Plain::functionNoexcept)
            .onFinished(function)
            .onFinished([n = 0](QByteArray) mutable { calls += ++n; })
            .onFinished([](QByteArray) noexcept { ++calls; })
            .onFinished([](QByteArray) { return ++calls; }); // a result is dropped
        request.send();
        client.replies.first()->succeed();
        QCOMPARE(calls, 7);
    }

    void aConstReceiverAndATextOfEitherSortNameASlot()
    {
        const Receiver receiver;
        HttpRequest request(HttpMethod::Get, nullptr);
        request.onFinished(&receiver, "1none()").onFinished(&receiver, "1none()"_s);
        const Entries entries = request.fields.callbacks.value(0);
        QCOMPARE(entries.size(), 2);
        for (const auto &entry : entries) {
            QCOMPARE(entry.first, "1none()"_s);
            QCOMPARE(entry.second.value<QObject *>(), static_cast<const QObject *>(&receiver));
        }
    }

    void theSlotMacroMakesAKeyThatAttaches()
    {
        ControlledClient client;
        HttpRequest(HttpMethod::Get, &client)
            .onFinished(&m_receiver, SLOT(bytes(QByteArray)))
            .send();
        client.replies.first()->succeed();
        QCOMPARE(m_receiver.calls, QStringList{"bytes"_s});
    }

    void aSlotTextIsTakenAsItReadsWhenItIsBound()
    {
        QCOMPARE(HttpCallbackForms::slotKey(nullptr), QString());
        char text[] = "1one()";
        QCOMPARE(HttpCallbackForms::slotKey(text), "1one()"_s);
        qstrcpy(text, "1two()"); // the same place
        QCOMPARE(HttpCallbackForms::slotKey(text), "1two()"_s);
        for (int i = 0; i < 3000; ++i) { // more than are kept
            const QByteArray slot = "1slot" + QByteArray::number(i) + "()";
            QCOMPARE(HttpCallbackForms::slotKey(slot.constData()), QString::fromLatin1(slot));
        }
        QCOMPARE(HttpCallbackForms::slotKey("1two()"), "1two()"_s);
    }

    void aMemberIsCalledWhileItsReceiverLives()
    {
        ControlledClient client;
        Receiver receiver;
        HttpRequest(HttpMethod::Get, &client).onFinished(&receiver, &Receiver::text).send();
        client.replies.first()->succeed();
        QCOMPARE(receiver.calls, QStringList{"text"_s});
    }

    void aMemberIsNotCalledOnceItsReceiverIsGone()
    {
        ControlledClient client;
        auto receiver = std::make_unique<Receiver>();
        HttpRequest(HttpMethod::Get, &client)
            .onFinished(receiver.get(), &Receiver::bytes)
            .onFinished(&m_receiver, &Receiver::none)
            .send();
        receiver.reset(); // a call would be one through a dangling pointer
        client.replies.first()->succeed();
        QCOMPARE(m_receiver.calls, QStringList{"none"_s});
    }

    void aReceiverMayGoBetweenTwoFormsOfOneOutcome()
    {
        ControlledClient client;
        auto receiver = std::make_unique<Receiver>();
        HttpRequest(HttpMethod::Get, &client)
            .onFinished([&receiver] { receiver.reset(); })
            .onFinished(receiver.get(), &Receiver::bytes)
            .onFinished(&m_receiver, &Receiver::text)
            .send();
        client.replies.first()->succeed();
        QCOMPARE(m_receiver.calls, QStringList{"text"_s});
    }
};

QTEST_GUILESS_MAIN(TestHttpCallbackForms)
#include "tst_httpcallbackforms.moc"
