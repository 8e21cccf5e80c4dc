#include "common/desk.h"
#include "hostkit/failurereasons.h"
#include "hostkit/proxies.h"
#include "hostkit/trust.h"
#include "mainwindow.h"
#include "network/vonetwork.h"
#include "start/authority.h"
#include "translations/translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLoggingCategory>

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
    QApplication::setApplicationName(QStringLiteral("vodesk"));
    QApplication::setDesktopFileName(QStringLiteral("vodesk"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("vodesk")));
    QApplication::setApplicationVersion(VoNetwork::GetAppVersion());
    Translations::install(QLocale());

    QCommandLineParser parser;
    const QCommandLineOption authority(
        QStringLiteral("ca"), QCoreApplication::translate("main", "Trust this authority as well."),
        QCoreApplication::translate("main", "FILE"));
    parser.addOption(authority);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // it has tokens
    const FailureReasons reasons;
    Authority::trustLast();
    const QString named = parser.value(authority);
    for (const QString &problem : {named.isEmpty() ? QString() : Trust::add(named),
                                   Proxies::use({}, HostKit::serviceAddress())}) {
        if (!problem.isEmpty())
            qWarning("vodesk: %s", qPrintable(problem));
    }
    Desk desk;
    MainWindow window(&desk);
    window.show();
    window.connectToService();
    return QApplication::exec();
}
