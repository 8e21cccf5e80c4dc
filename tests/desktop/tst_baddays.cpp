#include "account/accountpage.h"
#include "common/desk.h"
#include "gallery/catalogue.h"
#include "gallery/gallerypage.h"
#include "hostkit/failurereasons.h"
#include "hostkit/sessionfile.h"
#include "mainwindow.h"
#include "recognize/keptrows.h"
#include "recognize/recognizepage.h"
#include "speak/speakpage.h"
#include "start/startpage.h"
#include "tests/desktop/wav.h"
#include "tests/desktop/widgets.h"
#include "tests/hostkit/jobkinds.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/support/trust.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/smalldisk.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSslSocket>
#include <QTimer>
#include <QTreeView>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

using Widgets::button;
using Widgets::notice;

QString full() { return QStringLiteral("No space left on device"); }

QByteArray sound(int samples)
{
    return Answers::one("audio", wav(QVector<qint16>(samples, 100), 16000).toBase64().constData());
}

} // namespace

/// What the window says where, when the service or this machine lets it down, and that nothing is
/// lost. The test answers in the place of the service.
class TestBadDays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The threads that write are made later, and see the disk.
    void initTestCase()
    {
        QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
        QApplication::setApplicationName(QStringLiteral("vodesk"));
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QVERIFY(QDir().mkpath(diskPath()));
        m_disk.emplace(diskPath());
        m_reasons.emplace();
    }

    void init()
    {
        m_home.emplace();
        QSettings().clear();
        m_server.emplace(Identity::Localhost);
        QVERIFY(m_server->start(SERVICE_PORT));
        open();
    }

    void cleanup()
    {
        m_window.reset();
        m_desk.reset();
        m_server.reset();
        m_disk->empty();
        m_home.reset();
    }

    void aSilentServiceIsToldInItsPlace_data()
    {
        QTest::addColumn<QByteArray>("place");
        for (const char *place : {"speak", "recognise", "gallery", "code", "sms", "start"})
            QTest::newRow(place) << QByteArray(place);
    }
    void aSilentServiceIsToldInItsPlace()
    {
        QFETCH(const QByteArray, place);
        m_desk->setPatience(300);
        QElapsedTimer sinceTurn;
        qint64 longestTurn = 0;
        QTimer turns;
        connect(&turns, &QTimer::timeout, this,
                [&] { longestTurn = qMax(longestTurn, sinceTurn.restart()); });
        sinceTurn.start();
        turns.start(10);
        const QWidget *page = ask(place);
        if (place == "recognise")
            TRY_COMPARE(reasonOfRow(0), QStringLiteral("nothing was heard for 0.3 s"));
        else
            TRY_COMPARE(notice(page), QStringLiteral("nothing was heard for 0.3 s"));
        QVERIFY2(longestTurn < 1000, qPrintable(QString::number(longestTurn)));
    }

    void anUploadThatIsCutOffIsToldInItsRowAndRepeated()
    {
        signIn();
        const QString path = m_home->path() + QStringLiteral("/long.wav");
        TestFolder::write(path, wav(QVector<qint16>(50 * 16000, 100), 16000)); // 1.6 MB
        m_server->answer(Answers::credentials());
        connect(rows(), &QAbstractItemModel::dataChanged, this, [this] {
            if (rows()->index(0, 0).data(RecognitionQueue::PercentRole).toInt() <= 0)
                return;
            for (auto *socket : m_server->findChildren<QSslSocket *>())
                socket->abort();
        });
        page<RecognizePage>()->add({path});
        TRY_VERIFY(
            reasonOfRow(0).startsWith(QStringLiteral("the recording could not be uploaded: ")));
        rows()->disconnect(this);
        m_server->reset();
        m_server->answer(Answers::credentials());
        m_server->answer(Answers::envelope());
        m_server->answer(Answers::one("text", "heard"));
        button(page<RecognizePage>(), QStringLiteral("Re&try"))->click();
        TRY_COMPARE(recognised(), QStringLiteral("heard"));
    }

    void whatWasRecognisedIsThereAtTheNextStart()
    {
        signIn();
        const QString path = m_home->path() + QStringLiteral("/short.wav");
        writeRecording(path);
        m_server->answer(Answers::credentials());
        m_server->answer(Answers::envelope());
        m_server->answer(Answers::one("text", "heard"));
        m_server->answer(Answers::refusal(5, "no more"));
        page<RecognizePage>()->add({path});
        TRY_COMPARE(recognised(), QStringLiteral("heard"));
        QCOMPARE(KeptRows::load().value(0).text, QStringLiteral("heard")); // before it closes
        button(page<RecognizePage>(), QStringLiteral("Re&try"))->click();
        TRY_COMPARE(reasonOfRow(0), QStringLiteral("the service refused: no more"));
        QCOMPARE(recognised(), QStringLiteral("heard"));
        open();
        QCOMPARE(rows()->rowCount(), 1);
        QCOMPARE(reasonOfRow(0), QStringLiteral("the service refused: no more"));
        chooseRow(0);
        QCOMPARE(recognised(), QStringLiteral("heard"));
        button(page<RecognizePage>(), QStringLiteral("Re&move"))->click();
        open();
        QCOMPARE(rows()->rowCount(), 0);
        QVERIFY(QFile::exists(path));
    }

    void aRowThatWasUnderWayIsThereAtTheNextStart()
    {
        signIn();
        const QString path = m_home->path() + QStringLiteral("/short.wav");
        writeRecording(path);
        page<RecognizePage>()->add({path, path});
        TRY_COMPARE(m_server->requests().size(), 1);
        open();
        QCOMPARE(rows()->rowCount(), 2);
        for (int row = 0; row < 2; ++row)
            QCOMPARE(reasonOfRow(row),
                     QStringLiteral("it was not done when this window was opened"));
    }

    void aSessionThatAnotherWindowEndsIsNoticed()
    {
        signIn();
        open();
        Desk otherDesk;
        MainWindow other(&otherDesk);
        const auto *user = m_window->findChild<QLabel *>(QStringLiteral("user"));
        QVERIFY2(user->text().startsWith(QStringLiteral("Signed in as Rose")),
                 qPrintable(user->text()));
        button(other.findChild<AccountPage *>(), QStringLiteral("Sign &out"))->click();
        ask("speak");
        QCOMPARE(user->text(),
                 QStringLiteral("Nobody is signed in. Short texts can be spoken all the same."));
    }

    void aTokenThatIsRefusedAfterTheSessionWasRemovedIsTold()
    {
        signIn();
        open();
        const QString path = m_home->path() + QStringLiteral("/short.wav");
        writeRecording(path);
        m_server->answer(Answers::credentials());
        m_server->answer(Answers::envelope());
        m_server->answer(Answers::refusal(401, "who is that?"));
        connect(&*m_server, &ScriptedServer::requestReceived, this, [this] {
            if (m_server->requests().size() == 3)
                SessionFile::remove();
        });
        page<RecognizePage>()->add({path});
        TRY_COMPARE(reasonOfRow(0), QStringLiteral("sign in first"));
        QVERIFY(!button(page<AccountPage>(), QStringLiteral("Sign &out"))
                     ->isVisibleTo(page<AccountPage>()));
    }

    void aRefusalIsToldInTheServicesWords()
    {
        m_server->answer(Answers::refusal(5, "not today"));
        ask("speak");
        TRY_COMPARE(notice(page<SpeakPage>()), QStringLiteral("the service refused: not today"));
    }

    void aTextOf50000CharactersIsRefusedAtOnce()
    {
        signIn();
        type(QString(50000, QLatin1Char('a')));
        button(page<SpeakPage>(), QStringLiteral("&Speak"))->click();
        TRY_COMPARE(notice(page<SpeakPage>()),
                    QStringLiteral("the text is too long (20000 characters)"));
        QCOMPARE(m_server->requests().size(), 0);
    }

    void anEmptyCatalogueIsTold()
    {
        m_server->answer(Answers::envelope({{QStringLiteral("list"), QJsonArray()}}));
        QSignalSpy loaded(m_desk->catalogue(), &Catalogue::loaded);
        m_desk->catalogue()->load();
        TRY_COMPARE(loaded.count(), 1);
        QVERIFY(says(page<GalleryPage>(), QStringLiteral("The catalogue is empty")));
        QVERIFY(says(page<SpeakPage>(), QStringLiteral("The service has named no voice")));
    }

    void aServiceThatIsGoneIsLookedForWithoutLosingThePage()
    {
        m_server->close();
        auto *look =
            button(m_window.get(), QStringLiteral("The service cannot &be reached. Look for it"));
        QVERIFY(!look->isVisible());
        ask("speak");
        TRY_VERIFY(look->isVisible());
        QVERIFY(notice(page<SpeakPage>()).startsWith(QStringLiteral("cannot reach https://")));
        QVERIFY(m_server->start(SERVICE_PORT));
        m_server->answer(Answers::envelope({{QStringLiteral("upgradeStatus"), 0}}));
        look->click();
        TRY_VERIFY(!look->isVisible());
        QVERIFY(page<SpeakPage>()->isVisible());
        QCOMPARE(text(), QStringLiteral("hello"));
    }

    void aFullDiskIsToldWhereTheAudioWouldBe()
    {
        if (!m_disk->isThere())
            QSKIP("this user may not mount anything", );
        qputenv("TMPDIR", diskPath().toUtf8());
        open();
        m_disk->fill();
        m_server->answer(sound(10000));
        ask("speak");
        TRY_COMPARE(notice(page<SpeakPage>()),
                    QStringLiteral("the audio could not be written: ") + full());
        m_disk->empty();
        ask("speak");
        TRY_VERIFY(button(page<SpeakPage>(), QStringLiteral("Save &as..."))->isEnabled());
        QCOMPARE(notice(page<SpeakPage>()), QString());
    }

    void aFullDiskIsToldWhenSaving()
    {
        if (!m_disk->isThere())
            QSKIP("this user may not mount anything", );
        m_server->answer(sound(10000));
        ask("speak");
        TRY_VERIFY(button(page<SpeakPage>(), QStringLiteral("Save &as..."))->isEnabled());
        const QString path = diskPath() + QStringLiteral("/audio.wav");
        TestFolder::write(path, "older");
        m_disk->fill();
        page<SpeakPage>()->save(path);
        TRY_COMPARE(notice(page<SpeakPage>()),
                    QStringLiteral("%1 could not be written: %2").arg(path, full()));
        QCOMPARE(TestFolder::contents(path), QByteArray("older"));
        QFile::remove(path);
    }

    void aTextThatCannotBeKeptIsGivenUpOnlyByASecondClosing()
    {
        if (!m_disk->isThere())
            QSKIP("this user may not mount anything", );
        qputenv("XDG_DATA_HOME", diskPath().toUtf8());
        type(QStringLiteral("older"));
        QVERIFY(m_window->close());
        open();
        QCOMPARE(text(), QStringLiteral("older"));
        m_disk->fill();
        type(QStringLiteral("newer"));
        m_window->showPage(2);
        QVERIFY(!m_window->close());
        QVERIFY(page<SpeakPage>()->isVisible());
        QCOMPARE(notice(page<SpeakPage>()),
                 QStringLiteral("The text will not be here at the next start: %1. Copy it "
                                "elsewhere, or close the window once more to give it up.")
                     .arg(full()));
        QVERIFY(m_window->close());
        open();
        QCOMPARE(text(), QStringLiteral("older"));
    }

    void aRowThatCannotBeKeptIsTold()
    {
        if (!m_disk->isThere())
            QSKIP("this user may not mount anything", );
        qputenv("XDG_DATA_HOME", diskPath().toUtf8());
        QVERIFY(QDir().mkpath(diskPath() + QStringLiteral("/VoNetwork/vodesk/queue")));
        m_disk->fill();
        page<RecognizePage>()->add({QStringLiteral("a.wav")});
        TRY_COMPARE(notice(page<RecognizePage>()),
                    QStringLiteral("The result will not be here at the next start: ") + full());
    }

