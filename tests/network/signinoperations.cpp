#include "tests/network/operation.h"
#include "tests/network/text.h"

#include <QDateTime>

namespace {

const QByteArray smsBody = R"({
    "phone": "13800138000",
    "scene": 1
}
)";

const QByteArray loginBody = R"({
    "phone": "13800138000",
    "verify": "004711"
}
)";

const QString phone = QStringLiteral("13800138000");

QString pictureFetch(const char *address)
{
    return R"(VoNetworker::DownloadLoginQrCode qrUrl= "%1" )"
           R"(,saveDir= "<temporary>/VoTTS//login_qr_code.png")"_s.arg(QLatin1String(address));
}

} // namespace

Operation Operations::getLoginQrCode()
{
    Operation operation;
    operation.name = "GetLoginQrCode"_s;
    operation.call = [](VoNetworkIntf *service) { service->GetLoginQrCode(); };
    operation.request = get("/ucenter/public/index.php/v1/login/getMpQrCode");
    operation.successSlot = "slotGetLoginQrCodeSuc"_s;
    operation.failureSlot = "slotGetLoginQrCodeFail"_s;
    operation.refusal = "[error]slotGetLoginQrCodeSuc failed:retCode= %1 ,msg= %2"_s;
    // An address that holds its own content, so that nothing else needs to be asked.
    operation.data = R"({"url":"data:,picture","expire_time":1893456000,"business_code":"b1"})";
    operation.answer = R"(signalGetLoginQrCodeEnd("<temporary>/VoTTS//login_qr_code.png", )"
                       R"(2030-01-01T05:30:00, "b1"))"_s;
    operation.dataLog = QStringList{pictureFetch("data:,picture")};
    operation.emptyAnswers =
        QStringList{"signalGetLoginQrCodeEnd(null)"_s,
                    R"(signalGetLoginQrCodeEnd("<temporary>/VoTTS//login_qr_code.png", )"
                    R"(1970-01-01T05:30:00, ""))"_s};
    operation.emptyLog = QStringList{
        pictureFetch(""), "[error] VoNetworker::DownloadLoginQrCode ProtocolUnknownError"_s};
    operation.failure = operation.networkFailure = "signalGetLoginQrCodeEnd(null)"_s;
    return operation;
}

Operation Operations::getLoginQrCodeStatus()
{
    Operation operation;
    operation.name = "GetLoginQrCodeStatus"_s;
    operation.call = [](VoNetworkIntf *service) { service->GetLoginQrCodeStatus("b1"_s); };
    operation.request = get("/ucenter/public/index.php/v1//login/getMpStatus?business_code=b1");
    operation.successSlot = "slotGetLoginQrCodeStatusSuc"_s;
    operation.failureSlot = "slotGetLoginQrCodeStatusFail"_s;
    operation.refusal = "[error]slotGetLoginQrCodeStatusSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"status":1,"user_info":{)"
                     R"("base":{"user_id":7,"nickname":"Ann","header_url":"https://a.example/a"},)"
                     R"("token":{"token":11,"refresh_token":12,)"
                     R"("token_expire_time":"2030-01-02 03:04:05",)"
                     R"("refresh_expire_time":"2031-12-31 23:59:59"}}})";
    operation.answer = R"(signalGetLoginQrCodeStatusEnd(7, "Ann", "https://a.example/a", 11, 12, )"
                       R"(2030-01-02T03:04:05, 2031-12-31T23:59:59))"_s;
    operation.dataLog = QStringList{"VoNetworker::slotGetLoginQrCodeStatusSuc <body>"_s};
    operation.emptyAnswers = QStringList{"signalGetLoginQrCodeStatusEnd(null)"_s};
    operation.failure = operation.networkFailure = "signalGetLoginQrCodeStatusEnd(null)"_s;
    return operation;
}

