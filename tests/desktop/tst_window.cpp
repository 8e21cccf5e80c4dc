#include "account/accountpage.h"
#include "audio/playerpanel.h"
#include "audio/waveform.h"
#include "common/desk.h"
#include "gallery/catalogue.h"
#include "gallery/gallerypage.h"
#include "hostkit/failurereasons.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"
#include "mainwindow.h"
#include "recognize/recognizepage.h"
#include "requests/requestspage.h"
#include "speak/speakpage.h"
#include "start/startpage.h"
#include "tests/desktop/wav.h"
#include "tests/desktop/widgets.h"
#include "tests/support/leaks.h"
#include "tests/support/patience.h"
#include "tests/support/residentmemory.h"
#include "tests/support/testfolder.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/signinsteps.h"
#include "tests/system/words.h"
#include "translations/translations.h"
#include "update/updatebanner.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QLoggingCategory>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSslConfiguration>
#include <QStandardPaths>
#include <QTimer>
#include <QTreeView>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>

namespace {

QString sentence() { return QStringLiteral("Go forward ten meters."); }

enum Page { Speak, Recognize, Gallery, Account, Requests };

using Widgets::button;

/// As long as it lives, none but the system's authorities are trusted.
class Distrust
{
    Q_DISABLE_COPY(Distrust)

public:
    Distrust()
    {
        QSslConfiguration strict = m_before;
        strict.setCaCertificates(QSslConfiguration::systemCaCertificates());
        QSslConfiguration::setDefaultConfiguration(strict);
    }
    ~Distrust() { QSslConfiguration::setDefaultConfiguration(m_before); }

private:
    const QSslConfiguration m_before = QSslConfiguration::defaultConfiguration();
};

} // namespace

