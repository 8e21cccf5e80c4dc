#pragma once

#include <QDebug>
#include <QLocale>
#include <QString>

/// UTF-8 source text as a QString: "é"_s.
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

/// @p text as the debug stream writes a QString.
inline QString quoted(const QString &text)
{
    QString line;
    QDebug(&line).nospace() << text;
    return line;
}

/// The language that Qt asks for: the system's, which is not everywhere told by the environment.
inline QByteArray acceptLanguage()
{
    const QByteArray name = QLocale::system().name().toLatin1().replace('_', '-');
    if (name == "C")
        return "en,*";
    return name + (name.startsWith("en-") ? ",*" : ",en,*");
}
