#include "hostkit/reason.h"

#include <QHash>

namespace {

QHash<int, QString> &hints()
{
    static QHash<int, QString> byKind;
    return byKind;
}

} // namespace

QString Reason::line() const
{
    const QHash<int, QString> &given = hints();
    return text + given.value(int(kind));
}

void Reason::setHint(Kind kind, const QString &hint) { hints().insert(int(kind), hint); }
