#include "recognize/keptrows.h"

#include "hostkit/privatefiles.h"
#include "hostkit/wholefile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QUuid>

namespace {

QString pathKey() { return QStringLiteral("recording"); }
QString doneKey() { return QStringLiteral("done"); }
QString textKey() { return QStringLiteral("text"); }
QString reasonKey() { return QStringLiteral("reason"); }

QDir folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
           + QStringLiteral("/queue");
}

} // namespace

// The names are in the order of time.
QString KeptRows::newName()
{
    return QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddhhmmsszzz-"))
           + QUuid::createUuid().toString(QUuid::Id128) + QStringLiteral(".json");
}

QVector<KeptRow> KeptRows::load()
{
    QVector<KeptRow> rows;
    const QStringList names =
        folder().entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(folder().filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject row = QJsonDocument::fromJson(file.readAll()).object();
        if (const QString path = row.value(pathKey()).toString(); !path.isEmpty())
            rows.append({name, path, row.value(doneKey()).toBool(), row.value(textKey()).toString(),
                         row.value(reasonKey()).toString()});
    }
    return rows;
}

QString KeptRows::keep(const KeptRow &row)
{
    if (QString problem = PrivateFiles::claimFolder(folder().path()); !problem.isEmpty())
        return problem;
    const QJsonObject object{{pathKey(), row.path},
                             {doneKey(), row.isDone},
                             {textKey(), row.text},
                             {reasonKey(), row.reason}};
    return WholeFile::write(folder().filePath(row.name), QJsonDocument(object).toJson(),
                            QFile::ReadOwner | QFile::WriteOwner);
}

void KeptRows::forget(const QString &name) { QFile::remove(folder().filePath(name)); }
