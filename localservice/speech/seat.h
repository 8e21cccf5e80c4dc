#pragma once

#include "localservice/base/refusal.h"

#include <atomic>

namespace localservice {

/// One of a few that there are for those who do something costly, for as long as it lives.
class Seat
{
public:
    /// Refusal if @p most are taken; @p taken counts them.
    Seat(std::atomic<int> &taken, int most)
        : m_taken(taken)
    {
        if (++m_taken <= most)
            return;
        --m_taken;
        throw Refusal(Code::Busy, "too many requests of this kind at once, try again later");
    }
    ~Seat() { --m_taken; }

    Seat(const Seat &) = delete;
    Seat &operator=(const Seat &) = delete;

private:
    std::atomic<int> &m_taken;
};

} // namespace localservice
