#pragma once

#include "commands/command.h"

#include <QStringList>
#include <QTemporaryDir>

/// Recognises recordings, one after the other. Of several, one that fails is told, and the others
/// are recognised all the same.
class Recognize : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognize)

public:
    using Command::Command;

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

protected:
    void fail(const Reason &reason) override;

private:
    void record();
    void recognizeNext();
    void recognize(const QString &recording);
    void onText(const QString &text);
    void goOn();
    QString fromStandardInput();
    void failFor(const QString &problem);
    bool isLast() const;

    int m_place = 0;        ///< Of the recording that is recognised now.
    int m_status = Success; ///< That of the first one that has failed.
    QTemporaryDir m_folder; ///< Has what is recorded, read or converted.
};
