#include "words.h"

#include <QRegularExpression>

QString words(const QString &text)
{
    static const QRegularExpression noWord(QStringLiteral("[^a-z']+"));
    return text.toLower().replace(noWord, QStringLiteral(" ")).trimmed();
}
