#pragma once

#include "options.h"

#include <QCommandLineParser>
#include <QStringList>

/// Reads the command line.
class CommandLine
{
public:
    explicit CommandLine(const QStringList &arguments);

    /// Why the command line cannot be carried out; empty: it can.
    QString problem() const;

    /// What a request for help or for the version gets; empty: neither was asked for.
    QString information() const;

    /// Complete when there is neither a problem nor information.
    const Options &options() const;

private:
    void declare();
    void read(const QStringList &arguments);
    bool readCommand();
    void readSubject(const QString &subject);
    void refuseStrayOptions();
    void readSpeech();
    void readDownload();
    void readLogin();
    void readToken();
    void readSampleRate();
    void complain(const QString &problem);

    QCommandLineParser m_parser;
    QString m_problem;
    QString m_information;
    Options m_options;
};
