#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrel {

/// The erased state of chips and buffers.
inline constexpr std::uint8_t kErased = 0xFF;

inline constexpr std::size_t kLatchCount = 5;
inline constexpr std::size_t kCodeBufferBytes = 2'100'001;
inline constexpr std::size_t kDataBufferBytes = 8'292;
inline constexpr std::size_t kProgramBufferBytes = 1'048'577;
inline constexpr std::size_t kDeviceTableRows = 81;
inline constexpr std::size_t kDeviceTableColumns = 8;

/// Control-port codes of one board family, by latch number.
struct ControlCodes {
  std::array<std::int16_t, kLatchCount> idle{};
  std::array<std::int16_t, kLatchCount> strobe{};
};

// The slices of the record, by owner. A unit takes the slices that it touches; 16-bit fields are
// narrowed into with `narrowed`, tables are indexed with `at`. A slice is a plain value: a copy of
// it can be kept and put back.

/// The port and the model of the board: hardware/registers, hardware/board_detection.
struct PortState {
  std::int16_t PortBase = 0;      ///< LPT data port 378h, 278h or 3BCh; 0 = none chosen
  std::int16_t StatusPort = 0;    ///< PortBase + 1
  std::int16_t ControlPort = 0;   ///< PortBase + 2
  std::int16_t KestrelModel = 0;  ///< 4, 5 or 6; 0 until detected
  std::int16_t DetectedPort = 0;  ///< where the last probe found a board; 0 = nowhere
  bool BoardReady = false;  ///< a board was found, or a model forced, and nothing since says no
  ControlCodes CtlTable4{};
  ControlCodes CtlTable56{};
  std::array<std::int16_t, kLatchCount> CtlIdle{};    ///< latch addressed, strobe inactive
  std::array<std::int16_t, kLatchCount> CtlStrobe{};  ///< latch addressed, strobe active
  std::int16_t NibbleSelA = 0;  ///< control byte that presents the first status nibble
  std::int16_t NibbleSelB = 0;  ///< control byte that presents the second
  std::string ConfigSeen;       ///< keys met in kestrel6.ini, in the order met
  std::string ConfigPath;
  std::string ConfigLine;
};

/// The five board latches, the address and the byte on the bus: hardware/bus_primitives.
struct LatchState {
  std::int16_t RegShadow0 = 0;  ///< /OE and programming voltages
  std::int16_t RegShadow1 = 0;  ///< address bits 8-15 through the device's map
  std::int16_t RegShadow2 = 0;  ///< address bits 0-7
  std::int16_t RegShadow3 = 0;  ///< /CE, data latch enable, /PGM, high address bits
  std::int16_t RegShadow4 = 0;  ///< data byte
  std::int32_t LinearAddress = 0;
  std::int32_t AddrLow = 0;
  std::int32_t AddrMid = 0;
  std::int32_t AddrHigh = 0;
  std::int32_t AddrDivLow = 256;
  std::int32_t AddrDivHigh = 65536;
  std::uint8_t ReadByte = 0;
  std::uint8_t StatusLow = 0;   ///< raw status byte of the last first read
  std::uint8_t StatusHigh = 0;  ///< raw status byte of the last second read
  std::array<std::uint8_t, 256> StatusDecode4{};
  std::array<std::uint8_t, 256> StatusDecodeLow{};
  std::array<std::uint8_t, 256> StatusDecodeHigh{};
};

/// How chips are worked on: the classic procedures, or by their data sheets.
enum class Algorithms { Classic, DataSheet };

/// The software protection of a page-write EEPROM once it is programmed or erased.
enum class Protection { Keep, On, Off };

/// What the person has chosen for the algorithms of the data sheets: data_sheet/.
struct AlgorithmState {
  Algorithms algorithms = Algorithms::Classic;
  Protection protection = Protection::Keep;  ///< Keep: as it was found
};

/// Waits, in loop counts: selection/.
struct TimingState {
  std::int32_t SettleFactor = 0;
  std::int32_t SpeedFactorA = 0;
  std::int32_t SpeedFactorB = 0;
  std::int32_t DelayCountA = 0;
  std::int32_t DelayCountB = 0;
  std::int32_t BusDelayCount = 0;

  bool operator==(const TimingState&) const = default;
};

/// The catalogue: devices/. Built once, never changed afterwards.
struct CatalogueState {
  std::array<std::array<std::string, kDeviceTableColumns>, kDeviceTableRows> DeviceTable{};
};

