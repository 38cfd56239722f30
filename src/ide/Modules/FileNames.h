#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view UnitExtensions[] = {".pas", ".cpp"};
inline constexpr std::string_view CppUnitExtensions[] = {".cpp"};
inline constexpr std::string_view FormExtensions[] = {".dfm", ".xfm"};
inline constexpr std::string_view ProjectExtensions[] = {".dpr", ".dpk", ".bpr", ".bpk"};
inline constexpr std::string_view CppProjectExtensions[] = {".bpr", ".bpk"};
inline constexpr std::string_view GroupExtensions[] = {".bpg"};

/// The absolute name without "." and ".." parts; symbolic links stay.
std::string NormalFileName(std::string_view fileName);
/// Whether two normal names mean one file: they are equal, or differ in letter case only and lead
/// to the same file.
bool IsSameFile(std::string_view a, std::string_view b);
/// Whether the file name has one of the extensions, without case.
bool HasExtension(std::string_view fileName, std::span<const std::string_view> extensions);
/// Replaces `to` by a copy, at once or not at all. Raises EFileError.
void CopyFile(const std::string& from, const std::string& to);

} // namespace tarn
