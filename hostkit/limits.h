#pragma once

#include <QtGlobal>

/// What the service takes at most. The jobs check it before anything is sent.
namespace Limits {

constexpr int anonymousText = 300; ///< Characters (code points) of a text without a token.
constexpr int shortText = 1000;    ///< Characters of a text that is spoken in one answer.
constexpr int longText = 20000;    ///< Characters of a text that is spoken as a task.

constexpr int shortRecording = 60;  ///< Seconds of a recording that is recognised in one answer.
constexpr int longRecording = 3600; ///< Seconds of a recording that is recognised as a task.

constexpr qint64 recordingSize = 67108864; ///< Bytes of a recording to be uploaded: 64 MiB.

} // namespace Limits
