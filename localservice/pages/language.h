#pragma once

#include <string>

namespace localservice {

/// The languages that pages are in.
enum class Language {
    English,
    Chinese, ///< Simplified.
};

/// The language that the reader of a page likes best, by the Accept-Language of the request;
/// English if there is none of the two in it.
Language preferredLanguage(const std::string &acceptLanguage);

/// A text of a page in each language, in HTML and UTF-8.
struct Text
{
    const char *english;
    const char *chinese;

    const char *in(Language language) const
    {
        return language == Language::Chinese ? chinese : english;
    }
};

} // namespace localservice
