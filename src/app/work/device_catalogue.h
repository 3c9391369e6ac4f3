#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "app/state/programmer_state.h"

namespace kestrel::work {

/// The device list as the form shows it, without a form and without a board: row by row.
class DeviceCatalogue {
 public:
  struct Device {
    std::int32_t position = 0;  ///< in the list, which is the row of the table
    std::string name;           ///< without trailing blanks
    std::string shortName;      ///< the word of it that is the chip's number, such as 27C256
    std::string family;         ///< its code
    bool isOffered = false;
    bool isOfferedByDataSheet = false;

    [[nodiscard]] bool isOfferedWith(Algorithms algorithms) const {
      return algorithms == Algorithms::Classic ? isOffered : isOfferedByDataSheet;
    }
    int sizeKB = 0;
    std::int16_t vppClass = 0;
    std::string voltages;  ///< that it may be programmed with
  };

  DeviceCatalogue();

  [[nodiscard]] const std::vector<Device>& devices() const { return devices_; }

  /// The device meant by a text: the full name, else a whole word of a name, else a part of a
  /// name, case ignored; it must fit one device offered with the algorithms. Throws UsageError that
  /// names the devices which it fits, or the nearest.
  [[nodiscard]] const Device& find(std::string_view text,
                                   Algorithms algorithms = Algorithms::Classic) const;

  /// One device a line.
  void print(Algorithms algorithms, std::ostream& out) const;

  /// The short names of those that are offered, one a line; find() takes each of them.
  void printNames(std::ostream& out, Algorithms algorithms = Algorithms::Classic) const;

  /// All that is known of one device, an item a line.
  static void print(const Device& device, Algorithms algorithms, std::ostream& out);

 private:
  [[noreturn]] void refuse(std::string_view text, Algorithms algorithms) const;

  std::vector<Device> devices_;
};

/// The voltages that the parts of a class may be programmed with: "12.5, 21 V".
[[nodiscard]] std::string voltagesOf(std::int16_t vppClass);

/// That of a voltage button: "21 V".
[[nodiscard]] std::string voltageText(std::size_t button);

}  // namespace kestrel::work
