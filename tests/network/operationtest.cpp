#include "tests/network/operationtest.h"

#include "tests/network/localecodec.h"
#include "tests/support/patience.h"

#include <QTest>

namespace {

QByteArray deepArray() { return QByteArray(2000, '[') + QByteArray(2000, ']'); }

struct NotJson
{
    const char *title;
    QByteArray body;
    const char *error;
};

QList<NotJson> notJson()
{
    return {
        {"empty body", "", "illegal value"},
        {"plain text", "not JSON", "illegal value"},
        {"a bare text", R"("text")", "illegal value"},
        {"a bare number", "7", "illegal value"},
        {"a bare null", "null", "illegal value"},
        {"a page", "<html></html>", "illegal value"},
        {"an unended object", "{\"code\":0 ", "unterminated object"},
        {"an unended array", "[0 ", "unterminated array"},
        {"an unended number", R"({"code":0)", "invalid termination by number"},
        {"an unended text", R"({"code":")", "unterminated string"},
        {"no name separator", R"({"code" 0})", "missing name separator"},
        {"no value separator", R"([1 2])", "missing value separator"},
        {"an object after a comma", R"({"code":0,})", "object is missing after a comma"},
        {"bytes after the end", R"({"code":0}{"code":0})", "garbage at the end of the document"},
        {"bytes that are no UTF-8", "{\"code\":\"\xff\"}", "invalid UTF8 string"},
        {"an unknown escape", R"({"code":"\u12"})", "invalid escape sequence"},
        {"an illegal number", R"({"code":1e})", "illegal number"},
        {"too deep", deepArray(), "too deeply nested document"}};
}

struct Silent
{
    const char *title;
    QByteArray body;
};

// Failures that nothing is logged about.
QList<Silent> silentFailures()
{
    return {{"an empty array", "[]"},
            {"an array of an envelope", R"([{"code":0,"data":{}}])"},
            {"an empty object", "{}"},
            {"no code", R"({"message":"m","data":{}})"},
            {"code null", R"({"code":null,"message":"m","data":{}})"},
            {"code in other letters", R"({"Code":0,"CODE":1,"data":{}})"}};
}

// Codes that are no whole numbers, and 0 itself.
QList<QByteArray> codesOfSuccess()
{
    return {"0",    "0.0",  "-0",    R"("7")", R"("")",     "true",       "false",      "0.5",
            "-0.5", "7.25", "{}",    "[]",     "[7]",       R"({"x":7})", R"("no")",    "1e300",
            "1e10", "1e-3", "-1e10", "0e5",    R"("null")", "2147483648", "-2147483649"};
}

struct Refusal
{
    const char *title;
    QByteArray members;
    int code;
    const char *message; ///< Quoted.
};

QList<Refusal> refusals()
{
    return {
        {"with a message", R"("code":1001,"message":"no")", 1001, R"("no")"},
        {"code 1", R"("code":1,"message":"no")", 1, R"("no")"},
        {"a negative code", R"("code":-1,"message":"no")", -1, R"("no")"},
        {"the largest code", R"("code":2147483647,"message":"no")", 2147483647, R"("no")"},
        {"the smallest code", R"("code":-2147483648,"message":"no")", -2147483647 - 1, R"("no")"},
        {"a whole number with a fraction", R"("code":7.0,"message":"no")", 7, R"("no")"},
        {"a whole number with an exponent", R"("code":1e3,"message":"no")", 1000, R"("no")"},
        {"no message", R"("code":7)", 7, R"("")"},
        {"an empty message", R"("code":7,"message":"")", 7, R"("")"},
        {"a numeric message", R"("code":7,"message":5)", 7, R"("")"},
        {"a null message", R"("code":7,"message":null)", 7, R"("")"},
        {"an object as message", R"("code":7,"message":{"text":"no"})", 7, R"("")"},
        {"quotation marks in the message", R"("code":7,"message":"a \"b\" c")", 7,
         R"("a \"b\" c")"},
        {"placeholders in the message", R"("code":7,"message":"%1 %2 %s")", 7, R"("%1 %2 %s")"},
        {"lines in the message", R"("code":7,"message":"a\nb")", 7, R"("a\nb")"},
        {"another script in the message", R"("code":7,"message":"拒绝")", 7, R"("拒绝")"}};
}

// Members "data" that hold no object; "" for none at all.
QList<QByteArray> emptyData()
{
    return {"",          "null", "{}",  "[]", R"([{"text":"a","task_id":"b","audio":"c"}])",
            R"("text")", "5",    "true"};
}

struct HttpError
{
    const char *title;
    const char *status;
    const char *headers;
    const char *text; ///< %1: the address.
};

