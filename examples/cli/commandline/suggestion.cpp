#include "commandline/suggestion.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

// The number of letters to put in, take out, replace or exchange with the next one.
int slips(const QString &from, const QString &to)
{
    QVector<QVector<int>> distance(from.size() + 1, QVector<int>(to.size() + 1));
    std::iota(distance[0].begin(), distance[0].end(), 0);
    for (int i = 1; i <= from.size(); ++i) {
        distance[i][0] = i;
        for (int j = 1; j <= to.size(); ++j) {
            const int change = from.at(i - 1) == to.at(j - 1) ? 0 : 1;
            int &here = distance[i][j];
            here = std::min(
                {distance[i - 1][j] + 1, distance[i][j - 1] + 1, distance[i - 1][j - 1] + change});
            if (i > 1 && j > 1 && from.at(i - 1) == to.at(j - 2) && from.at(i - 2) == to.at(j - 1))
                here = std::min(here, distance[i - 2][j - 2] + 1);
        }
    }
    return distance.last().last();
}

constexpr int longestWord = 20; // letters; more is no slip

} // namespace

QString Suggestion::of(const QString &word, const QStringList &names, const QString &before)
{
    if (word.size() > longestWord)
        return {};
    const auto isBegun = [&word](const QString &name) {
        return word.size() > 1 && name.startsWith(word);
    };
    const auto cost = [&](const QString &name) { return isBegun(name) ? 1 : slips(word, name); };
    const auto nearest =
        std::min_element(names.begin(), names.end(),
                         [&](const QString &a, const QString &b) { return cost(a) < cost(b); });
    if (nearest == names.end() || cost(*nearest) > (word.size() < 5 ? 1 : 2))
        return {};
    return QStringLiteral("; did you mean %1%2?").arg(before, *nearest);
}
