#pragma once

class HostKit;
class Progress;

/// What a command works with. The objects are owned by main() and outlive the command.
struct Tools
{
    HostKit *kit;
    Progress *progress;
};
