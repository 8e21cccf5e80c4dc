#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// A program of others that does something with sound.
struct Tool
{
    QString name;
    QString package; ///< Of Debian.
    QStringList arguments;

    /// The first of @p tools that is installed.
    static std::optional<Tool> find(const QVector<Tool> &tools);

    /// The names of @p tools with their packages, for the user.
    static QString names(const QVector<Tool> &tools);
};
