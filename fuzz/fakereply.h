#pragma once

#include "input.h"

#include <QNetworkReply>

/// A reply that was never on a network.
class FakeReply : public QNetworkReply
{
public:
    /// Takes its headers from lines "name: value" up to an empty one. A header that comes again is
    /// joined with the first as Qt does it.
    void readHeaders(Input *input)
    {
        while (!input->isAtEnd()) {
            const QByteArray line = QByteArray::fromStdString(input->line());
            if (line.isEmpty())
                return;
            const int colon = qMax(0, line.indexOf(':'));
            joinHeader(line.left(colon).trimmed(), line.mid(colon + 1).trimmed());
        }
    }

    void abort() override {}

protected:
    qint64 readData(char *, qint64) override { return -1; }

private:
    void joinHeader(const QByteArray &name, const QByteArray &value)
    {
        QByteArray joined =
            name.compare("location", Qt::CaseInsensitive) == 0 ? QByteArray() : rawHeader(name);
        if (!joined.isEmpty())
            joined += name.compare("set-cookie", Qt::CaseInsensitive) == 0 ? "\n" : ", ";
        setRawHeader(name, joined + value);
    }
};
