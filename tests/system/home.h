#pragma once

#include <QFile>
#include <QJsonObject>
#include <QString>
#include <QTemporaryDir>

/// The home of a user of its own: this program, and those that are started from now on, keep their
/// settings, data and temporary files there.
class Home
{
    Q_DISABLE_COPY(Home)

public:
    Home();
    ~Home();

    QString path() const;

    /// The folder of vospeak's settings, and the session in it.
    QString settings() const;
    QString sessionFile() const;

    /// What the session file holds.
    QJsonObject session() const;
    void writeSession(const QJsonObject &session) const;

    /// The picture of a code to sign in with, and its folder.
    QString pictureFolder() const;
    QString picture() const;

private:
    const QTemporaryDir m_folder;
    const QByteArray m_before; ///< The user's own home.
};
