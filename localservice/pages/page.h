#pragma once

#include "localservice/pages/language.h"

#include <QString>

#include <map>
#include <string>

namespace localservice {

/// A page as a browser gets it.
struct Page
{
    int status = 200;                           ///< Of HTTP.
    std::string html;                           ///< In UTF-8.
    std::map<std::string, std::string> headers; ///< Besides its type.
};

/// What differs from page to page.
struct PageContents
{
    QString title;
    QString html;       ///< Below the title.
    QString head = {};  ///< Goes into the head.
    QString style = {}; ///< Goes after the style that all pages have.
};

/// Lays a page out. Its headers keep a browser from running scripts in it, loading anything from
/// elsewhere, sending its address elsewhere and showing it in a frame.
Page makePage(Language language, const PageContents &contents, int status = 200);

/// The icon of all pages, as an SVG file, and where it is.
inline constexpr const char *iconPath = "/icon.svg";
std::string icon();

} // namespace localservice
