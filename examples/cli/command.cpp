#include "command.h"

#include "options.h"
#include "recognitioncommands.h"
#include "speechcommands.h"

std::unique_ptr<Command> Command::make(const Options &options, VoNetworkIntf *service,
                                       Progress *progress)
{
    if (options.action == Options::Action::Say) {
        if (options.longForm)
            return std::make_unique<LongSpeech>(options, service, progress);
        return std::make_unique<ShortSpeech>(options, service);
    }
    if (options.longForm)
        return std::make_unique<LongRecognition>(options, service, progress);
    return std::make_unique<ShortRecognition>(options, service, progress);
}

QString Command::refusedByService()
{
    return QStringLiteral(
        "the service refused or could not be reached (run with --verbose to see why)");
}

Command::Command() = default;

Command::~Command() = default;
