#pragma once

#include "hostkit/job.h"
#include "hostkit/outputfile.h"
#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"

#include <QNetworkReply>
#include <QPointer>
#include <QString>

/// Downloads an address into a file. The body is written into a part, FILE.part, which is renamed
/// when it is complete and stays when the download fails or is interrupted.
class FetchJob : public Job
{
    Q_OBJECT
    Q_DISABLE_COPY(FetchJob)

public:
    /// @p address begins with https:// or http://. With @p resume a part that is there is gone on
    /// with, if the server can; nobody checks that the server still has the same file.
    FetchJob(const QString &address, const QString &path, bool resume = false,
             QObject *parent = nullptr);

    /// Why the files cannot be written, as far as that shows without writing them; none: they can.
    static Reason problem(const QString &path, bool resume = false);

Q_SIGNALS:
    /// The file is written; it has @p bytes bytes.
    void succeeded(const QString &path, qint64 bytes);

protected:
    void begin() override;

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
    void giveUp(const Reason &reason);
    void giveUpFile(const QString &problem);

    QString m_address; ///< As the host gave it.
    QString m_source;  ///< The address to which redirects lead, once that is known.
    QString m_path;
    OutputFile m_output;
    QString m_part;
    bool m_resume;
    HttpClient *m_client = nullptr;    ///< Goes with the work.
    QPointer<HttpResponse> m_response; ///< Of the request that is under way.
    qint64 m_length = -1;              ///< Bytes of the resource; -1: unknown.
    qint64 m_kept = 0;                 ///< Bytes that an earlier job left.
};