/// The window as its user has it, against the local service.
class TestWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
        QApplication::setApplicationName(QStringLiteral("vodesk"));
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        m_reasons = std::make_unique<FailureReasons>();
        QVERIFY(m_service.start());
        QCOMPARE(Trust::add(m_service.authority()), QString());
    }

    void init()
    {
        QSettings().clear();
        QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
        openWindow();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QSignalSpy loaded(m_desk->catalogue(), &Catalogue::loaded);
        m_window->connectToService();
        TRY_COMPARE(loaded.count(), 1);
    }

    void cleanup()
    {
        m_window.reset();
        if (m_desk)
            m_desk->kit()->tokens()->signOut();
        m_desk.reset();
    }

    void aSentenceIsSpokenPlayedAndRecognisedAgain()
    {
        m_desk->kit()->tokens()->setToken(LocalService::token());
        type(sentence());
        Player *player = page<SpeakPage>()->findChild<PlayerPanel *>()->player();
        QSignalSpy playing(player, &Player::playingChanged);
        click(QStringLiteral("speak"));
        TRY_COMPARE(playing.count(), 2); // it began and ended
        QVERIFY(player->duration() > 500);
        QCOMPARE(player->position(), player->duration());

        const QString saved = m_folder.filePath(QStringLiteral("saved.wav"));
        page<SpeakPage>()->save(saved);
        TRY_VERIFY(QFileInfo::exists(saved));
        drop({saved});
        TRY_COMPARE(words(recognised()), words(sentence()));
    }

    void aTextIsSpokenWithoutSigningIn()
    {
        type(sentence());
        Player *player = page<SpeakPage>()->findChild<PlayerPanel *>()->player();
        click(QStringLiteral("speak"));
        TRY_VERIFY(player->isPlaying());
    }

    void theMusicIsInWhatIsSaved()
    {
        type(sentence());
        const QString alone = m_folder.filePath(QStringLiteral("alone.wav"));
        const QString mixed = m_folder.filePath(QStringLiteral("mixed.wav"));
        Player *player = page<SpeakPage>()->findChild<PlayerPanel *>()->player();
        click(QStringLiteral("speak"));
        TRY_VERIFY(player->isPlaying());
        page<SpeakPage>()->save(alone);
        TRY_VERIFY(QFileInfo::exists(alone));
        QSignalSpy playing(player, &Player::playingChanged);
        auto *music = m_window->findChild<QComboBox *>(QStringLiteral("music"));
        QVERIFY(music->count() > 1);
        music->setFocus();
        QTest::keyClick(music, Qt::Key_Down);
        TRY_VERIFY(playing.count() >= 2); // it is interrupted by the mix
        page<SpeakPage>()->save(mixed);
        TRY_VERIFY(QFileInfo::exists(mixed));
        QCOMPARE(QFileInfo(mixed).size(), QFileInfo(alone).size());
        QVERIFY(TestFolder::contents(mixed) != TestFolder::contents(alone));
    }

    void aTextThatIsTooLongIsRefusedInItsPlace()
    {
        type(QString(50000, QLatin1Char('a')));
        click(QStringLiteral("speak"));
        TRY_COMPARE(notice<SpeakPage>(),
                    QStringLiteral("the text is too long without signing in (300 characters)"));
        QCOMPARE(editor()->toPlainText().size(), 50000);
    }

    void speakingIsCancelledByTheSameButton()
    {
        m_desk->kit()->tokens()->setToken(LocalService::token());
        type(sentence().repeated(200));
        auto *button = m_window->findChild<QAbstractButton *>(QStringLiteral("speak"));
        click(QStringLiteral("speak"));
        QCOMPARE(button->text(), QStringLiteral("Ca&ncel"));
        click(QStringLiteral("speak"));
        QCOMPARE(button->text(), QStringLiteral("&Speak"));
        QCOMPARE(m_desk->requests()->index(0, RequestLog::Outcome).data().toString(),
                 QStringLiteral("cancelled"));
        QCOMPARE(notice<SpeakPage>(), QString());
    }

    void eachRowOfTheQueueSaysWhyItFailed()
    {
        m_desk->kit()->tokens()->setToken(LocalService::token());
        const QString missing = m_folder.filePath(QStringLiteral("missing.wav"));
        drop({missing, missing});
        const auto *model = m_window->findChild<QTreeView *>(QStringLiteral("queue"))->model();
        for (int row = 0; row < 2; ++row) {
            TRY_VERIFY(model->index(row, RecognitionQueue::Progress)
                           .data()
                           .toString()
                           .contains(QStringLiteral("missing.wav")));
        }
    }

    void aRecordingOfThreeHoursIsRefusedWithoutFreezingTheWindow()
    {
        m_desk->kit()->tokens()->setToken(LocalService::token());
        const QString hours = m_folder.filePath(QStringLiteral("hours.wav"));
        QFile file(hours);
        QVERIFY(file.open(QIODevice::WriteOnly));
        constexpr quint32 size = 3 * 3600 * 16000 * 2;
        QByteArray head = wav({}, 16000);
        qToLittleEndian(size + 36, head.data() + 4);
        qToLittleEndian(size, head.data() + 40);
        file.write(head);
        QVERIFY(file.resize(head.size() + qint64(size)));
        file.close();

        const qint64 memory = residentMemory();
        QElapsedTimer sinceTurn;
        qint64 longestTurn = 0;
        QTimer turns;
        connect(&turns, &QTimer::timeout, this,
                [&] { longestTurn = qMax(longestTurn, sinceTurn.restart()); });
        sinceTurn.start();
        turns.start(10);
        drop({hours});
        const auto *model = m_window->findChild<QTreeView *>(QStringLiteral("queue"))->model();
        TRY_COMPARE(model->index(0, RecognitionQueue::Progress).data().toString(),
                    QStringLiteral("the recording is too large (64 MiB)"));
        Player *player = page<RecognizePage>()->findChild<PlayerPanel *>()->player();
        QCOMPARE(player->duration(), 3 * 3600 * 1000);
        auto *waveform = page<RecognizePage>()->findChild<Waveform *>();
        TRY_VERIFY(waveform->hasRecording());
        qInfo("the longest turn of the event loop took %lld ms", longestTurn);
        QVERIFY(longestTurn < 1000);
        qInfo("the recording of %u MiB has taken %lld MiB", size >> 20,
              (residentMemory() - memory) >> 20);
#ifndef VONETWORK_HAS_LEAK_CHECK
        QVERIFY(residentMemory() - memory < 32 << 20);
#endif
    }

    void whatCannotBeSavedIsToldInItsPlace()
    {
        type(sentence());
        Player *player = page<SpeakPage>()->findChild<PlayerPanel *>()->player();
        click(QStringLiteral("speak"));
        TRY_VERIFY(player->isPlaying());
        const QString path = m_folder.filePath(QStringLiteral("no/folder.wav"));
        page<SpeakPage>()->save(path);
        TRY_VERIFY(
            notice<SpeakPage>().startsWith(path + QStringLiteral(" could not be written: ")));
    }

    void theUserSignsInByTheCode()
    {
        SignInSteps steps(&m_service);
        button(page<AccountPage>(), QStringLiteral("&Show a code"))->click();
        const auto *picture = m_window->findChild<QLabel *>(QStringLiteral("code"));
        TRY_VERIFY(picture->pixmap(Qt::ReturnByValue).width() > 0);
        QCOMPARE(steps.client().postTo(steps.takePage()).status, 200);
        TRY_VERIFY(m_desk->isSignedIn());
        const auto *user = m_window->findChild<QLabel *>(QStringLiteral("user"));
        QVERIFY2(user->text().startsWith(QStringLiteral("Signed in as ")),
                 qPrintable(user->text()));
        QVERIFY(!m_home.session().isEmpty());
        button(page<AccountPage>(), QStringLiteral("Sign &out"))->click();
        QVERIFY(!m_desk->isSignedIn());
        QVERIFY(m_home.session().isEmpty());
    }

    void theUserSignsInBySms() { signInBySms(QStringLiteral("5550100")); }

    void aWrongSmsCodeIsToldInItsPlace()
    {
        const QString phone = QStringLiteral("5550101");
        SignInSteps steps(&m_service);
        const QList<QLineEdit *> fields = page<AccountPage>()->findChildren<QLineEdit *>();
        QTest::keyClicks(fields.at(0), phone);
        QTest::keyClick(fields.at(0), Qt::Key_Return);
        TRY_VERIFY(fields.at(1)->isEnabled());
        QTest::keyClicks(fields.at(1), SignInSteps::otherThan(steps.takeCode(phone)));
        QTest::keyClick(fields.at(1), Qt::Key_Return);
        TRY_VERIFY(notice<AccountPage>().startsWith(QStringLiteral("the service refused")));
        QVERIFY(!m_desk->isSignedIn());
    }

    void aVoiceOfTheGalleryIsUsedForSpeaking()
    {
        auto *voices = m_window->findChild<QListView *>(QStringLiteral("voices"));
        const int last = voices->model()->rowCount() - 1;
        QVERIFY(last > 0);
        const QModelIndex voice = voices->model()->index(last, 0);
        voices->setCurrentIndex(voice);
        button(page<GalleryPage>(), QStringLiteral("&Use for speaking"))->click();
        QVERIFY(page<SpeakPage>()->isVisible());
        QCOMPARE(page<SpeakPage>()->findChild<QComboBox *>()->currentText(),
                 voice.data().toString());
    }

    void aRecordingThatIsAskedForTwiceIsFetchedOnce()
    {
        const QString address = m_desk->catalogue()->musicAddress(0);
        QStringList paths;
        QStringList problems;
        for (int i = 0; i < 2; ++i) {
            m_desk->catalogue()->fetch(address, this,
                                       [&](const QString &path, const QString &problem) {
                                           paths.append(path);
                                           problems.append(problem);
                                       });
        }
        const int before = m_desk->requests()->rowCount();
        TRY_COMPARE(paths.size(), 2);
        QCOMPARE(paths.at(0), paths.at(1));
        QVERIFY(QFileInfo::exists(paths.at(0)));
        QCOMPARE(problems, (QStringList{QString(), QString()}));
        QCOMPARE(m_desk->requests()->rowCount(), before);
        QCOMPARE(m_desk->requests()->index(1, RequestLog::Operation).data().toString(),
                 QStringLiteral("List of music"));
    }

    void aNewerVersionIsToldInABanner()
    {
        QFile upgrades(m_service.dataFile(QStringLiteral("upgrade.json")));
        QVERIFY(upgrades.open(QIODevice::ReadOnly));
        QJsonObject document = QJsonDocument::fromJson(upgrades.readAll()).object();
        upgrades.close();
        auto *banner = page<UpdateBanner>();
        QVERIFY(!banner->isVisible());
        document.insert(QStringLiteral("upgradeStatus"), 1);
        QVERIFY(upgrades.open(QIODevice::WriteOnly));
        upgrades.write(QJsonDocument(document).toJson());
        upgrades.close();
        m_window->connectToService();
        TRY_VERIFY(banner->isVisible());
        button(banner, QStringLiteral("&Hide"))->click();
        QVERIFY(!banner->isVisible());
        document.insert(QStringLiteral("upgradeStatus"), 0);
        QVERIFY(upgrades.open(QIODevice::WriteOnly));
        upgrades.write(QJsonDocument(document).toJson());
    }

    void closingDuringEverythingEndsCleanly()
    {
        m_desk->kit()->tokens()->setToken(LocalService::token());
        type(sentence().repeated(40));
        click(QStringLiteral("speak"));
        button(page<AccountPage>(), QStringLiteral("&Show a code"))->click();
        QTest::qWait(0);
        m_window->close();
        m_window.reset();
        m_desk.reset();
    }

    void theTextAndThePageAreThereAtTheNextStart()
    {
        type(sentence());
        const auto *voices = m_desk->catalogue()->voices();
        const QModelIndex voice = voices->index(voices->rowCount() - 1, 0);
        page<SpeakPage>()->chooseVoice(voice.data(VoiceModel::VoiceRole).toString());
        m_window->showPage(Account);
        m_window->close();
        m_window = std::make_unique<MainWindow>(m_desk.get());
        m_window->show();
        QVERIFY(page<AccountPage>()->isVisible());
        QCOMPARE(editor()->toPlainText(), sentence());
        QSignalSpy loaded(m_desk->catalogue(), &Catalogue::loaded);
        m_window->connectToService();
        TRY_COMPARE(loaded.count(), 1);
        QCOMPARE(page<SpeakPage>()->findChild<QComboBox *>()->currentText(),
                 voices->index(voices->rowCount() - 1, 0).data().toString());
    }

    void eachPageIsReachedByTheKeyboard()
    {
        const QList<QWidget *> pages{page<SpeakPage>(), page<RecognizePage>(), page<GalleryPage>(),
                                     page<AccountPage>(), page<RequestsPage>()};
        for (int i = 0; i < pages.size(); ++i) {
            QTest::keyClick(m_window.get(), Qt::Key(Qt::Key_1 + i), Qt::ControlModifier);
            TRY_VERIFY(pages.at(i)->isVisible());
        }
    }

    void everythingIsChineseInChina()
    {
        Translations::install(QLocale(QLocale::Chinese, QLocale::China));
        m_window = std::make_unique<MainWindow>(m_desk.get());
        Translations::install(QLocale::c());
        QStringList texts;
        for (const auto *button : m_window->findChildren<QAbstractButton *>())
            texts.append(button->text());
        for (const auto *group : m_window->findChildren<QGroupBox *>())
            texts.append(group->title());
        const auto *pages = m_window->findChild<QListWidget *>(QStringLiteral("pages"));
        for (int row = 0; row < pages->count(); ++row)
            texts.append(pages->item(row)->text());
        QVERIFY(texts.size() > 20);
        QStringList foreign;
        for (const QString &text : qAsConst(texts)) {
            const bool isChinese = std::any_of(text.begin(), text.end(), [](QChar character) {
                return character.script() == QChar::Script_Han;
            });
            if (!text.isEmpty() && !isChinese)
                foreign.append(text);
        }
        QCOMPARE(foreign, QStringList());
    }

    void tenThousandVoicesFitIntoTheMemory()
    {
        QVector<DubInfo> voices(10000);
        for (int i = 0; i < voices.size(); ++i)
            voices[i].name = voices[i].voiceParam = QString::number(i);
        m_desk->catalogue()->voices()->setVoices(voices);
        m_window->showPage(Gallery);
        m_window->grab();
        const qint64 memory = residentMemory();
        qInfo("with 10,000 voices there are %lld MiB", memory >> 20);
#ifndef VONETWORK_HAS_LEAK_CHECK // the sanitiser has memory of its own
        QVERIFY(memory < 150 << 20);
#endif
    }

    void aServiceThatIsNotTrustedIsToldOnTheStartPage()
    {
        auto distrust = std::make_unique<Distrust>();
        openWindow();
        m_window->connectToService();
        auto *start = page<StartPage>();
        TRY_VERIFY(start->isVisible());
        distrust.reset();
        QVERIFY2(notice<StartPage>().contains(QStringLiteral("not trusted")),
                 qPrintable(notice<StartPage>()));
        button(start, QStringLiteral("&Try again"))->click();
        TRY_VERIFY(!start->isVisible());
    }

    // docs/desktop.md says which page uses what.
    void everyOperationOfTheInterfaceIsUsed()
    {
        Player *player = page<SpeakPage>()->findChild<PlayerPanel *>()->player();
        const auto speak = [&](const QString &text) {
            player->pause();
            type(text);
            click(QStringLiteral("speak"));
            TRY_VERIFY(player->isPlaying());
        };
        speak(sentence()); // nobody is signed in
        button(page<AccountPage>(), QStringLiteral("&Show a code"))->click();
        const auto *picture = m_window->findChild<QLabel *>(QStringLiteral("code"));
        TRY_VERIFY(picture->pixmap(Qt::ReturnByValue).width() > 0);
        signInBySms(QStringLiteral("5550102"));
        letTokenExpire();
        speak(sentence());
        const QString saved = m_folder.filePath(QStringLiteral("operations.wav"));
        page<SpeakPage>()->save(saved);
        TRY_VERIFY(QFileInfo::exists(saved));
        speak(sentence().repeated(50));
        const QString silence = m_folder.filePath(QStringLiteral("silence.wav"));
        TestFolder::write(silence, wav(QVector<qint16>(61 * 8000, 0), 8000));
        drop({saved, silence});
        const auto *rows = m_window->findChild<QTreeView *>(QStringLiteral("queue"))->model();
        for (int row = 0; row < 2; ++row)
            TRY_COMPARE(rows->index(row, RecognitionQueue::Status).data().toString(),
                        QStringLiteral("done"));
        const QSet<QString> asked = operationsInTheLog();
        QStringList unused;
        for (auto it = operations().begin(); it != operations().end(); ++it) {
            if (!asked.contains(it.value()))
                unused.append(it.key());
        }
        QCOMPARE(unused, QStringList());
    }

    void thePagesOfEveryOperationAreDocumented()
    {
        static const QRegularExpression declaration(QStringLiteral("virtual \\S.* \\*?(\\w+)\\("));
        const QString header = source("network/vonetworkintf.h");
        const QString document = source("docs/desktop.md");
        QStringList declared;
        auto all = declaration.globalMatch(header);
        while (all.hasNext())
            declared.append(all.next().captured(1));
        declared.sort();
        QCOMPARE(declared, operations().keys());
        for (const QString &operation : declared)
            QVERIFY2(document.contains(QStringLiteral("`%1`").arg(operation)),
                     qPrintable(operation));
    }

    void aServiceThatAnotherWindowHasStartedIsUsed()
    {
        const Distrust distrust;
        openWindow();
        m_window->connectToService();
        TRY_VERIFY(page<StartPage>()->isVisible());
        QSettings().setValue(QStringLiteral("authority"), m_service.authority());
        m_window->findChild<QAbstractButton *>(QStringLiteral("startService"))->click();
        TRY_VERIFY(!page<StartPage>()->isVisible());
    }

    void withoutAServiceThereIsThePageThatStartsOne()
    {
        QCOMPARE(m_service.stop(SIGTERM), 0);
        type(sentence());
        click(QStringLiteral("speak"));
        TRY_VERIFY(notice<SpeakPage>().startsWith(QStringLiteral("cannot reach https://")));
        m_window->connectToService();
        auto *start = m_window->findChild<StartPage *>();
        TRY_VERIFY(start->isVisible());
        QTest::mouseClick(m_window->findChild<QAbstractButton *>(QStringLiteral("startService")),
                          Qt::LeftButton);
        TRY_VERIFY(!start->isVisible());
        QVERIFY(m_desk->catalogue()->voices());
    }