/// The selected device and voltage: selection/.
struct SelectionState {
  std::string DeviceName;
  std::string FamilyLetter;
  std::string FamilySubCode;
  std::string FamilyCode;
  std::int32_t DeviceSizeKB = 0;
  std::int32_t DeviceSizeBytes = 0;
  std::int16_t VppClass = 0;                    ///< 0 = 5 V, 1 = 12.5 V, 2 = to 21 V, 3 = to 25 V
  std::int16_t VppVolts = 0;                    ///< 12 (for 12.5), 21 or 25
  std::int16_t Reg1Fixed = 0;                   ///< per-device bits of latch 1
  std::int16_t Reg3Fixed = 0;                   ///< per-device bits of latch 3
  std::array<std::int16_t, 256> AddrMapMid{};   ///< AddrMid to latch-1 bits
  std::array<std::int16_t, 256> AddrMapHigh{};  ///< AddrHigh to latch-3 bits

  bool operator==(const SelectionState&) const = default;
};

/// How the bytes of the code buffer came into it. A file that they were saved to is one like any.
enum class CodeSource { Start, File, Import, Chip, Erased };

/// Where the bytes of the code buffer come from: its title and every question about it go by this.
struct CodeOrigin {
  CodeSource source = CodeSource::Start;
  std::string name = {};  ///< the file, or the device that was read

  bool operator==(const CodeOrigin&) const = default;
};

/// Buffers and files: buffers/.
struct BufferState {
  std::vector<std::uint8_t> CodeBuffer = std::vector<std::uint8_t>(kCodeBufferBytes);
  std::vector<std::uint8_t> DataBuffer = std::vector<std::uint8_t>(kDataBufferBytes);
  std::int32_t CodeLength = 0;
  std::int32_t DataLength = 0;
  std::int16_t CodeBufferValid = 0;
  std::int16_t DataBufferValid = 0;
  std::string CodeFileName;
  std::string DataFileName;
  CodeOrigin CodeFrom;
  std::int32_t CodeImageBytes = 0;  ///< of that file; CodeLength is the chip's once one is chosen
  std::int32_t CodeLoads = 0;       ///< how often it was loaded, read or erased as a whole
  bool CodeChanged = false;         ///< bytes of it were changed since, and not saved
  std::vector<std::uint8_t> FileBytes;  ///< the whole file while it is loaded, otherwise empty
  std::int32_t FileChecksum = 0;        ///< 0..65535
  std::string FileChecksumText;
  std::int32_t DeviceChecksum = 0;  ///< 0..65535
  std::string DeviceChecksumText;
  std::string DisplayMode = "Read";  ///< "Read" (a buffer) or "DisplayEprom" (the chip)
};

/// What a device operation works with: operations/.
struct OperationState {
  std::vector<std::uint8_t> ProgramBuffer = std::vector<std::uint8_t>(kProgramBufferBytes);
  std::int32_t ProgramLength = 0;
  std::int32_t ProgramIndex = 0;   ///< address loop variable, failing address
  std::int16_t ProgramStatus = 0;  ///< 9 before dispatch, 1 when a routine was called
  std::int16_t ProgramFailed = 0;
  std::int16_t VerifyFailed = 0;
  std::int16_t ReadHighLast = 0;  ///< last address high byte of a walk
  std::int16_t ReadMidLast = 0;   ///< last address middle byte, of every high byte
  std::uint8_t ByteToWrite = 0;
  std::int16_t WriteAddress = 0;
  std::int16_t EraseMode = 0;  ///< 1 from the erase command to the next Reset
  std::int16_t I2CError = 0;   ///< 0, or the number of acknowledge polls made
  std::int16_t FlashMakerID = 0;
  std::int16_t FlashDeviceID = 0;
  std::string FlashCode;
  std::string FlashRawCode;
  std::int16_t FlashPageSize = 0;
  std::int16_t FlashPageCount = 0;
  std::int16_t FlashCmd = 0;
  std::int32_t FlashPollPending = 0;
  std::int32_t FlashPollMisses = 0;
};

/// What the shell keeps, and the helpers that many procedures share: app/.
struct ShellState {
  std::int32_t LoopIndex = 0;  ///< loop counter shared by many procedures
  std::array<std::int32_t, 4> Pow16Table{};
  std::string CrLf;
  std::string PrintableChars;
  std::string LastMessage;
  std::int16_t ProgressStep = 0;
  std::int16_t ProgressCount = 0;
  std::array<std::string, 4> SavedButtonState{};  ///< "True" or "False"; hardware/error_alert
};

/// The one record that the procedures read and write. It lives as long as the process.
struct ProgrammerState : PortState,
                         LatchState,
                         AlgorithmState,
                         TimingState,
                         CatalogueState,
                         SelectionState,
                         BufferState,
                         OperationState,
                         ShellState {};

}  // namespace kestrel
