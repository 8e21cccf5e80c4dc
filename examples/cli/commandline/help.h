#pragma once

#include <QString>

/// What the program tells of itself, made from the tables. Each page fits a terminal of 24 rows and
/// 80 columns.
namespace Help {

/// About the program when @p subject is empty, about a command, or about the options that go with
/// every command ("options"). Empty: there is no such subject.
QString about(const QString &subject);

/// What is to know of the common options, in lines of 80 columns at most.
QString aboutOptions();

} // namespace Help
