#pragma once

#include "commands/command.h"

#include <QStringList>
#include <QTemporaryDir>

/// Recognises recordings, one after the other.
class Recognize : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognize)

public:
    using Command::Command;

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

private:
    void record();
    void recognizeNext();
    void recognize(const QString &recording);
    void onText(const QString &text);
    QString fromStandardInput();
    void failFor(const QString &problem);

    int m_place = 0;        ///< Of the recording that is recognised now.
    QTemporaryDir m_folder; ///< Has what is recorded, read or converted.
};
