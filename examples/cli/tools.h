#pragma once

class Progress;
class TokenKeeper;
class VoNetworkIntf;

/// What a command works with. The objects are owned by main() and outlive the command.
struct Tools
{
    VoNetworkIntf *service;
    TokenKeeper *tokens;
    Progress *progress;
};
