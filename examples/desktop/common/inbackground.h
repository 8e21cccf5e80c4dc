#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QtConcurrent>

/// Runs @p work in another thread, then @p done with its result in this one, unless @p context has
/// gone meanwhile. @p work must not touch what others use.
template <typename Work, typename Done>
void inBackground(QObject *context, Work work, Done done)
{
    using Result = decltype(work());
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, done] {
        watcher->deleteLater();
        done(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(work));
}
