#include "buffers/checksum.h"

#include "app/state/text_format.h"

namespace kestrel::buffers {

std::string checksumText(std::int32_t sum) { return hexText(sum, 4); }

}  // namespace kestrel::buffers
