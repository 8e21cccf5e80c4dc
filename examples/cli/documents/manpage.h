#pragma once

class QString;

namespace ManPage {

/// The page vospeak(1), made from the tables.
QString text();

} // namespace ManPage
