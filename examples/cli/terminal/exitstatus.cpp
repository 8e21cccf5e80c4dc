#include "terminal/exitstatus.h"

#include <algorithm>
#include <iterator>

namespace {

using Kind = Reason::Kind;

constexpr struct Row
{
    Kind kind = Kind::None;
    ExitStatus status = Success;
    const char *name = nullptr;
} rows[] = {
    {Kind::None, Success, "none"},           {Kind::Unreachable, NoNetwork, "unreachable"},
    {Kind::Network, NoNetwork, "network"},   {Kind::Tls, NotTrusted, "tls"},
    {Kind::Proxy, NoNetwork, "proxy"},       {Kind::Refused, Refused, "refused"},
    {Kind::BadAnswer, Failure, "badAnswer"}, {Kind::SignIn, Refused, "signIn"},
    {Kind::TooLong, WrongUse, "tooLong"},    {Kind::Unusable, WrongUse, "unusable"},
    {Kind::File, Failure, "file"},           {Kind::Expired, Failure, "expired"},
    {Kind::Cancelled, Failure, "cancelled"}, {Kind::TimedOut, NoNetwork, "timedOut"},
};

const Row &rowOf(Kind kind)
{
    return *std::find_if(std::begin(rows), std::prev(std::end(rows)),
                         [kind](const Row &row) { return row.kind == kind; });
}

} // namespace

const std::array<ExitMeaning, 7> &exitMeanings()
{
    static constexpr std::array<ExitMeaning, 7> meanings{{
        {"0", "done"},
        {"1", "failed"},
        {"2", "wrong use"},
        {"3", "no network"},
        {"4", "not trusted (TLS)"},
        {"5", "refused"},
        {"130 or 143", "interrupted"},
    }};
    return meanings;
}

ExitStatus exitStatus(Reason::Kind kind) { return rowOf(kind).status; }

const char *nameOf(Reason::Kind kind) { return rowOf(kind).name; }
