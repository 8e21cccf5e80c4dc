#pragma once

#include "commandline/options.h"

#include <QCommandLineParser>
#include <QStringList>

struct OptionRow;

/// Reads the command line, by the tables of commands and options.
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
    void read();
    void readHelp(const QString &subject);
    void readCommand();
    void readOptions();
    void readOption(const OptionRow &row);
    void complain(const QString &problem);

    QCommandLineParser m_parser;
    QString m_problem;
    QString m_information;
    Options m_options;
};
