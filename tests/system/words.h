#pragma once

#include <QString>

/// @p text in small letters without punctuation, one blank between words: what a recogniser can
/// be expected to give back.
QString words(const QString &text);
