#include "tests/network/operationtest.h"
#include "tests/support/patience.h"

#include <QTest>

#include <limits>

namespace {

const char ucenter[] = "/ucenter/public/index.php/v1/";

/// One member of "token" or "base", and the user that is read from it alone.
struct Member
{
    const char *title;
    QByteArray base;
    QByteArray token;
    const char *user;
};

const QList<Member> &members()
{
    static const QList<Member> all{
        {"nothing", "", "", R"(0, "", "", 0, 0, invalid, invalid)"},
        {"user_id alone", R"("user_id":7)", "", R"(7, "", "", 0, 0, invalid, invalid)"},
        {"nickname alone", R"("nickname":"x")", "", R"(0, "x", "", 0, 0, invalid, invalid)"},
        {"header_url alone", R"("header_url":"x")", "", R"(0, "", "x", 0, 0, invalid, invalid)"},
        {"token alone", "", R"("token":7)", R"(0, "", "", 7, 0, invalid, invalid)"},
        {"refresh_token alone", "", R"("refresh_token":7)", R"(0, "", "", 0, 7, invalid, invalid)"},
        {"token_expire_time alone", "", R"("token_expire_time":"2030-01-02 03:04:05")",
         R"(0, "", "", 0, 0, 2030-01-02T03:04:05, invalid)"},
        {"refresh_expire_time alone", "", R"("refresh_expire_time":"2030-01-02 03:04:05")",
         R"(0, "", "", 0, 0, invalid, 2030-01-02T03:04:05)"},
        {"members in the other object",
         R"("token":1,"refresh_token":2,"token_expire_time":"2030-01-02 03:04:05")",
         R"("user_id":3,"nickname":"x","header_url":"y")", R"(0, "", "", 0, 0, invalid, invalid)"},
        {"texts of other types", R"("nickname":5,"header_url":["x"])",
         R"("token_expire_time":1893456000,"refresh_expire_time":null)",
         R"(0, "", "", 0, 0, invalid, invalid)"},
        {"names in other letters", R"("userId":7,"nickName":"x")", R"("Token":7,"refreshToken":7)",
         R"(0, "", "", 0, 0, invalid, invalid)"},
        {"fractions", R"("user_id":1.999)", R"("token":12.7,"refresh_token":-3.9)",
         R"(1, "", "", 12, -3, invalid, invalid)"},
        {"numbers that are texts", R"("user_id":"1")", R"("token":"abc","refresh_token":"")",
         R"(0, "", "", 0, 0, invalid, invalid)"},
        {"numbers of other types", R"("user_id":true)", R"("token":null,"refresh_token":[7])",
         R"(0, "", "", 0, 0, invalid, invalid)"},
        {"large numbers", R"("user_id":9007199254740992)",
         R"("token":9007199254740991,"refresh_token":-9007199254740992)",
         R"(9007199254740992, "", "", 9007199254740991, -9007199254740992, invalid, invalid)"},
        {"the limits", R"("user_id":-9223372036854775808)",
         R"("token":9223372036854775808,"refresh_token":-9223372036854775808)",
         R"(-9223372036854775808, "", "", 9223372036854775807, -9223372036854775808, )"
         R"(invalid, invalid)"},
        {"numbers beyond the limits", R"("user_id":1e19)",
         R"("token":1e300,"refresh_token":-1e300)",
         R"(9223372036854775807, "", "", 9223372036854775807, -9223372036854775808, )"
         R"(invalid, invalid)"},
        {"another script", R"("nickname":"安娜 \"é\"","header_url":"a\/b")", "",
         R"(0, "安娜 "é"", "a/b", 0, 0, invalid, invalid)"}};
    return all;
}

struct Date
{
    QByteArray json;
    const char *written;
};

const QList<Date> &dates()
{
    static const QList<Date> all{{R"("2030-01-02 03:04:05")", "2030-01-02T03:04:05"},
                                 {R"("2028-02-29 00:00:00")", "2028-02-29T00:00:00"},
                                 {R"("0001-01-01 00:00:00")", "0001-01-01T00:00:00"},
                                 {R"("9999-12-31 23:59:59")", "9999-12-31T23:59:59"},
                                 {R"("2030-02-29 00:00:00")", "invalid"},
                                 {R"("2030-13-01 00:00:00")", "invalid"},
                                 {R"("2030-01-02 24:00:00")", "invalid"},
                                 {R"("2030-01-02 03:04:60")", "invalid"},
                                 {R"("2030-01-02T03:04:05")", "invalid"},
                                 {R"("2030-01-02  03:04:05")", "invalid"},
                                 {R"("2030-1-2 3:4:5")", "invalid"},
                                 {R"("30-01-02 03:04:05")", "invalid"},
                                 {R"("2030-01-02 03:04")", "invalid"},
                                 {R"("2030-01-02 03:04:05.5")", "invalid"},
                                 {R"("2030-01-02 03:04:05Z")", "invalid"},
                                 {R"("2030-01-02")", "invalid"},
                                 {R"("2030/01/02 03:04:05")", "invalid"},
                                 {R"("soon")", "invalid"},
                                 {R"("")", "invalid"},
                                 {"1893456000", "invalid"},
                                 {"null", "invalid"},
                                 {"true", "invalid"},
                                 {R"(["2030-01-02 03:04:05"])", "invalid"}};
    return all;
}

