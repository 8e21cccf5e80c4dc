#pragma once

#include "temporaryfolder.h"

#include <QCoreApplication>

/// What a part that uses Qt needs around it: an application, a log that nobody reads, a home of
/// its own, and no network: every request fails at once. One, for as long as the program runs.
class QtHost
{
public:
    QtHost();

    /// Where the home and the temporary files are.
    const TemporaryFolder &folder() const { return m_folder; }

    /// Delivers what was posted, and deletes what was to be deleted later.
    static void settle();

private:
    TemporaryFolder m_folder;
    int m_argumentCount = 1;
    char m_name[5] = "fuzz";
    char *m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application;
};
