#pragma once

#include <QByteArray>
#include <QString>

/// A small disk in the folder @p path, seen by this thread, and by those and by the processes that
/// it starts from now on. It goes with this.
class SmallDisk
{
    Q_DISABLE_COPY(SmallDisk)

public:
    explicit SmallDisk(const QString &path);
    ~SmallDisk();

    /// False: this user may not mount anything.
    bool isThere() const;

    /// Writes until no more than @p room bytes can be written.
    void fill(int room = 0) const;

    /// Takes back what fill() wrote.
    void empty() const;

private:
    QString filler() const;

    QByteArray m_path;
    bool m_isThere;
};
