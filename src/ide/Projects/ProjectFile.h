#pragma once

#include "rtl/SysUtils.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A project or group file that cannot be understood. The message says what is wrong there.
class EProjectFileError : public Exception {
public:
    EProjectFileError(int line, const std::string& message) : Exception(message), Line(line) {}
    std::string_view ClassName() const override { return "EProjectFileError"; }

    const int Line; ///< 1-based line of the file
};

enum TProjectFileKind : std::uint8_t { pfkProgram, pfkLibrary, pfkPackage, pfkCppProject };

/// One unit of a project.
struct TProjectEntry {
    std::string UnitName;
    std::string FileName;    ///< as written, relative to the project; empty: on the search path
    std::string FormName;    ///< empty when the unit has no form
    std::string DesignClass; ///< of a form with an ancestor of its own, such as TDataModule

    friend bool operator==(const TProjectEntry&, const TProjectEntry&) = default;
};

struct TProjectFile {
    TProjectFileKind Kind = pfkProgram;
    std::string Name; ///< without folder and extension
    std::vector<TProjectEntry> Entries;
    std::string ResourceFile; ///< as written, "*" standing for the project's name; may be empty

    friend bool operator==(const TProjectFile&, const TProjectFile&) = default;
};

/// One project of a group: what it builds and the project file, both as written.
struct TProjectGroupEntry {
    std::string Target;
    std::string FileName;

    friend bool operator==(const TProjectGroupEntry&, const TProjectGroupEntry&) = default;
};

struct TProjectGroupFile {
    std::vector<TProjectGroupEntry> Projects; ///< in the order in which they are built

    friend bool operator==(const TProjectGroupFile&, const TProjectGroupFile&) = default;
};

// The readers take the whole text of a file, with line ends of any kind and in any encoding that
// keeps ASCII, and raise EProjectFileError. Their time is linear in the text.

/// A Pascal source that begins with program, library or package. The entries are the units of its
/// uses or contains clause; conditional directives are not evaluated, so that the units of all
/// branches are there. What follows the clauses is only searched for the resource directive.
TProjectFile ReadPascalProject(std::string_view text);

/// A C++ project in XML. The entries are the files of its file list, whatever their tool.
TProjectFile ReadCppProject(std::string_view text);

/// A project group: a makefile whose PROJECTS macro lists the targets, with one rule for each.
TProjectGroupFile ReadProjectGroup(std::string_view text);

/// The native path of a file that a project in `folder` names with either separator. Old projects
/// come from systems that ignore case: a folder or file that is not there as written is taken in
/// the letter case that it has on disk, the first in byte order when there are several. What is not
/// there in any case stays as written. Raises nothing for folders that cannot be read.
std::filesystem::path ResolveProjectPath(const std::filesystem::path& folder,
                                         std::string_view fileName);

} // namespace tarn
