// Takes pictures of vodesk: every page, in both languages, light and dark. The service is the local
// one, started as the tests do.

#include "audio/playerpanel.h"
#include "common/desk.h"
#include "gallery/catalogue.h"
#include "hostkit/cataloguejobs.h"
#include "hostkit/failurereasons.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"
#include "mainwindow.h"
#include "recognize/recognizepage.h"
#include "speak/speakpage.h"
#include "start/startpage.h"
#include "tests/support/patience.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "translations/translations.h"
#include "update/updatebanner.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QLoggingCategory>
#include <QPlainTextEdit>
#include <QSettings>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>

namespace {

QString sentence() { return QStringLiteral("Good morning, how are you today?"); }

QPalette dark()
{
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    QPalette palette(window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, QColor(80, 70, 30));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(70, 130, 200));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, Qt::gray);
    palette.setColor(QPalette::Link, QColor(110, 170, 240));
    return palette;
}

void waitFor(const char *what, const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, patienceMs))
        qFatal("it has not come: %s", what);
}

struct Look
{
    QString name;
    QLocale locale;
    QPalette palette;
};

class Photographer
{
public:
    Photographer(const QString &folder, const QString &look)
        : m_folder(folder)
        , m_look(look)
    {
    }

    void take(QWidget *window, const char *name) const
    {
        QCoreApplication::processEvents();
        const QString path =
            QStringLiteral("%1/%2-%3.png").arg(m_folder, QString::fromLatin1(name), m_look);
        if (!window->grab().save(path))
            qFatal("cannot write %s", qPrintable(path));
    }

private:
    QString m_folder;
    QString m_look;
};

void takeAll(const Photographer &photographer, LocalService *service)
{
    QSettings().clear();
    QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
    Desk desk;
    MainWindow window(&desk);
    window.resize(1024, 700);
    window.show();
    window.connectToService();
    auto *start = window.findChild<StartPage *>();
    waitFor("the start page", [&] { return start->isVisible(); });
    photographer.take(&window, "start");

    if (!service->start())
        qFatal("the local service cannot be started");
    Trust::add(service->authority());
    window.connectToService();
    auto *voices = window.findChild<QListView *>(QStringLiteral("voices"));
    waitFor("the voices", [&] { return voices->model()->rowCount() > 0; });
    window.showPage(2);
    voices->setCurrentIndex(voices->model()->index(1, 0));
    photographer.take(&window, "gallery");

    window.showPage(3);
    window.findChild<QAbstractButton *>(QStringLiteral("newCode"))->click();
    auto *code = window.findChild<QLabel *>(QStringLiteral("code"));
    waitFor("the code", [&] { return code->pixmap(Qt::ReturnByValue).width() > 0; });
    photographer.take(&window, "account");

    desk.kit()->tokens()->setToken(LocalService::token());
    window.showPage(0);
    auto *speak = window.findChild<SpeakPage *>();
    speak->findChild<QPlainTextEdit *>()->setPlainText(sentence());
    speak->findChild<QAbstractButton *>(QStringLiteral("speak"))->click();
    Player *player = speak->findChild<PlayerPanel *>()->player();
    waitFor("the speech", [&] { return player->position() > player->duration() / 3 + 1; });
    player->pause();
    photographer.take(&window, "speak");

    const QTemporaryDir folder;
    const QString recording = folder.filePath(QStringLiteral("morning.wav"));
    window.showPage(1);
    auto *recognize = window.findChild<RecognizePage *>();
    speak->save(recording);
    waitFor("the file", [&] { return QFileInfo::exists(recording); });
    recognize->add({recording, QStringLiteral("/home/rose/missing.wav"), recording});
    auto *text = recognize->findChild<QPlainTextEdit *>();
    waitFor("the text", [&] { return !text->toPlainText().isEmpty(); });
    photographer.take(&window, "recognise");

    window.showPage(4);
    window.findChild<UpdateBanner *>()->tell(
        {Update::State::NewerIsThere,
         QStringLiteral("1.1.1.26"),
         QStringLiteral("1.2.0.0"),
         {QStringLiteral("Speaks faster"), QStringLiteral("Recognises more")},
         QStringLiteral("https://speech.example/download")});
    photographer.take(&window, "happened");
    service->stop(SIGTERM);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        qFatal("usage: vodesk-pictures FOLDER");
    const Home home;
    qputenv("HOME", "/home/rose"); // a page names a folder in it
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
    QApplication::setApplicationName(QStringLiteral("vodesk"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const FailureReasons reasons;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const QPalette light = QApplication::palette();
    const QLocale english(QLocale::English);
    const QLocale chinese(QLocale::Chinese, QLocale::China);
    for (const Look &look : {Look{QStringLiteral("en-light"), english, light},
                             Look{QStringLiteral("en-dark"), english, dark()},
                             Look{QStringLiteral("zh-light"), chinese, light},
                             Look{QStringLiteral("zh-dark"), chinese, dark()}}) {
        QLocale::setDefault(look.locale);
        QApplication::setPalette(look.palette);
        Translations::install(look.locale);
        LocalService service;
        takeAll(Photographer(folder, look.name), &service);
    }
    return 0;
}
