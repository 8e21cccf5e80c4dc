#include "http/httpclient.h"
#include "http/httprequest.h"

#include <QCoreApplication>
#include <QDebug>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv); // the argument: an address
    HttpClient client;
    HttpRequest(HttpMethod::Get, &client)
        .url(application.arguments().value(1))
        .timeout(5000)
        .onFinished([](const QByteArray &body) {
            qInfo().noquote() << body;
            QCoreApplication::exit(0);
        })
        .onError([](const QByteArray &text) {
            qWarning().noquote() << text;
            QCoreApplication::exit(1);
        })
        .send();
    return QCoreApplication::exec();
}
