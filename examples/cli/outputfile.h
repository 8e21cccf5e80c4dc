#pragma once

#include <QString>

#include <functional>

class QByteArray;

/// The file that the user asked for. It appears whole or not at all, and replaces an older
/// one only then.
class OutputFile
{
public:
    explicit OutputFile(const QString &path);

    /// Why the file could not be written, as far as can be told beforehand; empty: it could. Leaves
    /// no trace.
    QString problem() const;

    /// Writes @p bytes. Why that failed; empty: it is done.
    QString write(const QByteArray &bytes) const;

    /// Where an unfinished output can be kept: beside the file, links followed.
    QString partPath() const;

    /// Why no output can be kept there or, with @p resume, what is there cannot be gone on with, as
    /// far as can be told beforehand; empty: it can.
    QString partProblem(bool resume) const;

    /// Takes the file @p path, in the same folder, for the output. False when that failed.
    bool replaceBy(const QString &path) const;

    /// Calls @p fetch with the path of a file to be made in the same folder; that file becomes the
    /// output when @p fetch returns true, and is gone otherwise. False when there is no output.
    bool take(const std::function<bool(const QString &path)> &fetch) const;

private:
    QString m_path;
};
