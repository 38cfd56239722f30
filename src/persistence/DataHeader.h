#pragma once

#include "ObjectStorageFormat.h"
#include "TStreamOrFile.h"

#include <string>
#include <string_view>

namespace tarn {

class TPersistent;

// What stands around stored objects: headers, lines of description, and the first bytes that tell
// the format.
//
// A binary header is a label, a byte that is 1 when resources follow and 0 otherwise, the length of
// the description and up to 255 bytes of it. A text header is a line with a label and, behind a
// blank, the description, and below it a rule of as many bytes.

inline constexpr std::string_view BinDataLabel = "sys_bin";
inline constexpr std::string_view TextDataLabel = "sys_txt";
inline constexpr char SeparatorChar = '-'; ///< of the rule

/// What the class TObjectStorage begins streams of the format osfExtBin with.
inline constexpr std::string_view ExtBinSignature = "TPF2";

/// Longer descriptions are cut to 255 bytes.
void WriteBinDataHeader(const TStreamOrFile& target, bool asResource, std::string_view description);
/// Line breaks of any kind in the description become blanks.
void WriteTextDataHeader(const TStreamOrFile& target, std::string_view description);

/// Reads a header and stops behind it. What is left in `format` is osfBin or osfText; a text's
/// description keeps the blank in front that parts it from the label. Raises EDataHandlingError
/// 50580 when no header stands there and EReadError when it is not whole; the arguments stay then.
void ReadDataHeader(const TStreamOrFile& source, TObjectStorageFormat& format, bool& asResource,
                    std::string& description);
/// Reads a header for its end. Raises what ReadDataHeader does.
void SkipDataHeader(const TStreamOrFile& source);

/// Writes the line before an object in a text: the description, its line breaks as blanks, or, when
/// that is empty, "stored Instance --> " and the object's name or else its class.
void WriteObjectDescription(const TPersistent& object, std::string_view description,
                            const TStreamOrFile& target);
/// Stops behind the first carriage return and one byte more, whatever that is. Raises EReadError
/// when there is none.
void SkipObjectDescription(const TStreamOrFile& source);

/// Tells the format by up to 4 bytes at the position, which stays; false, and `format` as it was,
/// when they begin none. Only the signature "TPF2" tells osfExtBin: streams of that format with
/// "TPF0" pass for osfBin. A text is told by "o", "i", in any case, or a blank as its first byte.
bool TestStreamFormat(const TStreamOrFile& source, TObjectStorageFormat& format);

} // namespace tarn