QByteArray user(const QByteArray &base, const QByteArray &token)
{
    return "\"base\":{" + base + "},\"token\":{" + token + '}';
}

QByteArray confirmed(const QByteArray &user)
{
    return R"({"status":1,"user_info":{)" + user + "}}";
}

/// A date in ISO form as the debug stream writes it.
QString inTheLog(const QString &date)
{
    QString text;
    QDebug(&text).nospace() << QDateTime::fromString(date, Qt::ISODate);
    return text;
}

QByteArray confirmedBy(const QByteArray &status)
{
    QByteArray data = Operations::getLoginQrCodeStatus().data;
    return data.replace(R"("status":1)", "\"status\":" + status);
}

} // namespace

/// GetLoginQrCodeStatus, SendSmsVerifyCode, SmsVerifyCodeLogin and RefreshToken.
class TestSignIn : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override
    {
        return {Operations::getLoginQrCodeStatus(), Operations::sendSmsVerifyCode(),
                Operations::smsVerifyCodeLogin(), Operations::refreshToken()};
    }

private Q_SLOTS:
    void asksForTheStatusOfAnyCode_data();
    void asksForTheStatusOfAnyCode();
    void hasNoUserForAnyStatusButOne_data();
    void hasNoUserForAnyStatusButOne();
    void fillsTheUserOfACode_data();
    void fillsTheUserOfACode();
    void sendsAnyPhoneNumber();
    void sendsAnySignInCode();
    void fillsTheUserOfASignInCode_data();
    void fillsTheUserOfASignInCode();
    void readsTheDatesOfAUser_data();
    void readsTheDatesOfAUser();
    void sendsAnyRefreshToken_data();
    void sendsAnyRefreshToken();
    void readsTheRenewedToken_data();
    void readsTheRenewedToken();
    void makesANewUserForEachSignIn();
};

void TestSignIn::asksForTheStatusOfAnyCode_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QByteArray>("query");
    const auto row = [](const char *code, const char *query) {
        QTest::newRow(code) << QString::fromUtf8(code) << QByteArray(query);
    };
    row("", "");
    row("abc-123_~.", "abc-123_~.");
    row("a b", "a%20b");
    row("a%20b", "a%20b");
    row("a%2Fb", "a%2Fb");
    row("100%", "100%25");
    row("%1", "%251");
    row("%1%2%3", "%251%252%253");
    row("a&b=c", "a&b=c");
    row("a/b?c+d", "a/b?c+d");
    row("a#b", "a"); // the rest is the address' fragment
    row("码é", "%E7%A0%81%C3%A9");
}

void TestSignIn::asksForTheStatusOfAnyCode()
{
    QFETCH(QString, code);
    QFETCH(QByteArray, query);
    compareRequest(
        [&code](VoNetworkIntf *to) { to->GetLoginQrCodeStatus(code); },
        Operations::get(QByteArray(ucenter) + "/login/getMpStatus?business_code=" + query),
        QString());
}

void TestSignIn::hasNoUserForAnyStatusButOne_data()
{
    QTest::addColumn<QByteArray>("data");
    for (const char *status : {"0", "2", "-1", "3", "1.5", "4294967297", "true", R"("1")", "null",
                               "[1]", R"({"status":1})"})
        QTest::newRow(status) << confirmedBy(status);
    QTest::newRow("missing")
        << QByteArray(Operations::getLoginQrCodeStatus().data).replace(R"("status":1,)", "");
    QTest::newRow("in other letters")
        << QByteArray(Operations::getLoginQrCodeStatus().data).replace("status", "Status");
}

void TestSignIn::hasNoUserForAnyStatusButOne()
{
    QFETCH(QByteArray, data);
    exchange(Operations::getLoginQrCodeStatus(), ScriptedServer::reply(Operations::envelope(data)),
             {}, {"signalGetLoginQrCodeStatusEnd(null)"_s});
}

