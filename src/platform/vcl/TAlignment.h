#pragma once

#include "rtl/TypInfo.h"

namespace tarn {

/// Where a text stands in the width that it has.
enum TAlignment : std::uint8_t { taLeftJustify, taRightJustify, taCenter };
inline constexpr std::string_view AlignmentNames[] = {"taLeftJustify", "taRightJustify",
                                                      "taCenter"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TAlignment> = EnumType("TAlignment", AlignmentNames);

} // namespace tarn
