#pragma once

#include "command.h"
#include "hostkit/outputfile.h"
#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "transferprogress.h"

#include <QNetworkReply>
#include <QPointer>

#include <optional>

/// Downloads an address into a file. The body is written into a part, FILE.part, which is renamed
/// when it is complete and stays when the download fails or is interrupted.
class Fetch : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Fetch)

public:
    Fetch(const Options &options, const Tools &tools);

    void start() override;

private:
    HttpRequest request();
    void onFound(const QList<QNetworkReply::RawHeaderPair> &head);
    void prepare();
    void download();
    void onBegin();
    void beginAnew();
    void onProgress(qint64 received, qint64 total);
    void onFileError();
    void onError(const QByteArray &text);
    void complete();
    void refuse();
    void endWith(const QString &problem);
    void tell(const QString &problem);

    QString m_address; ///< As the user gave it.
    QString m_source;  ///< The address to which redirects lead, once that is known.
    QString m_path;
    OutputFile m_output;
    QString m_part;
    bool m_resume;
    std::optional<HttpClient> m_client{std::in_place};
    QPointer<HttpResponse> m_response; ///< Of the request that is under way.
    qint64 m_length = -1;              ///< Bytes of the resource; -1: unknown.
    qint64 m_kept = 0;                 ///< Bytes that an earlier run left.
    std::optional<TransferProgress> m_transfer;
};
