#pragma once

#include <QCoreApplication>
#include <QString>

#include <functional>

class QByteArray;

/// The file that the user asked for. It appears whole or not at all; an older one stays until then.
class OutputFile
{
    Q_DECLARE_TR_FUNCTIONS(OutputFile)

public:
    /// The file @p path; where that is a link, the file to which it leads.
    explicit OutputFile(const QString &path);

    /// Why the file cannot be written, as far as that shows without writing it; empty: it can.
    QString problem() const;

    /// Writes @p bytes. Returns why that failed; empty: it is done.
    QString write(const QByteArray &bytes) const;

    /// The path of the part, which keeps an unfinished output: beside the file, links followed.
    QString partPath() const;

    /// Why the part cannot be written or, with @p resume, cannot be continued, as far as that shows
    /// without writing it; empty: it can.
    QString partProblem(bool resume) const;

    /// Renames the file @p path, on the same disk, to the output. False when that failed.
    bool replaceBy(const QString &path) const;

    /// Calls @p fetch with the path of a file to be made. That file becomes the output when
    /// @p fetch returns true, and is removed otherwise. False when there is no output.
    bool take(const std::function<bool(const QString &path)> &fetch) const;

private:
    QString m_path;
};
