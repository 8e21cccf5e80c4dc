#include "localservice/pages/language.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace localservice {

namespace {

// All of "zh" is Chinese, also "zh-TW" and "zh-Hant": whoever reads traditional characters has the
// choice of simplified ones and English.
std::optional<Language> languageOf(const QString &range)
{
    const QString language = range.section(QLatin1Char('-'), 0, 0).trimmed().toLower();
    if (language == QLatin1String("en"))
        return Language::English;
    if (language == QLatin1String("zh"))
        return Language::Chinese;
    return std::nullopt;
}

// Of a range's parameters, "q=0.5" or nothing; 0 for what is not understood.
double qualityOf(const QString &parameters)
{
    const QString text = parameters.trimmed();
    if (text.isEmpty())
        return 1;
    return text.startsWith(QLatin1String("q="), Qt::CaseInsensitive) ? text.midRef(2).toDouble()
                                                                     : 0;
}

} // namespace

Language preferredLanguage(const std::string &acceptLanguage)
{
    Language best = Language::English;
    double bestQuality = 0;
    const QStringList ranges = QString::fromStdString(acceptLanguage).split(QLatin1Char(','));
    for (const QString &range : ranges) {
        const auto language = languageOf(range.section(QLatin1Char(';'), 0, 0));
        const double quality = qualityOf(range.section(QLatin1Char(';'), 1));
        if (language && quality > bestQuality) {
            best = *language;
            bestQuality = quality;
        }
    }
    return best;
}

} // namespace localservice
