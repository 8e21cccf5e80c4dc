#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/support/corpus.h"

#include <QTest>

/// What every operation makes of documents that cover the grammar of JSON and its breaches.
class TestJsonCorpus : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryDocument_data();
    void readsEveryDocument();

private:
    QStringList answered(const Operation &operation, const QByteArray &document, int count);
    QStringList read(const Operation &operation, const QByteArray &document);
};

namespace {

/// How the log tells what a reply was taken for.
QStringList kindsOf(const QStringList &lines, const Operation &operation)
{
    QStringList kinds;
    const QString refusal = operation.refusal.section(QLatin1Char('%'), 0, 0);
    for (const QString &line : lines) {
        if (line.startsWith("\"[error][%1]json parse error:"_s.arg(operation.successSlot)))
            kinds.append("broken"_s);
        else if (line.startsWith(refusal))
            kinds.append("refused"_s);
        else
            kinds.append(line);
    }
    return kinds;
}

/// What the log has of a document of a kind of the corpus.
QStringList promisedLog(const QByteArray &kind, const Operation &operation)
{
    if (kind == "accepted")
        return operation.emptyLog;
    if (kind == "broken" || kind == "refused")
        return {QString::fromLatin1(kind)};
    return {}; // nothing is said of an envelope that is none
}

QStringList promisedAnswers(const QByteArray &kind, const Operation &operation)
{
    return kind == "accepted" ? operation.emptyAnswers : QStringList{operation.failure};
}

} // namespace

void TestJsonCorpus::readsEveryDocument_data()
{
    QTest::addColumn<Operation>("operation");
    const QList<Operation> operations = Operations::all() + Operations::synchronous();
    for (const Operation &operation : operations)
        QTest::newRow(operation.name.toLatin1().constData()) << operation;
}

/// What follows when the service answers @p operation with @p document: @p count signals.
QStringList TestJsonCorpus::answered(const Operation &operation, const QByteArray &document,
                                     int count)
{
    const int before = answers->calls().size();
    server->answer(ScriptedServer::reply(document), ScriptedServer::Then::KeepOpen);
    if (operation.result)
        return QStringList{operation.result(service)} + answers->calls().mid(before);
    operation.call(service);
    answers->waitFor(before + count);
    return answers->calls().mid(before);
}

/// The same by the slot alone.
QStringList TestJsonCorpus::read(const Operation &operation, const QByteArray &document)
{
    const int before = answers->calls().size();
    QMetaObject::invokeMethod(service, operation.successSlot.toLatin1().constData(),
                              Qt::DirectConnection, Q_ARG(QByteArray, document));
    return answers->calls().mid(before);
}

void TestJsonCorpus::readsEveryDocument()
{
    QFETCH(Operation, operation);
    // On a connection that stays Qt's POST takes 40 ms: it is sent in two pieces, the second when
    // the first is acknowledged.
    const bool bySlot = operation.request.startsWith("POST");
    const QStringList start = bySlot ? QStringList() : operation.start;
    static const QList<CorpusCase> documents = readCorpus("json.txt");
    QVERIFY(documents.size() > 500);
    for (const CorpusCase &document : documents) {
        const QByteArray kind = document.kind.split('/').first(); // what others call it follows
        const QStringList expected = promisedAnswers(kind, operation);
        server->reset();
        log->clear();
        const QStringList actual = bySlot ? read(operation, document.bytes)
                                          : answered(operation, document.bytes, expected.size());
        const QString name = QString::fromUtf8(document.name) + ": "_s;
        QCOMPARE(name + actual.join("; "_s), name + expected.join("; "_s));
        QCOMPARE(name + kindsOf(logged(), operation).join("; "_s),
                 name + (start + promisedLog(kind, operation)).join("; "_s));
    }
    const int all = answers->calls().size();
    release();
    QCOMPARE(answers->calls().size(), all); // nothing follows
}

QTEST_GUILESS_MAIN(TestJsonCorpus)
#include "tst_jsoncorpus.moc"