Operation Operations::sendSmsVerifyCode()
{
    Operation operation;
    operation.name = "SendSmsVerifyCode"_s;
    operation.call = [](VoNetworkIntf *service) { service->SendSmsVerifyCode(phone); };
    operation.request = post("/ucenter/public/index.php/v1/verify/sms", QByteArray(), smsBody);
    operation.start = QStringList{started("VoNetworker::SendSmsVerifyCode", smsBody)};
    operation.successSlot = "slotSendSmsVerifyCodeSuc"_s;
    operation.failureSlot = "slotSendSmsVerifyCodeFail"_s;
    operation.refusal = "[error]slotSendSmsVerifyCodeSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = "{}";
    operation.answer = "signalSendSmsEnd()"_s;
    operation.dataLog = QStringList{"VoNetworker::slotSendSmsVerifyCodeSuc send suc"_s};
    operation.emptyAnswers = QStringList{operation.answer};
    operation.emptyLog = operation.dataLog;
    operation.failure = operation.networkFailure = operation.answer;
    return operation;
}

Operation Operations::smsVerifyCodeLogin()
{
    Operation operation;
    operation.name = "SmsVerifyCodeLogin"_s;
    operation.call = [](VoNetworkIntf *service) { service->SmsVerifyCodeLogin(phone, "004711"_s); };
    operation.request = post("/ucenter/public/index.php/v1/login/sms", QByteArray(), loginBody);
    operation.start = QStringList{started("VoNetworker::SmsVerifyCodeLogin", loginBody)};
    operation.successSlot = "slotSmsLoginSuc"_s;
    operation.failureSlot = "slotSmsLoginFail"_s;
    operation.refusal = "[error]slotSmsLoginSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"base":{"user_id":7,"nickname":"Ann","header_url":"https://a.example/a"},)"
                     R"("token":{"token":11,"refresh_token":12,)"
                     R"("token_expire_time":"2030-01-02 03:04:05",)"
                     R"("refresh_expire_time":"2031-12-31 23:59:59"}})";
    operation.answer = R"(signalSmsLoginEnd(7, "Ann", "https://a.example/a", 11, 12, )"
                       R"(2030-01-02T03:04:05, 2031-12-31T23:59:59))"_s;
    operation.dataLog = QStringList{"token= 11"_s};
    operation.emptyAnswers =
        QStringList{R"(signalSmsLoginEnd(0, "", "", 0, 0, invalid, invalid))"_s};
    operation.emptyLog = QStringList{"token= 0"_s};
    operation.failure = operation.networkFailure = "signalSmsLoginEnd(null)"_s;
    return operation;
}

Operation Operations::refreshToken()
{
    Operation operation;
    operation.name = "RefreshToken"_s;
    operation.call = [](VoNetworkIntf *service) { service->RefreshToken(12); };
    operation.request = get("/ucenter/public/index.php/v1/token/refresh?refresh_token=12");
    operation.successSlot = "slotRefreshTokenSuc"_s;
    operation.failureSlot = "slotRefreshTokenFail"_s;
    operation.refusal = "[error]slotRefreshTokenSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"token":13,"expire_time":"2030-01-02 03:04:05"})";
    operation.answer = "signalRefreshTokenEnd(13, 2030-01-02T03:04:05)"_s;
    QString expires; // with the zone's name, which is not the same everywhere
    QDebug(&expires).nospace() << QDateTime({2030, 1, 2}, {3, 4, 5});
    operation.dataLog = QStringList{"slotRefreshTokenSuc: 13 expireTime: "_s + expires};
    operation.emptyAnswers = QStringList{"signalRefreshTokenEnd(0, invalid)"_s};
    operation.emptyLog = QStringList{"slotRefreshTokenSuc: 0 expireTime: QDateTime(Invalid)"_s};
    operation.failure = "signalRefreshTokenEnd(-1, invalid)"_s;
    operation.networkFailure = "signalRefreshTokenEnd(-1, now)"_s;
    return operation;
}
