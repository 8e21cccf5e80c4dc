#include "audio/tool.h"

#include <QStandardPaths>

std::optional<Tool> Tool::find(const QVector<Tool> &tools)
{
    for (const Tool &tool : tools) {
        if (!QStandardPaths::findExecutable(tool.name).isEmpty())
            return tool;
    }
    return {};
}

QString Tool::names(const QVector<Tool> &tools)
{
    QStringList names;
    for (const Tool &tool : tools)
        names.append(QStringLiteral("%1 (%2)").arg(tool.name, tool.package));
    return names.join(QLatin1String(", "));
}
