#include "cli/json_lines.h"

namespace kestrel::cli {
namespace {

const char* nameOf(images::Meaning meaning) {
  switch (meaning) {
    case images::Meaning::Programmable:
      return "programmable";
    case images::Meaning::NeedsErasing:
      return "needs-erasing";
    case images::Meaning::AllBlank:
      return "all-blank";
    case images::Meaning::AllZero:
      return "all-zero";
    case images::Meaning::DataLineStuck:
      return "data-line-stuck";
    case images::Meaning::AddressLineStuck:
      return "address-line-stuck";
    case images::Meaning::Aliased:
      return "aliased";
    case images::Meaning::Shifted:
      return "shifted";
    case images::Meaning::LanesSwapped:
      return "lanes-swapped";
  }
  return "";
}

}  // namespace

Json jsonEvent(const char* event) { return {{"kestrel", kJsonVersion}, {"event", event}}; }

void printJson(std::ostream& out, const Json& object) {
  out << object.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

Json jsonOf(const std::vector<images::Range>& ranges) {
  Json list = Json::array();
  for (const images::Range& range : ranges) {
    list.push_back({{"first", range.first}, {"last", range.last}});
  }
  return list;
}

Json jsonOf(const images::Identity& identity) {
  return {{"bytes", identity.bytes},           {"sum", identity.sum},
          {"crc32", identity.crc32},           {"sha256", identity.sha256},
          {"blankBytes", identity.blankBytes}, {"period", identity.period},
          {"looksLike", identity.looksLike}};
}

Json jsonOf(const images::Records& records) {
  const images::Format& format = images::formatOf(records.format);
  Json object{{"format", format.name},
              {"records", records.dataRecords},
              {"checksums", format.hasChecksums},
              {"ranges", jsonOf(records.ranges())},
              {"holes", jsonOf(records.holes())}};
  if (records.startAddress) object["startAddress"] = *records.startAddress;
  return object;
}

Json jsonOf(const images::Comparison& comparison) {
  Json findings = Json::array();
  for (const images::Finding& finding : comparison.findings) {
    findings.push_back({{"meaning", nameOf(finding.meaning)}, {"text", finding.text}});
  }
  return {{"compared", comparison.comparedBytes},      {"different", comparison.differentBytes},
          {"bitsToProgram", comparison.bitsToProgram}, {"bitsToErase", comparison.bitsToErase},
          {"ranges", jsonOf(comparison.ranges)},       {"findings", findings}};
}

}  // namespace kestrel::cli
