#pragma once

#include <QtGlobal>

class QString;

/// The streams between the program and its user.
namespace Console {

/// To be called before anything is written. On Windows the streams and the console are not made for
/// UTF-8, line feeds and colours by themselves.
void setUpStreams();

/// Writes @p text to standard output, in UTF-8 whatever the locale is: it may well be kept in a
/// file. False when it did not get there.
bool print(const QString &text);

/// The line for the user after that.
QString printingFailed();

/// Writes @p text to standard error, in UTF-8 as well.
void show(const QString &text);

/// Asks the user for a line: writes @p question to standard error.
void ask(const QString &question);

/// Writes one line to standard error, in UTF-8 as well.
void complain(const QString &problem);

/// Whether @p character neither moves the cursor nor turns the direction of writing.
bool isPlain(uint character);

/// @p text with blanks in place of what is not plain.
QString onOneLine(const QString &text);

/// Keeps the log away from standard error except for warnings and worse; with @p verbose all of it
/// goes there. Either way the reasons of failures are read in it.
void setUpLog(bool verbose);

/// Nothing is logged from here on. When the application goes, threads of Qt's may still be at work
/// and complain that it is not there.
void endLog();

} // namespace Console
