#pragma once

#include <string_view>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"

namespace kestrel::devices {

// Columns of DeviceTable.
inline constexpr std::size_t kNameColumn = 0;
inline constexpr std::size_t kLetterColumn = 1;
inline constexpr std::size_t kSubCodeColumn = 2;
inline constexpr std::size_t kSizeKBColumn = 3;
inline constexpr std::size_t kReg1FixedColumn = 4;
inline constexpr std::size_t kReg3FixedColumn = 5;
inline constexpr std::size_t kVppClassColumn = 6;
inline constexpr std::size_t kListedColumn = 7;

/// What stands before the name of a row that is not offered.
inline constexpr const char* kNotAvailable = "N/A - ";

/// Writes the catalogue into DeviceTable from row 1 on; row 0 and the rows behind stay empty.
void BuildDeviceTable(CatalogueState& catalogue, ShellState& shell);

/// One list entry for every row from 0 to the last one with a name, so that the position in the
/// list is the row. More rows are offered with the algorithms of the data sheets.
void FillDeviceList(const CatalogueState& catalogue, Algorithms algorithms, DropDownList& list);

/// Whether a device is offered with these algorithms; `listed` is its cell in kListedColumn.
[[nodiscard]] bool isOffered(std::string_view name, std::string_view listed, Algorithms algorithms);

}  // namespace kestrel::devices