void TestSignIn::fillsTheUserOfACode_data()
{
    addDataColumns();
    const QString answer = "signalGetLoginQrCodeStatusEnd(%1)"_s;
    const QString empty = answer.arg(QString::fromUtf8(members().first().user));
    for (const Member &member : members())
        QTest::newRow(member.title) << confirmed(user(member.base, member.token))
                                    << answer.arg(QString::fromUtf8(member.user));
    QTest::newRow("status 1.0") << confirmedBy("1.0") << Operations::getLoginQrCodeStatus().answer;
    QTest::newRow("no user_info") << QByteArray(R"({"status":1})") << empty;
    QTest::newRow("user_info null") << QByteArray(R"({"status":1,"user_info":null})") << empty;
    QTest::newRow("a level too high")
        << R"({"status":1,)" + user(R"("user_id":7)", R"("token":7)") + '}' << empty;
    QTest::newRow("base and token no objects") << confirmed(R"("base":[1],"token":7)") << empty;
}

void TestSignIn::fillsTheUserOfACode() { exchangeData(Operations::getLoginQrCodeStatus()); }

void TestSignIn::sendsAnyPhoneNumber()
{
    const QByteArray body = R"({
    "phone": "+49 \"é\" 手机%1",
    "scene": 1
}
)";
    compareRequest([](VoNetworkIntf *to) { to->SendSmsVerifyCode(R"(+49 "é" 手机%1)"_s); },
                   Operations::post(QByteArray(ucenter) + "verify/sms", QByteArray(), body),
                   Operations::started("VoNetworker::SendSmsVerifyCode", body));
}

void TestSignIn::sendsAnySignInCode()
{
    const QByteArray body = R"({
    "phone": "",
    "verify": "a\\b é%1"
}
)";
    compareRequest([](VoNetworkIntf *to) { to->SmsVerifyCodeLogin(QString(), R"(a\b é%1)"_s); },
                   Operations::post(QByteArray(ucenter) + "login/sms", QByteArray(), body),
                   Operations::started("VoNetworker::SmsVerifyCodeLogin", body));
}

void TestSignIn::fillsTheUserOfASignInCode_data()
{
    addDataColumns();
    const QString answer = "signalSmsLoginEnd(%1)"_s;
    const QString empty = answer.arg(QString::fromUtf8(members().first().user));
    for (const Member &member : members())
        QTest::newRow(member.title) << '{' + user(member.base, member.token) + '}'
                                    << answer.arg(QString::fromUtf8(member.user));
    QTest::newRow("a status") << R"({"status":2,)" + user(R"("user_id":7)", "") + '}'
                              << R"(signalSmsLoginEnd(7, "", "", 0, 0, invalid, invalid))"_s;
    QTest::newRow("a level too deep") << confirmed(user(R"("user_id":7)", R"("token":7)")) << empty;
    QTest::newRow("base and token no objects") << QByteArray(R"({"base":[1],"token":7})") << empty;
}

void TestSignIn::fillsTheUserOfASignInCode()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, answer);
    Operation operation = Operations::smsVerifyCodeLogin();
    operation.dataLog = QStringList{"token= "_s + answer.section(", "_s, 3, 3)};
    exchangeData(operation);
}

void TestSignIn::readsTheDatesOfAUser_data()
{
    QTest::addColumn<QByteArray>("date");
    QTest::addColumn<QString>("read");
    for (const Date &date : dates())
        QTest::newRow(date.json.constData()) << date.json << QString::fromUtf8(date.written);
}

void TestSignIn::readsTheDatesOfAUser()
{
    QFETCH(QByteArray, date);
    QFETCH(QString, read);
    Operation operation = Operations::smsVerifyCodeLogin();
    exchange(
        operation,
        ScriptedServer::reply(Operations::envelope(
            '{' + user("", "\"token_expire_time\":" + date + ",\"refresh_expire_time\":" + date)
            + '}')),
        operation.emptyLog, {R"(signalSmsLoginEnd(0, "", "", 0, 0, %1, %1))"_s.arg(read)});
}

void TestSignIn::sendsAnyRefreshToken_data()
{
    QTest::addColumn<qint64>("token");
    QTest::addColumn<QByteArray>("query");
    QTest::newRow("none") << qint64(0) << QByteArray("0");
    QTest::newRow("negative") << qint64(-5) << QByteArray("-5");
    QTest::newRow("without separators") << qint64(1234567) << QByteArray("1234567");
    QTest::newRow("the largest") << std::numeric_limits<qint64>::max()
                                 << QByteArray("9223372036854775807");
    QTest::newRow("the smallest") << std::numeric_limits<qint64>::min()
                                  << QByteArray("-9223372036854775808");
}

