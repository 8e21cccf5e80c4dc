#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/nginxserver.h"
#include "tests/support/residentmemory.h"
#include "tests/support/testfolder.h"
#include "tests/support/trust.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <cmath>
#include <limits>

using HttpTesting::waitUntilGone;

static constexpr qint64 mebibyte = 1024LL * 1024;

/// However long a download is, it does not pass through memory as a whole. The size of the file is
/// VONETWORK_TEST_DOWNLOAD_MIB, 256 when that is not set.
class TestHttpDownloadMemory : public QObject
{
    Q_OBJECT

    NginxServer m_server;
    TestFolder m_folder;
    const QString m_target = m_folder.path("target"_s);
    const TrustTestAuthority m_trust;
    qint64 m_size = 0;

private Q_SLOTS:
    void initTestCase()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitiser keeps what was freed", );
#endif
        const int asked = qEnvironmentVariableIntValue("VONETWORK_TEST_DOWNLOAD_MIB");
        m_size = (asked > 0 ? asked : 256) * mebibyte;
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        QFile file(m_server.file("big"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(m_size)); // takes no room
    }

    void aLongDownloadNeedsLittleMemory_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("block");
        for (const bool tls : {false, true}) {
            for (const bool moved : {false, true}) {
                const QString path = moved ? "/moved/big"_s : "/big"_s;
                const QString address = tls ? m_server.tlsAddress(path) : m_server.address(path);
                for (const bool block : {false, true})
                    QTest::addRow("%s%s%s", tls ? "HTTPS" : "HTTP", moved ? ", redirected" : "",
                                  block ? ", blocking" : "")
                        << address << block;
            }
        }
    }
    void aLongDownloadNeedsLittleMemory()
    {
        QFETCH(QString, address);
        QFETCH(bool, block);
        // One thread sets the bound for another: while other programs have the processors, much may
        // arrive in between. That can only add to what a download needs.
        double growth = 0;
        for (int attempt = 0; attempt == 0 || (growth >= 8 && attempt < 3); ++attempt) {
            growth = growthOf(address, block);
            QVERIFY(!std::isnan(growth));
            QCOMPARE(QFileInfo(m_target).size(), m_size);
        }
        QVERIFY(growth < 8);
    }

private:
    /// What a download adds to the resident memory, in MiB; not a number: it has not come to its
    /// end.
    double growthOf(const QString &address, bool block)
    {
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        qint64 most = 0;
        bool complete = false;
        const qint64 before = residentMemory();
        QElapsedTimer clock;
        clock.start();
        const QPointer<HttpResponse> response =
            HttpRequest(HttpMethod::Get, &client)
                .url(address)
                .download(m_target)
                .enableResume(false)
                .block(block)
                .onReadyRead([&most](QNetworkReply *) { most = qMax(most, residentMemory()); })
                .onDownloadFileFinished([&complete] { complete = true; })
                .send();
        if (complete != block || !waitUntilGone(response) || !complete)
            return std::numeric_limits<double>::quiet_NaN();
        const double growth = double(most - before) / mebibyte;
        qInfo("%lld MiB in %lld ms, memory grew by %.1f MiB", m_size / mebibyte, clock.elapsed(),
              growth);
        return growth;
    }
};

QTEST_GUILESS_MAIN(TestHttpDownloadMemory)
#include "tst_httpdownloadmemory.moc"
