#include "tests/soak/toolkitplan.h"

#include "tests/soak/pathserver.h"

ToolkitPlan ToolkitPlan::draw(std::mt19937 &chance)
{
    // The distributions of the standard library differ between its makers.
    const auto below = [&chance](int limit) { return int(chance() % unsigned(limit)); };
    const std::vector<PathServer::Path> &paths = PathServer::paths();
    ToolkitPlan plan;
    // Every failure takes those with it that wait for a connection.
    const int kinds = below(2) == 0 ? PathServer::wellBehaved : int(paths.size());
    plan.path = paths[std::size_t(below(kinds))].name;
    if (below(2) == 0) {
        plan.deed = Deed(below(int(Deed::RunEventLoop) + 1));
        plan.moment = Moment(below(int(Moment::Timeout) + 1));
    }
    if (plan.deed == Deed::DeleteClient && below(400) != 0)
        plan.deed = Deed::DeleteResponse; // so that a client serves many
    if (plan.path == "/silent" || below(4) == 0)
        plan.timeoutMs = 1 + below(60);
    if (plan.deed != Deed::DeleteResponse && below(8) == 0)
        plan.retries = 1; // the response of the retry is in nobody's hands
    plan.block = below(20) == 0;
    plan.download = plan.path != "/silent" && below(10) == 0; // the probe would wait for long
    return plan;
}
