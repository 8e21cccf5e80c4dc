#pragma once

class QString;

/// What completes the command line of vospeak in shells, made from the tables.
namespace Completions {

QString bash();
QString zsh();
QString fish();

} // namespace Completions
