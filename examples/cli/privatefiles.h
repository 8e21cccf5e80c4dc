#pragma once

class QString;

/// While this lives, what the process makes is for its user only, from the moment it is made.
class PrivateFiles
{
public:
    PrivateFiles();
    ~PrivateFiles();

    PrivateFiles(const PrivateFiles &) = delete;
    PrivateFiles &operator=(const PrivateFiles &) = delete;

    /// Makes the folder @p path when it is missing, and the user's own and nobody else's in any
    /// case. Why that is impossible; empty: it is done.
    static QString claimFolder(const QString &path);

private:
    unsigned m_before;
};
