#pragma once

#include <QByteArray>
#include <QList>

/// One input for tests that is kept in a file.
struct CorpusCase
{
    QByteArray kind; ///< What the input is expected to be; empty where the file has no kinds.
    QByteArray name;
    QByteArray bytes;
};

/// The cases of the file @p name in tests/corpora, whose head says what its columns are. Ends the
/// program when a line of the file is malformed.
QList<CorpusCase> readCorpus(const QByteArray &name);