void TestSignIn::sendsAnyRefreshToken()
{
    QFETCH(qint64, token);
    QFETCH(QByteArray, query);
    compareRequest([token](VoNetworkIntf *to) { to->RefreshToken(token); },
                   Operations::get(QByteArray(ucenter) + "token/refresh?refresh_token=" + query),
                   QString());
}

void TestSignIn::readsTheRenewedToken_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("token");
    QTest::addColumn<QString>("expires");
    const auto row = [](const QByteArray &title, const QByteArray &token, const QByteArray &date,
                        const char *readToken, const char *readDate) {
        QTest::newRow(title.constData())
            << "{\"token\":" + token + ",\"expire_time\":" + date + '}'
            << QString::fromUtf8(readToken) << QString::fromUtf8(readDate);
    };
    for (const Date &date : dates())
        row("expire_time " + date.json, "13", date.json, "13", date.written);
    const char date[] = R"("2030-01-02 03:04:05")";
    const char read[] = "2030-01-02T03:04:05";
    row("a fraction", "12.7", date, "12", read);
    row("a negative fraction", "-3.9", date, "-3", read);
    row("-1", "-1", date, "-1", read);
    row("a text", R"("abc")", date, "0", read);
    row("a number in a text", R"("13")", date, "0", read);
    row("true", "true", date, "0", read);
    row("null", "null", date, "0", read);
    row("an object", R"({"token":13})", date, "0", read);
    row("2^53", "9007199254740992", date, "9007199254740992", read);
    row("2^63", "9223372036854775808", date, "9223372036854775807", read);
    row("-2^63", "-9223372036854775808", date, "-9223372036854775808", read);
    row("1e300", "1e300", date, "9223372036854775807", read);
    row("-1e300", "-1e300", date, "-9223372036854775808", read);
    QTest::newRow("a token alone") << QByteArray(R"({"token":13})") << "13"_s
                                   << "invalid"_s;
    QTest::newRow("a date alone") << R"({"expire_time":)" + QByteArray(date) + '}' << "0"_s
                                  << QString::fromUtf8(read);
    QTest::newRow("a level deeper") << QByteArray(R"({"token":{"token":13}})") << "0"_s
                                    << "invalid"_s;
}

void TestSignIn::readsTheRenewedToken()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, token);
    QFETCH(QString, expires);
    exchange(Operations::refreshToken(), ScriptedServer::reply(Operations::envelope(data)),
             {"slotRefreshTokenSuc: %1 expireTime: %2"_s.arg(token, inTheLog(expires))},
             {"signalRefreshTokenEnd(%1, %2)"_s.arg(token, expires)});
}

void TestSignIn::makesANewUserForEachSignIn()
{
    answers.reset(); // the records are this test's
    QList<UserInfo *> users;
    const auto keep = [&users](UserInfo *user) { users.append(user); };
    connect(service, &VoNetworkIntf::signalSmsLoginEnd, this, keep);
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeStatusEnd, this, keep);
    const auto signIn = [&](const QByteArray &data, const auto &call) {
        server->reset();
        server->answer(ScriptedServer::reply(Operations::envelope(data)));
        const int count = users.size();
        call();
        return QTest::qWaitFor([&] { return users.size() == count + 1; }, patienceMs);
    };
    const auto bySms = [this] { service->SmsVerifyCodeLogin("1"_s, "2"_s); };
    const auto byCode = [this] { service->GetLoginQrCodeStatus("b"_s); };
    QVERIFY(signIn('{' + user(R"("nickname":"first")", "") + '}', bySms));
    QVERIFY(signIn('{' + user(R"("nickname":"second")", "") + '}', bySms));
    QVERIFY(signIn(confirmed(user(R"("nickname":"third")", "")), byCode));
    QVERIFY(signIn(confirmed(user(R"("nickname":"fourth")", "")), byCode));
    release();

    // All are still there, each with its own values, though the service object is gone.
    QStringList names;
    for (const UserInfo *each : qAsConst(users))
        names.append(each->nickname);
    QCOMPARE(names, (QStringList{"first"_s, "second"_s, "third"_s, "fourth"_s}));
    qDeleteAll(users);
}

QTEST_GUILESS_MAIN(TestSignIn)
#include "tst_signin.moc"
