#pragma once

#include "network/vonetworkintf.h"

// Records as texts, to compare them whole: their fields in their order, "(a, b, c)". Texts are in
// quotation marks; dates in ISO form, with a Z unless they are in local time, or "invalid".

QString inBrackets(const QStringList &fields);
QString written(const QString &value);
QString written(const QDateTime &value);
QString written(const OSS_SIGN_INFO &record);
QString written(const TTSParams &record);
QString written(const LoginQrCode &record);
QString written(const UserInfo &record);
QString written(const DubInfo &record);
QString written(const BgmInfo &record);
QString written(const UpdateInfo &record);

/// A record behind a pointer, or "null".
template <typename Record>
QString written(const Record *record)
{
    return record ? written(*record) : QStringLiteral("null");
}

/// The records of a list, "[(a), (b)]".
template <typename Record>
QString written(const QList<Record *> &records)
{
    QStringList texts;
    for (const Record *record : records)
        texts.append(written(record));
    return QLatin1Char('[') + texts.join(QStringLiteral(", ")) + QLatin1Char(']');
}
