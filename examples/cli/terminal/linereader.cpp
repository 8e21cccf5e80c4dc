#include "terminal/linereader.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>

#include <iostream>
#include <string>
#include <thread>

// A thread reads, because an event loop cannot watch a console of Windows.
void LineReader::start()
{
    const QPointer<LineReader> self(this);
    std::thread([self] {
        std::string line;
        std::getline(std::cin, line);
        QMetaObject::invokeMethod(
            qApp,
            [self, line] {
                if (self)
                    Q_EMIT self->read(QString::fromLocal8Bit(line.c_str()).trimmed());
            },
            Qt::QueuedConnection);
    }).detach();
}
