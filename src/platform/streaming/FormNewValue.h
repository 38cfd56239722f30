#pragma once

#include "streaming/TFormTree.h"

#include <string_view>

namespace tarn {

/// Reads a value as the text form writes it and puts it into `target`, with the type that the one
/// has whose place it takes. For a string a text that begins neither with ' nor with # stands for
/// itself.
/// \param former what the value is to take the place of; null for a new property
/// Raises EFormError, whose message goes on from the text: "is no value of the text form".
void ReadNewValue(std::string_view text, const TFormNode* former, const TFormLayout& layout,
                  TFormTree& target);

} // namespace tarn
