#include "tests/support/patience.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// How vospeak ends when the service refuses.
class TestRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_service.start());
        QVERIFY(QDir::setCurrent(m_folder.path()));
        QFile text(QStringLiteral("text.wav"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        QVERIFY(text.write("This is no recording at all.") > 0);
        text.close();
        QCOMPARE(vospeak(arguments("say hello -o speech.wav") + m_service.access()).status, 0);
        m_files = entries();
    }

    void cleanup() { QFile::remove(QStringLiteral("a.wav")); }

    void aRefusalIsToldInOneLine_data()
    {
        QTest::addColumn<QStringList>("command");
        const QStringList access = m_service.access();
        const QStringList authority{QStringLiteral("--ca"), m_service.authority()};
        const QStringList wrongToken = authority + arguments("--token 9007199254740992");
        const QStringList noAuthority{QStringLiteral("--token"),
                                      QString::number(LocalService::token())};
        QTest::newRow("say, wrong token") << arguments("say hello -o a.wav") + wrongToken;
        QTest::newRow("say long, wrong token")
            << arguments("say hello -o a.wav --long") + wrongToken;
        QTest::newRow("recognize, wrong token") << arguments("recognize speech.wav") + wrongToken;
        QTest::newRow("recognize long, wrong token")
            << arguments("recognize speech.wav --long") + wrongToken;

        QTest::newRow("say, unknown voice") << arguments("say hello -o a.wav --voice bob") + access;
        QTest::newRow("say long, unknown voice")
            << arguments("say hello -o a.wav --voice bob --long") + access;
        QTest::newRow("say anonymously, unknown voice")
            << arguments("say hello -o a.wav --voice bob --anonymous") + authority;
        QTest::newRow("say, rate of the moon")
            << arguments("say hello -o a.wav --rate 1000000000") + access;

        QTest::newRow("recognize, no recording") << arguments("recognize text.wav") + access;
        QTest::newRow("recognize long, no recording")
            << arguments("recognize text.wav --long") + access;

        const QString unknown =
            QStringLiteral(SERVICE_BASE_ADDRESS "/storage/speech/uploads/a.wav");
        const QStringList recognize = arguments("recognize");
        QTest::newRow("recognize, unknown address") << (recognize + access << unknown);
        QTest::newRow("recognize long, unknown address")
            << (recognize + access + arguments("--long") << unknown);
        const QString foreign = QStringLiteral("https://elsewhere.example/a.wav");
        QTest::newRow("recognize, foreign address") << (recognize + access << foreign);
        QTest::newRow("recognize long, foreign address")
            << (recognize + access + arguments("--long") << foreign);

        QTest::newRow("say, authority not trusted")
            << arguments("say hello -o a.wav") + noAuthority;
        QTest::newRow("say long, authority not trusted")
            << arguments("say hello -o a.wav --long") + noAuthority;
        QTest::newRow("recognize, authority not trusted")
            << arguments("recognize speech.wav") + noAuthority;
    }
    void aRefusalIsToldInOneLine()
    {
        QFETCH(const QStringList, command);
        const Outcome outcome = vospeak(command);
        const bool isTrusted = command.contains(QStringLiteral("--ca"));
        QCOMPARE(outcome.status, isTrusted ? 5 : 4);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        QCOMPARE(entries(), m_files);
    }

    // Nothing of a request may reach a server whose authority is not trusted.
    void anUntrustedServiceSeesNoRequest()
    {
        const int before = m_service.log().size();
        QCOMPARE(vospeak(arguments("recognize speech.wav --token 1")).status, 4);
        // A trusting run leaves the one request for credentials that is in the log then.
        QCOMPARE(vospeak(arguments("recognize text.wav") + m_service.access()).status, 5);
        TRY_VERIFY(m_service.log().mid(before).contains("PUT "));
        QCOMPARE(m_service.log().mid(before).count("upload/getsignsts"), 1);
    }

    void aRefusalLeavesAnOlderFileAlone()
    {
        QFile speech(QStringLiteral("speech.wav"));
        QVERIFY(speech.open(QIODevice::ReadOnly));
        const QByteArray before = speech.readAll();
        for (const char *command :
             {"say hello -o speech.wav --voice bob", "say hello -o speech.wav --voice bob --long"})
            QCOMPARE(vospeak(arguments(command) + m_service.access()).status, 5);
        QVERIFY(speech.seek(0));
        QCOMPARE(speech.readAll(), before);
        QCOMPARE(entries(), m_files);
    }

private:
    static QStringList entries()
    {
        return QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    LocalService m_service;
    const QTemporaryDir m_folder;
    const Home m_home;
    QStringList m_files;
};

QTEST_GUILESS_MAIN(TestRefusals)
#include "tst_refusals.moc"
