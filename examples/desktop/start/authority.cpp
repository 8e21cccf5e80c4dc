#include "start/authority.h"

#include "hostkit/trust.h"

#include <QFileInfo>
#include <QSettings>

namespace {

QString key() { return QStringLiteral("authority"); }

} // namespace

QString Authority::trust(const QString &path)
{
    QString problem = Trust::add(path);
    if (problem.isEmpty())
        QSettings().setValue(key(), path);
    return problem;
}

void Authority::trustLast()
{
    const QString last = QSettings().value(key()).toString();
    if (QFileInfo::exists(last))
        Trust::add(last);
}
