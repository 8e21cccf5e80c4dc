#include "tests/support/corpus.h"

#include <QFile>

namespace {

// The bytes that a code of the file stands for: "0D0A" for two, "20*100" for a hundred.
QByteArray spelled(const QByteArray &code)
{
    const QList<QByteArray> parts = code.split('*');
    const QByteArray bytes = QByteArray::fromHex(parts.first());
    return parts.size() > 1 ? bytes.repeated(parts.last().toInt()) : bytes;
}

QByteArray decoded(const QByteArray &text)
{
    QByteArray bytes;
    const QList<QByteArray> pieces = text.split('<');
    bytes += pieces.first();
    for (int i = 1; i < pieces.size(); ++i) {
        const int end = pieces.at(i).indexOf('>');
        if (end < 0)
            qFatal("a code without an end: %s", text.constData());
        bytes += spelled(pieces.at(i).left(end)) + pieces.at(i).mid(end + 1);
    }
    return bytes;
}

} // namespace

QList<CorpusCase> readCorpus(const QByteArray &name)
{
    QFile file(QFile::decodeName(CORPORA_FOLDER "/" + name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    QList<CorpusCase> cases;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        QList<QByteArray> columns = line.split('\t');
        if (columns.size() < 3)
            columns.prepend({});
        if (columns.size() != 3)
            qFatal("not as many columns as there should be: %s", line.constData());
        cases.append({columns.at(0), columns.at(1), decoded(columns.at(2))});
    }
    return cases;
}