const HttpError httpErrors[] = {
    {"400", "400 Bad Request", "", "Error transferring %1 - server replied: Bad Request"},
    {"401", "401 Unauthorized", "WWW-Authenticate: Basic realm=\"r\"\r\n",
     "Host requires authentication"},
    {"403", "403 Forbidden", "", "Error transferring %1 - server replied: Forbidden"},
    {"404", "404 Not Found", "", "Error transferring %1 - server replied: Not Found"},
    {"418 of another script", "418 Caf\xe9", "", "Error transferring %1 - server replied: Café"},
    {"500", "500 Internal Server Error", "",
     "Error transferring %1 - server replied: Internal Server Error"},
    {"503", "503 Service Unavailable", "",
     "Error transferring %1 - server replied: Service Unavailable"}};

QString addressOf(const Operation &operation)
{
    return "https://localhost:%1%2"_s.arg(QString::number(SERVICE_PORT),
                                          QString::fromLatin1(operation.request.split(' ').at(1)));
}

QByteArray rowName(const Operation &operation, const QByteArray &title)
{
    return operation.name.toLatin1() + ": " + title;
}

} // namespace

void OperationTest::exchange(const Operation &operation, const QByteArray &reply,
                             const QStringList &log, const QStringList &expected)
{
    server->answer(reply);
    QStringList loggedBefore;
    connect(answers.get(), &Answers::arrived, this, [&] { loggedBefore = logged(); });
    QCOMPARE(outcomeOf(operation, expected.size()), expected);
    if (!operation.result)
        QCOMPARE(loggedBefore, logged()); // nothing is logged after the answer
    QCOMPARE(server->requests(), QList<QByteArray>{operation.request});
    const QString body = QString::fromUtf8(reply.mid(reply.indexOf("\r\n\r\n") + 4));
    QStringList lines = operation.start + log;
    QCOMPARE(logged(), lines.replaceInStrings("<body>"_s, quoted(body)));
}

void OperationTest::compareRequest(const std::function<void(VoNetworkIntf *)> &call,
                                   const QByteArray &request, const QString &start)
{
    call(service);
    QCOMPARE(logged(), start.isEmpty() ? QStringList() : QStringList{start});
    TRY_VERIFY(!server->requests().isEmpty());
    QCOMPARE(server->requests(), QList<QByteArray>{request});
}

void OperationTest::addDataColumns()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("answer");
}

void OperationTest::addIdentifiersToAskBy()
{
    QTest::addColumn<QString>("taskId");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty") << QString() << QByteArray(R"("")");
    QTest::newRow("digits") << "0012"_s << QByteArray(R"("0012")");
    QTest::newRow("JSON's own characters") << R"(a"b\c)"_s << QByteArray(R"("a\"b\\c")");
    QTest::newRow("another script") << "任务"_s << QByteArray(R"("任务")");
}

void OperationTest::addTaskIdentifiers(const char *signal)
{
    const QString answer = QLatin1String(signal) + "(0, \"%1\")"_s;
    addDataColumns();
    QTest::newRow("text") << QByteArray(R"({"task_id":"任务 1"})") << answer.arg("任务 1"_s);
    QTest::newRow("number") << QByteArray(R"({"task_id":5})") << answer.arg(QString());
    QTest::newRow("null") << QByteArray(R"({"task_id":null})") << answer.arg(QString());
    QTest::newRow("another name") << QByteArray(R"({"taskid":"x","taskId":"y"})")
                                  << answer.arg(QString());
}

void OperationTest::addTaskStates(const QByteArray &members, const QString &processing,
                                  const QString &success, const QString &failed)
{
    const auto row = [&members](const char *status, const QString &answer) {
        QTest::newRow(status) << R"({"status":)" + QByteArray(status) + ',' + members + '}'
                              << answer;
    };
    addDataColumns();
    for (const char *status : {R"("RUNNING")", R"("running")", R"("Running")", R"("rUnNiNg")",
                               R"("QUEUEING")", R"("queueing")", R"("Queueing")"})
        row(status, processing);
    for (const char *status : {R"("SUCCESS")", R"("success")", R"("Success")", R"("ſucceſs")"})
        row(status, success);
    for (const char *status : {R"("FAILED")", R"("")", R"(" RUNNING")", R"("RUNNING ")",
                               R"("QUEUING")", R"("SUCCESSFUL")", R"("SUCCES")", R"("完成")", "1",
                               "0", "null", "true", R"(["SUCCESS"])", R"({"status":"SUCCESS"})"})
        row(status, failed);
    QTest::newRow("no status") << '{' + members + '}' << failed;
}

void OperationTest::exchangeData(const Operation &operation)
{
    QFETCH(QByteArray, data);
    QFETCH(QString, answer);
    exchange(operation, ScriptedServer::reply(Operations::envelope(data)), operation.dataLog,
             QStringList{answer});
}

void OperationTest::addOperationRows()
{
    QTest::addColumn<Operation>("operation");
    const QList<Operation> all = operations();
    for (const Operation &operation : all)
        QTest::newRow(operation.name.toLatin1().constData()) << operation;
}

