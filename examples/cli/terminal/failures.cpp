#include "terminal/failures.h"

#include "terminal/console.h"

#include <QJsonObject>

namespace {

void write(const QString &kind, const QString &message, ExitStatus status, int code)
{
    QJsonObject error{{QStringLiteral("kind"), kind},
                      {QStringLiteral("message"), message},
                      {QStringLiteral("status"), int(status)}};
    if (code != 0)
        error.insert(QStringLiteral("code"), code);
    Console::show(Console::line({{QStringLiteral("error"), error}}));
}

} // namespace

void Failures::tell(const QString &problem, ExitStatus status, bool json)
{
    if (json)
        write(status == WrongUse ? QStringLiteral("use") : QStringLiteral("file"), problem, status,
              0);
    else
        Console::complain(problem);
}

void Failures::tell(const Reason &reason, bool json)
{
    if (json)
        write(QLatin1String(nameOf(reason.kind)), reason.line(), exitStatus(reason.kind),
              reason.code);
    else
        Console::complain(reason.line());
}
