#pragma once

class Progress;
class TokenKeeper;
class VoNetworkIntf;

/// What a command works with. All of it outlives the command.
struct Tools
{
    VoNetworkIntf *service;
    TokenKeeper *tokens;
    Progress *progress;
};
