#include "fetch.h"

#include "hostkit/fetchjob.h"
#include "options.h"

Fetch::Fetch(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_address(options.address)
    , m_path(options.output)
    , m_resume(options.resume)
{
}

void Fetch::start()
{
    auto *job = new FetchJob(m_address, m_path, m_resume, this);
    connect(job, &FetchJob::succeeded, this, [this](const QString &path, qint64 bytes) {
        finish({}, {{QStringLiteral("file"), path}, {QStringLiteral("bytes"), bytes}});
    });
    run(job, QStringLiteral("asking for the file"));
}
