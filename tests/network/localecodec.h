#pragma once

#include <QTextCodec>

/// Makes a codec the one of the locale while it lives.
class LocaleCodec
{
    Q_DISABLE_COPY(LocaleCodec)

public:
    explicit LocaleCodec(const char *name)
    {
        QTextCodec *codec = QTextCodec::codecForName(name);
        if (!codec)
            qFatal("there is no codec %s", name);
        QTextCodec::setCodecForLocale(codec);
    }
    ~LocaleCodec() { QTextCodec::setCodecForLocale(m_previous); }

private:
    QTextCodec *m_previous = QTextCodec::codecForLocale();
};
