#pragma once

#include <QtGlobal>

class QByteArray;
class QJsonObject;
class QString;

/// The streams between the program and its user.
namespace Console {

/// Prepares the streams: on Windows for UTF-8, line feeds and colours, elsewhere so that print()
/// comes back when nobody reads any more. To be called before anything is written.
void setUpStreams();

/// Writes @p text to standard output, in UTF-8 whatever the locale is, since files are made of it.
/// False when not all of it could be written.
bool print(const QString &text);

/// The same of bytes that are no text.
bool printBytes(const QByteArray &bytes);

/// Whether print() has failed because nobody reads standard output any more.
bool hasLostReader();

/// @p document as a line in which every character that a terminal might obey is escaped.
QString line(const QJsonObject &document);

/// The line for the user when print() has failed.
QString printingFailed();

/// Writes @p text to standard error, in UTF-8.
void show(const QString &text);

/// Asks the user for a line: writes @p question to standard error.
void ask(const QString &question);

/// Writes @p problem to standard error as one line with the program's name, in UTF-8.
void complain(const QString &problem);

/// Whether @p character neither moves the cursor nor turns the direction of writing.
bool isPlain(uint character);

/// @p text with a blank in place of each character that is not plain.
QString onOneLine(const QString &text);

/// Lets warnings and worse of the log go to standard error; with @p verbose all of it.
void setUpLog(bool verbose);

/// Ends the log. Threads of Qt may be at work when the application object goes, and would complain
/// of that.
void endLog();

} // namespace Console
