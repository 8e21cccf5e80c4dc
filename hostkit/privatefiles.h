#pragma once

#include <QCoreApplication>
#include <QString>

/// Makes the files that the process makes while this lives readable by its user only.
class PrivateFiles
{
    Q_DECLARE_TR_FUNCTIONS(PrivateFiles)

public:
    PrivateFiles();
    ~PrivateFiles();

    PrivateFiles(const PrivateFiles &) = delete;
    PrivateFiles &operator=(const PrivateFiles &) = delete;

    /// Makes the folder @p path if it is missing, and lets nobody but the user into it. Returns why
    /// that is impossible; empty: it is done.
    static QString claimFolder(const QString &path);

private:
    unsigned m_before; ///< The mask of permissions that is put back.
};
