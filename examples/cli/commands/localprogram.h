#pragma once

class QString;

namespace LocalProgram {

/// The path of the local service of the same build or installation, or of the first one that the
/// system finds. Empty: there is none.
QString path();

/// Whether the service that is asked is one of this machine.
bool isAsked();

} // namespace LocalProgram
