#include "home.h"

#include <QDir>
#include <QJsonDocument>

Home::Home()
    : m_before(qgetenv("HOME"))
{
    qputenv("HOME", m_folder.path().toUtf8());
    qputenv("XDG_DATA_HOME", m_folder.filePath(QStringLiteral("data")).toUtf8());
    QDir(m_folder.path()).mkdir(QStringLiteral("tmp"));
    qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
    qputenv("TMPDIR", m_folder.filePath(QStringLiteral("tmp")).toUtf8());
}

Home::~Home()
{
    qputenv("HOME", m_before);
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_CONFIG_HOME");
    qunsetenv("TMPDIR");
}

QString Home::path() const { return m_folder.path(); }

QString Home::settings() const { return m_folder.filePath(QStringLiteral("config/vospeak")); }

QString Home::sessionFile() const { return settings() + QStringLiteral("/session.json"); }

QJsonObject Home::session() const
{
    QFile file(sessionFile());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

void Home::writeSession(const QJsonObject &session) const
{
    QDir().mkpath(settings());
    QFile file(sessionFile());
    if (file.open(QIODevice::WriteOnly))
        file.write(QJsonDocument(session).toJson());
}

QString Home::pictureFolder() const { return m_folder.filePath(QStringLiteral("tmp/VoTTS")); }

QString Home::picture() const { return pictureFolder() + QStringLiteral("/login_qr_code.png"); }
