#include "benchmarks/contender.h"
#include "benchmarks/work.h"

#include <curl/curl.h>

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <vector>

namespace {

constexpr long connectionsPerHost = 6; // as the access manager has them

void check(bool success, const char *text)
{
    if (!success)
        qFatal("libcurl: %s", text);
}

/// A handle that does one work over and over.
class Transfer
{
    Q_DISABLE_COPY(Transfer)

public:
    explicit Transfer(const Work &work)
        : m_work(work)
        , m_posted(work.postedBytes, 'x')
    {
        curl_easy_setopt(m_handle, CURLOPT_PRIVATE, this);
        curl_easy_setopt(m_handle, CURLOPT_URL, work.address);
        curl_easy_setopt(m_handle, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, "authority.pem");
        curl_easy_setopt(m_handle, CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(m_handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &Transfer::write);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, this);
        if (work.postedBytes == 0)
            return;
        curl_easy_setopt(m_handle, CURLOPT_HTTPHEADER, m_headers);
        curl_easy_setopt(m_handle, CURLOPT_POSTFIELDS, m_posted.constData());
        curl_easy_setopt(m_handle, CURLOPT_POSTFIELDSIZE, long(m_posted.size()));
    }

    ~Transfer()
    {
        curl_easy_cleanup(m_handle);
        curl_slist_free_all(m_headers);
    }

    CURL *handle() const { return m_handle; }

    void begin()
    {
        m_body.clear();
        if (m_work.kind != Kind::File)
            return;
        m_file = std::fopen(downloadedFile, "wb");
        check(m_file, "cannot open the file");
    }

    void end(CURLcode code)
    {
        check(code == CURLE_OK, curl_easy_strerror(code));
        curl_off_t bytes = 0;
        curl_easy_getinfo(m_handle, CURLINFO_SIZE_DOWNLOAD_T, &bytes);
        check(bytes == m_work.answerBytes, "a body of another length");
        if (m_file)
            std::fclose(m_file);
        m_file = nullptr;
    }

private:
    static size_t write(char *bytes, size_t size, size_t count, void *target)
    {
        auto *self = static_cast<Transfer *>(target);
        if (self->m_file)
            return std::fwrite(bytes, size, count, self->m_file);
        self->m_body.append(bytes, int(size * count));
        return size * count;
    }

    const Work &m_work;
    const QByteArray m_posted;
    QByteArray m_body;
    std::FILE *m_file = nullptr;
    CURL *m_handle = curl_easy_init();
    curl_slist *m_headers = curl_slist_append(nullptr, "Content-Type: application/json");
};

/// Connections outlive a handle in what they share.
class CurlEasy : public Contender
{
public:
    CurlEasy() { curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT); }
    ~CurlEasy() override { curl_share_cleanup(m_share); }

    void perform(const Work &work, int count) override
    {
        Transfer transfer(work);
        curl_easy_setopt(transfer.handle(), CURLOPT_SHARE, m_share);
        for (int i = 0; i < count; ++i) {
            transfer.begin();
            transfer.end(curl_easy_perform(transfer.handle()));
        }
        curl_easy_setopt(transfer.handle(), CURLOPT_SHARE, nullptr);
    }

private:
    CURLSH *m_share = curl_share_init();
};

class CurlMulti : public Contender
{
public:
    CurlMulti() { curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, connectionsPerHost); }
    ~CurlMulti() override { curl_multi_cleanup(m_multi); }

    void perform(const Work &work, int count) override
    {
        m_toSend = count;
        std::vector<std::unique_ptr<Transfer>> transfers;
        for (int i = 0; i < work.inFlight; ++i) {
            transfers.push_back(std::make_unique<Transfer>(work));
            send(transfers.back().get());
        }
        while (m_underWay > 0) {
            int running = 0;
            curl_multi_perform(m_multi, &running);
            takeEnded();
            if (m_underWay > 0)
                curl_multi_poll(m_multi, nullptr, 0, 1000, nullptr);
        }
    }

private:
    void send(Transfer *transfer)
    {
        if (m_toSend == 0)
            return;
        --m_toSend;
        ++m_underWay;
        transfer->begin();
        curl_multi_add_handle(m_multi, transfer->handle());
    }

    void takeEnded()
    {
        int left = 0;
        while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
            const CURLcode code = message->data.result;
            Transfer *transfer = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
            curl_multi_remove_handle(m_multi, transfer->handle());
            --m_underWay;
            transfer->end(code);
            send(transfer);
        }
    }

    CURLM *m_multi = curl_multi_init();
    int m_toSend = 0;
    int m_underWay = 0;
};

} // namespace

std::unique_ptr<Contender> makeCurlEasy() { return std::make_unique<CurlEasy>(); }
std::unique_ptr<Contender> makeCurlMulti() { return std::make_unique<CurlMulti>(); }
