#pragma once

#include <memory>

class Command;
class QString;
struct Options;
struct Tools;

/// The command that signs in, in either way.
namespace Login {

QString read(Options &options);
std::unique_ptr<Command> make(const Options &options, const Tools &tools);

} // namespace Login
