#pragma once

#include "streaming/TFormPath.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The bytes from Begin up to End, which have become others.
struct TFormPatch {
    std::size_t Begin = 0;
    std::size_t End = 0;
    std::string Bytes;
};

/// How SetInForm understands its value.
struct TFormChange {
    /// The path of a property or of a value in a list.
    std::string_view Path;
    /// A value as the text form writes it. For a string a text that begins neither with ' nor with
    /// # stands for itself; it is UTF-8, or bytes of the file's code page.
    std::string_view Value;
    /// Whether a property that the object does not have is added behind its others; the value is
    /// in the text form then.
    bool Add = false;
};

/// Gives a property of a form file of any kind another value: the patches, in the order of the
/// file, which change that value and nothing else. The value is laid out as the file is, and a
/// string or a float keeps the type that it has in a binary.
///
/// A value has to be of the kind of the former one. Numbers, identifiers and nil may stand for each
/// other as in "Color = clRed" and "Color = 255"; a float may become an integer's value but not the
/// other way round. Raises EFormError for a path that leads nowhere, a value that is none or does
/// not fit, and the errors of the parsers for a file that cannot be read.
std::vector<TFormPatch> SetInForm(std::string_view bytes, const TFormChange& change);

/// The changed file in pieces, each part of the bytes or of a patch.
std::vector<std::string_view> PatchedPieces(std::string_view bytes,
                                            const std::vector<TFormPatch>& patches);

/// What a path leads to, as the text form writes it: a value, or a whole object or item.
std::string FormTextOf(const TFormTree& tree, TFormNodeIndex node, const TFormLayout& layout);

} // namespace tarn
