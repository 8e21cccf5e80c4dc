#include "terminal/failures.h"

#include "terminal/console.h"

#include <QJsonObject>

namespace {

void write(const QString &kind, const QString &message, ExitStatus status, int code = 0,
           const QString &file = {})
{
    QJsonObject error{{QStringLiteral("kind"), kind},
                      {QStringLiteral("message"), message},
                      {QStringLiteral("status"), int(status)}};
    if (code != 0)
        error.insert(QStringLiteral("code"), code);
    if (!file.isEmpty())
        error.insert(QStringLiteral("file"), file);
    Console::show(Console::line({{QStringLiteral("error"), error}}));
}

} // namespace

void Failures::tell(const QString &problem, ExitStatus status, bool json)
{
    if (json)
        write(status == WrongUse ? QStringLiteral("use") : QStringLiteral("file"), problem, status);
    else
        Console::complain(problem);
}

void Failures::tell(const Reason &reason, bool json, const QString &file)
{
    if (json)
        write(QLatin1String(nameOf(reason.kind)), reason.line(), exitStatus(reason.kind),
              reason.code, file);
    else if (file.isEmpty())
        Console::complain(reason.line());
    else
        Console::complain(QStringLiteral("%1: %2").arg(file, reason.line()));
}