private:
    void openWindow()
    {
        m_window.reset();
        m_desk = std::make_unique<Desk>();
        m_window = std::make_unique<MainWindow>(m_desk.get());
        m_window->show();
    }

    void signInBySms(const QString &phone)
    {
        SignInSteps steps(&m_service);
        const QList<QLineEdit *> fields = page<AccountPage>()->findChildren<QLineEdit *>();
        QCOMPARE(fields.size(), 2);
        QTest::keyClicks(fields.at(0), phone);
        QTest::keyClick(fields.at(0), Qt::Key_Return);
        TRY_VERIFY(fields.at(1)->isEnabled());
        QTest::keyClicks(fields.at(1), steps.takeCode(phone));
        QTest::keyClick(fields.at(1), Qt::Key_Return);
        TRY_VERIFY(m_desk->isSignedIn());
    }

    void letTokenExpire() const
    {
        QJsonObject session = m_home.session();
        session.insert(QStringLiteral("tokenExpires"),
                       QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
        m_home.writeSession(session);
    }

    // The operations of the interface, with what the log of the local service has of each: the end
    // of the address and the feature.
    static const QMap<QString, QString> &operations()
    {
        static const QMap<QString, QString> operations{
            {QStringLiteral("GetOssSign"), QStringLiteral("upload/getsignsts -")},
            {QStringLiteral("ShortSTT"), QStringLiteral("asr/process inWord")},
            {QStringLiteral("CreateSTTTask"), QStringLiteral("asr/process recordingRecognition")},
            {QStringLiteral("GetSTTTaskResult"),
             QStringLiteral("asr/getProcessResult recordingRecognition")},
            {QStringLiteral("GetBgmList"), QStringLiteral("asr/getBackgroundMusic -")},
            {QStringLiteral("TTS"), QStringLiteral("asr/process voiceSynthesis")},
            {QStringLiteral("LongTTSTask"), QStringLiteral("asr/process longVoiceSynthesis")},
            {QStringLiteral("LongTTSStatus"),
             QStringLiteral("asr/getProcessResult longVoiceSynthesis")},
            {QStringLiteral("DownloadLongTTSRet"), QStringLiteral("storage/* -")},
            {QStringLiteral("GetDubList"), QStringLiteral("asr/getVoice -")},
            {QStringLiteral("GetUpdateInfo"), QStringLiteral("app/upgrade -")},
            {QStringLiteral("GetLoginQrCode"), QStringLiteral("login/getMpQrCode -")},
            {QStringLiteral("GetLoginQrCodeStatus"), QStringLiteral("login/getMpStatus -")},
            {QStringLiteral("SendSmsVerifyCode"), QStringLiteral("verify/sms -")},
            {QStringLiteral("SmsVerifyCodeLogin"), QStringLiteral("login/sms -")},
            {QStringLiteral("RefreshToken"), QStringLiteral("token/refresh -")},
        };
        return operations;
    }

    static QString source(const char *path)
    {
        return QString::fromUtf8(TestFolder::contents(
            QFINDTESTDATA(QStringLiteral("../../") + QString::fromLatin1(path))));
    }

    // What the service was asked for, as operations() has it.
    QSet<QString> operationsInTheLog() const
    {
        static const QRegularExpression line(
            QStringLiteral(" (?:GET|POST) \\S*/([^/ ]+/[^/ ]+) (\\S+) 200 0 "));
        QSet<QString> operations;
        auto lines = line.globalMatch(QString::fromUtf8(m_service.log()));
        while (lines.hasNext()) {
            const QRegularExpressionMatch match = lines.next();
            operations.insert(match.captured(1) + QLatin1Char(' ') + match.captured(2));
        }
        return operations;
    }

    template <typename P>
    P *page()
    {
        return m_window->findChild<P *>();
    }

    template <typename P>
    QString notice()
    {
        return Widgets::notice(page<P>());
    }

    QPlainTextEdit *editor()
    {
        return m_window->findChild<QPlainTextEdit *>(QStringLiteral("text"));
    }

    void type(const QString &text) { editor()->setPlainText(text); }

    void click(const QString &name)
    {
        m_window->showPage(Speak);
        QTest::mouseClick(m_window->findChild<QAbstractButton *>(name), Qt::LeftButton);
    }

    void drop(const QStringList &files)
    {
        QMimeData data;
        QList<QUrl> addresses;
        for (const QString &file : files)
            addresses.append(QUrl::fromLocalFile(file));
        data.setUrls(addresses);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_window.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_window.get(), &event);
    }

    QString recognised()
    {
        return page<RecognizePage>()->findChild<QPlainTextEdit *>()->toPlainText();
    }

    const Home m_home;
    const QTemporaryDir m_folder;
    LocalService m_service;
    std::unique_ptr<FailureReasons> m_reasons;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(TestWindow)
#include "tst_window.moc"
