#pragma once

namespace kestrel {

/// Hears that the board was put to rest.
class RestListener {
 public:
  virtual ~RestListener() = default;

  virtual void boardIsAtRest() = 0;
};

}  // namespace kestrel
