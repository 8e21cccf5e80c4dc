#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Whole HTTP replies of a service that the test plays itself.
namespace Answers {

/// Success with @p data.
QByteArray envelope(const QJsonObject &data = {});

QByteArray refusal(int code, const char *message);

/// Success with the one text member @p name.
QByteArray one(const char *name, const char *value);

/// Upload credentials for the directory "uploads/x" at @p endpoint (null: /storage), with the token
/// "top secret".
QByteArray credentials(const QString &endpoint = {});

/// A task has been created.
QByteArray task();

/// The task has @p status; with no address or text, whatever it is.
QByteArray status(const char *status);

/// The synthesis has succeeded; its audio is at @p address (null: /storage/a.wav).
QByteArray finishedSpeech(const QString &address = {});

/// The recognition has succeeded, with two sentences: "one " and "two".
QByteArray finishedRecognition();

} // namespace Answers
