#include "localservice/speech/speechtext.h"

#include <QString>
#include <QVector>

#include <algorithm>
#include <array>
#include <utility>

namespace localservice {

namespace {

constexpr std::size_t longestPiece = 400;
constexpr std::size_t longestAbbreviation = 4; // without its dot

// The plain forms of characters that Unicode's compatibility decomposition leaves whole.
constexpr std::array<std::pair<char16_t, const char *>, 20> plainForms{{
    {u'‘', "'"},   {u'’', "'"},   {u'“', "\""}, {u'”', "\""}, {u'‐', "-"},
    {u'–', " - "}, {u'—', " - "}, {u'ß', "ss"}, {u'æ', "ae"}, {u'Æ', "Ae"},
    {u'œ', "oe"},  {u'Œ', "Oe"},  {u'ø', "o"},  {u'Ø', "O"},  {u'ł', "l"},
    {u'Ł', "L"},   {u'đ', "d"},   {u'Đ', "D"},  {u'þ', "th"}, {u'Þ', "Th"},
}};

bool isSpoken(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The plain form of a character of a text in compatibility decomposition. That of an accent, which
// follows its letter there, and of a soft hyphen is empty.
std::string plainForm(QChar character)
{
    for (const auto &[typographic, plain] : plainForms)
        if (character == QChar(typographic))
            return plain;
    if (character.isMark() || character.category() == QChar::Other_Format)
        return {};
    const char c = character.toLatin1();
    return std::string(1, c >= ' ' && c < 0x7f ? c : ' ');
}

// Whether the word before a dot ends in one within a sentence: "Dr.", "Prof.", initials, "e.g.".
bool isAbbreviation(const std::string &text, std::size_t dot)
{
    const std::size_t blank = text.rfind(' ', dot);
    const std::size_t begin = blank == std::string::npos ? 0 : blank + 1;
    const std::string word = text.substr(begin, dot - begin);
    const bool isCapitalised = !word.empty() && word[0] >= 'A' && word[0] <= 'Z';
    return word.size() <= 1 || word.find('.') != std::string::npos
           || (isCapitalised && word.size() <= longestAbbreviation);
}

bool endsSentence(const std::string &text, std::size_t at)
{
    if (at + 1 < text.size() && text[at + 1] != ' ')
        return false;
    return text[at] == '!' || text[at] == '?' || (text[at] == '.' && !isAbbreviation(text, at));
}

// The end of the piece that begins at @p begin: behind the sentence if that is short enough, else
// behind the last blank that is near enough, else as far as a piece may reach.
std::size_t endOfPiece(const std::string &text, std::size_t begin)
{
    std::size_t blank = 0;
    for (std::size_t i = begin; i < text.size() && i < begin + longestPiece; ++i) {
        if (endsSentence(text, i) || i + 1 == text.size())
            return i + 1;
        if (text[i] == ' ')
            blank = i + 1;
    }
    return blank > begin ? blank : begin + longestPiece;
}

} // namespace

std::size_t characterCount(const std::string &utf8)
{
    return static_cast<std::size_t>(QString::fromStdString(utf8).toUcs4().size());
}

std::string speakableText(const std::string &utf8)
{
    std::string text;
    const QString plain = QString::fromStdString(utf8).normalized(QString::NormalizationForm_KD);
    for (const QChar c : plain)
        text += plainForm(c);
    return std::any_of(text.begin(), text.end(), isSpoken) ? text : std::string();
}

std::vector<std::string> speakablePieces(const std::string &text)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = endOfPiece(text, begin);
        const std::string piece = text.substr(begin, end - begin);
        if (std::any_of(piece.begin(), piece.end(), isSpoken))
            pieces.push_back(piece);
        begin = end;
    }
    return pieces;
}

} // namespace localservice