void OperationTest::sendsExactlyOneRequestAndDeliversItsResult_data() { addOperationRows(); }

void OperationTest::sendsExactlyOneRequestAndDeliversItsResult()
{
    QFETCH(Operation, operation);
    exchange(operation, ScriptedServer::reply(Operations::envelope(operation.data)),
             operation.dataLog, QStringList{operation.answer});
}

void OperationTest::readsTheEnvelope_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("log");
    QTest::addColumn<QStringList>("expected");

    const QList<Operation> all = operations();
    for (const Operation &operation : all) {
        const auto row = [&operation](const QByteArray &title) -> QTestData & {
            return QTest::newRow(rowName(operation, title).constData()) << operation;
        };
        for (const NotJson &bad : notJson())
            row(QByteArray("no JSON, ") + bad.title)
                << bad.body
                << QStringList{"\"[error][%1]json parse error:%2\""_s.arg(operation.successSlot,
                                                                          QLatin1String(bad.error))}
                << QStringList{operation.failure};
        for (const Silent &silent : silentFailures())
            row(QByteArray("no envelope, ") + silent.title)
                << silent.body << QStringList() << QStringList{operation.failure};
        for (const QByteArray &code : codesOfSuccess())
            row("success, code " + code)
                << R"({"code":)" + code + R"(,"message":"m","data":)" + operation.data + '}'
                << operation.dataLog << QStringList{operation.answer};
        row("success, without a message") << R"({"data":)" + operation.data + R"(,"code":0})"
                                          << operation.dataLog << QStringList{operation.answer};
        row("success, with blanks around it")
            << "\r\n\t {\"code\" : 0 , \"data\" : " + operation.data + " } \r\n"
            << operation.dataLog << QStringList{operation.answer};
        for (const Refusal &refusal : refusals())
            row(QByteArray("refusal, ") + refusal.title)
                << '{' + refusal.members + R"(,"data":)" + operation.data + '}'
                << QStringList{QString(operation.refusal)
                                   .replace("%1"_s, QString::number(refusal.code))
                                   .replace("%2"_s, QString::fromUtf8(refusal.message))}
                << QStringList{operation.failure};
        for (const QByteArray &data : emptyData()) {
            if (data.startsWith("[{") && operation.data.startsWith('['))
                continue; // to this one it is data
            row("success, data " + (data.isEmpty() ? QByteArray("missing") : data))
                << (data.isEmpty() ? QByteArray(R"({"code":0})") : Operations::envelope(data))
                << operation.emptyLog << operation.emptyAnswers;
        }
    }
}

void OperationTest::readsTheEnvelope()
{
    QFETCH(Operation, operation);
    QFETCH(QByteArray, body);
    QFETCH(QStringList, log);
    QFETCH(QStringList, expected);
    exchange(operation, ScriptedServer::reply(body), log, expected);
}

void OperationTest::turnsEveryHttpErrorIntoItsFailure_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    const QList<Operation> all = operations();
    for (const Operation &operation : all) {
        for (const HttpError &error : httpErrors)
            // The body would be a success: it must not be looked at.
            QTest::newRow(rowName(operation, error.title).constData())
                << operation
                << ScriptedServer::reply(Operations::envelope(operation.data), error.status,
                                         error.headers)
                << QString::fromUtf8(error.text).replace("%1"_s, addressOf(operation));
    }
}

void OperationTest::turnsEveryHttpErrorIntoItsFailure()
{
    QFETCH(Operation, operation);
    QFETCH(QByteArray, reply);
    QFETCH(QString, text);
    const LocaleCodec utf8("UTF-8"); // in which the toolkit passes the text on; Windows has another
    exchange(operation, reply,
             {"[error] VoNetworker::%1 \"%2\""_s.arg(operation.failureSlot, text)},
             QStringList{operation.networkFailure});
}

void OperationTest::failsWhenTheConnectionIsCutOff_data() { addOperationRows(); }

void OperationTest::failsWhenTheConnectionIsCutOff()
{
    QFETCH(Operation, operation);
    server->answer("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{\"code\":0",
                   ScriptedServer::Then::Reset);
    QCOMPARE(outcomeOf(operation), QStringList{operation.networkFailure});
    QCOMPARE(logged(), (operation.start
                        + QStringList{"[error] VoNetworker::%1 \"Connection closed\""_s.arg(
                            operation.failureSlot)}));
}

void OperationTest::failsWhenNobodyListens_data() { addOperationRows(); }

void OperationTest::failsWhenNobodyListens()
{
    QFETCH(Operation, operation);
    server->close();
    QCOMPARE(outcomeOf(operation), QStringList{operation.networkFailure});
    QCOMPARE(logged(), (operation.start
                        + QStringList{"[error] VoNetworker::%1 \"Connection refused\""_s.arg(
                            operation.failureSlot)}));
}
