#pragma once

#include "temporaryfolder.h"

#include <QCoreApplication>

/// The surroundings of code that uses Qt: an application object, a log that is dropped, a home
/// folder of its own, and no network, so that every request fails at once. One lives as long as the
/// program.
class QtHost
{
public:
    QtHost();

    /// The folder that is the home and the place of temporary files.
    const TemporaryFolder &folder() const { return m_folder; }

    /// Delivers the events that are posted, and destroys the objects that are to be deleted later.
    static void settle();

private:
    TemporaryFolder m_folder;
    int m_argumentCount = 1;
    char m_name[5] = "fuzz";
    char *m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application;
};
