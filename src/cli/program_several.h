#pragma once

#include <optional>

#include "app/form/chip_series.h"
#include "app/form/series_report.h"

namespace kestrel::cli {

class Session;

/// `program --several`: one chip after another until the person at the terminal ends it.
void programSeveral(Session& session);

}  // namespace kestrel::cli
