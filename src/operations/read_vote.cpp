#include "operations/read_vote.h"

#include <algorithm>

#include "app/state/text_format.h"

namespace kestrel::operations {

std::vector<std::uint8_t> ReadVote::majority() const {
  std::vector<std::uint8_t> bytes = reads_.front();
  for (const std::size_t address : unstable()) bytes[address] = majorityAt(address);
  return bytes;
}

std::vector<std::size_t> ReadVote::unstable() const {
  std::vector<std::size_t> addresses;
  for (std::size_t address = 0; address < reads_.front().size(); ++address) {
    const auto differs = [&](const auto& read) { return read[address] != reads_[0][address]; };
    if (std::ranges::any_of(reads_, differs)) addresses.push_back(address);
  }
  return addresses;
}

std::uint8_t ReadVote::majorityAt(std::size_t address) const {
  const auto votesFor = [&](const auto& candidate) {
    return std::ranges::count_if(
        reads_, [&](const auto& read) { return read[address] == candidate[address]; });
  };
  return (*std::ranges::max_element(reads_, {}, votesFor))[address];
}

std::string ReadVote::readsAt(std::size_t address) const {
  std::string text;
  for (const auto& read : reads_) text += (text.empty() ? "" : " ") + hexText(read[address], 2);
  return text;
}

}  // namespace kestrel::operations
