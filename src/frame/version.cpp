// The two version records, one per processor variant.
#include "floor/entries.h"

namespace vkp::entry {
namespace {

constexpr char kVersionText[] = "8.2.3 (r48108)";
constexpr char kBuildDate[] = "Jul 23 2015";

constexpr vkpLibraryVersion kRecordU8 = {8, 2, 3, 48108, {'u', '8', 0, 0}, "vkpCH SSSE3 (u8)", kVersionText, kBuildDate};
constexpr vkpLibraryVersion kRecordN8 = {8, 2, 3, 48108, {'n', '8', 0, 0}, "vkpCH Atom (n8)", kVersionText, kBuildDate};

}  // namespace

const vkpLibraryVersion* GetLibVersionU8() { return &kRecordU8; }
const vkpLibraryVersion* GetLibVersionN8() { return &kRecordN8; }

}  // namespace vkp::entry