private:
    void open()
    {
        m_window.reset();
        m_desk = std::make_unique<Desk>();
        m_window = std::make_unique<MainWindow>(m_desk.get());
        m_window->show();
    }

    // Has the page @p place ask the service. Returns it.
    QWidget *ask(const QByteArray &place)
    {
        if (place == "speak") {
            type(QStringLiteral("hello"));
            button(page<SpeakPage>(), QStringLiteral("&Speak"))->click();
            return page<SpeakPage>();
        }
        if (place == "recognise") {
            const QString path = m_home->path() + QStringLiteral("/short.wav");
            writeRecording(path);
            page<RecognizePage>()->add({path});
            return page<RecognizePage>();
        }
        if (place == "gallery") {
            button(page<GalleryPage>(), QStringLiteral("Loa&d again"))->click();
            return page<GalleryPage>();
        }
        if (place == "code") {
            button(page<AccountPage>(), QStringLiteral("&Show a code"))->click();
            return page<AccountPage>();
        }
        if (place == "sms") {
            page<AccountPage>()->findChild<QLineEdit *>()->setText(QStringLiteral("5550100"));
            button(page<AccountPage>(), QStringLiteral("S&end an SMS"))->click();
            return page<AccountPage>();
        }
        m_window->connectToService();
        return page<StartPage>();
    }

    template <typename P>
    P *page() const
    {
        return m_window->findChild<P *>();
    }

    QTreeView *view() const { return m_window->findChild<QTreeView *>(QStringLiteral("queue")); }

    const QAbstractItemModel *rows() const { return view()->model(); }

    void chooseRow(int row) const { view()->setCurrentIndex(rows()->index(row, 0)); }

    QString reasonOfRow(int row) const
    {
        return rows()->index(row, RecognitionQueue::Progress).data().toString();
    }

    QString recognised() const
    {
        return page<RecognizePage>()->findChild<QPlainTextEdit *>()->toPlainText();
    }

    QPlainTextEdit *editor() const
    {
        return m_window->findChild<QPlainTextEdit *>(QStringLiteral("text"));
    }

    void type(const QString &text) const { editor()->setPlainText(text); }

    QString text() const { return editor()->toPlainText(); }

    static bool says(const QWidget *page, const QString &text)
    {
        const auto labels = page->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text() == text; });
    }

    QString diskPath() const { return m_folder.filePath(QStringLiteral("disk")); }

    const TrustTestAuthority m_trust;
    const QTemporaryDir m_folder;
    std::optional<SmallDisk> m_disk;
    std::optional<FailureReasons> m_reasons;
    std::optional<Home> m_home;
    std::optional<ScriptedServer> m_server;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(TestBadDays)
#include "tst_baddays.moc"
