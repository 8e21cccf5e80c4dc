#pragma once

#include <QByteArray>
#include <QList>

/// One piece of input that is kept in a file, with what is known of it.
struct CorpusCase
{
    QByteArray kind; ///< Empty where the file says none.
    QByteArray name;
    QByteArray bytes;
};

/// The cases of the file @p name in tests/corpora, which says itself what its columns are.
/// Ends the program when the file is not as it should be.
QList<CorpusCase> readCorpus(const QByteArray &name);
