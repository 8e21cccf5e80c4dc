#include "tests/network/records.h"

namespace {

QString written(qint64 value) { return QString::number(value); }

QString written(bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }

} // namespace

QString inBrackets(const QStringList &fields)
{
    return QLatin1Char('(') + fields.join(QStringLiteral(", ")) + QLatin1Char(')');
}

QString written(const QString &value) { return QStringLiteral("\"%1\"").arg(value); }

QString written(const QDateTime &value)
{
    return value.isValid() ? value.toString(Qt::ISODate) : QStringLiteral("invalid");
}

QString written(const OSS_SIGN_INFO &record)
{
    return inBrackets({written(record.AccessKeyId), written(record.AccessKeySecret),
                       written(record.endpoint), written(record.bucketName), written(record.dir),
                       written(record.SecurityToken), written(record.bucketRegion)});
}

QString written(const TTSParams &record)
{
    return inBrackets({written(record.text), written(record.format),
                       written(qint64(record.sample_rate)), written(record.voice),
                       written(qint64(record.volume)), written(qint64(record.speech_rate)),
                       written(qint64(record.pitch_rate)), written(record.pageFeature)});
}

QString written(const LoginQrCode &record)
{
    return inBrackets(
        {written(record.qrImagePath), written(record.expire_time), written(record.business_code)});
}

QString written(const UserInfo &record)
{
    return inBrackets({written(record.user_id), written(record.nickname),
                       written(record.header_url), written(record.token),
                       written(record.refresh_token), written(record.token_expire_time),
                       written(record.refresh_expire_time)});
}

QString written(const DubInfo &record)
{
    return inBrackets({written(record.name), written(record.voiceParam), written(record.type),
                       written(qint64(record.dubType)), written(record.category),
                       written(record.avatar), written(record.scene), written(record.audition_url),
                       written(record.supportTTS), written(record.supportLongTTS)});
}

QString written(const BgmInfo &record)
{
    return inBrackets({written(record.name), written(record.url)});
}

QString written(const UpdateInfo &record)
{
    return inBrackets({written(qint64(record.upgradeStatus)), written(record.currentVersion),
                       written(record.version_code), written(record.external_update_log),
                       written(record.url)});
}
