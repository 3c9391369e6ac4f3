#pragma once

#include <gmock/gmock.h>

#include "link/link_error.h"

namespace kestrel::link {

/// Matches steps that end with a LinkError of this problem.
inline auto failsWith(LinkProblem problem) {
  return testing::Throws<LinkError>(testing::Property(&LinkError::problem, problem));
}

}  // namespace kestrel::link
