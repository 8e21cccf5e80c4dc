#include "http/httpcallbackforms.h"

#include "http/ofthisthread.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

// Hosts bind the same few texts over and over: each thread keeps what it has made of them.
QString HttpCallbackForms::slotKey(const char *slot)
{
    constexpr std::size_t mostEntries = 1024;
    auto &keys = ofThisThread<std::map<std::string, QString, std::less<>>>();
    if (!slot)
        return QString();
    const auto known = keys.find(std::string_view(slot));
    if (known != keys.end())
        return known->second;
    if (keys.size() >= mostEntries)
        keys.clear();
    return keys.emplace(slot, QString::fromLatin1(slot)).first->second;
}
